"""Plays the tutorial as its reader would, and follows the links of all pages."""

from __future__ import annotations

import re
import subprocess
from pathlib import Path

from api.description import REPOSITORY
from host import Host
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


def test_links_between_pages_lead_somewhere() -> None:
    broken = []
    for page in pages():
        text = page.read_text(encoding="utf-8")
        for target in re.findall(r"\]\((?!https?://)([^)#\s]*)(?:#[^)]*)?\)", text):
            if target and not (page.parent / target).exists():
                broken.append((str(page.relative_to(REPOSITORY)), target))
    assert broken == []
