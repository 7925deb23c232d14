"""Runs the examples of the description, in order, against a real service. A family has a host of its own, and
all families run at once, since most of their time is waits that the service makes."""

from __future__ import annotations

import json
import time
from concurrent.futures import Future, ThreadPoolExecutor
from dataclasses import dataclass
from typing import Any, Iterator

import jsonschema
import pytest

from api.description import API, REPOSITORY, Description, Family, Json, form_matches, load
from host import Host

DESCRIPTION = load()


@dataclass(frozen=True)
class Exchange:
    command: Json | None  # None for one that only prepares the ground
    example: Json
    reply: str
    seconds: float


def filled(value: Any, host: Host) -> Any:
    """An example's request with what only the machine knows: files of the repository and the server's directory."""
    if isinstance(value, dict):
        if "$file" in value:
            return json.loads((REPOSITORY / value["$file"]).read_text(encoding="utf-8"))
        return {key: filled(member, host) for key, member in value.items()}
    return value.replace("{root}", host.root) if isinstance(value, str) else value


def play(family: Family) -> list[Exchange]:
    exchanges: list[Exchange] = []
    with Host() as host:
        def send(command: Json | None, example: Json) -> None:
            start = time.monotonic()
            reply = host.send(filled(example["request"], host))
            exchanges.append(Exchange(command, example, reply, time.monotonic() - start))

        for example in family.session:
            send(None, example)
        for command in family.commands:
            for example in command["examples"]:
                for before in example.get("before", []):
                    send(None, before)
                send(command, example)
    return exchanges


@pytest.fixture(scope="session")
def played() -> Iterator[dict[str, list[Exchange]]]:
    with ThreadPoolExecutor(len(DESCRIPTION.families)) as pool:
        futures: dict[str, Future[list[Exchange]]] = {
            family.name: pool.submit(play, family) for family in DESCRIPTION.families}
        yield {name: future.result() for name, future in futures.items()}


def expected_text(example: Json) -> str:
    reply = example["reply"]
    return reply if isinstance(reply, str) else "\n".join(reply)


def fits(exchange: Exchange) -> bool:
    if "replyForm" in exchange.example:
        return form_matches(exchange.example["replyForm"], exchange.reply)
    return exchange.reply == expected_text(exchange.example)


@pytest.mark.parametrize("family", DESCRIPTION.families, ids=lambda family: family.name)
def test_examples_get_their_replies(family: Family, played: dict[str, list[Exchange]]) -> None:
    wrong = [(exchange.example["request"], exchange.reply)
             for exchange in played[family.name] if not fits(exchange)]
    assert wrong == []
