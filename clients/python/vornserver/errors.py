"""What can go wrong: the service refuses, or there is no proper answer from it."""

from __future__ import annotations

from typing import Mapping


class VornError(Exception):
    """The base of all exceptions of this package."""


class ServiceNotFound(VornError, ConnectionError):
    """No service answers at the address. Nothing was carried out."""


class ConnectionLost(VornError, ConnectionError):
    """The connection broke before the reply. The command may have been carried out."""


class TimeLimit(VornError, TimeoutError):
    """The reply did not come in time. The command may have been carried out, or may be still."""


class AccessRefused(VornError, PermissionError):
    """A proxy before the service does not let the request in. Nothing was carried out."""


class UnexpectedReply(VornError):
    """A reply that the description does not have: another program, or another version of the service."""


class MessagesError(VornError, ValueError):
    """Arguments that the service would store otherwise than written; `faults` has a line for each reason. Nothing was
    sent."""

    def __init__(self, faults: list[str]) -> None:
        super().__init__("; ".join(faults))
        self.faults = faults


class PlantError(MessagesError):
    """A plant that the service would store otherwise than it is meant."""


class ServiceError(VornError):
    """The service's own refusal. `str()` of it is the service's words, with the meaning in English behind them."""

    def __init__(self, text: str, failure: str = "", kind: str = "", meaning: str = "", todo: str = "",
                 details: Mapping[str, str] | None = None) -> None:
        super().__init__(f"{text.rstrip()} ({meaning.rstrip('.')})" if meaning else text)
        self.text = text
        """The reply, byte for byte."""
        self.failure = failure
        """The name of the failure in the description."""
        self.kind = kind
        """What sort of failure it is, such as `missing`; each kind has an exception of its own."""
        self.meaning = meaning
        """What it means."""
        self.todo = todo
        """What to do."""
        self.details = dict(details or {})
        """What the text tells beside its words, such as the module at the end of an open branch."""


class FormatError(ServiceError):
    """The request, or the JSON in it, cannot be read."""


class WordError(ServiceError):
    """There is no such command."""


class AddressError(ServiceError):
    """The name leads to no open project or to no element."""


class FieldError(ServiceError):
    """An argument is of the wrong type or outside its limits."""


class ContentError(ServiceError):
    """The request can be read but does not fit the project or the command."""


class StateError(ServiceError):
    """The project is in a state in which the command is refused."""


class FullError(ServiceError):
    """There is no more room."""


class MissingError(ServiceError):
    """What was asked for does not exist."""


class VerdictError(ServiceError):
    """The project's networks are not complete."""


class EngineError(ServiceError):
    """The engine refused or failed."""


KINDS: dict[str, type[ServiceError]] = {
    "format": FormatError, "word": WordError, "address": AddressError, "field": FieldError, "content": ContentError,
    "state": StateError, "full": FullError, "missing": MissingError, "verdict": VerdictError, "engine": EngineError}
"""The exception of each kind of failure."""


class BatchError(ServiceError):
    """Some entries of a batch failed: `failures` has them by name, `values` what the others gave."""

    def __init__(self, failures: Mapping[str, ServiceError], values: Mapping[str, object]) -> None:
        first = next(iter(failures.values()))
        super().__init__(first.text, first.failure, first.kind, first.meaning, first.todo)
        self.args = (f"{len(failures)} of a batch failed: "
                     + ", ".join(f"{name}: {failure.text}" for name, failure in failures.items()),)
        self.failures = dict(failures)
        self.values = dict(values)
