// Long lists go to the assistant in pages of a limited size.

import type { Json, JsonObject } from "../../typescript/src/index.js";

/** The parameters of a tool that gives pages. */
export const pageProperties: JsonObject = {
    offset: { type: "integer", minimum: 0, default: 0, description: "The first entry of the page." },
    limit: { type: "integer", minimum: 1, maximum: 1000, default: 100, description: "The most entries of the page." },
    maxBytes: {
        type: "integer", minimum: 500, maximum: 200000, default: 20000,
        description: "The most bytes of the page's entries; one entry comes in any case.",
    },
};

/** What a page always has. */
export const pageGives: JsonObject = { total: { type: "integer" }, offset: { type: "integer" }, entries: { type: "array" } };

/** One page: the entries, how many there are in all, and where the next page begins, if there is one. */
export function page(entries: readonly Json[], args: JsonObject): JsonObject {
    const number = (name: string): number => Number(args[name] ?? (pageProperties[name] as JsonObject)["default"]);
    const offset = number("offset");
    const taken: Json[] = [];
    let bytes = 0;
    for (const entry of entries.slice(offset, offset + number("limit"))) {
        bytes += Buffer.byteLength(JSON.stringify(entry)) + 1;
        if (taken.length > 0 && bytes > number("maxBytes")) break;
        taken.push(entry);
    }
    const next = offset + taken.length;
    return { total: entries.length, offset, entries: taken, ...(next < entries.length && taken.length > 0 ? { next } : {}) };
}
