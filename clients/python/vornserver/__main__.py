"""The service from a shell: `python3 -m vornserver COMMAND ...`; each command has --help."""

from __future__ import annotations

import argparse
import os
import sys
from typing import Sequence

from vornserver import shell_commands, shell_output, shell_top
from vornserver.errors import (
    AccessRefused, ConnectionLost, MessagesError, ServiceError, ServiceNotFound, TimeLimit, UnexpectedReply, VornError)
from vornserver.interface import DATA, VERSION
from vornserver.server import Server


# Exit statuses, beside 0 and argparse's 2.
REFUSED = 1
UNANSWERED = 3
NO_ANSWER = (AccessRefused, ConnectionLost, ServiceNotFound, TimeLimit, UnexpectedReply)


def parser() -> argparse.ArgumentParser:
    """The command line, whose commands and helps are made from the description."""
    top = argparse.ArgumentParser(
        prog="vornserver", description="Sends commands to VornServer.",
        epilog="The exit status is 0; 1 where the service refuses, or something is wrong with what is to be sent; 2 for a"
               " wrong command line; 3 where there is no service or no proper reply. Behind a proxy, the name and the"
               " password are those of VORNSERVER_USER and VORNSERVER_PASSWORD, a token is VORNSERVER_TOKEN, or all are"
               " in the file that VORNSERVER_CREDENTIALS names, which only its owner may read.")
    top.add_argument("--version", action="version", version=f"vornserver {VERSION}")
    top.add_argument("--address", default=os.environ.get("VORNSERVER_ADDRESS", "127.0.0.1"),
                     help="https://host:port/path, http://host:port, or a host whose ports are tried in turn (VORNSERVER_ADDRESS, else this"
                          " machine)")
    top.add_argument("--timeout", type=float, default=30.0, metavar="SECONDS",
                     help="how long a reply may take beside the command's own waits (%(default)s)")
    top.add_argument("--ca-file", default=None, metavar="FILE",
                     help="what the certificate of a proxy is checked by (VORNSERVER_CA_FILE, else the system's)")
    top.add_argument("--json", action="store_true", help="print JSON for programs, not tables for people")
    commands = top.add_subparsers(dest="command", required=True, metavar="COMMAND", title="commands")
    shell_top.add_commands(commands)
    for family in DATA["interface"]["families"]:
        shell_commands.add_family(commands, family["name"])
    return top


def run(arguments: argparse.Namespace) -> int:
    with Server.find(arguments.address, timeout=arguments.timeout, ca_file=arguments.ca_file) as server:
        result: int = arguments.run(server, arguments)
        return result


def main(words: Sequence[str] | None = None) -> int:
    """Runs one command line; gives the exit status."""
    arguments = parser().parse_args(words)
    try:
        return run(arguments)
    except ServiceError as error:
        return shell_output.print_failure(error, arguments.json)
    except MessagesError as error:
        print("vornserver: nothing was sent\n  " + "\n  ".join(error.faults), file=sys.stderr)
        return REFUSED
    except NO_ANSWER as error:
        print(f"vornserver: {error}", file=sys.stderr)
        return UNANSWERED
    except (VornError, ValueError, OSError) as error:
        if isinstance(error, BrokenPipeError):  # who reads has seen enough
            os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
            return 0
        print(f"vornserver: {error}", file=sys.stderr)
        return REFUSED
    except KeyboardInterrupt:
        return 130


if __name__ == "__main__":
    sys.exit(main())
