// Tests the page: node test.mjs HOST SHOTS. HOST is the program vorn-host, SHOTS a folder for pictures of the page.
// The browser is `chromium` of the path, or what CHROMIUM names.

import { spawnSync } from "node:child_process";
import { mkdirSync, readdirSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import { build } from "esbuild";

const here = dirname(fileURLToPath(import.meta.url));
const [host, shots] = process.argv.slice(2);
if (!host || !shots) throw new Error("usage: node test.mjs HOST SHOTS");
mkdirSync(shots, { recursive: true });
const outdir = join(here, "node_modules", ".tests");
const files = readdirSync(join(here, "test")).filter((name) => name.endsWith(".test.ts"));
await build({
    entryPoints: files.map((name) => join(here, "test", name)),
    outdir, bundle: true, platform: "node", format: "esm", outExtension: { ".js": ".mjs" }, logLevel: "warning",
    external: ["playwright-core", "axe-core"], jsx: "automatic", jsxImportSource: "preact",
});
const env = { ...process.env, VORN_HOST: resolve(host), VORN_SHOTS: resolve(shots), VORN_EXAMPLES: join(here, "..", "examples") };
const paths = files.map((name) => join(outdir, name.replace(/\.ts$/, ".mjs")));
process.exit(spawnSync(process.execPath, ["--test", ...paths], { stdio: "inherit", env }).status ?? 1);
