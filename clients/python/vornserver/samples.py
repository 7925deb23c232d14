"""Variables that are read again and again."""

from __future__ import annotations

import logging
import threading
import time
from dataclasses import dataclass
from types import TracebackType
from typing import Callable, Dict, Iterable, List, Union

from vornserver.errors import ServiceError, VornError
from vornserver.values import Value

logger = logging.getLogger("vornserver")

Read = Callable[[Iterable[str]], Dict[str, Union[float, List[float], ServiceError]]]


def one_number(name: str, value: Value | ServiceError) -> float:
    """A value that must be a single number. Raises its failure, and ValueError for a list."""
    if isinstance(value, ServiceError):
        raise value
    if isinstance(value, list):
        raise ValueError(f"{name} is a list: use read_list")
    return value


@dataclass(frozen=True)
class Sample:
    """What was read at one time, in seconds since 1970; a variable that could not be read has its failure in `values`."""

    time: float
    values: dict[str, Value | ServiceError]

    def __getitem__(self, name: str) -> float:
        """A number. Raises its failure, and ValueError for a list."""
        return one_number(name, self.values[name])

    def list(self, name: str) -> List[float]:
        """A list of numbers. Raises its failure, and ValueError for a single number."""
        value = self.values[name]
        if isinstance(value, ServiceError):
            raise value
        if not isinstance(value, list):
            raise ValueError(f"{name} is a single number")
        return value


@dataclass(frozen=True)
class Subscription:
    """Some variables, and who gets their samples, on the poller's thread."""

    names: tuple[str, ...]
    callback: Callable[[Sample], None]


class Poller:
    """Reads the variables of all its subscriptions with one request each time, on a thread of its own. A poll that
    fails is logged, and the next one is made; so is a callback that raises."""

    def __init__(self, read: Read, every: float) -> None:
        self._read = read
        self._every = every
        self._subscriptions: list[Subscription] = []
        self._lock = threading.Lock()
        self._ended = threading.Event()
        self._thread = threading.Thread(target=self._run, daemon=True)
        self.polls = 0
        """How many requests were answered so far."""

    def subscribe(self, names: Iterable[str], callback: Callable[[Sample], None]) -> Subscription:
        """Gives the callback a sample of these variables at each poll from the next one on."""
        subscription = Subscription(tuple(names), callback)
        with self._lock:
            self._subscriptions.append(subscription)
        return subscription

    def unsubscribe(self, subscription: Subscription) -> None:
        """Ends a subscription; one that is not there is left alone."""
        with self._lock:
            self._subscriptions = [each for each in self._subscriptions if each is not subscription]

    def __enter__(self) -> Poller:
        self._thread.start()
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 trace: TracebackType | None) -> None:
        self._ended.set()
        if threading.current_thread() is not self._thread:
            self._thread.join()

    def _run(self) -> None:
        while not self._ended.is_set():
            with self._lock:
                current = list(self._subscriptions)
            if current:
                self._poll(current)
            self._ended.wait(self._every)

    def _poll(self, subscriptions: list[Subscription]) -> None:
        names = dict.fromkeys(name for each in subscriptions for name in each.names)
        try:
            values = self._read(names)
        except VornError as error:
            logger.warning("a poll failed: %s", error)
            return
        self.polls += 1
        now = time.time()
        for each in subscriptions:
            try:
                each.callback(Sample(now, {name: values[name] for name in each.names}))
            except Exception:  # what a user's code raises must not end the others' samples
                logger.exception("a subscription's callback failed")
