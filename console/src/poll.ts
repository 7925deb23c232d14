// The one poll: each second the values of all that is shown in one batch, and the news of the log. It stands still
// while the page is hidden.

import { askQuietly, Gone, RawJson, serviceUp, wasOwn } from "./api";
import { type Entry, logFetch } from "./log";
import { load, meet } from "./project";
import { runCommandSeen, stepsSeen } from "./runstate";
import { beat, current, inPanels, inView, known, plant, tell, unknownNames, values } from "./state";
import { t } from "./text";

const period = 1000;
/** The service's log keeps 20000 bytes; a batch and its reply are to leave room for others there. */
const bytesAtMost = 12000;
const bytesOfReply = 16;

export const globals = ["GStep", "GTemp", "WAll", "COP"] as const;

const changing = new Set(["AddModule", "AddNode", "AddLink", "DeleteMNL", "MoveMN", "PjtSent", "PjtClear"]);
const listing = new Set(["Create", "Open", "PjtClose", "Put"]);

function namesToAsk(project: string): string[] {
    const wanted = new Set(globals.map((item) => `${project}_${item}`));
    for (const names of inPanels.value.values()) for (const name of names) wanted.add(name);
    for (const name of inView.value) wanted.add(name);
    const names: string[] = [];
    let bytes = 0;
    for (const name of wanted) {
        if (unknownNames.has(name)) continue;
        bytes += name.length + bytesOfReply;
        if (bytes > bytesAtMost) break;
        names.push(name);
    }
    return names;
}

/** The parts of a batch's reply, which escapes nothing. */
export function batchRead(reply: string): string[] {
    return reply.length > 4 ? reply.slice(2, -2).split('","') : [];
}

async function valuesFetch(): Promise<void> {
    const project = current.value;
    if (project === null || plant.value === null) return;
    const names = namesToAsk(project);
    // Marked as the console's own, so that the log leaves it out.
    const batch = new RawJson(`{"By":"console","VarName":${JSON.stringify(names)}}`);
    const texts = batchRead(await askQuietly("Get", "json", batch));
    if (current.value !== project || texts.length !== names.length) return;
    const steps = `${project}_GStep`;
    const before = values.get(steps);
    names.forEach((name, at) => {
        const text = texts[at] ?? "";
        if (text.startsWith("none varname")) {
            unknownNames.add(name);
            values.delete(name);
        } else {
            values.set(name, text);
        }
    });
    stepsSeen(before, values.get(steps));
    beat.value += 1;
}

/** Follows what another client did to the project that is shown; true when its structure has changed. */
function follow(entry: Entry): boolean {
    if (wasOwn(entry.command)) return false;
    const verb = entry.command === "Put" ? `Pjt${/ (Run|Pause|Stop) /.exec(entry.rest)?.[1] ?? ""}` : entry.command;
    if (entry.rest.endsWith(" OK") || entry.command === "Put") runCommandSeen(verb);
    return changing.has(entry.command);
}

let loadTimer: ReturnType<typeof setTimeout> | undefined;

async function logFollow(): Promise<void> {
    const fresh = await logFetch();
    const names = new Set(known.value.map(({ name }) => name));
    const toMeet = fresh.filter(({ command, project }) => project && (!names.has(project) || listing.has(command)));
    if (toMeet.length > 0) await meet(toMeet.map(({ project }) => project));
    const changed = fresh.filter((entry) => entry.project === current.value && follow(entry));
    if (changed.length > 0) {
        clearTimeout(loadTimer);
        loadTimer = setTimeout(() => void load(), 400);
    }
}

/** Whether all went well: the host and the service behind it answer. */
async function pollOnce(): Promise<boolean> {
    try {
        await logFollow();
        await valuesFetch();
        // Without a project there is nothing to ask the service for; the host has answered.
        if (current.value === null) serviceUp.value = true;
        return serviceUp.value;
    } catch (fault) {
        if (!(fault instanceof Gone) && !(fault instanceof TypeError)) throw fault;
        serviceUp.value = false;
        return false;
    }
}

/** A service that was started again holds other projects than before. */
async function comeBack(): Promise<void> {
    tell(t("back"), "good");
    await meet(known.value.map(({ name }) => name));
    if (known.value.some(({ name, open }) => open && name === current.value)) await load();
}

function shownAgain(): Promise<void> {
    if (!document.hidden) return Promise.resolve();
    return new Promise((resolve) => {
        const look = (): void => {
            if (document.hidden) return;
            document.removeEventListener("visibilitychange", look);
            resolve();
        };
        document.addEventListener("visibilitychange", look);
    });
}

/** Polls until the page goes. */
export async function pollForEver(): Promise<never> {
    let wasUp = true;
    for (;;) {
        await shownAgain();
        const start = Date.now();
        const up = await pollOnce();
        if (up && !wasUp) await comeBack().catch(() => undefined);
        wasUp = up;
        await new Promise((resolve) => setTimeout(resolve, Math.max(150, period - (Date.now() - start))));
    }
}
