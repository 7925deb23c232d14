// Which projects are open and whether they run, as the host reports it.

import { computed, signal } from "@preact/signals";
import type { RunState } from "./rows";
import { current } from "./state";

const states = signal<Readonly<Record<string, RunState>>>({});

/** The state of the project that is shown. */
export const runState = computed<RunState>(() => (current.value === null ? undefined : states.value[current.value]) ?? "stopped");

export const openNames = computed<readonly string[]>(() => Object.keys(states.value));

export function statesTake(next: Readonly<Record<string, RunState>>): void {
    if (JSON.stringify(next) !== JSON.stringify(states.value)) states.value = next;
}
