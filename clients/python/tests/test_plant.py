"""Documents are made, judged and read back; the judgement is that of a well-kept validator."""

from __future__ import annotations

import json
from dataclasses import replace
from pathlib import Path
from typing import Any

import jsonschema  # type: ignore[import]
import pytest

from vornserver import Connection, Device, Plant, PlantError, Port
from vornserver.interface import DATA, PROJECT_DOCUMENT
from vornserver.values import text_of, value_of

REPOSITORY = Path(__file__).resolve().parents[3]
SCHEMA = DATA["schemas"]["project_document.schema.json"]
PUMP = 2601010000011


def plant() -> Plant:
    made = Plant([Device("tank", 2601010000014), Device("pump", PUMP, 1.5), Device("node", 3000, kind=0)])
    made.connect(Port("tank", 1), Port("pump", 0), length=2, elbows=3, size=(0.1, 0.2), end_size=0.05)
    made.connect(Port("pump", 1), Port("node", 0))
    return made


@pytest.mark.parametrize("path", sorted((REPOSITORY / "examples").glob("*.json")), ids=lambda path: str(path.name))
def test_the_examples_come_back_as_they_were(path: Path, tmp_path: Path) -> None:
    read = Plant.load(path)
    assert read.faults() == []
    read.save(tmp_path / "again.json")
    assert Plant.load(tmp_path / "again.json") == read
    again, before = read.document(), json.loads(path.read_text(encoding="utf-8"))
    for kind in ("DeviceInfo", "ConnectionInfo"):
        for made, told in zip(again[kind], before[kind], strict=True):
            assert {key: value for key, value in told.items() if made.get(key) != value} in ({}, {"RdcNumber": 0})


# What is changed of a good plant, and a word of the fault that this makes.
FAULTS: list[tuple[Any, str]] = [
    (lambda it: it.devices.append(Device("pump", PUMP)), "another element"),
    (lambda it: it.devices.append(Device("", PUMP)), "no identity"),
    (lambda it: it.devices.append(Device("房" * 13, PUMP)), "37 bytes"),
    (lambda it: it.devices.append(Device("low", 4999)), "no type"),
    (lambda it: it.devices.append(Device("kind", 3000, kind=4)), "no kind"),
    (lambda it: it.devices.append(Device("there", PUMP, room="nowhere")), "no room"),
    (lambda it: it.connections.append(Connection("pump", Port("node", 8), Port("tank", 0))), "another element"),
    (lambda it: it.connections.append(Connection("", Port("node", 8), Port("tank", 0))), "no identity"),
    (lambda it: it.connect(Port("node", 8), Port("nothing", 0)), "no device"),
    (lambda it: it.connect(Port("tank", 0), Port("node")), "no outlet"),
    (lambda it: it.connect(Port("node"), Port("tank", 5)), "no inlet"),
    (lambda it: it.connect(Port("node"), Port("pump", 0)), "is taken"),
    (lambda it: [it.connect(Port("node"), Port("node")) for _ in range(9)], "has 8 outlets"),
    (lambda it: it.connect(Port("node", 16), Port("tank", 0)), "of the form"),
    (lambda it: it.connections.append(replace(it.connections[0], id="int", length=5)), "with a fraction"),
]


@pytest.mark.parametrize(("change", "word"), FAULTS, ids=[row[1] for row in FAULTS])
def test_faults_are_told(change: Any, word: str) -> None:
    changed = plant()
    assert changed.faults() == []
    change(changed)
    assert any(word in fault for fault in changed.faults()), changed.faults()
    with pytest.raises(PlantError):
        changed.document(check=True)


def documents() -> list[Any]:
    """Documents with one member of the wrong kind each, and good ones."""
    values: list[Any] = [None, True, 0, -1, 1.5, 2**31, "", "15", "16", "x" * 38, [], {}]
    good = plant().document()
    made: list[Any] = [*values, good]
    for kind, members in (("DeviceInfo", SCHEMA["$defs"]["device"]["properties"]),
                          ("ConnectionInfo", SCHEMA["$defs"]["connection"]["properties"])):
        made += [{kind: [{**good[kind][0], member: value}]} for member in members for value in values]
        made += [{kind: [{key: value for key, value in good[kind][0].items() if key != left}]}
                 for left in good[kind][0]]
    return made


def test_the_schema_is_kept_as_a_validator_keeps_it() -> None:
    validator = jsonschema.Draft202012Validator(SCHEMA)
    judged = [(not PROJECT_DOCUMENT.faults(each), validator.is_valid(each), each) for each in documents()]
    # Of the words that are its own the validator knows nothing: a length without a fraction.
    differ = [row for row in judged if row[0] != row[1] and "fraction" not in str(PROJECT_DOCUMENT.faults(row[2]))]
    assert differ == [] and 50 < sum(row[0] for row in judged) < len(judged) - 50


@pytest.mark.parametrize(("text", "value"), [
    ("21.500000", 21.5), ("-7", -7), ("1,2,3", [1, 2, 3]), ("1.0,2.00000000", [1.0, 2.0]), ("1,2.5", [1.0, 2.5])])
def test_values(text: str, value: Any) -> None:
    assert value_of(text) == value and type(value_of(text)) is type(value)
    assert value_of(text_of(value)) == value


@pytest.mark.parametrize("value", [float("nan"), float("inf"), [1] * 9, [None]])
def test_what_no_variable_can_hold(value: Any) -> None:
    with pytest.raises(ValueError):
        text_of(value)
