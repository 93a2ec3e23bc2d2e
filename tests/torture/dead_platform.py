"""Each tool, package and file that a route uses, gone or gone wrong: the answer is a documented one, and comes."""

from __future__ import annotations

import random
import re
import subprocess
from pathlib import Path

from route_documents import API, OPENAPI

from . import answers
from .figures import Bounds, Figures
from .units import RAW, Unit, first_documents

NAME = "dead_platform"
HELP = "each tool, package and file of each route missing, failing, hanging, talking nonsense"
SHORT = None  # a router for each try: by itself or in the long form

_TABLE = Path(__file__).resolve().parents[2] / "docs/platform.md"
_FLOOD = "#!/bin/sh\nyes 'Signal 1 0x00000001 zero' | head -c 10000000\n"
_NOISE = "#!/bin/sh\ncat /router/noise\n"
TOOL_FAULTS = ("missing", "failing", "killed", "hanging", "silent", "flooding", "noisy")
PACKAGE_FAULTS = ("missing", "broken", "read-only")
FILE_FAULTS = ("missing", "folder", "fifo")
_OF_THE_KERNEL = ("/proc/", "/dev/")


def uses() -> dict[tuple[str, str], dict[str, list[str]]]:
    """(method, route) to the packages, files and tools that docs/platform.md tells; jose is everybody's."""
    found = {}
    rows = re.findall(r"^\| (GET|POST) /(\S+) \| (.*?) \| (.*?) \| (.*?) \|$", _TABLE.read_text(), re.M)
    for method, route, *cells in rows:
        packages, files, tools = (re.findall(r"`([^`]+)`", cell) for cell in cells)
        files = [path for path in files if not path.endswith(("/", "-")) and not path.startswith(_OF_THE_KERNEL)]
        found[method, route] = {"tool": tools + ["jose"], "package": packages, "file": files}
    for uri, operations in OPENAPI["paths"].items():
        for method in operations:
            found.setdefault((method.upper(), uri.removeprefix(API)), {"tool": ["jose"], "package": [], "file": []})
    return found


def tries() -> list[tuple[str, str, str, str, str]]:
    """(method, route, kind, name, fault), all there are."""
    faults = {"tool": TOOL_FAULTS, "package": PACKAGE_FAULTS, "file": FILE_FAULTS}
    return [(method, route, kind, name, fault) for (method, route), used in uses().items()
            for kind, names in used.items() for name in names for fault in faults[kind]]


def parts(bounds: Bounds) -> list[tuple]:
    every = tries()
    if bounds.count is not None and bounds.count < len(every):
        every = random.Random(f"{bounds.seed} {NAME}").sample(every, bounds.count)
    by_route: dict[tuple[str, str], list] = {}
    for method, route, *rest in every:
        by_route.setdefault((method, route), []).append(tuple(rest))
    return [(faults_of, (method, route, found, bounds)) for (method, route), found in sorted(by_route.items())]


def faults_of(method: str, route: str, found: list[tuple[str, str, str]], bounds: Bounds) -> Figures:
    figures = Figures()
    body = first_documents().get(route) if method == "POST" else None
    for kind, name, fault in found:
        if bounds.over():
            break
        where = f"{method} {route} with {kind} {name} {fault}"
        unit = None
        try:
            # What a command of constants reads from a FIFO is over with the command's time.
            unit = Unit(route, method, start=False, time_rate=5 if fault == "fifo" else 1)
            _break(unit, kind, name, fault, f"{bounds.seed} {where}")
            _try(figures, unit, where, _body(route, body), fault)
            if fault == "hanging":
                unit.router.discard()  # what outlives its request hangs there with it, as it may
            else:
                unit.finish()
        except AssertionError as error:
            figures.lose(f"{where}: {str(error)[:3000]}")
        finally:
            if unit is not None:
                unit.router.discard()
    return figures


def _body(route: str, body) -> bytes | dict | None:
    return b"an archive" + b"0221" if route in RAW and body is None else body


def _try(figures: Figures, unit: Unit, where: str, body, fault: str) -> None:
    figures.count("tries")
    figures.count(fault)
    answer = unit.send(body)
    passed_on = not answer.empty and "tool jose " in where and fault in ("flooding", "noisy")  # what jose says is the answer
    if not passed_on and (wrong := answers.complaint(unit.method, unit.route, answer)):
        figures.lose(f"{where}: {wrong}")
    if not unit.router.alive():
        figures.lose(f"{where}: does not answer any more")
    if report := unit.router.sanitizer_report():
        figures.lose(f"{where}: {report[:3000]}")


def _break(unit: Unit, kind: str, name: str, fault: str, seed: str) -> None:
    router = unit.router
    if kind == "tool":
        _break_tool(router, name, fault, seed)
    elif kind == "package":
        path = f"/etc/config/{name}"
        if fault == "missing":
            router.no_config(name)
        elif fault == "broken":
            router.write(path, (router.read(path) or "")[:40] + "\nconfig 'x\n\toption\n")
        else:
            if not router.exists(path):
                router.write(path, "")
            router.root.mount(router.root.path(path), path)
    else:
        router.remove(name)
        place = router.root.path(name)
        place.parent.mkdir(parents=True, exist_ok=True)
        if fault == "folder":
            place.mkdir()
        elif fault == "fifo":
            subprocess.run(["mkfifo", place], check=True)


def _break_tool(router, name: str, fault: str, seed: str) -> None:
    if fault in ("flooding", "noisy"):
        place = name if name.startswith("/") else f"/router/bin/{name}"
        place = "/usr" + place if place.startswith(("/bin/", "/sbin/")) else place
        router.remove(place)
        router.write("/router/noise", random.Random(seed).randbytes(4096))
        router.write(place, _FLOOD if fault == "flooding" else _NOISE, 0o755)
        return
    options = {"missing": {"missing": True}, "failing": {"exit": 1}, "killed": {"signal": 9}, "hanging": {"hang": True},
               "silent": {}}[fault]
    if name == "jose" and fault != "missing":  # both of its rules
        router._rules["jose"] = []
        router.tool("jose", "jwe", "dec", "-i-", "-p", exact=True, **options)
        router.tool("jose", "jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c", exact=True, **options)
        return
    router._rules.pop(name, None)
    router.tool(name, **options)
