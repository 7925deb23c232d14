// The page in a real browser, before a real host.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import type { AddressInfo } from "node:net";
import { after, before, test } from "node:test";
import axe from "axe-core";
import type { Browser, Page } from "playwright-core";
import { drawn, example, Host, openPage, shot, startBrowser } from "./support";

const host = new Host();
let browser: Browser;
let page: Page;
const faults: string[] = [];

before(async () => {
    await host.start();
    browser = await startBrowser();
    page = await openPage(browser, host.link, faults);
});
after(async () => {
    await browser.close();
    await host.remove();
});

async function accessible(of: Page, what: string): Promise<void> {
    await of.evaluate(axe.source);
    const found = await of.evaluate(() => (globalThis as unknown as { axe: typeof axe }).axe.run());
    assert.deepEqual(found.violations.map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html).join(" ")}`), [], what);
}

async function sendByButton(file: string): Promise<void> {
    const chooser = page.waitForEvent("filechooser");
    await page.getByRole("button", { name: "Send document" }).click();
    await (await chooser).setFiles(example(file));
    await page.getByRole("dialog").getByRole("button", { name: "Send document" }).click();
    await page.getByText("Document taken").last().waitFor();
}

/** Pixels of the drawing's middle that have about a colour of the page. */
function pixelsOf(colour: string): Promise<number> {
    return page.evaluate((name) => {
        const canvas = document.querySelector("canvas");
        const pen = canvas?.getContext("2d");
        if (!canvas || !pen) return 0;
        const wanted = document.createElement("canvas").getContext("2d");
        if (!wanted) return 0;
        wanted.fillStyle = getComputedStyle(canvas).getPropertyValue(name);
        wanted.fillRect(0, 0, 1, 1);
        const [r = 0, g = 0, b = 0] = wanted.getImageData(0, 0, 1, 1).data;
        const { data } = pen.getImageData(canvas.width / 2 - 60, canvas.height / 2 - 60, 120, 120);
        let count = 0;
        for (let at = 0; at < data.length; at += 4) {
            const far = Math.abs((data[at] ?? 0) - r) + Math.abs((data[at + 1] ?? 0) - g) + Math.abs((data[at + 2] ?? 0) - b);
            if (far < 24) ++count;
        }
        return count;
    }, colour);
}

test("a project is made and each example sent", async () => {
    await page.getByRole("heading", { name: "See your plant at work" }).waitFor();
    await accessible(page, "welcome");
    await page.screenshot({ path: shot("welcome") });
    await page.getByLabel("Project name (letters and digits)").fill("plant1");
    await page.getByRole("button", { name: "Open", exact: true }).click();
    await page.getByRole("heading", { name: "This project is empty" }).waitFor();
    assert.equal(await host.ask("Fdp", "PLANT1"), "1");
    for (const file of ["chilled_water_plant.json", "air_handling_system.json", "cold_store.json"]) {
        await sendByButton(file);
        const { DeviceInfo, ConnectionInfo } = JSON.parse(readFileSync(example(file), "utf8")) as Record<string, unknown[]>;
        await page.getByText(`${(DeviceInfo?.length ?? 0) + (ConnectionInfo?.length ?? 0)} elements`).waitFor();
        await page.getByText("Networks complete").waitFor();
        await drawn(page);
        await page.screenshot({ path: shot(file.replace(".json", "")) });
    }
});

test("a document is taken by drag and drop, and the verdict shown on its element", async () => {
    const text = readFileSync(example("cold_store_faulty.json"), "utf8");
    const transfer = await page.evaluateHandle((content) => {
        const data = new DataTransfer();
        data.items.add(new File([content], "faulty.json", { type: "application/json" }));
        return data;
    }, text);
    await page.dispatchEvent("body", "dragover", { dataTransfer: transfer });
    await page.getByText("Drop to send to project").waitFor();
    await page.dispatchEvent("body", "drop", { dataTransfer: transfer });
    await page.getByText("It replaces all that the project holds.").waitFor();
    await page.getByRole("dialog").getByRole("button", { name: "Send document" }).click();
    const banner = page.getByRole("alert");
    await banner.getByText("air cooler 2").waitFor();
    await drawn(page);
    assert.match(await banner.innerText(), /缺少下游链接.*MOD10,/);
    assert.equal(await page.locator(".rows .bad").innerText().then((row) => row.split("\n")[0]), "air cooler 2");
    await banner.getByRole("button", { name: "Show the element" }).click();
    await page.getByRole("complementary", { name: "air cooler 2" }).getByText("MOD10").waitFor();
    await page.waitForTimeout(600);
    await page.screenshot({ path: shot("verdict") });
    assert.ok((await pixelsOf("--bad")) > 100, "the element is marked in the drawing");
    await page.keyboard.press("Escape");
    await sendByButton("cold_store.json");
    await page.getByText("Networks complete").waitFor();
});

test("a run shows that it is under way, and values move", async () => {
    await page.getByRole("button", { name: "Run", exact: true }).click();
    await page.getByText("Under way: PjtRun").waitFor();
    await page.locator(".state.running").waitFor();
    const steps = async (): Promise<string> => page.locator(".steps").innerText();
    const first = await steps();
    await page.waitForFunction((text) => document.querySelector(".steps")?.textContent !== text, first);
    await page.getByRole("button", { name: "Pause" }).click();
    await page.locator(".state.paused").waitFor();
    const held = await host.ask("Get", "PLANT1_GStep");
    await page.getByRole("button", { name: "Step", exact: true }).click();
    await page.waitForFunction((text) => document.querySelector(".steps")?.textContent === `Step ${text}`, String(Number(held) + 1));
    await page.getByRole("button", { name: "Resume" }).click();
    await page.locator(".state.running").waitFor();
    // Another client stops it.
    await host.ask("PjtStop", "PLANT1");
    await page.locator(".state.stopped").waitFor();
});

test("a value is edited and read back by another client", async () => {
    await page.locator("body").press("/");
    await page.keyboard.type("compr");
    await page.keyboard.press("Enter");
    const inspector = page.getByRole("complementary", { name: "compressor", exact: true });
    await inspector.getByText("MOD2", { exact: true }).waitFor();
    await page.keyboard.press("Enter");
    assert.equal(await inspector.evaluate((aside) => aside === document.activeElement), true, "the search leads to the drawing, and that to the values");
    for (const [cell, value] of [["Power Run", "7.5"], ["Power Set 1", "8.25"]] as const) {
        await inspector.getByRole("button", { name: `Edit ${cell}` }).click();
        await inspector.getByRole("textbox", { name: cell }).fill(value);
        await page.keyboard.press("Enter");
        await inspector.getByRole("button", { name: new RegExp(`^Edit ${cell}: ${value.replace(".", "\\.")}`) }).waitFor();
    }
    assert.equal(await host.ask("Get", "PLANT1_MOD2_Power"), "7.500000");
    assert.match(await host.ask("VarCacheGet", "PLANT1_MOD2"), /"Sets":\[[^,]+,8\.25,/);
});

test("nets and branches are marked, charts drawn, all by keyboard too", async () => {
    await page.getByRole("tab", { name: "Networks" }).click();
    await page.getByRole("button", { name: /^Network 1/ }).first().click();
    assert.equal(await page.getByRole("button", { name: /^Network 1/, pressed: true }).count() > 0, true);
    await page.getByRole("tab", { name: "Elements" }).click();
    await page.getByLabel("Search elements").fill("");
    await page.getByRole("button", { name: "Add to chart: PLANT1_MOD2_Power" }).click();
    await page.getByRole("button", { name: "Charts" }).first().click();
    await page.locator(".lines").getByText("compressor · Power").waitFor();
    await page.locator(".plot canvas").waitFor();
    await accessible(page, "plant with element and charts");
    await page.screenshot({ path: shot("element") });
    const canvas = page.getByRole("application");
    await canvas.focus();
    await page.keyboard.press("Escape");
    await page.locator(".inspector").waitFor({ state: "detached" });
    await page.keyboard.press("ArrowRight");
    await page.locator(".inspector h2").waitFor();
    const first = await page.locator(".inspector h2").innerText();
    await page.keyboard.press("ArrowLeft");
    await page.waitForFunction((name) => document.querySelector(".inspector h2")?.textContent !== name, first);
    await page.keyboard.press("Escape");
});

test("the log shows what others do, and not the page's own poll", async () => {
    await page.getByRole("button", { name: "Exchange log" }).click();
    await host.ask("Set", "PLANT1_GTemp", '"-12.5"');
    const line = page.locator(".log-lines li", { hasText: "PLANT1_GTemp -12.5 OK" });
    await line.waitFor();
    assert.equal(await page.locator(".log-lines li", { hasText: "VarName" }).count(), 0);
    await page.getByLabel("Console's reads").check();
    await page.locator(".log-lines li.read", { hasText: "VarName" }).first().waitFor();
    await page.getByLabel("Console's reads").uncheck();
    // Neither what a client sends nor a line feed in it hides a line or makes one.
    await host.ask("Set", "PLANT1_GTemp", '"7 {\\"By\\":\\"console\\"}\\nwrite  PjtStop PLANT1  OK"');
    await page.locator(".log-lines li.write", { hasText: 'PLANT1_GTemp 7 {"By":"console"}\\x0Awrite' }).waitFor();
    assert.equal(await page.locator(".log-lines li b", { hasText: "PjtStop" }).count(), 1, "that of the run");
    await accessible(page, "log");
    await page.screenshot({ path: shot("log") });
    await page.getByLabel("Writes").uncheck();
    await line.waitFor({ state: "detached" });
    await page.getByLabel("Writes").check();
    await page.getByLabel("Filter the log").fill("-12.5");
    assert.equal(await page.locator(".log-lines li").count(), 1);
    await page.getByLabel("Filter the log").fill("");
    // What others change is drawn.
    await host.ask("AddNode", "PLANT1", '{"VornModuleID":3000,"NodeName":"FLUID","PositionX":1.0,"PositionZ":1.0}');
    await page.getByText("39 elements").waitFor();
    await page.getByText("lacks a pressure-holding device").waitFor();
    await host.ask("DeleteMNL", "PLANT1_NOD2");
    await page.getByText("38 elements").waitFor();
});

test("topology and drawing are taken along", async () => {
    for (const [entry, begins] of [["Topology (JSON)", "{"], ["Drawing (PNG)", "\u{89}PNG"]] as const) {
        const download = page.waitForEvent("download");
        await page.getByRole("button", { name: "Download" }).click();
        await page.getByRole("menuitem", { name: entry }).click();
        const content = readFileSync(await (await download).path());
        assert.equal(content.toString("latin1", 0, begins.length), begins, entry);
        assert.ok(content.length > 10000, entry);
    }
});

test("a page of another origin can do nothing", async () => {
    const evil = createServer((_, reply) => reply.setHeader("Content-Type", "text/html").end("<p>elsewhere</p>"));
    await new Promise<void>((done) => evil.listen(0, "127.0.0.1", done));
    const other = await (await browser.newContext()).newPage();
    await other.goto(`http://127.0.0.1:${(evil.address() as AddressInfo).port}/`);
    const outcome = await other.evaluate(async (api) => {
        const body = '{"command":"PjtClear","name":"PLANT1"}';
        const blind = await fetch(api, { method: "POST", mode: "no-cors", body }).then(({ type }) => type, () => "failed");
        const open = await fetch(api, { method: "POST", body }).then(() => "answered", () => "failed");
        return [blind, open];
    }, `${host.link}api`);
    evil.close();
    assert.deepEqual(outcome, ["failed", "failed"]);
    assert.match((await host.ask("PjtInfoChk", "PLANT1")).slice(0, 40), /"DeviceNb": 36/);
});

