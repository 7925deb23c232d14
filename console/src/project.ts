// Opening, loading and driving projects.

import { numberIn, reportNumbers, reportRead, verdictRead } from "../../clients/typescript/src/index";
import { ask, askQuietly, Gone, RawJson, waiting } from "./api";
import { givenLayout, tidyLayout } from "./layout";
import { eventsFetch } from "./log";
import { plantOf } from "./plant";
import { openNames } from "./runstate";
import {
    current, known, layingOut, layout, layoutKind, marked, plant, room, selected, tell, unknownNames, values, verdict,
} from "./state";
import { t } from "./text";

const storeKey = "projects";

function rememberedNames(): string[] {
    try {
        const names: unknown = JSON.parse(localStorage.getItem(storeKey) ?? "[]");
        return Array.isArray(names) ? names.filter((name) => typeof name === "string") : [];
    } catch {
        return [];
    }
}

function remember(): void {
    localStorage.setItem(storeKey, JSON.stringify(known.value.map(({ name }) => name)));
}

function knownSet(name: string, open: boolean): void {
    const others = known.value.filter((project) => project.name !== name);
    known.value = [...others, { name, open }].sort((one, other) => one.name.localeCompare(other.name));
}

/** For projects that were opened, driven or closed: lists each as the host has it now. */
export function projectsFollow(names: readonly string[]): void {
    for (const name of new Set(names)) knownSet(name, openNames.value.includes(name));
    if (names.length > 0) remember();
}

/** The projects that the host has open, and the others that are known. */
export function projectsFound(): void {
    const open = new Set(openNames.value);
    for (const { name } of known.value) open.delete(name);
    known.value = known.value.map(({ name }) => ({ name, open: openNames.value.includes(name) }));
    for (const name of open) knownSet(name, true);
    remember();
}

/** The projects that this browser remembers, and those that are open. */
export async function projectsBegin(): Promise<void> {
    known.value = rememberedNames().map((name) => ({ name, open: false }));
    await eventsFetch();
    projectsFound();
}

function addressed(): string[] {
    const name = decodeURIComponent(location.hash.slice(1)).toUpperCase();
    return /^[A-Z0-9]{1,64}$/.test(name) ? [name] : [];
}

let chosen = false;

/** The project to begin with: the address's, else one that is open; null once a person has opened one. */
export function firstProject(): string | null {
    if (chosen) return null;
    const wanted = addressed()[0];
    const open = known.value.filter((project) => project.open).map(({ name }) => name);
    return open.find((name) => name === wanted) ?? open[0] ?? null;
}

export function forget(name: string): void {
    known.value = known.value.filter((project) => project.name !== name);
    remember();
    if (current.value === name) leave();
}

function leave(): void {
    current.value = null;
    plant.value = null;
    layout.value = null;
    verdict.value = null;
    select(null);
}

export function select(key: string | null): void {
    selected.value = key;
    if (key === null) marked.value = null;
}

/** Runs a command of a person's and tells what went wrong; gives the reply, null where there was none. */
export async function command(word: string, name: string, messages: unknown = ""): Promise<string | null> {
    try {
        return await ask(word, name, messages);
    } catch (fault) {
        if (!(fault instanceof Gone)) throw fault;
        tell(`${word}: ${t("gone")}`, "bad");
        return null;
    }
}

/** As `command`, for one that replies "OK"; any other reply is told. */
export async function order(word: string, name: string, messages: unknown = ""): Promise<boolean> {
    const reply = await command(word, name, messages);
    if (reply !== null && reply !== "OK") tell(`${t("refused")}: ${reply.trim() || word}`, "bad");
    return reply === "OK";
}

export async function openProject(text: string): Promise<void> {
    chosen = true;
    const name = text.trim().toUpperCase();
    const reply = await command("Open", name);
    if (reply === null) return;
    if (reply !== "OK" && reply !== "项目已打开") {
        tell(`${t("refused")}: ${reply}`, "bad");
        return;
    }
    knownSet(name, true);
    remember();
    await show(name);
}

