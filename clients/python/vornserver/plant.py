"""Makes project documents from devices and connections, checks them, and reads them back."""

from __future__ import annotations

import difflib
import json
from collections import Counter
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any, Mapping

from vornserver.errors import PlantError
from vornserver.fittings import MILLIMETRES, Size, fitting_of, port_size
from vornserver.interface import CATALOGUE, PROJECT_DOCUMENT

NODE_KINDS = [str(each["NodeName"]) for each in CATALOGUE["nodes"]]
NODE_IDS = range(3000, 4000)
MODULES_ABOVE = 5000
NODE_PORTS = 8
# An air outlet stands in the list a second time under this number, for its room.
AIR_OUTLET_IN_ROOM = 12
# The least length, in metres, that the service stores.
SHORTEST = 1e-6

_TYPES = {str(row[key]): row for row in CATALOGUE["types"] for key in ("VornModuleID", "DeviceName", "english")}


def type_id(told: int | str) -> int:
    """The number of a type, told as itself or by its name in the catalogue: 水泵 or pump. Raises ValueError."""
    if isinstance(told, int):
        return told
    if told not in _TYPES:
        close = difflib.get_close_matches(told, _TYPES)
        raise ValueError(f"no type of the catalogue is called {told!r}" + (f"; close: {', '.join(close)}" if close else ""))
    return int(_TYPES[told]["VornModuleID"])


def rounded_from(number: int) -> str:
    """Why a type may be unknown: it is what a program that carries numbers as doubles makes of another."""
    near = [row["english"] for row in CATALOGUE["types"] if float(row["VornModuleID"]) == float(number)]
    return f"; a program that reads numbers as doubles makes it of that of a {' or '.join(near)}" if near else ""


@dataclass(frozen=True)
class Port:
    """A port of a device: one end of a connection."""

    device: str
    number: int = 0


@dataclass(frozen=True)
class Device:
    """A module, or a node where `type` is 3000 to 3999."""

    id: str
    type: int
    x: float = 0.0
    z: float = 0.0
    room: str = "0"
    model: str = ""
    kind: int = 1
    """Of a node what it joins: 0 fluid, 1 information, 2 power, 3 mechanics."""

    def port(self, number: int = 0) -> Port:
        """An end for a connection. Which port of a node it is, the service chooses itself."""
        return Port(self.id, number)

    @property
    def is_node(self) -> bool:
        return self.type in NODE_IDS

    def entry(self) -> dict[str, Any]:
        """The entry of a document."""
        entry: dict[str, Any] = {"InstanceID": self.id, "VornModuleID": self.type}
        if self.is_node:
            entry["FluidType"] = self.kind
        entry.update(PositionX=self.x, PositionZ=self.z)
        return entry | {key: value for key, value, default in (("RoomID", self.room, "0"), ("ModelID", self.model, ""))
                        if value != default}


@dataclass(frozen=True)
class Connection:
    """A pipe or duct from an outlet to an inlet; `size` and `end_size` are those of the two ports."""

    id: str
    start: Port
    end: Port
    length: float = 0.0
    elbows: int = 0
    size: Size | None = None
    end_size: Size | None = None
    type: int = 1
    material: int = 0

    def entry(self) -> dict[str, Any]:
        """The entry of a document."""
        entry: dict[str, Any] = {"ConnectionID": self.id, "Length": self.length}
        for end, port, size in (("Start", self.start, self.size), ("End", self.end, self.end_size)):
            entry[f"{end}DeviceInstanceID"] = port.device
            entry[f"{end}PortID"] = str(port.number)
            if size is not None:
                x, y = port_size(size)
                entry[f"{end}PortSize"] = {"x": x, "y": y}
        return entry | {key: value for key, value, default in (
            ("RdcNumber", self.elbows, 0), ("ConnectionType", self.type, 1),
            ("ConnectionMaterialType", self.material, 0)) if value != default}


def _size_of(entry: Mapping[str, Any] | None) -> Size | None:
    return None if entry is None else (float(entry.get("x", 0.0)), float(entry.get("y", 0.0)))


