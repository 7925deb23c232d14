"""Makes the two files of the Python client that come from the description: the description as one file of data, and
the commands as typed methods."""

from __future__ import annotations

import json
import re
import textwrap

from api.description import API, Description, Json

# A project is made by hand in the client, which gives an object for it, and so is a batch, which gives a dict.
BY_HAND = ("newProject", "batch")

SERVER_TARGETS = ("projectName", "directory")
PROJECT_TARGETS = ("project", "projectName", "element", "variable")

RESULTS = {"ok": "None", "text": "str", "value": "float", "flag": "bool", "json": "Any", "svg": "str"}
TYPES = {"integer": "int", "number": "float", "string": "str"}
# Values are given as numbers too: that of an item of a table, and that of a variable, which may be a list.
ITEM_VALUE, VARIABLE_VALUE = "Value", "value"
VALUES = {ITEM_VALUE: ("float | str", "number_text(value)"),
          VARIABLE_VALUE: ("Writable", "self.value_text(variable, value)")}
BUILT_IN = {"set": "cache_set", "type": "link_type"}

HEAD = '''"""The commands as methods. Made from the description in api/ by api/generate.py; do not edit."""

from __future__ import annotations

from typing import Any, Literal, Mapping

from vornserver.caller import Caller
from vornserver.values import Writable, number_text
'''

WIDTH = 116


def _reference(schema: Json) -> Json:
    """A reference to a file becomes one by the file's name alone."""
    return {"$ref": schema["$ref"].rsplit("/", 1)[1]} if "$ref" in schema else schema


def _command(command: Json) -> Json:
    kept = {key: value for key, value in command.items() if key not in ("examples", "log")}
    if "schema" in command:
        kept["schema"] = _reference(command["schema"])
    if "schema" in command["messages"]:
        kept["messages"] = {**command["messages"], "schema": _reference(command["messages"]["schema"])}
    return kept


def client_data(description: Description) -> str:
    """The description without its examples, in one file: an entry a line."""
    interface = {key: value for key, value in description.interface.items() if key not in ("session", "examples")}
    interface["families"] = [{"name": each.name, "title": each.title, "text": each.text}
                             for each in description.families]
    schemas = {path.name: json.loads(path.read_text(encoding="utf-8"))
               for path in sorted((API / "schemas").glob("*.json")) if path.name != "envelope.schema.json"}
    fittings = json.loads((API / "fittings.json").read_text(encoding="utf-8"))
    parts: Json = {
        "interface": interface, "failures": description.failures, "catalogue": description.catalogue,
        "fittings": fittings, "schemas": schemas,
        "commands": {command["id"]: {"family": family.name, **_command(command)}
                     for family in description.families for command in family.commands}}
    texts = []
    for name, part in parts.items():
        entries = ",\n".join(f"  {json.dumps(key)}: {json.dumps(value, ensure_ascii=False)}"
                             for key, value in part.items())
        texts.append(f' {json.dumps(name)}: {{\n{entries}\n }}')
    return "{\n" + ",\n".join(texts) + "\n}\n"


def snake(member: str) -> str:
    """The name of an argument: VornModuleID is vorn_module_id, F_PortNb is f_port_nb."""
    name = re.sub(r"(?<=[a-z])(?=[A-Z])", "_", member).lower()
    return BUILT_IN.get(name, name)


def folded(head: str, parts: list[str], tail: str) -> list[str]:
    """Code that lists something, on one line or on as many as it takes."""
    whole = f"{head}{', '.join(parts)}{tail}"
    if len(whole) <= WIDTH:
        return [whole]
    lines = textwrap.wrap(", ".join(part.replace(" ", "\0") for part in parts), WIDTH - 12)
    return [head.rstrip(), *(f"        {line}".replace("\0", " ") for line in lines[:-1]),
            f"        {lines[-1]}{tail}".replace("\0", " ")]


def _type(member: str, schema: Json) -> str:
    if member in VALUES:
        return VALUES[member][0]
    if "enum" in schema:
        return f"Literal[{', '.join(json.dumps(each) for each in schema['enum'])}]"
    return TYPES[schema["type"]]


