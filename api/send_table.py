"""Makes the table by which `vorn-send` tells a refusal from a reply."""

from __future__ import annotations

import re

from api.description import Description, Json

HEAD = """// The replies of each command, by which a refusal is reported. Made from the description in api/ by
// api/generate.py; do not edit.

#pragma once

#include <string_view>

/// What the texts of a row are.
enum class ReplyTexts {
    Done,     ///< all replies of a command that was carried out: every other one is a refusal
    Refused,  ///< the refusals of a command that else replies with any text
    Entries   ///< the refusals of entries, in a reply that is a JSON array of texts
};

struct ReplyRow {
    std::string_view word;
    ReplyTexts texts;
    std::string_view forms;  ///< one a line; "{}" stands for anything
};

// clang-format off
inline constexpr ReplyRow ReplyTable[] = {
"""

PIECE = re.compile(r"\{[a-z]+\}")


def _forms(texts: list[str]) -> list[str]:
    return list(dict.fromkeys(PIECE.sub("{}", text.rstrip("\n")) for text in texts))


def _literal(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def _row(description: Description, command: Json) -> str:
    done = _forms([each["text"] for each in command["replies"]])
    names = ["envelope", "internal", *description.interface["targets"][command["target"]]["failures"], *command["failures"]]
    refused = [form for form in _forms([description.failures[name]["text"] for name in names]) if form != "{}"]
    if command["target"] == "batch":
        entries = [description.failures[name]["text"] for name in command["entryFailures"]]
        word, kind, forms = command["word"], "Entries", _forms(entries)
    elif "{}" in done or "" in done:
        word, kind, forms = command["word"], "Refused", [form for form in refused if form not in done]
    else:
        word, kind, forms = command["word"], "Done", done
    lines = [_literal(form if place == 0 else f"|{form}").replace('"|', '"\\n') for place, form in enumerate(forms)]
    return f"    {{{_literal(word)}, ReplyTexts::{kind},\n     " + "\n     ".join(lines) + "},\n"


def send_table(description: Description) -> str:
    return HEAD + "".join(_row(description, command) for command in description.commands) + "};\n// clang-format on\n"
