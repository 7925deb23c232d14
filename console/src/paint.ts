// Painting the plant on a canvas: only what is in view, and less of it the farther away it is.

import type { Medium } from "./catalogue";
import { type Box, labelWidth, type Layout } from "./layout";
import type { Element, Plant, Run } from "./plant";
import { symbolDraw } from "./symbols";

export interface Palette {
    readonly paper: string;
    readonly card: string;
    readonly line: string;
    readonly ink: string;
    readonly soft: string;
    readonly accent: string;
    readonly bad: string;
    readonly tint: string;
    readonly media: Readonly<Record<Medium, string>>;
}

export interface Look {
    readonly palette: Palette;
    readonly selected: string | null;
    readonly marked: ReadonlySet<string> | null;
    readonly faulty: string | null;
    /** The value shown at an element or run; null for none. */
    readonly valueAt: (key: string) => string | null;
    /** Flow of a run, where it is known and the plant runs. */
    readonly flowOf: (run: Run) => number | null;
    /** Seconds, for what moves. */
    readonly time: number;
}

/** The part of the drawing that is in view and its size on the screen. */
export interface View {
    readonly scale: number;
    readonly shapes: readonly Element[];
    readonly runs: readonly Run[];
}

const font = (size: number, weight = 500): string => `${weight} ${size}px system-ui, "Noto Sans CJK SC", sans-serif`;

/** How much larger labels are drawn than planned, to stay readable from a little farther away. */
const growth = (scale: number): number => Math.min(1.7, Math.max(1, 0.85 / scale));

/** Below this scale there are no labels, below the next no signs. */
export const labelScale = 0.38;
const signScale = 0.16;

type Canvas = CanvasRenderingContext2D;

function trace(canvas: Canvas, route: readonly number[], radius: number): void {
    const x = (at: number): number => route[at] ?? 0;
    canvas.moveTo(x(0), x(1));
    if (radius === 0) {
        for (let at = 2; at + 1 < route.length; at += 2) canvas.lineTo(x(at), x(at + 1));
        return;
    }
    for (let at = 2; at + 3 < route.length; at += 2) {
        const before = Math.hypot(x(at) - x(at - 2), x(at + 1) - x(at - 1)) / 2;
        const after = Math.hypot(x(at + 2) - x(at), x(at + 3) - x(at + 1)) / 2;
        canvas.arcTo(x(at), x(at + 1), x(at + 2), x(at + 3), Math.min(radius, before, after));
    }
    canvas.lineTo(x(route.length - 2), x(route.length - 1));
}

/** The middle of the longest piece of a line, and its direction. */
function longest(route: readonly number[]): { x: number; y: number; angle: number; length: number } {
    let best = { x: route[0] ?? 0, y: route[1] ?? 0, angle: 0, length: 0 };
    for (let at = 0; at + 3 < route.length; at += 2) {
        const [ax = 0, ay = 0, bx = 0, by = 0] = route.slice(at, at + 4);
        const length = Math.hypot(bx - ax, by - ay);
        if (length > best.length) best = { x: (ax + bx) / 2, y: (ay + by) / 2, angle: Math.atan2(by - ay, bx - ax), length };
    }
    return best;
}

function arrow(canvas: Canvas, at: { x: number; y: number; angle: number }, size: number): void {
    canvas.save();
    canvas.translate(at.x, at.y);
    canvas.rotate(at.angle);
    canvas.beginPath();
    canvas.moveTo(size, 0);
    canvas.lineTo(-size * 0.7, size * 0.75);
    canvas.lineTo(-size * 0.7, -size * 0.75);
    canvas.closePath();
    canvas.fill();
    canvas.restore();
}

/** All runs of one colour in one path: fast, whatever their number. */
function strokeRuns(
    canvas: Canvas, layout: Layout, runs: readonly Run[], width: number, colour: string, radius = 10,
): void {
    canvas.strokeStyle = colour;
    canvas.lineWidth = width;
    canvas.beginPath();
    for (const run of runs) trace(canvas, layout.routes.get(run.key) ?? [], radius);
    canvas.stroke();
}

