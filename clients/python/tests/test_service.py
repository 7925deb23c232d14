"""The client against a real service: every method, what it gives and what it raises."""

from __future__ import annotations

import json
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any, Callable, Iterator

import pytest

from api.description import load, meaning_of
from host import Host
from vornserver import (
    BatchError, Plant, PlantError, Project, Server, ServiceError, ServiceNotFound, Topology, VerdictError)
from vornserver.errors import KINDS
from vornserver.interface import COMMANDS, DATA, VERSION

REPOSITORY = Path(__file__).resolve().parents[3]
PUMP = 2601010000011


@pytest.fixture(scope="module")
def host() -> Iterator[Host]:
    with Host() as host:
        yield host


@pytest.fixture
def server(host: Host) -> Iterator[Server]:
    with Server(host.address.removesuffix("/api")) as server:
        yield server
        server.put("", "Close")


@pytest.fixture
def project(server: Server) -> Project:
    return server.create("Plant1")


def small_plant() -> Plant:
    plant = Plant()
    tank = plant.device("tank", "expansion tank")
    pump = plant.device("pump", "水泵", 4, 0)
    supply, back = plant.node("supply", 8, 0), plant.node("back", 8, 6)
    room = plant.device("study", "room")
    radiator = plant.device("radiator", "radiator", 12, 3, room=room)
    for start, end in ((tank.port(1), pump.port(0)), (pump.port(1), supply.port(0)), (supply.port(8), radiator.port(0)),
                       (radiator.port(1), back.port(0)), (back.port(8), tank.port(0))):
        plant.connect(start, end, length=4, size=0.05)
    return plant


def test_no_command_is_missing() -> None:
    for command in COMMANDS.values():
        target = command.entry["target"]
        owners: list[type] = [Server] if target in ("newProject", "directory") else [Project]
        assert all(callable(getattr(owner, command.entry["method"], None)) for owner in owners), command.id
    assert set(KINDS) == set(DATA["interface"]["kinds"])
    assert f'version = "{VERSION}"' in (REPOSITORY / "clients/python/pyproject.toml").read_text(encoding="utf-8")


def test_replies_mean_what_the_description_says() -> None:
    description = load()
    replies = [(command, example) for command in description.commands for example in command["examples"]]
    for command, example in replies:
        reply = example.get("reply", "")
        text = reply if isinstance(reply, str) else "\n".join(reply)
        if "reply" in example:
            expected = meaning_of(description, command, text)
            mine = COMMANDS[command["id"]].meaning(text, example["request"].get("messages"))
            assert expected is not None
            assert mine.failure == (expected.failure or "") or DATA["failures"][mine.failure]["text"] == text
    assert len(replies) > 80


