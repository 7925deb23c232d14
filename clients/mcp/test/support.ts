// A real host and a real client of the tool server for the tests.

import { type ChildProcess, spawn } from "node:child_process";
import { once } from "node:events";
import { copyFileSync, mkdirSync, mkdtempSync, rmSync } from "node:fs";
import { createServer } from "node:http";
import type { AddressInfo } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { Client } from "@modelcontextprotocol/sdk/client/index.js";
import { StdioClientTransport } from "@modelcontextprotocol/sdk/client/stdio.js";

function needed(name: string): string {
    const value = process.env[name];
    if (!value) throw new Error(`${name} is not set; tests are run by test.mjs`);
    return value;
}

/** A host that runs from a folder of its own, and can end and come back. */
export class Host {
    private readonly folder = mkdtempSync(join(tmpdir(), "vorn-mcp-"));
    private process: ChildProcess | null = null;
    api = "";

    async start(): Promise<void> {
        mkdirSync(join(this.folder, "work"), { recursive: true });
        mkdirSync(join(this.folder, "bin"), { recursive: true });
        const program = join(this.folder, "bin", "vorn-host");
        copyFileSync(needed("VORN_HOST"), program);
        const child = spawn(program, ["--quiet"], { cwd: join(this.folder, "work"), stdio: ["ignore", "pipe", "inherit"] });
        this.process = child;
        let output = "";
        child.stdout.setEncoding("utf8");
        await new Promise<void>((resolve, reject) => {
            child.once("exit", () => reject(new Error(`the host has ended: ${output}`)));
            child.stdout.on("data", (text: string) => {
                output += text;
                this.api = /answers on (\S+)/.exec(output)?.[1] ?? "";
                if (this.api) resolve();
            });
        });
    }

    async end(): Promise<void> {
        const child = this.process;
        this.process = null;
        if (!child || child.exitCode !== null) return;
        child.kill();
        await once(child, "exit");
    }

    async remove(): Promise<void> {
        await this.end();
        rmSync(this.folder, { recursive: true, force: true });
    }
}

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
    /** The text as JSON; null where it is none. */
    readonly json: any; // eslint-disable-line @typescript-eslint/no-explicit-any
}

export async function connect(options: string[]): Promise<Client> {
    const client = new Client({ name: "tests", version: "1" });
    await client.connect(new StdioClientTransport({ command: process.execPath, args: [needed("VORN_MCP"), ...options] }));
    return client;
}

export async function ask(client: Client, name: string, args: Record<string, unknown> = {}): Promise<Answer> {
    const result = await client.callTool({ name, arguments: args }, undefined, { timeout: 120000 });
    const content = result.content as { type: string; text?: string; resource?: { text: string } }[];
    const text = content[0]?.text ?? content[0]?.resource?.text ?? "";
    let json: unknown = null;
    try {
        json = JSON.parse(text);
    } catch { /* a plain text */ }
    return { text, failed: result.isError === true, json };
}
