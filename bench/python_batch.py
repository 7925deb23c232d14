"""What the Python client adds to a batch: 3,000 variables read by it, beside the bare request of the same reply.

Run it in the repository's folder after a build: python3 bench/python_batch.py. The ratio is of medians within one run.
"""

from __future__ import annotations

import json
import statistics
import sys
import tempfile
import time
from collections.abc import Callable
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests" / "deploy"))

from web import service  # noqa: E402

from vornserver import Plant, Server  # noqa: E402

PUMPS = 500
ITEMS = ("Head", "Power", "IM0_FLOW", "IM0_PRE", "IM0_TEMP", "IM1_TEMP")
ROUNDS = 31


def milliseconds(act: Callable[[], object]) -> float:
    """The median of many rounds, behind a first one that is not counted."""
    act()
    times = []
    for _ in range(ROUNDS):
        start = time.perf_counter()
        act()
        times.append(time.perf_counter() - start)
    return statistics.median(times) * 1000


def main() -> None:
    plant = Plant()
    for number in range(PUMPS):
        plant.device(f"pump {number}", "pump", number)
    with tempfile.TemporaryDirectory() as folder, service(Path(folder)) as port:
        with Server(f"127.0.0.1:{port}") as server, server.create("BENCH") as project:
            project.send(plant)
            names = [f"pump {number}.{item}" for number in range(PUMPS) for item in ITEMS]
            wire = [project.full_name(name) for name in names]
            bare = milliseconds(lambda: json.loads(server.request("Get", "json", {"VarName": wire})))
            read = milliseconds(lambda: project.read(names))
            print(f"{len(names)} variables: bare request {bare:.1f} ms, read {read:.1f} ms, ratio {read / bare:.2f}")


if __name__ == "__main__":
    main()
