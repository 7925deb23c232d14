// Nets: the nodes that branches join.

import type { ReportBranch } from "./report.js";

export interface Net {
    readonly nodes: readonly string[];
    readonly branches: readonly ReportBranch[];
    /** The modules at which branches of the net end: what keeps its pressure. */
    readonly ends: ReadonlySet<string>;
}

export interface Nets {
    readonly nets: readonly Net[];
    /** The branches of no net: loops between modules, and information. */
    readonly alone: readonly ReportBranch[];
}

const informationType = 1;

function endsOf(branch: ReportBranch, prefix: string): string[] {
    return [branch.Front_InstanceID, branch.Post_InstanceID].filter((end) => end.startsWith(prefix));
}

/** Joins nodes step by step; `root` is the same for all nodes that were joined. */
class Joined {
    private readonly parents = new Map<string, string>();

    root(node: string): string {
        let at = node;
        for (let up = this.parents.get(at); up !== undefined; up = this.parents.get(at)) at = up;
        if (at !== node) this.parents.set(node, at);
        return at;
    }

    join(one: string, other: string): void {
        const [from, to] = [this.root(one), this.root(other)];
        if (from !== to) this.parents.set(from, to);
    }
}

/** Groups the branches as the analysis does. Nets come in the order of their first branches. */
export function netsOf(branches: readonly ReportBranch[]): Nets {
    const nodesOf = (branch: ReportBranch): string[] => (branch.Type === informationType ? [] : endsOf(branch, "NOD"));
    const joined = new Joined();
    for (const [one, other] of branches.map(nodesOf)) if (one !== undefined && other !== undefined) joined.join(one, other);
    const nets = new Map<string, { nodes: Set<string>; branches: ReportBranch[]; ends: Set<string> }>();
    const alone: ReportBranch[] = [];
    for (const branch of branches) {
        const nodes = nodesOf(branch);
        if (nodes[0] === undefined) {
            alone.push(branch);
            continue;
        }
        const root = joined.root(nodes[0]);
        const net = nets.get(root) ?? { nodes: new Set(), branches: [], ends: new Set() };
        nets.set(root, net);
        net.branches.push(branch);
        for (const node of nodes) net.nodes.add(node);
        for (const end of endsOf(branch, "MOD")) net.ends.add(end);
    }
    return { nets: [...nets.values()].map((net) => ({ ...net, nodes: [...net.nodes] })), alone };
}
