// Speaking to the service: every command goes through `ask`.

import { signal } from "@preact/signals";

/** The host gave no answer: it has ended. */
export class Gone extends Error {}

/** JSON that goes into a request as it stands: parsing it would change long numbers, and `5.0` into `5`. */
export class RawJson {
    constructor(readonly text: string) {}
}

/** A command that has no reply yet. */
export interface Waiting {
    readonly command: string;
    readonly name: string;
    readonly since: number;
}

/** The commands under way, without the poll. */
export const waiting = signal<readonly Waiting[]>([]);

/** False from the first request that got no answer to the next that gets one. */
export const serviceUp = signal(true);

function requestText(command: string, name: string, messages: unknown): string {
    const value = messages instanceof RawJson ? messages.text : JSON.stringify(messages);
    return `{"command":${JSON.stringify(command)},"name":${JSON.stringify(name)},"messages":${value}}`;
}

/** Sends one command and gives its reply; throws `Gone` where there is none. Tells nobody that it runs. */
export async function askQuietly(command: string, name = "", messages: unknown = ""): Promise<string> {
    let reply: Response;
    try {
        reply = await fetch("api", {
            method: "POST",
            headers: { "Content-Type": "application/json" },
            body: requestText(command, name, messages),
        });
    } catch {
        serviceUp.value = false;
        throw new Gone(command);
    }
    serviceUp.value = true;
    if (!reply.ok) throw new Gone(`${command}: ${reply.status}`);
    return reply.text();
}

/** As `askQuietly`, shown as under way until the reply is there. */
export async function ask(command: string, name = "", messages: unknown = ""): Promise<string> {
    const entry: Waiting = { command, name, since: Date.now() };
    waiting.value = [...waiting.value, entry];
    try {
        return await askQuietly(command, name, messages);
    } finally {
        waiting.value = waiting.value.filter((each) => each !== entry);
    }
}
