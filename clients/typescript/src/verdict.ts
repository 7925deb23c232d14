// The analysis's verdict: "OK", or one sentence of the service that names an element.

export type Fault = "open" | "unreached" | "pressure" | "other";

export interface Verdict {
    readonly good: boolean;
    /** The service's own words. */
    readonly text: string;
    /** The number of the element that the sentence names, as `MOD10`. */
    readonly key: string | null;
    readonly fault: Fault | null;
    readonly branch: number | null;
    /** The module's aisle at which an open branch ends. */
    readonly aisle: number | null;
    /** The module's port that nothing feeds. */
    readonly port: number | null;
    /** The identity of the element's type, in decimal. */
    readonly type: string | null;
}

const faults: readonly (readonly [string, Fault])[] = [
    ["缺少下游链接", "open"],
    ["所在支路不完整", "unreached"],
    ["缺少定压装置", "pressure"],
];

/** Reads the reply to `NetAccess`. A refusal is a verdict of the fault "other". */
export function verdictRead(reply: string): Verdict {
    const text = reply.trim();
    const none = { key: null, fault: null, branch: null, aisle: null, port: null, type: null };
    if (text === "OK") return { good: true, text, ...none };
    const number = (pattern: RegExp): number | null => {
        const found = pattern.exec(text)?.[1];
        return found === undefined ? null : Number(found);
    };
    const fault = faults.find(([words]) => text.includes(words))?.[1] ?? "other";
    const passage = number(/通路号:(\d+)/);
    return {
        good: false, text, fault, branch: number(/支路号:(\d+)/),
        key: /(?:MOD|NOD)\d+/.exec(text)?.[0] ?? null,
        aisle: fault === "open" ? passage : null, port: fault === "unreached" ? passage : null,
        type: /VornmoduleID:(\d+)/.exec(text)?.[1] ?? null,
    };
}