@dataclass
class Plant:
    """A plant as its source: what `Project.send` takes, and what can be written into a file and read back."""

    devices: list[Device] = field(default_factory=list)
    connections: list[Connection] = field(default_factory=list)

    def device(self, id: str, type: int | str, x: float = 0.0, z: float = 0.0, *, room: Device | str = "0",
               model: str = "") -> Device:
        """Adds a module of a type that is told by its number or its name in the catalogue."""
        place = room.id if isinstance(room, Device) else room
        self.devices.append(Device(id, type_id(type), float(x), float(z), place, model))
        return self.devices[-1]

    def node(self, id: str, x: float = 0.0, z: float = 0.0, *, kind: str = "FLUID") -> Device:
        """Adds a node: FLUID, INFO, POWER or MECH. It takes eight connections in and eight out."""
        if kind not in NODE_KINDS:
            raise ValueError(f"a node is one of {', '.join(NODE_KINDS)}, not {kind!r}")
        number = NODE_KINDS.index(kind)
        self.devices.append(Device(id, NODE_IDS[0] + number, float(x), float(z), kind=number))
        return self.devices[-1]

    def connect(self, start: Port, end: Port, *, id: str = "", length: float = 0.0, elbows: int = 0,
                size: Size | None = None, end_size: Size | None = None, type: int = 1) -> Connection:
        """Adds a connection from an outlet to an inlet; `length` in metres, `end_size` as `size` where it is not given.
        Without an `id` it is called pipe and a number. Raises ValueError for a nominal size that there is not."""
        for each in (size, end_size):
            if isinstance(each, str):
                port_size(each)
        name = id or self._free_name()
        self.connections.append(Connection(name, start, end, float(length), elbows, size,
                                           size if end_size is None else end_size, type))
        return self.connections[-1]

    def _free_name(self) -> str:
        taken = {each.id for each in self.devices} | {each.id for each in self.connections}
        return next(name for number in range(len(taken) + 1) if (name := f"pipe {number + 1}") not in taken)

    def faults(self) -> list[str]:
        """What the service would not take as it is meant, a line each: it passes over most of it without a word."""
        return (PROJECT_DOCUMENT.faults(self.document()) + self._identity_faults() + self._end_faults()
                + [fault for each in self.connections for fault in _fitting_faults(each)])

    @property
    def foreign(self) -> list[Device]:
        """Devices of types that the catalogue does not have. Another engine may know them; where the engine does not, the
        service leaves them out and says OK."""
        return [each for each in self.devices if not each.is_node and each.type > MODULES_ABOVE
                and str(each.type) not in _TYPES]

    def check(self) -> None:
        """Raises PlantError where there are faults."""
        if faults := self.faults():
            raise PlantError(faults)

    def _identity_faults(self) -> list[str]:
        faults = []
        seen: set[str] = set()
        for kind, id in ([("device", each.id) for each in self.devices if each.type != AIR_OUTLET_IN_ROOM]
                         + [("connection", each.id) for each in self.connections]):
            if not id:
                faults.append(f"a {kind} has no identity")
            elif id in seen:
                faults.append(f"{kind} {id!r}: another element has this identity")
            seen.add(id)
        for each in self.devices:
            if not each.is_node and each.type <= MODULES_ABOVE and each.type != AIR_OUTLET_IN_ROOM:
                faults.append(f"device {each.id!r}: {each.type} is no type of a module or node")
            if each.is_node and each.kind not in range(len(NODE_KINDS)):
                faults.append(f"device {each.id!r}: {each.kind} is no kind of a node")
        return faults

    def _end_faults(self) -> list[str]:
        devices = {each.id: each for each in self.devices}
        faults = []
        used: Counter[tuple[str, int, bool]] = Counter()
        for each in self.connections:
            for port, outlet in ((each.start, True), (each.end, False)):
                if port.device not in devices:
                    faults.append(f"connection {each.id!r}: there is no device {port.device!r}")
                    continue
                device = devices[port.device]
                taken = (device.id, -1, outlet) if device.is_node else (device.id, port.number, False)
                used[taken] += 1
                if fault := _port_fault(device, port.number, outlet, used[taken]):
                    faults.append(f"connection {each.id!r}: {fault}")
        rooms = [each for each in self.devices if each.room not in ("", "0")]
        return faults + [f"device {each.id!r}: there is no room {each.room!r}" for each in rooms
                         if each.room not in devices]

    def document(self, check: bool = False) -> dict[str, Any]:
        """The project document. Raises PlantError where it is to be checked and there are faults."""
        if check:
            self.check()
        return {"DeviceInfo": [each.entry() for each in self.devices],
                "ConnectionInfo": [each.entry() for each in self.connections]}

    def save(self, path: str | Path) -> None:
        """Writes the document into a file."""
        text = json.dumps(self.document(check=True), ensure_ascii=False, indent=1)
        Path(path).write_text(text + "\n", encoding="utf-8")

    @classmethod
    def load(cls, path: str | Path) -> Plant:
        """Reads a document from a file. Raises PlantError, OSError, and ValueError for what is no JSON."""
        return cls.of_text(Path(path).read_text(encoding="utf-8"))

    @classmethod
    def of_text(cls, text: str) -> Plant:
        """Reads a document from its text. Raises PlantError, also for a member that is there twice, and ValueError for
        what is no JSON."""
        return cls.of_document(json.loads(text, object_pairs_hook=members_once))

    @classmethod
    def of_document(cls, document: Mapping[str, Any]) -> Plant:
        """Reads a document. Members that the format does not have are left behind. Raises PlantError for one that does
        not keep the schema; whether the plant makes sense, `faults` tells."""
        if faults := PROJECT_DOCUMENT.faults(document):
            raise PlantError(faults)
        return cls([_device_of(entry) for entry in document.get("DeviceInfo", [])],
                   [_connection_of(entry) for entry in document.get("ConnectionInfo", [])])


