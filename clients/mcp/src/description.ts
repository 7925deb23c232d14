// The description of the interface in api/.

import { existsSync, readdirSync, readFileSync } from "node:fs";
import { dirname, join } from "node:path";
import {
    type Command as PlainCommand, type Contract, type HttpWay, type Json, type JsonObject, readJson, type Spelling, type Target,
} from "../../typescript/src/index.js";

export interface Command extends PlainCommand {
    readonly idempotent: boolean;
    readonly title: string;
    readonly text: string;
    readonly messages: { readonly form: string; readonly parameter?: string; readonly schema?: JsonObject };
    readonly waits: readonly { readonly milliseconds: number; readonly when: string }[];
}

interface Interface {
    readonly title: string;
    readonly text: string;
    readonly version: string;
    readonly families: readonly string[];
    readonly ways: { readonly http: HttpWay };
    readonly targets: Readonly<Record<string, Target & { readonly text: string }>>;
}

export interface ModuleType {
    readonly VornModuleID: string;
    readonly DeviceName: string;
    readonly english: string;
    readonly items: readonly string[];
    readonly ports: readonly JsonObject[];
}

export interface Catalogue {
    readonly items: Readonly<Record<string, JsonObject>>;
    readonly portValues: JsonObject;
    readonly projectVariables: JsonObject;
    readonly nodes: readonly JsonObject[];
    readonly nodeItems: readonly string[];
    readonly types: readonly ModuleType[];
}

export interface Description extends Contract<Command> {
    /** The folder with api/, docs/ and examples/. */
    readonly root: string;
    readonly interface: Interface;
    readonly catalogue: Catalogue;
    readonly schemas: ReadonlyMap<string, JsonObject>;
}

/** The nearest folder at or above `folder` with the description in it: the repository, or share/vornserver. */
export function findRoot(folder: string): string {
    for (let at = folder; ; at = dirname(at)) {
        if (existsSync(join(at, "api", "interface.json"))) return at;
        if (dirname(at) === at) throw new Error(`no api/interface.json at or above ${folder}`);
    }
}

/** True for an integer whose limits are more than a number of JavaScript can carry. */
export function isLongInteger(schema: JsonObject): boolean {
    return schema["type"] === "integer" && !Array.isArray(schema["enum"]) && !(Number(schema["maximum"]) <= Number.MAX_SAFE_INTEGER);
}

function spellingOf(schemas: Iterable<Json>): Spelling {
    const longIntegers = new Set<string>(["VornModuleID", "DeviceID"]);
    const fractions = new Set<string>();
    const walk = (value: Json, member: string): void => {
        if (typeof value !== "object" || value === null) return;
        if (!Array.isArray(value) && "x-written" in value) fractions.add(member);
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
        version: interface_.version, http: interface_.ways.http, targets: interface_.targets,
        failures: read("failures.json") as Contract["failures"],
        catalogue: read("catalogue.json") as Catalogue,
        spelling: spellingOf([...sent, schemas.get("project_document.schema.json") ?? {}]),
    };
}
