// The chosen element: its live values, its table of items with the sets, what it is connected to.

import { useSignal } from "@preact/signals";
import { useEffect } from "preact/hooks";
import { Gone } from "./api";
import { charted, chartToggle } from "./chartdata";
import { type Info, infoFetch } from "./elementinfo";
import { Icon } from "./icons";
import { ItemTable } from "./itemtable";
import { runVariable, unitOf } from "./names";
import type { Element, Plant, Run } from "./plant";
import { select } from "./project";
import { scene } from "./scene";
import { beat, follows, marked, panelNames, plant, selected, short, values } from "./state";
import { language, t } from "./text";

export function ChartButton({ name }: { name: string }) {
    const on = charted.value.includes(name);
    const text = `${on ? t("chartRemove") : t("chartAdd")}: ${name}`;
    return (
        <button type="button" class="tool small" aria-pressed={on} title={text} aria-label={text} onClick={() => chartToggle(name)}>
            <Icon name="chart" size={14} />
        </button>
    );
}

export function LiveValue({ name, fallback = "–" }: { name: string; fallback?: string }) {
    follows(beat.value);
    return <span class="value">{short(values.get(name) ?? fallback)}</span>;
}

function PortValues({ info }: { info: Info }) {
    const ports = [...new Set(info.ports.map(({ port }) => port))];
    if (ports.length === 0) return null;
    const words: Readonly<Record<string, "PRE" | "TEMP" | "FLOW">> = { PRE: "PRE", TEMP: "TEMP", FLOW: "FLOW" };
    return (
        <section>
            <h3>{t("values")}</h3>
            {ports.map((port) => (
                <div key={port} class="port">
                    <h4>{t("port")} {port}</h4>
                    {info.ports.filter((variable) => variable.port === port).map(({ name, item }) => {
                        const word = words[item];
                        return (
                            <div key={name} class="pair">
                                <span class="name">{word ? t(word) : item}</span>
                                <LiveValue name={name} /> <small>{unitOf(name)}</small> <ChartButton name={name} />
                            </div>
                        );
                    })}
                </div>
            ))}
        </section>
    );
}

function neighbours(of: Plant, key: string): { key: string; into: boolean; by: string }[] {
    return of.runs.flatMap((run) => {
        if (run.key === key) return [{ key: run.from.key, into: true, by: run.key }, { key: run.to.key, into: false, by: run.key }];
        if (run.from.key === key) return [{ key: run.to.key, into: false, by: run.key }];
        if (run.to.key === key) return [{ key: run.from.key, into: true, by: run.key }];
        return [];
    });
}

function Connections({ of, name }: { of: Plant; name: string }) {
    const rows = neighbours(of, name);
    if (rows.length === 0) return null;
    const go = (key: string): void => {
        select(key);
        scene.current?.reveal(key);
    };
    return (
        <section>
            <h3>{t("connected")}</h3>
            <ul class="rows">
                {rows.map(({ key, into, by }) => (
                    <li key={`${by} ${key} ${String(into)}`}>
                        <button type="button" onClick={() => go(key)}>
                            <small>{into ? t("into") : t("outOf")}</small>
                            <span class="name">{of.elements.get(key)?.id ?? key}</span>
                        </button>
                    </li>
                ))}
            </ul>
        </section>
    );
}

function Memberships({ of, name }: { of: Plant; name: string }) {
    const net = of.nets.find(({ keys }) => keys.has(name));
    if (!net) return null;
    const rows = [
        { title: `${t("net")} ${net.number + 1}`, keys: net.keys },
        ...net.branches.filter(({ keys }) => keys.has(name)).slice(0, 6)
            .map((branch) => ({ title: `${t("branch")} ${branch.number}`, keys: branch.keys })),
    ];
    return (
        <p class="chips">
            {rows.map((row) => (
                <button
                    key={row.title} type="button" class="chip" aria-pressed={marked.value?.title === row.title}
                    onClick={() => (marked.value = marked.value?.title === row.title ? null : row)}
                >
                    {row.title}
                </button>
            ))}
        </p>
    );
}

function Facts({ element, run }: { element: Element | undefined; run: Run | undefined }) {
    const english = element && !element.node && language.value === "en" ? ` (${element.type.en})` : "";
    return (
        <p class="facts">
            {element && <span>{element.node ? t("node") : ""} {element.typeName}{english}</span>}
            {run && !element && <span>{t(run.medium)}</span>}
            {element && <code>{element.key}</code>}
            {element?.model && <span>{t("model")} {element.model}</span>}
        </p>
    );
}

export function Inspector() {
    const key = selected.value;
    const of = plant.value;
    const info = useSignal<Info | null>(null);
    const reads = useSignal(0);
    const address = of && key !== null ? `${of.name}_${key}` : "";
    const element = key === null ? undefined : of?.elements.get(key);
    const run = of?.runs.find((each) => each.key === key);
    useEffect(() => {
        if (address === "" || !element) {
            const name = of && run ? runVariable(of, run, "FLOW") : null;
            panelNames("inspector", name === null ? [] : [name]);
            return () => panelNames("inspector", []);
        }
        let gone = false;
        infoFetch(address).then((found) => {
            if (gone) return;
            info.value = found;
            const names = [...found.ports.map(({ name }) => name), ...found.items.flatMap(({ name }) => name ?? [])];
            panelNames("inspector", names);
        }).catch((fault: unknown) => {
            if (!(fault instanceof Gone)) throw fault;
        });
        return () => {
            gone = true;
            panelNames("inspector", []);
        };
    }, [address, element, of, run, info, reads.value]);
    if (!of || key === null) return null;
    return (
        <aside
            class="inspector" id="inspector" tabIndex={-1} aria-label={element?.id ?? key}
            onKeyDown={(event) => {
                if (event.key !== "Escape") return;
                select(null);
                document.getElementById("drawing")?.focus();
            }}
        >
            <div class="head">
                <h2>{element?.id ?? key}</h2>
                <button type="button" class="tool" aria-label={t("dismiss")} title={t("dismiss")} onClick={() => select(null)}>
                    <Icon name="close" />
                </button>
            </div>
            <div class="scroll">
                <Facts element={element} run={run} />
                <Memberships of={of} name={key} />
                {info.value && <ItemTable address={address} info={info.value} changed={() => (reads.value += 1)} />}
                {info.value && <PortValues info={info.value} />}
                {info.value?.plain && <section><h3>{t("unnamedValues")}</h3><pre>{info.value.plain}</pre></section>}
                <Connections of={of} name={key} />
            </div>
        </aside>
    );
}