def _sent(member: str, schema: Json) -> str:
    """The argument as it is sent: a number that must be one with a fraction is made so."""
    if member in VALUES:
        return VALUES[member][1]
    return f"float({snake(member)})" if schema["type"] == "number" else snake(member)


def _described(name: str, schema: Json) -> str:
    unit = f" In {schema['x-unit']}." if schema.get("x-unit") else ""
    return f"{name}: {schema['description']}{unit}"


def _messages(command: Json) -> tuple[list[str], list[str], list[str]]:
    """The arguments of a command's messages, the pieces of the messages made of them, and a line of help for each."""
    messages = command["messages"]
    schema = messages.get("schema", {})
    if messages["form"] == "none":
        return [], ["None"], []
    if messages["form"] == "setNumber":
        name = snake(messages["parameter"])
        return [f"{name}: Literal[0, 1, 2]"], [name], [_described(name, schema)]
    if messages["form"] == "text":
        name = messages["parameter"]
        # Who forgets a value must not write the empty one.
        free = "default" in schema and command["effect"] == "reads"
        default = f" = {json.dumps(schema['default'])}" if free else ""
        sent = _sent(name, {"type": "string"})
        return [f"{name}: {_type(name, schema)}{default}"], [sent], [_described(name, schema)]
    if "$ref" in schema:
        return ["document: Mapping[str, Any]"], ["document"], []
    members: dict[str, Json] = schema["properties"]
    needed = [each for each in members if each in schema.get("required", [])]
    free = [each for each in members if each not in needed]
    arguments = [f"{snake(each)}: {_type(each, members[each])}" for each in needed]
    if free:
        arguments.append("*")
    arguments += [f"{snake(each)}: {_type(each, members[each])} = {json.dumps(members[each]['default'])}"
                  for each in free]
    pieces = [f'"{each}": {_sent(each, members[each])}' for each in members]
    pieces[0], pieces[-1] = "{" + pieces[0], pieces[-1] + "}"
    return arguments, pieces, [_described(snake(each), members[each]) for each in [*needed, *free]]


def _result(command: Json) -> str:
    if command["result"] != "identity":
        return RESULTS[command["result"]]
    return "str" if len(command["replies"]) == 1 else "list[str]"


def _docstring(command: Json, helps: list[str]) -> list[str]:
    lines = [f'"""{command["title"]}.', "", *textwrap.wrap(command["text"], WIDTH - 8)]
    if helps:
        lines.append("")
    for text in helps:
        lines += textwrap.wrap(text, WIDTH - 8, subsequent_indent="    ")
    return [*lines, '"""']


def _method(description: Description, command: Json, own: str) -> list[str]:
    """One method; `own` is what stands for the project in a class that is one."""
    target = description.interface["targets"][command["target"]]
    parameters = [each for each in target["parameters"] if not (own and each == "project")]
    form = target["form"].replace("{project}", own or "{project}")
    one_piece = "}" not in form[:-1]
    name = form[1:-1].replace("variable", "self.full_name(variable)") if one_piece else f'f"{form}"'
    arguments, messages, helps = _messages(command)
    kind = _result(command)
    head = f'self.call("{command["id"]}", {name}, '
    call = folded(head if kind == "None" else f"result: {kind} = {head}", messages, ")")
    lines = [*folded(f"def {command['method']}(", ["self", *(f"{each}: str" for each in parameters), *arguments],
                      f") -> {kind}:"),
             *(f"    {line}" for line in [*_docstring(command, helps), *call])]
    if kind != "None":
        lines.append("    return result")
    return ["", *(f"    {line}".rstrip() for line in lines)]


def client_methods(description: Description) -> str:
    lines = [HEAD]
    for name, text, targets, own in (
            ("ServerCommands", "The commands that address no open project.", SERVER_TARGETS, ""),
            ("ProjectCommands", "The commands that address a project.", PROJECT_TARGETS, "{self.name}")):
        lines += ["", f"class {name}(Caller):", f'    """{text}"""']
        for command in description.commands:
            if command["target"] in targets:
                lines += _method(description, command, own)
        lines.append("")
    return "\n".join(lines)
