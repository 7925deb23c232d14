// What a run begins with: items of elements in cache set 0.

import { isObject, type Json, type JsonObject, readJson, textOf } from "../../typescript/src/index.js";
import type { Description } from "./description.js";
import { entriesOf } from "./document.js";
import { type Ask, ToolError } from "./service.js";
import type { Kit } from "./tool.js";

interface Row extends JsonObject {
    Row: number;
    Item: string;
}

export const rowsOf = (reply: string): JsonObject[] => readJson(reply) as JsonObject[];

/** Writes one item of an element in one cache set; gives the item's row as it is then. Throws ToolError for an item that it does not have. */
export async function writeStored(ask: Ask, name: string, item: string, set: number, value: number): Promise<JsonObject> {
    const row = async (): Promise<Row> => {
        const rows = rowsOf(await ask("VarCacheGet", name)) as Row[];
        const found = rows.find(({ Item }) => Item === item);
        if (found) return found;
        throw new ToolError(`${name} has no item ${item}. It has: ${rows.map(({ Item }) => Item).join(", ") || "none"}.`);
    };
    const messages = { Row: (await row()).Row, Column: set + 1, Value: String(value) };
    await ask("VarCacheSet", name, JSON.stringify(messages));
    return await row();
}

/** The element's row of each item, by the catalogue, so that nothing has to be asked. */
function rowIn(description: Description, type: string, item: string): number {
    const found = description.catalogue.types.find(({ VornModuleID }) => textOf(VornModuleID) === type);
    const row = found?.items.indexOf(item) ?? -1;
    if (row < 0) throw new ToolError(`startValues: ${found?.english ?? type} has no item ${item}. It has: ${found?.items.join(", ") ?? "none known"}.`);
    return row;
}

/** The values of each element of the document: those of its type, then its own. Throws ToolError for a key that names nothing. */
function valuesByElement(description: Description, document: JsonObject, given: JsonObject): Map<JsonObject, JsonObject> {
    const english = new Map(description.catalogue.types.map((type) => [textOf(type.VornModuleID), type.english]));
    const devices = entriesOf(document, "DeviceInfo");
    const byElement = new Map<JsonObject, JsonObject>();
    const add = (device: JsonObject, values: Json): void => {
        byElement.set(device, { ...byElement.get(device), ...(isObject(values) ? values : {}) });
    };
    const own = new Set(devices.map(({ InstanceID }) => textOf(InstanceID)));
    for (const [key, values] of Object.entries(given)) {
        if (own.has(key)) continue;
        const of = devices.filter((device) => english.get(typeOf(device)) === key);
        if (of.length === 0) throw new ToolError(`startValues: the document has neither an InstanceID nor a type ${JSON.stringify(key)}.`);
        for (const device of of) add(device, values ?? null);
    }
    for (const device of devices) add(device, given[textOf(device["InstanceID"])] ?? null);
    return byElement;
}

const typeOf = (device: JsonObject): string => textOf(device["VornModuleID"] ?? device["DeviceID"]);

/** Writes the start values of a plant that was just made of the document. */
export async function writeStartValues({ description }: Kit, ask: Ask, project: string, document: JsonObject, given: Json | undefined): Promise<JsonObject> {
    if (!isObject(given)) return {};
    let written = 0;
    for (const [device, values] of valuesByElement(description, document, given)) {
        for (const [item, value] of Object.entries(values)) {
            const messages = { Row: rowIn(description, typeOf(device), item), Column: 1, Value: textOf(value) };
            await ask("VarCacheSet", `${project}_${textOf(device["InstanceID"])}`, JSON.stringify(messages));
            ++written;
        }
    }
    return { startValues: written };
}
