// The project document that a tool is given: what is wrong with it is told before anything is sent.

import { readFileSync } from "node:fs";
import { join } from "node:path";
import { isObject, type JsonObject, readJson, textOf, without } from "../../typescript/src/index.js";
import type { Description } from "./description.js";
import { checker } from "./schema.js";
import { forAssistants } from "./schema.js";
import { ToolError } from "./service.js";

const schemaName = "project_document.schema.json";
const mostFaults = 20;
const mostBytes = 37;

/** The document that the arguments give: as an object, as a text, or as the name of an example. Throws ToolError. */
export function documentOf(description: Description, args: JsonObject): JsonObject {
    const given = ["document", "example"].filter((name) => name in args);
    if (given.length !== 1) throw new ToolError("Give either document or example.");
    let document = args["document"];
    if (typeof args["example"] === "string") {
        document = readFileSync(join(description.root, "examples", `${args["example"]}.json`), "utf8");
    }
    try {
        if (typeof document === "string") document = readJson(document);
    } catch (error) {
        throw new ToolError(`The document is no JSON: ${String(error)}`);
    }
    if (!isObject(document)) throw new ToolError("The document is no JSON object.");
    return document;
}

/** The objects of one of the document's lists. */
export function entriesOf(document: JsonObject, list: "DeviceInfo" | "ConnectionInfo"): JsonObject[] {
    const entries = document[list];
    return Array.isArray(entries) ? entries.filter(isObject) : [];
}

function textFaults(entry: JsonObject): string[] {
    return Object.entries(entry).flatMap(([member, value]) =>
        (typeof value === "string" && Buffer.byteLength(value) > mostBytes
            ? [`${member} ${JSON.stringify(value)} has more than ${mostBytes} bytes of UTF-8, and the service refuses the whole document`] : []));
}

function endFaults(connection: JsonObject, devices: ReadonlySet<string>): string[] {
    return ["StartDeviceInstanceID", "EndDeviceInstanceID"].flatMap((member) => (devices.has(textOf(connection[member])) ? []
        : [`connection ${textOf(connection["ConnectionID"])}: ${member} ${JSON.stringify(connection[member] ?? null)} is no device of the document`]));
}

function typeFaults(device: JsonObject, known: ReadonlySet<string>): string[] {
    const type = textOf(device["VornModuleID"] ?? device["DeviceID"]);
    const lost = !known.has(type) && [...known].some((each) => each.length >= 16 && String(Number(each)) === String(Number(type)));
    return lost ? [`device ${textOf(device["InstanceID"])}: the type ${type} is what a double makes of one above 2^53; write it as a text of digits`] : [];
}

/** What a schema cannot say of a document. */
function meantFaults(document: JsonObject, known: ReadonlySet<string>): string[] {
    const devices = entriesOf(document, "DeviceInfo");
    const connections = entriesOf(document, "ConnectionInfo");
    const seen = new Set<string>();
    const twice = devices.map(({ InstanceID }) => textOf(InstanceID)).filter((name) => seen.size === seen.add(name).size);
    const rooms = devices.filter(({ RoomID }) => RoomID !== undefined && textOf(RoomID) !== "0" && !seen.has(textOf(RoomID)));
    return [
        ...[...devices, ...connections].flatMap(textFaults), ...devices.flatMap((each) => typeFaults(each, known)),
        ...twice.map((name) => `InstanceID ${JSON.stringify(name)} is given twice`),
        ...rooms.map((each) => `device ${textOf(each["InstanceID"])}: its room ${textOf(each["RoomID"])} is no device of the document`),
        ...connections.flatMap((each) => endFaults(each, seen)),
    ];
}

/** A test of documents. It throws ToolError that names each fault; what passes, the service takes. */
export function documentChecker(description: Description): (document: JsonObject) => void {
    const schema = without(forAssistants(description.schemas.get(schemaName) ?? {}) as JsonObject, ["$id"]);
    const faultsOf = checker(schema);
    const known = new Set(description.catalogue.types.map(({ VornModuleID }) => textOf(VornModuleID)));
    return (document) => {
        const form = faultsOf(document);
        if (form !== "") throw new ToolError(`The document does not fit its schema (vorn://schemas/${schemaName}), so nothing was sent:\n${form}`);
        const faults = meantFaults(document, known);
        const more = faults.length > mostFaults ? [`and ${faults.length - mostFaults} more`] : [];
        if (faults.length > 0) throw new ToolError(["The document is faulty, so nothing was sent:", ...faults.slice(0, mostFaults), ...more].join("\n"));
    };
}
