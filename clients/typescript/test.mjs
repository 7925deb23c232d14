// Tests the client: node test.mjs HOST. HOST is the program vorn-host. Where npm's packages are not there, says so and ends with 77.

import { spawnSync } from "node:child_process";
import { existsSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const [host] = process.argv.slice(2);
if (!host) throw new Error("usage: node test.mjs HOST");
if (!existsSync(join(here, "node_modules", "esbuild"))) {
    console.log("TypeScript client: not tested, since npm's packages are not there");
    process.exit(77);
}
const { build } = await import("esbuild");
const outfile = join(here, "node_modules", ".tests", "client.test.mjs");
await build({ entryPoints: [join(here, "test", "client.test.ts")], outfile, bundle: true, platform: "node", format: "esm", logLevel: "warning" });
const env = { ...process.env, VORN_HOST: resolve(host), VORN_REPOSITORY: resolve(here, "..", "..") };
process.exit(spawnSync(process.execPath, ["--test", outfile], { stdio: "inherit", env }).status ?? 1);
