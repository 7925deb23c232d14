"""Values of variables: numbers and lists of numbers here, texts on the wire."""

from __future__ import annotations

import math
from typing import Sequence, Union

Value = Union[int, float, Sequence[int], Sequence[float]]
"""A real number, an integer, or a list of eight of either."""

LIST_LENGTH = 8


def _number(text: str) -> int | float:
    try:
        return int(text)
    except ValueError:
        return float(text)


def value_of(text: str) -> Value:
    """The value that a reply tells: 21.500000 is a float, 7 an int, and what has commas a list. Raises ValueError."""
    if "," not in text:
        return _number(text)
    numbers = [_number(each) for each in text.split(",")]
    return numbers if all(isinstance(each, int) for each in numbers) else [float(each) for each in numbers]


def _number_text(value: object) -> str:
    if isinstance(value, bool):
        return str(int(value))
    if not isinstance(value, (int, float)):
        raise ValueError(f"no number: {value!r}")
    if not math.isfinite(value):
        raise ValueError(f"no finite number: {value!r}")
    return repr(value)


def text_of(value: Value | str) -> str:
    """A value as it is written; a text stays as it is. Raises ValueError for what would not be taken as meant."""
    if isinstance(value, str):
        return value
    if not isinstance(value, Sequence):
        return _number_text(value)
    if len(value) > LIST_LENGTH:
        raise ValueError(f"a list variable has {LIST_LENGTH} entries, not {len(value)}")
    return ",".join(_number_text(each) for each in value)
