"""A fleet of four servers with one store: eight clients, and the death of a server."""

from __future__ import annotations

import os
import signal
import threading
from collections.abc import Callable, Iterator
from pathlib import Path

import pytest
from web import HOST, REPOSITORY, answers, ask, await_that, free_port, program, request

SERVERS = 4
CLIENTS = 8  # each has one project open at a time, and one server may get them all: it has eight places
PROJECTS = [f"HALL{number}" for number in range(32)]
NODE = {"DeviceInfo": [{"InstanceID": "start", "DeviceID": 3000}]}


class Fleet:
    """Where the fleet is reached, and its folder."""

    def __init__(self, port: int, folder: Path) -> None:
        self.port = port
        self.folder = folder

    def log(self, server: int) -> str:
        """What a server told since its last start."""
        return (self.folder / f"server{server}" / "host.log").read_text()

    def port_of(self, server: int) -> int:
        """Where a server answers, or answered last; 0 for one that starts just now."""
        _, _, behind = self.log(server).partition("VornServer answers on http://127.0.0.1:")
        return int(behind.split("/")[0] or 0)

    def server_of(self, project: str) -> int:
        """The server that printed the project's exchanges."""
        (server,) = [n for n in range(1, SERVERS + 1) if f" {project} " in self.log(n)]
        return server


@pytest.fixture(scope="module")
def fleet(tmp_path_factory: pytest.TempPathFactory) -> Iterator[Fleet]:
    """Four servers behind the proxy."""
    tmp_path = tmp_path_factory.mktemp("fleet")
    port, figures = free_port(), free_port()
    environment = {"VORN_HOST": str(HOST), "VORN_FLEET_METRICS": f"127.0.0.1:{figures}"}
    script = [str(REPOSITORY / "scripts/fleet.sh"), str(SERVERS), f"127.0.0.1:{port}", str(tmp_path / "fleet")]
    with program(script, tmp_path, tmp_path / "fleet.log", environment):
        told = tmp_path / "fleet.log"
        await_that("the fleet starts", lambda: "until Ctrl-C" in told.read_text())
        assert "haproxy_process" in request(figures, "GET", "/metrics")[1]
        yield Fleet(port, tmp_path / "fleet")


def by_clients(work: list[str], task: Callable[[str], object]) -> None:
    """Does the task for each project, eight clients at once; a fault of one is a fault of the test."""
    faults: list[str] = []

    def client(mine: list[str]) -> None:
        for project in mine:
            try:
                task(project)
            except (AssertionError, OSError, ValueError) as fault:  # told below, by the thread of the test
                faults.append(f"{project}: {fault!r}")

    threads = [threading.Thread(target=client, args=(work[start::CLIENTS],)) for start in range(CLIENTS)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not faults, faults


def make(fleet: Fleet, project: str) -> None:
    """A client's day: it makes a project, works on it, and closes it."""
    assert ask(fleet.port, "Create", project) == "OK"
    assert ask(fleet.port, "PjtSent", project, NODE) == "OK"
    assert ask(fleet.port, "Set", f"{project}_GTemp", "21.5") == "OK"
    batch = {"VarName": [f"{project}_GTemp", f"{project}_NOD0_Flow"]}
    assert ask(fleet.port, "Get", "json", batch) == '["21.500000","0.000000"]'
    assert ask(fleet.port, "PjtClose", project) == "OK"


def test_lives_on_when_a_server_dies(fleet: Fleet) -> None:
    by_clients(PROJECTS, lambda project: make(fleet, project))
    # One project is told to one server, and all servers have some.
    servers = {project: fleet.server_of(project) for project in PROJECTS}
    assert set(servers.values()) == set(range(1, SERVERS + 1)), servers

    opened = PROJECTS[:12]
    by_clients(opened, lambda project: ask(fleet.port, "Open", project))
    victim = servers[opened[0]]
    folder = fleet.folder / f"server{victim}"
    (folder / "hold").touch()
    os.kill(int((folder / "pid").read_text()), signal.SIGKILL)

    def opens(project: str) -> None:
        """A client whose server died finds its project not open, opens it, and has what was stored."""
        def works() -> bool:
            status, reply = request(
                fleet.port, "POST", "/api", f'{{"command":"Open","name":"{project}"}}')
            return status == 200 and reply in ("OK", "项目已打开")
        await_that(f"{project} is opened", works)
        assert ask(fleet.port, "MoveMN", f"{project}_start", {"PositionX": 1.0, "PositionZ": 1.0}) == "OK"

    by_clients(opened, opens)
    assert len({fleet.server_of(p) for p in opened if servers[p] != victim} - {victim}) == SERVERS - 1

    # It comes back; what others have taken over stays with them, open and locked.
    (folder / "hold").unlink()
    await_that("the server is back", lambda: fleet.port_of(victim) > 0 and answers(fleet.port_of(victim)))
    for project in opened:
        assert ask(fleet.port, "Fdp", project) == "1", project
        assert ask(fleet.port, "PjtClose", project) == "OK", project
    assert not list((fleet.folder / "store").glob("*.lock")), "all locks are given back"


def test_keeps_an_open_project_to_its_server(fleet: Fleet) -> None:
    """Who goes round the proxy is refused, and the holder is named."""
    make(fleet, "HALL1")
    assert ask(fleet.port, "Open", "HALL1") == "OK"
    holder = fleet.server_of("HALL1")
    other = holder % SERVERS + 1
    assert ask(fleet.port_of(other), "Open", "HALL1") == "Shibai"
    pid = (fleet.folder / f"server{holder}" / "pid").read_text().strip()
    await_that("the line", lambda: f"HALL1 is open in another server, process {pid} on " in fleet.log(other))


@pytest.mark.parametrize(
    ("body", "status"),
    [
        ("no JSON", 400),
        ('{"command":"Get"}', 400),
        ('{"command":"Put","name":"X","messages":"Close"}', 403),
        pytest.param('{"command":"Get","name":"X_' + "y" * 2000000 + '"}', 413, id="too large"),
    ],
)
def test_tells_what_cannot_be_routed(fleet: Fleet, body: str, status: int) -> None:
    assert request(fleet.port, "POST", "/api", body)[0] == status


def test_takes_no_packed_body(fleet: Fleet) -> None:
    packed = request(fleet.port, "POST", "/api", '{"command":"Fdp","name":"X"}', {"Content-Encoding": "gzip"})
    assert packed[0] == 415
