// The exchange log as it runs, with filters.

import { useComputed, useSignal } from "@preact/signals";
import { useEffect, useRef } from "preact/hooks";
import { cut, entries, type Entry } from "./log";
import { current } from "./state";
import { t } from "./text";

const shownAtMost = 300;

function clock(time: number): string {
    const at = new Date(time);
    const two = (number: number): string => String(number).padStart(2, "0");
    return `${two(at.getHours())}:${two(at.getMinutes())}:${two(at.getSeconds())}`;
}

function Line({ entry }: { entry: Entry }) {
    return (
        <li class={entry.write ? "write" : "read"}>
            <time>{clock(entry.time)}</time>
            <span class="side">{entry.write ? t("writes") : t("reads")}</span>
            <b title={entry.command === cut ? t("cutOff") : undefined}>{entry.command}</b>
            <span class="rest">
                {entry.rest}
                {entry.more.length > 0 && (
                    <details><summary>+{entry.more.length}</summary><pre>{entry.more.join("\n")}</pre></details>
                )}
            </span>
        </li>
    );
}

export function LogView() {
    const words = useSignal("");
    const reads = useSignal(true);
    const writes = useSignal(true);
    const own = useSignal(false);
    const held = useSignal<readonly Entry[] | null>(null);
    const list = useRef<HTMLUListElement>(null);
    const rows = useComputed(() => {
        const text = words.value.toLowerCase();
        const fits = (entry: Entry): boolean =>
            (entry.write ? writes.value : reads.value) && (!own.value || entry.project === current.value) &&
            (text === "" || `${entry.command} ${entry.rest}`.toLowerCase().includes(text));
        return (held.value ?? entries.value).filter(fits).slice(-shownAtMost);
    });
    const last = rows.value.at(-1)?.number;
    const atEnd = useRef(true);
    useEffect(() => {
        // Follows the end, unless a person has scrolled up.
        const box = list.current;
        if (box && atEnd.current) box.scrollTop = box.scrollHeight;
    }, [last]);
    const scrolled = (box: HTMLElement): void => {
        atEnd.current = box.scrollHeight - box.scrollTop - box.clientHeight < 40;
    };
    const tick = (text: string, on: { value: boolean }) => (
        <label class="tick">
            <input type="checkbox" checked={on.value} onChange={(event) => (on.value = event.currentTarget.checked)} /> {text}
        </label>
    );
    return (
        <div class="log">
            <div class="row filters">
                <input type="search" value={words.value} placeholder={t("logFilter")} aria-label={t("logFilter")} onInput={(event) => (words.value = event.currentTarget.value)} />
                {tick(t("reads"), reads)}
                {tick(t("writes"), writes)}
                {tick(t("thisProject"), own)}
                <label class="tick">
                    <input type="checkbox" checked={held.value !== null} onChange={(event) => (held.value = event.currentTarget.checked ? entries.value : null)} /> {t("hold")}
                </label>
            </div>
            <ul ref={list} class="log-lines" tabIndex={0} aria-label={t("log")} onScroll={(event) => scrolled(event.currentTarget)}>
                {rows.value.map((entry) => <Line key={entry.number} entry={entry} />)}
            </ul>
            {rows.value.length === 0 && <p class="count">{t("logEmpty")}</p>}
        </div>
    );
}
