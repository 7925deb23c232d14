"""Where a service is, and who asks it."""

from __future__ import annotations

import os
import ssl
import stat
from base64 import b64encode
from dataclasses import dataclass
from pathlib import Path
from typing import Mapping
from urllib.parse import urlsplit

PORTS = {"http": 80, "https": 443}


@dataclass(frozen=True)
class Credentials:
    """A name and a password, or a token: what a proxy before the service asks for. `repr` shows no secret."""

    user: str = ""
    password: str = ""
    token: str = ""

    def __repr__(self) -> str:
        return f"Credentials(user={self.user!r})"

    def __bool__(self) -> bool:
        return bool(self.user or self.token)

    @property
    def header(self) -> dict[str, str]:
        """The header of HTTP that carries them; none where there are none."""
        if self.token:
            return {"Authorization": f"Bearer {self.token}"}
        if not self.user:
            return {}
        return {"Authorization": "Basic " + b64encode(f"{self.user}:{self.password}".encode()).decode()}

    @classmethod
    def of_file(cls, path: str | Path) -> Credentials:
        """Reads lines such as `user anna`, `password secret word` or `token abc`. Raises OSError, and ValueError for a
        file that other users can read or that has other lines."""
        with open(path, encoding="utf-8") as file:
            if os.name == "posix" and stat.S_IMODE(os.fstat(file.fileno()).st_mode) & 0o077:
                raise ValueError(f"{path}: other users can read it; run chmod 600 {path}")
            lines = [line.rstrip("\r\n").partition(" ") for line in file if line.strip()]
        if wrong := [key for key, _, _ in lines if key not in ("user", "password", "token")]:
            raise ValueError(f"{path}: a line begins with user, password or token, not {wrong[0]!r}")
        return cls(**{key: value for key, _, value in lines})

    @classmethod
    def of_environment(cls, environment: Mapping[str, str] = os.environ) -> Credentials:
        """Reads VORNSERVER_TOKEN, VORNSERVER_USER and VORNSERVER_PASSWORD, or the file that VORNSERVER_CREDENTIALS
        names. Raises as `of_file`."""
        if environment.get("VORNSERVER_CREDENTIALS"):
            return cls.of_file(environment["VORNSERVER_CREDENTIALS"])
        return cls(*(environment.get(f"VORNSERVER_{key}", "") for key in ("USER", "PASSWORD", "TOKEN")))


@dataclass(frozen=True)
class Endpoint:
    """The parts of an address; `port` is None where none is given and the scheme is not either, so that the service's
    own ports are meant."""

    host: str
    port: int | None
    path: str = ""
    secure: bool = False

    @classmethod
    def of(cls, address: str) -> Endpoint:
        """Reads a URL such as https://plant.example:8443/vorn, host:port, or host. Raises ValueError."""
        try:
            parts = urlsplit(address if "//" in address else f"//{address}")
            if parts.scheme not in ("", *PORTS) or not parts.hostname or parts.query or parts.fragment:
                raise ValueError("an address is of the form https://host:port/path or http://host:port")
            if parts.username is not None:
                raise ValueError("a name and a password do not belong into an address")
            path = parts.path.rstrip("/")
            port = PORTS["https"] if parts.port is None and parts.scheme == "https" else parts.port
            if port is None and path:
                port = PORTS["http"]
            return cls(parts.hostname, port, path, parts.scheme == "https")
        except ValueError as error:
            raise ValueError(f"{error}: {address!r}") from None

    def at(self, port: int) -> Endpoint:
        """The same at a port."""
        return Endpoint(self.host, port, self.path, self.secure)

    def __str__(self) -> str:
        scheme = "https" if self.secure else "http"
        port = "" if self.port in (None, PORTS["https"] if self.secure else None) else f":{self.port}"
        return f"{scheme}://{f'[{self.host}]' if ':' in self.host else self.host}{port}{self.path}"

    def headers(self, credentials: Credentials | None) -> dict[str, str]:
        """The headers that carry the credentials: those given, else those of the environment, which are sent over https
        only. Raises ValueError for given ones that would be readable on the way."""
        if credentials and not self.secure:
            raise ValueError(f"credentials are sent over https only, and {self} is not")
        if credentials is not None or not self.secure:
            return credentials.header if credentials else {}
        return Credentials.of_environment().header


def tls_context(ca_file: str | Path | None) -> ssl.SSLContext:
    """What a certificate is checked by: a file of authorities, else VORNSERVER_CA_FILE, else those of the system."""
    chosen = ca_file or os.environ.get("VORNSERVER_CA_FILE") or None
    return ssl.create_default_context(cafile=None if chosen is None else str(chosen))
