// The tool server as an assistant meets it: the SDK's client before it, a real host behind it.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import type { Client } from "@modelcontextprotocol/sdk/client/index.js";
import type { StdioClientTransport } from "@modelcontextprotocol/sdk/client/stdio.js";
import { ask, connect, Host, startBreaker } from "./support.js";

const host = new Host();
let client: Client;
const used = new Set<string>();

/** Calls a tool that has to succeed. */
async function call(name: string, args: Record<string, unknown> = {}) {
    used.add(name);
    const answer = await ask(client, name, args);
    assert.equal(answer.failed, false, `${name}: ${answer.text}`);
    return answer;
}

/** Calls a tool that has to fail with a text of this form. */
async function fails(name: string, args: Record<string, unknown>, form: RegExp) {
    const answer = await ask(client, name, args);
    assert.equal(answer.failed, true, `${name} did not fail: ${answer.text}`);
    assert.match(answer.text, form, name);
}

before(async () => {
    await host.start();
    client = await connect(["--address", host.api]);
});
after(async () => {
    await client.close();
    await host.remove();
});

test("tools tell what they do to a plant", async () => {
    const { tools } = await client.listTools();
    const hints = new Map(tools.map(({ name, annotations }) =>
        [name, annotations?.readOnlyHint ? "reads" : annotations?.destructiveHint === false ? "changes" : "destroys"]));
    const expected = {
        reads: ["status", "check_plant", "plant_summary", "read_topology", "module_types", "read_variables", "watch_variables", "picture", "explain_values"],
        changes: ["create_project", "add_link", "run", "pause", "step", "stop", "write_variables", "set_unsaved_value"],
        destroys: ["make_plant", "close_project", "delete_element", "save_run_values", "load_run_values"],
    };
    for (const [hint, names] of Object.entries(expected)) for (const name of names) assert.equal(hints.get(name), hint, name);
    assert.ok(!tools.find(({ name }) => name === "pause")?.annotations?.idempotentHint, "a toggle");
    assert.ok(Buffer.byteLength(JSON.stringify(tools)) < 20000, `the list has ${Buffer.byteLength(JSON.stringify(tools))} bytes`);
    for (const { name, description, inputSchema, outputSchema } of tools) {
        assert.ok(description && outputSchema, name);
        for (const each of Object.values(inputSchema.properties ?? {})) assert.ok((each as { description?: string }).description, name);
    }
});

test("resources are the schemas, the reference and the examples, as they stand", async () => {
    const { resources } = await client.listResources();
    const uris = new Set(resources.map(({ uri }) => uri));
    for (const uri of ["vorn://schemas/project_document.schema.json", "vorn://reference/run.md", "vorn://docs/concepts.md", "vorn://examples/cold_store.json", "vorn://docs/fittings.md", "vorn://docs/plant.md"]) {
        assert.ok(uris.has(uri), uri);
        const { contents } = await client.readResource({ uri });
        assert.ok(contents[0] && "text" in contents[0] && contents[0].text.length > 100, uri);
    }
    await assert.rejects(client.readResource({ uri: "vorn://docs/../SECURITY.md" }), /no resource/);
});

