// Compiles every schema of the description and every component of the OpenAPI document with ajv in strict mode, and
// validates the requests of all examples, and the example plants, by what came out.
import { readFileSync, readdirSync } from "node:fs";
import Ajv2020 from "ajv/dist/2020.js";

const root = new URL("../../../", import.meta.url);
const read = (path) => JSON.parse(readFileSync(new URL(path, root), "utf8"));
const OWN_WORDS = ["x-unit", "x-written", "x-wrongType", "x-maxBytes"];
const faults = [];

const files = new Ajv2020({ strict: true });
OWN_WORDS.forEach((word) => files.addKeyword(word));
const names = readdirSync(new URL("api/schemas/", root));
names.forEach((name) => files.addSchema(read(`api/schemas/${name}`)));
names.forEach((name) => files.getSchema(`https://vornserver.example/api/schemas/${name}`));

const { components, paths } = read("api/openapi.json");
const plain = new Ajv2020({ strict: true }).addVocabulary(["components", "discriminator"]);
plain.addSchema({ $id: "openapi", components }, undefined, undefined, false);
const component = (name) => plain.getSchema(`openapi#/components/schemas/${name}`);
Object.keys(components.schemas).forEach(component);

const ofForm = (form, reply) =>
    new RegExp(`^${form.split(/\{[a-z]+\}/).map((part) => part.replace(/[^\w]/g, "\\$&")).join(".*")}$`, "s").test(reply);

// Examples that the service refuses, or takes though the schema does not.
const failing = new Set();
let examples = 0;
for (const family of read("api/interface.json").families) {
    for (const command of read(`api/commands/${family}.json`).commands) {
        command.examples.forEach((example, at) => {
            if (example.bad || !command.replies.some(({ text }) => ofForm(text, example.reply ?? text))) {
                failing.add(`${command.id} ${at + 1}`);
            }
        });
    }
}
for (const [name, { value }] of Object.entries(paths["/api"].post.requestBody.content["application/json"].examples)) {
    examples += 1;
    if (!failing.has(name) && !component("Request")(value)) faults.push(name);
}
const plants = readdirSync(new URL("examples/", root)).filter((name) => name.endsWith(".json"));
for (const name of plants) if (!component("ProjectDocument")(read(`examples/${name}`))) faults.push(name);

console.log(`${names.length} schemas, ${Object.keys(components.schemas).length} components, ${examples} examples, ${plants.length} plants`);
if (faults.length > 0 || examples < 80) {
    console.error(`refused: ${faults.join(", ")}`);
    process.exit(1);
}