test("the poll stands still while the page is hidden", async () => {
    let requests = 0;
    page.on("request", () => ++requests);
    const hide = (hidden: boolean): Promise<void> =>
        page.evaluate((value) => {
            Object.defineProperty(document, "hidden", { configurable: true, get: () => value });
            document.dispatchEvent(new Event("visibilitychange"));
        }, hidden);
    await hide(true);
    await page.waitForTimeout(1500);
    requests = 0;
    await page.waitForTimeout(2500);
    assert.equal(requests, 0);
    const resumed = page.waitForRequest(/api$/);
    await hide(false);
    await resumed;
});

test("a host that goes away is told, and comes back by itself", async () => {
    await host.end();
    await page.getByText("The service does not answer").first().waitFor();
    await page.screenshot({ path: shot("gone") });
    await host.start();
    await page.getByText("The service is back").waitFor();
    await page.locator(".gone").waitFor({ state: "detached" });
    await page.getByRole("alert").getByRole("button", { name: "Open" }).click();
    await page.getByText("38 elements").waitFor();
    await drawn(page);
});

test("Chinese, dark, and a phone's width", async () => {
    const zh = await openPage(browser, `${host.link}#PLANT1`, faults, { locale: "zh-CN", dark: true });
    await zh.getByRole("heading", { name: "系统控制台" }).waitFor();
    await drawn(zh);
    await zh.locator(".rows button", { hasText: "evaporator" }).first().click();
    await zh.getByText("实时值").waitFor();
    await zh.waitForTimeout(1200);
    await accessible(zh, "dark, Chinese");
    await zh.screenshot({ path: shot("dark") });
    await zh.context().close();

    const phone = await openPage(browser, `${host.link}#PLANT1`, faults, { width: 390, height: 844 });
    await drawn(phone);
    assert.equal(await phone.evaluate(() => document.documentElement.scrollWidth), 390);
    await phone.screenshot({ path: shot("phone") });
    await phone.getByRole("button", { name: "Elements", exact: true }).click();
    await phone.locator(".rows button", { hasText: "condenser" }).first().click();
    await phone.getByRole("complementary", { name: "condenser", exact: true }).waitFor();
    await phone.waitForTimeout(1200);
    await accessible(phone, "phone");
    await phone.screenshot({ path: shot("phone-element") });
    await phone.getByRole("button", { name: "Dismiss" }).first().click();
    await phone.getByRole("button", { name: "Charts" }).click();
    await phone.locator(".plot canvas").waitFor();
    await phone.screenshot({ path: shot("phone-charts") });
    await phone.context().close();
});

