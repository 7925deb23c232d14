// What the page shows, as signals: components and the drawing follow them.

import type { Verdict } from "../../clients/typescript/src/index";
import { computed, signal } from "@preact/signals";
import type { Medium } from "./catalogue";
import type { Layout } from "./layout";
import type { Plant } from "./plant";

/** A project that the page knows of. */
export interface Known {
    readonly name: string;
    readonly open: boolean;
}

export type Quantity = "TEMP" | "PRE" | "FLOW" | "NONE";
export type LayoutKind = "tidy" | "given";

export const known = signal<readonly Known[]>([]);
/** The name of the project that is shown. */
export const current = signal<string | null>(null);
export const plant = signal<Plant | null>(null);
export const layout = signal<Layout | null>(null);
export const layoutKind = signal<LayoutKind>("tidy");
/** True while the worker lays out. */
export const layingOut = signal(false);

export const selected = signal<string | null>(null);
/** What is marked besides the selection, as a net or a branch: its name and its keys. */
export const marked = signal<{ readonly title: string; readonly keys: ReadonlySet<string> } | null>(null);
export const verdict = signal<Verdict | null>(null);
export const quantity = signal<Quantity>("TEMP");

/** The last read values by variable name; `beat` counts the reads. */
export const values = new Map<string, string>();
export const beat = signal(0);
/** Names that the service does not know: not asked for again. */
export const unknownNames = new Set<string>();

export type Panel = "plant" | "elements" | "charts" | "log";
/** On a narrow screen one panel shows at a time. */
export const panel = signal<Panel>("plant");
/** What the drawer below the drawing holds. */
export const drawer = signal<"charts" | "log" | null>(null);

export const openProjects = computed(() => known.value.filter((project) => project.open));

/** The size of the drawing on the screen. */
export const room = { w: innerWidth, h: innerHeight };

/** What the drawing shows just now, so that the poll asks for no more. */
export const inView = signal<readonly string[]>([]);
/** What the panels show besides. */
export const inPanels = signal<ReadonlyMap<string, readonly string[]>>(new Map());

export function panelNames(owner: string, names: readonly string[]): void {
    const all = new Map(inPanels.peek());
    if (names.length > 0) all.set(owner, names);
    else all.delete(owner);
    inPanels.value = all;
}

/** Names the signals that a component or an effect follows though it reads them elsewhere. */
export function follows(...signals: readonly unknown[]): void {
    if (signals.length === 0) throw new Error("nothing to follow");
}

export interface Notice {
    readonly text: string;
    readonly kind: "good" | "bad" | "plain";
    readonly key: number;
}

export const notices = signal<readonly Notice[]>([]);
let noticeKey = 0;

/** Tells something for some seconds; what went wrong stays longer. */
export function tell(text: string, kind: Notice["kind"] = "plain"): void {
    const notice = { text, kind, key: ++noticeKey };
    const others = notices.value.filter((each) => each.text !== text);
    notices.value = [...others.slice(-3), notice];
    const drop = (): void => {
        notices.value = notices.value.filter((each) => each !== notice);
    };
    setTimeout(drop, kind === "bad" ? 12000 : 4000);
}

/** The number of a value's text; null for a text that is none. */
export function numberOf(text: string | undefined): number | null {
    if (text === undefined || text.trim() === "") return null;
    const number = Number(text);
    return Number.isFinite(number) ? number : null;
}

/** A value as short as it can be understood. */
export function short(text: string | undefined): string {
    const number = numberOf(text);
    if (number === null) return text ?? "–";
    const size = Math.abs(number);
    if (size !== 0 && (size >= 1e6 || size < 0.001)) return number.toExponential(2);
    return String(Number(number.toFixed(size >= 100 ? 1 : size >= 1 ? 2 : 3)));
}

export const media: readonly Medium[] = ["water", "air", "refrigerant", "power", "info", "mech"];
