"""What a request made the simulated router do, asked over its loopback port and told as text."""

from __future__ import annotations

import json
import re
import shlex
import time
import urllib.error
import urllib.request

import client

TIMEOUT_S = 10.0
POLL_S = 0.25
QUIET_S = 5.0  # a router that did nothing for so long has done what the request asked for
LONGEST_S = 60.0
# A line of the router's log that the program wrote: "... [FcgiApp][function]:[line] text".
_PROGRAM_LINE = re.compile(r"\[FcgiApp\](\[\w+\]):\[\d+\] *(.*)")


def ask(base: str, since: int | None = None) -> dict:
    """The trace since a moment; without one, just {"next": the moment}. Raises ClientError where there is none."""
    uri = f"{base}/console/trace" + ("" if since is None else f"?since={since}")
    try:
        with urllib.request.urlopen(uri, timeout=TIMEOUT_S) as response:
            return json.load(response)
    except (urllib.error.URLError, OSError, ValueError) as error:
        raise client.ClientError(f"{uri}: {getattr(error, 'reason', error)}; only a simulated router tells") from None


def settled(base: str, since: int) -> dict:
    """The trace since a moment, once nothing new comes: what a request does in the background follows its answer."""
    start = quiet_since = time.monotonic()
    trace = ask(base, since)
    while time.monotonic() - quiet_since < QUIET_S and time.monotonic() - start < LONGEST_S:
        time.sleep(POLL_S)
        newer = ask(base, since)
        if (newer["calls"], newer["packages"]) != (trace["calls"], trace["packages"]):
            quiet_since = time.monotonic()
        trace = newer
    return trace


def told(trace: dict) -> str:
    """The tools with their arguments, and the packages as diffs."""
    lines = ["tools:", *(f"  {shlex.join(call['argv'])}" for call in trace["calls"])]
    if trace.get("dropped"):
        lines.insert(1, "  ...")
    if len(lines) == 1:
        lines.append("  none")
    packages = trace["packages"]
    lines.append("packages:" if packages else "packages: none changed")
    return "\n".join([*lines, *(packages[name].rstrip("\n") for name in sorted(packages))])


def reasons(trace: dict) -> list[str]:
    """What the program wrote into the log: of a refusal, the member that it is about, where the log tells it."""
    found = (_PROGRAM_LINE.search(line) for line in trace.get("log", []))
    return [f"{match[1]} {match[2]}" for match in found if match]