/** The runs in view by what flows in them, each kind in one stroke. */
function strokeAll(canvas: Canvas, layout: Layout, view: View, look: Look, width: number): void {
    const { palette, marked } = look;
    const groups = new Map<Medium, Run[]>();
    for (const run of view.runs) {
        const group = groups.get(run.medium);
        if (group) group.push(run);
        else groups.set(run.medium, [run]);
    }
    const radius = view.scale < signScale ? 0 : 10;
    canvas.lineCap = radius === 0 ? "butt" : "round";
    for (const [medium, runs] of groups) {
        canvas.setLineDash(medium === "info" ? [8, 7] : []);
        canvas.globalAlpha = marked ? 0.22 : 1;
        strokeRuns(canvas, layout, runs, width, palette.media[medium], radius);
        canvas.globalAlpha = 1;
        if (!marked) continue;
        const inside = runs.filter((run) => marked.has(run.key));
        strokeRuns(canvas, layout, inside, width * 1.5, palette.media[medium], radius);
    }
    canvas.setLineDash([]);
}

/** The moving dashes of a run in which something flows. */
function paintFlow(canvas: Canvas, layout: Layout, run: Run, look: Look): void {
    const flow = look.flowOf(run);
    if (flow === null || Math.abs(flow) < 1e-9) return;
    canvas.setLineDash([5, 15]);
    canvas.lineDashOffset = -look.time * 26 * Math.sign(flow);
    canvas.globalAlpha = 0.9;
    strokeRuns(canvas, layout, [run], 1.9, look.palette.paper);
    canvas.globalAlpha = 1;
    canvas.setLineDash([]);
}

function paintRuns(canvas: Canvas, layout: Layout, view: View, look: Look): void {
    const { palette, marked } = look;
    const width = Math.max(3.6, 0.9 / view.scale);
    strokeAll(canvas, layout, view, look, width);
    for (const run of view.runs) {
        if (run.key !== look.selected && run.key !== look.faulty) continue;
        canvas.globalAlpha = 0.35;
        strokeRuns(canvas, layout, [run], width * 3.4, run.key === look.faulty ? palette.bad : palette.accent);
        canvas.globalAlpha = 1;
        strokeRuns(canvas, layout, [run], width, palette.media[run.medium]);
    }
    if (view.scale < signScale * 1.6) return;
    for (const run of view.runs) {
        paintFlow(canvas, layout, run, look);
        const spot = longest(layout.routes.get(run.key) ?? []);
        if (spot.length < 26) continue;
        canvas.globalAlpha = marked && !marked.has(run.key) ? 0.3 : 1;
        canvas.fillStyle = palette.media[run.medium];
        arrow(canvas, spot, 7.5);
        canvas.globalAlpha = 1;
    }
}

function pill(canvas: Canvas, text: string, x: number, y: number, grow: number, palette: Palette, colour: string): void {
    canvas.font = font(12 * grow, 600);
    const width = canvas.measureText(text).width + 12;
    const height = 18 * grow;
    canvas.fillStyle = palette.card;
    canvas.strokeStyle = palette.line;
    canvas.lineWidth = 1;
    canvas.beginPath();
    canvas.roundRect(x - width / 2, y - height / 2, width, height, height / 2);
    canvas.fill();
    canvas.stroke();
    canvas.fillStyle = colour;
    canvas.textAlign = "center";
    canvas.textBaseline = "middle";
    canvas.fillText(text, x, y + 0.5);
}

function fitted(canvas: Canvas, text: string, width: number): string {
    if (canvas.measureText(text).width <= width) return text;
    let end = text.length - 1;
    while (end > 1 && canvas.measureText(`${text.slice(0, end)}…`).width > width) --end;
    return `${text.slice(0, end)}…`;
}

/** Text that stays readable where it lies over a line. */
function lettering(canvas: Canvas, text: string, x: number, y: number, palette: Palette, colour: string): void {
    canvas.strokeStyle = palette.paper;
    canvas.lineWidth = 4;
    canvas.strokeText(text, x, y);
    canvas.fillStyle = colour;
    canvas.fillText(text, x, y);
}

function halo(canvas: Canvas, box: Box, colour: string, radius: number): void {
    canvas.strokeStyle = colour;
    canvas.globalAlpha = 0.35;
    canvas.lineWidth = 9;
    canvas.beginPath();
    canvas.roundRect(box.x - 4, box.y - 4, box.w + 8, box.h + 8, radius);
    canvas.stroke();
    canvas.globalAlpha = 1;
}

