// The projects that the page knows of, and the page before one is chosen.

import { useSignal } from "@preact/signals";
import { useEffect, useRef } from "preact/hooks";
import { Icon } from "./icons";
import { ChooseButton } from "./documents";
import { OpenForm } from "./openform";
import { closeProject, forget, openProject, show } from "./project";
import { current, known } from "./state";
import { t } from "./text";

function ProjectList({ chosen }: { chosen: () => void }) {
    return (
        <ul class="project-list">
            {known.value.map(({ name, open }) => (
                <li key={name} class={name === current.value ? "current" : ""}>
                    <button type="button" class="name" onClick={() => { chosen(); void (open ? show(name) : openProject(name)); }}>
                        <span class={open ? "dot open" : "dot"} />
                        {name}
                        {!open && <small>{t("notOpen")}</small>}
                    </button>
                    <button
                        type="button" class="tool small" title={`${open ? t("close") : t("forget")}: ${name}`}
                        aria-label={`${open ? t("close") : t("forget")}: ${name}`}
                        onClick={() => { if (open) void closeProject(name); else forget(name); }}
                    >
                        <Icon name="close" size={14} />
                    </button>
                </li>
            ))}
        </ul>
    );
}

export function ProjectMenu() {
    const open = useSignal(false);
    const box = useRef<HTMLDivElement>(null);
    useEffect(() => {
        const leave = (event: Event): void => {
            if (!box.current?.contains(event.target as Node)) open.value = false;
        };
        document.addEventListener("pointerdown", leave);
        return () => document.removeEventListener("pointerdown", leave);
    }, [open]);
    if (current.value === null) return null;
    return (
        <div class="menu-box" ref={box} onKeyDown={(event) => event.key === "Escape" && (open.value = false)}>
            <button type="button" class="action project" aria-expanded={open.value} onClick={() => (open.value = !open.value)}>
                <b>{current.value}</b>
                <Icon name="down" size={14} />
            </button>
            {open.value && (
                <div class="menu wide">
                    <ProjectList chosen={() => (open.value = false)} />
                    <OpenForm />
                    <p class="hint">{t("openHint")}</p>
                </div>
            )}
        </div>
    );
}

export function Welcome() {
    return (
        <main class="welcome">
            <div class="card">
                <img src="icon.svg" alt="" width="56" height="56" />
                <h2>{t("welcome")}</h2>
                <p>{t("welcomeText")}</p>
                <OpenForm autofocus />
                <p class="hint">{t("openHint")}</p>
                <div><ChooseButton /></div>
                {known.value.length > 0 && <h3>{t("projects")}</h3>}
                <ProjectList chosen={() => undefined} />
                <p class="hint">{t("unlisted")}</p>
            </div>
        </main>
    );
}
