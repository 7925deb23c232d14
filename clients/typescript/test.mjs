// Tests the client: node test.mjs HOST. HOST is the program vorn-host. It needs esbuild, of this folder or of the
// tool server beside it, whose build fetches it; where neither is there, says so and ends with 77.

import { spawnSync } from "node:child_process";
import { existsSync } from "node:fs";
import { createRequire } from "node:module";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const [host] = process.argv.slice(2);
if (!host) throw new Error("usage: node test.mjs HOST");
const tools = [here, resolve(here, "..", "mcp")].map((folder) => join(folder, "node_modules")).find((folder) => existsSync(join(folder, "esbuild")));
if (!tools) {
    console.log("TypeScript client: not tested, since npm's packages are not there");
    process.exit(77);
}
const { build } = createRequire(join(tools, "esbuild"))("esbuild");
const outfile = join(tools, ".tests", "client.test.mjs");
await build({ entryPoints: [join(here, "test", "client.test.ts")], outfile, bundle: true, platform: "node", format: "esm", logLevel: "warning" });
const env = { ...process.env, VORN_HOST: resolve(host), VORN_REPOSITORY: resolve(here, "..", "..") };
process.exit(spawnSync(process.execPath, ["--test", outfile], { stdio: "inherit", env }).status ?? 1);
