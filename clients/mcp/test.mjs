// Tests the tool server: node test.mjs SERVER HOST. SERVER is the built vorn-mcp.mjs, HOST the program vorn-host.
// Where the server is not built, says so and ends with 77.

import { spawnSync } from "node:child_process";
import { existsSync, readdirSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const [server, host] = process.argv.slice(2);
if (!server || !host) throw new Error("usage: node test.mjs SERVER HOST");
if (!existsSync(server)) {
    console.log("tool server: not tested, since it is not built");
    process.exit(77);
}
const { build } = await import("esbuild");
const outdir = join(here, "node_modules", ".tests");
const files = readdirSync(join(here, "test")).filter((name) => name.endsWith(".test.ts"));
await build({
    entryPoints: files.map((name) => join(here, "test", name)),
    outdir, bundle: true, platform: "node", format: "esm", outExtension: { ".js": ".mjs" }, logLevel: "warning", packages: "external",
});
const env = { ...process.env, VORN_HOST: resolve(host), VORN_MCP: resolve(server) };
const paths = files.map((name) => join(outdir, name.replace(/\.ts$/, ".mjs")));
process.exit(spawnSync(process.execPath, ["--test", ...paths], { stdio: "inherit", env }).status ?? 1);