function paintNode(canvas: Canvas, shape: Element, box: Box, view: View, look: Look, colour: string): void {
    const x = box.x + box.w / 2;
    const y = box.y + box.h / 2;
    canvas.fillStyle = look.palette.paper;
    canvas.strokeStyle = colour;
    canvas.lineWidth = 3;
    canvas.beginPath();
    canvas.arc(x, y, Math.max(box.w / 2 - 1, 1.8 / view.scale), 0, 2 * Math.PI);
    canvas.fill();
    canvas.stroke();
    if (view.scale < labelScale) return;
    const grow = growth(view.scale);
    canvas.font = font(11 * grow);
    canvas.textAlign = "center";
    canvas.textBaseline = "bottom";
    lettering(canvas, shape.id, x, box.y - 5, look.palette, look.palette.soft);
    const value = look.valueAt(shape.key);
    if (value !== null) pill(canvas, value, x, box.y + box.h + 4 + 9 * grow, grow, look.palette, look.palette.ink);
}

function paintRoom(canvas: Canvas, shape: Element, box: Box, view: View, look: Look): void {
    const { palette } = look;
    const sign = (x: number, size: number): void =>
        symbolDraw(canvas, shape.type.symbol, x, box.y + box.h / 2, size, false, palette.soft, palette.tint);
    if (view.scale < labelScale) {
        sign(box.x + box.w / 2, 44);
        return;
    }
    const grow = growth(view.scale);
    // Large letters take the sign's room.
    const left = box.x + (grow > 1.2 ? 10 : 54);
    if (grow <= 1.2) sign(box.x + 30, 34);
    canvas.textAlign = "left";
    canvas.textBaseline = "middle";
    canvas.fillStyle = palette.soft;
    canvas.font = font(12 * grow);
    canvas.fillText(fitted(canvas, shape.id, box.x + box.w - left - 4), left, box.y + 20);
    canvas.fillStyle = palette.ink;
    canvas.font = font(16 * Math.min(grow, 1.5), 650);
    canvas.fillText(look.valueAt(shape.key) ?? "", left, box.y + 44);
}

function paintDevice(
    canvas: Canvas, shape: Element, box: Box, view: View, look: Look, flip: boolean,
): void {
    const { palette } = look;
    canvas.fillStyle = palette.card;
    canvas.strokeStyle = shape.key === look.faulty ? palette.bad : palette.line;
    canvas.lineWidth = shape.key === look.selected || shape.key === look.faulty ? 2.4 : 1.2;
    if (shape.key === look.selected && shape.key !== look.faulty) canvas.strokeStyle = palette.accent;
    canvas.beginPath();
    canvas.roundRect(box.x, box.y, box.w, box.h, 13);
    canvas.fill();
    canvas.stroke();
    if (shape.type.inside) {
        paintRoom(canvas, shape, box, view, look);
        return;
    }
    const x = box.x + box.w / 2;
    symbolDraw(canvas, shape.type.symbol, x, box.y + box.h / 2, 38, flip, palette.ink, palette.tint);
    if (view.scale < labelScale) return;
    const grow = growth(view.scale);
    // A long name stays smaller, so that it leaves its neighbour room.
    const planned = labelWidth(shape.id);
    canvas.font = font(12 * Math.min(grow, (planned + 44) / planned));
    canvas.textAlign = "center";
    canvas.textBaseline = "top";
    lettering(canvas, fitted(canvas, shape.id, 194), x, box.y + box.h + 5, palette, palette.ink);
    const value = look.valueAt(shape.key);
    if (value !== null) pill(canvas, value, x, box.y + box.h + 8 + 22 * grow, grow, palette, palette.ink);
}

/** True for a device that the flow leaves to the left. */
export function flipped(plant: Plant, layout: Layout): Set<string> {
    const balance = new Map<string, number>();
    const count = (key: string, change: number): void => void balance.set(key, (balance.get(key) ?? 0) + change);
    for (const run of plant.runs) {
        const route = layout.routes.get(run.key) ?? [];
        const [fx = 0] = route;
        const tx = route[route.length - 2] ?? 0;
        const from = layout.boxes.get(run.from.key);
        const to = layout.boxes.get(run.to.key);
        if (from) count(run.from.key, Math.sign(fx - from.x - from.w / 2));
        if (to) count(run.to.key, -Math.sign(tx - to.x - to.w / 2));
    }
    return new Set([...balance].filter(([, sum]) => sum < 0).map(([key]) => key));
}

