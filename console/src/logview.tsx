// The records of events as they come, with filters.

import { useComputed, useSignal } from "@preact/signals";
import { useEffect, useRef } from "preact/hooks";
import { entries } from "./log";
import { concerns, type ExchangeRow, isOwnRead, type Row, rowText, withLeft } from "./rows";
import { current } from "./state";
import { t } from "./text";

const shownAtMost = 300;

function clock(time: number): string {
    const at = new Date(time);
    const two = (number: number): string => String(number).padStart(2, "0");
    return `${two(at.getHours())}:${two(at.getMinutes())}:${two(at.getSeconds())}`;
}

function Exchange({ row }: { row: ExchangeRow }) {
    return (
        <li class={row.side}>
            <time>{clock(row.time)}</time>
            <span class="side">{row.side === "write" ? t("writes") : t("reads")}</span>
            <span class="side">{row.front}</span>
            <b>{row.word}</b>
            <span class="rest">
                {row.word === "other" && <i>{row.sent} </i>}
                <span>{withLeft(row.name, row.nameLeft)}</span> <span>{withLeft(row.messages, row.messagesLeft)}</span>{" "}
                <span class="reply">{withLeft(row.reply, row.replyLeft)}</span>
                {row.store === "failed" && <b> {t("storeFailed")}</b>}
            </span>
        </li>
    );
}

function Line({ row }: { row: Row }) {
    if (row.kind === "exchange") return <Exchange row={row} />;
    return (
        <li class={row.kind}>
            <time>{clock(row.time)}</time>
            <span class="rest">{rowText(row)}</span>
        </li>
    );
}

export function LogView() {
    const words = useSignal("");
    const reads = useSignal(true);
    const writes = useSignal(true);
    const ownReads = useSignal(false);
    const own = useSignal(false);
    const held = useSignal<readonly Row[] | null>(null);
    const list = useRef<HTMLUListElement>(null);
    const rows = useComputed(() => {
        const text = words.value.toLowerCase();
        const side = (row: Row): boolean => row.kind !== "exchange" || (row.side === "write" ? writes.value : reads.value);
        const fits = (row: Row): boolean =>
            side(row) && (ownReads.value || !isOwnRead(row)) && (!own.value || concerns(row, current.value)) &&
            (text === "" || rowText(row).toLowerCase().includes(text));
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
                {tick(t("ownReads"), ownReads)}
                {tick(t("thisProject"), own)}
                <label class="tick">
                    <input type="checkbox" checked={held.value !== null} onChange={(event) => (held.value = event.currentTarget.checked ? entries.value : null)} /> {t("hold")}
                </label>
            </div>
            <ul ref={list} class="log-lines" tabIndex={0} aria-label={t("log")} onScroll={(event) => scrolled(event.currentTarget)}>
                {rows.value.map((row) => <Line key={row.number} row={row} />)}
            </ul>
            {rows.value.length === 0 && <p class="count">{t("logEmpty")}</p>}
        </div>
    );
}
