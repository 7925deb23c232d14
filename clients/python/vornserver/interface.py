"""The description of the interface, as it was when this package was made, and what a reply means by it."""

from __future__ import annotations

import json
import re
from contextlib import suppress
from dataclasses import dataclass, field
from functools import cached_property, lru_cache
from importlib import resources
from typing import Any, Dict, Iterator, cast

from vornserver.errors import KINDS, ServiceError, UnexpectedReply
from vornserver.schema import Json, Schema
from vornserver.values import Value, value_of

# The failures that any request may get.
EVERY_REQUEST = ("envelope", "internal")

_PIECE = re.compile(r"\\\{([a-z]+)\\\}")


def _load() -> Json:
    content: Json = json.loads(resources.files("vornserver").joinpath("interface.json").read_text(encoding="utf-8"))
    return content


DATA = _load()
WAYS: Json = DATA["interface"]["ways"]
VERSION: str = DATA["interface"]["version"]
FAILURES: dict[str, Json] = DATA["failures"]
NUMBERS = {int, float}
FITTINGS: Json = DATA["fittings"]
CATALOGUE: Json = DATA["catalogue"]
PROJECT_DOCUMENT = Schema(DATA["schemas"]["project_document.schema.json"], DATA["schemas"])


@lru_cache(maxsize=None)
def _pattern(form: str) -> re.Pattern[str]:
    """A reply's form as a pattern: a piece such as {number} stands for any characters."""
    return re.compile(_PIECE.sub(r"(?P<\1>.*)", re.escape(form)), re.DOTALL)


def _has_pieces(form: str) -> bool:
    return bool(_pattern(form).groups)


@dataclass(frozen=True)
class Meaning:
    """What a reply is: a reply of the command's own, or the failure of this name; and what its form's pieces are."""

    failure: str = ""
    details: dict[str, str] = field(default_factory=dict)


@dataclass(frozen=True)
class Command:
    """A command of the description."""

    id: str
    entry: Json

    @property
    def target(self) -> Json:
        target: Json = DATA["interface"]["targets"][self.entry["target"]]
        return target

    @property
    def word(self) -> str:
        return str(self.entry["word"])

    @cached_property
    def schema(self) -> Schema | None:
        """The schema of `messages`, if the command looks at it."""
        schema = self.entry["messages"].get("schema")
        return None if schema is None else Schema(schema, DATA["schemas"])

    def faults(self, messages: object) -> list[str]:
        """Why the service would store messages otherwise than written, a line each."""
        schema = self.schema
        if schema is None or (messages is None and "default" in self.entry["messages"]["schema"]):
            return []
        if isinstance(messages, str) and self.entry["messages"]["form"] == "object":
            return []  # JSON in a text, which the service judges
        return schema.faults(messages)

    @property
    def repeatable(self) -> bool:
        """Whether doing it twice is doing it once, so that it can be asked again where the connection broke."""
        return self.entry["effect"] == "reads" or bool(self.entry["idempotent"])

    @property
    def seconds(self) -> float:
        """The longest that the command waits by contract."""
        return float(sum(wait["milliseconds"] for wait in self.entry["waits"])) / 1000

    @property
    def failures(self) -> list[str]:
        return [*EVERY_REQUEST, *self.target["failures"], *self.entry["failures"]]

    def meaning(self, reply: str, messages: object) -> Meaning:
        """Tells what a reply is, as the description says that it be told. Raises UnexpectedReply."""
        replies = [each["text"] for each in self.entry["replies"]]
        if reply in replies and not _has_pieces(reply):
            return Meaning()
        if exact := [name for name in self.failures if FAILURES[name]["text"] == reply]:
            return Meaning(next(self._likely(exact, messages)))
        with_pieces = [(name, FAILURES[name]["text"]) for name in self.failures] + [("", form) for form in replies]
        for name, form in with_pieces:
            if _has_pieces(form) and (found := _pattern(form).fullmatch(reply)):
                return Meaning(name, found.groupdict())
        raise UnexpectedReply(f"{self.id} does not answer {reply[:200]!r}")

    def _likely(self, names: list[str], messages: object) -> Iterator[str]:
        """Failures of one text in the order in which to believe them: what fits its schema has no wrong member."""
        fits = self.schema is not None and not self.schema.faults(messages)
        yield from sorted(names, key=lambda name: fits and FAILURES[name]["kind"] in ("field", "format"))

    def result(self, reply: str, messages: object) -> Any:
        """The reply as a Python value, of the type that the command's method tells. Raises ServiceError."""
        meaning = self.meaning(reply, messages)
        if meaning.failure:
            raise failure_of(meaning.failure, reply, meaning.details)
        try:
            return self._value(reply, meaning)
        except ValueError as error:
            raise UnexpectedReply(f"{self.id} does not answer {reply[:200]!r}") from error

    def _value(self, reply: str, meaning: Meaning) -> Any:
        kind = self.entry["result"]
        if kind == "ok":
            return None
        if kind == "identity" and len(self.entry["replies"]) > 1:
            return meaning.details.get("elements", reply).split("、")
        readers: dict[str, Any] = {"value": value_of, "flag": lambda text: text == "1", "json": json.loads}
        return readers[kind](reply) if kind in readers else reply

    @property
    def entry_failures(self) -> dict[str, str]:
        """The failures of a batch's entries by their texts."""
        return {FAILURES[name]["text"]: name for name in self.entry["entryFailures"]}

    def entry_value(self, text: str) -> Value | ServiceError | None:
        """An entry of a batch's reply: its value, its failure, or None for a write's OK."""
        return self.entries([text])[0]

    def entries(self, texts: list[str]) -> list[Value | ServiceError | None]:
        """The entries of a batch's reply, as `entry_value`. Raises UnexpectedReply."""
        failures = self.entry_failures
        with suppress(ValueError, TypeError):  # all are numbers, as they are in most batches
            return [float(text) if "." in text else int(text) for text in texts]
        try:
            return [failure_of(failures[text], text) if text in failures else None if text == "OK" else value_of(text)
                    for text in texts]
        except (AttributeError, TypeError, ValueError) as error:
            raise UnexpectedReply(f"{self.id} has an entry that is no value: {error}") from error

    def entry_values(self, names: list[str], texts: list[str]) -> tuple[dict[str, Value], dict[str, ServiceError]]:
        """What the entries of a batch's reply contain by their names: values, and failures."""
        values: dict[str, Value] = {}
        failures: dict[str, ServiceError] = {}
        entries = self.entries(texts)
        if set(map(type, entries)) <= NUMBERS:
            return cast(Dict[str, Value], dict(zip(names, entries))), {}
        for name, entry in zip(names, entries):
            if isinstance(entry, ServiceError):
                failures[name] = entry
            elif entry is not None:
                values[name] = entry
        return values, failures


def failure_of(name: str, text: str, details: dict[str, str] | None = None) -> ServiceError:
    """The exception for a failure of the description."""
    failure = FAILURES[name]
    return KINDS[failure["kind"]](text, name, failure["kind"], failure["meaning"], failure["todo"], details)


COMMANDS: dict[str, Command] = {name: Command(name, entry) for name, entry in DATA["commands"].items()}
"""All commands by their `id`: the word, but for the two batches."""
