"""The program ends at one of its calls, or the whole router at any instant: each package is that of some barrier, each
state file old or new, and what starts again reads them."""

from __future__ import annotations

import random
import time

from route_documents import API

from . import answers
from .faults import DIE, KINDS, FaultyUnit, compare
from .figures import Bounds, Figures
from .units import LASTING, Unit, get_routes

NAME = "kills"
HELP = "the program or its whole router killed in the middle of requests that write"
SHORT = {"count": 24}

WRITING = ("router/wan-info", "wireless/setting", "wireless/detail-setting", "dhcp", "lan", "ntp", "accounts", "port-open",
           "parental-control", "wireless/rebootschedule", "repeater/connect", "router/info")
WHOLE = 84 * len(WRITING)
_ANY = len(KINDS)  # of its calls, but those that ask for memory


def parts(bounds: Bounds) -> list[tuple]:
    each = max(1, round((WHOLE if bounds.count is None else bounds.count) / len(WRITING)))
    return [(kills_of, (route, each, bounds)) for route in WRITING]


def kills_of(route: str, count: int, bounds: Bounds) -> Figures:
    """At the n-th of its calls, or after so many milliseconds, turn about."""
    figures, faulty = Figures(), FaultyUnit(route)
    draw = random.Random(f"{bounds.seed} {NAME} {route}")
    most = sum(number for kind, number in faulty.counts.items() if kind != "memory")
    try:
        for turn in range(count):
            if bounds.over():
                break
            at, late = draw.randint(1, most), draw.uniform(0, faulty.seconds)
            _kill(figures, faulty, at if turn % 2 == 0 else None, late)
    finally:
        faulty.unit.router.discard()
    return figures


def _kill(figures: Figures, faulty: FaultyUnit, at: int | None, late: float) -> None:
    unit, where = faulty.unit, f"{faulty.route}: killed " + (f"at call {at}" if at else f"after {late * 1e3:.1f} ms")
    figures.count("tries")
    figures.count("at a call" if at else "at an instant")
    faulty.control.arm(_ANY, at or 0, DIE)
    if at:
        unit.send(faulty.body)  # answered, or broken off
        unit.router.wait_until(lambda: not unit.router.alive_process() or _is_over(unit), "the kill")
    else:
        unit.router.post(API + unit.route, faulty.body, leave=True)
        time.sleep(late)
    unit.router.kill()
    faulty.control.disarm()
    compare(figures, faulty, where, unit.files(), False)
    unit.start_again()
    if faulty.route in get_routes() and answers.complaint("GET", faulty.route, unit.router.get(API + faulty.route)):
        figures.lose(f"{where}: cannot be read afterwards")
    faulty.again()


def _is_over(unit: Unit) -> bool:
    """The request made fewer calls than before: other threads of it were sooner or later."""
    return unit.is_under_way() if unit.route in LASTING else unit.is_idle()
