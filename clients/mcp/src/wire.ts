// JSON as the service writes and reads it. Types of modules are integers of 64 bits, more than a number of JavaScript
// holds: such an integer is a text of its digits on this side.

export type Json = null | boolean | number | string | Json[] | JsonObject;
export interface JsonObject {
    [member: string]: Json;
}

export function isObject(value: unknown): value is JsonObject {
    return typeof value === "object" && value !== null && !Array.isArray(value);
}

/** A value as a text: a text as it stands, nothing as the empty one. */
export function textOf(value: Json | undefined): string {
    if (value === undefined || value === null) return "";
    return typeof value === "object" ? JSON.stringify(value) : String(value);
}

/** An object without some of its members. */
export function without(value: JsonObject, members: readonly string[]): JsonObject {
    return Object.fromEntries(Object.entries(value).filter(([member]) => !members.includes(member)));
}

const stringOrNumber = /"(?:[^"\\]|\\.)*"|-?\d+(?:\.\d+)?(?:[eE][+-]?\d+)?/g;
const longInteger = /^-?\d{16,}$/;

/** Reads a JSON text; integers of 16 digits and more become texts. Throws SyntaxError. */
export function readJson(text: string): Json {
    return JSON.parse(text.replace(stringOrNumber, (piece) => (longInteger.test(piece) ? `"${piece}"` : piece))) as Json;
}

/** How members of some names have to be written, whatever object they stand in. */
export interface Spelling {
    readonly longIntegers: ReadonlySet<string>;
    readonly fractions: ReadonlySet<string>;
}

/** Writes compact JSON: long integers without quotes, and numbers that need a fraction with one. */
export function writeJson(value: Json, spelling: Spelling, member = ""): string {
    if (Array.isArray(value)) return `[${value.map((entry) => writeJson(entry, spelling)).join(",")}]`;
    if (isObject(value)) {
        const members = Object.entries(value).map(([name, each]) => `${JSON.stringify(name)}:${writeJson(each, spelling, name)}`);
        return `{${members.join(",")}}`;
    }
    if (typeof value === "string" && spelling.longIntegers.has(member) && /^-?\d{1,19}$/.test(value)) return value;
    if (Number.isSafeInteger(value) && spelling.fractions.has(member)) return `${String(value)}.0`;
    return JSON.stringify(value);
}
