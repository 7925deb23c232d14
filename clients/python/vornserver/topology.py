"""The topology of a project: what the service tells of its devices, links and branches."""

from __future__ import annotations

import re
from dataclasses import dataclass
from typing import Any, Callable, Mapping

from vornserver.errors import UnexpectedReply

_OWN_FORM = re.compile(r"(?:MOD|NOD)(\d+)")


@dataclass(frozen=True)
class Element:
    """A module or node. `id` is MOD or NOD and its number, by which links and branches tell it; it is empty where the
    service does not let it be known."""

    id: str
    instance_id: str
    type_name: str
    vorn_module_id: int
    x: float
    z: float
    model_id: str

    @property
    def is_node(self) -> bool:
        return self.vorn_module_id in range(3000, 4000)


@dataclass(frozen=True)
class Link:
    """A link from an outlet to an inlet. Type 0 carries fluid, 1 information, 2 power, 3 mechanics."""

    id: str
    type: int
    page: int
    start: str
    start_port: int
    end: str
    end_port: int


@dataclass(frozen=True)
class Branch:
    """What flows from one end to another through the aisles of modules: `passages` are modules and their aisles in the
    order of the flow. An open end is None, at port -1."""

    number: int
    type: int
    start: str | None
    start_port: int
    passages: list[tuple[str, int]]
    end: str | None
    end_port: int


def _numbers(kind: str, rows: list[Mapping[str, Any]], number_of: Callable[[str], int | None]) -> list[int | None]:
    """The numbers of elements that are told in the order of their numbers. Where the last one's number is that of its
    place, nothing is missing between; else each is asked for."""
    def number(row: Mapping[str, Any]) -> int | None:
        own = _OWN_FORM.fullmatch(row["InstanceID"])
        return int(own[1]) if own and row["InstanceID"].startswith(kind) else number_of(row["InstanceID"])

    if not rows or number(rows[-1]) == len(rows) - 1:
        return list(range(len(rows)))
    return [number(row) for row in rows]


def _elements(kind: str, name: str, rows: list[Mapping[str, Any]],
              number_of: Callable[[str], int | None]) -> list[Element]:
    numbers = _numbers(kind, rows, number_of)
    return [Element("" if number is None else f"{kind}{number}", row["InstanceID"], row[name], row["VornModuleID"],
                    row["PositionX"], row["PositionZ"], row["ModelID"]) for row, number in zip(rows, numbers)]


def _end(told: str) -> str | None:
    return None if told == "None" else told


def _branch(row: Mapping[str, Any]) -> Branch:
    passages = [(module, aisle) for each in row["InstanceID_AisleNb"] for module, aisle in each.items()]
    return Branch(row["Branch"], row["Type"], _end(row["Front_InstanceID"]), row["FrontPort"], passages,
                  _end(row["Post_InstanceID"]), row["PostPort"])


@dataclass(frozen=True)
class Topology:
    """A project's modules, nodes, links and branches."""

    modules: list[Element]
    nodes: list[Element]
    links: list[Link]
    branches: list[Branch]

    @classmethod
    def of_report(cls, report: Mapping[str, Any], number_of: Callable[[str], int | None]) -> Topology:
        """Reads a report; `number_of` tells the number of an element with a name of its own. Raises UnexpectedReply."""
        try:
            return cls(_elements("MOD", "DeviceName", report["DeviceInfo"], number_of),
                       _elements("NOD", "NodeName", report["NodeInfo"], number_of),
                       [Link(row["InstanceID"], row["Type"], row["PageNb"], row["F_InstanceID"], row["F_PortNb"],
                             row["S_InstanceID"], row["S_PortNb"]) for row in report["ConnectionInfo"]],
                       [_branch(row) for row in report["BranchInfo"]])
        except (KeyError, TypeError, AttributeError) as error:
            raise UnexpectedReply(f"a topology report of another form: {error!r}") from error

    @property
    def elements(self) -> list[Element]:
        """Modules and nodes."""
        return self.modules + self.nodes

    @property
    def nets(self) -> list[set[str]]:
        """The nodes that branches join, by `Element.id`; a net for each node that nothing joins to another."""
        nets = [{node.id} for node in self.nodes]
        for branch in self.branches:
            joined = [net for net in nets if branch.start in net or branch.end in net]
            nets = [net for net in nets if net not in joined] + [set().union(*joined)] * bool(joined)
        return nets

    def graph(self) -> Any:
        """Modules, nodes and links as a networkx.MultiDiGraph: its nodes are `Element.id`, with the element's members
        as attributes; its edges are keyed by the link's identity. Raises ImportError where networkx is not there."""
        import networkx  # type: ignore[import]

        graph = networkx.MultiDiGraph()
        for element in self.elements:
            graph.add_node(element.id or element.instance_id, **vars(element))
        for link in self.links:
            graph.add_edge(link.start, link.end, key=link.id, **vars(link))
        return graph
