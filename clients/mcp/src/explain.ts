// Why a plant does what it does: what its values say, held against what each type needs to work.

import { type Json, type JsonObject, named, type Names, netsOf, passagesOf, type Report, type ReportBranch, reportNames, textOf } from "../../typescript/src/index.js";
import type { Description } from "./description.js";
import { readReport } from "./plant.js";
import { type Ask, ToolError } from "./service.js";
import { rowsOf } from "./startvalues.js";
import type { Row, Work } from "./tool.js";

/** What an item must be, by the English names of types. `least` is the value that is not enough any more. */
interface Need {
    readonly types: readonly string[];
    readonly item: string;
    readonly least: number;
    readonly finding: string;
}

const needs: readonly Need[] = [
    { types: ["pump"], item: "Power", least: 0, finding: "The pump has no power, so it is off." },
    { types: ["pump"], item: "Head", least: 0, finding: "The pump has no head, so it is off." },
    { types: ["compressor"], item: "Power", least: 0, finding: "The compressor has no power, so its circuit does not cool." },
    { types: ["cooling tower"], item: "Power", least: 0, finding: "The tower's Power is 0: the heat has no sink there." },
    { types: ["fan coil", "radiator", "air cooler"], item: "Power", least: 0, finding: "Power is 0: it moves no heat to or from its room." },
    { types: ["plate heat exchanger", "condenser", "evaporator"], item: "Area", least: 0, finding: "Area is 0: no heat passes." },
    { types: ["valve", "expansion valve"], item: "Opening", least: 0, finding: "The valve is closed." },
];

/** Why a compressor stopped itself, by its Trip, and what an element reports, by its Alarm. */
const trips = [
    "", "it condensed above 65 °C", "it evaporated below -45 °C", "the second side of a condenser does not flow",
    "the second side of an evaporator does not flow", "nothing circulates in its circuit",
];
const alarms = [
    "", "a compressor stopped itself", "water is near freezing", "the pressure is too low", "the pump is on and moves nothing",
    "it is below TempLow", "it is above TempHigh",
];

const vessels = ["expansion tank", "receiver"];
const stillFlow = 1e-6;
const mostElements = 400;
const copper = ["copper pipe", "copper reducer"];

interface Read {
    readonly element: string;
    readonly key: string;
    readonly type: string;
    readonly items: Readonly<Record<string, number>>;
    readonly flows: readonly number[];
}

async function readElement(ask: Ask, project: string, id: string, key: string, type: string): Promise<Read> {
    const rows = rowsOf(await ask("VarInfoGet", `${project}_${id}`));
    const items = rows.filter((each) => "Item" in each).map((each): [string, number] => [textOf(each["Item"]), Number(each["Value"])]);
    const flows = rows.filter((each) => textOf(each["Name"]).endsWith("_FLOW")).map((each) => Number(each["Value"]));
    return { element: id, key, type, items: Object.fromEntries(items), flows };
}

function finding(each: Pick<Read, "element">, text: string, more: JsonObject = {}): JsonObject {
    return { element: each.element, finding: text, ...more };
}

/** The finding of an item that is a code, with the code's meaning. */
function codeFindings(each: Read, item: string, meanings: readonly string[], text: (meaning: string) => string): JsonObject[] {
    const value = each.items[item] ?? 0;
    return value === 0 ? [] : [finding(each, text(meanings[value] ?? "see vorn://docs/plant.md"), { item, value })];
}

function ownFindings(each: Read): JsonObject[] {
    const trip = codeFindings(each, "Trip", trips, (cause) => `The compressor stopped itself: ${cause}. Mend that, then write 0 to Trip.`);
    const reported = trip.length > 0 ? trip : codeFindings(each, "Alarm", alarms, (state) => `It reports an alarm: ${state}.`);
    const lacking = needs.filter(({ types, item, least }) => types.includes(each.type) && (each.items[item] ?? Infinity) <= least)
        .map(({ item, finding: text }) => finding(each, text, { item, value: each.items[item] ?? 0 }));
    const found = [...lacking, ...reported];
    // What holds a net's pressure may well be still.
    const still = !vessels.includes(each.type) && each.flows.length > 1 && each.flows.every((flow) => Math.abs(flow) < stillFlow);
    return found.length === 0 && still ? [finding(each, "Nothing flows through it: look for an idle pump or a closed valve in its net.")] : found;
}

