"""One kept HTTP connection to the service."""

from __future__ import annotations

import http.client
import socket
import threading
import time
from typing import Any
from urllib.parse import urlsplit

from vornserver.errors import ConnectionLost, ServiceNotFound, TimeLimit, UnexpectedReply
from vornserver.interface import WAYS

HTTP = WAYS["http"]
REQUESTS_AT_MOST: int = HTTP["requestsPerConnection"]
# The service ends an idle connection; one that is renewed a little earlier is not lost on the way.
IDLE_SECONDS_AT_MOST: float = HTTP["idleSeconds"] * 0.8


class _Socket(socket.socket):
    """A socket whose reads end together at one time, however slowly the bytes drip."""

    deadline = 0.0

    def recv_into(self, buffer: Any, nbytes: int = 0, flags: int = 0) -> int:
        left = self.deadline - time.monotonic()
        if left <= 0:
            raise TimeoutError
        self.settimeout(left)
        return super().recv_into(buffer, nbytes, flags)


def host_and_port(address: str) -> tuple[str, int | None]:
    """Of http://host:port, host:port or host. Raises ValueError."""
    try:
        parts = urlsplit(address if "//" in address else f"//{address}")
        if parts.scheme not in ("", "http") or not parts.hostname:
            raise ValueError("an address is of the form http://host:port")
        return parts.hostname, parts.port
    except ValueError as error:
        raise ValueError(f"{error}: {address!r}") from None


class Connection:
    """Sends requests one by one, from any thread, over a connection that is renewed when it is used up."""

    def __init__(self, address: str, timeout: float) -> None:
        self.host, port = host_and_port(address)
        self.port: int = HTTP["firstPort"] if port is None else port
        self.timeout = timeout
        self.opened = 0
        """How many connections were made so far."""
        self._http: http.client.HTTPConnection | None = None
        self._requests = 0
        self._used_at = 0.0
        self._lock = threading.Lock()

    @property
    def address(self) -> str:
        return f"http://{f'[{self.host}]' if ':' in self.host else self.host}:{self.port}"

    def close(self) -> None:
        """Ends the connection; the next request makes a new one."""
        if self._http is not None:
            self._http.close()
        self._http = None

    def exchange(self, method: str, path: str, body: bytes | None, seconds: float, repeatable: bool) -> str:
        """Sends a request and gives the reply's body. One that is `repeatable` is sent once more where the connection
        breaks. Raises ServiceNotFound, ConnectionLost, TimeLimit, UnexpectedReply."""
        deadline = time.monotonic() + seconds
        with self._lock:
            if time.monotonic() > deadline:
                raise TimeLimit(f"other requests took more than {seconds:g} s")
            for last in (not repeatable, True):
                connection = self._ready(deadline)
                try:
                    return self._sent(connection, method, path, body, deadline)
                except TimeoutError as error:
                    self.close()
                    raise TimeLimit(f"no reply within {seconds:g} s") from error
                except (OSError, http.client.HTTPException) as error:
                    self.close()
                    if last:
                        raise ConnectionLost(f"the connection broke before the reply: {error}") from error
                except BaseException:  # half a reply must not be taken for that of the next request
                    self.close()
                    raise
        raise AssertionError("not reached")

    def _ready(self, deadline: float) -> http.client.HTTPConnection:
        if self._http is not None and self._is_used_up(self._http):
            self.close()
        if self._http is None:
            self._http = self._connect(deadline)
            self._requests = 0
            self.opened += 1
        return self._http

    def _is_used_up(self, connection: http.client.HTTPConnection) -> bool:
        idle = time.monotonic() - self._used_at
        if connection.sock is None or self._requests >= REQUESTS_AT_MOST or idle > IDLE_SECONDS_AT_MOST:
            return True
        connection.sock.settimeout(0)
        try:
            connection.sock.recv(1, socket.MSG_PEEK)
            return True  # it has ended, or tells what nobody asked for
        except BlockingIOError:
            return False
        except OSError:
            return True

    def _connect(self, deadline: float) -> http.client.HTTPConnection:
        seconds = max(min(self.timeout, deadline - time.monotonic()), 0.001)
        try:
            plain = socket.create_connection((self.host, self.port), seconds)
        except OSError as error:
            raise ServiceNotFound(f"no service answers at {self.host}:{self.port}: {error}") from error
        plain.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        connection = http.client.HTTPConnection(self.host, self.port)
        connection.sock = _Socket(fileno=plain.detach())
        return connection

    def _sent(self, connection: http.client.HTTPConnection, method: str, path: str, body: bytes | None,
              deadline: float) -> str:
        if isinstance(connection.sock, _Socket):
            connection.sock.deadline = deadline
            connection.sock.settimeout(max(deadline - time.monotonic(), 0.001))
        connection.request(method, path, body, {"Content-Type": "application/json"} if body is not None else {})
        response = connection.getresponse()
        content = response.read()
        self._requests += 1
        self._used_at = time.monotonic()
        if response.status != 200:
            raise UnexpectedReply(f"HTTP status {response.status}: {content[:200]!r}")
        try:
            return content.decode()
        except UnicodeDecodeError as error:
            raise UnexpectedReply(f"a reply that is no UTF-8: {content[:200]!r}") from error
