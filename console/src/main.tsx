// The page: what stands where.

import { render } from "preact";
import { useEffect } from "preact/hooks";
import { serviceUp } from "./api";
import { Banner } from "./banner";
import { ChooseButton, Documents } from "./documents";
import { Drawer } from "./drawer";
import { Drawing } from "./drawing";
import { Inspector } from "./inspector";
import { Notices } from "./notices";
import { pollForEver } from "./poll";
import { firstProject, projectsBegin, show } from "./project";
import { Welcome } from "./projects";
import { Sidebar } from "./sidebar";
import { current, known, panel, plant, selected } from "./state";
import { Tabs } from "./tabs";
import { language, t } from "./text";
import { TopBar } from "./topbar";
import "uplot/dist/uPlot.min.css";
import "./style.css";

function Workspace() {
    const empty = plant.value !== null && plant.value.elements.size === 0;
    return (
        <main class={`workspace show-${panel.value}`}>
            <Sidebar />
            <section class="centre" aria-label={t("tabPlant")}>
                <Banner />
                <div class="stage">
                    <Drawing />
                    {plant.value === null && <div class="empty"><span class="spinner" /> {t("loading")}</div>}
                    {empty && (
                        <div class="empty">
                            <h2>{t("empty")}</h2>
                            <p>{t("emptyText")}</p>
                            <ChooseButton />
                        </div>
                    )}
                </div>
                <Drawer />
            </section>
            {selected.value !== null && <Inspector key={selected.value} />}
            <Tabs />
        </main>
    );
}

/** A slash leads to the search, as in many programs. */
function searchKey(event: KeyboardEvent): void {
    const field = document.getElementById("search");
    if (event.key !== "/" || !field || (event.target as HTMLElement).closest("input, select, dialog")) return;
    event.preventDefault();
    field.focus();
}

function Page() {
    useEffect(() => {
        addEventListener("keydown", searchKey);
        return () => removeEventListener("keydown", searchKey);
    }, []);
    useEffect(() => {
        document.documentElement.lang = language.value === "zh" ? "zh-CN" : "en";
        document.title = current.value === null ? t("title") : `${current.value} · ${t("title")}`;
    }, [language.value, current.value]);
    return (
        <>
            <TopBar />
            {!serviceUp.value && (
                <div class="banner bad gone" role="alert">
                    <span class="spinner" /> <b class="words">{t("gone")}</b>
                </div>
            )}
            {current.value === null ? <Welcome /> : <Workspace />}
            <Documents />
            <Notices />
        </>
    );
}

/** Shows the first project that is found open, until a person chooses one. */
async function begin(): Promise<void> {
    await projectsBegin().catch(() => undefined);
    void pollForEver();
    const stop = known.subscribe(() => {
        const name = current.value === null ? firstProject() : null;
        if (name === null) return;
        queueMicrotask(() => stop());
        void show(name);
    });
}

const root = document.getElementById("app");
if (root) render(<Page />, root);
void begin();
