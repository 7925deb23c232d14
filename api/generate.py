#!/usr/bin/env python3
"""Writes what is made from the description: `schemas/envelope.schema.json`, `openapi.json`, the pages of
`docs/reference/`, and three files of the Python client.

usage: generate.py [--check]

With --check nothing is written, and the exit status tells whether all of it is current.
"""

from __future__ import annotations

import json
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))

from api.description import API, REPOSITORY, Description, load  # noqa: E402
from api.envelope import envelope_schema  # noqa: E402
from api.openapi import openapi_document  # noqa: E402
from api.python_async import async_client  # noqa: E402
from api.python_client import client_data, client_methods  # noqa: E402
from api.reference import reference_pages  # noqa: E402
from api.send_table import send_table  # noqa: E402
from api.typescript_client import typescript_data  # noqa: E402


def made_from(description: Description) -> dict[Path, str]:
    """The files and what they must hold."""
    envelope = json.dumps(envelope_schema(description), ensure_ascii=False, indent=1)
    files = {API / "schemas/envelope.schema.json": envelope + "\n"}
    files[API / "openapi.json"] = json.dumps(openapi_document(description), ensure_ascii=False, indent=1) + "\n"
    for name, page in reference_pages(description).items():
        files[REPOSITORY / "docs/reference" / name] = page.rstrip("\n") + "\n"
    client = REPOSITORY / "clients/python/vornserver"
    files[client / "interface.json"] = client_data(description)
    methods = client_methods(description)
    files[client / "commands.py"] = methods
    files[client / "aio.py"] = async_client(methods)
    files[REPOSITORY / "clients/typescript/src/contract_data.ts"] = typescript_data(description)
    files[REPOSITORY / "host/reply_table.h"] = send_table(description)
    return files


def stale(description: Description) -> list[Path]:
    return [path for path, content in made_from(description).items()
            if not path.exists() or path.read_text(encoding="utf-8") != content]


def main(arguments: list[str]) -> int:
    description = load()
    old = stale(description)
    if arguments == ["--check"]:
        for path in old:
            print(f"not current: {path}", file=sys.stderr)
        return 1 if old else 0
    if arguments:
        print(__doc__, file=sys.stderr)
        return 2
    content = made_from(description)
    for path in old:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(content[path], encoding="utf-8")
        print(f"written: {path.relative_to(REPOSITORY)}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
