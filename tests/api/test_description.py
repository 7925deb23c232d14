"""Holds the description against itself, the code's tables and its own products."""

from __future__ import annotations

import json

import jsonschema
import pytest

from api import generate
from api.description import API, REPOSITORY, load

DESCRIPTION = load()


def test_what_is_made_from_the_description_is_current() -> None:
    assert generate.stale(DESCRIPTION) == [], "run api/generate.py"


@pytest.mark.parametrize("path", sorted((API / "schemas").glob("*.json")), ids=lambda path: path.name)
def test_schemas_are_schemas(path) -> None:
    jsonschema.Draft202012Validator.check_schema(json.loads(path.read_text(encoding="utf-8")))