# A session that calls every method; what it gives, or a test of it.
SESSION: list[tuple[str, tuple[Any, ...], dict[str, Any], Any]] = [
    ("add_module", (PUMP, "水泵"), {"position_x": 2}, "MOD0"),
    ("add_node", (3000, "FLUID"), {}, "NOD0"),
    ("add_link", ("MOD0", "NOD0"), {"f_port_nb": 1}, ["LNK0"]),
    ("move", ("MOD0",), {"position_x": 3, "position_z": 1}, None),
    ("delete", ("LNK0",), {}, None),
    ("clear", (), {}, None),
    ("send", (small_plant(),), {}, None),
    ("check", (), {}, None),
    ("topology", (), {}, lambda told: isinstance(told, Topology) and len(told.branches) == 3),
    ("send_script", ("x = 1",), {}, "OK"),
    ("set_cache_value", ("pump", 1), {"row": 0, "value": 12}, None),
    ("cache_values", ("pump",), {}, lambda told: told[0]["Sets"][0] == 12.0),
    ("run", (), {}, None),
    ("pause", (), {}, None),
    ("step", (), {}, None),
    ("flow", ("pump",), {}, lambda told: isinstance(told, float) and told > 0),
    ("pressure", ("pump",), {}, lambda told: isinstance(told, float)),
    ("temperature", ("pump",), {}, lambda told: isinstance(told, float)),
    ("stop", (), {}, None),
    ("save_cache", (2,), {}, None),
    ("load_cache", (2,), {}, None),
    ("add_variable", ("Mine",), {}, None),
    ("write", ("Mine", -2.5), {}, None),
    ("read", ("Mine",), {}, -2.5),
    ("write_batch", ({"PLANT1_Mine": 7},), {}, None),
    ("read_batch", (["PLANT1_Mine", "Mine"],), {}, {"PLANT1_Mine": 7.0, "Mine": 7.0}),
    ("delete_variable", ("Mine",), {}, None),
    ("set_run_value", ("study",), {"row": 0, "value": 19.5}, None),
    ("room", ("study",), {}, lambda told: told["InsideTemperature"] == 19.5),
    ("run_values", ("study",), {}, lambda told: told[0]["Value"] == 19.5),
    ("set_value", ("study", 1), {"row": 1, "value": "-5"}, None),
    ("element_variables", ("study",), {}, lambda told: told[1]["Value"] == -5.0),
    ("names", ("pump",), {}, lambda told: told[:2] == ["MOD1_Head", "MOD1_Power"]),
    ("save_element", ("pump", 1), {}, None),
    ("load_element", ("pump", 1), {}, None),
    ("set_important", ("pump", "Head"), {}, None),
    ("important", (), {}, [{"InstanceID": "pump", "Important": "Head"}]),
    ("picture", (), {}, lambda told: "<svg" in told and "</svg>" in told),
    ("chart", (), {}, lambda told: "<svg" in told),
    ("performance", (), {}, lambda told: "COP" in told["data"]),
    ("holds_project", (), {}, True),
    ("put", ("Step",), {}, "OK"),
    ("close", (), {}, None),
    ("holds_project", (), {}, False),
]


def test_every_method_does_what_it_is_for(project: Project) -> None:
    called = {"create", "open", "runs_from"}  # of Server: below
    for method, arguments, options, expected in SESSION:
        told = getattr(project, method)(*arguments, **options)
        assert expected(told) if callable(expected) else told == expected, (method, told)
        called.add(method)
    assert {command.entry["method"] for command in COMMANDS.values()} <= called


def test_batches_are_one_request_and_tell_what_failed(project: Project) -> None:
    project["GSeries"] = [1, 2, 3]
    assert project.read(["GStep", "GSeries"]) == {"GStep": 0, "GSeries": [1.0, 2, 3, 0, 0, 0, 0, 0]}
    assert isinstance(project["GStep"], int) and isinstance(project["GTemp"], float) and project.read([]) == {}
    with pytest.raises(BatchError) as raised:
        project.read(["GTemp", "NoSuch"])
    assert (list(raised.value.failures), raised.value.values) == (["NoSuch"], {"GTemp": 0.0})
    with pytest.raises(BatchError):
        project.write_batch({"NoSuch": 1, "GTemp": 9})
    samples = list(project.watch(["GTemp", "NoSuch"], every=0.01, count=3))
    assert [sample["GTemp"] for sample in samples] == [9.0] * 3
    assert all(isinstance(sample["NoSuch"], ServiceError) for sample in samples)


