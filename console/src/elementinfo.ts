// What the engine tells of one element: its variables, its table of items, its sets. The texts are the engine's; those
// that are no lists of this form are shown as they are.

import { ask } from "./api";

export interface Variable {
    readonly name: string;
    readonly port: number | null;
    readonly item: string;
}

export interface Item {
    readonly row: number;
    readonly item: string;
    readonly name: string | null;
    readonly run: string;
    /** Of the cache sets, in their order. */
    readonly sets: readonly string[];
}

export interface Info {
    readonly ports: readonly Variable[];
    readonly items: readonly Item[];
    /** A text of the engine in no known form. */
    readonly plain: string;
}

type Row = Readonly<Record<string, unknown>>;

function rows(text: string): readonly Row[] | null {
    try {
        const list: unknown = JSON.parse(text);
        const good = Array.isArray(list) && list.every((row) => typeof row === "object" && row !== null);
        return good ? (list as Row[]) : null;
    } catch {
        return null;
    }
}

const shown = (value: unknown): string =>
    typeof value === "number" || typeof value === "string" ? String(value) : value === null ? "–" : "";

/** Puts the three texts together. */
export function infoRead(variables: string, sets: string, run: string): Info {
    const [variableRows, setRows, runRows] = [rows(variables), rows(sets), rows(run)];
    if (!variableRows || !setRows || !runRows) {
        return { ports: [], items: [], plain: [variables, sets, run].filter((text) => text !== "").join("\n") };
    }
    const ports = variableRows.flatMap((row): Variable[] => {
        const name = shown(row["Name"]);
        if (typeof row["Port"] !== "number" || Array.isArray(row["Value"])) return [];
        return [{ name, port: row["Port"], item: name.slice(name.lastIndexOf("_") + 1) }];
    });
    const of = (list: readonly Row[], row: number): Row => list.find((each) => each["Row"] === row) ?? {};
    const items = runRows.flatMap((row): Item[] => {
        const number = row["Row"];
        if (typeof number !== "number") return [];
        const layers = of(setRows, number)["Sets"];
        const name = of(variableRows, number)["Name"];
        return [{
            row: number, item: shown(row["Item"]), name: typeof name === "string" ? name : null,
            run: shown(row["Value"]), sets: Array.isArray(layers) ? layers.map(shown) : [],
        }];
    });
    return { ports, items, plain: "" };
}

/** `address` is the project, `_` and the element's key. */
export async function infoFetch(address: string): Promise<Info> {
    const variables = await ask("VarInfoGet", address);
    const sets = await ask("VarCacheGet", address);
    return infoRead(variables, sets, await ask("RunValueGet", address));
}
