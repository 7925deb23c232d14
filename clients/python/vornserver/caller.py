"""What the methods that are made from the description need of a server or a project."""

from __future__ import annotations

from abc import ABC, abstractmethod
from typing import Any

from vornserver.variables import value_text


class Caller(ABC):
    """Something that sends commands: a server, or a project on one."""

    name: str = ""
    """The project that the commands address."""

    @abstractmethod
    def call(self, command: str, name: str, messages: object) -> Any:
        """Sends the command of this id of the description and returns its reply as a Python value."""

    def full_name(self, variable: str) -> str:
        """The name of a project's variable as the service knows it: with the project before it, which may be there."""
        return variable if variable.startswith(f"{self.name}_") else f"{self.name}_{variable}"

    def value_text(self, variable: str, value: object) -> str:
        """A value of a variable as it is written. Raises ValueError for one that is none of its kind."""
        own = variable[len(self.name) + 1:] if variable.startswith(f"{self.name}_") else variable
        return value_text(own, value)


class Service(Caller):
    """A server, as a project sees it."""

    @property
    @abstractmethod
    def address(self) -> str:
        """The service's address."""
