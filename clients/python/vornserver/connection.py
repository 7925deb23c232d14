"""One kept HTTP connection to the service."""

from __future__ import annotations

import http.client
import logging
import select
import socket
import ssl
import threading
import time
from pathlib import Path
from typing import Any

from vornserver.endpoint import Credentials, Endpoint, tls_context
from vornserver.errors import AccessRefused, ConnectionLost, ServiceNotFound, TimeLimit, UnexpectedReply, VornError
from vornserver.interface import WAYS

HTTP = WAYS["http"]
REQUESTS_AT_MOST: int = HTTP["requestsPerConnection"]
# The service ends an idle connection; one that is renewed a little earlier is not lost on the way.
IDLE_SECONDS_AT_MOST: float = HTTP["idleSeconds"] * 0.8


# Before Python 3.10 the second was not the first.
TIMEOUTS = (TimeoutError, socket.timeout)

# What the statuses of a proxy mean; the service itself answers with 200 only.
STATUSES: dict[int, tuple[type[VornError], str]] = {
    401: (AccessRefused, "the name and the password, or the token, are missing or wrong"),
    403: (AccessRefused, "the proxy does not let this request in"),
    413: (AccessRefused, "the request is larger than the proxy takes"),
    502: (ConnectionLost, "the proxy lost the service"),
    503: (ServiceNotFound, "the proxy finds no service"),
    504: (TimeLimit, "the service did not answer the proxy in time"),
}

logger = logging.getLogger("vornserver")


class _Socket(socket.socket):
    """A socket whose reads end together at one time, however slowly the bytes drip."""

    deadline = 0.0

    def recv_into(self, buffer: Any, nbytes: int | None = 0, flags: int = 0) -> int:
        left = self.deadline - time.monotonic()
        if left <= 0:
            raise TimeoutError
        self.settimeout(left)
        return super().recv_into(buffer, nbytes or 0, flags)


class _TlsSocket(ssl.SSLSocket):
    """The same over TLS."""

    deadline = 0.0

    def recv_into(self, buffer: Any, nbytes: int | None = None, flags: int = 0) -> int:
        left = self.deadline - time.monotonic()
        if left <= 0:
            raise TimeoutError
        self.settimeout(left)
        return super().recv_into(buffer, nbytes, flags)


class Connection:
    """Sends requests one by one, from any thread, over a connection that is renewed when it is used up."""

    def __init__(self, endpoint: Endpoint, timeout: float, credentials: Credentials | None = None,
                 ca_file: str | Path | None = None) -> None:
        self.endpoint = endpoint if endpoint.port is not None else endpoint.at(HTTP["firstPort"])
        self.timeout = timeout
        self._headers = self.endpoint.headers(credentials)
        self._tls = tls_context(ca_file) if self.endpoint.secure else None
        if self._tls is not None:
            self._tls.sslsocket_class = _TlsSocket
        self.opened = 0
        """How many connections were made so far."""
        self._http: http.client.HTTPConnection | None = None
        self._requests = 0
        self._used_at = 0.0
        self._lock = threading.Lock()

    def close(self) -> None:
        """Ends the connection; the next request makes a new one."""
        if self._http is not None:
            self._http.close()
        self._http = None

    def exchange(self, method: str, path: str, body: bytes | None, seconds: float, repeatable: bool) -> str:
        """Sends a request and gives the reply's body. One that is `repeatable` is sent once more where the connection
        breaks. Raises ServiceNotFound, AccessRefused, ConnectionLost, TimeLimit, UnexpectedReply."""
        start = time.monotonic()
        reply = self._exchange(method, path, body, seconds, repeatable)
        logger.debug("%s %s: %d bytes, answered %d bytes after %.1f ms", method, path, len(body or b""), len(reply),
                     (time.monotonic() - start) * 1000)
        return reply

    def _exchange(self, method: str, path: str, body: bytes | None, seconds: float, repeatable: bool) -> str:
        deadline = time.monotonic() + seconds
        with self._lock:
            if time.monotonic() > deadline:
                raise TimeLimit(f"other requests took more than {seconds:g} s")
            for last in (not repeatable, True):
                connection = self._ready(deadline)
                try:
                    return self._sent(connection, method, path, body, deadline)
                except VornError:  # a reply, though not a good one
                    raise
                except TIMEOUTS as error:
                    self.close()
                    raise TimeLimit(f"no reply within {seconds:g} s") from error
                except (OSError, http.client.HTTPException) as error:
                    self.close()
                    logger.info("the connection to %s broke: %r", self.endpoint, error)
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
        if isinstance(connection.sock, ssl.SSLSocket):
            return bool(select.select([connection.sock], [], [], 0)[0])  # it has ended, or says what nobody asked for
        connection.sock.settimeout(0)
        try:
            connection.sock.recv(1, socket.MSG_PEEK)
            return True  # it has ended, or says what nobody asked for
        except BlockingIOError:
            return False
        except OSError:
            return True

    def _connect(self, deadline: float) -> http.client.HTTPConnection:
        seconds = max(min(self.timeout, deadline - time.monotonic()), 0.001)
        host, port = self.endpoint.host, self.endpoint.port
        assert port is not None
        try:
            plain = socket.create_connection((host, port), seconds)
            plain.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            secure = self._tls is not None
            connection = http.client.HTTPSConnection(host, port) if secure else http.client.HTTPConnection(host, port)
            connection.sock = (_Socket(fileno=plain.detach()) if self._tls is None
                               else self._tls.wrap_socket(plain, server_hostname=host))
        except OSError as error:
            raise ServiceNotFound(f"no service answers at {self.endpoint}: {error}") from error
        return connection

    def _sent(self, connection: http.client.HTTPConnection, method: str, path: str, body: bytes | None,
              deadline: float) -> str:
        if isinstance(connection.sock, (_Socket, _TlsSocket)):
            connection.sock.deadline = deadline
            connection.sock.settimeout(max(deadline - time.monotonic(), 0.001))
        headers = {**self._headers, **({"Content-Type": "application/json"} if body is not None else {})}
        connection.request(method, self.endpoint.path + path, body, headers)
        response = connection.getresponse()
        content = response.read()
        self._requests += 1
        self._used_at = time.monotonic()
        if response.status != 200:
            kind, what = STATUSES.get(response.status, (UnexpectedReply, "an unexpected reply"))
            raise kind(f"{what}: HTTP status {response.status} of {self.endpoint}: {content[:200]!r}")
        try:
            return content.decode()
        except UnicodeDecodeError as error:
            raise UnexpectedReply(f"a reply that is no UTF-8: {content[:200]!r}") from error
