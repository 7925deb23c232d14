// What the page knows of module types: how to draw them and what to call them in English. A type that is not listed
// is recognised by a word in its name, or drawn as a plain box.

/** What flows in a run, and so its colour. */
export type Medium = "water" | "air" | "refrigerant" | "power" | "info" | "mech";

export type SymbolName =
    | "pump" | "valve" | "expansion" | "fan" | "aircooler" | "radiator" | "exchanger" | "tank" | "receiver"
    | "tower" | "compressor" | "condenser" | "evaporator" | "power" | "room" | "store" | "pipe" | "box";

export interface TypeInfo {
    readonly en: string;
    readonly symbol: SymbolName;
    /** Given for what joins two elements, and is drawn as the line between them. */
    readonly pipe?: Medium;
    /** The item shown as the element's temperature, for what has no ports. */
    readonly inside?: string;
}

const types: Readonly<Record<string, TypeInfo>> = {
    "24032022192805856": { en: "Cast-iron pipe", symbol: "pipe", pipe: "water" },
    "25032321491014823": { en: "Wire", symbol: "pipe", pipe: "power" },
    "25082921244318233": { en: "Rectangular duct", symbol: "pipe", pipe: "air" },
    "25083017561574261": { en: "Copper pipe", symbol: "pipe", pipe: "refrigerant" },
    "24032321240010392": { en: "Cast-iron reducer", symbol: "pipe", pipe: "water" },
    "25082923170872582": { en: "Duct reducer", symbol: "pipe", pipe: "air" },
    "25083018524631661": { en: "Copper reducer", symbol: "pipe", pipe: "refrigerant" },
    "25092208120526336": { en: "Room", symbol: "room", inside: "InsideTemperature" },
    "25092117291321127": { en: "Fan coil", symbol: "fan" },
    "25092119192771617": { en: "Air cooler", symbol: "aircooler" },
    "25092119192766817": { en: "Radiator", symbol: "radiator" },
};

const words: readonly (readonly [string, TypeInfo])[] = [
    ["膨胀水箱", { en: "Expansion tank", symbol: "tank" }],
    ["膨胀阀", { en: "Expansion valve", symbol: "expansion" }],
    ["水泵", { en: "Pump", symbol: "pump" }],
    ["泵", { en: "Pump", symbol: "pump" }],
    ["阀", { en: "Valve", symbol: "valve" }],
    ["板式换热器", { en: "Plate heat exchanger", symbol: "exchanger" }],
    ["换热器", { en: "Heat exchanger", symbol: "exchanger" }],
    ["冷却塔", { en: "Cooling tower", symbol: "tower" }],
    ["压缩机", { en: "Compressor", symbol: "compressor" }],
    ["冷凝器", { en: "Condenser", symbol: "condenser" }],
    ["蒸发器", { en: "Evaporator", symbol: "evaporator" }],
    ["储液器", { en: "Receiver", symbol: "receiver" }],
    ["电源", { en: "Power source", symbol: "power" }],
    ["冷库", { en: "Cold store", symbol: "store", inside: "BKT_TEMP" }],
    ["风机", { en: "Fan", symbol: "fan" }],
    ["水箱", { en: "Tank", symbol: "tank" }],
];

/** `oneId` is the type's identity in decimal, `name` its name as the service gives it. */
export function typeInfo(oneId: string, name: string): TypeInfo {
    return types[oneId] ?? words.find(([word]) => name.includes(word))?.[1] ?? { en: name, symbol: "box" };
}

export const linkMedia: readonly Medium[] = ["water", "info", "power", "mech"];
