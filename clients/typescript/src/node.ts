// For Node: where the service is, who asks it, and one request after the other, over http or https.

import { readFileSync, statSync } from "node:fs";
import { Agent as HttpAgent, request as httpRequest, type RequestOptions } from "node:http";
import { Agent as HttpsAgent, request as httpsRequest } from "node:https";
import type { Command, HttpWay } from "./contract.js";
import { NoReply, type Transport } from "./service.js";

/** A name and a password, or a token: what a proxy before the service asks for. */
export interface Credentials {
    readonly user?: string;
    readonly password?: string;
    readonly token?: string;
}

/** Reads lines such as `user anna`, `password secret word` or `token abc`. Throws Error for a file that others can read or that has other lines. */
export function credentialsOfFile(path: string): Credentials {
    if (process.platform !== "win32" && (statSync(path).mode & 0o077) !== 0) throw new Error(`other users can read ${path}; give it mode 600`);
    const lines = readFileSync(path, "utf8").split(/\r?\n/).filter((line) => line !== "");
    return Object.fromEntries(lines.map((line) => {
        const [, key, text] = /^(user|password|token) (.*)$/.exec(line) ?? [];
        if (key === undefined || text === undefined) throw new Error(`${path}: a line is user, password or token, a blank, and its text`);
        return [key, text];
    }));
}

/** Those of the file that VORNSERVER_CREDENTIALS names, else VORNSERVER_USER, VORNSERVER_PASSWORD and VORNSERVER_TOKEN. */
export function credentialsOfEnvironment(environment: NodeJS.ProcessEnv = process.env): Credentials {
    const file = environment["VORNSERVER_CREDENTIALS"];
    if (file) return credentialsOfFile(file);
    return { user: environment["VORNSERVER_USER"] ?? "", password: environment["VORNSERVER_PASSWORD"] ?? "", token: environment["VORNSERVER_TOKEN"] ?? "" };
}

export interface Place {
    /** Such as https://plant.example:8443/vorn; without it, the lowest port of this machine that answers. */
    readonly address?: string | undefined;
    /** Over https only; else those of the environment. */
    readonly credentials?: Credentials | undefined;
    /** A file of the certificates that may sign the service's; else VORNSERVER_CA_FILE, else those of the system. */
    readonly caFile?: string | undefined;
    /** For one reply, 180 without it. */
    readonly seconds?: number | undefined;
}

function headerOf(credentials: Credentials): Record<string, string> {
    if (credentials.token) return { Authorization: `Bearer ${credentials.token}` };
    if (!credentials.user) return {};
    return { Authorization: `Basic ${Buffer.from(`${credentials.user}:${credentials.password ?? ""}`).toString("base64")}` };
}

/** The address without what ends it. Throws Error for one that is no http or https, or that contains a name and a password. */
export function baseOf(address: string): string {
    const url = URL.canParse(address) ? new URL(address) : null;
    if (!url || !/^https?:$/.test(url.protocol) || url.search !== "" || url.hash !== "") {
        throw new Error("an address is of the form https://host:port/path or http://host:port/path");
    }
    if (url.username !== "" || url.password !== "") throw new Error("a name and a password do not belong into an address");
    return url.origin + url.pathname.replace(/\/+$/, "").replace(/\/api$/, "");
}

/** One exchange of HTTP. `connected` of its failure tells whether anything can have been carried out. */
class Exchanges {
    private readonly headers: Record<string, string>;
    private readonly agents = { http: new HttpAgent({ keepAlive: false }), https: new HttpsAgent({ keepAlive: false }) };
    private readonly ca: Buffer | undefined;

    constructor(place: Place, secure: boolean) {
        if (place.credentials && !secure) throw new Error("credentials are sent over https only");
        this.headers = secure ? headerOf(place.credentials ?? credentialsOfEnvironment()) : {};
        const file = secure ? place.caFile ?? process.env["VORNSERVER_CA_FILE"] : undefined;
        this.ca = file ? readFileSync(file) : undefined;
    }

