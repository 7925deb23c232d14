// The running service: where it is, and one request after the other.

import { Agent, request } from "node:http";
import { type Command, commandOf, type Description, type Failure, meaningOf } from "./description.js";

/** A failure that can be told to the assistant as it stands. */
export class ToolError extends Error {}

/** A command that the service refused. */
export class Refused extends ToolError {
    constructor(readonly reply: string, readonly failure: Failure) {
        super(`The service refused: ${reply.trim()}\nMeaning: ${failure.meaning}\nWhat to do: ${failure.todo}`);
    }
}

/** Sends one command; gives its reply. Throws Refused, or ToolError where the service cannot be reached. */
export type Ask = (id: string, name: string, messages?: string) => Promise<string>;

const secondsAtMost = 180;
const agent = new Agent({ keepAlive: false });

interface Lost extends Error {
    /** True when no connection was made, so that nothing was carried out. */
    refused: boolean;
}

function exchange(url: string, body: string | null, seconds: number): Promise<string> {
    return new Promise((resolve, reject) => {
        let connected = false;
        const fail = (error: Error): void => reject(Object.assign(error, { refused: !connected }));
        const headers = body === null ? {} : { "Content-Type": "application/json", "Content-Length": Buffer.byteLength(body) };
        const sent = request(url, { method: body === null ? "GET" : "POST", agent, headers }, (response) => {
            const chunks: Buffer[] = [];
            response.on("data", (chunk: Buffer) => chunks.push(chunk));
            response.on("error", fail);
            response.on("end", () => {
                const text = Buffer.concat(chunks).toString("utf8");
                if (response.statusCode === 200) resolve(text);
                else fail(new Error(`status ${response.statusCode ?? 0}`));
            });
        });
        sent.on("socket", (socket) => socket.once("connect", () => (connected = true)));
        sent.setTimeout(seconds * 1000, () => sent.destroy(new Error(`no reply within ${seconds} s`)));
        sent.on("error", fail);
        sent.end(body ?? undefined);
    });
}

export class Service {
    private found: string | null = null;
    private turn: Promise<unknown> = Promise.resolve();

    /** `given` is the address of the service; without it, the one of the lowest port on this machine is taken. */
    constructor(private readonly description: Description, private readonly given?: string) {}

    /** The address of the running service. Throws ToolError where there is none. */
    async address(): Promise<string> {
        const { firstPort, lastPort, path, greetingPath, greeting } = this.description.interface.ways.http;
        const greets = async (root: string): Promise<boolean> =>
            (await exchange(root + greetingPath, null, 5).catch(() => "")).trim() === greeting.trim();
        if (this.given !== undefined) {
            const { origin } = new URL(this.given);
            if (await greets(origin)) return origin + path;
            throw new ToolError(`No service answers at ${origin}. Ask the user to start vorn-host there; then call again.`);
        }
        const roots = Array.from({ length: lastPort - firstPort + 1 }, (_, index) => `http://127.0.0.1:${firstPort + index}`);
        const answers = await Promise.all(roots.map(greets));
        const root = roots.find((_, index) => answers[index]);
        if (root !== undefined) return root + path;
        throw new ToolError(`No service answers at the ports ${firstPort} to ${lastPort} of this machine. `
            + "Ask the user to start vorn-host; then call again.");
    }

    /** Does some work with no other request of this program in between. */
    together<Result>(work: (ask: Ask) => Promise<Result>): Promise<Result> {
        const result = this.turn.then(() => work((id, name, messages) => this.send(id, name, messages)));
        this.turn = result.catch(() => null);
        return result;
    }

    readonly ask: Ask = (id, name, messages) => this.together((ask) => ask(id, name, messages));

    private async send(id: string, name: string, messages?: string): Promise<string> {
        const command = commandOf(this.description, id);
        const start = `{"command":${JSON.stringify(command.word)},"name":${JSON.stringify(name)}`;
        const reply = await this.deliver(command, messages === undefined ? `${start}}` : `${start},"messages":${messages}}`);
        const meaning = meaningOf(this.description, command, reply);
        if (meaning && "failure" in meaning) throw new Refused(reply, meaning.failure);
        return reply;
    }

    private async deliver(command: Command, body: string): Promise<string> {
        for (const last of [false, true]) {
            this.found ??= await this.address();
            try {
                return await exchange(this.found, body, secondsAtMost);
            } catch (error) {
                const lost = error as Lost;
                const harmless = lost.refused || command.effect === "reads";
                this.found = null; // it may have gone to another port
                if (harmless && !last) continue;
                throw new ToolError(`The service gave no reply (${lost.message}). ${harmless
                    ? "Nothing was changed." : "The command may have been carried out all the same: look before you repeat it."}`);
            }
        }
        throw new ToolError("unreachable");
    }
}
