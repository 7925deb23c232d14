// What the service takes and answers: commands, failures, and what a reply is.

import type { Spelling } from "./json.js";

export interface Failure {
    readonly text: string;
    readonly kind: string;
    readonly meaning: string;
    readonly todo: string;
}

export interface Reply {
    readonly text: string;
    readonly meaning: string;
}

export interface Command {
    readonly id: string;
    readonly word: string;
    readonly target: string;
    readonly effect: "reads" | "changes" | "destroys";
    readonly replies: readonly Reply[];
    readonly failures: readonly string[];
    /** Of a batch: what an entry's text can be in place of a value. */
    readonly entryFailures?: readonly string[];
}

/** What a command's `name` can address. */
export interface Target {
    readonly parameters: readonly string[];
    readonly form: string;
    readonly failures: readonly string[];
}

export interface HttpWay {
    readonly firstPort: number;
    readonly lastPort: number;
    readonly path: string;
    readonly greetingPath: string;
    readonly greeting: string;
}

export interface Contract<Each extends Command = Command> {
    readonly version: string;
    readonly http: HttpWay;
    readonly targets: Readonly<Record<string, Target>>;
    readonly failures: Readonly<Record<string, Failure>>;
    readonly commands: ReadonlyMap<string, Each>;
    readonly spelling: Spelling;
}

/** The command of that id. Throws Error where there is none. */
export function commandOf<Each extends Command>(contract: Pick<Contract<Each>, "commands">, id: string): Each {
    const command = contract.commands.get(id);
    if (!command) throw new Error(`the service has no command ${id}`);
    return command;
}

const piece = /\{([a-z]+)\}/g;

/** What is in the pieces of a form such as "MOD{number}"; null for a text that is not of the form. */
export function piecesOf(form: string, text: string): Record<string, string> | null {
    const literal = (each: string): string => each.replace(/[.*+?^${}()|[\]\\]/g, "\\$&");
    const parts = form.split(piece); // literals and names in turn
    const source = parts.map((part, index) => (index % 2 === 0 ? literal(part) : `(?<${part}>.*)`)).join("");
    const found = new RegExp(`^${source}$`, "s").exec(text);
    return found && { ...found.groups };
}

export type Meaning = { readonly failure: Failure } | { readonly reply: Reply };

/** What a reply is; null for a text that the contract does not have. Texts without pieces go before those with some. */
export function meaningOf(contract: Pick<Contract, "targets" | "failures">, command: Command, text: string): Meaning | null {
    const names = ["envelope", "internal", ...(contract.targets[command.target]?.failures ?? []), ...command.failures];
    const failures = names.flatMap((name) => contract.failures[name] ?? []);
    const exact = (each: { text: string }): boolean => each.text === text;
    const open = (each: { text: string }): boolean => each.text.search(piece) >= 0 && piecesOf(each.text, text) !== null;
    const plain = command.replies.find(exact);
    if (plain) return { reply: plain };
    const failure = failures.find(exact) ?? failures.find(open);
    if (failure) return { failure };
    const reply = command.replies.find(open);
    return reply ? { reply } : null;
}

/** The failure of an entry of a batch; undefined for a value. */
export function entryFailure(contract: Pick<Contract, "failures">, command: Command, text: string): Failure | undefined {
    return (command.entryFailures ?? []).map((name) => contract.failures[name]).find((each) => each?.text === text);
}