/** From far away shapes are spots: all in one stroke. */
function paintSpots(canvas: Canvas, layout: Layout, view: View, look: Look): void {
    const least = 3 / view.scale;
    const spots = (shapes: readonly Element[], colour: string): void => {
        canvas.fillStyle = colour;
        canvas.beginPath();
        for (const shape of shapes) {
            const box = layout.boxes.get(shape.key);
            if (!box) continue;
            const [w, h] = [Math.max(box.w, least), Math.max(box.h, least)];
            canvas.rect(box.x + (box.w - w) / 2, box.y + (box.h - h) / 2, w, h);
        }
        canvas.fill();
    };
    const { palette, marked } = look;
    canvas.globalAlpha = marked ? 0.3 : 1;
    spots(view.shapes.filter((shape) => !shape.node), palette.soft);
    canvas.globalAlpha = 1;
    if (marked) spots(view.shapes.filter((shape) => marked.has(shape.key)), palette.ink);
    for (const [key, colour] of [[look.selected, palette.accent], [look.faulty, palette.bad]] as const) {
        const box = key === null ? undefined : layout.boxes.get(key);
        if (!box) continue;
        canvas.fillStyle = colour;
        const size = Math.max(box.w, 12 / view.scale);
        canvas.beginPath();
        canvas.arc(box.x + box.w / 2, box.y + box.h / 2, size / 2, 0, 2 * Math.PI);
        canvas.fill();
    }
}

const overlap = (one: Box, other: Box): boolean =>
    one.x < other.x + other.w && other.x < one.x + one.w && one.y < other.y + other.h && other.y < one.y + one.h;

/** The values of runs, where they cover neither a shape with its labels nor one another. */
function paintRunValues(canvas: Canvas, layout: Layout, view: View, look: Look): void {
    const grow = growth(view.scale);
    const taken = view.shapes.flatMap((shape): Box[] => {
        const box = layout.boxes.get(shape.key);
        if (!box) return [];
        const above = shape.node ? 18 * grow : 0;
        return [{ x: box.x - 26, y: box.y - above, w: box.w + 52, h: box.h + above + 8 + 32 * grow }];
    });
    for (const run of view.runs) {
        const value = look.valueAt(run.key);
        if (value === null) continue;
        const spot = longest(layout.routes.get(run.key) ?? []);
        const level = Math.abs(Math.cos(spot.angle)) > 0.5;
        const [w, h] = [(value.length * 7 + 14) * grow, 18 * grow];
        const shifts = level ? [-16, 16] : [22, -22, 0];
        const places = shifts.map((shift): Box => ({ x: spot.x - w / 2, y: spot.y + shift - h / 2, w, h }));
        const free = places.find((place) => !taken.some((other) => overlap(place, other)));
        if (!free) continue;
        taken.push(free);
        pill(canvas, value, free.x + w / 2, free.y + h / 2, grow, look.palette, look.palette.media[run.medium]);
    }
}

/** Paints what is in view; the canvas is already moved and scaled. */
export function paint(canvas: Canvas, layout: Layout, view: View, look: Look, flips: ReadonlySet<string>): void {
    const { palette, marked } = look;
    paintRuns(canvas, layout, view, look);
    if (view.scale < signScale) {
        paintSpots(canvas, layout, view, look);
        return;
    }
    const nodeColours = new Map<string, string>();
    for (const run of view.runs) {
        nodeColours.set(run.from.key, palette.media[run.medium]);
        nodeColours.set(run.to.key, palette.media[run.medium]);
    }
    for (const shape of view.shapes) {
        const box = layout.boxes.get(shape.key);
        if (!box) continue;
        canvas.globalAlpha = 1;
        if (shape.key === look.faulty) halo(canvas, box, palette.bad, 17);
        else if (shape.key === look.selected) halo(canvas, box, palette.accent, 17);
        canvas.globalAlpha = marked && !marked.has(shape.key) ? 0.3 : 1;
        const colour = nodeColours.get(shape.key) ?? palette.soft;
        if (shape.node) paintNode(canvas, shape, box, view, look, colour);
        else paintDevice(canvas, shape, box, view, look, flips.has(shape.key));
    }
    canvas.globalAlpha = 1;
    if (view.scale >= labelScale * 1.3) paintRunValues(canvas, layout, view, look);
}
