"""A real vorn-host in a process of its own, and a client of it."""

from __future__ import annotations

import json
import os
import re
import shutil
import subprocess
import tempfile
import threading
import urllib.request
from pathlib import Path
from types import TracebackType
from typing import Any

REPOSITORY = Path(__file__).resolve().parents[2]
PROGRAM = Path(os.environ.get("VORN_HOST_PROGRAM", REPOSITORY / "build/release/bin/vorn-host"))

# How long a host may take until it serves: on a busy machine, beside a dozen others that look for their pipes.
SECONDS_AT_MOST = 180

# Whatever the environment says of proxies, the host stands on this machine.
_OPENER = urllib.request.build_opener(urllib.request.ProxyHandler({}))


class Host:
    """Runs a copy of the program in a fresh folder, so that it is a server of its own directory."""

    def __init__(self) -> None:
        self.folder = Path(tempfile.mkdtemp(prefix="vorn_api_"))
        (self.folder / "work").mkdir()
        (self.folder / "bin").mkdir()
        program = shutil.copy(PROGRAM, self.folder / "bin")
        self._process = subprocess.Popen([program, "--quiet"], cwd=self.folder / "work",
                                         stdout=subprocess.PIPE, text=True)
        self.address = self.pipe = ""
        self._hear()

    def _hear(self) -> None:
        """Waits until the host has told its address and its pipe."""
        assert self._process.stdout is not None
        watchdog = threading.Timer(SECONDS_AT_MOST, self._process.kill)
        watchdog.start()
        try:
            for line in self._process.stdout:
                if found := re.search(r"http://127\.0\.0\.1:\d+/api", line):
                    self.address = found.group()
                if found := re.search(r"VornServerPipe\d+", line):
                    self.pipe = found.group()
                if self.address and self.pipe:
                    return
        finally:
            watchdog.cancel()
        raise RuntimeError("the host has not told its port and its pipe")

    def __enter__(self) -> Host:
        return self

    def __exit__(self, kind: type[BaseException] | None, value: BaseException | None,
                 trace: TracebackType | None) -> None:
        self._process.terminate()
        try:
            self._process.wait(20)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        if self._process.stdout is not None:
            self._process.stdout.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    @property
    def root(self) -> str:
        """The server's own directory, as the command Fph tells directories."""
        return str(self.folder).replace("/", "_") + "_"

    def post(self, body: str) -> str:
        request = urllib.request.Request(self.address, body.encode(), {"Content-Type": "application/json"})
        with _OPENER.open(request, timeout=120) as response:
            reply: bytes = response.read()
        return reply.decode()

    def send(self, request: dict[str, Any]) -> str:
        return self.post(json.dumps(request, ensure_ascii=False))
