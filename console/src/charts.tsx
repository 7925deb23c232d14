// Charts of chosen variables over the time since they were chosen.

import { useSignal, useSignalEffect } from "@preact/signals";
import { useEffect, useRef } from "preact/hooks";
import uPlot from "uplot";
import { charted, chartToggle, lines, times } from "./chartdata";
import { Icon } from "./icons";
import { spoken, unitOf } from "./names";
import { beat, current, follows, plant, short, unknownNames, values } from "./state";
import { t } from "./text";

/** Left for the first unit, right for the others: numbers of an enumeration that exists only for the compiler. */
const sides = [3, 1] as unknown as [uPlot.Axis.Side.Left, uPlot.Axis.Side.Right];

const colours = ["water", "refrigerant", "air", "power", "bad", "mech", "info", "accent"] as const;

function colourOf(at: number): string {
    return getComputedStyle(document.documentElement).getPropertyValue(`--${colours[at % colours.length] ?? "ink"}`).trim();
}

const shortName = (name: string): string => spoken(name, plant.value, t);
const clock = (seconds: number): string => new Date(seconds * 1000).toLocaleTimeString("en-GB");
const narrow = matchMedia("(max-width: 760px)");

function optionsOf(names: readonly string[], width: number, height: number): uPlot.Options {
    const style = getComputedStyle(document.documentElement);
    const ink = style.getPropertyValue("--soft").trim();
    const grid = { stroke: style.getPropertyValue("--line").trim(), width: 1 };
    const unitsOf = [...new Set(names.map(unitOf))];
    return {
        width, height,
        legend: { show: false },
        cursor: { points: { size: 6 } },
        scales: { x: { time: true } },
        axes: [
            { stroke: ink, grid, ticks: grid, values: (_, ticks) => ticks.map(clock), space: 80 },
            // A narrow screen has room for one.
            ...unitsOf.slice(0, narrow.matches ? 1 : 3).map((unit, at): uPlot.Axis => ({
                scale: unit || "plain", side: at === 0 ? sides[0] : sides[1], stroke: ink, grid: at === 0 ? grid : { show: false },
                ticks: grid, label: unit, labelSize: unit ? 18 : 0, size: 62,
            })),
        ],
        series: [
            {},
            ...names.map((name, at): uPlot.Series => ({
                label: shortName(name), scale: unitOf(name) || "plain", stroke: colourOf(at), width: 2, points: { show: false },
            })),
        ],
    };
}

function dataOf(names: readonly string[]): uPlot.AlignedData {
    const blank = (): (number | null)[] => new Array<null>(times.length).fill(null);
    return [times, ...names.map((name) => lines.get(name) ?? blank())];
}

function Plot({ names }: { names: readonly string[] }) {
    const box = useRef<HTMLDivElement>(null);
    const plot = useRef<uPlot | null>(null);
    const list = names.join(" ");
    useEffect(() => {
        const home = box.current;
        if (!home) return undefined;
        const make = (): void => {
            plot.current?.destroy();
            plot.current = new uPlot(optionsOf(names, home.clientWidth, home.clientHeight), dataOf(names), home);
        };
        make();
        const sized = new ResizeObserver(() => plot.current?.setSize({ width: home.clientWidth, height: home.clientHeight }));
        sized.observe(home);
        const dark = matchMedia("(prefers-color-scheme: dark)");
        dark.addEventListener("change", make);
        return () => {
            dark.removeEventListener("change", make);
            sized.disconnect();
            plot.current?.destroy();
            plot.current = null;
        };
    }, [list]);
    useSignalEffect(() => {
        if (beat.value >= 0) plot.current?.setData(dataOf(charted.value));
    });
    return <div class="plot" ref={box} role="img" aria-label={`${t("charts")}: ${names.map(shortName).join(", ")}`} />;
}

function Lines() {
    follows(beat.value);
    return (
        <ul class="lines">
            {charted.value.map((name, at) => (
                <li key={name}>
                    <span class={`swatch ${colours[at % colours.length] ?? ""}`} />
                    <span class="name" title={name}>{shortName(name)}</span>
                    {unknownNames.has(name)
                        ? <small>{t("unknownVariable")}</small>
                        : <><b>{short(values.get(name))}</b> <small>{unitOf(name)}</small></>}
                    <button type="button" class="tool small" aria-label={`${t("chartRemove")}: ${name}`} onClick={() => chartToggle(name)}>
                        <Icon name="close" size={12} />
                    </button>
                </li>
            ))}
        </ul>
    );
}

function AddLine() {
    const name = useSignal("");
    return (
        <form
            class="row"
            onSubmit={(event) => {
                event.preventDefault();
                const text = name.value.trim();
                const project = `${current.value ?? ""}_`;
                if (text !== "") chartToggle(text.startsWith(project) ? text : project + text);
                name.value = "";
            }}
        >
            <input type="text" value={name.value} placeholder={t("chartVariable")} aria-label={t("chartVariable")} onInput={(event) => (name.value = event.currentTarget.value)} />
            <button type="submit" class="action" disabled={!name.value.trim()}>{t("add")}</button>
        </form>
    );
}

export function Charts() {
    return (
        <div class="charts">
            <div class="chart-side">
                <Lines />
                <AddLine />
                {charted.value.length < 2 && <p class="hint">{t("chartEmpty")}</p>}
            </div>
            {charted.value.length > 0 && <Plot names={charted.value} />}
        </div>
    );
}