/** Loops of compressors without copper are water, in which nothing evaporates. */
function circuitFindings(branches: readonly ReportBranch[], types: ReadonlyMap<string, string>, names: Names): JsonObject[] {
    const { nets, alone } = netsOf(branches);
    return [...nets.map((net) => net.branches), ...alone.map((branch) => [branch])].flatMap((group) => {
        const modules = [...new Set(group.flatMap((branch) => [branch.Front_InstanceID, ...passagesOf(branch).map(([module]) => module), branch.Post_InstanceID]))];
        const compressor = modules.find((module) => types.get(module) === "compressor");
        if (compressor === undefined || group[0]?.Type !== 0 || modules.some((module) => copper.includes(types.get(module) ?? ""))) return [];
        return [finding({ element: named(names, compressor) }, "No copper pipe is in its circuit, so this circuit is water and does not cool: give its connections port sizes of copper (vorn://docs/fittings.md).")];
    });
}

async function projectValues(ask: Ask, description: Description, project: string): Promise<JsonObject> {
    const names = Object.keys(description.catalogue.projectVariables);
    const replies = rowsOf(await ask("GetBatch", "json", JSON.stringify({ VarName: names.map((name) => `${project}_${name}`) })));
    return Object.fromEntries(names.map((name, place): [string, Json] => [name, replies[place] ?? null]));
}

function projectFindings(values: JsonObject): JsonObject[] {
    const counts = textOf(values["GCounts"]).split(",").map(Number);
    return [
        ...(Number(values["GStep"]) === 0 ? [{ finding: "No step was made since the start: all values are those that the run begins with." }] : []),
        ...((counts[3] ?? 0) > 0 ? [{ finding: `${counts[3] ?? 0} nets are not solved: they keep their last values.` }] : []),
    ];
}

async function readElements(ask: Ask, description: Description, project: string, report: Report, only: string, progress: (done: number, total: number) => void): Promise<{ read: Read[]; types: Map<string, string>; names: Names }> {
    const { modules, names } = await reportNames(ask, project, report);
    const english = new Map(description.catalogue.types.map((type) => [textOf(type.VornModuleID), type.english]));
    const types = new Map(report.DeviceInfo.map((device, place) => [`MOD${modules[place] ?? place}`, english.get(device.VornModuleID) ?? device.VornModuleID]));
    const plain = /pipe|duct|wire|reducer/;
    const chosen = report.DeviceInfo.map((device, place) => ({ id: device.InstanceID, key: `MOD${modules[place] ?? place}` }))
        .filter(({ id, key }) => (only === "" ? !plain.test(types.get(key) ?? "") : only === id || only === key));
    if (chosen.length === 0) throw new ToolError(only === "" ? "The plant has no devices." : `The plant has no module ${only}.`);
    const read: Read[] = [];
    for (const { id, key } of chosen.slice(0, mostElements)) {
        read.push(await readElement(ask, project, id, key, types.get(key) ?? ""));
        progress(read.length, Math.min(chosen.length, mostElements));
    }
    return { read, types, names };
}

const inside = ["InsideTemperature", "OutsideTemperature", "BKT_TEMP"];

const explainValues: Work = ({ description, service }, args, { progress }) => service.together(async (ask) => {
    const project = textOf(args["project"]);
    const report = await readReport(ask, project);
    const only = textOf(args["element"]);
    const { read, types, names } = await readElements(ask, description, project, report, only, (done, total) => progress(done, total, "Elements are read."));
    const values = await projectValues(ask, description, project);
    const temperatures = read.map((each) => ({ element: each.element, ...Object.fromEntries(Object.entries(each.items).filter(([item]) => inside.includes(item))) }))
        .filter((each) => Object.keys(each).length > 1);
    const heatSinks = read.filter(({ type, items }) => type === "cooling tower" && (items["Power"] ?? 0) > 0).length;
    const needsSink = [...types.values()].includes("condenser") && ![...types.values()].includes("cooling tower");
    return {
        findings: [
            ...projectFindings(values), ...read.flatMap(ownFindings), ...(only === "" ? circuitFindings(report.BranchInfo, types, names) : []),
            ...(only === "" && needsSink && heatSinks === 0 ? [{ finding: "No cooling tower is there: the condensers have no heat sink." }] : []),
        ],
        temperatures, project: values, elements: read.length,
    };
});

export const explainRow: Row = {
    name: "explain_values", uses: ["VarInfoGet", "PjtInfoChk", "GetBatch"], whole: true, work: explainValues,
    idempotent: true, required: [], gives: { findings: { type: "array" }, temperatures: { type: "array" }, project: { type: "object" } },
    text: "Reads the devices' values and names what keeps the plant from working, such as Area 0, a pump without power, an alarm or a circuit "
        + "without copper; then the temperatures of rooms and stores.",
    also: { element: { type: "string", minLength: 1, description: "Only this module: its InstanceID or number." } },
};
