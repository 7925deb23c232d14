// Taking a project document from a person: by drag and drop or by a file dialogue, always with a question before it
// replaces a plant.

import { signal } from "@preact/signals";
import { useEffect, useRef } from "preact/hooks";
import { Icon } from "./icons";
import { openProject, sendDocument } from "./project";
import { current, plant } from "./state";
import { t } from "./text";

const pending = signal<{ readonly file: string; readonly text: string } | null>(null);
const dragging = signal(false);

async function take(file: File | undefined): Promise<void> {
    if (file) pending.value = { file: file.name, text: await file.text() };
}

/** Opens the file dialogue. */
export function askForDocument(): Promise<void> {
    const field = document.createElement("input");
    field.type = "file";
    field.accept = ".json,application/json";
    field.addEventListener("change", () => void take(field.files?.[0]));
    field.click();
    return Promise.resolve();
}

export function ChooseButton() {
    return (
        <button type="button" class="action" onClick={() => void askForDocument()}>
            <Icon name="send" /> {t("choose")}
        </button>
    );
}

/** A project name out of a file's. */
function nameOf(file: string): string {
    return file.replace(/\.[^.]*$/, "").replace(/[^A-Za-z0-9]/g, "").toUpperCase().slice(0, 64) || "PLANT";
}

async function send(name: string, text: string): Promise<void> {
    pending.value = null;
    if (current.value !== name) await openProject(name);
    if (current.value === name) await sendDocument(name, text);
}

function Question({ file, text }: { file: string; text: string }) {
    const dialog = useRef<HTMLDialogElement>(null);
    const field = useRef<HTMLInputElement>(null);
    useEffect(() => dialog.current?.showModal(), []);
    const filled = (plant.value?.elements.size ?? 0) > 0;
    return (
        <dialog ref={dialog} aria-labelledby="send-title" onClose={() => (pending.value = null)}>
            <form
                method="dialog"
                onSubmit={(event) => {
                    event.preventDefault();
                    void send((field.current?.value ?? "").trim().toUpperCase(), text);
                }}
            >
                <h2 id="send-title">{t("send")}</h2>
                <p><b>{file}</b></p>
                <label>
                    {t("sendTo")}
                    <input ref={field} type="text" required pattern="[A-Za-z0-9]{1,64}" defaultValue={current.value ?? nameOf(file)} />
                </label>
                {filled && <p class="warning">{t("replaces")}</p>}
                <div class="row end">
                    <button type="button" class="action" onClick={() => dialog.current?.close()}>{t("cancel")}</button>
                    <button type="submit" class="action main">{t("send")}</button>
                </div>
            </form>
        </dialog>
    );
}

/** Takes what is dropped anywhere on the page, and asks what to do with it. */
export function Documents() {
    useEffect(() => {
        const ended = new AbortController();
        const { signal: until } = ended;
        const files = (event: DragEvent): boolean => event.dataTransfer?.types.includes("Files") ?? false;
        addEventListener("dragover", (event) => {
            if (!files(event)) return;
            event.preventDefault();
            dragging.value = true;
        }, { signal: until });
        addEventListener("dragleave", (event) => {
            if (event.relatedTarget === null) dragging.value = false;
        }, { signal: until });
        addEventListener("drop", (event) => {
            if (!files(event)) return;
            event.preventDefault();
            dragging.value = false;
            void take(event.dataTransfer?.files[0]);
        }, { signal: until });
        return () => ended.abort();
    }, []);
    return (
        <>
            {dragging.value && <div class="dropping"><span>{t("dropHere")} {current.value ?? ""}</span></div>}
            {pending.value && <Question {...pending.value} />}
        </>
    );
}
