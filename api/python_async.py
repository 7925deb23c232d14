"""Makes the asyncio twin of the Python client out of the client's own source: each public method of a server and of a
project as a coroutine of the same signature."""

from __future__ import annotations

import ast
from pathlib import Path
from typing import Iterator

from api.python_client import folded

CLIENT = Path(__file__).resolve().parents[1] / "clients/python/vornserver"

# Of each class its twin, and where its methods are: those of the first file go before those of the second.
TWINS = {
    "Project": ("AsyncProject", (("project.py", "Project"), ("commands.py", "ProjectCommands"))),
    "Server": ("AsyncServer", (("server.py", "Server"), ("commands.py", "ServerCommands"))),
}
# What has another form in a coroutine's world, or is of no use there.
BY_HAND = ("watch", "poller", "call", "full_name", "own_form", "value_text", "project", "find")

HEAD = '''"""The client for asyncio. Made from the client's own source by api/generate.py; do not edit.

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
'''

PROJECT_HEAD = '''
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
'''

SERVER_HEAD = '''
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
'''

HEADS = {"Project": PROJECT_HEAD, "Server": SERVER_HEAD}


def _functions(source: str, name: str) -> Iterator[ast.FunctionDef]:
    for node in ast.parse(source).body:
        if isinstance(node, ast.ClassDef) and node.name == name:
            yield from (each for each in node.body if isinstance(each, ast.FunctionDef))


def _is_taken(function: ast.FunctionDef) -> bool:
    decorators = {each.id for each in function.decorator_list if isinstance(each, ast.Name)}
    return not function.name.startswith("_") and function.name not in BY_HAND and decorators <= {"overload"}


def _call(function: ast.FunctionDef, result: str) -> list[str]:
    given = [each.arg for each in function.args.args[1:]]
    named = [f"{each.arg}={each.arg}" for each in function.args.kwonlyargs]
    twin = f"{TWINS[result][0]}(" if result in TWINS else ""
    head = "" if result == "None" else "return "
    return folded(f"{head}{twin}await _in_thread(", [f"self.sync.{function.name}", *given, *named],
                  "))" if twin else ")")


def _parameters(arguments: ast.arguments) -> list[str]:
    """The parameters as they are written, with their types and defaults."""
    def written(each: ast.arg, default: ast.expr | None) -> str:
        text = each.arg + (f": {ast.unparse(each.annotation)}" if each.annotation else "")
        return text if default is None else f"{text} = {ast.unparse(default)}"

    missing: list[ast.expr | None] = [None] * (len(arguments.args) - len(arguments.defaults))
    given = [written(*each) for each in zip(arguments.args, [*missing, *arguments.defaults])]
    named = [written(*each) for each in zip(arguments.kwonlyargs, arguments.kw_defaults)]
    return [*given, "*", *named] if named else given


def _twin(owner: str, function: ast.FunctionDef, first: bool) -> list[str]:
    result = ast.unparse(function.returns) if function.returns else "None"
    twin = TWINS[result][0] if result in TWINS else result
    head = folded(f"async def {function.name}(", _parameters(function.args), f") -> {twin}:")
    if function.decorator_list:
        return ["", "    @overload" + ("  # type: ignore[misc]" if first else ""), f"    {head[0]} ..."]
    body = [f'    """As `{owner}.{function.name}`."""', *(f"    {line}" for line in _call(function, result))]
    return ["", *(f"    {line}" for line in [*head, *body])]


def async_client(methods: str) -> str:
    """The content of aio.py; `methods` is that of commands.py."""
    lines = [HEAD]
    for owner, (_, places) in TWINS.items():
        lines.append(HEADS[owner].rstrip("\n"))
        done: set[str] = set()
        for file, name in places:
            source = methods if file == "commands.py" else (CLIENT / file).read_text(encoding="utf-8")
            functions = [each for each in _functions(source, name) if _is_taken(each) and each.name not in done]
            for number, function in enumerate(functions):
                first = number == 0 or functions[number - 1].name != function.name
                lines += _twin(owner, function, first)
            done.update(each.name for each in functions)
        lines.append("")
    return "\n".join(lines)
