"""Makes the reference, a Markdown page for each family of commands, out of the description."""

from __future__ import annotations

import json
from typing import Any, Iterable

from api.description import EVERY_REQUEST, Description, Family, Json, schema_of

Pages = dict[str, str]

_MADE = "<!-- Made from api/ by api/generate.py; do not edit. -->"

# A number of 64 bits or a text of this length tells nothing that a reader needs whole.
_LONGEST_TEXT = 60
_LONGEST_LINE = 110


def _table(head: list[str], rows: list[list[str]]) -> list[str]:
    lines = [head, ["---"] * len(head), *rows]
    return ["| " + " | ".join(cell.replace("|", "\\|") for cell in line) + " |" for line in lines] + [""]


def _code(text: str) -> str:
    shown = text.replace("\n", "⏎")
    return f"`{shown}`" if shown else "the empty text"


def _lowered(title: str) -> str:
    return title[0].lower() + title[1:]


def _anchor(command: Json) -> str:
    return str(command["id"]).lower()


# Members of messages


def _type(schema: Json) -> str:
    if "$ref" in schema:
        return str(schema["$ref"]).rsplit("/", 1)[1]
    if "anyOf" in schema:
        return " or ".join(dict.fromkeys(_type(each) for each in schema["anyOf"]))
    kind = schema.get("type", "")
    if kind == "array":
        return "list of " + _type(schema["items"])
    return " or ".join(kind) if isinstance(kind, list) else str(kind)


def _limits(schema: Json) -> str:
    if "enum" in schema:
        return ", ".join(f"`{json.dumps(value, ensure_ascii=False)}`" for value in schema["enum"])
    parts = []
    widths = {2147483647: "32 bits", 9223372036854775807: "64 bits"}
    if schema.get("maximum") in widths:
        parts.append(widths[schema["maximum"]])
    elif "minimum" in schema and "maximum" in schema:
        parts.append(f"{schema['minimum']:,} to {schema['maximum']:,}")
    if "x-maxBytes" in schema:
        parts.append(f"at most {schema['x-maxBytes']} bytes")
    if "pattern" in schema and "x-maxBytes" not in schema:
        parts.append(f"`{schema['pattern']}`")
    if "x-written" in schema:
        parts.append(str(schema["x-written"]))
    return ", ".join(parts)


def _resolved(schema: Json, definitions: Json) -> Json:
    """A member with what its definition says, where it does not say it itself."""
    if "$ref" in schema and schema["$ref"].startswith("#/$defs/"):
        return {**definitions[schema["$ref"].rsplit("/", 1)[1]], **{k: v for k, v in schema.items() if k != "$ref"}}
    return schema


def _members(schema: Json, definitions: Json) -> list[str]:
    rows = []
    for name, member in schema["properties"].items():
        whole = _resolved(member, definitions)
        required = name in schema.get("required", [])
        default = "required" if required else f"`{json.dumps(whole.get('default', ''), ensure_ascii=False)}`"
        if not required and "default" not in whole:
            default = ""
        rows.append([f"`{name}`", _type(whole), default, _limits(whole), str(whole.get("x-unit", "")),
                     str(whole.get("description", ""))])
    return _table(["member", "type", "default", "limits", "unit", "meaning"], rows)


def _messages(command: Json, description: Description) -> list[str]:
    messages: Json = command["messages"]
    lines = [description.interface["forms"][messages["form"]], ""]
    schema = schema_of(command)
    if schema is None:
        return lines
    if messages["form"] != "object":
        return lines + _table(["`messages`", "default", "limits", "meaning"], [[
            _type(schema) or "number or text", f"`{json.dumps(schema['default'])}`" if "default" in schema else "",
            _limits(schema), schema.get("description", "")]])
    definitions = schema.get("$defs", {})
    lines += _members(schema, definitions)
    for name, definition in definitions.items():
        if "properties" in definition:
            lines += [f"`{name}`:", "", *_members(definition, definitions)]
    return lines


# Examples


def _shortened(value: Any) -> Any:
    if isinstance(value, dict):
        if "$file" in value:
            return f"<{value['$file']}>"
        return {key: _shortened(member) for key, member in value.items()}
    if isinstance(value, list):
        return [_shortened(entry) for entry in value]
    if isinstance(value, str) and len(value) > _LONGEST_TEXT and len(set(value)) == 1:
        return f"{value[:3]}… ({len(value)} characters)"
    return value


