"""What the tests of the deployment ask of servers: requests over HTTP, and programs that run beside the test."""

from __future__ import annotations

import contextlib
import http.client
import json
import os
import signal
import socket
import subprocess
import sys
import time
from collections.abc import Callable, Iterator, Mapping
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPOSITORY / "clients/python"))  # the client that the tests import behind this module
HOST = Path(os.environ.get("VORN_HOST_PROGRAM", REPOSITORY / "build/release/bin/vorn-host"))


def free_port() -> int:
    """A port of 127.0.0.1 that nobody listens on."""
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return int(probe.getsockname()[1])


def await_that(what: str, true: Callable[[], bool], seconds: float = 60) -> None:
    """Waits until it is true; a busy machine is given its time."""
    end = time.monotonic() + seconds
    while not true():
        assert time.monotonic() < end, f"not within {seconds} s: {what}"
        time.sleep(0.1)


def answers(port: int) -> bool:
    """Whether the greeting comes at that port."""
    try:
        return request(port, "GET", "/hi")[0] == 200
    except OSError:
        return False


def request(
    port: int, method: str, path: str, body: str = "", headers: Mapping[str, str] | None = None, seconds: float = 60
) -> tuple[int, str]:
    """One request on a connection of its own: the status and the reply."""
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=seconds)
    with contextlib.closing(connection):
        connection.request(method, path, body.encode(), dict(headers or {}))
        response = connection.getresponse()
        return response.status, response.read().decode()


def ask(port: int, command: str, name: str, messages: object = "") -> str:
    """The reply to one command."""
    body = json.dumps({"command": command, "name": name, "messages": messages})
    status, reply = request(port, "POST", "/api", body)
    assert status == 200, f"{status} {reply}"
    return reply


@contextlib.contextmanager
def program(
    arguments: list[str], folder: Path, output: Path, environment: Mapping[str, str] | None = None
) -> Iterator[subprocess.Popen[bytes]]:
    """A program that is asked to end, with all that it started, where the block ends."""
    with output.open("wb") as log:
        running = subprocess.Popen(
            arguments,
            cwd=folder,
            stdin=subprocess.DEVNULL,
            stdout=log,
            stderr=subprocess.STDOUT,
            env={**os.environ, **(environment or {})},
            start_new_session=True,
        )
    try:
        yield running
    finally:
        with contextlib.suppress(ProcessLookupError):
            os.killpg(running.pid, signal.SIGTERM)
        with contextlib.suppress(subprocess.TimeoutExpired):
            running.wait(10)
        with contextlib.suppress(ProcessLookupError):
            os.killpg(running.pid, signal.SIGKILL)
        running.wait()


@contextlib.contextmanager
def service(folder: Path) -> Iterator[int]:
    """A server of its own in `folder`; gives its port."""
    work = folder / "work"
    work.mkdir()
    log = folder / "host.log"
    with program([str(HOST), "--no-console", "--quiet"], work, log):
        start = "VornServer answers on http://127.0.0.1:"
        await_that("the service starts", lambda: start in log.read_text())
        yield int(log.read_text().split(start)[1].split("/")[0])
