"""Mixed commands over all three ways into a real host, for minutes: soak.py PROGRAM MINUTES.

Each reply is held against what it must be. After each lap, when all clients have gone, the host's memory, descriptors and
threads are held against those after the first laps. The exit status is 1 when anything was wrong.
"""

from __future__ import annotations

import http.client
import json
import os
import random
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time
import tty
from collections import Counter
from collections.abc import Callable
from dataclasses import dataclass, field
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]
COLD_STORE = (REPOSITORY / "examples/cold_store.json").read_text(encoding="utf-8")
NO_VARIABLE = "none varname 找不到变量名称"
WARM_LAPS = 2
OWNERS = 4
MEMORY_SLACK_KB = 8192

Ask = Callable[[str, str, str], str]


@dataclass
class Tally:
    """What was asked and what went wrong. Any thread may add."""

    lock: threading.Lock = field(default_factory=threading.Lock)
    asked: Counter[str] = field(default_factory=Counter)
    faults: list[str] = field(default_factory=list)

    def expect(self, way: str, request: str, reply: str, wanted: str) -> None:
        with self.lock:
            self.asked[way] += 1
            if reply != wanted:
                self.faults.append(f"{way}: {request}: {reply[:200]!r} instead of {wanted[:200]!r}")


class Host:
    """A copy of the program in a folder of its own, with one end of a pseudo-terminal as its serial line."""

    def __init__(self, program: Path) -> None:
        self.folder = Path(tempfile.mkdtemp(prefix="vorn_soak_"))
        (self.folder / "work").mkdir()
        (self.folder / "bin").mkdir()
        self.line, device = os.openpty()
        tty.setraw(device)
        copy = shutil.copy(program, self.folder / "bin")
        self._output = (self.folder / "output").open("w+", encoding="utf-8")
        self.process = subprocess.Popen([copy, "--serial", os.ttyname(device)], cwd=self.folder / "work",
                                        stdout=self._output, stderr=subprocess.STDOUT)
        os.close(device)
        self.port = int(self._told(r"http://127\.0\.0\.1:(\d+)/api"))
        self.pipe = self._told(r"holds the pipe (\w+)")

    def _told(self, pattern: str) -> str:
        for _ in range(300):
            found = re.search(pattern, (self.folder / "output").read_text(encoding="utf-8"))
            if found:
                return found.group(1)
            time.sleep(0.1)
        raise RuntimeError("the host has not told " + pattern)

    def state(self) -> tuple[int, int, int]:
        """Its memory in KB, its open descriptors and its threads."""
        status = Path(f"/proc/{self.process.pid}/status").read_text(encoding="utf-8")
        values = dict(re.findall(r"^(VmRSS|Threads):\s+(\d+)", status, re.MULTILINE))
        return int(values["VmRSS"]), len(os.listdir(f"/proc/{self.process.pid}/fd")), int(values["Threads"])

    def end(self) -> int:
        self.process.terminate()
        status = self.process.wait(20)
        os.close(self.line)
        self._output.close()
        shutil.rmtree(self.folder)
        return status


class HttpWay:
    def __init__(self, port: int) -> None:
        self._client = http.client.HTTPConnection("127.0.0.1", port, timeout=120)

    def __call__(self, command: str, name: str, messages: str) -> str:
        return self.post(json.dumps({"command": command, "name": name, "messages": messages}))

    def post(self, body: str) -> str:
        # The client connects anew where the service has ended the connection, as after each hundredth request.
        self._client.request("POST", "/api", body.encode(), {"Range": "bytes=0-1"} if len(body) % 7 == 0 else {})
        response = self._client.getresponse()
        reply = response.read().decode()
        if response.status != 200 or response.getheader("Connection") == "close":
            self._client.close()
        return reply

    def close(self) -> None:
        self._client.close()


def pipe_way(name: str) -> Ask:
    def ask(command: str, data: str, messages: str) -> str:
        with socket.socket(socket.AF_UNIX) as pipe:
            pipe.settimeout(120)
            pipe.connect("\0" + name)
            pipe.sendall(f"{command}/{data}/{messages}".encode())
            pipe.shutdown(socket.SHUT_WR)
            return b"".join(iter(lambda: pipe.recv(65536), b"")).decode()
    return ask


def serial_way(line: int) -> Ask:
    def ask(command: str, data: str, messages: str) -> str:
        os.write(line, f"{command}/{data}{'/' if messages else ''}{messages}\r".encode())
        reply = b""
        while not reply.endswith(b"\r\n"):
            reply += os.read(line, 4096)
        return reply[:-2].decode()
    return ask


