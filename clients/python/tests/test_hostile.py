"""Documents with one wrong thing each: what the service would store otherwise than written, the client refuses."""

from __future__ import annotations

import copy
import json
import math
from typing import Any, Iterator

import pytest

from host import Host
from vornserver import Plant, PlantError, Project, Server
from vornserver.interface import CATALOGUE, DATA

TYPES = {row["english"]: row["VornModuleID"] for row in CATALOGUE["types"]}
DEFINITIONS = DATA["schemas"]["project_document.schema.json"]["$defs"]
GOOD: dict[str, list[dict[str, Any]]] = {
    "DeviceInfo": [
        {"InstanceID": "pump", "VornModuleID": TYPES["pump"], "PositionX": 4.0, "PositionZ": 3.5, "RoomID": "hall"},
        {"InstanceID": "tank", "VornModuleID": TYPES["expansion tank"], "PositionX": 2.0},
        {"InstanceID": "hall", "VornModuleID": TYPES["room"]},
        {"InstanceID": "node", "VornModuleID": 3000, "FluidType": 0, "PositionX": 8.0}],
    "ConnectionInfo": [
        {"ConnectionID": "pipe", "StartDeviceInstanceID": "tank", "StartPortID": "1", "EndDeviceInstanceID": "pump",
         "EndPortID": "0", "Length": 2.5, "RdcNumber": 3, "StartPortSize": {"x": 0.1, "y": 0.1},
         "EndPortSize": {"x": 0.1, "y": 0.1}},
        {"ConnectionID": "way", "StartDeviceInstanceID": "pump", "StartPortID": "1", "EndDeviceInstanceID": "node"}]}
VALUES: list[Any] = [
    None, True, False, 0, 1, -1, 5, 0.0, 1.5, 2.0, -2.5, 1e-320, 1e300, 2**31, 2**53 + 1, 2**63, "", "0", "1", "2.9", " 1",
    "-1", "16", "nan", "x" * 38, "房" * 13, "a\0b", "tank", [], [1], {}, {"x": 1}, {"x": -0.1, "y": 0.1},
    {"x": 0.1, "y": "0.1"}, {"x": 0.123, "y": 0.123}]


def variants() -> Iterator[tuple[str, Any]]:
    """Each member of a device, a node and a connection with each value, left out, and misspelt; and wrong wholes."""
    for kind, at, definition in (("DeviceInfo", 0, "device"), ("DeviceInfo", 3, "device"),
                                 ("ConnectionInfo", 0, "connection")):
        for member in DEFINITIONS[definition]["properties"]:
            for value in VALUES:
                changed = copy.deepcopy(GOOD)
                changed[kind][at][member] = value
                yield f"{kind}[{at}].{member} = {value!r}", changed
            for name in ("", member.lower(), member + "s"):
                changed = copy.deepcopy(GOOD)
                value = changed[kind][at].pop(member, 1)
                if name:
                    changed[kind][at][name] = value
                yield f"{kind}[{at}].{member} as {name!r}", changed
    for kind in GOOD:
        entries: list[Any] = [None, 1, "pump", [], {}]
        for entry in entries:
            yield f"{kind} with {entry!r}", {**GOOD, kind: [*GOOD[kind], entry]}
            yield f"{kind} is {entry!r}", {**GOOD, kind: entry}
        yield f"{kind} twice", {**GOOD, kind: GOOD[kind] * 2}
    wholes: list[Any] = [None, True, 1, "{}", [], [GOOD]]
    yield from ((f"the document is {whole!r}", whole) for whole in wholes)


def accepted(text: str) -> bool:
    try:
        Plant.of_text(text).check()
    except PlantError:
        return False
    return True


def written(document: Any) -> dict[str, Any]:
    """What a document says, element by element. Positions lie on a grid of 50 steps to a unit and keep their order, so
    that modules stand clear of each other: their list's index counts in."""
    says: dict[str, Any] = {}
    for at, each in enumerate(document.get("DeviceInfo", [])):
        number = each.get("DeviceID", each.get("VornModuleID"))
        node = 3000 <= number < 4000
        places = [math.trunc(each.get(f"Position{axis}", 0) * 50) + (0 if node else at * 5) for axis in "XZ"]
        # Rooms stand in a column of their own.
        says[str(each["InstanceID"])] = (number, *(places if number != TYPES["room"] else ()))
    for each in document.get("ConnectionInfo", []):
        says[each["ConnectionID"]] = (
            each.get("Length", 0.0), each.get("RdcNumber", 0),
            {1000 * each.get(f"{end}PortSize", {"x": 0.05})["x"] for end in ("Start", "End")},
            each["StartDeviceInstanceID"], each["EndDeviceInstanceID"])
    return says


def stored(project: Project, document: Any) -> dict[str, Any]:
    """The same, of what the service made of it."""
    topology = project.topology()
    names = {each.id: each.instance_id for each in topology.elements}
    says: dict[str, Any] = {}
    for each in topology.elements:
        if each.instance_id not in [it["ConnectionID"] for it in document.get("ConnectionInfo", [])]:
            places = [round(each.x * 50) - 120, round(each.z * 50)] if each.vorn_module_id != TYPES["room"] else []
            says[each.instance_id] = (each.vorn_module_id, *places)
            continue
        items = {row["Item"]: row["Sets"][0] for row in project.cache_values(each.instance_id)}
        says[each.instance_id] = (
            items["PL"], items["ElbowNb"], {items["D"]},
            *(names[link.start] for link in topology.links if link.end == each.id),
            *(names[link.end] for link in topology.links if link.start == each.id))
    return says


def test_nothing_is_stored_otherwise_than_written() -> None:
    every = list(variants())
    taken = [(name, document) for name, document in every if accepted(json.dumps(document))]
    assert len(every) > 900 and 30 < len(taken) < len(every) - 300, len(taken)
    wrong, lost = [], []
    with Host() as host, Server(host.address.removesuffix("/api")) as server, server.create("HOSTILE") as project:
        for name, document in taken:
            try:
                project.send(document)
            except PlantError:  # of a type that the engine turned out not to have
                lost.append(name)
                continue
            if stored(project, document) != written(document):
                wrong.append((name, written(document), stored(project, document)))
    assert wrong == []
    assert all("VornModuleID" in name for name in lost) and len(lost) == 4, lost


# Texts of JSON that a parsed document does not show.
@pytest.mark.parametrize("change", [
    ('"Length": 2.5', '"Length": 5'), ('"Length": 2.5', '"Length": 2.5, "Length": 3.5'), ('"Length": 2.5', '"Length": NaN'),
    ('"RdcNumber": 3', '"RdcNumber": 3.0'), ('"FluidType": 0', '"FluidType": 0.0'), ('"Length": 2.5', '"Length": 1e999'),
    ('{"InstanceID": "pump"', '{"InstanceID": "tank", "InstanceID": "pump"')])
def test_texts_that_the_service_reads_otherwise(change: tuple[str, str]) -> None:
    text = json.dumps(GOOD)
    assert accepted(text) and change[0] in text and not accepted(text.replace(*change))
