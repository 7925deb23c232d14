// Builds the tool server into a folder, as one file: node build.mjs FOLDER. Fetches the locked packages first where they
// are missing or old; where that fails, says so and leaves the folder without it: nothing else needs it.

import { spawnSync } from "node:child_process";
import { existsSync, mkdirSync, readFileSync, statSync, utimesSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const at = (...parts) => join(here, ...parts);

/** Makes the packages stand as the lock file has them. Gives npm's last words where that fails, else null. */
function fetchPackages() {
    const mark = at("node_modules", ".package-lock.json");
    if (existsSync(mark) && statSync(mark).mtimeMs >= statSync(at("package-lock.json")).mtimeMs) return null;
    const all = existsSync(at("node_modules", "typescript")); // where the checks' tools stand, they stay
    const npm = spawnSync("npm", ["ci", ...(all ? [] : ["--omit=dev"]), "--no-progress"], {
        cwd: here, encoding: "utf8", shell: process.platform === "win32",
    });
    if (npm.status !== 0) return (npm.stderr ?? String(npm.error)).trim().split("\n").at(-1);
    utimesSync(mark, new Date(), new Date());
    return null;
}

/** The licences of the packages that the file holds, in one text. */
function licences(inputs) {
    const names = new Set(inputs.flatMap((path) => /node_modules\/((?:@[^/]+\/)?[^/]+)\//.exec(path)?.[1] ?? []));
    const texts = [...names].sort().map((name) => {
        const file = ["LICENSE", "LICENSE.md", "license", "LICENSE.txt"].map((each) => at("node_modules", name, each)).find(existsSync);
        const { version, license } = JSON.parse(readFileSync(at("node_modules", name, "package.json"), "utf8"));
        return `${name} ${version} (${license})\n\n${file ? readFileSync(file, "utf8") : ""}`;
    });
    return texts.join("\n----\n\n");
}

const folder = process.argv[2];
if (!folder) throw new Error("usage: node build.mjs FOLDER");
const trouble = fetchPackages();
if (trouble !== null) {
    console.log(`tool server: npm could not fetch its packages, so it is not built (${trouble})`);
    process.exit(0);
}
const { build } = await import("esbuild");
mkdirSync(folder, { recursive: true });
const { metafile } = await build({
    entryPoints: [at("src", "main.ts")], outfile: join(folder, "vorn-mcp.mjs"), absWorkingDir: here,
    bundle: true, platform: "node", format: "esm", target: "node18", metafile: true, logLevel: "warning",
    // Some packages are of the older form and ask for Node's own modules by require.
    banner: { js: 'import { createRequire } from "node:module"; const require = createRequire(import.meta.url);' },
});
writeFileSync(join(folder, "licences.txt"), licences(Object.keys(metafile.inputs)));
