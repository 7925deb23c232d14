// Tools for whole plants: make one from a document, judge it, read it.

import { readdirSync } from "node:fs";
import { join } from "node:path";
import {
    type Json, type JsonObject, named, type Names, netsOf, passagesOf, Refused, type Report, type ReportBranch, type ReportElement, reportNames,
    reportRead, textOf, type Verdict, verdictRead, writeJson,
} from "../../typescript/src/index.js";
import type { Description } from "./description.js";
import { documentChecker, documentOf, entriesOf } from "./document.js";
import { page, pageGives, pageProperties } from "./page.js";
import { type Ask, ToolError } from "./service.js";
import { writeStartValues } from "./startvalues.js";
import type { Call, Kit, Row, Work } from "./tool.js";

/** Reads the report of the analysis that was made last. Throws ToolError for one that cannot be read. */
export async function readReport(ask: Ask, project: string): Promise<Report> {
    const report = reportRead(await ask("PjtInfoChk", project));
    if (!report) throw new ToolError("The service's report is none that this tool can read.");
    return report;
}

/** A branch in one line, in the order of its flow. */
function branchLine(names: Names, branch: ReportBranch): string {
    const end = (element: string, port: number): string => (element === "None" ? "nothing" : `${named(names, element)} port ${port}`);
    const through = passagesOf(branch).map(([element, aisle]) => named(names, element) + (aisle === 0 ? "" : ` aisle ${aisle}`));
    return [end(branch.Front_InstanceID, branch.FrontPort), ...through, end(branch.Post_InstanceID, branch.PostPort)].join(" > ");
}

interface Meant {
    readonly meaning: string;
    readonly todo: string;
}

/** Asks for the verdict. The report that follows at once is of the same analysis. */
async function judge(ask: Ask, project: string): Promise<{ verdict: Verdict; meant: Meant | null }> {
    try {
        return { verdict: verdictRead(await ask("NetAccess", project)), meant: null };
    } catch (error) {
        if (error instanceof Refused && error.failure.kind === "verdict") return { verdict: verdictRead(error.reply), meant: error.failure };
        throw error;
    }
}

function explain(verdict: Verdict, meant: Meant | null, report: Report, names: Names, description: Description): JsonObject {
    if (!meant) return { complete: true };
    const type = description.catalogue.types.find(({ VornModuleID }) => textOf(VornModuleID) === verdict.type);
    const branch = report.BranchInfo.find((each) => each.Branch === verdict.branch);
    return {
        complete: false, verdict: verdict.text, meaning: meant.meaning, todo: meant.todo, element: named(names, verdict.key ?? ""),
        ...(type ? { type: `${type.DeviceName} (${type.english})`, ports: [...type.ports] } : {}),
        ...(verdict.aisle === null ? {} : { aisle: verdict.aisle }), ...(verdict.port === null ? {} : { port: verdict.port }),
        ...(branch ? { branch: branchLine(names, branch) } : {}),
    };
}

interface Judged {
    readonly verdict: JsonObject;
    readonly report: Report;
    readonly names: Names;
}

async function judged({ description }: Kit, ask: Ask, project: string): Promise<Judged> {
    const { verdict, meant } = await judge(ask, project);
    const report = await readReport(ask, project);
    const { names } = await reportNames(ask, project, report);
    return { verdict: explain(verdict, meant, report, names, description), report, names };
}

function counts(report: Report): JsonObject {
    return {
        modules: report.DeviceInfo.length, nodes: report.NodeInfo.length,
        connections: report.ConnectionInfo.length, branches: report.BranchInfo.length,
    };
}

const check: Work = (kit, args) => kit.service.together(async (ask) => {
    const { verdict, report } = await judged(kit, ask, textOf(args["project"]));
    return { ...verdict, ...counts(report) };
});

/** The first of a list, with how many more there are. */
function first(list: readonly string[], most: number): Json[] {
    return list.length > most ? [...list.slice(0, most), `and ${list.length - most} more`] : [...list];
}

const mostNets = 40;
const mostNames = 12;

