// Tools for whole plants: make one from a document, judge it, read it.

import { readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";
import type { Description, Failure } from "./description.js";
import { piecesOf } from "./description.js";
import { page, pageProperties } from "./page.js";
import { branchLine, type Branch, type Device, named, type Names, netsOf, readNames, readReport, type Report } from "./report.js";
import { checker, inputSchema } from "./schema.js";
import { type Ask, Refused, ToolError } from "./service.js";
import type { Kit, Row, Work } from "./tool.js";
import { isObject, type Json, type JsonObject, readJson, textOf, writeJson } from "./wire.js";

interface Verdict {
    readonly failure: Failure;
    readonly reply: string;
}

/** Asks for the verdict: null for a complete plant. The report that follows at once is of the same analysis. */
async function judge(ask: Ask, project: string): Promise<Verdict | null> {
    try {
        await ask("NetAccess", project);
        return null;
    } catch (error) {
        if (error instanceof Refused && error.failure.kind === "verdict") return { failure: error.failure, reply: error.reply };
        throw error;
    }
}

function explain(verdict: Verdict | null, report: Report, names: Names, description: Description): JsonObject {
    if (!verdict) return { complete: true };
    const pieces = piecesOf(verdict.failure.text, verdict.reply) ?? {};
    const element = pieces["module"] ?? pieces["node"] ?? "";
    const type = description.catalogue.types.find(({ VornModuleID }) => VornModuleID === pieces["type"]);
    const branch = report.BranchInfo.find((each) => String(each.Branch) === pieces["branch"]);
    return {
        complete: false, verdict: verdict.reply.trim(), meaning: verdict.failure.meaning, todo: verdict.failure.todo,
        element: named(names, element), ...(type ? { type: `${type.DeviceName} (${type.english})`, ports: [...type.ports] } : {}),
        ...(pieces["aisle"] === undefined ? {} : { aisle: pieces["aisle"] }),
        ...(pieces["port"] === undefined ? {} : { port: pieces["port"] }),
        ...(branch ? { branch: branchLine(names, branch) } : {}),
    };
}

interface Judged {
    readonly verdict: JsonObject;
    readonly report: Report;
    readonly names: Names;
}

async function judged({ description }: Kit, ask: Ask, project: string): Promise<Judged> {
    const verdict = await judge(ask, project);
    const report = await readReport(ask, project);
    const names = await readNames(ask, project, report);
    return { verdict: explain(verdict, report, names, description), report, names };
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

/** The document that the arguments give: as an object, as a text, or as the name of an example. */
function documentOf({ description }: Kit, args: JsonObject): JsonObject {
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

/** The first of a list, with how many more there are. */
function first(list: readonly string[], most: number): Json[] {
    return list.length > most ? [...list.slice(0, most), `and ${list.length - most} more`] : [...list];
}

const mostNets = 40;
const mostNames = 12;

/** What of a document is not in the plant that was made from it, told by identities. */
function leftOut(document: JsonObject, report: Report, names: Names): JsonObject {
    const there = new Set([...report.DeviceInfo, ...report.NodeInfo].map(({ InstanceID }) => InstanceID));
    const identities = (list: Json | undefined, member: string): string[] => (Array.isArray(list) ? list : [])
        .map((each) => (isObject(each) ? textOf(each[member]) : "")).filter((name) => name !== "");
    const missing = (name: string): boolean => !there.has(name);
    const devices = identities(document["DeviceInfo"], "InstanceID").filter(missing);
    const pipes = identities(document["ConnectionInfo"], "ConnectionID");
    const connections = pipes.filter(missing);
    const numbers = new Map([...names].map(([number, name]) => [name, number]));
    const linked = (member: string): Set<Json | undefined> => new Set(report.ConnectionInfo.map((link) => link[member]));
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
    const command = description.commands.get("PjtSent");
    if (!command) throw new Error("the description has no PjtSent");
    const schema = inputSchema(description, command);
    const documentFaults = checker({ ...schema["properties"] as JsonObject, ...schema, required: ["document"] });
    const examples = readdirSync(join(description.root, "examples")).filter((name) => name.endsWith(".json"));
    const { document } = schema["properties"] as JsonObject;
    const work: Work = async (kit, args) => {
        const project = textOf(args["project"]);
        const content = documentOf(kit, args);
        const faults = documentFaults({ project, document: content });
        if (faults !== "") throw new ToolError(`The document does not fit its schema:\n${faults}`);
        return kit.service.together(async (ask) => {
            if ((await ask("Fdp", project)) !== "1") await ask("Create", project);
            await ask("PjtSent", project, writeJson(content, kit.description.spelling));
            const { verdict, report, names } = await judged(kit, ask, project);
            return { made: true, ...verdict, ...counts(report), ...leftOut(content, report, names) };
        });
    };
    return {
        name: "make_plant", uses: ["PjtSent", "Create", "Fdp", "NetAccess", "PjtInfoChk"], title: "Make a plant from a document", idempotent: true,
        text: "Makes the project, if it is not open, sends the document, judges the plant and tells what was left out. "
            + "This is the way to make or change a plant; a stored plant of the same name is replaced.",
        also: {
            document: { ...document as JsonObject, type: ["object", "string"], description: "The project document, or its JSON text." },
            example: { enum: examples.map((name) => name.replace(".json", "")), description: "In its place: an example plant." },
        },
        work,
    };
}

const parts = { devices: "DeviceInfo", nodes: "NodeInfo", connections: "ConnectionInfo", branches: "BranchInfo" } as const;

const readTopology: Work = async ({ service }, args) => {
    const project = textOf(args["project"]);
    const part = args["part"] as keyof typeof parts;
    const { list, names } = await service.together(async (ask) => {
        const report = await readReport(ask, project);
        return { list: report[parts[part]] as readonly JsonObject[], names: await readNames(ask, project, report) };
    });
    const contains = typeof args["contains"] === "string" ? args["contains"] : "";
    const lines = part === "branches"
        ? (list as readonly Branch[]).map((branch): Json => ({ branch: branch.Branch, type: branch.Type, flow: branchLine(names, branch) }))
        : list.map((entry): Json => namedEntry(entry, names));
    return page(lines.filter((line) => JSON.stringify(line).includes(contains)), args);
};

/** An entry with the names of its ends behind their numbers. */
function namedEntry(entry: JsonObject, names: Names): JsonObject {
    const ends = ["F_InstanceID", "S_InstanceID"].filter((member) => member in entry);
    return { ...entry, ...Object.fromEntries(ends.map((member) => [member, named(names, textOf(entry[member]))])) };
}

function countTypes(devices: readonly Device[], description: Description): JsonObject {
    const english = new Map(description.catalogue.types.map((type) => [type.VornModuleID, type.english]));
    const found = new Map<string, number>();
    for (const { VornModuleID } of devices) {
        const type = english.get(String(VornModuleID)) ?? String(VornModuleID);
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
            name: "check_plant", uses: ["NetAccess", "PjtInfoChk", "VarInfoGet"], idempotent: true, work: check,
            text: "Tells whether the plant is complete, and explains the first fault: its element, its branch, and what to do.",
        },
        {
            name: "plant_summary", uses: ["NetAccess", "PjtInfoChk", "VarInfoGet"], idempotent: true, work: summarize, whole: true,
            title: "Summarize a plant by net and branch",
            also: { net: { type: "integer", minimum: 0, description: "Only the branches of this net." }, ...pageProperties },
            text: "The verdict, the numbers of elements, the modules by type, of each net its nodes and the modules at which it ends, and the "
                + "branches net by net, each as one line in the order of the flow. Loops between modules and information belong to no net. "
                + "Branches come in pages: go on with offset = next.",
        },
        {
            name: "read_topology", uses: ["PjtInfoChk", "VarInfoGet"], idempotent: true, work: readTopology,
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