@dataclass
class Client:
    """One client. An owner has a project for itself, so that each reply is known beforehand; others only ask what
    nobody changes."""

    way: str
    ask: Ask
    project: str
    owner: bool
    tally: Tally
    chance: random.Random

    def say(self, command: str, name: str, messages: str, wanted: str) -> None:
        self.tally.expect(self.way, f"{command} {name} {messages[:80]}", self.ask(command, name, messages), wanted)

    def values(self) -> None:
        value = self.chance.randint(-999, 999)
        self.say("Set", f"{self.project}_GTemp", str(value), "OK")
        self.say("Get", f"{self.project}_GTemp", "", f"{value}.000000")
        self.say("Get", f"{self.project}_NoSuch", "", NO_VARIABLE)

    def batch(self) -> None:
        values = [str(self.chance.randint(0, 99)) for _ in range(2)]
        names = [f"{self.project}_GTemp", f"{self.project}_COP"]
        self.say("Set", "json", json.dumps({"VarName": names, "VarValue": values}), '["OK","OK"]')
        self.say("Get", "json", json.dumps({"VarName": names}),
                 json.dumps([value + ".000000" for value in values], separators=(",", ":")))

    def large_batch(self) -> None:
        count = self.chance.randint(1000, 5000)
        names = [f"{self.project}_NoSuch"] * count
        self.say("Get", "json", json.dumps({"VarName": names}), "[" + ",".join([f'"{NO_VARIABLE}"'] * count) + "]")
        self.say("Fdp", self.project, "", "1")

    def drawing(self) -> None:
        name = "D" + self.project
        self.say("Create", name, "", "OK")
        self.say("Fdp", name, "", "1")
        self.say("AddModule", name, '{"VornModuleID":2601010000014,"DeviceName":"膨胀水箱"}', "MOD0")
        self.say("AddNode", name, '{"VornModuleID":3000,"NodeName":"FLUID"}', "NOD0")
        self.say("AddLink", name, '{"F_InstanceID":"MOD0","F_PortNb":1,"S_InstanceID":"NOD0"}',
                 "OK,但是新增了一个模块、链接了两条线:MOD1、LNK0、LNK1")
        self.say("PjtClose", name, "", "OK")

    def plant(self) -> None:
        # A step may end after the stop's reply, so what runs is closed and nothing of it is read.
        name = "R" + self.project
        self.say("Create", name, "", "OK")
        for command, messages in (("PjtSent", COLD_STORE), ("NetAccess", ""), ("PjtRun", ""), ("PjtStop", "")):
            self.say(command, name, messages, "OK")
        self.say("PjtClose", name, "", "OK")

    def refused(self) -> None:
        if isinstance(self.ask, HttpWay):
            self.tally.expect(self.way, "half a text", self.ask.post('{"command":"Get"'), "API调用格式错误")
        self.say("Create", "no-name", "", "项目名称仅支持英文字母与数字")
        self.say("NoSuchWord", self.project, "", "无法识别name中的InstanceID或ConnectionID，请核对一下")

    def lap(self, until: float) -> None:
        deeds: dict[Callable[[], None], int] = {}
        if self.owner:
            deeds |= {self.values: 60, self.batch: 40}
        if self.way != "serial":
            deeds |= {self.large_batch: 5, self.refused: 10}
            if self.owner:
                deeds |= {self.drawing: 1, self.plant: 1}
        while time.monotonic() < until and len(self.tally.faults) < 20:
            self.chance.choices(list(deeds), list(deeds.values()))[0]()


def rude(port: int, pipe: str, until: float) -> None:
    """Clients that come and go without a request, or with half a one."""
    while time.monotonic() < until:
        with socket.create_connection(("127.0.0.1", port)) as half:
            half.sendall(b"POST /api HTTP/1.1\r\nContent-Length: 100\r\n\r\n{")
        with socket.socket(socket.AF_UNIX) as silent:
            silent.connect("\0" + pipe)
        time.sleep(1)


def lap(host: Host, tally: Tally, chance: random.Random, seconds: float) -> None:
    until = time.monotonic() + seconds
    https = [HttpWay(host.port) for _ in range(4)]
    ways: list[tuple[str, Ask]] = [("serial", serial_way(host.line)), ("pipe", pipe_way(host.pipe))]
    ways += [("http", way) for way in https]
    # Eight projects can be open: four owners' own, and one more that each but the serial one opens for a while.
    clients = [Client(way, ask, f"SOAK{number % OWNERS}", number < OWNERS, tally, random.Random(chance.random()))
               for number, (way, ask) in enumerate(ways)]

    def run(client: Client) -> None:
        try:
            client.lap(until)
        except Exception as fault:  # whatever a client meets is a fault of the host
            tally.expect(client.way, "an exchange", repr(fault), "a reply")

    threads = [threading.Thread(target=run, args=(client,)) for client in clients]
    threads.append(threading.Thread(target=rude, args=(host.port, host.pipe, until)))
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for way in https:
        way.close()


def settled(host: Host) -> tuple[int, int, int]:
    """The host's state when the last connections have gone."""
    state = host.state()
    for _ in range(30):
        time.sleep(0.5)
        before, state = state, host.state()
        if before[1:] == state[1:]:
            break
    return state


def main() -> int:
    program, minutes = Path(sys.argv[1]), float(sys.argv[2])
    seed = random.randrange(1 << 32)
    laps = max(4, round(minutes * 4))
    print(f"soak: {minutes:g} minutes in {laps} laps, seed {seed}")
    chance, tally, host = random.Random(seed), Tally(), Host(program)
    states: list[tuple[int, int, int]] = []
    try:
        http_way = HttpWay(host.port)
        for number in range(OWNERS):
            tally.expect("http", "Create", http_way("Create", f"SOAK{number}", ""), "OK")
        http_way.close()
        for number in range(laps):
            lap(host, tally, chance, minutes * 60 / laps)
            states.append(settled(host))
            print("soak: lap {}: {} exchanges, {} KB, {} descriptors, {} threads".format(
                number + 1, sum(tally.asked.values()), *states[-1]), flush=True)
            if tally.faults:
                break
    finally:
        status = host.end()
    if status != 0:
        tally.faults.append(f"the host ended with {status}")
    warm, last = states[min(WARM_LAPS, len(states)) - 1], states[-1]
    if last[0] > max(state[0] for state in states[:WARM_LAPS]) + MEMORY_SLACK_KB:
        tally.faults.append(f"memory grew from {warm[0]} to {last[0]} KB")
    if last[1:] != warm[1:]:
        tally.faults.append(f"descriptors and threads went from {warm[1:]} to {last[1:]}")
    for fault in tally.faults:
        print(f"soak: {fault}", file=sys.stderr)
    print(f"soak: {dict(tally.asked)} exchanges, {len(tally.faults)} faults")
    return 1 if tally.faults else 0


if __name__ == "__main__":
    sys.exit(main())
