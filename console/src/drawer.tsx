// Below the drawing: the charts or the log.

import { Charts } from "./charts";
import { Icon } from "./icons";
import { LogView } from "./logview";
import { drawer, panel } from "./state";
import { t } from "./text";

const sheets = ["charts", "log"] as const;

export function Drawer() {
    // On a narrow screen the tab bar chooses.
    const shown = panel.value === "charts" || panel.value === "log" ? panel.value : drawer.value;
    return (
        <section class={shown ? "drawer open" : "drawer"} aria-label={`${t("charts")}, ${t("log")}`}>
            <div class="drawer-tabs">
                {sheets.map((sheet) => (
                    <button
                        key={sheet} type="button" class="drawer-tab" aria-expanded={shown === sheet}
                        onClick={() => (drawer.value = drawer.value === sheet ? null : sheet)}
                    >
                        <Icon name={sheet === "charts" ? "chart" : "log"} size={16} />
                        {t(sheet)}
                    </button>
                ))}
            </div>
            {shown !== null && <div class="drawer-sheet">{shown === "charts" ? <Charts /> : <LogView />}</div>}
        </section>
    );
}
