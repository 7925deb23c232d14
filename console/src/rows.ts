// The records of events as the host gives them: exchanges, changes of run states and reports of the engine.

export type RunState = "running" | "paused" | "stopped";

interface Numbered {
    readonly number: number;
    readonly time: number;
}

export interface ExchangeRow extends Numbered {
    readonly kind: "exchange";
    /** The way in: `http`, `pipe`, `serial` or `console`. */
    readonly front: string;
    readonly side: "read" | "write";
    /** A word of the service, or `other`; then `sent` has what came. */
    readonly word: string;
    readonly sent: string;
    readonly name: string;
    readonly nameLeft: number;
    readonly project: string;
    readonly messages: string;
    readonly messagesLeft: number;
    readonly reply: string;
    readonly replyLeft: number;
    readonly replyKind: string;
    readonly store: "none" | "stored" | "failed";
}

export interface StateRow extends Numbered {
    readonly kind: "state";
    readonly project: string;
    readonly state: RunState | "closed";
    readonly byCommand: boolean;
}

export interface NoticeRow extends Numbered {
    readonly kind: "notice";
    readonly severity: string;
    readonly text: string;
}

export type Row = ExchangeRow | StateRow | NoticeRow;

/** A text, with the number of bytes that are missing from it. */
export const withLeft = (text: string, left: number): string => (left > 0 ? `${text}… +${left}` : text);

/** What the page's poll reads: shown only where a person asks for it. What the console writes is always shown. */
export const isOwnRead = (row: Row): boolean =>
    row.kind === "exchange" && row.front === "console" && row.side === "read";

/** True for a row about the project, and for a batch, which names its variables in its messages. */
export const concerns = (row: Row, project: string | null): boolean =>
    row.kind !== "notice" && (row.project === project || (row.kind === "exchange" && row.name === "json"));

/** The words of a row, for a person to read and to search in. */
export function rowText(row: Row): string {
    switch (row.kind) {
        case "exchange": {
            const word = row.word === "other" ? `other ${row.sent}` : row.word;
            const texts = [[row.name, row.nameLeft], [row.messages, row.messagesLeft], [row.reply, row.replyLeft]] as const;
            return [row.front, word, ...texts.map(([text, left]) => withLeft(text, left))].join(" ");
        }
        case "state": return `${row.project} ${row.state}`;
        case "notice": return row.text;
    }
}
