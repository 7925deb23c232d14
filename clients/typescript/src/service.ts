// One service: commands in, replies out, refusals thrown.

import { type Command, commandOf, type Contract, type Failure, meaningOf } from "./contract.js";
import { contract as ownContract } from "./contract_data.js";

/** The service did not answer. `carriedOut` is true where the command may have been carried out all the same. */
export class NoReply extends Error {
    constructor(message: string, readonly carriedOut: boolean) {
        super(message);
    }
}

/** A command that the service refused. */
export class Refused extends Error {
    constructor(readonly reply: string, readonly failure: Failure, readonly hint = "") {
        super(`The service refused: ${reply.trim()}\nMeaning: ${failure.meaning}\nWhat to do: ${failure.todo}${hint === "" ? "" : `\n${hint}`}`);
    }
}

/** Carries one request to the service and its reply back. Throws NoReply where none comes. */
export type Transport = (body: string, command: Command) => Promise<string>;

/** The body of a request. `messages` is JSON. */
export function requestText(word: string, name: string, messages?: string): string {
    const start = `{"command":${JSON.stringify(word)},"name":${JSON.stringify(name)}`;
    return messages === undefined ? `${start}}` : `${start},"messages":${messages}}`;
}

/** Why a type's number may be unknown: a double has changed it on its way here. */
function lostDigits(failure: Failure, messages: string | undefined): string {
    const number = /VornModuleID/.test(failure.text) ? /"VornModuleID":(\d{16,})/.exec(messages ?? "")?.[1] : undefined;
    return number === undefined || Number.isSafeInteger(Number(number)) || BigInt(Number(number)) !== BigInt(number) ? ""
        : `${number} is what a double makes of a number above 2^53: it may have lost its last digits before it came here. Carry it as a text.`;
}

export class Service {
    constructor(private readonly transport: Transport, readonly contract: Contract = ownContract) {}

    /** Sends one command by its id; `messages` is JSON. Throws Refused, and NoReply. */
    async ask(id: string, name: string, messages?: string): Promise<string> {
        const command = commandOf(this.contract, id);
        const reply = await this.transport(requestText(command.word, name, messages), command);
        const meaning = meaningOf(this.contract, command, reply);
        if (meaning && "failure" in meaning) throw new Refused(reply, meaning.failure, lostDigits(meaning.failure, messages));
        return reply;
    }
}

/** A transport over `fetch`, to a service or a page that passes /api on. */
export function fetchTransport(url: string, seconds = 180): Transport {
    return async (body) => {
        let response: Response;
        try {
            response = await fetch(url, {
                method: "POST", headers: { "Content-Type": "application/json" }, body, signal: AbortSignal.timeout(seconds * 1000),
            });
        } catch (error) {
            throw new NoReply(`no reply from ${url} (${String(error)})`, true);
        }
        if (!response.ok) throw new NoReply(`no reply from ${url} (status ${response.status})`, response.status >= 500);
        return response.text();
    };
}
