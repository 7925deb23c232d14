"""Does what the README shows."""

from __future__ import annotations

import re
from pathlib import Path

import pytest

from host import Host
from session import play, steps_of

CLIENT = Path(__file__).resolve().parents[1]
README = (CLIENT / "README.md").read_text(encoding="utf-8")


def test_python(tmp_path: Path, monkeypatch: pytest.MonkeyPatch, capsys: pytest.CaptureFixture[str]) -> None:
    program = "\n".join(re.findall(r"^```python\n(.*?)^```$", README, re.DOTALL | re.MULTILINE))
    assert "Server.find()" in program
    monkeypatch.chdir(tmp_path)
    with Host() as host:
        exec(program.replace("Server.find()", f"Server.find({host.address.removesuffix('/api')!r})"), {})
    printed = capsys.readouterr().out.splitlines()
    assert float(printed[0]) > 0 and printed[-1].startswith("MOD0 [") and len(printed) == 6
    assert "</svg>" in (tmp_path / "heating.svg").read_text(encoding="utf-8")


def test_shell(monkeypatch: pytest.MonkeyPatch) -> None:
    assert len(steps_of(README)) == 9
    with Host() as host:
        own = host.address.removesuffix("/api")
        monkeypatch.setenv("VORNSERVER_ADDRESS", own)
        monkeypatch.setenv("PYTHONDONTWRITEBYTECODE", "1")
        assert play(README.replace("http://127.0.0.1:33360, ", f"{own}, "), CLIENT.parents[1]) == []
