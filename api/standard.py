"""Turns the description's schemas into plain JSON Schema 2020-12: what its own words say goes into the descriptions."""

from __future__ import annotations

from typing import Any, Callable

from api.description import Json

# Of each word of our own what it says to a reader; an empty text for one that says nothing to clients.
WORDS: dict[str, Callable[[Any], str]] = {
    "x-unit": lambda unit: f"In {unit}." if unit else "",
    "x-maxBytes": lambda most: f"At most {most} bytes of UTF-8.",
    "x-written": lambda form: f"Written {form}.",
    "x-wrongType": lambda failure: "",
}
# What maps names to schemas, so that a name in it is no word.
BY_NAME = ("properties", "$defs")


def standard(schema: Any) -> Any:
    """A copy without the words of our own."""
    if isinstance(schema, list):
        return [standard(each) for each in schema]
    if not isinstance(schema, dict):
        return schema
    plain: Json = {}
    for key, value in schema.items():
        if key in BY_NAME:
            plain[key] = {name: standard(each) for name, each in value.items()}
        elif key not in WORDS:
            plain[key] = value if key in ("default", "const", "enum") else standard(value)
    added = [said for word, say in WORDS.items() if word in schema and (said := say(schema[word]))]
    if added:
        plain["description"] = " ".join([*([plain["description"]] if "description" in plain else []), *added])
    return plain
