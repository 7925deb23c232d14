"""The part of JSON Schema that the description uses, and its words of its own for texts and numbers."""

from __future__ import annotations

import re
from typing import Any, Callable, Iterator, Mapping

Json = dict[str, Any]

TYPES: dict[str, Callable[[Any], bool]] = {
    "object": lambda value: isinstance(value, Mapping),
    "array": lambda value: isinstance(value, list),
    "string": lambda value: isinstance(value, str),
    "integer": lambda value: isinstance(value, int) and not isinstance(value, bool)
    or isinstance(value, float) and value.is_integer(),
    "number": lambda value: isinstance(value, (int, float)) and not isinstance(value, bool),
    "boolean": lambda value: isinstance(value, bool),
    "null": lambda value: value is None,
}


def _length(value: str, schema: Json) -> int:
    return len(value.encode(errors="replace")) if "bytes" in schema.get("x-unit", "") else len(value)


def _types(schema: Json) -> list[str]:
    kinds: str | list[str] = schema["type"]
    return [kinds] if isinstance(kinds, str) else kinds


# Of each word: the type of the values that it is asked of, whether one keeps it, and what is said of one that does not.
RULES: dict[str, tuple[str, Callable[[Any, Json], bool], Callable[[Json], str]]] = {
    "enum": ("", lambda value, schema: bool(value in schema["enum"]),
             lambda schema: f"must be one of {schema['enum']}"),
    "const": ("", lambda value, schema: bool(value == schema["const"]), lambda schema: f"must be {schema['const']!r}"),
    "minimum": ("number", lambda value, schema: bool(value >= schema["minimum"]),
                lambda schema: f"must be at least {schema['minimum']}"),
    "maximum": ("number", lambda value, schema: bool(value <= schema["maximum"]),
                lambda schema: f"must be at most {schema['maximum']}"),
    "maxLength": ("string", lambda value, schema: bool(_length(value, schema) <= schema["maxLength"]),
                  lambda schema: f"must be at most {schema['maxLength']} {schema.get('x-unit', 'characters')} long"),
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

    def _faults(self, value: Any, schema: Json, place: str) -> Iterator[str]:
        where = f"{place}: " if place else ""
        if "$ref" in schema:
            owner, target = self._target(schema["$ref"])
            yield from owner._faults(value, target, place)
        if "type" in schema and not any(TYPES[kind](value) for kind in _types(schema)):
            yield f"{where}must be {' or '.join(_types(schema))}, not {value!r}"
            return
        for word, (kind, keeps, said) in RULES.items():
            if word in schema and (not kind or TYPES[kind](value)) and not keeps(value, schema):
                yield f"{where}{said(schema)}, not {value!r}"
        if "anyOf" in schema:
            yield from self._alternatives(value, schema["anyOf"], place)
        if isinstance(value, Mapping):
            yield from self._member_faults(value, schema, place)
        if isinstance(value, list) and "items" in schema:
            for number, entry in enumerate(value):
                yield from self._faults(entry, schema["items"], f"{place}[{number}]")

    def _alternatives(self, value: Any, schemas: list[Json], place: str) -> Iterator[str]:
        tried = [list(self._faults(value, each, place)) for each in schemas]
        if all(tried):
            yield " or ".join(dict.fromkeys(faults[0] for faults in tried))

    def _member_faults(self, value: Mapping[str, Any], schema: Json, place: str) -> Iterator[str]:
        where = f"{place}: " if place else ""
        for member in schema.get("required", []):
            if member not in value:
                yield f"{where}{member} is missing"
        for member, rules in schema.get("properties", {}).items():
            if member in value:
                yield from self._faults(value[member], rules, f"{place}.{member}" if place else member)
