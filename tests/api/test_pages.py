"""Plays the tutorial as its reader would, and follows the links of all pages."""

from __future__ import annotations

import re
import subprocess
from pathlib import Path

import pytest

from api.description import REPOSITORY
from host import PROGRAM, Host
from session import play, steps_of


def pages() -> list[Path]:
    listed = subprocess.run(["git", "ls-files", "*.md"], cwd=REPOSITORY, capture_output=True, text=True)
    names = listed.stdout.split() or [str(path) for path in REPOSITORY.glob("docs/**/*.md")]
    return [REPOSITORY / name for name in names]


def test_first_hour(tmp_path: Path) -> None:
    page = (REPOSITORY / "docs/first-hour.md").read_text(encoding="utf-8")
    assert len(steps_of(page)) > 30
    with Host() as host:
        own = host.address.removesuffix("/api")
        assert "address=http://127.0.0.1:33360\n" in page
        assert play(page.replace("http://127.0.0.1:33360\n", own + "\n"), tmp_path) == []


def test_readme() -> None:
    page = (REPOSITORY / "README.md").read_text(encoding="utf-8")
    assert len(steps_of(page)) > 15
    with Host() as host:
        own = host.address.removesuffix("/api")
        port = own.rpartition(":")[2]
        row = host.pipe.removeprefix("VornServerPipe")
        for written, meant in (("http://127.0.0.1:33360", own), ("VornServerPipe0", host.pipe),
                               ("$PWD/build/release/bin", str(PROGRAM.parent)),
                               ("vorn-send Get", f"vorn-send --port {port} Get"),
                               ("vorn-send Pjt", f"vorn-send --port {port} Pjt"),
                               ("vorn-send --pipe ", f"vorn-send --pipe={row} ")):
            assert written in page
            page = page.replace(written, meant)
        # Whenever they are typed: also by the next reader.
        assert play(page, REPOSITORY) == []
        assert play(page, REPOSITORY) == []


def test_links_between_pages_lead_somewhere() -> None:
    broken = []
    for page in pages():
        text = page.read_text(encoding="utf-8")
        for target, place in re.findall(r"\]\((?!https?://)([^)#\s]*)(?:#([^)]*))?\)", text):
            file = page.parent / target if target else page
            if not file.exists() or (place and f'<a id="{place}">' not in file.read_text(encoding="utf-8")):
                broken.append((str(page.relative_to(REPOSITORY)), target, place))
    assert broken == []


# What a page states, where the code says it, and how the page writes it.
LIMITS = [
    ("engine/vorn_records.h", r"ModuleCapacity = (\d+)", "| modules, pipes included | {:,} |"),
    ("engine/vorn_records.h", r"NodeCapacity = (\d+)", "| nodes | {:,} |"),
    ("engine/vorn_records.h", r" LinkCapacity = (\d+)", "| links | {:,} |"),
    ("engine/vorn_records.h", r"SlotCount = (\d+)", "| projects open at once | {} |"),
    ("engine/vorn_records.h", r"ModuleTypeCount = (\d+)", "and {} module types"),
    ("standin/project.h", r"ProjectVariableCapacity = StandardVariableCount \+ (\d+)", "| variables that clients add to a project | {}, with"),
    ("text/project_name.h", r"ProjectNameLimit = (\d+)", "| project name | {} letters"),
    ("text/json.h", r"JsonDepthLimit = (\d+)", "| JSON | nested {} deep"),
    ("commands/values.cpp", r"ValueBytes = (\d+)", "| `Value` of the commands that set values | {} bytes |"),
    ("variables/var_write.cpp", r"EntryBytes = (\d+)", "| list variable | 8 entries, {} bytes each |"),
    ("transport/http_server_inner.cpp", r"RequestsPerConnection = (\d+)", "| kept connection | {} requests"),
]


@pytest.mark.parametrize(("file", "constant", "shown"), LIMITS, ids=[row[1].split(" =")[0] for row in LIMITS])
def test_limits_are_those_of_the_code(file: str, constant: str, shown: str) -> None:
    found = re.search(constant, (REPOSITORY / file).read_text(encoding="utf-8"))
    assert found, f"{constant} stands no more in {file}"
    assert shown.format(int(found.group(1))) in (REPOSITORY / "docs/limits.md").read_text(encoding="utf-8")
