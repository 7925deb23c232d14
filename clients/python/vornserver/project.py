"""An open project."""

from __future__ import annotations

import itertools
import re
import time
from dataclasses import dataclass
from types import TracebackType
from typing import TYPE_CHECKING, Any, Iterable, Iterator, Mapping, Sequence, overload

from vornserver.commands import ProjectCommands
from vornserver.errors import BatchError, ServiceError, UnexpectedReply
from vornserver.interface import COMMANDS
from vornserver.plant import Plant
from vornserver.topology import Topology
from vornserver.values import Value, text_of

if TYPE_CHECKING:
    from vornserver.server import Server

_OWN_NUMBER = re.compile(r"_(?:MOD|NOD)(\d+)_")


@dataclass(frozen=True)
class Sample:
    """What a watch saw at one time, in seconds since 1970; a variable that could not be read has its failure."""

    time: float
    values: dict[str, Value | ServiceError]

    def __getitem__(self, name: str) -> Value | ServiceError:
        return self.values[name]


class Project(ProjectCommands):
    """An open project of a service.

    Variables are told without the project's name: `project["GTemp"]`, `project["MOD3_Opening"]`. Elements are told as
    MOD3, NOD0, LNK7, or with the InstanceID that a document gave them. A `with` statement closes the project.
    """

    def __init__(self, server: Server, name: str) -> None:
        self.server = server
        self.name = name.upper()

    def __repr__(self) -> str:
        return f"Project({self.server!r}, {self.name!r})"

    def __enter__(self) -> Project:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 trace: TracebackType | None) -> None:
        self.close()

    def call(self, command: str, name: str, messages: object) -> Any:
        """As `Server.call`."""
        return self.server.call(command, name, messages)

    def __getitem__(self, variable: str) -> Value:
        return self.read(variable)

    def __setitem__(self, variable: str, value: Value | str) -> None:
        self.write(variable, value)

    @overload  # type: ignore[misc]  # a str is an iterable of str too, and the first of the two holds for it
    def read(self, variable: str) -> Value: ...

    @overload
    def read(self, variable: Iterable[str]) -> dict[str, Value]: ...

    def read(self, variable: str | Iterable[str]) -> Value | dict[str, Value]:
        """Reads a variable, or many in one request: numbers as numbers, lists as lists, by their names as given.
        Raises MissingError for a name that is none, and BatchError with what could be read for a batch."""
        if isinstance(variable, str):
            return super().read(variable)
        values, failures = self._batch("GetBatch", {name: None for name in variable})
        if failures:
            raise BatchError(failures, values)
        return values

    def read_batch(self, variables: Iterable[str]) -> dict[str, Value | ServiceError]:
        """Reads many variables in one request; one that cannot be read has its failure in the place of the value."""
        names = list(variables)
        values, failures = self._batch("GetBatch", {name: None for name in names})
        return {name: failures[name] if name in failures else values[name] for name in names}

    def write_batch(self, values: Mapping[str, Value | str]) -> None:
        """Writes many variables in one request, in the order of the mapping. Raises BatchError where some could not be
        written; the others are."""
        _, failures = self._batch("SetBatch", values)
        if failures:
            raise BatchError(failures, {name: value for name, value in values.items() if name not in failures})

    def _batch(self, command: str, entries: Mapping[str, Any]) -> tuple[dict[str, Value], dict[str, ServiceError]]:
        if not entries:
            return {}, {}
        messages: dict[str, object] = {"VarName": [self.full_name(name) for name in entries]}
        if command == "SetBatch":
            messages["VarValue"] = [text_of(value) for value in entries.values()]
        texts = self.call(command, "json", messages)
        if not isinstance(texts, list) or len(texts) != len(entries):
            raise UnexpectedReply(f"{command} answers with another number of entries: {str(texts)[:200]}")
        replies = {name: COMMANDS[command].entry_value(str(text)) for name, text in zip(entries, texts)}
        failures = {name: each for name, each in replies.items() if isinstance(each, ServiceError)}
        return {name: each for name, each in replies.items()
                if each is not None and not isinstance(each, ServiceError)}, failures

    def watch(self, variables: Sequence[str], every: float = 1.0, count: int | None = None) -> Iterator[Sample]:
        """Reads variables again and again, every so many seconds, without end or `count` times. Where the reader is
        slow, times are left out; they are not made up for."""
        start = time.monotonic()
        for number in itertools.count() if count is None else range(count):
            if number:
                passed = time.monotonic() - start
                turns = passed // every + 1 if every > 0 else 0
                time.sleep(max(turns * every - passed, 0))
            yield Sample(time.time(), self.read_batch(variables))

    def send(self, document: Mapping[str, Any] | Plant) -> None:
        """Replaces the project by a plant or a project document, and stores it. A plant is checked before; a document
        is sent as it stands. Raises PlantError, and StateError where the project runs."""
        if isinstance(document, Plant):
            document = document.document(check=True)
        super().send(document)

    def topology(self) -> Topology:
        """The devices, nodes, links and branches."""
        return Topology.of_report(super().topology(), self.number)

    def names(self, element: str) -> list[str]:
        """The names of an element's variables, as `read` takes them: for `pump`, MOD1_Head and so on."""
        return [str(each["Name"]).removeprefix(f"{self.name}_") for each in self.element_variables(element)]

    def number(self, element: str) -> int | None:
        """The number of a module or node that a document named; None for an element without variables."""
        for each in self.element_variables(element):
            if found := _OWN_NUMBER.search(str(each["Name"])):
                return int(found[1])
        return None

    def room(self, element: str) -> dict[str, float]:
        """The air of a room. Raises MissingError for a module that is no room."""
        described = COMMANDS["RoomGet"]
        values: dict[str, float] = {}
        for name, told in super().room(element).items():
            value = described.entry_value(told) if isinstance(told, str) else told
            if isinstance(value, ServiceError):
                raise value
            values[name] = float(value)
        return values

    def save_picture(self, path: str) -> None:
        """Draws the project into a file."""
        with open(path, "w", encoding="utf-8") as file:
            file.write(self.picture())
