"""The client for asyncio. Made from the client's own source by api/generate.py; do not edit.

    async with await AsyncServer.find() as server, await server.create("PLANT1") as project:
        await project.write("GTemp", 21.5)

Each call runs in a thread, and a server's calls go one by one. One that is cancelled is carried out all the same, and the
next waits for it.
"""

from __future__ import annotations

import asyncio
import time
from pathlib import Path
from types import TracebackType
from typing import Any, AsyncIterator, Callable, Iterable, Literal, Mapping, Sequence, TypeVar, overload

from vornserver.endpoint import Credentials
from vornserver.errors import ServiceError
from vornserver.plan import Plan
from vornserver.plant import Plant
from vornserver.project import Project
from vornserver.samples import Sample
from vornserver.server import Server
from vornserver.topology import Topology
from vornserver.values import Value, Writable

_T = TypeVar("_T")


async def _in_thread(function: Callable[..., _T], *given: Any, **named: Any) -> _T:
    return await asyncio.get_running_loop().run_in_executor(None, lambda: function(*given, **named))


class AsyncProject:
    """A `Project`, whose methods are coroutines."""

    def __init__(self, project: Project) -> None:
        self.sync = project

    @property
    def name(self) -> str:
        """The project's name."""
        return self.sync.name

    async def __aenter__(self) -> AsyncProject:
        return self

    async def __aexit__(self, kind: type[BaseException] | None, error: BaseException | None,
                        trace: TracebackType | None) -> None:
        await _in_thread(self.sync.__exit__, kind, error, trace)

    async def watch(self, variables: Sequence[str], every: float = 1.0, count: int | None = None) -> AsyncIterator[Sample]:
        """As `Project.watch`."""
        number = 0
        while count is None or number < count:
            if number:
                await asyncio.sleep(every)
            yield Sample(time.time(), await self.read_batch(variables))
            number += 1

    @overload  # type: ignore[misc]
    async def read(self, variable: str) -> float: ...

    @overload
    async def read(self, variable: Iterable[str]) -> dict[str, float]: ...

    async def read(self, variable: str | Iterable[str]) -> float | dict[str, float]:
        """As `Project.read`."""
        return await _in_thread(self.sync.read, variable)

    async def read_list(self, variable: str) -> list[float]:
        """As `Project.read_list`."""
        return await _in_thread(self.sync.read_list, variable)

    async def read_batch(self, variables: Iterable[str]) -> dict[str, Value | ServiceError]:
        """As `Project.read_batch`."""
        return await _in_thread(self.sync.read_batch, variables)

    async def read_all(self) -> dict[str, float]:
        """As `Project.read_all`."""
        return await _in_thread(self.sync.read_all)

    async def to_dataframe(self) -> Any:
        """As `Project.to_dataframe`."""
        return await _in_thread(self.sync.to_dataframe)

    async def write_batch(self, values: Mapping[str, Writable]) -> None:
        """As `Project.write_batch`."""
        await _in_thread(self.sync.write_batch, values)

    async def send(self, document: Mapping[str, Any] | Plant) -> None:
        """As `Project.send`."""
        await _in_thread(self.sync.send, document)

    async def build(self, plan: Plan) -> None:
        """As `Project.build`."""
        await _in_thread(self.sync.build, plan)

    async def topology(self) -> Topology:
        """As `Project.topology`."""
        return await _in_thread(self.sync.topology)

    async def delete(self, element: str) -> None:
        """As `Project.delete`."""
        await _in_thread(self.sync.delete, element)

    async def move(self, element: str, *, position_x: float = 0.0, position_z: float = 0.0) -> None:
        """As `Project.move`."""
        await _in_thread(self.sync.move, element, position_x=position_x, position_z=position_z)

    async def names(self, element: str) -> list[str]:
        """As `Project.names`."""
        return await _in_thread(self.sync.names, element)

    async def number(self, element: str) -> int | None:
        """As `Project.number`."""
        return await _in_thread(self.sync.number, element)

    async def room(self, element: str) -> dict[str, float]:
        """As `Project.room`."""
        return await _in_thread(self.sync.room, element)

    async def save_picture(self, path: str) -> None:
        """As `Project.save_picture`."""
        await _in_thread(self.sync.save_picture, path)

    async def clear(self) -> None:
        """As `Project.clear`."""
        await _in_thread(self.sync.clear)

    async def close(self) -> None:
        """As `Project.close`."""
        await _in_thread(self.sync.close)

    async def add_module(
            self, vorn_module_id: int, device_name: str, *, page_nb: int = 0, position_x: float = 0.0,
            position_z: float = 0.0, model_id: str = '', room_id: str = '') -> str:
        """As `Project.add_module`."""
        return await _in_thread(
                self.sync.add_module, vorn_module_id, device_name, page_nb=page_nb, position_x=position_x,
                position_z=position_z, model_id=model_id, room_id=room_id)

    async def add_node(
            self, vorn_module_id: Literal[3000, 3001, 3002, 3003],
            node_name: Literal['FLUID', 'INFO', 'POWER', 'MECH'], *, page_nb: int = 0, position_x: float = 0.0,
            position_z: float = 0.0) -> str:
        """As `Project.add_node`."""
        return await _in_thread(
                self.sync.add_node, vorn_module_id, node_name, page_nb=page_nb, position_x=position_x,
                position_z=position_z)

    async def add_link(
            self, f_instance_id: str, s_instance_id: str, *, link_type: int = 0, page_nb: int = 0,
            f_port_nb: int = 0, s_port_nb: int = 0) -> list[str]:
        """As `Project.add_link`."""
        return await _in_thread(
                self.sync.add_link, f_instance_id, s_instance_id, link_type=link_type, page_nb=page_nb,
                f_port_nb=f_port_nb, s_port_nb=s_port_nb)

    async def check(self) -> None:
        """As `Project.check`."""
        await _in_thread(self.sync.check)

    async def send_script(self, script: str) -> str:
        """As `Project.send_script`."""
        return await _in_thread(self.sync.send_script, script)

    async def run(self) -> None:
        """As `Project.run`."""
        await _in_thread(self.sync.run)

    async def pause(self) -> None:
        """As `Project.pause`."""
        await _in_thread(self.sync.pause)

    async def step(self) -> None:
        """As `Project.step`."""
        await _in_thread(self.sync.step)

    async def stop(self) -> None:
        """As `Project.stop`."""
        await _in_thread(self.sync.stop)

    async def load_cache(self, cache_set: Literal[0, 1, 2]) -> None:
        """As `Project.load_cache`."""
        await _in_thread(self.sync.load_cache, cache_set)

    async def save_cache(self, cache_set: Literal[0, 1, 2]) -> None:
        """As `Project.save_cache`."""
        await _in_thread(self.sync.save_cache, cache_set)

    async def put(self, verb: Literal['Run', 'Pause', 'Step', 'Stop', 'Remove', 'Close']) -> str:
        """As `Project.put`."""
        return await _in_thread(self.sync.put, verb)

    async def write(self, variable: str, value: Writable) -> None:
        """As `Project.write`."""
        await _in_thread(self.sync.write, variable, value)

    async def add_variable(self, variable: str) -> None:
        """As `Project.add_variable`."""
        await _in_thread(self.sync.add_variable, variable)

    async def delete_variable(self, variable: str) -> None:
        """As `Project.delete_variable`."""
        await _in_thread(self.sync.delete_variable, variable)

    async def pressure(self, element: str) -> float:
        """As `Project.pressure`."""
        return await _in_thread(self.sync.pressure, element)

    async def temperature(self, element: str) -> float:
        """As `Project.temperature`."""
        return await _in_thread(self.sync.temperature, element)

    async def flow(self, element: str) -> float:
        """As `Project.flow`."""
        return await _in_thread(self.sync.flow, element)

    async def element_variables(self, element: str) -> Any:
        """As `Project.element_variables`."""
        return await _in_thread(self.sync.element_variables, element)

    async def set_run_value(self, element: str, value: float | str, *, row: int = 0) -> None:
        """As `Project.set_run_value`."""
        await _in_thread(self.sync.set_run_value, element, value, row=row)

    async def run_values(self, element: str) -> Any:
        """As `Project.run_values`."""
        return await _in_thread(self.sync.run_values, element)

    async def set_cache_value(self, element: str, column: int, value: float | str, *, row: int = 0) -> None:
        """As `Project.set_cache_value`."""
        await _in_thread(self.sync.set_cache_value, element, column, value, row=row)

    async def cache_values(self, element: str) -> Any:
        """As `Project.cache_values`."""
        return await _in_thread(self.sync.cache_values, element)

    async def set_value(self, element: str, column: int, value: float | str, *, row: int = 0) -> None:
        """As `Project.set_value`."""
        await _in_thread(self.sync.set_value, element, column, value, row=row)

    async def save_element(self, element: str, cache_set: Literal[0, 1, 2]) -> None:
        """As `Project.save_element`."""
        await _in_thread(self.sync.save_element, element, cache_set)

    async def load_element(self, element: str, cache_set: Literal[0, 1, 2]) -> None:
        """As `Project.load_element`."""
        await _in_thread(self.sync.load_element, element, cache_set)

    async def set_important(self, element: str, important: str) -> None:
        """As `Project.set_important`."""
        await _in_thread(self.sync.set_important, element, important)

    async def important(self) -> Any:
        """As `Project.important`."""
        return await _in_thread(self.sync.important)

    async def picture(self) -> str:
        """As `Project.picture`."""
        return await _in_thread(self.sync.picture)

    async def chart(self) -> str:
        """As `Project.chart`."""
        return await _in_thread(self.sync.chart)

    async def performance(self) -> Any:
        """As `Project.performance`."""
        return await _in_thread(self.sync.performance)

    async def holds_project(self) -> bool:
        """As `Project.holds_project`."""
        return await _in_thread(self.sync.holds_project)


