"""What can be known of a service of this machine without asking it: its version, by the library that it has loaded."""

from __future__ import annotations

import re
from pathlib import Path
from typing import Iterator

LOCAL_HOSTS = ("127.0.0.1", "localhost", "::1")

_LIBRARY = re.compile(r"/libVornServer\.so\.(\d+\.\d+\.\d+)$", re.MULTILINE)
LISTENING = "0A"


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
                found = _LIBRARY.search((process / "maps").read_text())
                return found[1] if found else ""
    except (OSError, ValueError, IndexError):
        pass
    return ""


def _has_open(process: Path, links: set[str]) -> bool:
    try:
        return any(str(each.readlink()) in links for each in (process / "fd").iterdir())
    except OSError:  # it has ended, or is another user's
        return False
