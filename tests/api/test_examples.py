"""Runs the examples of the description, in order, against a real service. A family has a host of its own, and
all families run at once, since most of their time is waits that the service makes."""

from __future__ import annotations

import json
import time
from concurrent.futures import Future, ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Callable

import jsonschema  # type: ignore[import]
import pytest

from api.description import API, REPOSITORY, Json, form_matches, load, meaning_of, schema_of
from api.openapi import openapi_document
from host import Host

DESCRIPTION = load()
FAMILIES = [family.name for family in DESCRIPTION.families]
PLANTS = sorted((REPOSITORY / "examples").glob("*.json"))
SCHEMAS = {path.name.removesuffix(".schema.json"): json.loads(path.read_text(encoding="utf-8"))
           for path in (API / "schemas").glob("*.json")}


@dataclass(frozen=True)
class Exchange:
    command: Json | None  # None for one that only prepares the ground
    example: Json
    reply: str
    seconds: float

    @property
    def expected(self) -> bool:
        if "replyForm" in self.example:
            return form_matches(self.example["replyForm"], self.reply)
        expected = self.example["reply"]
        return self.reply == (expected if isinstance(expected, str) else "\n".join(expected))

    @property
    def failure(self) -> str | None:
        meaning = meaning_of(DESCRIPTION, self.command or {}, self.reply)
        assert meaning is not None, f"a reply that the command does not have: {self.reply}"
        return meaning.failure


def file_name(path: Path) -> str:
    return path.name


def fits(schema: str, value: Any) -> str:
    """The fault of a value under a schema of `api/schemas/`, the empty text when it has none."""
    store = {each["$id"]: each for each in SCHEMAS.values()}
    resolver = jsonschema.RefResolver.from_schema(SCHEMAS[schema], store=store)
    validator = jsonschema.Draft202012Validator(SCHEMAS[schema], resolver=resolver)
    return "\n".join(error.message for error in validator.iter_errors(value))


OPENAPI = openapi_document(DESCRIPTION)


def fits_component(name: str, value: Any) -> bool:
    """Whether a value is valid under a component of the OpenAPI document."""
    schema = {"$ref": f"#/components/schemas/{name}", "components": OPENAPI["components"]}
    return bool(jsonschema.Draft202012Validator(schema).is_valid(value))


def filled(value: Any, host: Host | None) -> Any:
    """A request with what only the machine knows: files of the repository, and the server's directory."""
    if isinstance(value, dict):
        if "$file" in value:
            return json.loads((REPOSITORY / value["$file"]).read_text(encoding="utf-8"))
        return {key: filled(member, host) for key, member in value.items()}
    return value.replace("{root}", host.root) if isinstance(value, str) and host else value


def play(session: list[Json], commands: list[Json]) -> list[Exchange]:
    exchanges: list[Exchange] = []
    with Host() as host:

        def send(command: Json | None, example: Json) -> None:
            start = time.monotonic()
            if "body" in example:
                reply = host.post(example["body"])
            else:
                reply = host.send(filled(example["request"], host))
            exchanges.append(Exchange(command, example, reply, time.monotonic() - start))

        for example in session:
            send(None, example)
        for command in commands:
            for example in command["examples"]:
                for before in example.get("before", []):
                    send(None, before)
                send(command, example)
    return exchanges


def wrong_values(schema: Json) -> list[Any]:
    """A value of no type that a member could have, and those just beyond its limits."""
    beyond = []
    if "minimum" in schema and "maximum" in schema:
        step = 1 if schema["type"] == "integer" else 0.5
        beyond = [schema["minimum"] - step, schema["maximum"] + step]
    return [True, *beyond]


@dataclass(frozen=True)
class Refusal:
    """What a member was answered for a wrong value, and the failure that is described for a wrong type."""

    command: Json
    member: str
    value: Any
    reply: str
    described: str


def play_wrong_values() -> list[Refusal]:
    """Each member that is told to be refused, with wrong values."""
    results: list[Refusal] = []
    with Host() as host:
        host.send({"command": "Create", "name": "PLANT1"})
        element = host.send({"command": "AddNode", "name": "PLANT1",
                             "messages": {"VornModuleID": 3000, "NodeName": "FLUID"}})
        for command in DESCRIPTION.commands:
            members = (schema_of(command) or {}).get("properties", {})
            name = "PLANT1" if command["target"] == "project" else "PLANT1_" + element
            for member, schema in members.items():
                if "x-wrongType" not in schema:
                    continue
                good = command["examples"][0]["request"]["messages"]
                described = DESCRIPTION.failures[schema["x-wrongType"]]["text"].replace("{member}", member)
                for value in wrong_values(schema):
                    reply = host.send({"command": command["word"], "name": name, "messages": {**good, member: value}})
                    results.append(Refusal(command, member, value, reply, described))
    return results


def play_reports() -> list[tuple[str, str]]:
    """The topology report of each plant of `examples/`."""
    with Host() as host:
        host.send({"command": "Create", "name": "PLANT1"})
        reports = []
        for path in PLANTS:
            document = path.read_text(encoding="utf-8")
            sent = host.post('{"command":"PjtSent","name":"PLANT1","messages":' + document + "}")
            assert sent == "OK"
            reports.append((path.name, host.send({"command": "PjtInfoChk", "name": "PLANT1"})))
    return reports


