"""Holds the catalogue of the description to the stand-in's, by one plant that has a module of each type and a
node at each port."""

from __future__ import annotations

import json
from typing import Any

import pytest

from api.description import Json, load
from host import Host

CATALOGUE = load().catalogue
TYPES: list[Json] = CATALOGUE["types"]


def every_port(document: Json, number: int, type_: Json) -> None:
    for port, described in enumerate(type_["ports"]):
        node, module = (f"n{number}-{port}", "0"), (f"m{number}", str(port))
        start, end = (node, module) if described["direction"] == "in" else (module, node)
        document["DeviceInfo"].append({"InstanceID": node[0], "VornModuleID": 3000, "FluidType": 0})
        document["ConnectionInfo"].append({
            "ConnectionID": f"c{number}-{port}", "StartDeviceInstanceID": start[0], "StartPortID": start[1],
            "EndDeviceInstanceID": end[0], "EndPortID": end[1]})


@pytest.fixture(scope="module")
def answers() -> Any:
    document: Json = {"DeviceInfo": [], "ConnectionInfo": []}
    for number, type_ in enumerate(TYPES):
        document["DeviceInfo"].append({"InstanceID": f"m{number}", "VornModuleID": type_["VornModuleID"]})
        every_port(document, number, type_)
    with Host() as host:
        for command, messages in (("Create", ""), ("PjtSent", document)):
            assert host.send({"command": command, "name": "ALL", "messages": messages}) == "OK"
        report = json.loads(host.send({"command": "PjtInfoChk", "name": "ALL"}))
        variables = [json.loads(host.send({"command": "VarInfoGet", "name": f"ALL_m{number}"}))
                     for number in range(len(TYPES))]
        starts = [json.loads(host.send({"command": "VarCacheGet", "name": f"ALL_m{number}"}))
                  for number in range(len(TYPES))]
        nodes = json.loads(host.send({"command": "RunValueGet", "name": "ALL_n0-0"}))
        project = {name: host.send({"command": "Get", "name": f"ALL_{name}"})
                   for name in CATALOGUE["projectVariables"]}
        yield report, variables, starts, nodes, project


def test_names_items_and_port_values(answers: Any) -> None:
    report, variables, starts, nodes, project = answers
    names = {device["InstanceID"]: (device["VornModuleID"], device["DeviceName"]) for device in report["DeviceInfo"]}
    for number, type_ in enumerate(TYPES):
        assert names[f"m{number}"] == (type_["VornModuleID"], type_["DeviceName"])
        assert [row["Item"] for row in variables[number] if "Item" in row] == type_["items"]
        ports = [row["Name"].rsplit("_", 2)[1:] for row in variables[number] if "Port" in row]
        assert ports == [[f"IM{port}", value] for port in range(len(type_["ports"]))
                         for value in CATALOGUE["portValues"]]
        assert set(type_["items"]) <= set(CATALOGUE["items"])
        for row in starts[number]:
            assert row["Sets"] == 3 * [CATALOGUE["items"][row["Item"]].get("start", 0)]
    assert [row["Item"] for row in nodes] == CATALOGUE["nodeItems"]
    kinds = {"real": 0, "integer": 0, "list of reals": 7, "list of integers": 7}
    for name, variable in CATALOGUE["projectVariables"].items():
        assert project[name].count(",") == kinds[variable["kind"]]
        assert ("." in project[name]) == ("real" in variable["kind"])


def test_ports_are_of_the_described_side_flag_and_aisle(answers: Any) -> None:
    """A flagged port lies in the middle of a branch, with its aisle; any other is a branch's end."""
    report = answers[0]
    through, ends = set(), set()
    pipes = {f"MOD{number}" for number, device in enumerate(report["DeviceInfo"])
             if device["InstanceID"].startswith("c")}
    for branch in report["BranchInfo"]:
        assert "None" not in (branch["Front_InstanceID"], branch["Post_InstanceID"])
        through |= {each for entry in branch["InstanceID_AisleNb"] for each in entry.items() if each[0] not in pipes}
        ends |= {("out", branch["Front_InstanceID"], branch["FrontPort"]),
                 ("in", branch["Post_InstanceID"], branch["PostPort"])}
    described = [(f"MOD{number}", number_of_port, port) for number, type_ in enumerate(TYPES)
                 for number_of_port, port in enumerate(type_["ports"])]
    assert through == {(module, port["aisle"]) for module, _, port in described if port["flagged"]}
    assert {end for end in ends if end[1].startswith("MOD")} == {
        (port["direction"], module, number) for module, number, port in described if not port["flagged"]}
