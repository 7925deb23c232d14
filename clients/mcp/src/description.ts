// The description of the interface in api/, and what it says of replies.

import { existsSync, readdirSync, readFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { type Json, type JsonObject, readJson, type Spelling } from "./wire.js";

export interface Failure {
    readonly text: string;
    readonly kind: string;
    readonly meaning: string;
    readonly todo: string;
}

export interface Command {
    readonly id: string;
    readonly word: string;
    readonly target: string;
    readonly effect: "reads" | "changes" | "destroys";
    readonly idempotent: boolean;
    readonly title: string;
    readonly text: string;
    readonly messages: { readonly form: string; readonly parameter?: string; readonly schema?: JsonObject };
    readonly waits: readonly { readonly milliseconds: number; readonly when: string }[];
    readonly replies: readonly { readonly text: string; readonly meaning: string }[];
    readonly failures: readonly string[];
    readonly entryFailures?: readonly string[];
}

interface Target {
    readonly parameters: readonly string[];
    readonly text: string;
    readonly form: string;
    readonly failures: readonly string[];
}

interface Interface {
    readonly title: string;
    readonly text: string;
    readonly version: string;
    readonly families: readonly string[];
    readonly ways: { readonly http: { firstPort: number; lastPort: number; path: string; greetingPath: string; greeting: string } };
    readonly targets: Readonly<Record<string, Target>>;
}

export interface ModuleType {
    readonly VornModuleID: string;
    readonly DeviceName: string;
    readonly english: string;
    readonly items: readonly string[];
    readonly ports: readonly Json[];
}

export interface Catalogue {
    readonly items: Readonly<Record<string, JsonObject>>;
    readonly portValues: JsonObject;
    readonly projectVariables: JsonObject;
    readonly nodes: readonly JsonObject[];
    readonly nodeItems: readonly string[];
    readonly types: readonly ModuleType[];
}

export interface Description {
    /** The folder in which api/, docs/ and examples/ stand. */
    readonly root: string;
    readonly interface: Interface;
    readonly failures: Readonly<Record<string, Failure>>;
    readonly catalogue: Catalogue;
    readonly commands: ReadonlyMap<string, Command>;
    readonly schemas: ReadonlyMap<string, JsonObject>;
    readonly spelling: Spelling;
}

/** The nearest folder at or above `folder` with the description in it: the repository, or share/vornserver. */
export function findRoot(folder: string): string {
    for (let at = folder; ; at = dirname(at)) {
        if (existsSync(join(at, "api", "interface.json"))) return at;
        if (dirname(at) === at) throw new Error(`no api/interface.json at or above ${folder}`);
    }
}

/** True for an integer whose limits are more than a number of JavaScript holds. */
export function isLongInteger(schema: JsonObject): boolean {
    return schema["type"] === "integer" && !Array.isArray(schema["enum"]) && !(Number(schema["maximum"]) <= Number.MAX_SAFE_INTEGER);
}

function spellingOf(schemas: Iterable<Json>): Spelling {
    const longIntegers = new Set<string>();
    const fractions = new Set<string>();
    const walk = (value: Json, member: string): void => {
        if (typeof value !== "object" || value === null) return;
        if (!Array.isArray(value)) {
            if (isLongInteger(value)) longIntegers.add(member);
            if ("x-written" in value) fractions.add(member);
        }
        for (const [name, each] of Object.entries(value)) walk(each, name);
    };
    for (const schema of schemas) walk(schema, "");
    return { longIntegers, fractions };
}

export function load(root: string): Description {
    const api = join(root, "api");
    const read = (...path: string[]): unknown => readJson(readFileSync(join(api, ...path), "utf8"));
    const interface_ = read("interface.json") as Interface;
    const families = interface_.families.map((family) => read("commands", `${family}.json`) as { commands: Command[] });
    const commands = new Map(families.flatMap((family) => family.commands).map((command) => [command.id, command]));
    const names = readdirSync(join(api, "schemas")).filter((name) => name.endsWith(".schema.json"));
    const schemas = new Map(names.map((name) => [name, read("schemas", name) as JsonObject]));
    const sent = [...commands.values()].flatMap(({ messages }) => messages.schema ?? []);
    return {
        root, interface: interface_, commands, schemas,
        failures: read("failures.json") as Record<string, Failure>,
        catalogue: read("catalogue.json") as Catalogue,
        spelling: spellingOf([...sent, schemas.get("project_document.schema.json") ?? {}]),
    };
}

export function commandOf(description: Description, id: string): Command {
    const command = description.commands.get(id);
    if (!command) throw new Error(`the description has no command ${id}`);
    return command;
}

const piece = /\{([a-z]+)\}/g;

/** What stands in the pieces of a form such as "MOD{number}"; null for a text that is not of the form. */
export function piecesOf(form: string, text: string): Record<string, string> | null {
    const literal = (each: string): string => each.replace(/[.*+?^${}()|[\]\\]/g, "\\$&");
    const parts = form.split(piece); // literals and names in turn
    const source = parts.map((part, index) => (index % 2 === 0 ? literal(part) : `(?<${part}>.*)`)).join("");
    const found = new RegExp(`^${source}$`, "s").exec(text);
    return found && { ...found.groups };
}

export type Meaning = { readonly failure: Failure } | { readonly reply: { readonly text: string; readonly meaning: string } };

/** Tells what a reply is, in the order that `matching` of interface.json has; null for a text of neither list. */
export function meaningOf(description: Description, command: Command, text: string): Meaning | null {
    const names = ["envelope", "internal", ...(description.interface.targets[command.target]?.failures ?? []), ...command.failures];
    const failures = names.flatMap((name) => description.failures[name] ?? []);
    const exact = (each: { text: string }): boolean => each.text === text;
    const open = (each: { text: string }): boolean => each.text.search(piece) >= 0 && piecesOf(each.text, text) !== null;
    const plain = command.replies.find(exact);
    if (plain) return { reply: plain };
    const failure = failures.find(exact) ?? failures.find(open);
    if (failure) return { failure };
    const reply = command.replies.find(open);
    return reply ? { reply } : null;
}

/** The failure of an entry of a batch; undefined for a value. */
export function entryFailure(description: Description, command: Command, text: string): Failure | undefined {
    return (command.entryFailures ?? []).map((name) => description.failures[name]).find((each) => each?.text === text);
}
