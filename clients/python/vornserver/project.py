"""An open project."""

from __future__ import annotations

import itertools
import re
import time
from types import TracebackType
from typing import Any, Dict, Iterable, Iterator, Mapping, Sequence, cast, overload

from vornserver.caller import Service
from vornserver.commands import ProjectCommands
from vornserver.errors import BatchError, PlantError, ServiceError, UnexpectedReply
from vornserver.interface import COMMANDS, NUMBERS
from vornserver.plan import Plan
from vornserver.plant import Plant, rounded_from
from vornserver.samples import Poller, Sample, one_number
from vornserver.topology import Topology
from vornserver.values import Value, Writable
from vornserver.variables import project_variables, vacant, variables_of

_OWN_NUMBER = re.compile(r"_(?:MOD|NOD)(\d+)_")
_OWN_FORM = re.compile(r"(?:MOD|NOD)\d+")
# After these commands, elements have other numbers.
_RENUMBERING = ("PjtSent", "PjtClear", "DeleteMNL", "AddModule", "AddNode", "AddLink")


class Project(ProjectCommands):
    """An open project of a service.

    Variables are told without the project's name: `project["GTemp"]`, `project["MOD3_Opening"]`. Elements are told as
    MOD3, NOD0, LNK7, or with the InstanceID that a document gave them. A `with` statement closes the project where
    `closes` is set, which it is where the project was not open before.
    """

    def __init__(self, server: Service, name: str, closes: bool = True) -> None:
        self.server = server
        self.name = name.upper()
        self.closes = closes
        self._ids: dict[str, str] = {}  # MOD or NOD and the number, of the elements with names of their own
        self._full_name_of: dict[str, str] = {}

    def __repr__(self) -> str:
        return f"Project({self.server!r}, {self.name!r})"

    def __enter__(self) -> Project:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 trace: TracebackType | None) -> None:
        if self.closes:
            self.close()

    def call(self, command: str, name: str, messages: object) -> Any:
        """As `Server.call`."""
        if command in _RENUMBERING:
            self._ids = {}
            self._full_name_of = {}
        return self.server.call(command, name, messages)

    def full_name(self, variable: str) -> str:
        """The name of a variable as the service knows it. Of `air cooler 1.Power` the part before the last dot is the
        element's InstanceID. Raises MissingError where no element has it."""
        element, dot, item = variable.rpartition(".")
        return super().full_name(f"{self.own_form(element)}_{item}" if dot else variable)

    def _full_names(self, names: list[str]) -> list[str]:
        """As `full_name`, and quick for names that were asked for before."""
        known = self._full_name_of
        try:
            return [known[name] for name in names]
        except KeyError:
            known.update((name, self.full_name(name)) for name in names if name not in known)
        return [known[name] for name in names]

    def own_form(self, element: str) -> str:
        """MOD or NOD and the number, of a module or node with a name of its own. Raises MissingError."""
        if _OWN_FORM.fullmatch(element):
            return element
        if element not in self._ids:
            self._ids = {each.instance_id: each.id for each in reversed(self.topology().elements) if each.id}
        if element not in self._ids:
            raise vacant(element, self.name)
        return self._ids[element]

    def __getitem__(self, variable: str) -> float:
        return self.read(variable)

    def __setitem__(self, variable: str, value: Writable) -> None:
        self.write(variable, value)

    @overload  # type: ignore[misc]  # a str is an iterable of str too, and the first of the two is meant
    def read(self, variable: str) -> float: ...

    @overload
    def read(self, variable: Iterable[str]) -> dict[str, float]: ...

    def read(self, variable: str | Iterable[str]) -> float | dict[str, float]:
        """Reads a number, or many in one request by their names as given. Raises MissingError for a name that is none,
        BatchError with what could be read for a batch, and ValueError for a list, which `read_list` reads."""
        if isinstance(variable, str):
            return one_number(variable, super().read(variable))
        values = self._read(list(variable))
        if set(map(type, values.values())) <= NUMBERS:
            return cast(Dict[str, float], values)
        return {name: one_number(name, value) for name, value in values.items()}

    def read_list(self, variable: str) -> list[float]:
        """Reads a list of eight numbers. Raises MissingError, and ValueError for a single number."""
        value: Value = super().read(variable)
        if not isinstance(value, list):
            raise ValueError(f"{variable} is a single number: use read")
        return value

    def _read(self, names: list[str]) -> dict[str, Value]:
        values, failures = self._batch("GetBatch", names)
        if failures:
            raise BatchError(failures, values)
        return values

    def read_batch(self, variables: Iterable[str]) -> dict[str, Value | ServiceError]:
        """Reads numbers and lists in one request; one that cannot be read has its failure in the place of the value."""
        names = list(variables)
        values, failures = self._batch("GetBatch", names)
        return {name: failures[name] if name in failures else values[name] for name in names}

    def read_all(self) -> dict[str, float]:
        """Reads every number that the catalogue knows of the project, its modules and nodes, in one request. The names
        are those of the document, such as `pump.Head`; what the engine does not have is left out."""
        topology = self.topology()
        self._ids = {each.instance_id: each.id for each in reversed(topology.elements) if each.id}
        values, _ = self._batch("GetBatch", [*project_variables(), *variables_of(topology)])
        return {name: value for name, value in values.items() if not isinstance(value, list)}

    def to_dataframe(self) -> Any:
        """What `read_all` reads of the elements as a pandas.DataFrame: a row for each element, a column for each item.
        Raises ImportError where pandas is not there."""
        import pandas  # type: ignore[import]

        rows: dict[str, dict[str, float]] = {}
        for name, value in self.read_all().items():
            element, dot, item = name.rpartition(".")
            if dot:
                rows.setdefault(element, {})[item] = value
        return pandas.DataFrame.from_dict(rows, orient="index")

    def write_batch(self, values: Mapping[str, Writable]) -> None:
        """Writes many variables in one request, in the order of the mapping. Raises BatchError where some could not be
        written; the others are."""
        texts = [self.value_text(name, value) for name, value in values.items()]
        _, failures = self._batch("SetBatch", list(values), texts)
        if failures:
            raise BatchError(failures, {name: value for name, value in values.items() if name not in failures})

    def _batch(self, command: str, names: list[str],
               texts: list[str] | None = None) -> tuple[dict[str, Value], dict[str, ServiceError]]:
        if not names:
            return {}, {}
        messages: dict[str, object] = {"VarName": self._full_names(names)}
        if texts is not None:
            messages["VarValue"] = texts
        replies = self.call(command, "json", messages)
        if not isinstance(replies, list) or len(replies) != len(names):
            raise UnexpectedReply(f"{command} answers with another number of entries: {str(replies)[:200]}")
        return COMMANDS[command].entry_values(names, replies)

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

    def poller(self, every: float = 1.0) -> Poller:
        """What reads for many subscriptions with one request each time; use it in a `with` statement."""
        return Poller(self.read_batch, every)

    def send(self, document: Mapping[str, Any] | Plant) -> None:
        """Replaces the project by a plant or a project document, and stores it. Either is checked before; types that the
        catalogue does not have are looked for afterwards. Raises PlantError, and StateError where the project runs."""
        plant = document if isinstance(document, Plant) else Plant.of_document(document)
        super().send(plant.document(check=True))
        if foreign := plant.foreign:
            there = {each.instance_id for each in self.topology().modules}
            if lost := [each for each in foreign if each.id not in there]:
                raise PlantError([f"the engine has no type {each.type}, so that device {each.id!r} is left out"
                                  + rounded_from(each.type) for each in lost])

    def build(self, plan: Plan) -> None:
        """Replaces the project by a plan: the plant, its start values in all three cache sets, and its script. Raises as
        `send`, and EngineError for a script with a fault."""
        self.send(plan.plant)
        for element, row, value in plan.start_values():
            for column in (1, 2, 3):
                self.set_cache_value(element, column, value, row=row)
        if plan.script:
            self.send_script(plan.script)

    def topology(self) -> Topology:
        """The devices, nodes, links and branches."""
        return Topology.of_report(super().topology(), self.number)

    def delete(self, element: str) -> None:
        """Deletes a module, node or link. Raises MissingError where there was none, to which the service says OK."""
        self._require(element)
        super().delete(element)

    def move(self, element: str, *, position_x: float = 0.0, position_z: float = 0.0) -> None:
        """Moves a module or node. Raises MissingError where there is none, to which the service says OK."""
        self._require(element)
        super().move(element, position_x=position_x, position_z=position_z)

    def _require(self, element: str) -> None:
        """Raises MissingError for a number at which no element is; names are the service's own matter."""
        there = True
        if _OWN_FORM.fullmatch(element):
            there = bool(self.element_variables(element))
        elif element.startswith("LNK"):
            there = element in [link.id for link in self.topology().links]
        if not there:
            raise vacant(element, self.name)

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
