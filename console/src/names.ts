// The variable names behind what the drawing shows.

import type { Plant, Run } from "./plant";
import type { Quantity } from "./state";

const nodeItems: Readonly<Record<Exclude<Quantity, "NONE">, string>> = {
    TEMP: "Temperature",
    PRE: "Pressure",
    FLOW: "Flow",
};

/** A run's value is its pipe's, or that of the device at one of its ends. */
export function runVariable(plant: Plant, run: Run, quantity: Quantity): string | null {
    if (quantity === "NONE") return null;
    if (run.pipe) return `${plant.name}_${run.key}_IM0_${quantity}`;
    const end = [run.from, run.to].find(({ key }) => key.startsWith("MOD"));
    return end ? `${plant.name}_${end.key}_IM${end.port}_${quantity}` : null;
}

/** By element key, the variable that is shown there: at a device that of its outlet. Runs only with a pipe. */
export function shownVariables(plant: Plant, quantity: Quantity): Map<string, string> {
    const names = new Map<string, string>();
    if (quantity === "NONE") return names;
    const outlet = (key: string, port: number): void => {
        if (key.startsWith("MOD") && !names.has(key)) names.set(key, `${plant.name}_${key}_IM${port}_${quantity}`);
    };
    for (const run of plant.runs) if (run.medium !== "power") outlet(run.from.key, run.from.port);
    for (const run of plant.runs) if (run.medium !== "power") outlet(run.to.key, run.to.port);
    for (const shape of plant.shapes) {
        if (shape.node && shape.typeName === "FLUID") names.set(shape.key, `${plant.name}_${shape.key}_${nodeItems[quantity]}`);
        else if (shape.type.inside && quantity === "TEMP") {
            names.set(shape.key, `${plant.name}_${shape.key}_${shape.type.inside}`);
        }
    }
    for (const run of plant.runs) {
        const name = run.pipe && run.medium !== "power" ? runVariable(plant, run, quantity) : null;
        if (name) names.set(run.key, name);
    }
    return names;
}

/** A variable in a person's words, as far as the plant tells them; else the name behind the project's. */
export function spoken(name: string, plant: Plant | null, word: (item: Exclude<Quantity, "NONE"> | "port") => string): string {
    const short = name.slice(name.indexOf("_") + 1);
    const [, key = "", port, item = ""] = /^((?:MOD|NOD)\d+)_(?:IM(\d+)_)?(\w+)$/.exec(short) ?? [];
    const element = plant?.elements.get(key);
    if (!element) return short;
    const quantity = item === "TEMP" || item === "PRE" || item === "FLOW" ? word(item) : item;
    return `${element.id} · ${quantity}${port === undefined ? "" : `, ${word("port")} ${port}`}`;
}

export const units: Readonly<Record<Quantity, string>> = { TEMP: "°C", PRE: "kPa", FLOW: "kg/s", NONE: "" };

/** The unit of a variable, by the end of its name; empty where it is not known. */
export function unitOf(name: string): string {
    const item = /_([A-Za-z0-9]+)$/.exec(name)?.[1] ?? "";
    const rows: readonly (readonly [RegExp, string])[] = [
        [/TEMP$|Temp|^GTemp$/i, "°C"],
        [/^PRE$|Pressure/, "kPa"],
        [/^FLOW$|^Flow$/, "kg/s"],
        [/^Power$/, "kW"],
        [/^(Head|PL)$/, "m"],
        [/^[DWH]$/, "mm"],
        [/^Area$/, "m²"],
        [/^Volume$/, "m³"],
        [/^Voltage$/, "V"],
        [/^WAll$/, "kWh"],
        [/Humidity$/, "%"],
    ];
    return rows.find(([pattern]) => pattern.test(item))?.[1] ?? "";
}
