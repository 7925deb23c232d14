"""What a fleet gives: commands a second with 1, 2 and 4 servers, and what the proxy costs a single read.

Each placement waits 300 ms by contract; sixteen clients place nodes into projects of their own. Run it in the
repository's folder after a build: python3 bench/fleet.py. The clients' requests go to this machine only.
"""

from __future__ import annotations

import statistics
import sys
import tempfile
import threading
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests" / "deploy"))

from web import HOST, REPOSITORY, ask, await_that, free_port, program  # noqa: E402

CLIENTS = 16
SECONDS = 12.0
READS = 400
NODE = {"VornModuleID": 3000, "NodeName": "FLUID"}


def placements(port: int, projects: list[str]) -> float:
    """Nodes that the clients place in a second."""
    end = time.monotonic() + SECONDS
    counts = [0] * len(projects)

    def client(number: int) -> None:
        while time.monotonic() < end:
            assert ask(port, "AddNode", projects[number], NODE).startswith("NOD")
            counts[number] += 1

    threads = [threading.Thread(target=client, args=(number,)) for number in range(len(projects))]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return sum(counts) / SECONDS


def read_time(port: int, name: str) -> float:
    """The median of a single read on a connection of its own, in milliseconds."""
    times = []
    for _ in range(READS):
        start = time.perf_counter()
        ask(port, "Get", name)
        times.append(time.perf_counter() - start)
    return statistics.median(times) * 1000


def measure(servers: int) -> float:
    """Placements a second with so many servers; with one, the proxy's cost is told too."""
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        port = free_port()
        environment = {"VORN_HOST": str(HOST), "VORN_FLEET_METRICS": f"127.0.0.1:{free_port()}"}
        script = [str(REPOSITORY / "scripts/fleet.sh"), str(servers), f"127.0.0.1:{port}", str(folder / "fleet")]
        log = folder / "fleet.log"
        with program(script, folder, log, environment):
            await_that("the fleet starts", lambda: "until Ctrl-C" in log.read_text())
            # A server has room for eight projects.
            projects = [f"HALL{number}" for number in range(min(CLIENTS, 6 * servers))]
            opened = [project for project in projects if ask(port, "Create", project) == "OK"]
            rate = placements(port, opened)
            print(f"{servers} servers, {len(opened)} clients: {rate:.1f} placements a second")
            if servers == 1:
                direct = int(log.read_text().split("server 1 answers at 127.0.0.1:")[1].split("\n")[0])
                bare, through = read_time(direct, "HALL0_GTemp"), read_time(port, "HALL0_GTemp")
                print(f"a read: {bare:.2f} ms bare, {through:.2f} ms through the proxy, {through / bare:.2f} times")
            return rate


if __name__ == "__main__":
    one = measure(1)
    for number in (2, 4):
        print(f"{measure(number) / one:.2f} times one server's")
