// Reading what the service tells.

import assert from "node:assert/strict";
import { test } from "node:test";
import { reportRead } from "../../clients/typescript/src/index";
import { infoRead } from "../src/elementinfo";
import { concerns, type ExchangeRow, isOwnRead, type Row, rowText } from "../src/rows";
import { plantOf } from "../src/plant";

const device = (id: string, type: string, name: string): string =>
    `{"InstanceID":"${id}","DeviceName":"${name}","VornModuleID":${type},"PositionX":1.0,"PositionZ":2.0,"RoomID":0,"ModelID":""}`;
const link = (number: number, from: string, to: string): string =>
    `{"InstanceID":"LNK${number}","Type":0,"PageNb":0,"F_InstanceID":"${from}","F_PortNb":0,"S_InstanceID":"${to}","S_PortNb":1}`;

test("pipes become runs, branches nets, long type numbers stay whole", () => {
    const text = `{"DeviceInfo":[${device("pump", "2601010000011", "水泵")},${device("pipe", "24032022192805856", "铸铁管道")},
        ${device("stub", "24032022192805856", "铸铁管道")},${device("MOD3", "25083017561574261", "铜管")}],
        "NodeInfo":[{"InstanceID":"n","NodeName":"FLUID","VornModuleID":3000,"PositionX":0.0,"PositionZ":0.0,"RoomID":0,"ModelID":""}],
        "ConnectionInfo":[${link(0, "MOD0", "MOD1")},${link(1, "MOD1", "NOD0")},${link(2, "NOD0", "MOD0")},${link(3, "NOD0", "MOD9")},
        ${link(4, "NOD0", "MOD3")},${link(5, "MOD3", "NOD0")}],
        "BranchInfo":[{"Branch":0,"Type":0,"Size":2,"Front_InstanceID":"NOD0","FrontPort":8,
        "InstanceID_AisleNb":[{"MOD0":0},{"MOD1":0}],"Post_InstanceID":"NOD0","PostPort":0},
        {"Branch":1,"Type":0,"Size":1,"Front_InstanceID":"None","FrontPort":-1,
        "InstanceID_AisleNb":[{"MOD3":0}],"Post_InstanceID":"None","PostPort":-1}]}`;
    const report = reportRead(text);
    assert.ok(report);
    assert.equal(report.DeviceInfo[0]?.VornModuleID, "2601010000011");
    const plant = plantOf("P", text, report, [0, 1, 2, 3], [0]);
    assert.deepEqual(plant.runs.map(({ key, from, to }) => `${key} ${from.key}>${to.key}`),
        ["MOD1 MOD0>NOD0", "MOD3 NOD0>NOD0", "LNK2 NOD0>MOD0"]);
    assert.deepEqual(plant.shapes.map(({ key }) => key), ["MOD0", "MOD2", "NOD0"]);
    assert.deepEqual(plant.nets.map(({ medium, keys }) => `${medium} ${[...keys].sort().join()}`),
        ["water LNK2,MOD0,MOD1,NOD0", "refrigerant MOD3"]);
    for (const bad of ["", "none", "[]", "{}", '{"DeviceInfo":[],"NodeInfo":[],"ConnectionInfo":[]}']) assert.equal(reportRead(bad), null, bad);
});

test("an element's texts make one table, and unknown ones are shown as they are", () => {
    const info = infoRead(
        '[{"Row":0,"Item":"Power","Name":"P_MOD2_Power","Value":1.5},{"Port":0,"Name":"P_MOD2_IM0_PRE","Value":3.0},{"Port":0,"Name":"P_MOD2_IM0_ARY","Value":[1,2]}]',
        '[{"Row":0,"Item":"Power","Sets":[1.0,2.0,null]}]', '[{"Row":0,"Item":"Power","Value":1.5}]',
    );
    assert.deepEqual(info.ports, [{ name: "P_MOD2_IM0_PRE", port: 0, item: "PRE" }]);
    assert.deepEqual(info.items, [{ row: 0, item: "Power", name: "P_MOD2_Power", run: "1.5", sets: ["1", "2", "–"] }]);
    assert.equal(infoRead("some text", "", "[]").plain, "some text\n[]");
});

test("rows are shown as what they are, and only the console's own reads can be left out", () => {
    const row = {
        kind: "exchange", number: 1, time: 0, front: "console", side: "write", word: "Set", sent: "", name: "P_A", nameLeft: 0, project: "P",
        messages: "1", messagesLeft: 9, reply: "OK", replyLeft: 0, replyKind: "ok", store: "none",
    } as const satisfies ExchangeRow;
    const rows: readonly (readonly [Row, string, boolean, boolean])[] = [
        [row, "console Set P_A 1… +9 OK", false, true],
        [{ ...row, side: "read" }, "console Set P_A 1… +9 OK", true, true],
        [{ ...row, front: "http", side: "read", word: "other", sent: "Set", project: "Q" }, "http other Set P_A 1… +9 OK", false, false],
        [{ ...row, name: "json", project: "" }, "console Set json 1… +9 OK", false, true],
        [{ kind: "state", number: 1, time: 0, project: "P", state: "paused", byCommand: true }, "P paused", false, true],
        [{ kind: "notice", number: 1, time: 0, severity: "fault", text: "x" }, "x", false, false],
    ];
    for (const [each, text, own, concerned] of rows) {
        assert.deepEqual([rowText(each), isOwnRead(each), concerns(each, "P")], [text, own, concerned], text);
    }
});
