"""Plays the console sessions of a page in one shell, and tells where what comes back is not what the page shows."""

from __future__ import annotations

import re
import subprocess
import threading
import time
from dataclasses import dataclass, field
from pathlib import Path

MARK = "\x01"
SECONDS_AT_MOST = 120
BLOCK = r"(?:^```console|into a file `(\S+)`:\n\n```json)\n(.*?)^```$"
READS = re.compile(r'"command":"(Get|FlowGet|RoomGet|VarInfoGet)"')
READ_TRIES = 100


@dataclass
class Step:
    """One command, its lines as typed, and the lines that the page shows under it."""

    command: list[str]
    shown: list[str] = field(default_factory=list)


def steps_of(page: str) -> list[Step]:
    """The commands of all ```console blocks, which stand behind `$ `, and the making of files whose name stands
    before a ```json block: "into a file `NAME`:"."""
    steps: list[Step] = []
    for file, block in re.findall(BLOCK, page, re.DOTALL | re.MULTILINE):
        if file:
            steps.append(Step([f"cat > {file} <<'END'", *block.splitlines(), "END"]))
            continue
        for line in block.splitlines():
            if line.startswith("$ "):
                steps.append(Step([line[2:]]))
            else:
                steps[-1].shown.append(line)
    return steps


def fits(shown: list[str], got: str) -> bool:
    form = re.escape("\n".join(shown)).replace("…", ".*?")
    return re.fullmatch(form, got.rstrip("\n"), re.DOTALL) is not None


class Shell:
    """One shell that is given a command at a time."""

    def __init__(self, folder: Path) -> None:
        self._bash = subprocess.Popen(["bash"], cwd=folder, text=True, stdin=subprocess.PIPE,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def run(self, command: str) -> str:
        assert self._bash.stdin is not None and self._bash.stdout is not None
        self._bash.stdin.write(f"{command}\nprintf '{MARK}\\n'\n")
        self._bash.stdin.flush()
        lines: list[str] = []
        for line in self._bash.stdout:
            if line.endswith(MARK + "\n"):
                return "".join(lines) + line.removesuffix(MARK + "\n")
            lines.append(line)
        return "".join(lines) + "(the shell has ended)"

    def end(self) -> None:
        self._bash.kill()
        self._bash.communicate()


def play(page: str, folder: Path) -> list[tuple[str, str]]:
    """Runs all commands of a page in one shell in the folder; gives those whose output is another than shown. What
    only reads is asked again for a while, since a run moves values in its own time."""
    wrong = []
    shell = Shell(folder)
    watchdog = threading.Timer(SECONDS_AT_MOST, shell.end)
    watchdog.start()
    for step in steps_of(page):
        command = "\n".join(step.command)
        tries = READ_TRIES if READS.search(command) else 1
        got = shell.run(command)
        while not fits(step.shown, got) and tries > 1:
            time.sleep(0.1)
            tries -= 1
            got = shell.run(command)
        if not fits(step.shown, got):
            wrong.append((command, got))
    watchdog.cancel()
    shell.end()
    return wrong
