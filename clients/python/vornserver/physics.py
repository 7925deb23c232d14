"""What of a plant cannot work, though the service takes it and finds its networks complete."""

from __future__ import annotations

from typing import Iterable, Iterator, Mapping

from vornserver.fittings import fitting_of, port_size
from vornserver.interface import CATALOGUE
from vornserver.plant import Connection, Plant, Port

_ROWS = {row["VornModuleID"]: row for row in CATALOGUE["types"]}
_ITEMS = CATALOGUE["items"]
POWER_LINK = 2
# What a device without such a value does not do.
NEEDED = {
    "Area": "it moves no heat", "Head": "it is off", "Power": "it has no power", "Opening": "it is closed"}
REFRIGERATION = ("compressor", "expansion valve")
SINKS = {"cooling tower", "fan coil", "radiator"}

Start = Mapping[str, Mapping[str, float]]
Spot = tuple[str, int]


class _Nets:
    """Which ports lie in one circuit: pipes join them, and so do nodes, vessels, and the aisles of devices."""

    def __init__(self, plant: Plant) -> None:
        self.plant = plant
        self._types = {each.id: _ROWS.get(each.type, {"english": "", "ports": []}) for each in plant.devices}
        self._root: dict[Spot, Spot] = {}
        for pipe in plant.connections:
            if pipe.type != POWER_LINK:
                self._root[self.find(self._spot(pipe.start))] = self.find(self._spot(pipe.end))

    def _spot(self, port: Port) -> Spot:
        """A device's aisle; one for a node or vessel with all its ports."""
        ports = self._types.get(port.device, {"ports": []})["ports"]
        return (port.device, ports[port.number].get("aisle", 0) if port.number < len(ports) else 0)

    def find(self, spot: Spot) -> Spot:
        while (up := self._root.get(spot, spot)) != spot:
            spot = up
        return spot

    def english(self, device: str) -> str:
        return str(self._types[device]["english"])

    def circuits(self) -> Iterator[tuple[set[Spot], list[Connection]]]:
        """Each circuit as the aisles in it and its pipes."""
        pipes: dict[Spot, list[Connection]] = {}
        for pipe in self.plant.connections:
            if pipe.type != POWER_LINK:
                pipes.setdefault(self.find(self._spot(pipe.start)), []).append(pipe)
        for members in pipes.values():
            yield {self._spot(port) for pipe in members for port in (pipe.start, pipe.end)}, members


def _families(pipes: Iterable[Connection]) -> set[str]:
    fittings = [fitting_of(*(port_size(size or 0.0) for size in (pipe.size, pipe.end_size))) for pipe in pipes]
    return {each.family if each else "cast-iron pipe" for each in fittings}


def _item_faults(plant: Plant, start: Start) -> Iterator[str]:
    pipes = {each.id for each in plant.connections}
    for device in plant.devices:
        if device.id in pipes or device.type not in _ROWS:
            continue
        for item in _ROWS[device.type]["items"]:
            value = start.get(device.id, {}).get(item, _ITEMS[item].get("start", 0))
            if item in NEEDED and value <= 0:
                kind = _ROWS[device.type]["english"]
                yield (f"pump {device.id!r} without power: Power is 0" if (kind, item) == ("pump", "Power")
                       else f"{kind} {device.id!r}: {item} is {value:g}, so {NEEDED[item]}")


def _power_faults(plant: Plant) -> Iterator[str]:
    """Pumps and compressors that no wire reaches, in a plant with a power source."""
    wired = {pipe.end for pipe in plant.connections if pipe.type == POWER_LINK}
    kinds = {each.id: _ROWS[each.type]["english"] for each in plant.devices if each.type in _ROWS}
    if "power source" in kinds.values():
        for name, kind in kinds.items():
            if kind in ("pump", "compressor") and Port(name, 2) not in wired:
                yield f"{kind} {name!r} without power: no wire leads to its port 2"


def _circuit_faults(plant: Plant) -> Iterator[str]:
    nets = _Nets(plant)
    cooled = {spot for spots, _ in nets.circuits() if SINKS & {nets.english(name) for name, _ in spots} for spot in spots}
    for spots, pipes in nets.circuits():
        kinds = {nets.english(device) for device, _ in spots}
        named = f"the circuit of {sorted(device for device, _ in spots)[0]!r}"
        copper = any(family.startswith("copper") for family in _families(pipes))
        if kinds & set(REFRIGERATION) and not copper:
            yield f"{named}: no copper pipe, so this circuit is water"
        if "compressor" in kinds and "condenser" not in kinds:
            yield f"{named}: no heat sink: it has a compressor and no condenser"
    for device in plant.devices:
        if _ROWS.get(device.type, {}).get("english") == "condenser" and (device.id, 1) not in cooled:
            yield f"condenser {device.id!r}: no heat sink: nothing on its second side takes the heat"


def physics_faults(plant: Plant, start: Start) -> list[str]:
    """What cannot work, a line each. `start` has the values of devices that are not those of the catalogue."""
    return [*_item_faults(plant, start), *_circuit_faults(plant), *_power_faults(plant)]
