// The plant as lists: its elements with a search, its nets and branches. All that the drawing shows can be reached here
// without a pointer.

import { useComputed, useSignal } from "@preact/signals";
import { Icon } from "./icons";
import type { Branch, Element, Net } from "./plant";
import { select } from "./project";
import { scene } from "./scene";
import { marked, panel, plant, selected, verdict } from "./state";
import { language, t } from "./text";

const shownAtMost = 200;

function typeText(element: Element): string {
    if (element.node) return `${t("node")} ${element.typeName}`;
    return language.value === "zh" ? element.typeName : element.type.en;
}

function choose(key: string): void {
    select(key);
    panel.value = "plant";
    scene.current?.reveal(key);
}

function Elements() {
    const wanted = useSignal("");
    const all = useComputed(() => {
        const words = wanted.value.toLowerCase().split(/\s+/).filter((word) => word !== "");
        const rows = [...(plant.value?.elements.values() ?? [])];
        const text = (element: Element): string =>
            `${element.id} ${element.key} ${element.typeName} ${element.type.en} ${element.model}`.toLowerCase();
        const fitting = rows.filter((element) => words.every((word) => text(element).includes(word)));
        // Devices before nodes before pipes: what one looks for stands first.
        const rank = (element: Element): number => (element.type.pipe ? 2 : element.node ? 1 : 0);
        return fitting.sort((one, other) => rank(one) - rank(other));
    });
    return (
        <>
            <label class="search">
                <Icon name="search" size={16} />
                <input
                    id="search" type="search" value={wanted.value} placeholder={t("search")} aria-label={t("search")}
                    onInput={(event) => (wanted.value = event.currentTarget.value)}
                    onKeyDown={(event) => {
                        const first = all.value[0];
                        if (event.key !== "Enter" || !first) return;
                        choose(first.key);
                        document.getElementById("drawing")?.focus();
                    }}
                />
            </label>
            <p class="count">{all.value.length} {t("count")}</p>
            <ul class="rows">
                {all.value.slice(0, shownAtMost).map((element) => (
                    <li key={element.key}>
                        <button
                            type="button" aria-current={selected.value === element.key}
                            class={verdict.value?.key === element.key ? "bad" : ""} onClick={() => choose(element.key)}
                        >
                            <span class="name">{element.id}</span>
                            <small>{typeText(element)}</small>
                        </button>
                    </li>
                ))}
            </ul>
            {all.value.length > shownAtMost && <p class="count">… {all.value.length - shownAtMost}</p>}
            {all.value.length === 0 && <p class="count">{t("noElements")}</p>}
        </>
    );
}

function mark(title: string, keys: ReadonlySet<string>): void {
    marked.value = marked.value?.title === title ? null : { title, keys };
}

function nameOf(key: string): string {
    return plant.value?.elements.get(key)?.id ?? (key === "None" ? "?" : key);
}

function BranchRow({ branch }: { branch: Branch }) {
    const title = `${t("branch")} ${branch.number}`;
    return (
        <li>
            <button type="button" aria-pressed={marked.value?.title === title} onClick={() => mark(title, branch.keys)}>
                <span class="name">{title}</span>
                <small>{nameOf(branch.front)} → {nameOf(branch.post)}</small>
            </button>
        </li>
    );
}

function NetRow({ net }: { net: Net }) {
    const open = useSignal(false);
    const title = `${t("net")} ${net.number + 1}`;
    return (
        <li class="net">
            <div class="row">
                <button type="button" class="wide" aria-pressed={marked.value?.title === title} onClick={() => mark(title, net.keys)}>
                    <span class={`swatch ${net.medium}`} />
                    <span class="name">{title} · {t(net.medium)}</span>
                    <small>{net.branches.length} {t(net.branches.length === 1 ? "oneBranch" : "branches")}</small>
                </button>
                <button type="button" class="tool small" aria-expanded={open.value} aria-label={`${title}: ${t("branch")}`} onClick={() => (open.value = !open.value)}>
                    <Icon name={open.value ? "minus" : "plus"} size={14} />
                </button>
            </div>
            {open.value && <ul class="rows inner">{net.branches.map((branch) => <BranchRow key={branch.number} branch={branch} />)}</ul>}
        </li>
    );
}

function Networks() {
    const nets = plant.value?.nets ?? [];
    if (nets.length === 0) return <p class="count">{t("noNets")}</p>;
    return <ul class="rows nets">{nets.map((net) => <NetRow key={net.number} net={net} />)}</ul>;
}

export function Sidebar() {
    const networks = useSignal(false);
    return (
        <aside class="sidebar" aria-label={t("elements")}>
            <div class="segments full" role="tablist">
                <button type="button" role="tab" aria-selected={!networks.value} onClick={() => (networks.value = false)}>{t("elements")}</button>
                <button type="button" role="tab" aria-selected={networks.value} onClick={() => (networks.value = true)}>{t("networks")}</button>
            </div>
            <div class="scroll" role="tabpanel" aria-label={networks.value ? t("networks") : t("elements")}>
                {networks.value ? <Networks /> : <Elements />}
            </div>
        </aside>
    );
}
