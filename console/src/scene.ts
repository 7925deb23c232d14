// What stands behind the canvas: zoom, what is in view, hits, and when to paint.

import { select as d3select } from "d3-selection";
import { zoom as d3zoom, zoomIdentity, type ZoomBehavior, type ZoomTransform } from "d3-zoom";
import Flatbush from "flatbush";
import type { Medium } from "./catalogue";
import type { Box, Layout } from "./layout";
import { runVariable, shownVariables, units } from "./names";
import { flipped, labelScale, type Look, paint, type Palette, type View } from "./paint";
import type { Element, Plant, Run } from "./plant";
import { select } from "./project";
import { runState } from "./runstate";
import {
    beat, follows, inView, layout as layoutSignal, marked, media, numberOf, plant as plantSignal, quantity, room, selected, short, values,
    verdict,
} from "./state";
import { language } from "./text";

/** Of more shapes in view the values would be too many to read, and to ask for. */
const valuesAtMost = 110;
const reach = 8;

function paletteRead(of: HTMLElement): Palette {
    const style = getComputedStyle(of);
    const colour = (name: string): string => style.getPropertyValue(`--${name}`).trim();
    return {
        paper: colour("paper"), card: colour("card"), line: colour("line"), ink: colour("ink"), soft: colour("soft"),
        accent: colour("accent"), bad: colour("bad"), tint: colour("tint"),
        media: Object.fromEntries(media.map((medium) => [medium, colour(medium)])) as Record<Medium, string>,
    };
}

function bounds(route: readonly number[]): [number, number, number, number] {
    const box: [number, number, number, number] = [Infinity, Infinity, -Infinity, -Infinity];
    for (let at = 0; at + 1 < route.length; at += 2) {
        const [x = 0, y = 0] = [route[at], route[at + 1]];
        box[0] = Math.min(box[0], x);
        box[1] = Math.min(box[1], y);
        box[2] = Math.max(box[2], x);
        box[3] = Math.max(box[3], y);
    }
    return box;
}

