"""Which pipe, duct or reducer the service chooses for a connection, by the sizes of its two ports."""

from __future__ import annotations

import difflib
from dataclasses import dataclass
from typing import Optional, Tuple, Union

from vornserver.interface import FITTINGS

Size = Union[float, str, Tuple[float, float]]
"""The size of a port: a diameter in metres, a width and a height in metres, or a nominal size such as DN50, Cu 28 or
320x250."""

MILLIMETRES = 1000.0
STRAIGHT: float = FITTINGS["tolerance"]["straight"]
REDUCER: float = FITTINGS["tolerance"]["reducer"]


@dataclass(frozen=True)
class Fitting:
    """A row of the catalogue of fittings; sizes in millimetres, those of the start, and of a reducer's end."""

    type: int
    family: str
    model: str
    nominal: str
    sizes: tuple[float, ...]


def _rows() -> tuple[Fitting, ...]:
    rows = []
    for family in FITTINGS["families"]:
        for row in family["rows"]:
            nominal = row[1] if family["kind"] == "straight" else ""
            sizes = tuple(float(each) for each in row if not isinstance(each, str))
            rows.append(Fitting(family["VornModuleID"], family["english"], row[0], nominal, sizes))
    return tuple(rows)


CATALOGUE = _rows()
_NOMINAL = {each.nominal.replace(" ", "").upper(): each for each in CATALOGUE if each.nominal}


def port_size(size: Size) -> tuple[float, float]:
    """A size as width and height in metres. Raises ValueError for a nominal size that the catalogue does not have."""
    if isinstance(size, tuple):
        return size
    if not isinstance(size, str):
        return (size, size)
    key = size.replace(" ", "").replace("×", "x").upper()
    if key not in _NOMINAL:
        close = [_NOMINAL[each].nominal for each in difflib.get_close_matches(key, _NOMINAL)]
        raise ValueError(f"no fitting has the nominal size {size!r}" + (f"; close: {', '.join(close)}" if close else ""))
    x, y = _NOMINAL[key].sizes
    return (x / MILLIMETRES, y / MILLIMETRES)


def _within(row: tuple[float, ...], sizes: tuple[float, ...], tolerance: float) -> bool:
    return all(at + tolerance > size > at - tolerance for at, size in zip(row, sizes))


def fitting_of(start: tuple[float, float], end: tuple[float, float]) -> Optional[Fitting]:
    """What the service chooses for ports of these sizes in metres; None where it makes a DN50 cast-iron pipe because
    nothing fits."""
    first = tuple(each * MILLIMETRES for each in start)
    last = tuple(each * MILLIMETRES for each in end)
    if _within(last, first, REDUCER):
        sizes, tolerance = first, STRAIGHT
    else:
        sizes, tolerance = first + last, REDUCER
    return next((row for row in CATALOGUE
                 if len(row.sizes) == len(sizes) and _within(row.sizes, sizes, tolerance)), None)
