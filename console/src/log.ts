// The last records of events, fetched from the host.

import { signal } from "@preact/signals";
import type { Row, RunState } from "./rows";
import { statesTake } from "./runstate";

interface News {
    readonly next: number;
    readonly lost: number;
    readonly projects: Readonly<Record<string, RunState>>;
    readonly events: readonly Row[];
}

const kept = 1500;

export const entries = signal<readonly Row[]>([]);
let next = 0;

/** Fetches what is new, takes the run states, and gives the new rows; none when the host does not answer. */
export async function eventsFetch(): Promise<readonly Row[]> {
    const reply = await fetch(`events?after=${next}`);
    if (!reply.ok) return [];
    const news = (await reply.json()) as News;
    // A host that was started again counts from the start.
    next = news.next < next ? 0 : news.next;
    statesTake(news.projects);
    if (news.events.length > 0) entries.value = [...entries.value, ...news.events].slice(-kept);
    return news.events;
}
