"""Whole plants in one document, and what is judged of them."""

from __future__ import annotations

import json
import time
from pathlib import Path
from typing import Any, Callable, Iterator

import pytest

from host import Host
from vornserver import Plan, PlantError, Server, judge
from vornserver.plan import port_names
from vornserver.plant import type_id

TEXT = (Path(__file__).resolve().parents[3] / "examples/plans/chilled_water.json").read_text(encoding="utf-8")


@pytest.fixture(scope="module")
def server() -> Iterator[Server]:
    with Host() as host, Server(host.address.removesuffix("/api")) as server:
        yield server


def changed(change: Callable[[Any], Any]) -> str:
    document = json.loads(TEXT)
    change(document)
    return json.dumps(document)


def device(document: Any, name: str) -> Any:
    return next(each for each in document["devices"] if each["name"] == name)


def test_ports_have_names() -> None:
    assert port_names(type_id("pump")) == ["in", "out", "power"]
    assert port_names(type_id("condenser")) == ["in 1", "out 1", "in 2", "out 2"]
    assert port_names(type_id("expansion tank")) == ["in", "out"] and port_names(type_id("power source")) == ["out"]


def test_a_plan_cools(server: Server) -> None:
    with server.create("CHILL") as project:
        project.build(Plan.of_text(TEXT))
        project.check()
        project.run()
        end = time.monotonic() + 60
        while project["office.InsideTemperature"] > 28.9 and time.monotonic() < end:
            time.sleep(0.2)
        values = project.read_all()
        assert values["office.InsideTemperature"] <= 28.9 and 0 < values["COP"] and values["GTemp"] < 15
        assert values["chilled pump.Head"] == 18 and values["chilled pump.IM0_FLOW"] > 0
        project.stop()


# What is changed of a good plan, the stage at which that is found, and a word of the finding.
FINDINGS: list[tuple[Callable[[Any], Any], str, str]] = [
    (lambda it: device(it, "evaporator").update(area=3), "form", "no member area"),
    (lambda it: device(it, "evaporator")["start"].update(Aria=3), "form", "no item Aria, only Area"),
    (lambda it: device(it, "chilled pump").update(type="pumpe"), "form", "close: pump"),
    (lambda it: it["nets"][1]["links"][0].update(to="tower pump.inlet"), "form", "no port 'inlet', only in, out, power"),
    (lambda it: it["nets"][1]["links"][0].update(to="tower pumps.in"), "form", "there is no tower pumps.in"),
    (lambda it: it["nets"][2].update(size="DN51"), "form", "no fitting has the nominal size 'DN51'; close: DN"),
    (lambda it: it["nets"][0].update(size="DN25"), "form", "refrigerant needs a copper pipe"),
    (lambda it: it["nets"][2]["links"].pop(), "verdict", "incomplete"),
    (lambda it: it.update(script="goal = = 1"), "verdict", "unexpected symbol"),
    (lambda it: device(it, "evaporator").pop("start"), "physics", "Area is 0"),
    (lambda it: device(it, "chilled pump")["start"].update(Power=0), "physics", "pump 'chilled pump' without power"),
    (lambda it: device(it, "cooling tower").update(type="receiver", start={}), "physics", "no heat sink"),
    (lambda it: it["devices"].append({"name": "mains", "type": "power source"}), "physics", "no wire leads to its port 2"),
    (lambda it: it["nets"][0].update(fluid="water", size="DN25", links=[
        {**each, "size": "DN25"} for each in it["nets"][0]["links"]]), "physics", "no copper pipe, so this circuit is water"),
]


@pytest.mark.parametrize(("change", "stage", "word"), FINDINGS, ids=[row[2] for row in FINDINGS])
def test_what_is_wrong_is_found(server: Server, change: Callable[[Any], Any], stage: str, word: str) -> None:
    findings = judge(changed(change), server)
    assert (stage, True) in [(each.stage, word in each.text) for each in findings], findings
    assert not server.holds_project("VORNCHECK0")


def test_a_good_plan_has_no_findings(server: Server) -> None:
    assert judge(TEXT, server) == []
    with pytest.raises(PlantError):
        Plan.of_text(TEXT.replace('"script"', '"devices": [], "script"'))
