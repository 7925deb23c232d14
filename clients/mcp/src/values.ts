// Tools for variables and the values of elements.

import { setTimeout as sleep } from "node:timers/promises";
import { type Command, commandOf, type Description, entryFailure } from "./description.js";
import { ToolError } from "./service.js";
import type { Kit, Row, Work } from "./tool.js";
import { type Json, type JsonObject, readJson, textOf } from "./wire.js";

const numberText = /^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$/;

/** A value as the service writes it: a number as a number, a list as its numbers. */
function valueOf(text: string): Json {
    if (numberText.test(text)) return Number(text);
    const entries = text.split(",");
    return entries.length > 1 && entries.every((each) => numberText.test(each)) ? entries.map(Number) : text;
}

function entryOf(description: Description, command: Command, text: string): Json {
    const failure = entryFailure(description, command, text);
    return failure ? { failure: text, meaning: failure.meaning } : valueOf(text);
}

async function readAll({ description, service }: Kit, names: readonly string[]): Promise<JsonObject> {
    const replies = readJson(await service.ask("GetBatch", "json", JSON.stringify({ VarName: names }))) as string[];
    const command = commandOf(description, "GetBatch");
    return Object.fromEntries(names.map((name, index) => [name, entryOf(description, command, replies[index] ?? "")]));
}

const namesOf = (args: JsonObject): string[] => args["VarName"] as string[];

const write: Work = async (kit, args) => {
    const names = namesOf(args);
    const values = args["VarValue"] as (string | number)[];
    if (names.length !== values.length) throw new ToolError(`VarName has ${names.length} entries and VarValue ${values.length}.`);
    const wrong = values.find((value) => typeof value === "string" && !value.split(",").every((each) => numberText.test(each.trim())));
    if (wrong !== undefined) throw new ToolError(`${JSON.stringify(wrong)} is neither a number nor numbers with commas: it would write 0.`);
    const messages = JSON.stringify({ VarName: names, VarValue: values.map(String) });
    const replies = readJson(await kit.service.ask("SetBatch", "json", messages)) as string[];
    const command = commandOf(kit.description, "SetBatch");
    const failed = names.flatMap((name, index): [string, Json][] => {
        const failure = entryFailure(kit.description, command, replies[index] ?? "");
        return failure ? [[name, { failure: replies[index] ?? "", meaning: failure.meaning }]] : [];
    });
    return { written: names.length - failed.length, ...(failed.length > 0 ? { failed: Object.fromEntries(failed) } : {}), now: await readAll(kit, names) };
};

const watch: Work = async (kit, args, signal) => {
    const names = namesOf(args);
    const samples = Number(args["samples"] ?? 5);
    const every = Number(args["everyMs"] ?? 1000);
    const start = Date.now();
    const seconds: number[] = [];
    const series: Record<string, Json[]> = Object.fromEntries(names.map((name) => [name, []]));
    for (let sample = 0; sample < samples; ++sample) {
        await sleep(Math.max(0, start + sample * every - Date.now()), undefined, { signal });
        seconds.push((Date.now() - start) / 1000);
        const values = await readAll(kit, names);
        for (const name of Object.keys(series)) series[name]?.push(values[name] ?? null);
    }
    return { seconds, values: series };
};

interface Row_ extends JsonObject {
    Row: number;
    Item: string;
}

const rowsOf = (reply: string): JsonObject[] => readJson(reply) as JsonObject[];

const elementValues: Work = ({ description, service }, args) => service.together(async (ask) => {
    const name = `${textOf(args["project"])}_${textOf(args["element"])}`;
    const variables = rowsOf(await ask("VarInfoGet", name));
    const stored = rowsOf(await ask("VarCacheGet", name));
    const items = variables.filter((each) => "Item" in each).map(({ Row, Item, Name, Value }): JsonObject => ({
        item: Item ?? "", name: Name ?? "", unit: description.catalogue.items[textOf(Item)]?.["unit"] ?? "", run: Value ?? null,
        sets: stored.find((each) => each["Row"] === Row)?.["Sets"] ?? null,
    }));
    const ports = variables.filter((each) => "Port" in each).map(({ Name, Value }): [string, Json] => [textOf(Name), Value ?? null]);
    return { items, ports: Object.fromEntries(ports), portUnits: description.catalogue.portValues };
});

const setStored: Work = ({ service }, args) => service.together(async (ask) => {
    const name = `${textOf(args["project"])}_${textOf(args["element"])}`;
    const row = async (): Promise<Row_> => {
        const rows = rowsOf(await ask("VarCacheGet", name)) as Row_[];
        const found = rows.find(({ Item }) => Item === args["item"]);
        if (found) return found;
        throw new ToolError(`${name} has no item ${textOf(args["item"])}. It has: ${rows.map(({ Item }) => Item).join(", ") || "none"}.`);
    };
    const messages = { Row: (await row()).Row, Column: Number(args["set"]) + 1, Value: textOf(args["value"]) };
    await ask("VarCacheSet", name, JSON.stringify(messages));
    return await row();
});

/** The batch's schema holds no number of entries; a reply that an assistant reads has one. */
const names: JsonObject = {
    type: "array", items: { type: "string", minLength: 1 }, minItems: 1, maxItems: 500,
    description: "The names of the variables: PROJECT_GTemp of the project, PROJECT_MOD7_Opening of an element, "
        + "PROJECT_MOD7_IM0_TEMP of its port 0. element_values tells those of an element.",
};
const required = ["VarName"];

export const valueRows: readonly Row[] = [
    {
        name: "read_variables", uses: ["GetBatch"], also: { VarName: names }, required, whole: true,
        text: "Reads the run values of many variables with one request. A name that is not known is told in its place.",
        work: async (kit, args) => readAll(kit, namesOf(args)),
    },
    {
        name: "write_variables", uses: ["SetBatch"], also: { VarName: names }, required: ["VarName"], work: write,
        text: "Writes run values and reads them back. A run's start copies cache set 0 over them: use set_stored_value for what a run begins with.",
    },
    {
        name: "watch_variables", uses: ["GetBatch"], required, whole: true, work: watch,
        title: "Watch variables for a while", text: "Reads variables several times, at most for a minute, and gives their course.",
        also: {
            VarName: { ...names, maxItems: 50 },
            samples: { type: "integer", minimum: 2, maximum: 60, default: 5, description: "How many readings." },
            everyMs: { type: "integer", minimum: 50, maximum: 1000, default: 1000, description: "From one to the next, in ms." },
        },
    },
    {
        name: "element_values", uses: ["VarInfoGet", "VarCacheGet"], whole: true, work: elementValues, title: "Read all values of an element",
        text: "The items of a module or node with their variables' names, units, run values and the three cache sets, and the values of its ports.",
    },
    {
        name: "set_stored_value", uses: ["VarCacheSet", "VarCacheGet"], hides: ["Row", "Column", "Value"], whole: true, work: setStored,
        title: "Write a stored value of an element", required: ["item", "set", "value"],
        text: "Writes one item in one cache set, and gives the item's row as it is then. A run begins with set 0.",
        also: {
            item: { type: "string", description: "The item, such as Opening or Power; element_values tells those of an element." },
            set: { type: "integer", enum: [0, 1, 2], description: "The cache set." },
            value: { type: "number", description: "The value, in the item's unit." },
        },
    },
];
