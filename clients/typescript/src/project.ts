// One project: plants in, topology and values out.

import { commandOf, entryFailure } from "./contract.js";
import { isObject, type JsonObject, readJson, type Sendable, type TypeId, writeJson } from "./json.js";
import { type Nets, netsOf } from "./nets.js";
import { type Names, namesOf, numberIn, reportNumbers } from "./numbers.js";
import { type Report, reportRead } from "./report.js";
import { Refused, type Service } from "./service.js";
import { type Value, valueRead, valueText } from "./values.js";
import { type Verdict, verdictRead } from "./verdict.js";

export interface Topology extends Nets {
    readonly report: Report;
    /** The elements' numbers, in the order of the report's lists. */
    readonly modules: readonly number[];
    readonly nodes: readonly number[];
    readonly names: Names;
}

/** A module or a link to place, as the commands take them. */
export interface ModulePlace {
    readonly VornModuleID: TypeId | number;
    readonly DeviceName?: string;
    readonly PageNb?: number;
    readonly PositionX?: number;
    readonly PositionZ?: number;
}

export interface LinkPlace {
    readonly F_InstanceID: string;
    readonly F_PortNb?: number;
    readonly S_InstanceID: string;
    readonly S_PortNb?: number;
    readonly [member: string]: Sendable | undefined;
}

/** The names behind a report's elements, asked of the service. */
export async function reportNames(ask: Service["ask"], project: string, report: Report): Promise<Pick<Topology, "modules" | "nodes" | "names">> {
    const numbers = await reportNumbers(report, async (id, prefix) => {
        try {
            return numberIn(await ask("VarInfoGet", `${project}_${id}`), project, prefix);
        } catch (error) {
            if (error instanceof Refused) return null; // no text of a document's that an address can carry
            throw error;
        }
    });
    return { ...numbers, names: namesOf(report, numbers) };
}

/** What all values of batch were, in the order of their names; null for a name that the service does not know. */
export type Values<Name extends string> = Record<Name, number | number[] | string | null>;

export class Project {
    constructor(private readonly service: Service, readonly name: string) {}

    private send(id: string, messages?: Sendable): Promise<string> {
        return this.service.ask(id, this.name, messages === undefined ? undefined : writeJson(messages, this.service.contract.spelling));
    }

    async isOpen(): Promise<boolean> {
        return (await this.send("Fdp")) === "1";
    }

    async create(): Promise<void> {
        await this.send("Create");
    }

    async open(): Promise<void> {
        await this.send("Open");
    }

    async close(): Promise<void> {
        await this.send("PjtClose");
    }

    /** Replaces the plant by a document: an object, or its JSON text. */
    async import(document: Sendable): Promise<void> {
        const whole = typeof document === "string" ? readJson(document) : document;
        if (!isObject(whole)) throw new TypeError("a document is a JSON object");
        await this.send("PjtSent", whole);
    }

    async addModule(place: ModulePlace): Promise<string> {
        return this.send("AddModule", { ...place });
    }

    async addLink(place: LinkPlace): Promise<string> {
        return this.send("AddLink", place);
    }

    /** Judges the plant. */
    async check(): Promise<Verdict> {
        try {
            return verdictRead(await this.send("NetAccess"));
        } catch (error) {
            if (error instanceof Refused && error.failure.kind === "verdict") return verdictRead(error.reply);
            throw error;
        }
    }

    async topology(): Promise<Topology> {
        const report = reportRead(await this.send("PjtInfoChk"));
        if (!report) throw new Error("the service's report is none that this client can read");
        const ask = this.service.ask.bind(this.service);
        return { report, ...await reportNames(ask, this.name, report), ...netsOf(report.BranchInfo) };
    }

    async run(): Promise<void> {
        await this.send("PjtRun");
    }

    /** Pauses a run, or goes on with a paused one. */
    async pause(): Promise<void> {
        await this.send("PjtPause");
    }

    async step(): Promise<void> {
        await this.send("PjtStep");
    }

    async stop(): Promise<void> {
        await this.send("PjtStop");
    }

    /** Reads run values by the names behind the project's, such as `GTemp` or `MOD7_Opening`. */
    async read<Name extends string>(names: readonly Name[]): Promise<Values<Name>> {
        const texts = await this.batch("GetBatch", { VarName: names.map((name) => `${this.name}_${name}`) });
        const command = commandOf(this.service.contract, "GetBatch");
        const value = (text: string): number | number[] | string | null =>
            (entryFailure(this.service.contract, command, text) ? null : valueRead(text));
        return Object.fromEntries(names.map((name, place) => [name, value(texts[place] ?? "")])) as Values<Name>;
    }

    /** Writes run values; gives the names that the service refused. Throws RangeError before anything is sent for what is no number. */
    async write(values: Readonly<Record<string, Value>>): Promise<string[]> {
        const names = Object.keys(values);
        const written = Object.values(values).map(valueText);
        const texts = await this.batch("SetBatch", { VarName: names.map((name) => `${this.name}_${name}`), VarValue: written });
        return names.filter((_, place) => texts[place] !== "OK");
    }

    private async batch(id: string, messages: JsonObject): Promise<string[]> {
        return readJson(await this.service.ask(id, "json", JSON.stringify(messages))) as string[];
    }
}
