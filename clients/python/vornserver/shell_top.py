"""The shell's commands beside those of the service: a live view of variables, and what service was found."""

from __future__ import annotations

import argparse
import math
import shutil
import sys
import time
from collections import deque
from pathlib import Path
from typing import Any, Sequence

from vornserver.errors import ServiceError
from vornserver.judge import judge_file
from vornserver.project import Project
from vornserver.samples import Sample
from vornserver.server import Server
from vornserver.shell_output import print_json, table

BARS = "▁▂▃▄▅▆▇█"
COURSE = 40

# What a terminal is told: to begin anew, and to cut lines that are too long, or not.
CLEAR = "\x1b[H\x1b[J"
NO_WRAP = "\x1b[?7l"
WRAP = "\x1b[?7h"


def spark(values: Sequence[float]) -> str:
    """The course of some numbers as bars, from the least to the greatest of them."""
    finite = [each for each in values if math.isfinite(each)]
    low, high = min(finite, default=0.0), max(finite, default=0.0)
    scale = (len(BARS) - 1) / (high - low) if high > low else 0.0
    return "".join(BARS[round((each - low) * scale)] if math.isfinite(each) else " " for each in values)


class View:
    """What a live view shows: of each variable its value, its least and greatest, and its course."""

    def __init__(self, names: Sequence[str]) -> None:
        self._courses: dict[str, deque[float]] = {name: deque(maxlen=COURSE) for name in names}
        self._least: dict[str, float] = {}
        self._most: dict[str, float] = {}

    def lines(self, sample: Sample) -> list[str]:
        return table(["variable", "value", "least", "most", "course"],
                     [self._row(name, sample.values[name]) for name in self._courses])

    def _row(self, name: str, value: Any) -> list[Any]:
        if isinstance(value, ServiceError):
            return [name, value.text, "", "", ""]
        if not isinstance(value, (int, float)):
            return [name, value, "", "", spark(value)]
        course = self._courses[name]
        course.append(value)
        self._least[name] = min(self._least.get(name, value), value)
        self._most[name] = max(self._most.get(name, value), value)
        return [name, value, self._least[name], self._most[name], spark(course)]


def _shown(value: Any) -> Any:
    return {"failure": value.failure, "text": value.text} if isinstance(value, ServiceError) else value


def _top(server: Server, arguments: argparse.Namespace) -> int:
    project = Project(server, arguments.project)
    view = View(arguments.variables)
    live = sys.stdout.isatty() and not arguments.json
    for sample in project.watch(arguments.variables, arguments.every, arguments.count):
        if arguments.json:
            print_json({"time": sample.time, "values": {name: _shown(each) for name, each in sample.values.items()}})
        else:
            head = f"{project.name} at {server.address}, {time.strftime('%H:%M:%S', time.localtime(sample.time))}"
            lines = [head, "", *view.lines(sample)]
            if live:
                kept = lines[:shutil.get_terminal_size().lines - 1]
                print(f"{CLEAR}{NO_WRAP}" + "\n".join(kept) + WRAP, end="", flush=True)
            else:
                print("\n".join(lines))
        sys.stdout.flush()
    if live:
        print()
    return 0


def _find(server: Server, arguments: argparse.Namespace) -> int:
    if arguments.json:
        print_json({"address": server.address, "version": server.version})
    else:
        print(server.address + (f" version {server.version}" if server.version else ""))
    return 0


def _check(server: Server, arguments: argparse.Namespace) -> int:
    if not Path(arguments.what).is_file():
        server.project(arguments.what).check()
        print_json(None) if arguments.json else print("OK")
        return 0
    findings = judge_file(arguments.what, server)
    if arguments.json:
        print_json([{"stage": each.stage, "error": each.is_error, "text": each.text} for each in findings])
    else:
        print("\n".join(f"{'error' if each.is_error else 'warning'}: {each.text}" for each in findings) or "OK")
    return 1 if any(each.is_error for each in findings) else 0


def add_commands(commands: argparse._SubParsersAction[argparse.ArgumentParser]) -> None:
    """Adds the commands that the description does not have."""
    find = commands.add_parser("find", help="Print where the service is",
                               description="Prints the service's address, and its version where it is known.")
    find.set_defaults(run=_find)
    check = commands.add_parser("check", help="Judge a file, or ask whether an open project is complete", description=(
        "Judges a plan or a project document: its form, then the service's verdict in a project that is made for it and"
        " closed again, then what cannot work, such as an exchanger without area. The exit status is 1 where the plant"
        " cannot run as it is meant; what merely cannot work is a warning. With the name of an open project instead of a"
        " file it asks for the service's verdict alone."))
    check.add_argument("what", metavar="FILE|PROJECT", help="a file of JSON, or the name of an open project")
    check.set_defaults(run=_check)
    top = commands.add_parser("top", help="Watch variables of a project", description=(
        "Shows variables live until Ctrl-C. With --json each sample is a line of JSON."))
    top.add_argument("project", metavar="PROJECT", help="the name of an open project")
    top.add_argument("variables", nargs="+", metavar="VARIABLE", help="a variable without the project, such as GTemp")
    top.add_argument("--every", type=float, default=1.0, metavar="SECONDS", help="how often (%(default)s)")
    top.add_argument("--count", type=int, metavar="NUMBER", help="end after so many samples")
    top.set_defaults(run=_top)
