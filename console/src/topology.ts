// The topology report, as the service gives it.

export interface ReportElement {
    readonly InstanceID: string;
    /** In decimal: it has more digits than a number here can hold. */
    readonly VornModuleID: string;
    readonly DeviceName?: string;
    readonly NodeName?: string;
    readonly PositionX: number;
    readonly PositionZ: number;
    readonly ModelID: string;
}

export interface ReportConnection {
    readonly InstanceID: string;
    readonly Type: number;
    readonly F_InstanceID: string;
    readonly F_PortNb: number;
    readonly S_InstanceID: string;
    readonly S_PortNb: number;
}

export interface ReportBranch {
    readonly Branch: number;
    readonly Type: number;
    readonly Front_InstanceID: string;
    readonly FrontPort: number;
    readonly InstanceID_AisleNb: readonly Readonly<Record<string, number>>[];
    readonly Post_InstanceID: string;
    readonly PostPort: number;
}

export interface Report {
    readonly DeviceInfo: readonly ReportElement[];
    readonly NodeInfo: readonly ReportElement[];
    readonly ConnectionInfo: readonly ReportConnection[];
    readonly BranchInfo: readonly ReportBranch[];
}

/** Null for a text that is no report. */
export function reportRead(text: string): Report | null {
    try {
        const report = JSON.parse(text.replace(/("VornModuleID":\s*)(\d+)/g, '$1"$2"')) as Partial<Report> | null;
        const whole = [report?.DeviceInfo, report?.NodeInfo, report?.ConnectionInfo, report?.BranchInfo];
        return whole.every(Array.isArray) ? (report as Report) : null;
    } catch {
        return null;
    }
}

/** The number in a name of the system's own form, as 12 in `MOD12`; null for any other text. */
export function ownNumber(id: string, prefix: string): number | null {
    const digits = id.startsWith(prefix) ? id.slice(prefix.length) : "";
    return /^(0|[1-9]\d*)$/.test(digits) ? Number(digits) : null;
}

/**
 * The element numbers behind a list of the report. The report tells connections and branches by number, but a list's
 * elements by their InstanceID, which a document may have chosen; the list is in rising order of numbers, with gaps
 * where elements were deleted. `numberOf` asks for one element's number and may not know it (null). Between two
 * elements whose numbers differ as their places do there is no gap, so that a list without gaps takes two questions.
 * Where nothing is known, the list counts as without gaps.
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
