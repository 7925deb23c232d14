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

/** Stands for the command of an exchange whose beginning was cut off. */
export const cut = "…";

/** Commands whose messages or reply may have several lines. */
const long = new Set(["PjtInfoChk", "NetAccess", "LuaSent", "PjtPngGet", "PjtChartGet", "PjtCerGet", "VarInfoGet", cut]);

/** One line; null for one that begins no exchange. */
export function lineRead(row: Row): Entry | null {
    const [, side, command = "", rest = ""] = /^(read {3}|write {2})([A-Za-z]+) (.*)$/s.exec(row.text) ?? [];
    if (side === undefined || !commands.has(command)) return null;
    const name = rest.startsWith("json ") ? (/"VarName":\["([^"]*)/.exec(rest)?.[1] ?? "") : rest;
    const project = (/^[A-Za-z0-9]{1,64}(?=[ _])/.exec(name)?.[0] ?? "").toUpperCase();
    return { number: row.number, time: row.time, write: side.startsWith("w"), command, rest, project, more: [] };
}

/**
 * The entries with further lines. One that begins no exchange goes on with the last of its side, where that can have
 * several lines; else the log was cut there, and what is left of the exchange stands for itself.
 */
export function linesTaken(before: readonly Entry[], rows: readonly Row[]): Entry[] {
    const all = [...before];
    for (const row of rows) {
        const entry = lineRead(row);
        const write = row.text.startsWith("w");
        const place = all.findLastIndex((each) => each.write === write);
        const last = all[place];
        const text = row.text.replace(/^(read|write) +/, "");
        if (entry) all.push(entry);
        else if (last && long.has(last.command)) all[place] = { ...last, more: [...last.more, text].slice(-200) };
        else all.push({ number: row.number, time: row.time, write, command: cut, rest: "", project: "", more: [text] });
    }
    return all;
}

/** Fetches what is new and gives its entries; none when the host does not answer. */
export async function logFetch(): Promise<readonly Entry[]> {
    const reply = await fetch(`log?after=${next}`);
    if (!reply.ok) return [];
    const news = (await reply.json()) as { next: number; lines: readonly Row[] };
    // A host that was started again counts from the start.
    next = news.next < next ? 0 : news.next;
    if (news.lines.length === 0) return [];
    const fresh = news.lines.flatMap((row) => lineRead(row) ?? []);
    entries.value = linesTaken(entries.value, news.lines).slice(-kept);
    return fresh;
}
