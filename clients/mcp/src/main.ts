// A tool server (Model Context Protocol, over standard input and output) for assistants that work with plants.

import { readFileSync } from "node:fs";
import { dirname } from "node:path";
import { fileURLToPath } from "node:url";
import { parseArgs } from "node:util";
import { McpServer } from "@modelcontextprotocol/sdk/server/mcp.js";
import { StdioServerTransport } from "@modelcontextprotocol/sdk/server/stdio.js";
import {
    type CallToolResult, CallToolRequestSchema, ErrorCode, ListResourcesRequestSchema, ListToolsRequestSchema, McpError,
    ReadResourceRequestSchema,
} from "@modelcontextprotocol/sdk/types.js";
import { type Description, findRoot, load } from "./description.js";
import { allResources } from "./resources.js";
import { Service, ToolError } from "./service.js";
import type { Kit, Tool } from "./tool.js";
import { allTools, inTools } from "./tools.js";
import type { JsonObject } from "./wire.js";

const usage = `usage: node vorn-mcp.mjs [--address URL]

Serves tools over standard input and output, for an AI assistant that starts it.
  --address URL  the service, such as http://127.0.0.1:33360; without it, the first that answers on this machine
  --version      the version
`;

function instructions(description: Description): string {
    return `${description.interface.text}\n\nTo make a plant: module_types, then make_plant with a document (or with an example), then mend `
        + "what check_plant tells until it says complete. To run it: set_stored_value for what the run begins with, run, read_variables or "
        + "watch_variables, write_variables to steer, stop. Large plants: plant_summary and read_topology come in pages. "
        + "The resources hold the schema of project documents, concepts, the reference and example plants.";
}

async function call(kit: Kit, tool: Tool, args: JsonObject, signal: AbortSignal): Promise<CallToolResult> {
    const say = (text: string, isError = false): CallToolResult => ({ content: [{ type: "text", text }], ...(isError ? { isError } : {}) });
    const faults = tool.faults(args);
    if (faults !== "") return say(`Wrong arguments:\n${faults}`, true);
    try {
        const result = await tool.work(kit, args, signal);
        if (typeof result === "string") return say(result);
        return Array.isArray(result) ? { content: result } : say(JSON.stringify(result));
    } catch (error) {
        if (error instanceof ToolError) return say(error.message, true);
        process.stderr.write(`${tool.listed.name}: ${error instanceof Error ? error.stack ?? error.message : String(error)}\n`);
        return say(`The tool failed: ${String(error)}`, true);
    }
}

function serverOf(description: Description, address: string | undefined): McpServer {
    const tools = allTools(description);
    const resources = allResources(description.root);
    const kit: Kit = { description, service: new Service(description, address) };
    const mcp = new McpServer({ name: "vornserver", title: description.interface.title, version: description.interface.version },
        { capabilities: { tools: {}, resources: {} }, instructions: instructions(description) });
    const { server } = mcp;
    server.setRequestHandler(ListToolsRequestSchema, () => ({ tools: [...tools.values()].map(({ listed }) => listed) }));
    server.setRequestHandler(CallToolRequestSchema, ({ params }, { signal }) => {
        const tool = tools.get(params.name);
        if (!tool) throw new McpError(ErrorCode.InvalidParams, `there is no tool ${params.name}`);
        return call(kit, tool, (params.arguments ?? {}) as JsonObject, signal);
    });
    server.setRequestHandler(ListResourcesRequestSchema, () => ({ resources: [...resources.values()].map(({ listed }) => listed) }));
    server.setRequestHandler(ReadResourceRequestSchema, ({ params: { uri } }) => {
        const found = resources.get(uri);
        if (!found) throw new McpError(ErrorCode.InvalidParams, `there is no resource ${uri}`);
        return { contents: [{ uri, mimeType: found.listed.mimeType, text: readFileSync(found.path, "utf8") }] };
    });
    return mcp;
}

function addressOf(): string | undefined {
    const { values } = parseArgs({ options: { address: { type: "string" }, help: { type: "boolean" }, version: { type: "boolean" } } });
    if (values.help) {
        process.stdout.write(usage);
        process.exit(0);
    }
    if (values.version) {
        process.stdout.write(`${load(findRoot(dirname(fileURLToPath(import.meta.url)))).interface.version}\n`);
        process.exit(0);
    }
    if (values.address !== undefined && !/^http:\/\/[^/]+\/?/.test(values.address)) throw new Error("--address takes an address of http://");
    return values.address;
}

try {
    const address = addressOf();
    const description = inTools(load(findRoot(dirname(fileURLToPath(import.meta.url)))));
    const mcp = serverOf(description, address);
    await mcp.connect(new StdioServerTransport());
} catch (error) {
    process.stderr.write(`vorn-mcp: ${error instanceof Error ? error.message : String(error)}\n${usage}`);
    process.exit(2);
}
