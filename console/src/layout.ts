// Where everything is drawn: by ELK in a worker, or at the positions that the document gives.

import Flatbush from "flatbush";
import ELK, { type ELK as Elk, type ElkExtendedEdge, type ElkNode } from "elkjs/lib/elk-api";
import type { Element, End, Plant, Run } from "./plant";

export interface Box {
    readonly x: number;
    readonly y: number;
    readonly w: number;
    readonly h: number;
}

export interface Layout {
    readonly boxes: ReadonlyMap<string, Box>;
    /** Of each run, the corners of its line: x, y, x, y and so on. */
    readonly routes: ReadonlyMap<string, readonly number[]>;
    readonly width: number;
    readonly height: number;
}

/** What the drawing has on the screen. */
export interface Room {
    readonly w: number;
    readonly h: number;
}

/**
 * Where a circuit is cut open to be drawn from left to right. Which way gives the largest drawing depends on the plant and
 * the screen, so all are tried, as long as that is quick. The last is compact, but hard to follow: it must gain much.
 */
const openings = [["GREEDY", 1], ["GREEDY_MODEL_ORDER", 1], ["MODEL_ORDER", 0.65]] as const;
const few = 400;

const deviceSize = 56;
const nodeSize = 14;
const labelHeight = 38;

function sizeOf(shape: Element): { w: number; h: number } {
    if (shape.node) return { w: nodeSize, h: nodeSize };
    if (shape.type.inside) return { w: 150, h: 64 };
    return { w: deviceSize, h: deviceSize };
}

/** About the width of a label in the drawing's font. */
export function labelWidth(text: string): number {
    let width = 0;
    for (const letter of text) width += letter.charCodeAt(0) > 0x2e80 ? 12 : 6.6;
    return Math.min(width, 150);
}

/** A device's lines end apart, at its ports; those of a node all at one place. */
const portId = (end: End): string => (end.key.startsWith("MOD") ? `${end.key} ${end.port}` : end.key);

function elkNode(shape: Element, ports: readonly string[]): ElkNode {
    const { w, h } = sizeOf(shape);
    const node: ElkNode = { id: shape.key, width: w, height: h, ports: ports.map((id) => ({ id })) };
    if (!shape.node && !shape.type.inside) {
        node.labels = [{ id: `${shape.key} label`, text: shape.id, width: labelWidth(shape.id), height: labelHeight }];
        node.layoutOptions = { "elk.nodeLabels.placement": "H_CENTER V_BOTTOM OUTSIDE" };
    }
    return node;
}

function elkGraph(plant: Plant, room: Room, opening: string): ElkNode {
    const large = plant.shapes.length > few;
    const ports = new Map<string, Set<string>>();
    for (const end of plant.runs.flatMap((run) => [run.from, run.to])) {
        if (portId(end) !== end.key) ports.set(end.key, (ports.get(end.key) ?? new Set()).add(portId(end)));
    }
    return {
        id: "plant",
        layoutOptions: {
            "elk.algorithm": "layered",
            "elk.direction": "RIGHT",
            "elk.edgeRouting": "ORTHOGONAL",
            "elk.aspectRatio": String(Math.min(1.7, room.w / room.h)),
            "elk.spacing.nodeNode": "34",
            "elk.spacing.edgeNode": "22",
            "elk.spacing.edgeEdge": "16",
            "elk.spacing.componentComponent": "56",
            "elk.layered.spacing.nodeNodeBetweenLayers": "52",
            "elk.layered.spacing.edgeNodeBetweenLayers": "22",
            "elk.layered.spacing.edgeEdgeBetweenLayers": "16",
            "elk.layered.nodePlacement.strategy": large ? "BRANDES_KOEPF" : "NETWORK_SIMPLEX",
            "elk.layered.mergeEdges": "true",
            "elk.layered.cycleBreaking.strategy": opening,
            "elk.layered.thoroughness": large ? "2" : "12",
        },
        children: plant.shapes.map((shape) => elkNode(shape, [...(ports.get(shape.key) ?? [])])),
        edges: plant.runs.map((run) => ({ id: run.key, sources: [portId(run.from)], targets: [portId(run.to)] })),
    };
}

function routeOf(edge: ElkExtendedEdge): number[] {
    const section = edge.sections?.[0];
    if (!section) return [];
    return [section.startPoint, ...(section.bendPoints ?? []), section.endPoint].flatMap(({ x, y }) => [x, y]);
}

/** A line to a node goes on into its middle, not only to the edge of the square around it. */
function intoNodes(route: readonly number[], from: Box | undefined, to: Box | undefined): number[] {
    const middle = (box: Box): [number, number] => [box.x + box.w / 2, box.y + box.h / 2];
    const before: number[] = [];
    const after: number[] = [];
    if (from?.w === nodeSize) {
        const [x, y] = middle(from);
        before.push(x, y, ...(route[1] === y ? [] : [x, route[1] ?? y]));
    }
    if (to?.w === nodeSize) {
        const [x, y] = middle(to);
        const last = route[route.length - 1] ?? y;
        after.push(...(last === y ? [] : [x, last]), x, y);
    }
    return [...before, ...route, ...after];
}