class AsyncServer:
    """A `Server`, whose methods are coroutines."""

    def __init__(self, server: Server) -> None:
        self.sync = server

    @classmethod
    async def find(cls, address: str = "127.0.0.1", **options: Any) -> AsyncServer:
        """As `Server.find`, with its options."""
        return cls(await _in_thread(Server.find, address, **options))

    def project(self, project: str) -> AsyncProject:
        """As `Server.project`."""
        return AsyncProject(self.sync.project(project))

    async def __aenter__(self) -> AsyncServer:
        return self

    async def __aexit__(self, kind: type[BaseException] | None, error: BaseException | None,
                        trace: TracebackType | None) -> None:
        self.sync.disconnect()

    async def disconnect(self) -> None:
        """As `Server.disconnect`."""
        await _in_thread(self.sync.disconnect)

    async def greets(self) -> bool:
        """As `Server.greets`."""
        return await _in_thread(self.sync.greets)

    async def request(
            self, word: str, name: str = '', messages: object = None, *, repeatable: bool = False,
            seconds: float | None = None) -> str:
        """As `Server.request`."""
        return await _in_thread(self.sync.request, word, name, messages, repeatable=repeatable, seconds=seconds)

    async def create(self, project: str) -> AsyncProject:
        """As `Server.create`."""
        return AsyncProject(await _in_thread(self.sync.create, project))

    async def open(self, project: str) -> AsyncProject:
        """As `Server.open`."""
        return AsyncProject(await _in_thread(self.sync.open, project))

    async def put(self, project: str, verb: Literal['Run', 'Pause', 'Step', 'Stop', 'Remove', 'Close']) -> str:
        """As `Server.put`."""
        return await _in_thread(self.sync.put, project, verb)

    async def holds_project(self, project: str) -> bool:
        """As `Server.holds_project`."""
        return await _in_thread(self.sync.holds_project, project)

    async def runs_from(self, directory: str) -> bool:
        """As `Server.runs_from`."""
        return await _in_thread(self.sync.runs_from, directory)
