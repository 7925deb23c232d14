// A tool server (Model Context Protocol, over standard input and output) for assistants that work with plants.

import { readFileSync } from "node:fs";
import { dirname } from "node:path";
import { fileURLToPath } from "node:url";
import { parseArgs } from "node:util";
import { McpServer } from "@modelcontextprotocol/sdk/server/mcp.js";
import { StdioServerTransport } from "@modelcontextprotocol/sdk/server/stdio.js";
import {
    type CallToolResult, CallToolRequestSchema, ErrorCode, GetPromptRequestSchema, ListPromptsRequestSchema, ListResourcesRequestSchema,
    ListToolsRequestSchema, McpError, ReadResourceRequestSchema, type ServerNotification, type ServerRequest,
} from "@modelcontextprotocol/sdk/types.js";
import type { RequestHandlerExtra } from "@modelcontextprotocol/sdk/shared/protocol.js";
import { type JsonObject, NoReply, Refused } from "../../typescript/src/index.js";
import { credentialsOfFile, type Place } from "../../typescript/src/node.js";
import { type Description, findRoot, load } from "./description.js";
import { listedPrompts, promptText } from "./prompts.js";
import { allResources } from "./resources.js";
import { Service, ToolError } from "./service.js";
import type { Call, Kit, Tool } from "./tool.js";
import { allTools, inTools } from "./tools.js";

const usage = `usage: node vorn-mcp.mjs [--address URL [--credentials FILE] [--ca-file FILE]] [--timeout N]

Serves tools over standard input and output, for an AI assistant that starts it.
  --address URL       the service, such as http://127.0.0.1:33360 or https://plant.example/vorn; without it, the first that
                      answers on this machine
  --credentials FILE  over https: lines \`user NAME\` and \`password TEXT\`, or \`token TEXT\`; a file of mode 600. Else the
                      environment's VORNSERVER_CREDENTIALS (a file), or VORNSERVER_USER, VORNSERVER_PASSWORD, VORNSERVER_TOKEN
  --ca-file FILE      the certificates that may sign the service's; else VORNSERVER_CA_FILE, else those of Node
  --timeout N         seconds for one reply, 180 unless given
  --version           the version
`;

function instructions(description: Description): string {
    return `${description.interface.text}\n\nTo make a plant: module_types, then make_plant with a document (or with an example), then mend `
        + "what check_plant tells until it says complete. To run it: startValues of make_plant for what the run begins with, run, read_variables or "
        + "watch_variables, write_variables to steer, stop. explain_values tells why it does not work. Large plants: plant_summary and read_topology come in pages. "
        + "The prompts lead through building, judging and explaining; the resources are the schema of project documents, the plant model, fittings, concepts, the reference and examples.";
}

async function call(kit: Kit, tool: Tool, args: JsonObject, about: Call): Promise<CallToolResult> {
    const refuse = (text: string): CallToolResult => ({ content: [{ type: "text", text }], isError: true });
    const faults = tool.faults(args);
    if (faults !== "") return refuse(`Wrong arguments:\n${faults}`);
    try {
        const done = await tool.work(kit, args, about);
        if ("content" in done && Array.isArray(done["content"]) && "result" in done) {
            return { content: done.content as CallToolResult["content"], structuredContent: done.result as JsonObject };
        }
        return { content: [{ type: "text", text: JSON.stringify(done) }], structuredContent: done as JsonObject };
    } catch (error) {
        if (about.signal.aborted) return refuse("The call was cancelled.");
        if (error instanceof ToolError || error instanceof Refused || error instanceof NoReply) return refuse(error.message);
        process.stderr.write(`${tool.listed.name}: ${error instanceof Error ? error.stack ?? error.message : String(error)}\n`);
        return refuse(`The tool failed: ${String(error)}`);
    }
}

/** What a call has beside its arguments: its end, and the way on which its progress goes, where the client asked for it. */
function callOf({ signal, _meta, sendNotification }: RequestHandlerExtra<ServerRequest, ServerNotification>): Call {
    const token = _meta?.progressToken;
    return {
        signal,
        progress: (progress, total, message) => {
            if (token === undefined || signal.aborted) return;
            sendNotification({ method: "notifications/progress", params: { progressToken: token, progress, total, message } })
                .catch(() => null); // the client is gone, which the reply finds out
        },
    };
}

function serverOf(description: Description, place: Place): McpServer {
    const tools = allTools(description);
    const resources = allResources(description.root);
    const kit: Kit = { description, service: new Service(description, place) };
    const mcp = new McpServer({ name: "vornserver", title: description.interface.title, version: description.interface.version },
        { capabilities: { tools: {}, resources: {}, prompts: {} }, instructions: instructions(description) });
    const { server } = mcp;
    server.setRequestHandler(ListToolsRequestSchema, () => ({ tools: [...tools.values()].map(({ listed }) => listed) }));
    server.setRequestHandler(CallToolRequestSchema, ({ params }, extra) => {
        const tool = tools.get(params.name);
        if (!tool) throw new McpError(ErrorCode.InvalidParams, `there is no tool ${params.name}`);
        return call(kit, tool, (params.arguments ?? {}) as JsonObject, callOf(extra));
    });
    server.setRequestHandler(ListResourcesRequestSchema, () => ({ resources: [...resources.values()].map(({ listed }) => listed) }));
    server.setRequestHandler(ReadResourceRequestSchema, ({ params: { uri } }) => {
        const found = resources.get(uri);
        if (!found) throw new McpError(ErrorCode.InvalidParams, `there is no resource ${uri}`);
        return { contents: [{ uri, mimeType: found.listed.mimeType, text: readFileSync(found.path, "utf8") }] };
    });
    server.setRequestHandler(ListPromptsRequestSchema, () => ({ prompts: listedPrompts() }));
    server.setRequestHandler(GetPromptRequestSchema, ({ params }) => {
        try {
            return { messages: [{ role: "user", content: { type: "text", text: promptText(params.name, params.arguments ?? {}) } }] };
        } catch (error) {
            throw new McpError(ErrorCode.InvalidParams, (error as Error).message);
        }
    });
    return mcp;
}

const ownRoot = (): string => findRoot(dirname(fileURLToPath(import.meta.url)));

/** Reads the command line; ends the program where it asks for a text. Throws Error. */
function placeOf(): Place {
    const text = { type: "string" } as const;
    const flag = { type: "boolean" } as const;
    const { values } = parseArgs({ options: { address: text, credentials: text, "ca-file": text, timeout: text, help: flag, version: flag } });
    if (values.help) {
        process.stdout.write(usage);
        process.exit(0);
    }
    if (values.version) {
        process.stdout.write(`${load(ownRoot()).version}\n`);
        process.exit(0);
    }
    const seconds = values.timeout === undefined ? undefined : Number(values.timeout);
    if (seconds !== undefined && !(Number.isInteger(seconds) && seconds >= 1 && seconds <= 86400)) throw new Error("--timeout takes a number from 1 to 86400");
    return {
        address: values.address, caFile: values["ca-file"], seconds,
        credentials: values.credentials === undefined ? undefined : credentialsOfFile(values.credentials),
    };
}

try {
    const place = placeOf();
    const mcp = serverOf(inTools(load(ownRoot())), place);
    await mcp.connect(new StdioServerTransport());
} catch (error) {
    process.stderr.write(`vorn-mcp: ${error instanceof Error ? error.message : String(error)}\n${usage}`);
    process.exit(2);
}
