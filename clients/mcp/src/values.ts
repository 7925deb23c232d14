// Tools for variables and the values of elements.

import { setTimeout as sleep } from "node:timers/promises";
import { commandOf, entryFailure, type Json, type JsonObject, readJson, textOf, type Value, valueRead, valueText } from "../../typescript/src/index.js";
import type { Command, Description } from "./description.js";
import { ToolError } from "./service.js";
import { rowsOf, writeStored } from "./startvalues.js";
import type { Kit, Row, Work } from "./tool.js";

function entryOf(description: Description, command: Command, text: string): Json {
    const failure = entryFailure(description, command, text);
    return failure ? { failure: text, meaning: failure.meaning } : valueRead(text);
}

async function readAll({ description, service }: Kit, names: readonly string[]): Promise<JsonObject> {
    const replies = readJson(await service.ask("GetBatch", "json", JSON.stringify({ VarName: names }))) as string[];
    const command = commandOf(description, "GetBatch");
    return Object.fromEntries(names.map((name, index) => [name, entryOf(description, command, replies[index] ?? "")]));
}

const namesOf = (args: JsonObject): string[] => args["VarName"] as string[];

function textToWrite(value: Value): string {
    try {
        return valueText(value);
    } catch (error) {
        throw new ToolError((error as Error).message);
    }
}

const write: Work = async (kit, args) => {
    const names = namesOf(args);
    const values = args["VarValue"] as (string | number)[];
    if (names.length !== values.length) throw new ToolError(`VarName has ${names.length} entries and VarValue ${values.length}.`);
    const messages = JSON.stringify({ VarName: names, VarValue: values.map(textToWrite) });
    const replies = readJson(await kit.service.ask("SetBatch", "json", messages)) as string[];
    const command = commandOf(kit.description, "SetBatch");
    const failed = names.flatMap((name, index): [string, Json][] => {
        const failure = entryFailure(kit.description, command, replies[index] ?? "");
        return failure ? [[name, { failure: replies[index] ?? "", meaning: failure.meaning }]] : [];
    });
    return { written: names.length - failed.length, ...(failed.length > 0 ? { failed: Object.fromEntries(failed) } : {}), now: await readAll(kit, names) };
};

const watch: Work = async (kit, args, { signal, progress }) => {
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
        progress(sample + 1, samples, "Variables are read.");
    }
    return { seconds, values: series };
};

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

const setUnsaved: Work = ({ service }, args) => service.together((ask) =>
    writeStored(ask, `${textOf(args["project"])}_${textOf(args["element"])}`, textOf(args["item"]), Number(args["set"] ?? 0), Number(args["value"])));

/** The batch's schema holds no number of entries; a reply that an assistant reads has one. */
const names: JsonObject = {
    type: "array", items: { type: "string", minLength: 1 }, minItems: 1, maxItems: 500,
    description: "The names of the variables: PROJECT_GTemp of the project, PROJECT_MOD7_Opening of an element, "
        + "PROJECT_MOD7_IM0_TEMP of its port 0. element_values tells those of an element.",
};
const required = ["VarName"];

export const valueRows: readonly Row[] = [
    {
        name: "read_variables", uses: ["GetBatch"], also: { VarName: names }, required, whole: true, gives: {},
        text: "Reads the run values of many variables with one request. A name that is not known is told in its place.",
        work: async (kit, args) => readAll(kit, namesOf(args)),
    },
    {
        name: "write_variables", uses: ["SetBatch"], also: { VarName: names }, required: ["VarName"], work: write, whole: true, gives: { written: { type: "integer" }, now: { type: "object" } },
        text: "Writes run values and reads them back. A run's start copies cache set 0 over them: use set_unsaved_value for what a run begins with.",
    },
    {
        name: "watch_variables", uses: ["GetBatch"], required, whole: true, work: watch, gives: { seconds: { type: "array" }, values: { type: "object" } },
        text: "Reads variables several times, at most for a minute, and gives their course.",
        also: {
            VarName: { ...names, maxItems: 50 },
            samples: { type: "integer", minimum: 2, maximum: 60, default: 5, description: "How many readings." },
            everyMs: { type: "integer", minimum: 50, maximum: 1000, default: 1000, description: "From one to the next, in ms." },
        },
    },
    {
        name: "element_values", uses: ["VarInfoGet", "VarCacheGet"], whole: true, work: elementValues, gives: { items: { type: "array" }, ports: { type: "object" } },
        text: "The items of a module or node with their variables' names, units, run values and the three cache sets, and the values of its ports.",
    },
    {
        name: "set_unsaved_value", uses: ["VarCacheSet", "VarCacheGet"], hides: ["Row", "Column", "Value"], whole: true, work: setUnsaved,
        required: ["item", "value"], gives: { Sets: { type: "array" } },
        text: "Writes one item in one cache set, and gives the item's row as it is then. A run begins with set 0. The value lasts until "
            + "close_project: nothing stores it; make_plant has start values.",
        also: {
            item: { type: "string", description: "The item, such as Opening or Power; element_values tells those of an element." },
            set: { type: "integer", enum: [0, 1, 2], default: 0, description: "The cache set." },
            value: { type: "number", description: "The value, in the item's unit." },
        },
    },
];
