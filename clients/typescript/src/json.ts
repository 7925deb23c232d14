// JSON as the service writes and reads it. Types of modules are integers of 64 bits, more than a number of JavaScript
// can carry: such an integer is a text of its digits on this side, or a bigint where it is sent.

export type Json = null | boolean | number | string | Json[] | JsonObject;
export interface JsonObject {
    [member: string]: Json;
}

/** What can be sent: JSON whose long integers may be bigints. */
export type Sendable = null | boolean | number | bigint | string | readonly Sendable[] | { readonly [member: string]: Sendable | undefined };

/** The identity of a module type: its digits, or the integer. */
export type TypeId = string | bigint;

export function isObject(value: unknown): value is JsonObject {
    return typeof value === "object" && value !== null && !Array.isArray(value);
}

/** A value as a text: a text as it is, nothing as the empty one. */
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

/** How members of some names have to be written, whatever object they are in. */
export interface Spelling {
    readonly longIntegers: ReadonlySet<string>;
    readonly fractions: ReadonlySet<string>;
}

function writeNumber(value: number, spelling: Spelling, member: string): string {
    if (!Number.isFinite(value)) throw new RangeError(`${member}: ${value} is no number that JSON has`);
    if (Number.isInteger(value) && !Number.isSafeInteger(value) && spelling.longIntegers.has(member)) {
        throw new RangeError(`${member}: ${value} has lost its last digits, as each number above 2^53 does in JavaScript; give a text of digits or a bigint`);
    }
    return Number.isSafeInteger(value) && spelling.fractions.has(member) ? `${value}.0` : JSON.stringify(value);
}

/**
 * Writes compact JSON: long integers without quotes, and numbers that need a fraction with one. Throws RangeError for a
 * number that is not finite, and for a long integer that was a number and has lost its digits.
 */
export function writeJson(value: Sendable, spelling: Spelling, member = ""): string {
    if (typeof value === "bigint") return value.toString();
    if (typeof value === "number") return writeNumber(value, spelling, member);
    if (typeof value === "string" && spelling.longIntegers.has(member) && /^-?\d{1,19}$/.test(value)) return value;
    if (typeof value !== "object" || value === null) return JSON.stringify(value);
    if (Array.isArray(value)) return `[${(value as readonly Sendable[]).map((entry) => writeJson(entry, spelling)).join(",")}]`;
    const members = Object.entries(value).flatMap(([name, each]) =>
        (each === undefined ? [] : [`${JSON.stringify(name)}:${writeJson(each, spelling, name)}`]));
    return `{${members.join(",")}}`;
}