export async function closeProject(name: string): Promise<void> {
    if (!(await order("PjtClose", name))) return;
    knownSet(name, false);
    if (current.value === name) leave();
}

/** Shows a project that is open. */
export async function show(name: string): Promise<void> {
    leave();
    current.value = name;
    unknownNames.clear();
    values.clear();
    history.replaceState(null, "", `#${name}`);
    await load();
}

/** An element's number, out of the names of its variables; null where the engine tells none. */
async function askNumber(project: string, id: string, prefix: string): Promise<number | null> {
    return numberIn(await askQuietly("VarInfoGet", `${project}_${id}`, ""), project, prefix);
}

let loads = 0;

/** Reads the project anew: the verdict, then the topology of that very analysis. */
export async function load(): Promise<void> {
    const name = current.value;
    if (name === null) return;
    const turn = ++loads;
    try {
        const judged = verdictRead(await ask("NetAccess", name));
        const text = await ask("PjtInfoChk", name);
        const report = reportRead(text);
        if (turn !== loads || current.value !== name) return;
        if (!report) {
            tell(`${t("refused")}: ${text.slice(0, 200)}`, "bad");
            knownSet(name, openNames.value.includes(name));
            return;
        }
        const { modules, nodes } = await reportNumbers(report, (id, prefix) => askNumber(name, id, prefix));
        if (turn !== loads) return;
        const next = plantOf(name, text, report, modules, nodes);
        if (selected.value !== null && !next.elements.has(selected.value)) select(null);
        verdict.value = next.elements.size > 0 ? judged : null;
        await arrange(next);
    } catch (fault) {
        if (!(fault instanceof Gone)) throw fault;
    }
}

/** Milliseconds before the document's positions stand in for a tidy layout. */
const patience = 800;

async function arrange(next: NonNullable<typeof plant.value>): Promise<void> {
    const turn = loads;
    if (plant.value?.name !== next.name) layoutKind.value = "tidy";
    if (layoutKind.value === "given") {
        layout.value = givenLayout(next);
        plant.value = next;
        return;
    }
    layingOut.value = true;
    const given = (): void => {
        if (current.value !== next.name || plant.value === next) return;
        layout.value = givenLayout(next);
        plant.value = next;
    };
    // A layout that takes long is not waited for.
    const timer = setTimeout(given, patience);
    try {
        const tidy = await tidyLayout(next, room);
        if (current.value !== next.name || turn !== loads) return;
        layout.value = tidy;
        plant.value = next;
    } finally {
        clearTimeout(timer);
        layingOut.value = false;
    }
}

export async function layoutSet(kind: typeof layoutKind.value): Promise<void> {
    layoutKind.value = kind;
    if (plant.value) await arrange(plant.value);
}

/** Sends a document's text as it stands. */
export async function sendDocument(name: string, text: string): Promise<void> {
    try {
        const root: unknown = JSON.parse(text);
        if (typeof root !== "object" || root === null || Array.isArray(root)) throw new SyntaxError();
    } catch {
        tell(t("noJson"), "bad");
        return;
    }
    // The records of events bring the page to read the project anew.
    if (await order("PjtSent", name, new RawJson(text))) tell(t("sent"), "good");
}

/** Drives the shown project; its state then comes with the records of events. */
async function drive(word: string): Promise<void> {
    if (current.value !== null) await order(word, current.value);
}

export const run = (): Promise<void> => drive("PjtRun");
export const pauseOrResume = (): Promise<void> => drive("PjtPause");
export const step = (): Promise<void> => drive("PjtStep");
export const stop = (): Promise<void> => drive("PjtStop");

/** True while a command of that word is under way. */
export function underWay(word: string): boolean {
    return waiting.value.some(({ command: each }) => each === word);
}
