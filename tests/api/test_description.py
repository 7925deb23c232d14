"""Holds the description against itself, the code's tables and texts, and what is made from it."""

from __future__ import annotations

import json
import re
from pathlib import Path
from typing import Any, Iterator

import jsonschema  # type: ignore[import]
import pytest

from api import generate
from api.description import API, EVERY_REQUEST, REPOSITORY, form_matches, has_pieces, load
from api.openapi import openapi_document

DESCRIPTION = load()

CODE_FOLDERS = ("service", "commands", "variables", "network")
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')


def file_name(path: Path) -> str:
    return path.name


def code(path: str) -> str:
    return (REPOSITORY / path).read_text(encoding="utf-8")


def literals() -> Iterator[str]:
    """The texts in the code that only clients read: those in Chinese."""
    for folder in CODE_FOLDERS:
        for path in sorted((REPOSITORY / folder).glob("*.cpp")):
            source = re.sub(r"//.*", "", path.read_text(encoding="utf-8"))
            for literal in LITERAL.findall(source):
                if not literal.isascii():
                    yield literal.replace("\\n", "\n")


def texts(value: Any) -> Iterator[str]:
    if isinstance(value, str):
        yield value
    elif isinstance(value, dict):
        for member in value.values():
            yield from texts(member)
    elif isinstance(value, list):
        for entry in value:
            yield from texts(entry)


def test_what_is_made_from_the_description_is_current() -> None:
    assert generate.stale(DESCRIPTION) == [], "run api/generate.py"


@pytest.mark.parametrize("path", sorted((API / "schemas").glob("*.json")), ids=file_name)
def test_schemas_are_schemas(path: Path) -> None:
    jsonschema.Draft202012Validator.check_schema(json.loads(path.read_text(encoding="utf-8")))


def test_the_openapi_document_is_valid() -> None:
    components = openapi_document(DESCRIPTION)["components"]["schemas"]
    for name, schema in components.items():
        jsonschema.Draft202012Validator.check_schema(schema)
    used = set(re.findall(r'"#/components/schemas/([^"]*)"', json.dumps(components)))
    assert used <= set(components)
    validator = pytest.importorskip("openapi_spec_validator", reason="no validator of whole OpenAPI documents")
    validator.validate(openapi_document(DESCRIPTION))


def test_version_is_the_same_everywhere() -> None:
    project = re.search(r"VERSION (\d+\.\d+\.\d+)", code("CMakeLists.txt").split("project(", 1)[1])
    newest = re.search(r"^## \[(\d.*?)\]", code("CHANGELOG.md"), re.MULTILINE)
    assert project and newest
    assert DESCRIPTION.interface["version"] == project.group(1) == newest.group(1)


def test_words_are_those_of_the_code() -> None:
    targets = {"NewProject": "newProject", "Project": "project", "Element": "element"}
    rows = re.findall(r'\{"(\w+)", (\w+), \w+, (\w+)\}', code("commands/command_frame.cpp"))
    in_code = {word: (targets[target], log.lower()) for word, target, log in rows}
    verbs = {word: "writes" if writes == "true" else "reads"
             for word, writes in re.findall(r'\{"(\w+)", \w+, (true|false)\}', code("service/verbs.cpp"))}
    assert len(in_code) == 38 and len(verbs) == 5, "the tables of the code are written in another way"

    described = {command["word"]: (command["target"], command["log"]) for command in DESCRIPTION.commands}
    assert {word: row for word, row in described.items() if word not in verbs} == in_code
    assert {word: log for word, (_, log) in described.items() if word in verbs} == verbs


# What looks like a command's word in a program's source.
WORD = re.compile(r"""["']((?:Pjt|Net|Add|Delete|Move|Lua|Important)[A-Z]\w*|[A-Z]\w*(?:Get|Set|ToRun|ToCache))["']""")


def test_words_of_the_console_and_the_clients_are_described() -> None:
    words = {command["word"] for command in DESCRIPTION.commands}
    sources = [path for folder in ("console/src", "clients") for path in (REPOSITORY / folder).rglob("*.ts*")
               if "node_modules" not in path.parts and "dist" not in path.parts]
    used = {word: path.name for path in sources for word in WORD.findall(path.read_text(encoding="utf-8"))}
    assert len(used) > 15 and {word: name for word, name in used.items() if word not in words} == {}


def test_verbs_of_put_are_those_of_the_code() -> None:
    source = code("commands/put_verb.cpp")
    in_code = re.findall(r'verb == "(\w+)"', source) + re.findall(r'\{"(\w+)", \w+\}', source)
    put = next(command for command in DESCRIPTION.commands if command["word"] == "Put")
    assert sorted(put["messages"]["schema"]["enum"]) == sorted(in_code)


def test_texts_of_the_code_are_described() -> None:
    described = "\0".join([*texts(DESCRIPTION.failures), *texts(DESCRIPTION.commands)]).replace("\\n", "\n")
    never_sent = {"解析成功并即将启动\n"}  # what the analysis says of complete networks; the reply is OK
    assert [text for text in literals() if text not in described and text not in never_sent] == []


def test_each_failure_is_shown_or_stands_in_the_code() -> None:
    shown_by = [*DESCRIPTION.interface["examples"],
                *(example for command in DESCRIPTION.commands for example in command["examples"])]
    replies = [example["reply"] for example in shown_by if isinstance(example.get("reply"), str)]
    in_code = set(literals())
    missing = []
    for name, failure in DESCRIPTION.failures.items():
        text = failure["text"]
        if "notShown" in failure:
            shown = text.isascii() or text in in_code
        else:  # as the reply, or as an entry in it
            shown = any(form_matches(text, reply) or f'"{text}"' in reply for reply in replies)
        if not shown:
            missing.append(name)
    assert missing == []


def test_names_lead_somewhere() -> None:
    interface = DESCRIPTION.interface
    used = set(EVERY_REQUEST)
    for target in interface["targets"].values():
        used.update(target["failures"])
    for command in DESCRIPTION.commands:
        used.update(command["failures"], command.get("entryFailures", []))
        members = command["messages"].get("schema", {}).get("properties", {})
        used.update(member["x-wrongType"] for member in members.values() if "x-wrongType" in member)
        assert command["target"] in interface["targets"]
        assert command["messages"]["form"] in interface["forms"]
        assert command["effect"] in interface["effects"]
        assert command["result"] in interface["results"]
        assert (command["result"] == "json") == ("schema" in command)
        assert command["examples"] and all(
            example["request"]["command"] == command["word"] for example in command["examples"])
    unknownWord = {"unknownWord"}  # the failure of what is no command
    assert used | unknownWord == set(DESCRIPTION.failures)
    assert {failure["kind"] for failure in DESCRIPTION.failures.values()} == set(interface["kinds"])
    for key in ("id", "method"):
        names = [command[key] for command in DESCRIPTION.commands]
        assert len(names) == len(set(names))
    assert not any(has_pieces(reply["text"]) for command in DESCRIPTION.commands
                   if command["result"] in ("ok", "flag") for reply in command["replies"])
