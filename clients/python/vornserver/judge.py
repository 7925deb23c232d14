"""Judges a plant before it is used: its form, the service's own verdict, and what cannot work."""

from __future__ import annotations

from dataclasses import dataclass
from pathlib import Path
from typing import Iterator, Protocol

from vornserver.errors import PlantError, ServiceError, StateError
from vornserver.physics import physics_faults
from vornserver.plan import Plan
from vornserver.project import Project

# The projects in which plants are tried; one that is open is somebody's own.
TRIAL_NAMES = [f"VORNCHECK{number}" for number in range(4)]


@dataclass(frozen=True)
class Finding:
    """One thing that is wrong: `stage` is form, verdict or physics. What physics finds does not keep a plant from running."""

    stage: str
    text: str

    @property
    def is_error(self) -> bool:
        return self.stage != "physics"


class Opener(Protocol):
    """A server, which makes projects."""

    def create(self, project: str) -> Project: ...


def _trial(server: Opener) -> Project:
    for name in TRIAL_NAMES[:-1]:
        try:
            return server.create(name)
        except StateError:
            continue
    return server.create(TRIAL_NAMES[-1])


def _verdict(server: Opener, plan: Plan) -> Iterator[Finding]:
    """What the service says of the plan in a project of its own, which is emptied and closed again."""
    with _trial(server) as project:
        try:
            project.build(plan)
            project.check()
        except (PlantError, ServiceError) as error:
            yield Finding("verdict", str(error).replace("\n", " "))
        finally:
            project.send({})  # what is stored of it is empty


def judge(text: str, server: Opener | None = None) -> list[Finding]:
    """What is wrong with a plan or a project document, given as text; without a server the service is not asked. Raises
    ValueError for what is no JSON, and where the service gives no proper answer."""
    try:
        plan = Plan.of_text(text)
        plan.plant.check()
    except PlantError as error:
        return [Finding("form", fault) for fault in error.faults]
    verdict = list(_verdict(server, plan)) if server is not None else []
    return verdict + [Finding("physics", fault) for fault in physics_faults(plan.plant, plan.start)]


def judge_file(path: str | Path, server: Opener | None = None) -> list[Finding]:
    """As `judge`, of a file. Raises OSError too."""
    return judge(Path(path).read_text(encoding="utf-8"), server)
