"""What can be known of a service of this machine without asking it: its version, by the program that it is."""

from __future__ import annotations

import os
import re
import stat
import subprocess
from pathlib import Path
from typing import Iterator

LOCAL_HOSTS = ("127.0.0.1", "localhost", "::1")

LISTENING = "0A"
SECONDS = 5
_VERSION = re.compile(r"\d+\.\d+\.\d+")
_LIBRARY = re.compile(r"/libVornServer\.so\.(\d+\.\d+\.\d+)$", re.MULTILINE)


def _sockets(port: int) -> Iterator[str]:
    """What listens at a port, as the links to it in a process's list of files read."""
    for table in ("/proc/net/tcp", "/proc/net/tcp6"):
        for line in Path(table).read_text().splitlines()[1:]:
            _, local, _, state, *rest = line.split()
            if state == LISTENING and int(local.rpartition(":")[2], 16) == port:
                yield f"socket:[{rest[5]}]"


def local_version(port: int) -> str:
    """The version of the service that listens at a port. The empty text where it cannot be known: on another system than
    Linux, or for a process of another user."""
    try:
        wanted = set(_sockets(port))
        for process in Path("/proc").iterdir():
            if process.name.isdigit() and _has_open(process, wanted):
                return _version_of(process)
    except (OSError, ValueError, IndexError, subprocess.SubprocessError):
        pass
    return ""


def _has_open(process: Path, links: set[str]) -> bool:
    try:
        return any(os.readlink(each) in links for each in (process / "fd").iterdir())
    except OSError:  # it has ended, or is another user's
        return False


def _version_of(process: Path) -> str:
    """The version of a host: of `vorn-host` what the program says itself, of another that of its library."""
    program = Path(os.readlink(process / "exe"))
    if program.name == "vorn-host" and _is_ours(program):
        said = subprocess.run([program, "--version"], capture_output=True, text=True, timeout=SECONDS).stdout
        found = _VERSION.search(said)
        return found[0] if found else ""
    loaded = _LIBRARY.search((process / "maps").read_text())
    return loaded[1] if loaded else ""


def _is_ours(program: Path) -> bool:
    """Whether only this user or the system's administrator can have made the program."""
    status = program.stat()
    return status.st_uid in (0, os.getuid()) and not status.st_mode & (stat.S_IWGRP | stat.S_IWOTH)
