// A real host and a real client of the tool server for the tests.

import { once } from "node:events";
import { createServer } from "node:http";
import type { AddressInfo } from "node:net";
import { Client } from "@modelcontextprotocol/sdk/client/index.js";
import { StdioClientTransport } from "@modelcontextprotocol/sdk/client/stdio.js";
import { Host, needed } from "../../typescript/test/host.js";

export { Host };

/** A service that greets, takes a request, and breaks the connection instead of a reply. `words` are those it took. */
export async function startBreaker(): Promise<{ address: string; words: string[]; end: () => void }> {
    const words: string[] = [];
    const server = createServer((request, response) => {
        if (request.method === "GET") return void response.end("Hello Quelmo!\n");
        request.setEncoding("utf8").once("data", (body: string) => {
            words.push((JSON.parse(body) as { command: string }).command);
            request.socket.destroy();
        });
    });
    await once(server.listen(0, "127.0.0.1"), "listening");
    const { port } = server.address() as AddressInfo;
    return { address: `http://127.0.0.1:${port}`, words, end: () => server.close() };
}

export interface Answer {
    readonly text: string;
    readonly failed: boolean;
    /** The structured result, which the client has held against the output schema; null without one. */
    readonly json: any; // eslint-disable-line @typescript-eslint/no-explicit-any
}

export async function connect(options: string[], stderr: "inherit" | "pipe" = "inherit"): Promise<Client> {
    const client = new Client({ name: "tests", version: "1" });
    // The tools are listed, so that the client holds each result against its output schema.
    await client.connect(new StdioClientTransport({ command: process.execPath, args: [needed("VORN_MCP"), ...options], stderr }));
    await client.listTools();
    return client;
}

export async function ask(client: Client, name: string, args: Record<string, unknown> = {}): Promise<Answer> {
    const result = await client.callTool({ name, arguments: args }, undefined, { timeout: 120000 });
    const content = result.content as { type: string; text?: string; data?: string; resource?: { text: string } }[];
    const [shown] = content;
    const text = shown?.text ?? shown?.resource?.text ?? Buffer.from(shown?.data ?? "", "base64").toString("utf8");
    return { text, failed: result.isError === true, json: result.structuredContent ?? null };
}
