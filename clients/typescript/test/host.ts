// A real host for the tests of the TypeScript client, the console and the tool server.

import { type ChildProcess, spawn } from "node:child_process";
import { once } from "node:events";
import { mkdirSync, mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

export function needed(name: string): string {
    const value = process.env[name];
    if (!value) throw new Error(`${name} is not set; tests are run by test.mjs`);
    return value;
}

/** A host in a folder of its own, which can end and come back. */
export class Host {
    private readonly folder = mkdtempSync(join(tmpdir(), "vorn-client-"));
    private process: ChildProcess | null = null;
    api = "";
    /** The page of its console; empty without one. */
    link = "";

    constructor(private readonly console = false) {}

    private options(): string[] {
        if (!this.console) return ["--no-console", "--quiet"];
        // Started again, the console is where it was before.
        return this.link === "" ? [] : ["--console", new URL(this.link).host];
    }

    async start(): Promise<void> {
        mkdirSync(join(this.folder, "work"), { recursive: true });
        const child = spawn(needed("VORN_HOST"), this.options(), { cwd: join(this.folder, "work"), stdio: ["ignore", "pipe", "inherit"] });
        this.process = child;
        let output = "";
        child.stdout.setEncoding("utf8");
        await new Promise<void>((resolve, reject) => {
            child.once("exit", () => reject(new Error(`the host has ended: ${output}`)));
            child.stdout.on("data", (text: string) => {
                if (output.length < 10000) output += text;
                const api = /answers on (\S+)/.exec(output)?.[1];
                const link = /shows its plants at (\S+)/.exec(output)?.[1];
                if (!api || (this.console && !link)) return;
                this.api = api;
                this.link = link ?? "";
                resolve();
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
