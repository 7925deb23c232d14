// On a narrow screen: which of the panels shows.

import { Icon, type IconName } from "./icons";
import { panel, type Panel } from "./state";
import { t, type TextKey } from "./text";

const tabs: readonly (readonly [Panel, TextKey, IconName])[] = [
    ["plant", "tabPlant", "plant"],
    ["elements", "tabElements", "list"],
    ["charts", "charts", "chart"],
    ["log", "log", "log"],
];

export function Tabs() {
    return (
        <nav class="tabs" aria-label={t("more")}>
            {tabs.map(([name, text, icon]) => (
                <button key={name} type="button" aria-current={panel.value === name ? "page" : undefined} onClick={() => (panel.value = name)}>
                    <Icon name={icon} />
                    {t(text)}
                </button>
            ))}
        </nav>
    );
}
