// Builds the console's page into a folder: node build.mjs FOLDER. Fetches the locked packages first where they are
// missing or old; where that fails, says so and leaves the folder without a page: the host is complete without it.

import { spawnSync } from "node:child_process";
import { copyFileSync, existsSync, mkdirSync, readFileSync, statSync, utimesSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const at = (...parts) => join(here, ...parts);

/** True when the packages stand as the lock file has them. */
function fetchPackages() {
    const mark = at("node_modules", ".package-lock.json");
    const lock = at("package-lock.json");
    if (existsSync(mark) && statSync(mark).mtimeMs >= statSync(lock).mtimeMs) return true;
    // Where the tests' tools stand, they stay.
    const all = existsSync(at("node_modules", "typescript"));
    const npm = spawnSync("npm", ["ci", ...(all ? [] : ["--omit=dev"]), "--no-progress"], {
        cwd: here, encoding: "utf8", shell: process.platform === "win32",
    });
    if (npm.status !== 0) return false;
    utimesSync(mark, new Date(), new Date());
    return true;
}

const bundled = ["preact", "@preact/signals", "elkjs", "d3-zoom", "d3-selection", "flatbush", "uplot"];

/** The licences of what is bundled, in one text. */
function licences() {
    const texts = bundled.map((name) => {
        const file = ["LICENSE", "LICENSE.md"].map((each) => at("node_modules", name, each)).find(existsSync);
        const { version, license } = JSON.parse(readFileSync(at("node_modules", name, "package.json"), "utf8"));
        return `${name} ${version} (${license})\n\n${file ? readFileSync(file, "utf8") : ""}`;
    });
    return texts.join("\n----\n\n");
}

const folder = process.argv[2];
if (!folder) throw new Error("usage: node build.mjs FOLDER");
if (!fetchPackages()) {
    console.log("console: npm could not fetch the page's packages, so the host is built without its page");
    process.exit(0);
}
const { build } = await import("esbuild");
mkdirSync(folder, { recursive: true });
await build({
    entryPoints: [at("src", "main.tsx")],
    outfile: join(folder, "app.js"),
    bundle: true,
    minify: true,
    format: "esm",
    target: "es2020",
    jsx: "automatic",
    jsxImportSource: "preact",
    logLevel: "warning",
});
copyFileSync(at("node_modules", "elkjs", "lib", "elk-worker.min.js"), join(folder, "elk-worker.js"));
writeFileSync(join(folder, "licences.txt"), licences());
copyFileSync(at("src", "icon.svg"), join(folder, "icon.svg"));
copyFileSync(at("src", "index.html"), join(folder, "index.html"));