def _fitting_faults(connection: Connection) -> list[str]:
    """What of a connection's pipe would be another than written."""
    faults = []
    if 0 < connection.length < SHORTEST:
        faults.append(f"connection {connection.id!r}: a length has six decimals, so this one is stored as 0")
    if (connection.size, connection.end_size) != (None, None):
        start, end = (port_size(each or 0.0) for each in (connection.size, connection.end_size))
        if fitting_of(start, end) is None:
            faults.append(f"connection {connection.id!r}: no fitting leads from {_shown(start)} to {_shown(end)}, so that"
                          " it would be a DN50 cast-iron pipe")
    return faults


def _shown(size: tuple[float, float]) -> str:
    return " x ".join(f"{each * MILLIMETRES:g}" for each in size) + " mm"


def members_once(pairs: list[tuple[str, Any]]) -> dict[str, Any]:
    """An object of JSON, for json.loads. Raises PlantError where a member is there twice."""
    members = dict(pairs)
    if len(members) != len(pairs):
        twice = next(name for name, count in Counter(name for name, _ in pairs).items() if count > 1)
        raise PlantError([f"{twice} is there twice in one object, of which the service reads one"])
    return members


def _port_fault(device: Device, number: int, outlet: bool, used: int) -> str:
    """Why the connection cannot end there that uses the port as the `used`-th; a type that the catalogue does not have
    may have any ports."""
    way = "outlet" if outlet else "inlet"
    if device.is_node:
        return "" if used <= NODE_PORTS else f"{device.id!r} has {NODE_PORTS} {way}s"
    if used > 1:
        return f"port {number} of {device.id!r} is taken"
    if str(device.type) in _TYPES:
        ports = _TYPES[str(device.type)]["ports"]
        if number >= len(ports) or ports[number]["direction"] != ("out" if outlet else "in"):
            return f"port {number} of {device.id!r} is no {way}"
    return ""


def _device_of(entry: Mapping[str, Any]) -> Device:
    return Device(str(entry["InstanceID"]), int(entry.get("DeviceID", entry.get("VornModuleID"))),
                  float(entry.get("PositionX", 0.0)), float(entry.get("PositionZ", 0.0)), str(entry.get("RoomID", "0")),
                  entry.get("ModelID", ""), int(entry.get("FluidType", 1)))


def _connection_of(entry: Mapping[str, Any]) -> Connection:
    ports = [Port(entry[f"{end}DeviceInstanceID"], int(entry.get(f"{end}PortID", "0"))) for end in ("Start", "End")]
    return Connection(entry.get("ConnectionID", ""), ports[0], ports[1], float(entry.get("Length", 0.0)),
                      int(entry.get("RdcNumber", 0)), _size_of(entry.get("StartPortSize")),
                      _size_of(entry.get("EndPortSize")), int(entry.get("ConnectionType", 1)),
                      int(entry.get("ConnectionMaterialType", 0)))
