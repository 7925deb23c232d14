"""A client of VornServer: find the service, make and send plants, check, run and read them.

    from vornserver import Server

    with Server.find() as server, server.create("PLANT1") as project:
        project["GTemp"] = 21.5
        print(project.read(["GTemp", "GStep"]))
"""

from vornserver.aio import AsyncProject, AsyncServer
from vornserver.endpoint import Credentials
from vornserver.errors import (
    AccessRefused, AddressError, BatchError, ConnectionLost, ContentError, EngineError, FieldError, FormatError, FullError,
    MessagesError, MissingError, PlantError, ServiceError, ServiceNotFound, StateError, TimeLimit, UnexpectedReply, VerdictError,
    VornError, WordError)
from vornserver.interface import VERSION as __version__
from vornserver.judge import Finding, judge, judge_file
from vornserver.plan import Plan
from vornserver.plant import Connection, Device, Plant, Port
from vornserver.project import Project
from vornserver.samples import Poller, Sample, Subscription
from vornserver.server import Server
from vornserver.topology import Branch, Element, Link, Topology
from vornserver.values import Value, Writable

__all__ = [
    "AccessRefused", "AddressError", "AsyncProject", "AsyncServer", "BatchError", "Branch", "Connection",
    "ConnectionLost", "ContentError", "Credentials", "Device", "Element", "EngineError", "FieldError", "Finding",
    "FormatError", "FullError", "Link", "MessagesError", "MissingError", "Plan", "Plant", "PlantError", "Poller",
    "Port", "Project", "Sample", "Server", "ServiceError", "ServiceNotFound", "StateError", "Subscription",
    "TimeLimit", "Topology", "UnexpectedReply", "Value", "VerdictError", "VornError", "WordError", "Writable",
    "__version__", "judge", "judge_file"]
