// The one poll: each second the values of all that is shown in one batch, and the new records of events. It stands still
// while the page is hidden.

import { askQuietly, Gone, serviceUp } from "./api";
import { eventsFetch } from "./log";
import { load, projectsFollow, projectsFound } from "./project";
import type { Row } from "./rows";
import { beat, current, inPanels, inView, known, plant, tell, unknownNames, values } from "./state";
import { t } from "./text";

const period = 1000;
/** Of a batch with its reply, so that one poll is no burden for others. */
const bytesAtMost = 12000;
const bytesOfReply = 16;

export const globals = ["GStep", "GTemp", "WAll", "COP"] as const;

const changing = new Set(["AddModule", "AddNode", "AddLink", "DeleteMNL", "MoveMN", "PjtSent", "PjtClear"]);

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
    const texts = batchRead(await askQuietly("Get", "json", { VarName: names }));
    if (current.value !== project || texts.length !== names.length) return;
    names.forEach((name, at) => {
        const text = texts[at] ?? "";
        if (text.startsWith("none varname")) {
            unknownNames.add(name);
            values.delete(name);
        } else {
            values.set(name, text);
        }
    });
    beat.value += 1;
}

let loadTimer: ReturnType<typeof setTimeout> | undefined;

/** Follows what was done to the projects, by whomever. */
async function eventsFollow(): Promise<void> {
    const fresh = await eventsFetch();
    projectsFollow(fresh.flatMap((row) => (row.kind === "state" ? [row.project] : [])));
    const changes = (row: Row): boolean =>
        row.kind === "exchange" && row.project === current.value && changing.has(row.word);
    if (!fresh.some(changes)) return;
    clearTimeout(loadTimer);
    loadTimer = setTimeout(() => void load(), 400);
}

/** Whether all went well: the host and the service behind it answer. */
async function pollOnce(): Promise<boolean> {
    try {
        await eventsFollow();
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
    projectsFound();
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
