"""Plays the console sessions of a page in one shell, and tells where what comes back is not what the page shows."""

from __future__ import annotations

import re
import subprocess
from dataclasses import dataclass, field
from pathlib import Path

MARK = "\x01"


@dataclass
class Step:
    """One command, its lines as typed, and the lines that the page shows under it."""

    command: list[str]
    shown: list[str] = field(default_factory=list)


def steps_of(page: str) -> list[Step]:
    """The commands of all ```console blocks, which stand behind `$ `, and the making of files that ```json FILE
    blocks show."""
    steps: list[Step] = []
    for file, block in re.findall(r"^```(?:console|json (\S+))\n(.*?)^```$", page, re.DOTALL | re.MULTILINE):
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


def play(page: str, folder: Path) -> list[tuple[str, str]]:
    """Runs all commands of a page in one shell in the folder; gives those whose output is another than shown."""
    steps = steps_of(page)
    script = f"\nprintf '{MARK}'\n".join("\n".join(step.command) for step in steps)
    done = subprocess.run(["bash", "-c", script], cwd=folder, timeout=120, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    outputs = done.stdout.split(MARK)
    outputs += ["(the shell has ended)"] * (len(steps) - len(outputs))
    return [("\n".join(step.command), got) for step, got in zip(steps, outputs) if not fits(step.shown, got)]
