// The topology report, as the service gives it.

import { type Json, readJson, textOf } from "./json.js";

export interface ReportElement {
    readonly [member: string]: Json | undefined;
    readonly InstanceID: string;
    /** In decimal: it may have more digits than a number of JavaScript can carry. */
    readonly VornModuleID: string;
    readonly DeviceName?: string;
    readonly NodeName?: string;
    readonly PositionX: number;
    readonly PositionZ: number;
    readonly ModelID: string;
}

export interface ReportConnection {
    readonly [member: string]: Json | undefined;
    readonly InstanceID: string;
    readonly Type: number;
    readonly PageNb: number;
    readonly F_InstanceID: string;
    readonly F_PortNb: number;
    readonly S_InstanceID: string;
    readonly S_PortNb: number;
}

/** What flows from one end to the other. An open end is "None", at port -1. */
export interface ReportBranch {
    readonly Branch: number;
    readonly Type: number;
    readonly Front_InstanceID: string;
    readonly FrontPort: number;
    /** Modules and their aisles in the order of the flow, each an object of one member. */
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
        const report = readJson(text) as unknown as Partial<Report> | null;
        const lists = [report?.DeviceInfo, report?.NodeInfo, report?.ConnectionInfo, report?.BranchInfo];
        if (!lists.every(Array.isArray)) return null;
        const typed = (list: readonly ReportElement[]): ReportElement[] =>
            list.map((each) => ({ ...each, VornModuleID: textOf(each.VornModuleID) })); // short ones came as numbers
        const whole = report as Report;
        return { ...whole, DeviceInfo: typed(whole.DeviceInfo), NodeInfo: typed(whole.NodeInfo) };
    } catch {
        return null;
    }
}

/** The modules that a branch leads through, with their aisles. */
export function passagesOf(branch: ReportBranch): [module: string, aisle: number][] {
    return branch.InstanceID_AisleNb.flatMap((entry) => Object.entries(entry));
}
