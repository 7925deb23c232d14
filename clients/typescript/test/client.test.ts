// The client's own work, and a plant with a real host.

import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import {
    contract, elementNumbers, meaningOf, netsOf, ownNumber, Project, readJson, Refused, type ReportBranch, reportRead, Service, textOf, valueText, verdictRead, writeJson,
} from "../src/index.js";
import { baseOf, Connection } from "../src/node.js";
import { Host, needed } from "./host.js";

const host = new Host();
let service: Service;
before(async () => {
    await host.start();
    service = new Service(new Connection(contract.http, { address: host.api }).transport);
});
after(() => host.remove());

const repository = needed("VORN_REPOSITORY");
const read = (...path: string[]): string => readFileSync(join(repository, ...path), "utf8");

test("each example keeps its types: the stand-in's own through JSON.parse, all of them through readJson", () => {
    const types = (readJson(read("api", "catalogue.json")) as { types: { VornModuleID: string | number }[] }).types.map((each) => String(each.VornModuleID));
    const texts = ["examples", join("api", "commands")].flatMap((folder) => readdirSync(join(repository, folder))
        .filter((name) => name.endsWith(".json")).map((name) => read(folder, name)));
    let seen = 0;
    for (const text of [...texts, read("api", "catalogue.json")]) {
        for (const [, digits = ""] of text.matchAll(/"(?:VornModuleID|DeviceID)": ?(\d+)/g)) {
            ++seen;
            const parsed = String(JSON.parse(digits));
            if (digits.startsWith("260101")) assert.equal(parsed, digits);
            else assert.ok(parsed === digits || !types.includes(parsed), `${digits} becomes another type, ${parsed}`);
            assert.equal(writeJson({ VornModuleID: textOf(readJson(digits)) }, contract.spelling), `{"VornModuleID":${digits}}`);
        }
    }
    assert.ok(seen > 100, String(seen));
});

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

test("verdicts name their element", () => {
    const rows: readonly (readonly [string, boolean, string | null, string | null, number | null])[] = [
        ["OK", true, null, null, null],
        ["出错啦,此支路号:2不完整,缺少下游链接。尾部的设备和通路,分别是设备(InstanceID) :MOD10,通路号:0,设备VornmoduleID:25092119192771617\n", false, "MOD10", "open", 2],
        ["出错啦,此节点(InstanceID)所在管网缺少定压装置:NOD3,节点VornmoduleID:3000\n", false, "NOD3", "pressure", null],
        ["出错啦,此设备(InstanceID):MOD7中,通路号:1所在支路不完整,设备VornmoduleID:1\n", false, "MOD7", "unreached", null],
        ["项目名称找不到(project Char error)", false, null, "other", null],
    ];
    for (const [text, good, key, fault, branch] of rows) {
        const verdict = verdictRead(text);
        assert.deepEqual([verdict.good, verdict.key, verdict.fault, verdict.branch], [good, key, fault, branch], text);
    }
});

test("what JSON or the service would store otherwise is refused before it is sent", () => {
    assert.equal(writeJson({ VornModuleID: 25092117291321127n, Length: 5, StartPortID: "1", x: [null] }, contract.spelling),
        '{"VornModuleID":25092117291321127,"Length":5.0,"StartPortID":"1","x":[null]}');
    for (const wrong of [NaN, Infinity, 25092117291321128]) assert.throws(() => writeJson({ VornModuleID: wrong }, contract.spelling), RangeError);
    assert.equal(valueText([1, 2.5]), "1,2.5");
    for (const wrong of ["abc", NaN, "", [], "1,,2", Array<number>(9).fill(1)]) assert.throws(() => valueText(wrong), RangeError, String(wrong));
    for (const wrong of ["ftp://a", "http://a:b@c/", "https://a/?x", "a b"]) assert.throws(() => baseOf(wrong), wrong);
    assert.equal(baseOf("https://plant.example:8443/vorn/"), "https://plant.example:8443/vorn");
});

test("branches that meet at nodes are one net, information apart", () => {
    const branch = (Branch: number, Type: number, front: string, post: string): ReportBranch =>
        ({ Branch, Type, Front_InstanceID: front, FrontPort: 0, InstanceID_AisleNb: [], Post_InstanceID: post, PostPort: 0 });
    const { nets, alone } = netsOf([branch(0, 0, "NOD0", "NOD1"), branch(1, 0, "NOD2", "NOD3"), branch(2, 1, "NOD0", "NOD2"),
        branch(3, 0, "MOD1", "NOD1"), branch(4, 0, "MOD5", "MOD6"), branch(5, 0, "NOD1", "NOD2"), branch(6, 2, "MOD9", "NOD9")]);
    assert.deepEqual(nets.map(({ nodes, branches, ends }) => [nodes.join(), branches.map((each) => each.Branch).join(), [...ends].join()]),
        [["NOD0,NOD1,NOD2,NOD3", "0,1,3,5", "MOD1"], ["NOD9", "6", "MOD9"]]);
    assert.deepEqual(alone.map((each) => each.Branch), [2, 4]);
    for (const bad of ["", "none", "[]", "{}"]) assert.equal(reportRead(bad), null, bad);
});

test("a plant is made, judged, read, written and refused", async () => {
    const plant = new Project(service, "TS");
    await plant.create();
    await plant.import(read("examples", "cold_store.json"));
    assert.equal((await plant.check()).good, true);
    const { nets, names, report, modules } = await plant.topology();
    assert.deepEqual([nets.length > 0, report.DeviceInfo.length, modules.length, names.get("NOD0")], [true, 36, 36, "liquid line"]);
    assert.deepEqual(await plant.write({ GTemp: -5, Nothing: 1 }), ["Nothing"]);
    assert.deepEqual(await plant.read(["GTemp", "GSeries", "Nothing"]), { GTemp: -5, GSeries: [0, 0, 0, 0, 0, 0, 0, 0], Nothing: null });
    assert.equal(await plant.addModule({ VornModuleID: 25092119192766817n, DeviceName: "散热器", PositionX: 3 }), "MOD36");
    await plant.import(read("examples", "cold_store_faulty.json"));
    const verdict = await plant.check();
    assert.deepEqual([verdict.fault, verdict.key, verdict.aisle, verdict.type], ["open", "MOD10", 0, "25092119192771617"]);
    await assert.rejects(plant.addModule({ VornModuleID: "25092117291321128" }), (error: Refused) => error instanceof Refused && error.hint.includes("a double"));
    await assert.rejects(new Project(service, "NONE").run(), Refused);
    const pause = contract.commands.get("PjtPause");
    assert.ok(pause && "failure" in (meaningOf(contract, pause, "项目名称找不到(project Char error)") ?? {}));
});
