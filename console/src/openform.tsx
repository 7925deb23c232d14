// A field for a project's name.

import { useSignal } from "@preact/signals";
import { openProject } from "./project";
import { t } from "./text";

export function OpenForm({ autofocus = false }: { autofocus?: boolean }) {
    const name = useSignal("");
    return (
        <form
            class="open-form"
            onSubmit={(event) => {
                event.preventDefault();
                if (name.value.trim()) void openProject(name.value);
            }}
        >
            <input
                type="text" value={name.value} maxLength={64} aria-label={t("projectName")} placeholder={t("projectNameShort")}
                ref={(field) => { if (autofocus && field && !field.value) field.focus(); }}
                onInput={(event) => (name.value = event.currentTarget.value)}
            />
            <button type="submit" class="action main" title={t("openHint")} disabled={!name.value.trim()}>{t("open")}</button>
        </form>
    );
}
