// What lies over the drawing: the shown quantity, zoom, layouts, the legend.

import { useComputed } from "@preact/signals";
import type { Medium } from "./catalogue";
import { scene } from "./scene";
import { Icon } from "./icons";
import { layoutSet } from "./project";
import { inView, layingOut, layoutKind, media, plant, quantity, type Quantity, verdict } from "./state";
import { t } from "./text";

const quantities: readonly Quantity[] = ["TEMP", "PRE", "FLOW", "NONE"];

function Quantities() {
    return (
        <div class="segments" role="radiogroup" aria-label={t("show")}>
            {quantities.map((each) => (
                <button
                    key={each} type="button" role="radio" aria-checked={quantity.value === each}
                    onClick={() => (quantity.value = each)}
                >
                    {t(each)}
                </button>
            ))}
        </div>
    );
}

function Judged() {
    if (verdict.value?.good !== true) return null;
    return (
        <span class="pill good">
            <Icon name="check" size={14} /> {t("complete")}
        </span>
    );
}

function Legend() {
    const present = useComputed(() => {
        const all = new Set(plant.value?.runs.map((run) => run.medium));
        return media.filter((medium: Medium) => all.has(medium));
    });
    return (
        <ul class="legend" aria-label={t("legend")}>
            {present.value.map((medium) => (
                <li key={medium}>
                    <span class={`swatch ${medium}`} />
                    {t(medium)}
                </li>
            ))}
        </ul>
    );
}

export function Tools() {
    const tidy = layoutKind.value === "tidy";
    const far = inView.value.length === 0 && quantity.value !== "NONE";
    return (
        <>
            <div class="over top">
                <Quantities />
                <Judged />
                {far && <span class="pill">{t("zoomForValues")}</span>}
                {layingOut.value && <span class="pill" role="status">{t("layingOut")}</span>}
            </div>
            <div class="over corner">
                <button type="button" class="tool" title={t("zoomIn")} aria-label={t("zoomIn")} onClick={() => scene.current?.zoomBy(1.4)}>
                    <Icon name="plus" />
                </button>
                <button type="button" class="tool" title={t("zoomOut")} aria-label={t("zoomOut")} onClick={() => scene.current?.zoomBy(1 / 1.4)}>
                    <Icon name="minus" />
                </button>
                <button type="button" class="tool" title={t("fit")} aria-label={t("fit")} onClick={() => scene.current?.fit()}>
                    <Icon name="fit" />
                </button>
                <button
                    type="button" class="tool" title={tidy ? t("layoutGiven") : t("layoutTidy")}
                    aria-label={tidy ? t("layoutGiven") : t("layoutTidy")} disabled={layingOut.value}
                    onClick={() => void layoutSet(tidy ? "given" : "tidy")}
                >
                    <Icon name="tidy" />
                </button>
            </div>
            <div class="over bottom">
                <Legend />
            </div>
        </>
    );
}
