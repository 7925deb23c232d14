// The exchange log, as the host tells it.

import { signal } from "@preact/signals";

interface Row {
    readonly number: number;
    readonly time: number;
    readonly text: string;
}

export interface Entry {
    readonly number: number;
    readonly time: number;
    readonly write: boolean;
    readonly command: string;
    /** What stands behind the command: name, messages and reply, between which the log has no mark. */
    readonly rest: string;
    /** The project that the name begins with, as far as one can tell. */
    readonly project: string;
    /** Further lines of a reply that has several. */
    readonly more: readonly string[];
}

const kept = 1500;
const commands = new Set(
    ("Set Get Put Fdp Fph Create Open AddModule AddNode AddLink NetAccess PjtInfoChk PjtRun PjtPause PjtStep PjtStop " +
        "PjtClose PjtClear PjtSent LuaSent PjtCacheToRun PjtRunToCache ImportantGet PjtPngGet PjtChartGet PjtCerGet " +
        "PjtAddVar PjtDleVar DeleteMNL MoveMN PreGet TempGet FlowGet RoomGet VarInfoGet VarValueSet VarCacheGet " +
        "VarCacheSet RunValueGet RunValueSet CacheToRun RunToCache ImportantSet").split(" "),
);

export const entries = signal<readonly Entry[]>([]);
let next = 0;

/** One line; null for one that goes on with the reply of the line before. */
export function lineRead(row: Row): Entry | null {
    const [, side, command = "", rest = ""] = /^(read {3}|write {2})([A-Za-z]+) (.*)$/s.exec(row.text) ?? [];
    if (side === undefined || !commands.has(command)) return null;
    const name = rest.startsWith("json ") ? (/"VarName":\["([^"]*)/.exec(rest)?.[1] ?? "") : rest;
    const project = (/^[A-Za-z0-9]{1,64}(?=[ _])/.exec(name)?.[0] ?? "").toUpperCase();
    return { number: row.number, time: row.time, write: side.startsWith("w"), command, rest, project, more: [] };
}

/** Fetches what is new and gives its entries; none when the host does not answer. */
export async function logFetch(): Promise<readonly Entry[]> {
    const reply = await fetch(`log?after=${next}`);
    if (!reply.ok) return [];
    const news = (await reply.json()) as { next: number; lines: readonly Row[] };
    // A host that was started again counts from the start.
    next = news.next < next ? 0 : news.next;
    if (news.lines.length === 0) return [];
    const all = [...entries.value];
    const fresh: Entry[] = [];
    for (const row of news.lines) {
        const entry = lineRead(row);
        const last = all.at(-1);
        if (entry) {
            all.push(entry);
            fresh.push(entry);
        } else if (last) {
            const text = row.text.replace(/^(read|write) +/, "");
            all[all.length - 1] = { ...last, more: [...last.more, text].slice(-200) };
        }
    }
    entries.value = all.slice(-kept);
    return fresh;
}
