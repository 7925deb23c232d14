"""A whole plant in one document: devices with start values, links by port names, pipes by nominal size, and a script."""

from __future__ import annotations

import json
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any, Iterator, Mapping

from vornserver.errors import PlantError
from vornserver.fittings import fitting_of, port_size
from vornserver.interface import CATALOGUE, DATA
from vornserver.plant import Device, Plant, Port, members_once, type_id
from vornserver.schema import Schema

PLAN = Schema(DATA["schemas"]["plan.schema.json"], DATA["schemas"])
WIRE = 2
# Of each fluid the families of fittings whose presence in a net makes it that fluid, and the size where none is given.
FLUIDS: dict[str, tuple[tuple[str, ...], str]] = {
    "water": (("cast-iron pipe", "cast-iron reducer"), "DN50"),
    "refrigerant": (("copper pipe", "copper reducer"), ""),
    "air": (("rectangular duct", "duct reducer"), ""),
    "power": ((), ""),
}
_TYPES = {row["VornModuleID"]: row for row in CATALOGUE["types"]}


def port_names(type: int) -> list[str]:
    """The names of a type's ports in their order: in and out, in 1 and so on where there are several aisles, and power
    for the supply of a pump or compressor."""
    ports = _TYPES[type]["ports"] if type in _TYPES else []
    aisles = len({port["aisle"] for port in ports if port["flagged"]})
    names = []
    for port in ports:
        if aisles and not port["flagged"]:
            names.append("power")
        else:
            names.append(port["direction"] + (f" {port['aisle'] + 1}" if aisles > 1 else ""))
    return names


@dataclass
class Plan:
    """A plan that was read: the plant, what its run begins with, and its script."""

    plant: Plant = field(default_factory=Plant)
    start: dict[str, dict[str, float]] = field(default_factory=dict)
    """Of each device the values of its items."""
    script: str = ""

    @classmethod
    def load(cls, path: str | Path) -> Plan:
        """Reads a plan from a file. Raises PlantError, OSError, and ValueError for what is no JSON."""
        return cls.of_text(Path(path).read_text(encoding="utf-8"))

    @classmethod
    def of_text(cls, text: str) -> Plan:
        """Reads a plan, or a project document, which has no start values and no script. Raises as `load`."""
        document = json.loads(text, object_pairs_hook=members_once)
        if isinstance(document, dict) and {"DeviceInfo", "ConnectionInfo"} & document.keys():
            return cls(Plant.of_document(document))
        return cls.of_document(document)

    @classmethod
    def of_document(cls, document: Mapping[str, Any]) -> Plan:
        """Reads a plan. Raises PlantError with all that is wrong with it."""
        if faults := PLAN.faults(document):
            raise PlantError(faults)
        plan = cls(script=document.get("script", ""))
        faults = [fault for fault in (*plan._read_elements(document), *plan._read_nets(document["nets"])) if fault]
        if faults := faults + plan.plant.faults():
            raise PlantError(faults)
        return plan

    def _read_elements(self, document: Mapping[str, Any]) -> Iterator[str]:
        for each in document["devices"]:
            name = each["name"]
            try:
                device = self.plant.device(name, each["type"], each.get("x", 0.0), each.get("z", 0.0),
                                           room=each.get("room") or "0", model=each.get("model", ""))
            except ValueError as error:
                yield f"device {name!r}: {error}"
                continue
            self.start[name] = dict(each.get("start", {}))
            items = _TYPES[device.type]["items"] if device.type in _TYPES else []
            yield from (f"device {name!r}: there is no item {item}, only {', '.join(items)}"
                        for item in self.start[name] if item not in items)
        for each in document.get("nodes", []):
            self.plant.node(each["name"], each.get("x", 0.0), each.get("z", 0.0), kind=each.get("kind", "FLUID"))

    def _read_nets(self, nets: list[Mapping[str, Any]]) -> Iterator[str]:
        devices = {each.id: each for each in self.plant.devices}
        for net in nets:
            for link in net["links"]:
                where = f"link from {link['from']} to {link['to']}"
                try:
                    ends = [_port(devices, link["from"]), _port(devices, link["to"])]
                    yield f"{where}: {fault}" if (fault := self._connect(net, link, ends)) else ""
                except ValueError as error:
                    yield f"{where}: {error}"

    def _connect(self, net: Mapping[str, Any], link: Mapping[str, Any], ends: list[Port]) -> str:
        """Adds the connection of a link; returns what is wrong with its size. Raises ValueError."""
        families, default = FLUIDS[net["fluid"]]
        size = link.get("size") or net.get("size") or default
        wire = not families
        if not wire and not size:
            raise ValueError(f"a net of {net['fluid']} needs a size")
        self.plant.connect(ends[0], ends[1], id=link.get("name", ""), length=link.get("length", 0.0),
                           elbows=link.get("elbows", 0), size=None if wire else size,
                           end_size=None if wire else link.get("end_size") or None, type=WIRE if wire else 1)
        if wire:
            return ""
        fitting = fitting_of(port_size(size), port_size(link.get("end_size") or size))
        if fitting is not None and fitting.family not in families:
            return f"the service chooses a {fitting.family} for {size}, and {net['fluid']} needs a {families[0]}"
        return ""

    def start_values(self) -> Iterator[tuple[str, int, float]]:
        """The start values as devices, rows of their tables of items, and values."""
        types = {each.id: each.type for each in self.plant.devices}
        for name, values in self.start.items():
            for item, value in values.items():
                yield name, _TYPES[types[name]]["items"].index(item), value


def _port(devices: Mapping[str, Device], end: str) -> Port:
    """The end that a plan names. Raises ValueError."""
    if end in devices and devices[end].is_node:
        return Port(end)
    name, _, port = end.rpartition(".")
    if name not in devices:
        raise ValueError(f"there is no {end if end not in devices else 'port in ' + end}")
    names = port_names(devices[name].type)
    if port not in names:
        raise ValueError(f"{name!r} has no port {port!r}, only {', '.join(names)}")
    return Port(name, names.index(port))
