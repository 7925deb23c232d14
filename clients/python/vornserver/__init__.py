"""A client of VornServer: find the service, make and send plants, check, run and read them.

    from vornserver import Server

    with Server.find() as server, server.create("PLANT1") as project:
        project["GTemp"] = 21.5
        print(project.read(["GTemp", "GStep"]))
"""

from vornserver.errors import (
    AddressError, BatchError, ConnectionLost, ContentError, EngineError, FieldError, FormatError, FullError,
    MissingError, PlantError, ServiceError, ServiceNotFound, StateError, TimeLimit, UnexpectedReply, VerdictError,
    VornError, WordError)
from vornserver.interface import VERSION as __version__
from vornserver.plant import Connection, Device, Plant, Port
from vornserver.project import Project, Sample
from vornserver.server import Server
from vornserver.topology import Branch, Element, Link, Topology
from vornserver.values import Value

__all__ = [
    "AddressError", "BatchError", "Branch", "Connection", "ConnectionLost", "ContentError", "Device", "Element",
    "EngineError", "FieldError", "FormatError", "FullError", "Link", "MissingError", "Plant", "PlantError", "Port",
    "Project", "Sample", "Server", "ServiceError", "ServiceNotFound", "StateError", "TimeLimit", "Topology",
    "UnexpectedReply", "Value", "VerdictError", "VornError", "WordError", "__version__"]
