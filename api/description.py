"""Reads the description of the interface: `interface.json` and the files that it leads to."""

from __future__ import annotations

import json
import re
from dataclasses import dataclass
from pathlib import Path
from typing import Any

Json = dict[str, Any]

API = Path(__file__).resolve().parent
REPOSITORY = API.parent

# The failures that any request may get.
EVERY_REQUEST = ["envelope", "internal"]

_PIECE = re.compile(r"\{[a-z]+\}")


@dataclass(frozen=True)
class Family:
    """Commands that belong together: one file of `commands/`, one page of the reference."""

    name: str
    title: str
    text: str
    session: list[Json]
    commands: list[Json]


@dataclass(frozen=True)
class Description:
    interface: Json
    failures: dict[str, Json]
    catalogue: Json
    families: list[Family]

    @property
    def commands(self) -> list[Json]:
        return [command for family in self.families for command in family.commands]

    def failures_of(self, command: Json) -> list[str]:
        """All failures that a command may answer with, those of its target and of any request included."""
        target: Json = self.interface["targets"][command["target"]]
        return [*EVERY_REQUEST, *target["failures"], *command["failures"]]


def _read(path: Path) -> Json:
    content: Json = json.loads(path.read_text(encoding="utf-8"))
    return content


def load() -> Description:
    interface = _read(API / "interface.json")
    families = [Family(name=name, **_read(API / "commands" / f"{name}.json")) for name in interface["families"]]
    return Description(interface, _read(API / "failures.json"), _read(API / "catalogue.json"), families)


def schema_of(command: Json) -> Json | None:
    """The schema of a command's `messages`, with a reference to another file followed."""
    schema: Json | None = command["messages"].get("schema")
    if schema is not None and "$ref" in schema:
        return _read(API / "commands" / schema["$ref"])
    return schema


def form_matches(form: str, text: str) -> bool:
    """Whether a reply is of a form, in which a piece such as {number} stands for any characters."""
    pieces = [re.escape(piece) for piece in _PIECE.split(form)]
    return re.fullmatch(".*".join(pieces), text, re.DOTALL) is not None


def has_pieces(form: str) -> bool:
    return _PIECE.search(form) is not None


@dataclass(frozen=True)
class Meaning:
    """What a reply of a command is: one of its replies, or the failure of this name."""

    failure: str | None
    entry: Json


def meaning_of(description: Description, command: Json, reply: str) -> Meaning | None:
    """Tells what a reply is, as `matching` in interface.json says; None for a text that the command does not have."""
    replies = [Meaning(None, entry) for entry in command["replies"]]
    failures = [Meaning(name, description.failures[name]) for name in description.failures_of(command)]
    exact = [each for each in replies + failures if not has_pieces(each.entry["text"])]
    with_pieces = [each for each in failures + replies if has_pieces(each.entry["text"])]
    return next((each for each in exact + with_pieces if form_matches(each.entry["text"], reply)), None)
