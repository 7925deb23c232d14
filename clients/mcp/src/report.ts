// The topology report of a project, with names and nets that the report itself does not tell.

import type { Ask } from "./service.js";
import { type JsonObject, readJson } from "./wire.js";

export interface Device extends JsonObject {
    InstanceID: string;
    VornModuleID: string | number;
}

export interface Branch extends JsonObject {
    Branch: number;
    Type: number;
    Front_InstanceID: string;
    FrontPort: number;
    InstanceID_AisleNb: Record<string, number>[];
    Post_InstanceID: string;
    PostPort: number;
}

export interface Report {
    readonly DeviceInfo: Device[];
    readonly NodeInfo: Device[];
    readonly ConnectionInfo: JsonObject[];
    readonly BranchInfo: Branch[];
}

export async function readReport(ask: Ask, project: string): Promise<Report> {
    return readJson(await ask("PjtInfoChk", project)) as unknown as Report;
}

/** Names by number, MOD3 or NOD0, of the elements that have an InstanceID of their own. */
export type Names = ReadonlyMap<string, string>;

/**
 * The report lists elements in the order of their numbers but does not tell these. Where the last one's number, which its
 * variables tell, is that of its place, no number is left out and places are numbers; else nobody is named.
 */
export async function readNames(ask: Ask, project: string, report: Report): Promise<Names> {
    const names = new Map<string, string>();
    for (const [kind, list] of [["MOD", report.DeviceInfo], ["NOD", report.NodeInfo]] as const) {
        const last = list.at(-1);
        if (!last) continue;
        const variables = await ask("VarInfoGet", `${project}_${last.InstanceID}`);
        if (!variables.includes(`_${kind}${list.length - 1}_`)) continue;
        for (const [number, { InstanceID }] of list.entries()) {
            if (InstanceID !== `${kind}${number}`) names.set(`${kind}${number}`, InstanceID);
        }
    }
    return names;
}

export function named(names: Names, element: string): string {
    const name = names.get(element);
    return name === undefined ? element : `${element} "${name}"`;
}

/** A branch in one line, in the order of its flow. */
export function branchLine(names: Names, branch: Branch): string {
    const end = (element: string, port: number): string => (element === "None" ? "nothing" : `${named(names, element)} port ${port}`);
    const through = branch.InstanceID_AisleNb.flatMap((entry) => Object.entries(entry))
        .map(([element, aisle]) => named(names, element) + (aisle === 0 ? "" : ` aisle ${aisle}`));
    return [end(branch.Front_InstanceID, branch.FrontPort), ...through, end(branch.Post_InstanceID, branch.PostPort)].join(" > ");
}

export interface Net {
    readonly nodes: string[];
    readonly branches: Branch[];
    /** The modules at which branches of the net end: what holds its pressure. */
    readonly ends: Set<string>;
}

const informationType = 1;

/** All nodes that branches join are one net, information apart. `alone` are the branches that no net has. */
export function netsOf(branches: readonly Branch[]): { nets: Net[]; alone: Branch[] } {
    const parent = new Map<string, string>();
    const find = (node: string): string => {
        let at = node;
        for (let up = parent.get(at); up !== undefined && up !== at; up = parent.get(at)) at = up;
        return at;
    };
    const nodesOf = (branch: Branch): string[] => branch.Type === informationType ? []
        : [branch.Front_InstanceID, branch.Post_InstanceID].filter((end) => end.startsWith("NOD"));
    for (const branch of branches) {
        const nodes = nodesOf(branch);
        for (const node of nodes) if (!parent.has(node)) parent.set(node, node);
        const [one, other] = nodes.map(find);
        if (one !== undefined && other !== undefined) parent.set(one, other);
    }
    const nets = new Map<string, Net>();
    const alone: Branch[] = [];
    for (const node of parent.keys()) {
        const net = nets.get(find(node)) ?? { nodes: [], branches: [], ends: new Set() };
        nets.set(find(node), net);
        net.nodes.push(node);
    }
    for (const branch of branches) {
        const node = nodesOf(branch)[0];
        const net = node === undefined ? undefined : nets.get(find(node));
        if (!net) alone.push(branch);
        net?.branches.push(branch);
        for (const end of [branch.Front_InstanceID, branch.Post_InstanceID]) if (end.startsWith("MOD")) net?.ends.add(end);
    }
    return { nets: [...nets.values()], alone };
}
