"""The part of JSON Schema that the description uses, and its words of its own for texts and numbers."""

from __future__ import annotations

import difflib
import math
import re
from collections.abc import Mapping
from typing import Any, Callable, Iterator

Json = dict[str, Any]

TYPES: dict[str, Callable[[Any], bool]] = {
    "object": lambda value: isinstance(value, Mapping),
    "array": lambda value: isinstance(value, list),
    "string": lambda value: isinstance(value, str),
    # To the service 2.0 is no integer, though it is one to JSON Schema.
    "integer": lambda value: isinstance(value, int) and not isinstance(value, bool),
    "number": lambda value: isinstance(value, (int, float)) and not isinstance(value, bool),
    "boolean": lambda value: isinstance(value, bool),
    "null": lambda value: value is None,
}


def _bytes(value: str) -> int:
    return len(value.encode(errors="replace"))


def _are_all_texts(entries: list[Any], schema: Json) -> bool:
    """Whether nothing is to be said of the entries of a long list of plain texts, without looking at each."""
    return schema.keys() == {"type"} and schema["type"] == "string" and set(map(type, entries)) == {str}


def _types(schema: Json) -> list[str]:
    kinds: str | list[str] = schema["type"]
    return [kinds] if isinstance(kinds, str) else kinds


# Of each word: the type of the values that it is asked of, whether one keeps it, and what is said of one that does not.
RULES: dict[str, tuple[str, Callable[[Any, Json], bool], Callable[[Json], str]]] = {
    "enum": ("", lambda value, schema: not isinstance(value, bool) and bool(value in schema["enum"]),
             lambda schema: f"must be one of {schema['enum']}"),
    "const": ("", lambda value, schema: bool(value == schema["const"]), lambda schema: f"must be {schema['const']!r}"),
    "minimum": ("number", lambda value, schema: bool(value >= schema["minimum"]),
                lambda schema: f"must be at least {schema['minimum']}"),
    "maximum": ("number", lambda value, schema: bool(value <= schema["maximum"]),
                lambda schema: f"must be at most {schema['maximum']}"),
    "minLength": ("string", lambda value, schema: bool(len(value) >= schema["minLength"]),
                  lambda schema: "must not be empty"),
    "maxLength": ("string", lambda value, schema: "x-maxBytes" in schema or bool(len(value) <= schema["maxLength"]),
                  lambda schema: f"must be at most {schema['maxLength']} characters long"),
    "x-maxBytes": ("string", lambda value, schema: bool(_bytes(value) <= schema["x-maxBytes"]),
                   lambda schema: f"must be at most {schema['x-maxBytes']} bytes of UTF-8 long"),
    "maxItems": ("array", lambda value, schema: bool(len(value) <= schema["maxItems"]),
                 lambda schema: f"must have at most {schema['maxItems']} entries"),
    "pattern": ("string", lambda value, schema: re.search(schema["pattern"].replace("$", r"\Z"), value) is not None,
                lambda schema: f"must be of the form {schema['pattern']}"),
    "x-written": ("number", lambda value, schema: isinstance(value, float),
                  lambda schema: f"must be written {schema['x-written']}"),
}


class Schema:
    """A schema and the files that it refers to."""

    def __init__(self, schema: Json, files: Mapping[str, Json]) -> None:
        self._root = schema
        self._files = files

    def faults(self, value: Any) -> list[str]:
        """What is wrong with a value, a line for each fault with its place; nothing for one that fits."""
        return list(self._faults(value, self._root, ""))

    def _target(self, reference: str) -> tuple[Schema, Json]:
        if not reference.startswith("#/"):
            other = self._files[reference]
            return Schema(other, self._files), other
        found: Any = self._root
        for step in reference[2:].split("/"):
            found = found[step]
        return self, found

    def _faults(self, value: Any, schema: Any, place: str) -> Iterator[str]:
        if isinstance(schema, bool):
            return
        where = f"{place}: " if place else ""
        if "$ref" in schema:
            owner, target = self._target(schema["$ref"])
            yield from owner._faults(value, target, place)
        if "type" in schema and not any(TYPES[kind](value) for kind in _types(schema)):
            yield f"{where}must be {' or '.join(_types(schema))}, not {value!r}"
            return
        if isinstance(value, float) and not math.isfinite(value):
            yield f"{where}must be finite, not {value!r}"
            return
        for word in schema:
            if word not in RULES:
                continue
            kind, keeps, said = RULES[word]
            if (not kind or TYPES[kind](value)) and not keeps(value, schema):
                yield f"{where}{said(schema)}, not {value!r}"
        yield from self._combined(value, schema, place)
        if isinstance(value, Mapping):
            yield from self._member_faults(value, schema, place)
        if isinstance(value, list) and "items" in schema and not _are_all_texts(value, schema["items"]):
            for number, entry in enumerate(value):
                yield from self._faults(entry, schema["items"], f"{place}[{number}]")

    def _combined(self, value: Any, schema: Json, place: str) -> Iterator[str]:
        for each in schema.get("allOf", []):
            yield from self._faults(value, each, place)
        if "if" in schema and not any(self._faults(value, schema["if"], place)):
            yield from self._faults(value, schema.get("then", {}), place)
        for word in ("anyOf", "oneOf"):
            tried = [list(self._faults(value, each, place)) for each in schema.get(word, [])]
            if tried and all(tried):
                yield " or ".join(dict.fromkeys(faults[0] for faults in tried))
            elif word == "oneOf" and sum(not faults for faults in tried) > 1:
                needed = [" and ".join(each.get("required", [])) for each in schema[word]]
                yield f"{place}: only one of {', '.join(needed)} may be there"

    def _member_faults(self, value: Mapping[str, Any], schema: Json, place: str) -> Iterator[str]:
        where = f"{place}: " if place else ""
        for member in schema.get("required", []):
            if member not in value:
                yield f"{where}{member} is missing"
        known = schema.get("properties", {})
        if schema.get("additionalProperties") is False:
            for member in value:
                if member not in known:
                    close = difflib.get_close_matches(str(member), known, 1)
                    yield f"{where}there is no member {member}" + (f"; is it {close[0]}?" if close else "")
        for member, rules in known.items():
            if member in value:
                yield from self._faults(value[member], rules, f"{place}.{member}" if place else member)