test("a plant is made, judged, mended and read", async () => {
    const faulty = (await call("make_plant", { project: "COLD", example: "cold_store_faulty" })).json;
    assert.equal(faulty.complete, false);
    assert.match(faulty.element, /MOD10 "air cooler 2"/);
    assert.match(faulty.branch, /^NOD0 "liquid line".* > MOD10 "air cooler 2" > nothing$/);
    assert.match((await call("check_plant", { project: "COLD" })).json.todo, /Link the module's outlet/);

    const { contents } = await client.readResource({ uri: "vorn://examples/cold_store.json" });
    const text = contents[0] && "text" in contents[0] ? contents[0].text : "";
    const made = (await call("make_plant", { project: "COLD", document: text })).json;
    assert.deepEqual([made.complete, made.modules, made.nodes, made.leftOut], [true, 36, 2, undefined]);

    const summary = (await call("plant_summary", { project: "COLD", net: 0 })).json;
    assert.deepEqual(summary.nets[0].nodes, ['NOD0 "liquid line"', 'NOD1 "suction line"']);
    assert.equal(summary.modulesByType.pump, 2);
    assert.ok(summary.branchesByNet.entries.every(({ net }: { net: number }) => net === 0));
    const seen = new Set<string>();
    for (let offset: number | undefined = 0; offset !== undefined;) {
        const page: { entries: { InstanceID: string }[]; next?: number } =
            (await call("read_topology", { project: "COLD", part: "devices", offset, maxBytes: 1000 })).json;
        for (const { InstanceID } of page.entries) seen.add(InstanceID);
        assert.ok(JSON.stringify(page.entries).length < 1100);
        offset = page.next;
    }
    assert.equal(seen.size, 36, "the pages together are the whole list");
});

test("long integers and whole lengths reach the service as they are meant", async () => {
    const pump = (await call("module_types", { contains: "pump" })).json.types[0].VornModuleID as string;
    assert.equal(pump, "2601010000011");
    const connection = { ConnectionID: "c", StartDeviceInstanceID: "p", StartPortID: "1", EndDeviceInstanceID: "n", Length: 5 };
    const document = {
        DeviceInfo: [{ InstanceID: "p", VornModuleID: pump }, { InstanceID: "n", VornModuleID: 3000, FluidType: 0 }, { InstanceID: "x", VornModuleID: "5007" }],
        ConnectionInfo: [connection, { ...connection, ConnectionID: "d" }],
    };
    const made = (await call("make_plant", { project: "SMALL", document })).json;
    assert.deepEqual([made.leftOut.devices, made.leftOut.looseEnds], [["x"], ["start of d", "end of d"]]);
    const pipe = (await call("element_values", { project: "SMALL", element: "c" })).json;
    assert.deepEqual(pipe.items[0].sets.slice(0, 2), [5, 5]);
    assert.equal((await call("read_topology", { project: "SMALL", part: "devices" })).json.entries[0].VornModuleID, pump);
    const faulty: [object, RegExp][] = [
        [{ DeviceInfo: [{ InstanceID: "p", VornModuleID: 25092117291321127 }] }, /as a text of digits/],
        [{ DeviceInfo: [{ InstanceID: "p", VornModuleID: "25092117291321128" }] }, /what a double makes of one above 2\^53/],
        [{ ...document, ConnectionInfo: [{ ...connection, EndDeviceInstanceID: "q" }] }, /EndDeviceInstanceID "q" is no device/],
        [{ DeviceInfo: [{ InstanceID: "é".repeat(19), VornModuleID: pump }] }, /more than 37 bytes/],
        [{ DeviceInfo: [document.DeviceInfo[0], document.DeviceInfo[0]] }, /"p" is given twice/],
        [{ DeviceInfo: [{ InstanceID: "p", VornModuleID: pump, Colour: "red" }] }, /additional properties: Colour/],
    ];
    for (const [each, form] of faulty) await fails("make_plant", { project: "NEVER", document: each }, form);
    await fails("make_plant", { project: "NEVER", document, script: "x x" }, /The project was closed again/);
    await fails("make_plant", { project: "NEVER", document, startValues: { pumpe: { Head: 1 } } }, /neither an InstanceID nor a type "pumpe"/);
    assert.equal((await call("status", { project: "NEVER" })).json.open, false, "no slot is lost");
});

test("a run is begun, steered, watched and ended", async () => {
    const project = "COLD";
    const stored = (await call("set_unsaved_value", { project, element: "brine pump", item: "Head", set: 0, value: 12 })).json;
    assert.deepEqual(stored.Sets, [12, 20, 20]);
    await call("pause", { project });
    await call("run", { project });
    await call("step", { project, count: 3 });
    // Steps are asked for; the plant makes them in its own time.
    const read = async () => (await call("read_variables", { VarName: ["COLD_GStep", "COLD_MOD14_Head", "COLD_No"] })).json as Record<string, unknown>;
    for (let tries = 0; tries < 300 && Number((await read()).COLD_GStep) < 3; ++tries) await new Promise((on) => setTimeout(on, 50));
    assert.deepEqual(await read(), {
        COLD_GStep: 3, COLD_MOD14_Head: 12, COLD_No: { failure: "none varname 找不到变量名称", meaning: "There is no variable of this name." },
    });
    const written = (await call("write_variables", { VarName: ["COLD_MOD14_Head", "COLD_No"], VarValue: [15, "1"] })).json;
    assert.deepEqual([written.written, Object.keys(written.failed), written.now.COLD_MOD14_Head], [1, ["COLD_No"], 15]);
    const course = (await call("watch_variables", { VarName: ["COLD_GStep", "COLD_GSeries"], samples: 3, everyMs: 50 })).json;
    assert.deepEqual(course.values.COLD_GStep, [3, 3, 3], "it is paused");
    assert.equal(course.values.COLD_GSeries[0].length, 8);
    await call("stop", { project });
    await call("save_run_values", { project, set: 2 });
    const values = (await call("element_values", { project, element: "brine pump" })).json;
    assert.deepEqual(values.items[0], { item: "Head", name: "COLD_MOD14_Head", unit: "m", run: 15, sets: [12, 20, 15] });
    await call("load_run_values", { project, set: 0 });
    assert.deepEqual((await call("read_variables", { VarName: ["COLD_MOD14_Head"] })).json, { COLD_MOD14_Head: 12 });
    assert.match((await call("performance", { project })).text, /COP/);
    for (const of of ["drawing", "run"]) assert.match((await call("picture", { project, of })).text, /^<\?xml.*<\/svg>\s*$/s);
});

test("single elements are placed, linked, moved and deleted", async () => {
    const project = "HAND";
    await call("create_project", { project });
    const tank = { project, VornModuleID: "2601010000014", DeviceName: "膨胀水箱" };
    assert.equal((await call("add_module", tank)).json.reply, "MOD0");
    assert.match((await call("add_node", { project, VornModuleID: 3000, NodeName: "FLUID" })).text, /"NOD0"/);
    assert.match((await call("add_link", { project, F_InstanceID: "MOD0", F_PortNb: 1, S_InstanceID: "NOD0" })).text, /MOD1、LNK0、LNK1/);
    await call("move_element", { project, element: "NOD0", PositionX: 3, PositionZ: 1.5 });
    assert.equal((await call("read_topology", { project, part: "nodes" })).json.entries[0].PositionX, 3);
    await call("make_plant", { project, example: "cold_store" });
    assert.match((await call("read_topology", { project, part: "connections" })).json.entries[0].F_InstanceID, /^MOD\d+ "/);
    assert.equal((await call("delete_element", { project, element: "packing room" })).json.deleted, true);
    for (const element of ["MOD77", "NOD77", "LNK9999"]) assert.equal((await call("delete_element", { project, element })).json.deleted, false, element);
    const [link] = (await call("read_topology", { project, part: "connections" })).json.entries;
    assert.match(link.F_InstanceID, /^MOD\d+ "/, "names are found behind gaps of numbers, too");
    await call("close_project", { project });
    assert.equal((await call("status", { project })).json.open, false);
    await call("open_project", { project });
});

test("an assistant that has read nothing but prompts and resources makes the chilled-water plant cool within ten calls", async () => {
    let calls = 0;
    const counted = async (name: string, args: Record<string, unknown>): Promise<Record<string, any>> => { // eslint-disable-line @typescript-eslint/no-explicit-any
        ++calls;
        return (await call(name, args)).json as Record<string, unknown>;
    };
    const { messages } = await client.getPrompt({ name: "build_plant", arguments: { project: "COOL" } });
    const [first] = messages;
    const text = first?.content.type === "text" ? first.content.text : "";
    const startValues: unknown = JSON.parse(/\{"pump".*?\}\}/s.exec(text)?.[0] ?? "");
    for (const uri of text.match(/vorn:\/\/[\w/.-]+/g) ?? []) assert.ok((await client.readResource({ uri: uri.replace(/\.$/, "") })).contents[0], uri);
    const made = await counted("make_plant", { project: "COOL", example: "chilled_water_plant", startValues });
    assert.equal(made.complete, true);
    await counted("run", { project: "COOL" });
    await counted("write_variables", { VarName: ["COOL_GStepSeconds", "COOL_GRate"], VarValue: [1, 60] });
    const { items } = await counted("element_values", { project: "COOL", element: "office 1" });
    const office = items.find(({ item }: { item: string }) => item === "InsideTemperature").name as string;
    const { values } = await counted("watch_variables", { VarName: [office, "COOL_GTemp", "COOL_COP"], samples: 6, everyMs: 500 });
    const course = values[office] as number[];
    assert.ok((course.at(-1) ?? 99) < (course[0] ?? 0) - 0.5 && (course[0] ?? 99) <= 30, `the office grows cooler: ${course.join()}`);
    assert.ok(values.COOL_GTemp.at(-1) < 15 && values.COOL_COP.at(-1) > 1, JSON.stringify(values));
    const { findings } = await counted("explain_values", { project: "COOL" });
    assert.deepEqual(findings, []);
    await counted("stop", { project: "COOL" });
    assert.ok(calls <= 10, `${calls} calls`);
});

test("what keeps a plant from working is named", async () => {
    await call("make_plant", { project: "COOL", example: "chilled_water_plant", startValues: { valve: { Opening: 0 }, "chilled pump 1": { Power: 0 } } });
    await call("run", { project: "COOL" });
    const { findings } = (await call("explain_values", { project: "COOL" })).json as { findings: { element: string; finding: string }[] };
    const of = (element: string) => findings.find((each) => each.element === element)?.finding ?? "";
    assert.match(of("coil valve 1"), /closed/);
    assert.match(of("chilled pump 1"), /no power/);
    assert.match(of("evaporator 2"), /Area is 0/);
    assert.match(of("compressor 1"), /stopped itself: the second side of an evaporator/);
    await call("stop", { project: "COOL" });
});

test("long work reports how far it is, and ends where it is cancelled without a trace", async () => {
    const seen: number[] = [];
    const args = { VarName: ["COLD_GTemp"], samples: 3, everyMs: 50 };
    await client.callTool({ name: "watch_variables", arguments: args }, undefined, { onprogress: ({ progress }) => seen.push(progress) });
    assert.deepEqual(seen.slice(0, 2), [1, 2]); // the last one may come behind the result
    const other = await connect(["--address", host.api], "pipe");
    let said = "";
    (other.transport as StdioClientTransport).stderr?.on("data", (chunk: Buffer) => (said += chunk.toString()));
    const end = new AbortController();
    setTimeout(() => end.abort(), 300);
    await assert.rejects(other.callTool({ name: "watch_variables", arguments: { ...args, samples: 60, everyMs: 500 } }, undefined, { signal: end.signal }));
    assert.ok((await ask(other, "status")).json.address, "it serves on");
    assert.equal(said, "");
    await other.close();
});

test("prompts need what they name", async () => {
    assert.deepEqual((await client.listPrompts()).prompts.map(({ name }) => name), ["build_plant", "judge_plant", "explain_plant"]);
    await assert.rejects(client.getPrompt({ name: "judge_plant" }), /needs project/);
    await assert.rejects(client.getPrompt({ name: "fly" }), /no prompt/);
});

test("no tool was left out", async () => {
    assert.deepEqual((await client.listTools()).tools.map(({ name }) => name).filter((name) => !used.has(name)), []);
});

test("wrong input is told with what to do", async () => {
    const project = "COLD";
    const table: [string, Record<string, unknown>, RegExp][] = [
        ["run", {}, /required property 'project'/],
        ["run", { project: "no such" }, /must match pattern/],
        ["run", { project: "NOSUCH" }, /项目名称找不到.*\nMeaning: .*open project.*\nWhat to do: /],
        ["run", { project, now: true }, /additional properties/],
        ["create_project", { project }, /项目已打开/],
        ["add_link", { project, F_InstanceID: "MOD0", F_PortNb: 16, S_InstanceID: "NOD0" }, /F_PortNb: must be <= 15/],
        ["add_link", { project, F_InstanceID: "MOD99", S_InstanceID: "NOD0" }, /Meaning: /],
        ["element_values", { project, element: "nothing" }, /无法识别name/],
        ["set_unsaved_value", { project, element: "brine pump", item: "Colour", set: 0, value: 1 }, /It has: Head, Power/],
        ["load_run_values", { project, set: 3 }, /must be equal to one of/],
        ["write_variables", { VarName: ["COLD_GTemp"], VarValue: ["warm"] }, /VarValue\/0: must match pattern/],
        ["write_variables", { VarName: ["COLD_GTemp"], VarValue: [1, 2] }, /1 entries and VarValue 2/],
        ["make_plant", { project }, /either document or example/],
        ["make_plant", { project, document: "{" }, /no JSON/],
        ["make_plant", { project, document: { DeviceInfo: [{ VornModuleID: 3000 }] } }, /required property 'InstanceID'/],
        ["make_plant", { project, example: "../api/interface" }, /must be equal to one of/],
        ["picture", { project, of: "drawing", maxBytes: 1000 }, /more than maxBytes/],
    ];
    for (const [name, args, form] of table) await fails(name, args, form);
    await assert.rejects(client.callTool({ name: "fly", arguments: {} }), /no tool fly/);
    await call("run", { project });
    await fails("make_plant", { project, example: "cold_store" }, /project is runing.*\nWhat to do: Send stop first/s);
    await call("stop", { project });
});

test("without an address the service of the lowest port is found", async () => {
    const finder = await connect([]);
    const { address } = (await ask(finder, "status")).json;
    await finder.close();
    assert.match(address, /^http:\/\/127\.0\.0\.1:33[34]\d\d\/api$/);
    assert.ok(address <= host.api, "another one may run on this machine, at a lower port");
});

test("a command whose reply is lost is repeated only where it reads", async () => {
    const breaker = await startBreaker();
    const other = await connect(["--address", breaker.address]);
    assert.match((await ask(other, "read_variables", { VarName: ["A_GTemp"] })).text, /Nothing was changed/);
    assert.match((await ask(other, "step", { project: "A" })).text, /may have been carried out/);
    assert.deepEqual(breaker.words, ["Get", "Get", "PjtStep"]);
    await other.close();
    breaker.end();
});

test("the service goes and comes back", async () => {
    await host.end();
    await fails("status", {}, /Ask the user to start vorn-host/);
    await fails("read_variables", { VarName: ["COLD_GTemp"] }, /No service answers/);
    const { api } = host;
    await host.start();
    assert.equal(host.api, api, "its port was taken meanwhile");
    assert.equal((await call("status", { project: "COLD" })).json.open, false);
    await call("open_project", { project: "COLD" });
    assert.equal((await call("check_plant", { project: "COLD" })).json.complete, true, "the plant was stored");
});