function distance(route: readonly number[], x: number, y: number): number {
    let least = Infinity;
    for (let at = 0; at + 3 < route.length; at += 2) {
        const [ax = 0, ay = 0, bx = 0, by = 0] = route.slice(at, at + 4);
        const square = (bx - ax) ** 2 + (by - ay) ** 2;
        const part = square === 0 ? 0 : Math.min(1, Math.max(0, ((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / square));
        least = Math.min(least, Math.hypot(x - ax - part * (bx - ax), y - ay - part * (by - ay)));
    }
    return least;
}

function indexOf(rows: readonly (readonly [number, number, number, number])[]): Flatbush | null {
    if (rows.length === 0) return null;
    const index = new Flatbush(rows.length);
    for (const row of rows) index.add(...row);
    index.finish();
    return index;
}

/** A plant in one layout, ready to be looked up by place. */
class Arranged {
    readonly flips: ReadonlySet<string>;
    readonly runs: readonly Run[];
    private readonly shapeIndex: Flatbush | null;
    private readonly runIndex: Flatbush | null;

    constructor(readonly plant: Plant, readonly layout: Layout) {
        this.flips = flipped(plant, layout);
        this.runs = plant.runs.filter((run) => (layout.routes.get(run.key)?.length ?? 0) >= 4);
        this.shapeIndex = indexOf(plant.shapes.map((shape) => {
            const box = layout.boxes.get(shape.key) ?? { x: 0, y: 0, w: 0, h: 0 };
            return [box.x, box.y, box.x + box.w, box.y + box.h];
        }));
        this.runIndex = indexOf(this.runs.map((run) => bounds(layout.routes.get(run.key) ?? [])));
    }

    shapesIn(left: number, top: number, right: number, bottom: number): Element[] {
        const places = this.shapeIndex?.search(left, top, right, bottom) ?? [];
        return places.flatMap((place) => this.plant.shapes[place] ?? []);
    }

    runsIn(left: number, top: number, right: number, bottom: number): Run[] {
        const places = this.runIndex?.search(left, top, right, bottom) ?? [];
        return places.flatMap((place) => this.runs[place] ?? []);
    }

    /** The key of what lies at a place, a shape before a run. */
    at(x: number, y: number, within: number): string | null {
        const shape = this.shapesIn(x - within / 2, y - within / 2, x + within / 2, y + within / 2).at(-1);
        if (shape) return shape.key;
        const near = this.runsIn(x - within, y - within, x + within, y + within)
            .map((run) => ({ run, far: distance(this.layout.routes.get(run.key) ?? [], x, y) }))
            .filter(({ far }) => far <= within)
            .sort((one, other) => one.far - other.far);
        return near[0]?.run.key ?? null;
    }

    boxOf(key: string): Box | null {
        const box = this.layout.boxes.get(key);
        if (box) return box;
        const route = this.layout.routes.get(key);
        if (!route || route.length < 2) return null;
        const [left, top, right, bottom] = bounds(route);
        return { x: left, y: top, w: right - left, h: bottom - top };
    }
}

/** The scene that is on the page, for buttons and downloads elsewhere. */
export const scene: { current: Scene | null } = { current: null };

export class Scene {
    private readonly pen: CanvasRenderingContext2D;
    private readonly zoom: ZoomBehavior<HTMLCanvasElement, unknown>;
    private readonly ended = new AbortController();
    private readonly resized: ResizeObserver;
    private arranged: Arranged | null = null;
    private transform: ZoomTransform = zoomIdentity;
    private palette: Palette;
    private frame = 0;
    private names: ReadonlyMap<string, string> = new Map();
    private width = 1;
    private height = 1;
    private fitted = false;
    /** What was brought to the middle last, and is kept there when the canvas changes its size. */
    private sought: string | null = null;
    private glides = 0;
    private readonly calm = matchMedia("(prefers-reduced-motion: reduce)");

    constructor(private readonly canvas: HTMLCanvasElement, private readonly tell: (text: string) => void) {
        const pen = canvas.getContext("2d");
        if (!pen) throw new Error("the browser has no canvas");
        this.pen = pen;
        this.palette = paletteRead(canvas);
        this.zoom = d3zoom<HTMLCanvasElement, unknown>()
            .scaleExtent([0.02, 4])
            .on("zoom", (event: { transform: ZoomTransform; sourceEvent: unknown }) => {
                this.transform = event.transform;
                if (event.sourceEvent) this.fitted = false;
                if (event.sourceEvent) this.sought = null;
                this.dirty();
            });
        d3select(canvas).call(this.zoom).on("dblclick.zoom", null);
        const { signal } = this.ended;
        canvas.addEventListener("click", (event) => this.click(event), { signal });
        canvas.addEventListener("dblclick", () => this.fit(), { signal });
        canvas.addEventListener("pointermove", (event) => this.hover(event), { signal });
        const dark = matchMedia("(prefers-color-scheme: dark)");
        dark.addEventListener("change", () => this.recolour(), { signal });
        this.resized = new ResizeObserver(() => this.resize());
        this.resized.observe(canvas);
        this.resize();
    }

    end(): void {
        this.ended.abort();
        this.resized.disconnect();
        cancelAnimationFrame(this.frame);
    }

    /** Takes over what the signals say; run as an effect, so that it is called again when one changes. */
    follow(): void {
        const plant = plantSignal.value;
        const layout = layoutSignal.value;
        follows(beat.value, marked.value, verdict.value, runState.value, language.value, selected.value);
        this.names = plant ? shownVariables(plant, quantity.value) : new Map();
        if (!plant || !layout) {
            this.arranged = null;
        } else if (this.arranged?.plant !== plant || this.arranged.layout !== layout) {
            const first = this.arranged === null;
            const other = this.arranged?.plant.name !== plant.name || this.arranged.layout.width !== layout.width;
            this.arranged = new Arranged(plant, layout);
            if (other || this.fitted) this.fit(false);
            // What is being looked at stays in view when the rest moves.
            if (other && !first && selected.value !== null) this.reveal(selected.value);
        }
        this.dirty();
    }

    fit(slowly = true): void {
        if (!this.arranged) return;
        const { width, height } = this.arranged.layout;
        // Room for what lies over the drawing: the quantities above, the buttons to the right, the legend below.
        const narrow = this.width < 600;
        const [left, top, right, bottom] = narrow ? [26, 100, 26, 64] : [30, 64, 70, 52];
        const [w, h] = [this.width - left - right, this.height - top - bottom];
        const scale = Math.min(w / width, h / height, 1.25);
        const x = left + (w - width * scale) / 2;
        const y = top + (h - height * scale) / 2;
        this.move(zoomIdentity.translate(x, y).scale(Math.max(scale, 0.02)), slowly);
        this.fitted = true;
        this.sought = null;
    }

    zoomBy(factor: number): void {
        const middle: [number, number] = [this.width / 2, this.height / 2];
        this.zoom.scaleBy(d3select(this.canvas), factor, middle);
        this.fitted = false;
    }

    /** Brings an element to the middle, near enough to be read. */
    reveal(key: string): void {
        const box = this.arranged?.boxOf(key);
        if (!box) return;
        const scale = Math.max(this.transform.k, 0.8);
        const x = this.width / 2 - (box.x + box.w / 2) * scale;
        const y = this.height / 2 - (box.y + box.h / 2) * scale;
        this.fitted = false;
        this.sought = key;
        this.move(zoomIdentity.translate(x, y).scale(scale), true);
    }

    /** True for a key that the drawing acts on. */
    key(key: string): boolean {
        const directions: Record<string, [number, number]> = {
            ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1],
        };
        const direction = directions[key];
        if (direction) this.step(...direction);
        else if (key === "+" || key === "=") this.zoomBy(1.3);
        else if (key === "-") this.zoomBy(1 / 1.3);
        else if (key === "0") this.fit();
        else if (key === "Escape") select(null);
        else return false;
        return true;
    }

    /** The whole plant as a picture. */
    picture(): Promise<Blob | null> {
        const { arranged } = this;
        if (!arranged) return Promise.resolve(null);
        const { width, height } = arranged.layout;
        const scale = Math.min(2, 8000 / Math.max(width, height));
        const sheet = document.createElement("canvas");
        sheet.width = Math.ceil((width + 60) * scale);
        sheet.height = Math.ceil((height + 60) * scale);
        const pen = sheet.getContext("2d");
        if (!pen) return Promise.resolve(null);
        pen.fillStyle = this.palette.paper;
        pen.fillRect(0, 0, sheet.width, sheet.height);
        pen.setTransform(scale, 0, 0, scale, 30 * scale, 30 * scale);
        const view: View = { scale: Math.max(scale, labelScale), shapes: arranged.plant.shapes, runs: arranged.runs };
        paint(pen, arranged.layout, view, { ...this.look(), selected: null, marked: null }, arranged.flips);
        return new Promise((resolve) => sheet.toBlob(resolve, "image/png"));
    }

    private move(transform: ZoomTransform, slowly: boolean): void {
        const turn = ++this.glides;
        // Without an animation where the page is to be calm.
        if (!slowly || this.calm.matches) {
            this.zoom.transform(d3select(this.canvas), transform);
            return;
        }
        const from = this.transform;
        const start = performance.now();
        const glide = (now: number): void => {
            if (turn !== this.glides || this.ended.signal.aborted) return;
            const part = Math.min(1, (now - start) / 260);
            const eased = part * (2 - part);
            const mix = (one: number, other: number): number => one + (other - one) * eased;
            const next = zoomIdentity.translate(mix(from.x, transform.x), mix(from.y, transform.y));
            this.zoom.transform(d3select(this.canvas), next.scale(mix(from.k, transform.k)));
            if (part < 1) requestAnimationFrame(glide);
        };
        requestAnimationFrame(glide);
    }

    private recolour(): void {
        this.palette = paletteRead(this.canvas);
        this.dirty();
    }

    private resize(): void {
        const { clientWidth, clientHeight } = this.canvas;
        this.width = Math.max(1, clientWidth);
        this.height = Math.max(1, clientHeight);
        [room.w, room.h] = [this.width, this.height];
        const dots = devicePixelRatio;
        this.canvas.width = Math.round(this.width * dots);
        this.canvas.height = Math.round(this.height * dots);
        if (this.fitted) this.fit(false);
        if (this.sought !== null) this.reveal(this.sought);
        this.paintNow(performance.now());
    }

    private dirty(): void {
        if (this.frame === 0) this.frame = requestAnimationFrame((now) => this.paintNow(now));
    }

    private look(): Look {
        const { palette, names } = this;
        const unit = units[quantity.value];
        const valueAt = (key: string): string | null => {
            const name = names.get(key);
            const text = name === undefined ? undefined : values.get(name);
            return numberOf(text) === null ? null : `${short(text)} ${unit}`;
        };
        const plant = this.arranged?.plant;
        const flows = runState.value === "running" && plant !== undefined;
        const flowOf = (run: Run): number | null => {
            const name = flows ? runVariable(plant, run, "FLOW") : null;
            return name === null ? null : numberOf(values.get(name));
        };
        return {
            palette, selected: selected.value, marked: marked.value?.keys ?? null,
            faulty: verdict.value?.key ?? null, valueAt, flowOf, time: performance.now() / 1000,
        };
    }

    private paintNow(now: number): void {
        this.frame = 0;
        const { pen, arranged, transform } = this;
        const dots = devicePixelRatio;
        pen.setTransform(1, 0, 0, 1, 0, 0);
        pen.fillStyle = this.palette.paper;
        pen.fillRect(0, 0, this.canvas.width, this.canvas.height);
        if (!arranged) return;
        const { x, y, k } = transform;
        const [left, top] = [-x / k - 90, -y / k - 60];
        const [right, bottom] = [(this.width - x) / k + 90, (this.height - y) / k + 40];
        const view: View = {
            scale: k, shapes: arranged.shapesIn(left, top, right, bottom), runs: arranged.runsIn(left, top, right, bottom),
        };
        pen.setTransform(dots * k, 0, 0, dots * k, dots * x, dots * y);
        const look = { ...this.look(), time: now / 1000 };
        paint(pen, arranged.layout, view, look, arranged.flips);
        this.want(view);
        const few = view.runs.length < 400 && k > 0.25;
        if (few && runState.value === "running" && !this.calm.matches && !document.hidden) this.dirty();
    }

    /** Tells the poll which variables the view shows. */
    private want(view: View): void {
        const { arranged, names } = this;
        const readable = arranged && view.shapes.length <= valuesAtMost && view.scale >= labelScale;
        const wanted: string[] = [];
        if (readable) {
            for (const shape of view.shapes) wanted.push(names.get(shape.key) ?? "");
            for (const run of view.runs) {
                wanted.push(runVariable(arranged.plant, run, "FLOW") ?? "", names.get(run.key) ?? "");
            }
        }
        const next = [...new Set(wanted.filter((name) => name !== ""))];
        if (next.join() !== inView.value.join()) inView.value = next;
    }

    private placeOf(event: MouseEvent): [number, number] {
        const frame = this.canvas.getBoundingClientRect();
        return this.transform.invert([event.clientX - frame.left, event.clientY - frame.top]);
    }

    private click(event: MouseEvent): void {
        if (event.defaultPrevented) return;
        select(this.arranged?.at(...this.placeOf(event), reach / this.transform.k) ?? null);
    }

    private hover(event: PointerEvent): void {
        if (event.buttons !== 0 || event.pointerType === "touch") return;
        const key = this.arranged?.at(...this.placeOf(event), reach / this.transform.k) ?? null;
        const element = key === null ? undefined : this.arranged?.plant.elements.get(key);
        this.canvas.style.cursor = key === null ? "" : "pointer";
        this.tell(element ? `${element.id} · ${element.typeName}` : (key ?? ""));
    }

    /** Goes to the nearest shape in a direction. */
    private step(dx: number, dy: number): void {
        const { arranged } = this;
        if (!arranged) return;
        const from = selected.value === null ? null : arranged.boxOf(selected.value);
        const place = from
            ? { x: from.x + from.w / 2, y: from.y + from.h / 2 }
            : { x: (this.width / 2 - this.transform.x) / this.transform.k, y: (this.height / 2 - this.transform.y) / this.transform.k };
        let best: { key: string; cost: number } | null = null;
        for (const shape of arranged.plant.shapes) {
            const box = arranged.layout.boxes.get(shape.key);
            if (!box || shape.key === selected.value) continue;
            const [x, y] = [box.x + box.w / 2 - place.x, box.y + box.h / 2 - place.y];
            const along = x * dx + y * dy;
            if (from && along <= 1) continue;
            const cost = Math.abs(along) + 2.2 * Math.abs(x * dy + y * dx);
            if (!best || cost < best.cost) best = { key: shape.key, cost };
        }
        if (!best) return;
        select(best.key);
        this.reveal(best.key);
    }
}
