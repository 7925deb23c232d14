// The analysis's verdict: one sentence of the service that names an element.

export interface Verdict {
    readonly good: boolean;
    /** The service's own words. */
    readonly text: string;
    /** The key of the element that the sentence names. */
    readonly key: string | null;
    readonly fault: "open" | "unreached" | "pressure" | "other" | null;
    readonly branch: number | null;
}

const faults: readonly (readonly [string, NonNullable<Verdict["fault"]>])[] = [
    ["缺少下游链接", "open"],
    ["所在支路不完整", "unreached"],
    ["缺少定压装置", "pressure"],
];

export function verdictRead(reply: string): Verdict {
    const text = reply.trim();
    if (text === "OK") return { good: true, text, key: null, fault: null, branch: null };
    const branch = /支路号:(\d+)/.exec(text)?.[1];
    return {
        good: false,
        text,
        key: /(?:MOD|NOD)\d+/.exec(text)?.[0] ?? null,
        fault: faults.find(([words]) => text.includes(words))?.[1] ?? "other",
        branch: branch === undefined ? null : Number(branch),
    };
}
