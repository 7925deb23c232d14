// The running service, one request after the other.

import { Connection, type Place } from "../../typescript/src/node.js";
import { Service as Client } from "../../typescript/src/index.js";
import type { Description } from "./description.js";

/** A failure that can be given to the assistant as it is. */
export class ToolError extends Error {}

/** Sends one command; gives its reply. Throws Refused, or NoReply where the service cannot be reached. */
export type Ask = (id: string, name: string, messages?: string) => Promise<string>;

export class Service {
    private turn: Promise<unknown> = Promise.resolve();
    private readonly connection: Connection;
    private readonly client: Client;

    /** Throws Error for a place that cannot be used. */
    constructor(description: Description, place: Place) {
        this.connection = new Connection(description.http, place);
        this.client = new Client(this.connection.transport, description);
    }

    /** The address of the running service. Throws NoReply where there is none. */
    address(): Promise<string> {
        return this.connection.address();
    }

    /** Does some work with no other request of this program in between. */
    together<Result>(work: (ask: Ask) => Promise<Result>): Promise<Result> {
        const result = this.turn.then(() => work((id, name, messages) => this.client.ask(id, name, messages)));
        this.turn = result.catch(() => null);
        return result;
    }

    readonly ask: Ask = (id, name, messages) => this.together((ask) => ask(id, name, messages));
}
