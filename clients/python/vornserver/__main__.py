"""The service from a shell: `python3 -m vornserver COMMAND ...`; each command has --help."""

from __future__ import annotations

import argparse
import os
import sys
from typing import Sequence

from vornserver import shell_commands, shell_output, shell_top
from vornserver.errors import ServiceError, VornError
from vornserver.interface import DATA, VERSION
from vornserver.server import Server


def parser() -> argparse.ArgumentParser:
    """The command line, whose commands and helps are made from the description."""
    top = argparse.ArgumentParser(
        prog="vornserver", description="Sends commands to VornServer.",
        epilog="The exit status is 0, 1 where the service refuses or is not there, and 2 for a wrong command line.")
    top.add_argument("--version", action="version", version=f"vornserver {VERSION}")
    top.add_argument("--address", default=os.environ.get("VORNSERVER_ADDRESS", "127.0.0.1"),
                     help="http://host:port, or a host whose ports are tried in turn (VORNSERVER_ADDRESS, else this"
                          " machine)")
    top.add_argument("--timeout", type=float, default=30.0, metavar="SECONDS",
                     help="how long a reply may take beside the command's own waits (%(default)s)")
    top.add_argument("--json", action="store_true", help="print JSON for programs, not tables for people")
    commands = top.add_subparsers(dest="command", required=True, metavar="COMMAND", title="commands")
    shell_top.add_commands(commands)
    for family in DATA["interface"]["families"]:
        shell_commands.add_family(commands, family["name"])
    return top


def run(arguments: argparse.Namespace) -> int:
    with Server.find(arguments.address, timeout=arguments.timeout) as server:
        result: int = arguments.run(server, arguments)
        return result


def main(words: Sequence[str] | None = None) -> int:
    """Runs one command line; gives the exit status."""
    arguments = parser().parse_args(words)
    try:
        return run(arguments)
    except ServiceError as error:
        return shell_output.print_failure(error, arguments.json)
    except (VornError, ValueError, OSError) as error:
        if isinstance(error, BrokenPipeError):  # who reads has seen enough
            os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
            return 0
        print(f"vornserver: {error}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        return 130


if __name__ == "__main__":
    sys.exit(main())
