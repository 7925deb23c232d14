"""Makes the data of the TypeScript client: commands, failures, and how members are written."""

from __future__ import annotations

import json
from collections.abc import Iterator

from api.description import API, Description, Json

HEAD = """// What the service takes and answers. Made from the description in api/ by api/generate.py; do not edit.

import type { Command, Contract } from "./contract.js";

const commands: readonly Command[] = [
"""

FAILURE = ("text", "kind", "meaning", "todo")
COMMAND = ("id", "word", "target", "effect", "replies", "failures", "entryFailures")


def _members(schema: Json, name: str = "") -> Iterator[tuple[str, Json]]:
    """Every schema in a schema, with the member that it is of."""
    if isinstance(schema, dict):
        yield name, schema
        for key, each in schema.items():
            yield from _members(each, key)
    elif isinstance(schema, list):
        for each in schema:
            yield from _members(each, name)


def _sent(description: Description) -> Iterator[tuple[str, Json]]:
    for command in description.commands:
        yield from _members(command["messages"].get("schema", {}))
    yield from _members(json.loads((API / "schemas/project_document.schema.json").read_text(encoding="utf-8")))


def _text(value: object) -> str:
    return json.dumps(value, ensure_ascii=False)


def typescript_data(description: Description) -> str:
    http = {key: description.interface["ways"]["http"][key]
            for key in ("firstPort", "lastPort", "path", "greetingPath", "greeting")}
    targets = {name: {key: each[key] for key in ("parameters", "form", "failures")}
               for name, each in description.interface["targets"].items()}
    fractions = sorted({name for name, each in _sent(description) if "x-written" in each})
    commands = [{key: each[key] for key in COMMAND if key in each} for each in description.commands]
    lines = [f"    {_text(each)},\n" for each in commands]
    failures = [f"        {_text(name)}: {_text({key: each[key] for key in FAILURE})},\n"
                for name, each in description.failures.items()]
    return "".join([
        HEAD, *lines, "];\n\nexport const contract: Contract = {\n",
        f"    version: {_text(description.interface['version'])},\n    http: {_text(http)},\n",
        f"    targets: {_text(targets)},\n    failures: {{\n", *failures, "    },\n",
        "    commands: new Map(commands.map((each) => [each.id, each])),\n",
        f'    spelling: {{ longIntegers: new Set(["VornModuleID", "DeviceID"]), fractions: new Set({_text(fractions)}) }},\n',
        "};\n"])