def _request(example: Json) -> list[str]:
    """The request's text, its messages on a line of their own where it is long."""
    if "body" in example:
        return [example["body"]]
    text = json.dumps(_shortened(example["request"]), ensure_ascii=False)
    at = text.find('"messages"')
    if len(text) <= _LONGEST_LINE or at < 0:
        return [text]
    return [text[:at].rstrip(), " " + text[at:]]


def _exchange(example: Json) -> list[str]:
    request = _request(example)
    reply = example.get("reply", example.get("replyForm"))
    lines = reply if isinstance(reply, list) else reply.rstrip("\n").split("\n")
    return [f"> {request[0]}", *(f"  {line}" for line in request[1:]),
            f"< {lines[0]}", *(f"  {line}" for line in lines[1:])]


def _examples(examples: list[Json]) -> list[str]:
    lines = ["```text"]
    for position, example in enumerate(examples):
        if position > 0:
            lines.append("")
        lines.append(f"# {example['title']}")
        for before in example.get("before", []):
            lines += _exchange(before)
        lines += _exchange(example)
    return [*lines, "```", ""]


# Pages


def _waits(command: Json) -> str:
    waits = [f"{wait['milliseconds']:,} ms {wait['when']}, {wait['why']}" for wait in command["waits"]]
    return "; ".join(waits) or "none"


def _command(command: Json, description: Description) -> list[str]:
    target: Json = description.interface["targets"][command["target"]]
    lines = [f'<a id="{_anchor(command)}"></a>', "", f"## {command['word']}: {_lowered(command['title'])}", "",
             command["text"], "", f"`name`: {target['text']}", "", *_messages(command, description)]
    effect = description.interface["effects"][command["effect"]]
    lines += [f"- Waits: {_waits(command)}.", f"- Effect: {effect}" + (
        "; doing it twice is doing it once." if command["idempotent"] and command["effect"] != "reads" else "."),
              f"- Log: {command['log']}.", ""]
    lines += _table(["reply", "meaning"], [[_code(reply["text"]), reply["meaning"]] for reply in command["replies"]])
    if "schema" in command:
        file = command["schema"]["$ref"].rsplit("/", 1)[1]
        lines += [f"The reply's form: [`{file}`](../../api/schemas/{file}).", ""]
    names = [*target["failures"], *command["failures"]]
    if names:
        lines += _table(["failure", "meaning"], [
            [_code(description.failures[name]["text"]), description.failures[name]["meaning"]] for name in names])
    if "entryFailures" in command:
        lines += ["In the place of an entry:", "", *_table(["failure", "meaning"], [
            [_code(description.failures[name]["text"]), description.failures[name]["meaning"]]
            for name in command["entryFailures"]])]
    return lines + _examples(command["examples"])


def _family_page(family: Family, description: Description) -> str:
    lines = [_MADE, "", f"# {family.title}", "", family.text, ""]
    lines += _table(["command", "what it does"], [
        [f"[`{command['word']}`](#{_anchor(command)})", command["title"]] for command in family.commands])
    if family.session:
        lines += ["The examples follow each other, and before the first of them:", "", "```text"]
        lines += [line for each in family.session for line in _exchange(each)] + ["```", ""]
    for command in family.commands:
        lines += _command(command, description)
    return "\n".join(lines)


def _failures_page(description: Description) -> str:
    lines = [_MADE, "", "# All failures", "",
             "A piece in braces stands for what is different each time, `⏎` for a line feed. The page"
             " [Failures](../failures.md) tells how to read them.", ""]
    for kind, meaning in description.interface["kinds"].items():
        rows = [[_code(failure["text"]), " ".join([failure["meaning"], failure.get("note", "")]).strip(), failure["todo"]]
                for failure in description.failures.values() if failure["kind"] == kind]
        lines += [f"## {kind.capitalize()}", "", meaning, "", *_table(["reply", "meaning", "what to do"], rows)]
    return "\n".join(lines)


def _ports(ports: list[Json]) -> str:
    """The ports of a type, those of one aisle together."""
    aisles: dict[Any, list[str]] = {}
    for number, port in enumerate(ports):
        aisles.setdefault(port.get("aisle"), []).append(f"{number} {port['direction']}")
    parts = [", ".join(names) + ("" if aisle is None else f" (aisle {aisle})") for aisle, names in aisles.items()]
    return "; ".join(parts) or "none"


