// What a tool is, and how one is made from the commands that it uses.

import type { CallToolResult, Tool as Listed } from "@modelcontextprotocol/sdk/types.js";
import { commandOf, type JsonObject, meaningOf, textOf, without, writeJson } from "../../typescript/src/index.js";
import type { Command, Description } from "./description.js";
import { checker, inputSchema, listedSchema } from "./schema.js";
import type { Service } from "./service.js";

/** What tools work with. */
export interface Kit {
    readonly description: Description;
    readonly service: Service;
}

/** What a call has beside its arguments. */
export interface Call {
    readonly signal: AbortSignal;
    /** Reports to the client how far the work is; does nothing where it did not ask for that. */
    readonly progress: (done: number, total: number, message: string) => void;
}

/** A result: an object of the tool's output schema, and content to show beside it. */
export interface Shown {
    readonly result: JsonObject;
    readonly content: CallToolResult["content"];
}

/** Does the work with arguments that fit the schema; gives an object of the output schema. */
export type Work = (kit: Kit, args: JsonObject, call: Call) => Promise<JsonObject | Shown>;

/** A row of a tool table. */
export interface Row {
    readonly name: string;
    /** The commands that it uses; the first one gives text and schema. None for a tool of its own. */
    readonly uses: readonly string[];
    /** Said before the command's own text, or instead of it where `whole`. */
    readonly text?: string;
    readonly whole?: boolean;
    /** Parameters beside the command's own; `required` names those that must be given. */
    readonly also?: JsonObject;
    readonly required?: readonly string[];
    /** Parameters of the command that the tool fills in itself. */
    readonly hides?: readonly string[];
    readonly idempotent?: boolean;
    /** The members of the result that are always there; a command's reply and its meaning without it. */
    readonly gives?: JsonObject;
    readonly work?: Work;
}

export interface Tool {
    readonly listed: Listed;
    readonly faults: (args: unknown) => string;
    readonly work: Work;
}

/** What a command is sent: its name, and its messages as JSON. */
export function requestOf(description: Description, command: Command, args: JsonObject): [name: string, messages?: string] {
    const target = description.interface.targets[command.target];
    const parameters = target?.parameters ?? [];
    const name = (target?.form ?? "").replace(/\{([a-z]+)\}/g, (_, parameter: string) => textOf(args[parameter]));
    const rest = without(args, parameters);
    const { form: kind, parameter } = command.messages;
    if (kind === "none") return [name];
    const value = parameter === undefined ? rest : rest[parameter] ?? "";
    return [name, writeJson(value, description.spelling)];
}

const replyGives: JsonObject = { reply: { type: "string" } };

/** Sends the one command; the reply comes with its meaning. */
export function sends(id: string): Work {
    return async ({ description, service }, args) => {
        const command = commandOf(description, id);
        const reply = await service.ask(id, ...requestOf(description, command, args));
        const meaning = meaningOf(description, command, reply);
        return { reply, ...(meaning && "reply" in meaning ? { meaning: meaning.reply.meaning } : {}) };
    };
}

function descriptionOf(row: Row, command: Command | undefined): string {
    if (!command || row.whole) return row.text ?? "";
    const waits = command.waits.filter(({ milliseconds }) => milliseconds >= 1000)
        .map(({ milliseconds, when }) => `It takes ${milliseconds / 1000} s (${when}).`);
    return [row.text, command.text, ...waits].filter(Boolean).join(" ");
}

function schemaOf(description: Description, row: Row, first: Command | undefined): JsonObject {
    const base = first ? inputSchema(description, first) : { type: "object", properties: {}, required: [], additionalProperties: false };
    const shown = ([name]: [string, unknown]): boolean => !row.hides?.includes(name);
    const kept = Object.entries(base["properties"] as JsonObject).filter(shown);
    const plain = without(base, row.hides ? ["$defs"] : []);
    const needed = (base["required"] as string[]).filter((name) => !row.hides?.includes(name) && !(row.also && name in row.also));
    return { ...plain, properties: { ...Object.fromEntries(kept), ...row.also }, required: [...needed, ...row.required ?? []] };
}

/** What a client takes for granted is not said: that a tool changes, may destroy, and is not idempotent. */
function annotationsOf(used: readonly Command[], row: Row): Listed["annotations"] {
    if (used.every(({ effect }) => effect === "reads")) return { readOnlyHint: true };
    const idempotent = row.idempotent ?? used.every((each) => each.idempotent);
    return {
        ...(used.some(({ effect }) => effect === "destroys") ? {} : { destructiveHint: false }),
        ...(idempotent ? { idempotentHint: true } : {}),
    };
}

/** Makes a tool. Its annotations are those of the commands that it uses. */
export function toolOf(description: Description, row: Row): Tool {
    const used = row.uses.map((id) => commandOf(description, id));
    const first = used[0];
    const schema = schemaOf(description, row, first);
    const gives = row.gives ?? replyGives;
    return {
        listed: {
            name: row.name, description: descriptionOf(row, first),
            inputSchema: listedSchema(schema) as unknown as Listed["inputSchema"],
            outputSchema: { type: "object", properties: gives as Record<string, object>, ...(row.gives && Object.keys(gives).length > 0 ? { required: Object.keys(gives) } : {}) },
            annotations: annotationsOf(used, row),
        },
        faults: checker(schema),
        work: row.work ?? sends(row.uses[0] ?? ""),
    };
}
