"""The shell: what it prints, its exit status, and the package as a wheel."""

from __future__ import annotations

import json
import os
import shutil
import subprocess
import sys
import zipfile
from pathlib import Path
from typing import Iterator

import pytest

from host import Host
from vornserver.__main__ import main
from vornserver.interface import COMMANDS
from vornserver.plant import type_id
from vornserver.shell_output import table, width
from vornserver.shell_top import spark

CLIENT = Path(__file__).resolve().parents[1]
EXAMPLES = CLIENT.parents[1] / "examples"


@pytest.fixture(scope="module")
def address() -> Iterator[str]:
    with Host() as host:
        yield host.address.removesuffix("/api")


# A session: the words, the exit status, and what stands in the output.
SESSION: list[tuple[list[str], int, str]] = [
    (["create", "P1"], 0, "OK"),
    (["create", "P1"], 1, "A project of this name is open already."),
    (["--json", "create", "P1"], 1, '"failure": "projectOpen", "kind": "state"'),
    (["send", "P1", str(EXAMPLES / "cold_store.json")], 0, "OK"),
    (["send", "P1", str(CLIENT / "pyproject.toml")], 1, "vornserver: "),
    (["send", "P1", "/no/such/file"], 1, "/no/such/file"),
    (["check", "P1"], 0, "OK"),
    (["topology", "P1"], 0, "compressor"),
    (["add-module", "P1", str(type_id("pump")), "水泵", "--position-x", "2"], 0, "MOD36"),
    (["--json", "add-node", "P1", "3000", "FLUID"], 0, '"NOD2"'),
    (["set-cache-value", "P1", "compressor", "1", "3"], 0, "OK"),
    (["set-cache-value", "P1", "compressor", "1", "much"], 1, "must be of the form"),
    (["cache-values", "P1", "compressor"], 0, "Power  3 "),
    (["write", "P1_GTemp", "-5"], 0, "OK"),
    (["write", "P1_GTemp"], 2, "VALUE"),
    (["write", "P1_GTemp", "warm"], 1, "no number"),
    (["write", "P1_GStep", "-3"], 0, "OK"),
    (["Get", "P1_GStep"], 0, "-3\n"),
    (["write-batch", "P1_GStep=0"], 0, "OK"),
    (["Get", "P1_GTemp"], 0, "-5\n"),
    (["write-batch", "P1_GTemp=2.5", "P1_No=1"], 1, "none varname"),
    (["write-batch", "P1_GTemp"], 1, "P1_GTemp"),
    (["--json", "read-batch", "P1_GTemp", "P1_GStep"], 0, '{"P1_GTemp": 2.5, "P1_GStep": 0}'),
    (["top", "P1", "GTemp", "No", "--count", "2", "--every", "0.01"], 0, "GTemp     2.5"),
    (["--json", "top", "P1", "GTemp", "--count", "1"], 0, '"values": {"GTemp": 2.5}'),
    (["find"], 0, "http://"),
    (["holds-project", "P2"], 0, "no"),
    (["save-cache", "P1", "3"], 2, "invalid choice"),
    (["close", "P1"], 0, "OK"),
]


def run(words: list[str]) -> int:
    try:
        return main(words)
    except SystemExit as left:
        return int(left.code or 0)


def test_a_session(address: str, capsys: pytest.CaptureFixture[str]) -> None:
    for words, status, shown in SESSION:
        got = run(["--address", address, *words])
        printed = capsys.readouterr()
        assert got == status and shown in printed.out + printed.err, (words, got, printed)
        if words[0] == "--json":
            json.loads(printed.out)


def test_nobody_there(capsys: pytest.CaptureFixture[str]) -> None:
    assert run(["--address", "127.0.0.1:1", "find"]) == 3 and "127.0.0.1:1" in capsys.readouterr().err


def test_each_command_has_help(capsys: pytest.CaptureFixture[str]) -> None:
    for command in COMMANDS.values():
        assert run([command.id, "--help"]) == 0
        text = " ".join(capsys.readouterr().out.split())
        assert command.entry["text"].split(".")[0] in text.replace("- ", "-"), command.id


def test_columns_hold_wide_letters() -> None:
    lines = table(["name", "n"], [["水泵", 1], ["ab", 12.5]])
    assert lines[2:] == ["水泵     1", "ab    12.5"] and width("水泵a") == 5
    assert spark([0, 1, float("nan"), 2]) == "▁▄ █" or spark([0, 1, float("nan"), 2]) == "▁▅ █"


def builder() -> str | None:
    """A Python that builds wheels without fetching anything."""
    for python in (sys.executable, "/usr/bin/python3"):
        if subprocess.run([python, "-c", "import build, setuptools, wheel"], capture_output=True).returncode == 0:
            return python
    return None


def test_the_wheel_is_whole(tmp_path: Path) -> None:
    python = builder()
    if python is None:
        pytest.skip("no python3 with build, setuptools and wheel")
    source = shutil.copytree(CLIENT, tmp_path / "source", ignore=shutil.ignore_patterns("__pycache__", "build", "dist"))
    made = subprocess.run([python, "-m", "build", "--wheel", "--no-isolation", "--outdir", tmp_path, source],
                          capture_output=True, text=True)
    assert made.returncode == 0, made.stdout + made.stderr
    with zipfile.ZipFile(next(tmp_path.glob("*.whl"))) as wheel:
        wheel.extractall(tmp_path / "installed")
    environment = {**os.environ, "PYTHONPATH": str(tmp_path / "installed")}
    shown = subprocess.run([sys.executable, "-B", "-m", "vornserver", "PjtSent", "--help"], cwd=tmp_path,
                           env=environment, capture_output=True, text=True)
    assert shown.returncode == 0 and "project document" in shown.stdout, shown.stderr