def _with_units(names: Iterable[str], units: Json) -> str:
    return ", ".join(f"`{name}`" + (f" {units[name]['unit']}" if units[name]["unit"] else "") for name in names)


_DOUBLES = ("A `VornModuleID` above 9,007,199,254,740,991 is more than a double carries exactly. A program that reads JSON"
            " numbers as doubles, such as JavaScript, `jq` or a spreadsheet, sends another number: write it as a literal of"
            " the JSON text, or use a client, which keeps all digits.")


def _catalogue_page(catalogue: Json) -> str:
    items = catalogue["items"]
    lines = [_MADE, "", "# Catalogue", "", catalogue["text"], "", _DOUBLES, "", "## Modules", "",
             "Ports of an aisle are flagged: what comes in at the one goes out at the other, and a link to them is drawn"
             " directly. The others are ends, at which a branch begins or ends.", ""]
    lines += _table(["`VornModuleID`", "`DeviceName`", "", "ports", "items"], [
        [str(each["VornModuleID"]), each["DeviceName"], each["english"], _ports(each["ports"]),
         _with_units(each["items"], items)] for each in catalogue["types"]])
    lines += ["## Nodes", "", "Ports 0 to 7 are inlets, 8 to 15 outlets; none is flagged. Items: " +
              _with_units(catalogue["nodeItems"], items) + ".", ""]
    lines += _table(["`VornModuleID`", "`NodeName`", ""], [
        [str(each["VornModuleID"]), each["NodeName"], each["english"]] for each in catalogue["nodes"]])
    lines += ["## Items", "", "The variable of an item is `PROJECT_MOD7_ITEM` or `PROJECT_NOD3_ITEM`.", ""]
    lines += _table(["item", "unit", "of a new module", ""], [
        [f"`{name}`", each["unit"], str(each.get("start", 0)), each["text"]] for name, each in items.items()])
    lines += ["## Values of ports", "", "`PROJECT_MOD7_IM0_TEMP` is the temperature at port 0 of module 7.", ""]
    lines += _table(["value", "unit", ""], [
        [f"`IM0_{name}` to `IM15_{name}`", each["unit"], each["text"]] for name, each in catalogue["portValues"].items()])
    lines += ["## Variables of every project", ""]
    lines += _table(["variable", "kind", "unit", ""], [
        [f"`PROJECT_{name}`", each["kind"], each["unit"], each["text"]]
        for name, each in catalogue["projectVariables"].items()])
    return "\n".join(lines)


def _index_page(description: Description) -> str:
    interface = description.interface
    lines = [_MADE, "", "# Reference", "", interface["text"], ""]
    lines += ["## Requests", ""]
    lines += _table(["member", "meaning"], [[f"`{name}`", text] for name, text in interface["envelope"].items()])
    lines += _table(["way in", "how"], [[name, way["text"]] for name, way in interface["ways"].items()])
    lines += _examples(interface["examples"])
    lines += ["## Replies", "", "A reply is one text without a status: what it means is told by its wording. A piece in"
              " braces, such as `{number}`, stands for what is different each time. Look first among the texts without such"
              " pieces, the command's replies and failures; then among the failures with pieces, then the replies with"
              " pieces. Beside what its page tells, a command may answer with one of these:", ""]
    lines += _table(["failure", "meaning"], [
        [_code(description.failures[name]["text"]), description.failures[name]["meaning"]] for name in EVERY_REQUEST])
    lines += [
              "All failure texts, with what to do about each, are in the [list of failures](failures.md), and the types of"
              " modules with their ports and items in the [catalogue](catalogue.md). JSON Schemas of"
              " documents, batches and JSON replies are in [`api/schemas`](../../api/schemas).", ""]
    lines += ["## Commands", ""]
    for family in description.families:
        lines += [f"**[{family.title}]({family.name}.md)**: {family.text}", ""]
        lines += _table(["command", "what it does"], [
            [f"[`{command['word']}`]({family.name}.md#{_anchor(command)})", command["title"]]
            for command in family.commands])
    return "\n".join(lines)


def reference_pages(description: Description) -> Pages:
    """The pages of the reference by their file names."""
    pages = {f"{family.name}.md": _family_page(family, description) for family in description.families}
    return {"README.md": _index_page(description), "failures.md": _failures_page(description),
            "catalogue.md": _catalogue_page(description.catalogue), **pages}
