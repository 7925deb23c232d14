// Input schemas of tools, made from the schemas of api/.

import { Ajv2020, type ErrorObject, type ValidateFunction } from "ajv/dist/2020.js";
import { type Command, type Description, isLongInteger } from "./description.js";
import { isObject, type Json, type JsonObject, textOf, without } from "../../typescript/src/index.js";

const longInteger: JsonObject = {
    anyOf: [
        { type: "string", pattern: "^-?[0-9]{1,19}$" },
        { type: "integer", minimum: Number.MIN_SAFE_INTEGER, maximum: Number.MAX_SAFE_INTEGER },
    ],
};
const asText = "Write it as a text of digits: a JSON number of more than 15 digits loses its last ones.";

/** Members of a schema that say nothing to an assistant, or that `writeJson` takes care of. */
const unsaid = ["x-written", "x-wrongType", "x-unit", "x-maxBytes"];
const widest = [
    ["minimum", -2147483648], ["maximum", 2147483647], ["minimum", Number.MIN_SAFE_INTEGER], ["maximum", Number.MAX_SAFE_INTEGER],
] as const;
const checkedOnly = ["pattern", "minLength", "maxLength", "minItems", "maxItems"];

/** A schema for assistants: long integers as texts, and nothing said of how numbers are spelled, which `writeJson` does. */
export function forAssistants(value: Json): Json {
    if (Array.isArray(value)) return value.map(forAssistants);
    if (!isObject(value)) return value;
    const entries = Object.entries(without(value, unsaid));
    const mapped: JsonObject = Object.fromEntries(entries.map(([name, each]) => [name, forAssistants(each)]));
    if ("x-written" in value && typeof value["description"] === "string") {
        mapped["description"] = value["description"].replace(/\. .*/s, ".");
    }
    const unit = value["x-unit"];
    if (typeof unit === "string" && typeof mapped["description"] === "string") mapped["description"] += ` In ${unit}.`;
    if (!isLongInteger(value)) return mapped;
    const rest = without(mapped, ["type", "minimum", "maximum", "default"]);
    return { ...rest, ...longInteger, description: `${textOf(rest["description"]).replace(/ An identity above.*/s, "")} ${asText}` };
}

/** A tool's schema as it is listed: without limits that any number keeps, and without what the check alone needs. */
export function listedSchema(value: Json): Json {
    if (Array.isArray(value)) return value.map(listedSchema);
    if (!isObject(value)) return value;
    const kept = Object.entries(value).filter(([name, each]) => !(checkedOnly.includes(name) && !isObject(each)) && !widest.some(([limit, most]) => limit === name && each === most)
        && !(name === "additionalProperties" && each === false) && !(name === "required" && Array.isArray(each) && each.length === 0));
    return Object.fromEntries(kept.map(([name, each]) => [name, listedSchema(each)]));
}

const projectName: JsonObject = { type: "string", pattern: "^[A-Za-z0-9]{1,64}$" };

/** The parameters that make up a command's `name`. */
function targetProperties(description: Description, command: Command): JsonObject {
    const target = description.interface.targets[command.target];
    const texts: Record<string, string> = {
        project: "Its name.",
        element: "As MOD7, NOD0 or LNK3, or its InstanceID.",
    };
    const properties = (target?.parameters ?? []).map((name): [string, Json] => [name, {
        ...(name === "project" ? projectName : { type: "string", minLength: 1 }), description: texts[name] ?? target?.text ?? "",
    }]);
    return Object.fromEntries(properties);
}

/** The schema of a command's arguments: those of its name, then those of its messages. */
export function inputSchema(description: Description, command: Command): JsonObject {
    const target = targetProperties(description, command);
    const { form, parameter, schema } = command.messages;
    const required = Object.keys(target);
    const reference = typeof schema?.["$ref"] === "string" ? schema["$ref"].replace(/.*\//, "") : "";
    const messages = forAssistants(description.schemas.get(reference) ?? schema ?? {}) as JsonObject;
    const made = (properties: JsonObject, more: string[], rest: JsonObject = {}): JsonObject => ({
        type: "object", properties: { ...target, ...properties }, required: [...required, ...more], additionalProperties: false, ...rest,
    });
    if (form === "none") return made({}, []);
    if (form === "setNumber") {
        const numbers = (messages["enum"] as Json[]).filter((each) => typeof each === "number");
        return made({ set: { type: "integer", enum: numbers, description: "The cache set." } }, ["set"]);
    }
    if (form === "text" || parameter !== undefined) {
        const { $defs } = messages;
        const name = parameter ?? "text";
        const own = without(messages, ["$schema", "$id", "$defs"]);
        return made({ [name]: own }, [name], $defs === undefined ? {} : { $defs });
    }
    return made(messages["properties"] as JsonObject, (messages["required"] ?? []) as string[]);
}

const ajv = new Ajv2020({ strict: false, allErrors: true, verbose: true });

/** A test of arguments: the text of what is wrong with them, empty when nothing is. */
export function checker(schema: JsonObject): (value: unknown) => string {
    const validate: ValidateFunction = ajv.compile(schema);
    return (value) => (validate(value) ? "" : faults(validate.errors ?? []));
}

function faults(errors: readonly ErrorObject[]): string {
    const lines = errors.filter(({ keyword, schemaPath }) => keyword !== "anyOf" && !/anyOf\/1/.test(schemaPath)).map(({ instancePath, message, params, data }) => {
        const { allowedValues, additionalProperty } = params as { allowedValues?: unknown[]; additionalProperty?: string };
        const extra = allowedValues ? ` (${allowedValues.join(", ")})` : additionalProperty === undefined ? "" : `: ${additionalProperty}`;
        const lost = typeof data === "number" && Number.isInteger(data) && !Number.isSafeInteger(data) ? ` ${asText}` : "";
        return `${instancePath === "" ? "the arguments" : instancePath.slice(1)}: ${message ?? ""}${extra}${lost}`;
    });
    const more = lines.length > 20 ? [`and ${lines.length - 20} more`] : [];
    return [...new Set(lines.slice(0, 20)), ...more].join("\n");
}
