// What a person can take along.

import { scene } from "./scene";
import { command } from "./project";
import { current, plant, tell } from "./state";
import { t } from "./text";

function give(blob: Blob, name: string): void {
    const link = document.createElement("a");
    link.href = URL.createObjectURL(blob);
    link.download = name;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

/** The report as the service gave it. */
export function downloadTopology(): void {
    if (plant.value) give(new Blob([plant.value.text], { type: "application/json" }), `${plant.value.name}.json`);
}

export async function downloadDrawing(): Promise<void> {
    const picture = await scene.current?.picture();
    if (picture && plant.value) give(picture, `${plant.value.name}.png`);
}

/** The picture that the engine draws; it takes the service some seconds. */
export async function downloadPicture(): Promise<void> {
    const name = current.value;
    if (name === null) return;
    const text = await command("PjtPngGet", name);
    if (text === null) return;
    const svg = text.trimStart().startsWith("<");
    if (text === "") tell(`${t("downloadPicture")}: ${t("failed")}`, "bad");
    else give(new Blob([text], { type: svg ? "image/svg+xml" : "text/plain" }), `${name}-picture.${svg ? "svg" : "txt"}`);
}
