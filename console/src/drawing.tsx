// The drawing: the canvas with its zoom, its choice of elements, and its keys.

import { effect, useSignal } from "@preact/signals";
import { useEffect, useRef } from "preact/hooks";
import { Tools } from "./drawingtools";
import { Scene, scene } from "./scene";
import { plant } from "./state";
import { t } from "./text";

export function Drawing() {
    const canvas = useRef<HTMLCanvasElement>(null);
    const tip = useSignal("");
    useEffect(() => {
        if (!canvas.current) return undefined;
        const made = new Scene(canvas.current, (text) => (tip.value = text));
        scene.current = made;
        const stop = effect(() => made.follow());
        return () => {
            stop();
            made.end();
            scene.current = null;
        };
    }, [tip]);
    return (
        <div class="drawing">
            <canvas
                ref={canvas}
                tabIndex={0}
                role="application"
                aria-label={t("drawing")}
                title={tip.value}
                id="drawing"
                onKeyDown={(event) => {
                    if (event.key === "Enter") document.getElementById("inspector")?.focus();
                    else if (scene.current?.key(event.key)) event.preventDefault();
                }}
            />
            {plant.value && plant.value.elements.size > 0 && <Tools />}
        </div>
    );
}
