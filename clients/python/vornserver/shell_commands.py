"""The commands of the description as commands of a shell."""

from __future__ import annotations

import argparse
import json
import re
import sys
from pathlib import Path
from typing import Any, Callable

from vornserver.interface import COMMANDS, DATA, Command
from vornserver.plant import Plant
from vornserver.schema import Json
from vornserver.server import Server
from vornserver.shell_output import print_result, working
from vornserver.variables import value_text

NUMBERS: dict[str, Callable[[str], Any]] = {"integer": int, "number": float, "string": str}


# Methods whose names are commands of the shell itself, which do the same and more.
TAKEN = ("check",)


def option_name(member: str) -> str:
    """VornModuleID is --vorn-module-id."""
    return re.sub(r"(?<=[a-z])(?=[A-Z])", "-", member).replace("_", "-").lower()


def _read(path: str) -> str:
    return sys.stdin.read() if path == "-" else Path(path).read_text(encoding="utf-8")


def _help_of(member: Json) -> str:
    parts = [member.get("description", "")]
    if member.get("x-unit"):
        parts.append(f"in {member['x-unit']}")
    if "default" in member:
        parts.append(f"default {member['default']!r}")
    return "; ".join(each.rstrip(".") for each in parts if each).replace("%", "%%")


def _add_member(parser: argparse.ArgumentParser, name: str, member: Json, needed: bool) -> None:
    rules: dict[str, Any] = {"help": _help_of(member), "type": NUMBERS[member["type"]], "choices": member.get("enum")}
    if needed:
        parser.add_argument(name, metavar=option_name(name).upper(), **rules)
    else:
        parser.add_argument(f"--{option_name(name)}", dest=name, metavar=member["type"].upper(),
                            default=member["default"], **rules)


def _add_messages(parser: argparse.ArgumentParser, command: Command) -> None:
    """Adds arguments for what `messages` holds."""
    messages = command.entry["messages"]
    schema = messages.get("schema", {})
    # Who forgets a value must not write the empty one.
    optional: dict[str, Any] = {"nargs": "?"} if "default" in schema and command.entry["effect"] == "reads" else {}
    if command.id == "GetBatch":
        parser.add_argument("variables", nargs="+", metavar="VARIABLE", help="the name of a variable, project and all")
    elif command.id == "SetBatch":
        parser.add_argument("variables", nargs="+", metavar="VARIABLE=VALUE", help="a variable and its value")
    elif "$ref" in schema:
        parser.add_argument("document", metavar="FILE", help="a project document; - is standard input")
    elif messages["form"] == "object":
        for name in sorted(schema["properties"], key=lambda each: each not in schema.get("required", [])):
            _add_member(parser, name, schema["properties"][name], name in schema.get("required", []))
    elif messages["form"] == "setNumber":
        parser.add_argument("text", type=int, choices=(0, 1, 2), metavar="SET", help=_help_of(schema))
    elif command.id == "LuaSent":
        parser.add_argument("script", metavar="FILE", help="a file with the script; - is standard input")
    elif messages["form"] == "text":
        parser.add_argument("text", metavar=messages["parameter"].upper(), choices=schema.get("enum"),
                            default=schema.get("default"), help=_help_of(schema), **optional)


def _document(arguments: argparse.Namespace) -> Any:
    """The document of a file. Raises PlantError."""
    try:
        return Plant.of_text(_read(arguments.document)).document(check=True)
    except json.JSONDecodeError as error:
        raise ValueError(f"{arguments.document} is no JSON: {error}") from error


def _value(variable: str, text: str) -> str:
    """A value as the service must be given it. Raises ValueError for what is none of the variable's kind."""
    return value_text(variable.partition("_")[2], text)


def _messages(command: Command, arguments: argparse.Namespace) -> Any:
    """The messages that a command line tells."""
    told = vars(arguments)
    if command.id == "GetBatch":
        return {"VarName": arguments.variables}
    if command.id == "SetBatch":
        pairs = [each.partition("=") for each in arguments.variables]
        if missing := [name for name, equals, _ in pairs if not equals]:
            raise ValueError(f"no value is told for {', '.join(missing)}: write VARIABLE=VALUE")
        return {"VarName": [name for name, _, _ in pairs], "VarValue": [_value(name, value) for name, _, value in pairs]}
    if command.id == "Set":
        return _value(arguments.variable, arguments.text)
    if "document" in told:
        return _document(arguments)
    if "script" in told:
        return _read(arguments.script)
    if command.entry["messages"]["form"] == "object":
        members = command.entry["messages"]["schema"]["properties"]
        return {name: told[name] for name in members}
    return told.get("text")


def _run(server: Server, arguments: argparse.Namespace) -> int:
    command: Command = arguments.described
    name = command.target["form"].format(**{each: vars(arguments)[each] for each in command.target["parameters"]})
    messages = _messages(command, arguments)
    with working(command.entry["title"], command.seconds):
        result = server.call(command.id, name, messages)
    return print_result(command, messages, result, arguments)


def _epilog(command: Command) -> str:
    lines = []
    for wait in command.entry["waits"]:
        why = f": {wait['why']}" if wait.get("why") else ""
        lines.append(f"waits {wait['milliseconds'] / 1000:g} s, {wait['when']}{why}")
    if command.entry["effect"] == "destroys":
        lines.append(DATA["interface"]["effects"]["destroys"])
    return "; ".join(lines)


def add_family(commands: argparse._SubParsersAction[argparse.ArgumentParser], family: str) -> None:
    """Adds the commands of a family, each under its method's name and its own word."""
    for command in COMMANDS.values():
        if command.entry["family"] != family:
            continue
        name, *more = [each for each in (command.entry["method"].replace("_", "-"), command.id) if each not in TAKEN]
        parser = commands.add_parser(
            name, aliases=more, help=command.entry["title"],
            description=command.entry["text"].replace("%", "%%"), epilog=_epilog(command))
        for parameter in command.target["parameters"]:
            last = parameter == command.target["parameters"][-1]
            target = command.target if last else DATA["interface"]["targets"][parameter]
            text = target.get("parameterTexts", {}).get(parameter, target["text"])
            parser.add_argument(parameter, metavar=parameter.upper(), help=text)
        _add_messages(parser, command)
        if command.entry["result"] == "svg":
            parser.add_argument("--output", metavar="FILE", help="write the drawing into a file")
        parser.set_defaults(run=_run, described=command)