REFUSALS: list[tuple[Callable[[Project], Any], str, str]] = [
    (lambda it: it.server.create("PLANT1"), "state", "projectOpen"),
    (lambda it: it.server.create("no name"), "field", "projectName"),
    (lambda it: it["NoSuch"], "missing", "variableUnknown"),
    (lambda it: it.server.project("NONE").clear(), "address", "noProject"),
    (lambda it: it.flow("pump"), "address", "noElement"),
    (lambda it: it.add_module(PUMP, "阀门"), "content", "moduleName"),
    (lambda it: it.send({"DeviceInfo": [{"InstanceID": "x" * 38, "VornModuleID": PUMP}]}), "format", "documentFormat"),
    (lambda it: it.send_script("x = = 1"), "engine", "scriptFault"),
    (lambda it: it.set_run_value("NOD0", value="0" * 256), "field", "valueLong"),
    (lambda it: it.set_important("NOD0", "x"), "content", "kindRefused"),
    # Two failures have this text: what fits the schema is refused for the element, what does not for the number.
    (lambda it: it.save_element("JMP0", 1), "content", "kindRefused"),
    (lambda it: it.call("RunToCache", "PLANT1_NOD0", 9), "field", "setNumber"),
]


def test_refusals_carry_the_words_and_their_kind(project: Project) -> None:
    project.add_node(3000, "FLUID")
    for act, kind, failure in REFUSALS:
        with pytest.raises(KINDS[kind]) as raised:
            act(project)
        assert (raised.value.kind, raised.value.failure) == (kind, failure)
        assert raised.value.text.rstrip() in str(raised.value) and raised.value.todo


def test_a_verdict_tells_where(project: Project) -> None:
    document = json.loads((REPOSITORY / "examples/cold_store_faulty.json").read_text(encoding="utf-8"))
    project.send(document)
    with pytest.raises(VerdictError) as raised:
        project.check()
    assert raised.value.details == {"branch": "2", "module": "MOD10", "aisle": "0", "type": "25092119192771617"}
    assert project.topology().modules[10].instance_id == "air cooler 2"


def test_find(host: Host, server: Server, project: Project) -> None:
    address = host.address.removesuffix("/api")
    places: list[dict[str, Any]] = [{}, {"address": address}, {"holding": "PLANT1"}, {"directory": str(host.folder)}]
    for place in places:
        with Server.find(**place) as found:
            assert found.address == address or not place  # another service may stand before it
    nowhere: list[dict[str, Any]] = [{"address": address, "holding": "NONE"}, {"address": "127.0.0.1:1"},
                                     {"address": address, "directory": "/none"}]
    for place in nowhere:
        with pytest.raises(ServiceNotFound):
            Server.find(**place)
    assert server.open("PLANT1").name == "PLANT1" and server.runs_from(host.root)


def test_a_connection_is_kept_and_renewed(server: Server, project: Project) -> None:
    before = server.connections
    with ThreadPoolExecutor(4) as threads:  # each thread gets the reply to its own request
        values = list(threads.map(project.read, ["GTemp", "GStep"] * 125))
    assert [type(each) for each in values] == [float, int] * 125
    assert 2 <= server.connections - before <= 3


def test_a_plant_comes_back_as_its_topology(project: Project) -> None:
    project.send(small_plant())
    topology = project.topology()
    assert {each.instance_id: each.id for each in topology.elements if not each.instance_id.startswith("pipe")} == {
        "tank": "MOD0", "pump": "MOD1", "study": "MOD2", "radiator": "MOD3", "supply": "NOD0", "back": "NOD1"}
    assert topology.nets == [{"NOD0", "NOD1"}]
    assert ("MOD1", 0) in topology.branches[0].passages
    project.delete("study")  # a number is free now, so that places do not tell numbers any more
    assert next(each.id for each in project.topology().modules if each.instance_id == "radiator") == "MOD3"
    networkx = pytest.importorskip("networkx")
    graph = project.topology().graph()
    assert networkx.is_directed(graph) and graph.nodes["MOD3"]["instance_id"] == "radiator"
    assert networkx.has_path(graph, "MOD0", "NOD1")


def test_a_faulty_plant_is_not_sent(project: Project) -> None:
    plant = small_plant()
    plant.connect(plant.devices[0].port(0), plant.devices[1].port(0))
    with pytest.raises(PlantError):
        project.send(plant)
    assert project.topology().modules == []
