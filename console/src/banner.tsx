// The verdict of the analysis, and a project that is no longer open.

import { scene } from "./scene";
import { Icon } from "./icons";
import { openProject, select } from "./project";
import { current, known, marked, plant, verdict } from "./state";
import { t } from "./text";

function showFault(): void {
    const key = verdict.value?.key;
    if (!key) return;
    select(key);
    const branch = plant.value?.nets.flatMap((net) => net.branches).find(({ number }) => number === verdict.value?.branch);
    if (branch) marked.value = { title: `${t("branch")} ${branch.number}`, keys: branch.keys };
    scene.current?.reveal(key);
}

function Lost({ name }: { name: string }) {
    return (
        <div class="banner bad" role="alert">
            <Icon name="warn" />
            <span class="words"><b>{name}</b> {t("notOpen")}</span>
            <button type="button" class="action" onClick={() => void openProject(name)}>{t("open")}</button>
        </div>
    );
}

export function Banner() {
    const name = current.value;
    if (name !== null && known.value.some((project) => project.name === name && !project.open)) return <Lost name={name} />;
    const judged = verdict.value;
    if (!judged || judged.good) return null;
    const element = judged.key === null ? undefined : plant.value?.elements.get(judged.key);
    return (
        <div class="banner bad" role="alert">
            <Icon name="warn" />
            <span class="words">
                <b>{t(`fault_${judged.fault ?? "other"}`)}{element ? `: ${element.id}` : ""}</b>
                <small lang="zh">{judged.text}</small>
            </span>
            {judged.key !== null && (
                <button type="button" class="action" onClick={showFault}>{t("showElement")}</button>
            )}
        </div>
    );
}
