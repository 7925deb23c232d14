// Which numbers the elements of a report have. The report names connections and branches by number, but the elements of
// a list by their InstanceID, which a document may have chosen; the list is in rising order of numbers, with gaps where
// elements were deleted.

import type { Report } from "./report.js";

/** The number in a name of the system's own form, as 12 in `MOD12`; null for any other text. */
export function ownNumber(id: string, prefix: string): number | null {
    const digits = id.startsWith(prefix) ? id.slice(prefix.length) : "";
    return /^(0|[1-9]\d*)$/.test(digits) ? Number(digits) : null;
}

/** The element's number that its variables' names in a reply to `VarInfoGet` contain; null where none does. */
export function numberIn(variables: string, project: string, prefix: string): number | null {
    const found = new RegExp(`"${project.toUpperCase()}_${prefix}(\\d+)_`).exec(variables);
    return found ? Number(found[1]) : null;
}

/**
 * The numbers behind a list. `numberOf` asks for one element's number and may not know it (null). Between two elements
 * whose numbers differ as their places do there is no gap, so that a list without gaps takes two questions. Where
 * nothing is known, the list counts as without gaps.
 */
export async function elementNumbers(
    ids: readonly string[], prefix: string, numberOf: (id: string) => Promise<number | null>,
): Promise<number[]> {
    const numbers = ids.map((_, place) => place);
    const ask = async (place: number): Promise<number> => {
        const id = ids[place] ?? "";
        const found = ownNumber(id, prefix) ?? (await numberOf(id));
        return found ?? place;
    };
    const fill = async (low: number, lowNumber: number, high: number, highNumber: number): Promise<void> => {
        numbers[low] = lowNumber;
        numbers[high] = highNumber;
        if (highNumber - lowNumber <= high - low) {
            for (let place = low; place < high; ++place) numbers[place] = lowNumber + place - low;
        } else if (high - low > 1) {
            const middle = (low + high) >> 1;
            const middleNumber = await ask(middle);
            await fill(low, lowNumber, middle, middleNumber);
            await fill(middle, middleNumber, high, highNumber);
        }
    };
    if (ids.length > 0) await fill(0, await ask(0), ids.length - 1, await ask(ids.length - 1));
    return numbers;
}

/** The numbers behind both lists of a report. */
export async function reportNumbers(
    report: Report, numberOf: (id: string, prefix: "MOD" | "NOD") => Promise<number | null>,
): Promise<{ modules: number[]; nodes: number[] }> {
    const of = (list: Report["DeviceInfo"], prefix: "MOD" | "NOD"): Promise<number[]> =>
        elementNumbers(list.map(({ InstanceID }) => InstanceID), prefix, (id) => numberOf(id, prefix));
    return { modules: await of(report.DeviceInfo, "MOD"), nodes: await of(report.NodeInfo, "NOD") };
}

/** By number, `MOD3` or `NOD0`, the InstanceIDs of the elements that have one of their own. */
export type Names = ReadonlyMap<string, string>;

export function namesOf(report: Report, numbers: { modules: readonly number[]; nodes: readonly number[] }): Names {
    const names = new Map<string, string>();
    const add = (list: Report["DeviceInfo"], of: readonly number[], prefix: string): void => list.forEach(({ InstanceID }, place) => {
        const key = `${prefix}${of[place] ?? place}`;
        if (InstanceID !== key) names.set(key, InstanceID);
    });
    add(report.DeviceInfo, numbers.modules, "MOD");
    add(report.NodeInfo, numbers.nodes, "NOD");
    return names;
}

/** An element as `MOD3 "pump"`, or as its number alone. */
export function named(names: Names, element: string): string {
    const name = names.get(element);
    return name === undefined ? element : `${element} "${name}"`;
}
