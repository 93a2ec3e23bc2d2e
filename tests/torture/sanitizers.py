"""What was tortured is instrumented; and what has threads, units and routes, under ThreadSanitizer."""

from __future__ import annotations

import os
import subprocess
from pathlib import Path

import kit
from kit.router import program
from route_documents import API

from .figures import Bounds, Figures
from .units import LASTING, Unit, first_documents

NAME = "sanitizers"
HELP = "the program under torture is instrumented and its reports are seen; with --threads units and routes under ThreadSanitizer"
SHORT = {"count": 1}

_TOP = Path(__file__).resolve().parents[2]
_FOLDER = _TOP / "build/tsan"
_MARKS = {b"__asan_init": "AddressSanitizer", b"__ubsan_handle": "UndefinedBehaviorSanitizer", b"__tsan_init": "ThreadSanitizer"}
WITH_THREADS = ("platform", "system", "repeater", "waninfoMethod", "lan", "wireless", "mesh")
# Routes whose work goes on in a thread, a daemon or a timer while the next requests come.
BACKGROUND = ("reboot", "system/config/initialize", "wireless/wps", "wireless/wps-status", "port-open", "security/protect",
              "lan", "router/wan-info", "repeater/connect", "system/firmware", "fwupdatechkandrun")
_ROUNDS = 8
_NEXT = ("ntp", "lan", "router/info")  # GETs between two rounds: they log, read packages and start tools


def parts(bounds: Bounds) -> list[tuple]:
    work = [(instruments, (bounds,))]
    if bounds.threads:
        _build("router-api", *(f"unit_{area}" for area in WITH_THREADS))
        work += [(routes, (route, bounds)) for route in BACKGROUND] + [(threads, (area, bounds)) for area in WITH_THREADS]
    return work


def _build(*targets: str) -> None:
    for command in (["cmake", "--preset", "tsan"], ["ninja", "-C", str(_FOLDER), *targets]):
        done = subprocess.run(command, cwd=_TOP, capture_output=True, text=True)
        assert done.returncode == 0, f"{' '.join(command)}: {done.stdout[-2000:]}"


def sanitizers_of(binary: Path) -> list[str]:
    content = binary.read_bytes()
    return [name for mark, name in _MARKS.items() if mark in content]


def instruments(bounds: Bounds) -> Figures:
    figures = Figures()
    found = sanitizers_of(program("ROUTER_API_BIN"))
    figures.notes.add(f"the program is built with {' and '.join(found) or 'no sanitizer'}")
    figures.count("tries")
    router = kit.Router()
    try:
        router.write("/router/sanitizer.1", "a report")
        if router.sanitizer_report() != "a report":
            figures.lose("a sanitizer's report is not seen")
    finally:
        router.discard()
    return figures


def routes(route: str, bounds: Bounds) -> Figures:
    """One program is asked again and again while what it was asked before goes on."""
    figures = Figures()
    os.environ["ROUTER_API_BIN"] = str(_FOLDER / "router-api")  # a part has a process of its own
    figures.notes.add(f"routes under {' and '.join(sanitizers_of(program('ROUTER_API_BIN'))) or 'no sanitizer'}")
    unit = Unit(route, threads=1)
    try:
        body = first_documents()[route]
        for _ in range(_ROUNDS):
            for answer in [unit.send(body), *(unit.router.get(API + other) for other in _NEXT)]:
                figures.count("tries")
                figures.count("requests under ThreadSanitizer")
                if answer.empty:
                    figures.lose(f"{route}: no answer")
        unit.router.wait_until(lambda: route in LASTING or unit.is_idle(), "the end of all background work")
        if report := unit.router.sanitizer_report():
            figures.lose(f"{route}: {report[:3000]}")
        if not unit.router.alive():
            figures.lose(f"{route}: does not answer any more")
    finally:
        unit.router.discard()
    return figures


def threads(area: str, bounds: Bounds) -> Figures:
    figures = Figures()
    done = subprocess.run([_TOP / "tests/kit/in-sandbox", _FOLDER / f"tests/unit/unit_{area}"], capture_output=True, text=True,
                          errors="replace", env={**os.environ, "TSAN_OPTIONS": "halt_on_error=0"})
    figures.count("tries", done.stdout.count("[       OK ]"))
    figures.count("units under ThreadSanitizer", done.stdout.count("[       OK ]"))
    if done.returncode != 0 or "WARNING: ThreadSanitizer" in done.stdout + done.stderr:
        figures.lose(f"unit_{area}: {(done.stdout + done.stderr)[-3000:]}")
    return figures