/** Its thread starts with the page: it takes a moment until it can lay out. */
const elk: Elk = new ELK({ workerFactory: () => new Worker("elk-worker.js") });

/** Lays the plant out by its connections. Takes a while for a large one, in a thread of its own. */
export async function tidyLayout(plant: Plant, room: Room): Promise<Layout> {
    const tried = openings.slice(0, plant.shapes.length > few ? 1 : openings.length);
    const graphs = await Promise.all(tried.map(async ([opening, worth]) => {
        const graph = await elk.layout(elkGraph(plant, room, opening));
        return { graph, worth: worth * Math.min(room.w / (graph.width ?? 1), room.h / (graph.height ?? 1)) };
    }));
    const { graph } = graphs.reduce((best, each) => (each.worth > best.worth ? each : best));
    const boxes = new Map<string, Box>();
    for (const child of graph.children ?? []) {
        boxes.set(child.id, { x: child.x ?? 0, y: child.y ?? 0, w: child.width ?? 0, h: child.height ?? 0 });
    }
    const routes = new Map<string, readonly number[]>();
    const byKey = new Map(plant.runs.map((run) => [run.key, run]));
    for (const edge of graph.edges ?? []) {
        const run = byKey.get(edge.id);
        if (run) routes.set(edge.id, intoNodes(routeOf(edge), boxes.get(run.from.key), boxes.get(run.to.key)));
    }
    return { boxes, routes, width: graph.width ?? 0, height: graph.height ?? 0 };
}

/** A line of level and upright pieces between the sides of two boxes that face each other. */
function plainRoute(from: Box, to: Box): number[] {
    const middle = (box: Box): [number, number] => [box.x + box.w / 2, box.y + box.h / 2];
    const [fx, fy] = middle(from);
    const [tx, ty] = middle(to);
    if (Math.abs(tx - fx) >= Math.abs(ty - fy)) {
        const right = tx >= fx;
        const start = from.w === nodeSize ? fx : right ? from.x + from.w : from.x;
        const end = to.w === nodeSize ? tx : right ? to.x : to.x + to.w;
        return fy === ty ? [start, fy, end, ty] : [start, fy, (start + end) / 2, fy, (start + end) / 2, ty, end, ty];
    }
    const down = ty >= fy;
    const start = from.h === nodeSize ? fy : down ? from.y + from.h : from.y;
    const end = to.h === nodeSize ? ty : down ? to.y : to.y + to.h;
    return fx === tx ? [fx, start, tx, end] : [fx, start, fx, (start + end) / 2, tx, (start + end) / 2, tx, end];
}

/** Shapes that the document puts at one place, or gives none, stand in rows below one another. */
function spread(shapes: readonly Element[]): Map<string, { x: number; z: number }> {
    const taken = new Set<string>();
    const places = new Map<string, { x: number; z: number }>();
    for (const shape of shapes) {
        let z = shape.z;
        while (taken.has(`${shape.x} ${z}`)) z += 1;
        taken.add(`${shape.x} ${z}`);
        places.set(shape.key, { x: shape.x, z });
    }
    return places;
}

/** What a unit of the document is on the drawing: so much that neighbours mostly have room for their names. */
function stepOf(places: readonly { x: number; z: number }[]): number {
    if (places.length < 2) return 1;
    const index = new Flatbush(places.length);
    for (const { x, z } of places) index.add(x, z, x, z);
    index.finish();
    const gaps = places.map(({ x, z }) => {
        const other = places[index.neighbors(x, z, 2).find((at) => places[at]?.x !== x || places[at].z !== z) ?? 0];
        return other ? Math.hypot(other.x - x, other.z - z) : 1;
    }).sort((one, other) => one - other);
    return 150 / Math.max(1, gaps[gaps.length >> 1] ?? 1);
}

/** Draws each shape where the document has it. */
export function givenLayout(plant: Plant): Layout {
    const places = spread(plant.shapes);
    const xs = [...places.values()].map(({ x }) => x);
    const zs = [...places.values()].map(({ z }) => z);
    const left = xs.reduce((least, x) => Math.min(least, x), Infinity);
    const top = zs.reduce((least, z) => Math.min(least, z), Infinity);
    const step = stepOf([...places.values()]);
    const boxes = new Map<string, Box>();
    let width = 0;
    let height = 0;
    for (const shape of plant.shapes) {
        const place = places.get(shape.key) ?? shape;
        const { w, h } = sizeOf(shape);
        const box = { x: (place.x - left) * step - w / 2 + 80, y: (place.z - top) * step - h / 2 + 60, w, h };
        boxes.set(shape.key, box);
        width = Math.max(width, box.x + w + 60);
        height = Math.max(height, box.y + h + 60);
    }
    const route = (run: Run): readonly number[] => {
        const from = boxes.get(run.from.key);
        const to = boxes.get(run.to.key);
        return from && to ? plainRoute(from, to) : [];
    };
    return { boxes, routes: new Map(plant.runs.map((run) => [run.key, route(run)])), width, height };
}
