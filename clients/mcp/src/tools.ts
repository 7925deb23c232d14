// The table of all tools.

import type { Description } from "./description.js";
import { plantRows, readReport } from "./plant.js";
import { ToolError } from "./service.js";
import { explainRow } from "./explain.js";
import { rowsOf } from "./startvalues.js";
import { type Row, sends, type Shown, type Tool, toolOf, type Work } from "./tool.js";
import { valueRows } from "./values.js";
import { commandOf, type Json, type JsonObject, readJson, textOf } from "../../typescript/src/index.js";

const status: Work = async ({ service }, args) => {
    const address = await service.address();
    const project = typeof args["project"] === "string" ? args["project"] : null;
    return { address, ...(project === null ? {} : { project, open: (await service.ask("Fdp", project)) === "1" }) };
};

const moduleTypes: Work = ({ description: { catalogue } }, args) => {
    const wanted = textOf(args["contains"]).toLowerCase();
    const types = catalogue.types.filter((type) => [type.VornModuleID, type.DeviceName, type.english].some((text) => textOf(text).toLowerCase().includes(wanted)));
    const used = new Set(types.flatMap(({ items }) => items));
    return Promise.resolve({
        types: types.map((type) => ({ ...type, VornModuleID: textOf(type.VornModuleID) })) as unknown as Json, items: Object.fromEntries(Object.entries(catalogue.items).filter(([item]) => used.has(item))),
        nodes: [...catalogue.nodes], portValues: catalogue.portValues, projectVariables: catalogue.projectVariables,
    });
};

const step: Work = ({ service }, args, { progress, signal }) => service.together(async (ask) => {
    const count = Number(args["count"] ?? 1);
    let asked = 0;
    for (; asked < count && !signal.aborted; ++asked) {
        await ask("PjtStep", textOf(args["project"]));
        progress(asked + 1, count, "A step is asked for.");
    }
    return { asked };
});

/** Whether there is such an element: the service says OK to the deletion of one that is not there, too. */
const deleteElement: Work = async (kit, args, call) => {
    const [project, element] = [textOf(args["project"]), textOf(args["element"])];
    const there = await kit.service.together(async (ask) => {
        if (/^LNK\d+$/.test(element)) return (await readReport(ask, project)).ConnectionInfo.some(({ InstanceID }) => InstanceID === element);
        return !/^(MOD|NOD)\d+$/.test(element) || rowsOf(await ask("VarInfoGet", `${project}_${element}`)).length > 0;
    });
    return there ? { deleted: true, ...await sends("DeleteMNL")(kit, args, call) as object } : { deleted: false, reply: "", meaning: `There was no ${element}.` };
};

const picture: Work = async ({ service }, args): Promise<Shown> => {
    const project = textOf(args["project"]);
    const chart = args["of"] === "run";
    const most = Number(args["maxBytes"] ?? 200000);
    const text = await service.ask(chart ? "PjtChartGet" : "PjtPngGet", project);
    const bytes = Buffer.byteLength(text);
    if (bytes > most) throw new ToolError(`The picture has ${bytes} bytes, more than maxBytes ${most}. plant_summary tells the plant in words.`);
    const mimeType = "image/svg+xml";
    const result = { mimeType, bytes };
    if (args["as"] === "text") {
        return { result, content: [{ type: "resource", resource: { uri: `vorn://pictures/${project}/${chart ? "run" : "drawing"}.svg`, mimeType, text } }] };
    }
    return { result, content: [{ type: "image", data: Buffer.from(text).toString("base64"), mimeType }] };
};

const maxBytes: JsonObject = { type: "integer", minimum: 1000, maximum: 2000000, default: 200000, description: "The most bytes." };

