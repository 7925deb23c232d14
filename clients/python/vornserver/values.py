"""Values of variables: numbers and lists of numbers here, texts on the wire."""

from __future__ import annotations

import math
import numbers
import re
from typing import List, Sequence, Union

Value = Union[float, List[float]]
"""What a variable contains: a number, which is an int where the variable is an integer, or a list of eight numbers."""

Writable = Union[float, str, Sequence[float]]
"""What a variable can be written with: a number, a text of one, or up to eight numbers."""

LIST_LENGTH = 8

_NUMBER = re.compile(r"[+-]?([0-9]+\.?[0-9]*|\.[0-9]+)([eE][+-]?[0-9]+)?")
_INTEGERS = range(-(2**31) + 8, 2**31 - 7)


def _number(text: str) -> float:
    try:
        return int(text)
    except ValueError:
        return float(text)


def value_of(text: str) -> Value:
    """The value that a reply contains: 21.500000 is a float, 7 an int, and what has commas a list. Raises ValueError."""
    if "," not in text:
        return _number(text)
    entries = [_number(each) for each in text.split(",")]
    return entries if all(isinstance(each, int) for each in entries) else [float(each) for each in entries]


def _integer_text(value: float) -> str:
    """An integer as it must be written: the service adds a thousandth and cuts towards zero, which -3 does not
    survive and -3.5 does."""
    if value != int(value) or int(value) not in _INTEGERS:
        raise ValueError(f"no integer of 32 bits: {value!r}")
    return f"{int(value)}.5" if value < 0 else str(int(value))


def number_text(value: object, integer: bool = False) -> str:
    """A number, or the text of one, as the service reads it; `integer` is whether the variable is one. Raises ValueError
    for what is no finite number, and for what is no integer where one is needed."""
    if isinstance(value, str):
        if not _NUMBER.fullmatch(value.strip()):
            raise ValueError(f"no number: {value!r}")
        number: float = _number(value)
    elif isinstance(value, numbers.Integral):
        number = int(value)
    elif isinstance(value, numbers.Real):
        number = float(value)
    else:
        raise ValueError(f"no number: {value!r}")
    if not math.isfinite(number):
        raise ValueError(f"no finite number: {value!r}")
    if integer:
        return _integer_text(number)
    return value.strip() if isinstance(value, str) else repr(number)


def _entries(value: object) -> list[object] | None:
    """The entries of a list of numbers, also of one in a text or of an array of another package."""
    if isinstance(value, str):
        return list(value.split(",")) if "," in value else None
    if isinstance(value, Sequence):
        return list(value)
    listed = value.tolist() if hasattr(value, "tolist") else None
    return listed if isinstance(listed, list) else None


def text_of(value: object, kind: str = "") -> str:
    """A value as it is written. `kind` is that of the variable where it is known: real, integer, list of reals or list of
    integers. Raises ValueError for what the service would store otherwise."""
    entries = _entries(value)
    if kind and (entries is not None) != kind.startswith("list"):
        raise ValueError(f"the variable is a {kind}, which {value!r} is not")
    if entries is None:
        return number_text(value, integer=kind == "integer")
    if not 1 <= len(entries) <= LIST_LENGTH:
        raise ValueError(f"a list variable has 1 to {LIST_LENGTH} entries, not {len(entries)}")
    return ",".join(number_text(each, integer=kind == "list of integers") for each in entries)