class Plays:
    """All hosts' work, begun at once; each test takes its part when it is done."""

    def __init__(self, pool: ThreadPoolExecutor) -> None:
        interface = DESCRIPTION.interface
        self.families: dict[str, Future[list[Exchange]]] = {
            family.name: pool.submit(play, family.session, family.commands) for family in DESCRIPTION.families}
        self.interface = pool.submit(play, interface["session"] + interface["examples"], [])
        self.wrong_values = pool.submit(play_wrong_values)
        self.reports = pool.submit(play_reports)

    def of_commands(self, family: str, keep: Callable[[Exchange], bool] = lambda exchange: True) -> list[Exchange]:
        return [exchange for exchange in self.families[family].result()
                if exchange.command is not None and keep(exchange)]


@pytest.fixture(scope="session")
def plays() -> Any:
    with ThreadPoolExecutor(len(FAMILIES) + 3) as pool:
        yield Plays(pool)


def succeeded(exchange: Exchange) -> bool:
    return exchange.failure is None


@pytest.mark.parametrize("family", FAMILIES)
def test_examples_get_their_replies(family: str, plays: Plays) -> None:
    wrong = [(each.example, each.reply) for each in plays.families[family].result() if not each.expected]
    assert wrong == []


def test_examples_of_the_envelope_get_their_replies(plays: Plays) -> None:
    assert [(each.example, each.reply) for each in plays.interface.result() if not each.expected] == []


@pytest.mark.parametrize("family", FAMILIES)
def test_each_command_is_shown_to_succeed(family: str, plays: Plays) -> None:
    shown = {exchange.command["id"] for exchange in plays.of_commands(family, succeeded) if exchange.command}
    commands = next(each.commands for each in DESCRIPTION.families if each.name == family)
    assert shown == {command["id"] for command in commands}


@pytest.mark.parametrize("family", FAMILIES)
def test_requests_and_json_replies_fit_their_schemas(family: str, plays: Plays) -> None:
    for exchange in plays.of_commands(family, succeeded):
        command, example = exchange.command, exchange.example
        assert command is not None
        fault = fits("envelope", filled(example["request"], None))
        assert bool(fault) == example.get("bad", False), (example, fault)
        assert fits_component(f"{command['id']}Request", filled(example["request"], None)) == (not fault), example
        if command["result"] == "json":
            name = command["schema"]["$ref"].removeprefix("../schemas/").removesuffix(".schema.json")
            assert fits(name, json.loads(exchange.reply)) == "", exchange.reply
            assert fits_component(f"{command['id']}Reply", json.loads(exchange.reply)), exchange.reply


@pytest.mark.parametrize("family", FAMILIES)
def test_commands_wait_as_described(family: str, plays: Plays) -> None:
    """Only the waits that are always made are held, and only from below: a busy machine takes longer."""
    for exchange in plays.of_commands(family, succeeded):
        waits = exchange.command["waits"] if exchange.command else []
        least = sum(wait["milliseconds"] for wait in waits if wait["when"] == "always") / 1000
        assert exchange.seconds >= least, exchange.example["request"]


def test_wrong_members_get_the_described_failure(plays: Plays) -> None:
    results = plays.wrong_values.result()
    of_type = [each for each in results if each.value is True]
    assert len(of_type) > 15 and len(results) > 40
    assert [each for each in of_type if each.reply != each.described] == []
    for each in results:
        meaning = meaning_of(DESCRIPTION, each.command, each.reply)
        assert meaning is not None and meaning.failure is not None, (each.member, each.value, each.reply)


@pytest.mark.parametrize("path", PLANTS, ids=file_name)
def test_example_plants_are_documents(path: Path) -> None:
    assert fits("project_document", json.loads(path.read_text(encoding="utf-8"))) == ""


def test_reports_of_the_example_plants_fit_the_schema(plays: Plays) -> None:
    for name, report in plays.reports.result():
        topology = json.loads(report)
        assert fits("topology_report", topology) == "", name
        assert topology["BranchNb"] == len(topology["BranchInfo"]) > 0, name
        assert topology["DeviceNb"] == len(topology["DeviceInfo"]) > 0, name


def test_schemas_refuse_what_the_service_would_not_read_as_meant() -> None:
    devices: list[Json] = [{}, {"InstanceID": "a"}, {"InstanceID": "a" * 38, "VornModuleID": 1},
                           {"InstanceID": "a", "VornModuleID": 1.5}, {"InstanceID": "a", "DeviceID": 1, "FluidType": "0"}]
    ends = {"StartDeviceInstanceID": "a", "EndDeviceInstanceID": "b"}
    connections: list[Json] = [{"StartDeviceInstanceID": "a"}, {**ends, "StartPortID": 1}, {**ends, "EndPortID": "16"},
                               {**ends, "StartPortSize": [1, 2]}, {**ends, "Length": "5.0"}]
    bad: list[Json] = [{"DeviceInfo": [device]} for device in devices]
    bad += [{"ConnectionInfo": [connection]} for connection in connections]
    assert [value for value in bad if not fits("project_document", value)] == []
