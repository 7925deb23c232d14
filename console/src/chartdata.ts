// The charted variables of the shown project and what was read of them so far.

import { effect, signal } from "@preact/signals";
import { beat, current, numberOf, panelNames, values } from "./state";

const pointsAtMost = 3600;
const linesAtMost = 8;

export const charted = signal<readonly string[]>([]);

/** Seconds since 1970, and for each charted variable its values at those times. */
export const times: number[] = [];
export const lines = new Map<string, (number | null)[]>();

const storeKey = (project: string): string => `charts ${project}`;

function kept(project: string): string[] {
    try {
        const names: unknown = JSON.parse(localStorage.getItem(storeKey(project)) ?? "null");
        if (Array.isArray(names)) return names.filter((name) => typeof name === "string").slice(0, linesAtMost);
    } catch {
        // What cannot be read counts as nothing kept.
    }
    return [`${project}_GTemp`];
}

function begin(project: string): void {
    times.length = 0;
    lines.clear();
    charted.value = kept(project);
}

export function chartToggle(name: string): void {
    const others = charted.value.filter((each) => each !== name);
    charted.value = others.length < charted.value.length ? others : [...others, name].slice(-linesAtMost);
    if (current.value !== null) localStorage.setItem(storeKey(current.value), JSON.stringify(charted.value));
}

function take(): void {
    times.push(Date.now() / 1000);
    for (const name of charted.peek()) {
        const line = lines.get(name) ?? new Array<null>(times.length - 1).fill(null);
        lines.set(name, line);
        while (line.length < times.length - 1) line.push(null);
        line.push(numberOf(values.get(name)));
    }
    if (times.length <= pointsAtMost) return;
    times.shift();
    for (const line of lines.values()) line.shift();
}

effect(() => {
    if (current.value !== null) begin(current.value);
});
effect(() => panelNames("charts", charted.value));
effect(() => {
    if (beat.value > 0) take();
});