/** What of a document is not in the plant that was made from it, told by identities. */
function leftOut(document: JsonObject, report: Report, names: Names): JsonObject {
    const there = new Set([...report.DeviceInfo, ...report.NodeInfo].map(({ InstanceID }) => InstanceID));
    const identities = (list: "DeviceInfo" | "ConnectionInfo", member: string): string[] =>
        entriesOf(document, list).map((each) => textOf(each[member])).filter((name) => name !== "");
    const missing = (name: string): boolean => !there.has(name);
    const devices = identities("DeviceInfo", "InstanceID").filter(missing);
    const pipes = identities("ConnectionInfo", "ConnectionID");
    const connections = pipes.filter(missing);
    const numbers = new Map([...names].map(([number, name]) => [name, number]));
    const linked = (member: "F_InstanceID" | "S_InstanceID"): Set<string> => new Set(report.ConnectionInfo.map((link) => link[member]));
    const [starts, ends] = [linked("S_InstanceID"), linked("F_InstanceID")];
    const looseEnds = pipes.filter((name) => !missing(name)).flatMap((name) => {
        const number = numbers.get(name) ?? name;
        return [...(starts.has(number) ? [] : [`start of ${name}`]), ...(ends.has(number) ? [] : [`end of ${name}`])];
    });
    if (devices.length + connections.length + looseEnds.length === 0) return {};
    return {
        leftOut: {
            devices: first(devices, mostNames), connections: first(connections, mostNames), looseEnds: first(looseEnds, mostNames),
            meaning: "The service passes over devices of unknown types, connections or ends whose devices or ports do not exist, are taken, or "
                + "lead the wrong way, and what it has no room for. Look at module_types and at vorn://docs/limits.md.",
        },
    };
}

function makePlant(description: Description): Row {
    const checkDocument = documentChecker(description);
    const examples = readdirSync(join(description.root, "examples")).filter((name) => name.endsWith(".json"));
    const work: Work = async (kit, args, call) => {
        const content = documentOf(description, args);
        checkDocument(content);
        return kit.service.together((ask) => makeFrom(kit, ask, content, args, call));
    };
    return {
        name: "make_plant", uses: ["PjtSent", "Create", "Fdp", "NetAccess", "PjtInfoChk", "VarCacheSet", "LuaSent"],
        idempotent: true, whole: true, hides: ["document"], required: [],
        text: "The way to make or change a plant: replaces the project by the document and stores it, writes start values and script, and judges it. "
            + "A faulty document is refused before anything is sent. Start values are not stored: give them each time.",
        also: {
            document: {
                type: ["object", "string"],
                description: `The project document, or its JSON text: vorn://schemas/project_document.schema.json. VornModuleID as a text of digits.`,
            },
            example: { enum: examples.map((name) => name.replace(".json", "")), description: "In its place: an example plant." },
            startValues: {
                type: "object", additionalProperties: { type: "object", additionalProperties: { type: "number" } },
                description: 'What a run begins with, by InstanceID or type (pump): {"pump": {"Power": 3}, "evaporator 1": {"Area": 20}}. The InstanceID wins.',
            },
            script: { type: "string", description: "A Lua script that runs before each step." },
        },
        gives: { made: { type: "boolean" }, complete: { type: "boolean" } },
        work,
    };
}

/** Sends a document that was checked. A project that was made for it is closed again where the service refuses. */
async function makeFrom(kit: Kit, ask: Ask, content: JsonObject, args: JsonObject, call: Call): Promise<JsonObject> {
    const project = textOf(args["project"]);
    const steps = 4;
    const opened = (await ask("Fdp", project)) !== "1";
    if (opened) await ask("Create", project);
    try {
        call.progress(1, steps, "The document is sent.");
        await ask("PjtSent", project, writeJson(content, kit.description.spelling));
        call.progress(2, steps, "Start values are written.");
        const written = await writeStartValues(kit, ask, project, content, args["startValues"]);
        const script = args["script"];
        if (typeof script === "string") await ask("LuaSent", project, JSON.stringify(script));
        call.progress(3, steps, "The plant is judged.");
        const { verdict, report, names } = await judged(kit, ask, project);
        call.progress(steps, steps, "It is made.");
        return { made: true, ...verdict, ...counts(report), ...written, ...leftOut(content, report, names) };
    } catch (error) {
        if (opened) await ask("PjtClose", project);
        if (error instanceof Refused || error instanceof ToolError) {
            throw new ToolError(`${error.message}\n${opened ? "The project was closed again." : "The project stays open."}`);
        }
        throw error;
    }
}

