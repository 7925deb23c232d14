// Values of variables, which travel as texts.

export type Value = number | readonly number[] | string;

const numberText = /^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$/;
const mostEntries = 8;

/** A value as the service writes it: a number as a number, a list as its numbers. */
export function valueRead(text: string): number | number[] | string {
    if (numberText.test(text)) return Number(text);
    const entries = text.split(",");
    return entries.length > 1 && entries.every((each) => numberText.test(each)) ? entries.map(Number) : text;
}

function entryText(value: number | string): string {
    const text = String(value).trim();
    if (numberText.test(text) && Number.isFinite(Number(text))) return text;
    throw new RangeError(`${JSON.stringify(String(value))} is no number: the service would store 0 and say OK`);
}

/** The text of a value to write. Throws RangeError for what is no finite number, or no list of at most eight. */
export function valueText(value: Value): string {
    const entries: readonly (number | string)[] = typeof value === "number" ? [value] : typeof value === "string" ? value.split(",") : value;
    if (entries.length === 0 || entries.length > mostEntries) throw new RangeError(`a list has 1 to ${mostEntries} entries, not ${entries.length}`);
    return entries.map(entryText).join(",");
}
