"""What the methods that are made from the description stand on."""

from __future__ import annotations

from abc import ABC, abstractmethod
from typing import Any


class Caller(ABC):
    """Something that sends commands: a server, or a project on one."""

    name: str = ""
    """The project that the commands address."""

    @abstractmethod
    def call(self, command: str, name: str, messages: object) -> Any:
        """Sends the command of this id of the description and gives its reply as a Python value."""

    def full_name(self, variable: str) -> str:
        """The name of a project's variable as the service knows it: with the project before it, which may be there."""
        return variable if variable.startswith(f"{self.name}_") else f"{self.name}_{variable}"
