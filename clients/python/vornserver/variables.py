"""Which variables a project has, by the catalogue."""

from __future__ import annotations

from typing import Iterator

from vornserver.errors import MissingError
from vornserver.interface import CATALOGUE
from vornserver.topology import Element, Topology
from vornserver.values import text_of

_TYPES = {row["VornModuleID"]: row for row in CATALOGUE["types"]}
# The numbers of a port; the others are lists.
_PORT_VALUES = [name for name in CATALOGUE["portValues"] if name != "ARY"]


def vacant(element: str, project: str) -> MissingError:
    """The failure for an element that is not there."""
    return MissingError(f"there is no {element} in {project}", "vacant", "missing", "No element has this identity.",
                        "Look at the topology for the elements that are there.")


def value_text(variable: str, value: object) -> str:
    """A value as it is written, of a variable without the project's name. Raises ValueError for one that is none of its
    kind, as far as the catalogue knows the variable."""
    return text_of(value, CATALOGUE["projectVariables"].get(variable, {}).get("kind", ""))


def project_variables() -> list[str]:
    """The numbers of a project itself."""
    return [name for name, each in CATALOGUE["projectVariables"].items() if not each["kind"].startswith("list")]


def _items_of(element: Element) -> Iterator[str]:
    row = _TYPES.get(element.vorn_module_id)
    if row is None:
        yield from CATALOGUE["nodeItems"] if element.is_node else []
        return
    yield from row["items"]
    yield from (f"IM{port}_{value}" for port in range(len(row["ports"])) for value in _PORT_VALUES)


def variables_of(topology: Topology) -> list[str]:
    """The numbers of all modules and nodes, as `pump.Head`."""
    return [f"{element.instance_id}.{item}" for element in topology.elements for item in _items_of(element)]
