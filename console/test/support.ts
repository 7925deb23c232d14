// A real host and a real browser for the tests.

import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { type Browser, chromium, type Page } from "playwright-core";
import { Host as PlainHost, needed } from "../../clients/typescript/test/host";

export const example = (name: string): string => join(needed("VORN_EXAMPLES"), name);
export const shot = (name: string): string => join(needed("VORN_SHOTS"), `${name}.png`);

/** A host with its console, which a second one can take over. */
export class Host extends PlainHost {
    constructor() {
        super(true);
    }

    /** One command, straight to the library. `messages` is JSON. */
    async ask(command: string, name: string, messages = '""'): Promise<string> {
        const reply = await fetch(this.api, { method: "POST", body: `{"command":"${command}","name":"${name}","messages":${messages}}` });
        return reply.text();
    }

    /** Makes a project out of an example. */
    async send(name: string, file: string): Promise<void> {
        await this.ask("Open", name);
        const reply = await this.ask("PjtSent", name, readFileSync(example(file), "utf8"));
        if (reply !== "OK") throw new Error(reply);
    }
}

export function startBrowser(): Promise<Browser> {
    return chromium.launch({
        executablePath: process.env["CHROMIUM"] ?? execFileSync("which", ["chromium"], { encoding: "utf8" }).trim(),
        args: [
            "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-background-networking",
            "--disable-component-update", "--disable-sync",
        ],
    });
}

export interface View {
    readonly width?: number;
    readonly height?: number;
    readonly dark?: boolean;
    readonly locale?: string;
}

/** A page of a new profile; whatever it complains of goes to `faults`. */
export async function openPage(browser: Browser, link: string, faults: string[], view: View = {}): Promise<Page> {
    const context = await browser.newContext({
        viewport: { width: view.width ?? 1440, height: view.height ?? 900 },
        colorScheme: view.dark ? "dark" : "light",
        locale: view.locale ?? "en-US",
    });
    const page = await context.newPage();
    page.setDefaultTimeout(60000);
    page.on("pageerror", (fault) => faults.push(fault.message));
    page.on("console", (message) => {
        const expected = /Failed to load resource/.test(message.text());
        if (message.type() === "error" && !expected) faults.push(message.text());
    });
    page.on("request", (request) => {
        const own = request.url().startsWith(new URL(link).origin) || /^(blob|data):/.test(request.url());
        if (!own) faults.push(`foreign address: ${request.url()}`);
    });
    await page.goto(link);
    return page;
}

/** Waits until a plant is drawn and nothing is laid out any more. */
export async function drawn(page: Page): Promise<void> {
    await page.locator(".over.corner").waitFor();
    await page.locator(".over.top [role=status]").waitFor({ state: "detached" });
    await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
}
