// The bar at the top: projects, run control, the verdict, documents.

import { useSignal } from "@preact/signals";
import { useEffect, useRef } from "preact/hooks";
import { waiting } from "./api";
import { downloadDrawing, downloadPicture, downloadTopology } from "./downloads";
import { Icon, type IconName } from "./icons";
import { load, pauseOrResume, run, step, stop, underWay } from "./project";
import { runState } from "./runstate";
import { askForDocument } from "./documents";
import { ProjectMenu } from "./projects";
import { beat, current, follows, plant, short, values } from "./state";
import { language, languageSet, t, type TextKey } from "./text";

interface Action {
    readonly icon: IconName;
    readonly text: TextKey;
    readonly word: string;
    readonly act: () => Promise<void>;
    readonly disabled?: boolean;
    readonly main?: boolean;
}

function ActionButton({ icon, text, word, act, disabled, main }: Action) {
    const busy = underWay(word);
    return (
        <button
            type="button" class={main ? "action main" : "action"} disabled={disabled === true || busy} aria-busy={busy}
            title={t(text)} onClick={() => void act()}
        >
            {busy ? <span class="spinner" /> : <Icon name={icon} />}
            <span class="word">{t(text)}</span>
        </button>
    );
}

function RunControl() {
    const state = runState.value;
    const started = state !== "stopped";
    const paused = state === "paused";
    return (
        <div class="actions" role="group" aria-label={t("run")}>
            <ActionButton icon="run" text="run" word="PjtRun" act={run} disabled={started} main={!started} />
            <ActionButton icon={paused ? "run" : "pause"} text={paused ? "resume" : "pause"} word="PjtPause" act={pauseOrResume} disabled={!started} />
            <ActionButton icon="step" text="step" word="PjtStep" act={step} disabled={state === "running"} />
            <ActionButton icon="stop" text="stop" word="PjtStop" act={stop} disabled={!started} />
        </div>
    );
}

function StatePill() {
    follows(beat.value);
    const state = runState.value;
    const steps = values.get(`${current.value ?? ""}_GStep`);
    return (
        <span class={`state ${state}`} role="status">
            <span class="dot" />
            {t(state)}
            {steps !== undefined && <span class="steps">{`${t("steps")} ${steps}`}</span>}
        </span>
    );
}

function Figure({ item, text, unit }: { item: string; text: TextKey; unit: string }) {
    follows(beat.value);
    const value = values.get(`${current.value ?? ""}_${item}`);
    if (value === undefined) return null;
    return (
        <span class="figure">
            <span class="name">{t(text)}</span>
            <b>{short(value)}</b> {unit}
        </span>
    );
}

function DownloadMenu() {
    const open = useSignal(false);
    const box = useRef<HTMLDivElement>(null);
    useEffect(() => {
        const leave = (event: Event): void => {
            if (!box.current?.contains(event.target as Node)) open.value = false;
        };
        document.addEventListener("pointerdown", leave);
        return () => document.removeEventListener("pointerdown", leave);
    }, [open]);
    const rows: readonly (readonly [TextKey, () => void])[] = [
        ["downloadTopology", downloadTopology],
        ["downloadDrawing", () => void downloadDrawing()],
        ["downloadPicture", () => void downloadPicture()],
    ];
    return (
        <div class="menu-box" ref={box} onKeyDown={(event) => event.key === "Escape" && (open.value = false)}>
            <button type="button" class="action" aria-haspopup="menu" aria-expanded={open.value} title={t("download")} onClick={() => (open.value = !open.value)}>
                {underWay("PjtPngGet") ? <span class="spinner" /> : <Icon name="download" />}
                <span class="word">{t("download")}</span>
            </button>
            {open.value && (
                <div class="menu" role="menu">
                    {rows.map(([text, act]) => (
                        <button key={text} type="button" role="menuitem" onClick={() => { open.value = false; act(); }}>
                            {t(text)}
                        </button>
                    ))}
                </div>
            )}
        </div>
    );
}

function Waits() {
    const now = useSignal(Date.now());
    useEffect(() => {
        const timer = setInterval(() => (now.value = Date.now()), 200);
        return () => clearInterval(timer);
    }, [now]);
    const longest = waiting.value[0];
    if (!longest || now.value - longest.since < 300) return null;
    return (
        <div class="waits" role="status">
            <span class="spinner" /> {t("waits")}: <b>{longest.command}</b> {((now.value - longest.since) / 1000).toFixed(1)} s
        </div>
    );
}

export function TopBar() {
    const shown = current.value !== null;
    return (
        <header class="topbar">
            <div class="brand">
                <img src="icon.svg" alt="" width="26" height="26" />
                <h1>{t("title")}</h1>
            </div>
            <ProjectMenu />
            {shown && <RunControl />}
            {shown && plant.value && <StatePill />}
            {shown && (
                <div class="figures">
                    <Figure item="GTemp" text="temperature" unit="°C" />
                    <Figure item="COP" text="COP" unit="" />
                    <Figure item="WAll" text="energy" unit="kWh" />
                </div>
            )}
            {shown && (
                <div class="actions late">
                    <ActionButton icon="check" text="check" word="NetAccess" act={load} />
                    <ActionButton icon="send" text="send" word="PjtSent" act={askForDocument} />
                    <DownloadMenu />
                </div>
            )}
            <button type="button" class="action plain" lang={language.value === "zh" ? "en" : "zh"} onClick={() => languageSet(language.value === "zh" ? "en" : "zh")}>
                {t("language")}
            </button>
            <Waits />
        </header>
    );
}
