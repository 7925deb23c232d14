// What an assistant can read beside the tools: schemas, reference, documents and example plants.

import { readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";
import type { Resource } from "@modelcontextprotocol/sdk/types.js";

const folders = [
    ["schemas", join("api", "schemas")], ["api", "api"], ["reference", join("docs", "reference")], ["docs", "docs"], ["examples", "examples"],
] as const;
const kinds: Readonly<Record<string, string>> = { ".json": "application/json", ".md": "text/markdown" };

export interface Readable {
    readonly listed: Resource;
    readonly path: string;
}

/** The first heading of a page, the title of a schema, else the file's name. */
function titleOf(path: string, name: string): string {
    const text = readFileSync(path, "utf8");
    return (name.endsWith(".md") ? /^# (.*)$/m : /^ {2}"title": "(.*)"/m).exec(text)?.[1] ?? name;
}

/** All resources by their addresses. A folder that is not installed has none. */
export function allResources(root: string): ReadonlyMap<string, Readable> {
    const found = new Map<string, Readable>();
    for (const [group, folder] of folders) {
        let names: string[] = [];
        try {
            names = readdirSync(join(root, folder)).sort();
        } catch {
            continue;
        }
        for (const name of names) {
            const mimeType = kinds[name.slice(name.lastIndexOf("."))];
            const path = join(root, folder, name);
            const uri = `vorn://${group}/${name}`;
            if (mimeType) found.set(uri, { path, listed: { uri, name: `${group}/${name}`, title: titleOf(path, name), mimeType } });
        }
    }
    return found;
}
