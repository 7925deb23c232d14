// Whether the shown project runs. No command tells it: the page follows the step count, its own commands and those
// that the log shows of others.

import { signal } from "@preact/signals";

export type RunState = "running" | "paused" | "stopped";

export const runState = signal<RunState>("stopped");

/** The engine steps ten times a second: a count that stood still for so long stands. */
const still = 2500;
let movedAt = 0;
let setAt = 0;

const moving = (): boolean => Date.now() - movedAt < still;

/** After a command that succeeded. */
export function runStateSet(next: RunState): void {
    runState.value = next;
    setAt = Date.now();
    movedAt = next === "running" ? setAt : movedAt;
}

/** For another project. */
export function runStateForget(): void {
    runState.value = "stopped";
    movedAt = 0;
    setAt = 0;
}

/** The step count of two reads in a row. */
export function stepsSeen(before: string | undefined, after: string | undefined): void {
    if (before === undefined || after === undefined) return;
    const settled = Date.now() - setAt > still;
    if (before !== after) {
        // A single step moves the count once; a running project moves it again and again.
        const twice = moving();
        movedAt = Date.now();
        if (settled && twice) runState.value = "running";
    } else if (settled && !moving() && runState.value === "running") {
        runState.value = "stopped";
    }
}

/** A command of another client, as the log shows it. */
export function runCommandSeen(command: string): void {
    if (command === "PjtStop") runStateSet("stopped");
    if (command === "PjtRun") runStateSet("running");
    if (command === "PjtPause") runStateSet(runState.value === "running" ? "paused" : moving() ? "paused" : "running");
}
