"""Each tool, package and file that a route uses, gone or gone wrong: the answer is a documented one, and comes."""

from __future__ import annotations

import os
import random
import re
import subprocess
from collections.abc import Callable
from pathlib import Path

from route_documents import API, OPENAPI

from . import answers
from .figures import Bounds, Figures
from .units import LASTING, RAW, Unit, first_documents

NAME = "dead_platform"
HELP = "each tool, package and file of each route missing, failing, hanging, talking nonsense"
SHORT = {"count": 80, "routes": 9}

_TABLE = Path(__file__).resolve().parents[2] / "docs/platform.md"
_FLOOD = "#!/bin/sh\nyes 'Signal 1 0x00000001 zero' | head -c 10000000\n"
_NOISE = "#!/bin/sh\ncat /router/noise\n"
TOOL_FAULTS = ("missing", "failing", "killed", "hanging", "silent", "flooding", "noisy")
PACKAGE_FAULTS = ("missing", "broken", "read-only")
FILE_FAULTS = ("missing", "folder", "fifo")
_OF_THE_KERNEL = ("/proc/", "/dev/")
# Tries that need a router of their own: what hangs outlives its request, what is mounted and how time passes is told at
# the start.
_ALONE = ("hanging", "read-only", "fifo")


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
    routes = bounds.some(NAME, sorted({(method, route) for method, route, *_ in every}))
    every = [found for found in every if found[:2] in routes]
    if bounds.count is not None and bounds.count < len(every):
        every = random.Random(f"{bounds.seed} {NAME}").sample(every, bounds.count)
    by_route: dict[tuple[str, str], list] = {}
    for method, route, *rest in every:
        by_route.setdefault((method, route), []).append(tuple(rest))
    return [(faults_of, (method, route, found, bounds)) for (method, route), found in sorted(by_route.items())]


def faults_of(method: str, route: str, found: list[tuple[str, str, str]], bounds: Bounds) -> Figures:
    figures, desk = Figures(), _Desk(method, route)
    try:
        for kind, name, fault in found:
            if bounds.over():
                break
            where = f"{method} {route} with {kind} {name} {fault}"
            try:
                desk.ask(figures, where, (kind, name, fault), f"{bounds.seed} {where}")
            except AssertionError as error:
                figures.lose(f"{where}: {str(error)[:3000]}")
                desk.clear()
        try:
            desk.finish()
        except AssertionError as error:
            figures.lose(f"{method} {route}: {str(error)[:3000]}")
    finally:
        desk.clear()
    return figures


class _Desk:
    """Where a route is asked: at one router as long as that is as before, else at one of its own."""

    def __init__(self, method: str, route: str):
        self.method, self.route = method, route
        self.body = _body(route, first_documents().get(route) if method == "POST" else None)
        self.unit: Unit | None = None

    def ask(self, figures: Figures, where: str, broken: tuple[str, str, str], seed: str) -> None:
        if broken[2] in _ALONE:
            return self._ask_alone(figures, where, broken, seed)
        if self.unit is None:
            self.unit = Unit(self.route, self.method)
        unit, losses = self.unit, len(figures.losses)
        mend = _break(unit, *broken, seed)
        accepted = _try(figures, unit, where, self.body, broken[2])
        if len(figures.losses) > losses or accepted and self.route in LASTING:
            return self.clear()
        unit.settle()
        mend()
        unit.restore(unit.files())

    def _ask_alone(self, figures: Figures, where: str, broken: tuple[str, str, str], seed: str) -> None:
        # What a command of constants reads from a FIFO is over with the command's time.
        unit = Unit(self.route, self.method, start=False, time_rate=5 if broken[2] == "fifo" else 1)
        try:
            _break(unit, *broken, seed)
            _try(figures, unit, where, self.body, broken[2])
            if broken[2] != "hanging":  # what outlives its request hangs there with it, as it may
                unit.finish()
        finally:
            unit.router.discard()

    def finish(self) -> None:
        if self.unit is not None:
            self.unit.finish()

    def clear(self) -> None:
        if self.unit is not None:
            self.unit.router.discard()
        self.unit = None


def _body(route: str, body) -> bytes | dict | None:
    return b"an archive" + b"0221" if route in RAW and body is None else body


def _try(figures: Figures, unit: Unit, where: str, body, fault: str) -> bool:
    """Whether the request was accepted."""
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
    return answers.result(answer) == 0


def _break(unit: Unit, kind: str, name: str, fault: str, seed: str) -> Callable[[], None]:
    """What puts it back that Unit.restore does not: tools, and what stands in a file's place."""
    router = unit.router
    if kind == "tool":
        mend = _kept_tool(router, name)
        _break_tool(router, name, fault, seed)
        return mend
    path = f"/etc/config/{name}" if kind == "package" else name
    kept = router.root.path(path).read_bytes() if router.root.path(path).is_file() else None
    if kind == "package":
        _break_package(router, name, path, fault)
    else:
        _break_file(router, path, fault)

    def put_back() -> None:
        router.remove(path)
        if kept is not None:
            router.write(path, kept)

    return put_back


def _break_package(router, name: str, path: str, fault: str) -> None:
    if fault == "missing":
        router.no_config(name)
    elif fault == "broken":
        router.write(path, (router.read(path) or "")[:40] + "\nconfig 'x\n\toption\n")
    else:
        if not router.exists(path):
            router.write(path, "")
        router.root.mount(router.root.path(path), path)


def _break_file(router, path: str, fault: str) -> None:
    router.remove(path)
    place = router.root.path(path)
    place.parent.mkdir(parents=True, exist_ok=True)
    if fault == "folder":
        place.mkdir()
    elif fault == "fifo":
        subprocess.run(["mkfifo", place], check=True)


def _place_of(name: str) -> str:
    place = name if name.startswith("/") else f"/router/bin/{name}"
    return "/usr" + place if place.startswith(("/bin/", "/sbin/")) else place


def _kept_tool(router, name: str) -> Callable[[], None]:
    """Puts a tool back as it is now, and what it answers."""
    rules = dict(router._rules)
    places = [router.root.path(path) for path in
              (_place_of(name), f"/usr/bin/{name}", f"/router/answers/{name.lstrip('/')}.json")]
    kept = [(place, os.readlink(place) if place.is_symlink() else None, place.read_bytes() if place.is_file() else None)
            for place in places]

    def put_back() -> None:
        router._rules = rules
        for place, target, content in kept:
            if os.path.lexists(place):
                place.unlink()
            if target is not None:
                os.symlink(target, place)
            elif content is not None:
                place.write_bytes(content)
                place.chmod(0o755)

    return put_back


def _break_tool(router, name: str, fault: str, seed: str) -> None:
    if fault in ("flooding", "noisy"):
        place = _place_of(name)
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
