"""The client in use: names of the document, subscriptions, asyncio, types, and what a with statement closes."""

from __future__ import annotations

import asyncio
import logging
import subprocess
import sys
import threading
from enum import IntEnum
from fractions import Fraction
from pathlib import Path
from typing import Any, Iterator

import pytest

from host import Host
from vornserver import (
    AsyncProject, AsyncServer, MessagesError, MissingError, Plan, PlantError, Project, Sample, Server)
from vornserver.interface import VERSION
from vornserver.values import text_of

CLIENT = Path(__file__).resolve().parents[1]
PLAN = CLIENT.parents[1] / "examples/plans/chilled_water.json"


@pytest.fixture(scope="module")
def host() -> Iterator[Host]:
    with Host() as host:
        yield host


@pytest.fixture
def address(host: Host) -> str:
    return host.address.removesuffix("/api")


@pytest.fixture
def project(address: str) -> Iterator[Project]:
    with Server(address) as server, server.create("PLANT1") as project:
        project.build(Plan.load(PLAN))
        yield project


def test_elements_are_known_by_their_own_names(project: Project) -> None:
    project["chilled pump.Head"] = 7
    assert project.read(["chilled pump.Head", "MOD7_Head", "MOD7.Head"]) == dict.fromkeys(
        ["chilled pump.Head", "MOD7_Head", "MOD7.Head"], 7.0)
    project.delete("compressor")  # its number is free, and the others keep theirs
    assert project["chilled pump.Head"] == 7 and "compressor.Power" not in project.read_all()
    for vacant in ("MOD0", "MOD77", "NOD3", "LNK999"):
        with pytest.raises(MissingError):
            project.delete(vacant)
    with pytest.raises(MissingError):
        project.read("nothing.Head")


def test_all_values_as_a_table(project: Project) -> None:
    pandas = pytest.importorskip("pandas")
    project["chilled pump.Head"] = 7
    assert isinstance(project.to_dataframe(), pandas.DataFrame)
    assert project.to_dataframe().loc["chilled pump", "Head"] == 7


class Mode(IntEnum):
    ON = 3


VALUES: list[tuple[Any, str, str]] = [
    (Mode.ON, "", "3"), (True, "", "1"), (Fraction(1, 2), "", "0.5"), (" 2.5", "", "2.5"), ([1, Mode.ON], "", "1,3"),
    (-3, "integer", "-3.5"), (3.0, "integer", "3"), (-3, "real", "-3"), ("1,2", "list of reals", "1,2")]
WRONG: list[tuple[Any, str]] = [
    ("abc", ""), ("", ""), ("1;2", ""), ("0x10", ""), ("1_0", ""), ("nan", ""), (float("inf"), ""), (None, ""), (1j, ""),
    ([], ""), ([1] * 9, ""), ([None], ""), (1.5, "integer"), (2**31, "integer"), ([1], "real"), (1, "list of reals")]


@pytest.mark.parametrize(("value", "kind", "text"), VALUES, ids=repr)
def test_values_are_written_as_they_are_meant(value: Any, kind: str, text: str) -> None:
    assert text_of(value, kind) == text


@pytest.mark.parametrize(("value", "kind"), WRONG, ids=repr)
def test_what_is_no_value_is_not_written(value: Any, kind: str) -> None:
    with pytest.raises(ValueError):
        text_of(value, kind)


def test_what_is_written_is_read(project: Project) -> None:
    project["GStep"] = -3  # an integer, which the service would make -2 of
    project["GCounts"] = [-1, 2]
    assert (project["GStep"], project.read_list("GCounts")[:3]) == (-3, [-1, 2, 0])
    with pytest.raises(ValueError):
        project["GSeries"] = 5
    with pytest.raises(MessagesError):
        project.add_node(3000, "fluid")  # type: ignore[arg-type]
    with pytest.raises(PlantError):
        project.send({"DeviceInfo": [{"InstanceID": "a", "VornModuleID": 3000}]})
    assert len(project.topology().modules) > 20


