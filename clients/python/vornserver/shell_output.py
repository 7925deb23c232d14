"""How the shell shows what the service tells: tables for people, JSON for programs."""

from __future__ import annotations

import argparse
import json
import sys
import threading
import time
import unicodedata
from contextlib import contextmanager
from pathlib import Path
from typing import Any, Iterator, Mapping, Sequence

from vornserver.errors import ServiceError
from vornserver.interface import Command

# Below this time a person does not wonder what happens.
QUIET_SECONDS = 0.5


def width(text: str) -> int:
    """How many columns of a terminal a text takes."""
    return sum(2 if unicodedata.east_asian_width(each) in "WF" else 1 for each in text)


def _cell(value: Any) -> str:
    if isinstance(value, float):
        return f"{value:.9g}"
    if isinstance(value, Mapping):
        return " ".join(f"{key}:{_cell(each)}" for key, each in value.items())
    if isinstance(value, (list, tuple)):
        return " ".join(_cell(each) for each in value)
    return "" if value is None else str(value)


def table(heads: Sequence[str], rows: Sequence[Sequence[Any]]) -> list[str]:
    """Rows under their heads, in columns; numbers stand at the right."""
    texts = [[_cell(value) for value in row] for row in rows]
    right = [all(isinstance(row[column], (int, float)) for row in rows) and bool(rows) for column in range(len(heads))]
    widths = [max([width(head), *(width(row[column]) for row in texts)]) for column, head in enumerate(heads)]

    def line(cells: Sequence[str]) -> str:
        padded = [" " * (widths[at] - width(cell)) + cell if right[at] else cell + " " * (widths[at] - width(cell))
                  for at, cell in enumerate(cells)]
        return "  ".join(padded).rstrip()

    return [line(heads), line(["-" * each for each in widths]), *(line(row) for row in texts)]


def _rows_of(entries: Sequence[Mapping[str, Any]]) -> list[str]:
    heads = list(dict.fromkeys(key for entry in entries for key in entry))
    return table(heads, [[entry.get(head) for head in heads] for entry in entries])


def lines_of(value: Any) -> list[str]:
    """A JSON value for people: lists of objects as tables, an object's members one by one."""
    if isinstance(value, list) and value and all(isinstance(each, dict) for each in value):
        return _rows_of(value)
    if isinstance(value, list):
        return [_cell(value)] if value else ["(none)"]
    if not isinstance(value, dict):
        return [_cell(value)]
    lines: list[str] = []
    for name, member in value.items():
        if isinstance(member, list):
            lines += [f"{name}:", *(f"  {line}" for line in lines_of(member)), ""]
        elif isinstance(member, str) and "\n" in member:
            lines += member.splitlines()
        else:
            lines.append(f"{name}: {_cell(member)}")
    return lines[:-1] if lines and not lines[-1] else lines


def print_json(value: Any) -> None:
    print(json.dumps(value, ensure_ascii=False))


def print_failure(error: ServiceError, as_json: bool) -> int:
    if as_json:
        print_json({"failure": error.failure, "kind": error.kind, "text": error.text, "meaning": error.meaning,
                    "todo": error.todo, "details": error.details})
    else:
        print(f"vornserver: {error.text.rstrip()}\n  {error.meaning}\n  {error.todo}", file=sys.stderr)
    return 1


def _print_batch(command: Command, names: list[str], texts: list[str], as_json: bool) -> int:
    values = [command.entry_value(text) for text in texts]
    failed = any(isinstance(each, ServiceError) for each in values)
    if as_json:
        print_json({name: {"failure": each.failure, "text": each.text} if isinstance(each, ServiceError) else each
                    for name, each in zip(names, values)})
    else:
        shown = ["OK" if each is None else each.text if isinstance(each, ServiceError) else each for each in values]
        print("\n".join(table(["variable", "value"], list(zip(names, shown)))))
    return 1 if failed else 0


def print_result(command: Command, messages: Any, result: Any, arguments: argparse.Namespace) -> int:
    """Prints what a command gave; gives the exit status."""
    if "entryFailures" in command.entry and isinstance(result, list):
        return _print_batch(command, messages["VarName"], result, arguments.json)
    if command.entry["result"] == "svg" and arguments.output:
        Path(arguments.output).write_text(result, encoding="utf-8")
        result = arguments.output
    if arguments.json:
        print_json(result)
    elif command.entry["result"] in ("svg", "text", "identity") and not isinstance(result, list):
        print(result)
    elif command.entry["result"] == "ok":
        print("OK")
    elif command.entry["result"] == "flag":
        print("yes" if result else "no")
    else:
        print("\n".join(lines_of(result)))
    return 0


@contextmanager
def working(what: str, seconds: float) -> Iterator[None]:
    """Shows on a terminal's standard error how long something takes that takes long; `seconds` is what it waits by
    contract, which it is measured by."""
    if not sys.stderr.isatty():
        yield
        return
    ended = threading.Event()

    def show() -> None:
        start = time.monotonic()
        pause = QUIET_SECONDS
        while not ended.wait(pause):
            pause = 0.1
            passed = time.monotonic() - start
            part = min(passed / seconds, 1) if seconds else 0
            bar = f" [{'#' * int(part * 20):20}]" if seconds else ""
            print(f"\r{what}{bar} {passed:.1f} s ", end="", file=sys.stderr, flush=True)
        if pause != QUIET_SECONDS:
            print("\r\x1b[K", end="", file=sys.stderr, flush=True)

    thread = threading.Thread(target=show, daemon=True)
    thread.start()
    try:
        yield
    finally:
        ended.set()
        thread.join()
