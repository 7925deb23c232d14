// Reading what the service tells.

import assert from "node:assert/strict";
import { test } from "node:test";
import { infoRead } from "../src/elementinfo";
import { concerns, type ExchangeRow, isOwnRead, type Row, rowText } from "../src/log";
import { plantOf } from "../src/plant";
import { elementNumbers, ownNumber, reportRead } from "../src/topology";
import { verdictRead } from "../src/verdict";

test("element numbers follow gaps and ask little", async () => {
    const rows: readonly (readonly [ids: string[], numbers: Record<string, number>, expected: number[], questions: number])[] = [
        [[], {}, [], 0],
        [["a"], { a: 0 }, [0], 2],
        [["a", "b", "c", "d"], { a: 0, b: 1, c: 2, d: 3 }, [0, 1, 2, 3], 2],
        [["a", "b", "c", "d"], { a: 0, b: 2, c: 3, d: 7 }, [0, 2, 3, 7], 4],
        [["MOD1", "b", "MOD4"], { b: 3 }, [1, 3, 4], 1],
        [["MOD2", "MOD5"], {}, [2, 5], 0],
        [["x", "y", "z"], {}, [0, 1, 2], 2],
    ];
    for (const [ids, numbers, expected, questions] of rows) {
        let asked = 0;
        const found = await elementNumbers(ids, "MOD", (id) => {
            ++asked;
            return Promise.resolve(numbers[id] ?? null);
        });
        assert.deepEqual(found, expected, ids.join());
        assert.equal(asked, questions, ids.join());
    }
    assert.deepEqual(["MOD0", "MOD12", "MOD012", "NOD1", "MOD", "MOD1x"].map((id) => ownNumber(id, "MOD")), [0, 12, null, null, null, null]);
});

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

test("verdicts name their element", () => {
    const rows: readonly (readonly [string, boolean, string | null, string | null, number | null])[] = [
        ["OK", true, null, null, null],
        ["出错啦,此支路号:2不完整,缺少下游链接。尾部的设备和通路,分别是设备(InstanceID) :MOD10,通路号:0,设备VornmoduleID:25092119192771617\n", false, "MOD10", "open", 2],
        ["出错啦,此节点(InstanceID)所在管网缺少定压装置:NOD3,节点VornmoduleID:3000\n", false, "NOD3", "pressure", null],
        ["出错啦,此设备(InstanceID):MOD7中,通路号:1所在支路不完整,设备VornmoduleID:1\n", false, "MOD7", "unreached", null],
        ["项目名称找不到(project Char error)", false, null, "other", null],
    ];
    for (const [text, good, key, fault, branch] of rows) {
        const read = verdictRead(text);
        assert.deepEqual([read.good, read.key, read.fault, read.branch], [good, key, fault, branch], text);
    }
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
