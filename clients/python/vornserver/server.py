"""A running service."""

from __future__ import annotations

import json
import socket
import time
from pathlib import Path
from types import TracebackType
from typing import Any

from vornserver.caller import Service
from vornserver.commands import ServerCommands
from vornserver.connection import HTTP, Connection, logger
from vornserver.endpoint import Credentials, Endpoint
from vornserver.errors import (
    AccessRefused, MessagesError, PlantError, ServiceError, ServiceNotFound, StateError, VornError)
from vornserver.interface import COMMANDS, VERSION
from vornserver.local import LOCAL_HOSTS, local_version
from vornserver.plant import rounded_from
from vornserver.project import Project

# How long a service may take for its greeting, which it gives also while a command waits.
GREETING_SECONDS = 2.0


class Server(ServerCommands, Service):
    """A service at an address, over one kept connection.

    Use it in a `with` statement, or close it. It can be used from several threads; requests go one by one, as the
    service carries them out. `timeout` is how long, in seconds, a reply may take beside the waits that the command
    makes by contract; other clients' commands count in it, since one runs at a time.

    Behind a proxy the address is a URL such as https://plant.example:8443, with a path where the proxy has one.
    `credentials` are what it asks for, else those of the environment; `ca_file` is what its certificate is checked by,
    else VORNSERVER_CA_FILE, else the system's authorities. Raises ValueError for what is no address.
    """

    def __init__(self, address: str = "127.0.0.1", timeout: float = 30.0, *, credentials: Credentials | None = None,
                 ca_file: str | Path | None = None) -> None:
        self.timeout = timeout
        self._connection = Connection(Endpoint.of(address), timeout, credentials, ca_file)

    @classmethod
    def find(cls, address: str = "127.0.0.1", *, holding: str = "", directory: str = "", timeout: float = 30.0,
             within: float = 10.0, credentials: Credentials | None = None,
             ca_file: str | Path | None = None) -> Server:
        """Finds a service: at a URL or an address with a port, or on a machine, by its ports in their order.

        holding: the service must hold this open project.
        directory: the service must run from this directory, such as /opt/vorn.
        within: how long the search may take, in seconds.

        Raises ServiceNotFound, and AccessRefused where a proxy does not let this client in.
        """
        place = Endpoint.of(address)
        ports = range(HTTP["firstPort"], HTTP["lastPort"] + 1) if place.port is None else [place.port]
        end = time.monotonic() + within
        why = ""
        for each in ports:
            left = end - time.monotonic()
            if left <= 0:
                break
            server = cls(str(place.at(each)), min(GREETING_SECONDS, left), credentials=credentials, ca_file=ca_file)
            try:
                if server._is_meant(holding, directory):
                    server.timeout = server._connection.timeout = timeout
                    server._compare_versions()
                    return server
                why = "; what answers is another"
            except AccessRefused:
                server.disconnect()
                raise
            except VornError as error:
                why = why or f"; {error}"
                if isinstance(error.__cause__, socket.gaierror):
                    break  # a name that leads nowhere does so at each port
            server.disconnect()
        where = address if place.port is not None else f"{address}, ports {ports[0]} to {ports[-1]}"
        raise ServiceNotFound(f"no service was found at {where}" + (f" that holds {holding}" if holding else "")
                              + (f" that runs from {directory}" if directory else "") + why)

    def _is_meant(self, holding: str, directory: str) -> bool:
        return (self.greets() and (not holding or self.holds_project(holding))
                and (not directory or self.runs_from(directory.rstrip("/").replace("/", "_") + "_")))

    @property
    def address(self) -> str:
        """The service's address."""
        return str(self._connection.endpoint)

    def _compare_versions(self) -> None:
        """Logs a warning where the service may have commands that this client does not have, or the reverse."""
        theirs = self.version
        if theirs and theirs.split(".")[:2] != VERSION.split(".")[:2]:
            logger.warning("the service at %s is of version %s, and this client of %s", self.address, theirs, VERSION)

    @property
    def connections(self) -> int:
        """How many connections were made so far."""
        return self._connection.opened

    def disconnect(self) -> None:
        """Ends the connection; the next command makes a new one."""
        self._connection.close()

    def __enter__(self) -> Server:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 trace: TracebackType | None) -> None:
        self.disconnect()

    def __repr__(self) -> str:
        return f"Server({self.address!r})"

    def greets(self) -> bool:
        """Whether what answers at the address is the service. Raises ServiceNotFound, ConnectionLost, TimeLimit,
        UnexpectedReply."""
        greeting: str = HTTP["greeting"]
        return self._connection.exchange("GET", HTTP["greetingPath"], None, self.timeout, True) == greeting

    @property
    def version(self) -> str:
        """The version of a service of this machine, where this user may know it; else the empty text."""
        place = self._connection.endpoint
        return local_version(place.port or 0) if place.host in LOCAL_HOSTS and not place.secure else ""

    def request(self, word: str, name: str = "", messages: object = None, *, repeatable: bool = False,
                seconds: float | None = None) -> str:
        """Sends any word and gives the reply's text, whatever it says.

        repeatable: it may be sent once more where the connection breaks before the reply.
        seconds: how long the reply may take, if not `timeout`.
        """
        body: dict[str, object] = {"command": word, "name": name}
        if messages is not None:
            body["messages"] = messages
        sent = json.dumps(body, allow_nan=False).encode()
        return self._connection.exchange("POST", HTTP["path"], sent, seconds or self.timeout, repeatable)

    def call(self, command: str, name: str, messages: object) -> Any:
        """Sends the command of this id of the description and returns its reply as a Python value. Raises MessagesError
        where the service would store the messages otherwise than written, ServiceError by what the service says, and
        the other exceptions of this package where it says nothing proper."""
        described = COMMANDS[command]
        if faults := described.faults(messages):
            raise (PlantError if command == "PjtSent" else MessagesError)(faults)
        reply = self.request(described.word, name, messages, repeatable=described.repeatable,
                             seconds=self.timeout + described.seconds)
        try:
            return described.result(reply, messages)
        except ServiceError as error:
            if error.failure == "moduleNotFound" and isinstance(messages, dict):
                error.todo += rounded_from(messages["VornModuleID"])
            if hasattr(error, "add_note"):  # from Python 3.11 on
                error.add_note(f"{described.word} {name}: {error.todo}")
            raise

    def create(self, project: str) -> Project:
        """Makes a new empty project. Raises StateError where it is open already, and ServiceError."""
        self.call("Create", project, None)
        return Project(self, project)

    def open(self, project: str) -> Project:
        """Returns a project: the open one of this name, else the stored one, else a new one. A `with` statement closes
        it only where this call opened it. Raises ServiceError."""
        try:
            self.call("Open", project, None)
        except StateError:
            return Project(self, project, closes=False)
        return Project(self, project)

    def project(self, project: str) -> Project:
        """A project that is open already; nothing is asked, and a `with` statement leaves it open."""
        return Project(self, project, closes=False)
