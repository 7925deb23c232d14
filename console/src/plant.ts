// A plant as it is drawn: shapes (devices and nodes), the runs between them, branches and nets.

import { netsOf as groupBranches, passagesOf, type Report, type ReportBranch, type ReportElement } from "../../clients/typescript/src/index";
import { linkMedia, type Medium, type TypeInfo, typeInfo } from "./catalogue";

export interface Element {
    /** `MOD` or `NOD` and the element's number: how connections, branches and verdicts tell it. */
    readonly key: string;
    /** The identity that clients use, which a document may have chosen. */
    readonly id: string;
    readonly node: boolean;
    readonly typeName: string;
    readonly type: TypeInfo;
    readonly model: string;
    readonly x: number;
    readonly z: number;
}

export interface End {
    readonly key: string;
    readonly port: number;
}

/** A line of the drawing: a pipe with its two links, or a link without a pipe. */
export interface Run {
    /** The pipe's key, or the link's. */
    readonly key: string;
    readonly pipe: Element | null;
    readonly from: End;
    readonly to: End;
    medium: Medium;
}

export interface Branch {
    readonly number: number;
    readonly front: string;
    readonly post: string;
    readonly net: number;
    /** Elements and runs of the branch. */
    readonly keys: ReadonlySet<string>;
}

export interface Net {
    readonly number: number;
    readonly medium: Medium;
    readonly branches: readonly Branch[];
    readonly keys: ReadonlySet<string>;
}

export interface Plant {
    readonly name: string;
    /** The report's text as it came. */
    readonly text: string;
    readonly elements: ReadonlyMap<string, Element>;
    readonly shapes: readonly Element[];
    readonly runs: readonly Run[];
    readonly nets: readonly Net[];
}

const nodeType: TypeInfo = { en: "Node", symbol: "box" };

function elementOf(entry: ReportElement, key: string): Element {
    const node = entry.DeviceName === undefined;
    return {
        key,
        id: entry.InstanceID,
        node,
        typeName: entry.DeviceName ?? entry.NodeName ?? "",
        type: node ? nodeType : typeInfo(entry.VornModuleID, entry.DeviceName ?? ""),
        model: entry.ModelID,
        x: entry.PositionX,
        z: entry.PositionZ,
    };
}

interface Step {
    readonly key: string;
    readonly from: End;
    readonly to: End;
    readonly type: number;
}

/** A pipe with one way in and one way out becomes the run between its neighbours. */
function runsOf(steps: readonly Step[], elements: ReadonlyMap<string, Element>): Run[] {
    const into = new Map<string, Step[]>();
    const outOf = new Map<string, Step[]>();
    for (const step of steps) {
        into.set(step.to.key, [...(into.get(step.to.key) ?? []), step]);
        outOf.set(step.from.key, [...(outOf.get(step.from.key) ?? []), step]);
    }
    const runs: Run[] = [];
    const used = new Set<Step>();
    for (const pipe of elements.values()) {
        const [before, ...moreBefore] = into.get(pipe.key) ?? [];
        const [after, ...moreAfter] = outOf.get(pipe.key) ?? [];
        if (!pipe.type.pipe || !before || !after || moreBefore.length + moreAfter.length > 0) continue;
        // Of two pipes in a row, the second stays a shape.
        if (used.has(before) || used.has(after) || before.from.key === pipe.key) continue;
        used.add(before).add(after);
        runs.push({ key: pipe.key, pipe, from: before.from, to: after.to, medium: pipe.type.pipe });
    }
    for (const step of steps) {
        if (used.has(step)) continue;
        runs.push({ key: step.key, pipe: null, from: step.from, to: step.to, medium: linkMedia[step.type] ?? "water" });
    }
    return runs;
}

/** The net of each branch. A branch of no net is one of its own, behind the others. */
function netNumbers(branches: readonly ReportBranch[]): ReadonlyMap<ReportBranch, number> {
    const { nets, alone } = groupBranches(branches);
    const groups = [...nets.map((net) => net.branches), ...alone.map((branch) => [branch])];
    return new Map(groups.flatMap((group, number) => group.map((branch): [ReportBranch, number] => [branch, number])));
}

function elementKeys(branch: ReportBranch): string[] {
    return [branch.Front_InstanceID, ...passagesOf(branch).map(([module]) => module), branch.Post_InstanceID];
}

function branchesOf(report: Report, runs: readonly Run[]): Branch[] {
    const runBetween = new Map<string, Run[]>();
    for (const run of runs) {
        const ends = `${run.from.key}>${run.to.key}`;
        runBetween.set(ends, [...(runBetween.get(ends) ?? []), run]);
    }
    const nets = netNumbers(report.BranchInfo);
    return report.BranchInfo.map((branch) => {
        const row = elementKeys(branch);
        const keys = new Set(row.filter((key) => key !== "None"));
        row.forEach((key, at) => {
            const between = runBetween.get(`${key}>${row[at + 1] ?? ""}`) ?? [];
            // Of several lines between two elements, those with a pipe are told by their pipe.
            for (const run of between) if (!run.pipe) keys.add(run.key);
        });
        return {
            number: branch.Branch, front: branch.Front_InstanceID, post: branch.Post_InstanceID,
            net: nets.get(branch) ?? 0, keys,
        };
    });
}

function netsOf(report: Report, branches: readonly Branch[], elements: ReadonlyMap<string, Element>): Net[] {
    const groups: Branch[][] = [];
    for (const branch of branches) (groups[branch.net] ??= []).push(branch);
    return groups.map((group, number) => {
        const keys = new Set(group.flatMap((branch) => [...branch.keys]));
        const media = new Set([...keys].map((key) => elements.get(key)?.type.pipe));
        const linkType = report.BranchInfo[branches.findIndex((branch) => branch === group[0])]?.Type ?? 0;
        const fluid: Medium = media.has("air") ? "air" : media.has("refrigerant") ? "refrigerant" : "water";
        return { number, branches: group, keys, medium: linkType === 0 ? fluid : (linkMedia[linkType] ?? "water") };
    });
}

/** `modules` and `nodes` are the numbers behind the report's lists. */
export function plantOf(
    name: string, text: string, report: Report, modules: readonly number[], nodes: readonly number[],
): Plant {
    const elements = new Map<string, Element>();
    const add = (entry: ReportElement, key: string): void => {
        elements.set(key, elementOf(entry, key));
    };
    report.DeviceInfo.forEach((entry, place) => add(entry, `MOD${modules[place] ?? place}`));
    report.NodeInfo.forEach((entry, place) => add(entry, `NOD${nodes[place] ?? place}`));
    const steps = report.ConnectionInfo.map((row): Step => ({
        key: row.InstanceID,
        from: { key: row.F_InstanceID, port: row.F_PortNb },
        to: { key: row.S_InstanceID, port: row.S_PortNb },
        type: row.Type,
    })).filter((step) => elements.has(step.from.key) && elements.has(step.to.key));
    const runs = runsOf(steps, elements);
    const nets = netsOf(report, branchesOf(report, runs), elements);
    const byKey = new Map(runs.map((run) => [run.key, run]));
    for (const net of nets) {
        for (const key of net.keys) {
            const run = byKey.get(key);
            if (run) run.medium = net.medium;
        }
    }
    const shapes = [...elements.values()].filter((element) => !byKey.has(element.key));
    return { name, text, elements, shapes, runs, nets };
}