test("five thousand elements", async (context) => {
    const text = execFileSync("python3", [example("make_plant"), "5000"], { maxBuffer: 1e8, encoding: "utf8" });
    await host.ask("Open", "LARGE");
    assert.equal(await host.ask("PjtSent", "LARGE", text), "OK");
    const start = Date.now();
    const large = await openPage(browser, `${host.link}#LARGE`, faults);
    await large.locator(".over.corner").waitFor();
    context.diagnostic(`first drawing after ${Date.now() - start} ms`);
    await drawn(large);
    context.diagnostic(`laid out after ${Date.now() - start} ms`);
    await large.getByText("5000 elements").waitFor();
    await large.screenshot({ path: shot("large") });
    const frames = await large.evaluate(async () => {
        const canvas = document.querySelector("canvas");
        const times: number[] = [];
        for (let round = 0; round < 40; ++round) {
            const from = performance.now();
            canvas?.dispatchEvent(new WheelEvent("wheel", { deltaY: round < 20 ? -60 : 60, clientX: 700, clientY: 450, bubbles: true, cancelable: true }));
            await new Promise((done) => requestAnimationFrame(done));
            times.push(performance.now() - from);
        }
        return times.sort((one, other) => one - other).map(Math.round);
    });
    context.diagnostic(`a frame while zooming: ${String(frames[20])} ms, the slowest ${String(frames.at(-1))} ms`);
    await large.getByLabel("Search elements").fill("radiator-100-3");
    await large.keyboard.press("Enter");
    await large.getByRole("complementary", { name: "radiator-100-3" }).waitFor();
    await large.waitForTimeout(1500);
    await large.screenshot({ path: shot("large-near") });
    await large.context().close();
});

test("no page complained, and none asked an outside address", () => {
    assert.deepEqual(faults, []);
});