    send(url: string, body: string | null, seconds: number): Promise<string> {
        return new Promise((resolve, reject) => {
            let connected = false;
            const secure = url.startsWith("https:");
            const content = body === null ? {} : { "Content-Type": "application/json", "Content-Length": Buffer.byteLength(body) };
            const options: RequestOptions & { ca?: Buffer } = {
                method: body === null ? "GET" : "POST", agent: this.agents[secure ? "https" : "http"],
                headers: { ...this.headers, ...content }, ...(this.ca ? { ca: this.ca } : {}),
            };
            const sent = (secure ? httpsRequest : httpRequest)(url, options, (response) => {
                const chunks: Buffer[] = [];
                response.on("data", (chunk: Buffer) => chunks.push(chunk));
                response.on("error", fail);
                response.on("end", () => {
                    const status = response.statusCode ?? 0;
                    if (status === 200) {
                        end(() => resolve(Buffer.concat(chunks).toString("utf8")));
                        return;
                    }
                    connected = status >= 500;
                    fail(new Error(`status ${status}${status === 401 ? ", it asks for other credentials" : ""}`));
                });
            });
            const timer = setTimeout(() => sent.destroy(new Error(`no reply within ${seconds} s`)), seconds * 1000);
            const end = (how: () => void): void => {
                clearTimeout(timer);
                how();
            };
            const fail = (error: Error): void => end(() => reject(new NoReply(error.message, connected)));
            sent.on("socket", (socket) => socket.once(secure ? "secureConnect" : "connect", () => (connected = true)));
            sent.on("error", fail);
            sent.end(body ?? undefined);
        });
    }
}

const greetingSeconds = 5;
const replySeconds = 180;

/** A service that is found when it is needed, and again after it was lost. */
export class Connection {
    private found: string | null = null;
    private readonly exchanges: Exchanges;
    private readonly base: string | null;

    /** Throws Error for an address, credentials or a file that cannot be used. */
    constructor(private readonly way: HttpWay, private readonly place: Place = {}) {
        this.base = place.address === undefined ? null : baseOf(place.address);
        this.exchanges = new Exchanges(place, this.base?.startsWith("https:") ?? false);
    }

    /** The address of commands. Throws NoReply where no service answers. */
    async address(): Promise<string> {
        const { firstPort, lastPort, path, greetingPath, greeting } = this.way;
        let why = "";
        const greets = (root: string): Promise<boolean> => this.exchanges.send(root + greetingPath, null, greetingSeconds).then(
            (reply) => reply.trim() === greeting.trim(),
            (error: unknown) => {
                why = ` (${(error as Error).message})`;
                return false;
            });
        if (this.base !== null) {
            if (await greets(this.base)) return this.base + path;
            throw new NoReply(`No service answers at ${this.base}${why}. Ask the user to start vorn-host there; then call again.`, false);
        }
        const roots = Array.from({ length: lastPort - firstPort + 1 }, (_, index) => `http://127.0.0.1:${firstPort + index}`);
        const answers = await Promise.all(roots.map(greets));
        const root = roots.find((_, index) => answers[index]);
        if (root !== undefined) return root + path;
        throw new NoReply(`No service answers at the ports ${firstPort} to ${lastPort} of this machine. `
            + "Ask the user to start vorn-host; then call again.", false);
    }

    /** A command whose reply is lost is sent once more where that does no harm. */
    readonly transport: Transport = async (body, command: Command) => {
        for (let last = false; ; last = true) {
            this.found ??= await this.address();
            try {
                return await this.exchanges.send(this.found, body, this.place.seconds ?? replySeconds);
            } catch (error) {
                if (!(error instanceof NoReply)) throw error;
                const harmless = !error.carriedOut || command.effect === "reads";
                this.found = null; // it may have gone to another port
                if (harmless && !last) continue;
                throw new NoReply(`The service gave no reply (${error.message}). ${harmless
                    ? "Nothing was changed." : "The command may have been carried out all the same: look before you repeat it."}`, !harmless);
            }
        }
    };
}