const parts = { devices: "DeviceInfo", nodes: "NodeInfo", connections: "ConnectionInfo", branches: "BranchInfo" } as const;

const readTopology: Work = async ({ service }, args) => {
    const project = textOf(args["project"]);
    const part = args["part"] as keyof typeof parts;
    const { list, names } = await service.together(async (ask) => {
        const report = await readReport(ask, project);
        return { list: report[parts[part]] as unknown as readonly JsonObject[], names: (await reportNames(ask, project, report)).names };
    });
    const contains = typeof args["contains"] === "string" ? args["contains"] : "";
    const lines = part === "branches"
        ? (list as unknown as readonly ReportBranch[]).map((branch): Json => ({ branch: branch.Branch, type: branch.Type, flow: branchLine(names, branch) }))
        : list.map((entry): Json => namedEntry(entry, names));
    return page(lines.filter((line) => JSON.stringify(line).includes(contains)), args);
};

/** An entry with the names of its ends behind their numbers. */
function namedEntry(entry: JsonObject, names: Names): JsonObject {
    const ends = ["F_InstanceID", "S_InstanceID"].filter((member) => member in entry);
    return { ...entry, ...Object.fromEntries(ends.map((member) => [member, named(names, textOf(entry[member]))])) };
}

function countTypes(devices: readonly ReportElement[], description: Description): JsonObject {
    const english = new Map(description.catalogue.types.map((type) => [textOf(type.VornModuleID), type.english]));
    const found = new Map<string, number>();
    for (const { VornModuleID } of devices) {
        const type = english.get(VornModuleID) ?? VornModuleID;
        found.set(type, (found.get(type) ?? 0) + 1);
    }
    return Object.fromEntries(found);
}

const summarize: Work = (kit, args) => kit.service.together(async (ask) => {
    const { verdict, report, names } = await judged(kit, ask, textOf(args["project"]));
    const { nets, alone } = netsOf(report.BranchInfo);
    const name = (element: string): string => named(names, element);
    const lines = [...nets.map(({ branches }) => branches), alone].flatMap((branches, net) =>
        branches.map((branch) => ({ net: net < nets.length ? net : "none", branch: branch.Branch, flow: branchLine(names, branch) })));
    return {
        ...verdict, ...counts(report), modulesByType: countTypes(report.DeviceInfo, kit.description), netNb: nets.length,
        nets: nets.slice(0, mostNets).map((net, number): JsonObject => ({
            net: number, branches: net.branches.length,
            nodes: first(net.nodes.map(name), mostNames), ends: first([...net.ends].map(name), mostNames),
        })),
        branchesByNet: page(lines.filter(({ net }) => args["net"] === undefined || net === args["net"]), args),
    };
});

export function plantRows(description: Description): Row[] {
    return [
        makePlant(description),
        {
            name: "check_plant", uses: ["NetAccess", "PjtInfoChk", "VarInfoGet"], idempotent: true, work: check, whole: true, gives: { complete: { type: "boolean" } },
            text: "Tells whether the plant is complete, and explains the first fault: its element, its branch, and what to do.",
        },
        {
            name: "plant_summary", uses: ["NetAccess", "PjtInfoChk", "VarInfoGet"], idempotent: true, work: summarize, whole: true, gives: { complete: { type: "boolean" }, nets: { type: "array" }, branchesByNet: { type: "object" } },
           
            also: { net: { type: "integer", minimum: 0, description: "Only the branches of this net." }, ...pageProperties },
            text: "The verdict, the modules by type, each net's nodes and ends, and the branches net by net, each a line in the order of the flow. "
                + "Branches come in pages: go on with offset = next.",
        },
        {
            name: "read_topology", uses: ["PjtInfoChk", "VarInfoGet"], idempotent: true, work: readTopology, whole: true, gives: pageGives,
            text: "Reads one part of the topology, page by page: go on with offset = next.",
            required: ["part"],
            also: {
                part: { enum: Object.keys(parts), description: "Which list." },
                contains: { type: "string", description: "Only entries whose text contains this, such as a name or MOD7." },
                ...pageProperties,
            },
        },
    ];
}