def test_a_with_statement_closes_what_it_opened(address: str) -> None:
    with Server(address) as server:
        with server.create("MINE"):
            for project in (server.open("MINE"), server.project("MINE")):
                with project:
                    pass
                assert server.holds_project("MINE")
        assert not server.holds_project("MINE")
        with server.open("MINE"):
            assert server.holds_project("MINE")
        assert not server.holds_project("MINE")


def test_one_poll_serves_all_subscriptions(project: Project, caplog: pytest.LogCaptureFixture) -> None:
    got: dict[str, list[Sample]] = {"one": [], "two": []}
    enough = threading.Event()

    def faulty(sample: Sample) -> None:
        raise RuntimeError("a fault of the user's")

    def two(sample: Sample) -> None:
        got["two"].append(sample)
        if len(got["two"]) == 3:
            enough.set()

    with caplog.at_level(logging.DEBUG, "vornserver"), project.poller(every=0.01) as poller:
        poller.subscribe(["GTemp"], faulty)
        first = poller.subscribe(["GTemp", "GSeries"], lambda sample: got["one"].append(sample))
        poller.subscribe(["GTemp", "NoSuch"], two)
        assert enough.wait(30)
        poller.unsubscribe(first)
    assert poller.polls >= 3 and len([each for each in caplog.records if "POST" in each.message]) == poller.polls
    assert got["one"][0]["GTemp"] == 0 and len(got["one"][0].list("GSeries")) == 8
    with pytest.raises(MissingError):
        got["two"][0]["NoSuch"]


def test_the_version_of_a_local_service_is_known(address: str, caplog: pytest.LogCaptureFixture,
                                                 monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr("vornserver.server.VERSION", "0.9.0")
    with Server.find(address) as server:
        assert server.version == VERSION and f"is of version {VERSION}, and this client of 0.9.0" in caplog.text
    assert Server("http://plant.example:33360").version == ""


def test_asyncio(address: str) -> None:
    async def work() -> list[float]:
        async with await AsyncServer.find(address) as server, await server.create("LOOP") as project:
            assert isinstance(project, AsyncProject)
            await project.build(Plan.load(PLAN))
            await project.load_cache(0)
            await project.write("GTemp", 4.5)
            both = await asyncio.gather(project.read("GTemp"), project.read("chilled pump.Head"))
            samples = [sample["GTemp"] async for sample in project.watch(["GTemp"], every=0, count=2)]
            return [*both, *samples, float(len((await project.topology()).links) > 0)]

    assert asyncio.run(work()) == [4.5, 18.0, 4.5, 4.5, 1.0]
    with Server(address) as server:
        assert not server.holds_project("LOOP")


SCRIPT = """
from vornserver import AsyncServer, Server

with Server.find() as server, server.create("P") as project:
    hot: float = project["GTemp"] + 1
    many: dict[str, float] = project.read(["GTemp", "pump.Head"])
    course: list[float] = project.read_list("GSeries")
    project["pump.Head"] = hot
    project.set_cache_value("pump", 1, hot)
    for sample in project.watch(["GTemp"], count=1):
        warm: float = sample["GTemp"] - many["GTemp"] * course[0]
    power: float = project.flow("pump") * project.room("study")["InsideTemperature"]

async def later() -> float:
    async with await AsyncServer.find() as twin:
        return await twin.project("P").read("GTemp")
"""


def test_a_script_needs_no_casts(tmp_path: Path) -> None:
    pytest.importorskip("mypy", reason="no mypy")
    (tmp_path / "script.py").write_text(SCRIPT)
    checked = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--python-version", "3.9", "script.py"], text=True,
                             cwd=tmp_path, capture_output=True, env={"MYPYPATH": str(CLIENT), "PATH": "/usr/bin:/bin"})
    assert checked.returncode == 0, checked.stdout + checked.stderr