const rows: readonly Row[] = [
    {
        name: "status", uses: ["Fdp"], whole: true, required: [], work: status, gives: { address: { type: "string" } },
        text: "The service's address and, with project, whether it is open. Ask first.",
        also: { project: { type: "string", pattern: "^[A-Za-z0-9]{1,64}$", description: "Its name." } },
    },
    {
        name: "module_types", uses: [], whole: true, work: moduleTypes, idempotent: true,
        gives: { types: { type: "array" }, items: { type: "object" }, nodes: { type: "array" } },
        text: "Types with VornModuleID, ports, items and units; node kinds; the project's variables.",
        also: { contains: { type: "string", default: "", description: "Only types whose number or name contains this." } },
    },
    { name: "create_project", uses: ["Create"] },
    { name: "open_project", uses: ["Open"] },
    { name: "close_project", uses: ["PjtClose"] },
    { name: "add_module", uses: ["AddModule"], text: "For a plant of more than a few elements use make_plant." },
    { name: "add_node", uses: ["AddNode"] },
    { name: "add_link", uses: ["AddLink"] },
    {
        name: "move_element", uses: ["MoveMN"], whole: true,
        text: "Moves an element on its page. A coordinate that is left out becomes 0. A number at which no element is gets OK too.",
    },
    {
        name: "delete_element", uses: ["DeleteMNL", "VarInfoGet", "PjtInfoChk"], whole: true, work: deleteElement, gives: { deleted: { type: "boolean" } },
        text: "Deletes an element and says whether there was one. The engine decides on its links; the stand-in deletes them.",
    },
    { name: "run", uses: ["PjtRun"] },
    { name: "pause", uses: ["PjtPause"] },
    {
        name: "step", uses: ["PjtStep"], work: step, gives: { asked: { type: "integer" } },
        also: { count: { type: "integer", minimum: 1, maximum: 1000, default: 1, description: "How many steps, one after the other." } },
    },
    { name: "stop", uses: ["PjtStop"] },
    { name: "save_run_values", uses: ["PjtRunToCache"], whole: true, text: "Copies the run values of all elements into the cache set. A run begins with set 0." },
    { name: "load_run_values", uses: ["PjtCacheToRun"], whole: true, text: "Copies the cache set of all elements into the run values." },
    {
        name: "performance", uses: ["PjtCerGet"],
        gives: { text: { type: "string" } },
        work: async ({ service }, args) => ({ text: textOf((readJson(await service.ask("PjtCerGet", textOf(args["project"]))) as JsonObject)["data"]) }),
    },
    {
        name: "picture", uses: ["PjtPngGet", "PjtChartGet"], work: picture, required: ["of"], whole: true,
        text: "Gives the picture as an image of SVG, or as its text.", gives: { mimeType: { type: "string" }, bytes: { type: "integer" } },
        also: {
            of: { enum: ["drawing", "run"], description: "The plant's drawing, or the chart of its run." }, maxBytes,
            as: { enum: ["image", "text"], default: "image", description: "An image, or the SVG's text." },
        },
    },
];

const allRows = (description: Description): Row[] => [...rows.slice(0, 2), ...plantRows(description), explainRow, ...rows.slice(2), ...valueRows];

/** The description with the names of tools where it tells commands to send, which an assistant cannot. */
export function inTools(description: Description): Description {
    const all = allRows(description);
    const word = (id: string): string => commandOf(description, id).word;
    // A command that is a tool's first one is that tool, before any other tool that uses it, too.
    const names = new Map([...all].reverse().flatMap(({ name, uses }) => uses.map((id): [string, string] => [word(id), name])));
    for (const { name, uses } of [...all].reverse()) if (uses[0] !== undefined) names.set(word(uses[0]), name);
    const spoken = (text: string): string => text.replace(/`([A-Za-z]+)`|\b([A-Z][a-z]+[A-Z]\w+)\b/g,
        (whole, quoted?: string, bare?: string) => names.get(quoted ?? bare ?? "") ?? whole);
    return {
        ...description,
        commands: new Map([...description.commands].map(([id, command]) => [id, { ...command, text: spoken(command.text) }])),
        failures: Object.fromEntries(Object.entries(description.failures).map(([name, failure]) =>
            [name, { ...failure, meaning: spoken(failure.meaning), todo: spoken(failure.todo) }])),
    };
}

/** All tools by their names. */
export function allTools(description: Description): ReadonlyMap<string, Tool> {
    return new Map(allRows(description).map((row) => [row.name, toolOf(description, row)]));
}
