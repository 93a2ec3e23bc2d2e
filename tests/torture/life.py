"""A long life: many requests of all kinds, clients that leave, many clients at once; what the program holds stays the same."""

from __future__ import annotations

import concurrent.futures
import json
import os
import random
import time
from pathlib import Path

import kit
from kit import fastcgi
from kit.router import SANITIZER_OPTIONS
from process_state import children, resident_kib, resources, sockets
from route_documents import API

from . import answers
from .figures import Bounds, Figures
from .units import Unit, first_documents, get_routes

NAME = "life"
HELP = "100,000 mixed requests, 64 clients at once through the web server, clients that leave; nothing grows"
SHORT = {"count": 300, "clients": 16}

WHOLE = 100_000
GROWTH_KIB = 3072  # of the C library's and the sanitizers' own; one leaked answer of each request would be more
_TELLS_GROWTH = 2000  # requests; fewer fill the pools that are there anyway
_END_S = 120.0  # only a failure meets it
# Routes whose documents leave the router as it is, or as the same document left it before.
STEADY = ("ntp", "accounts", "router/info", "security/passthrough", "security/protect", "wireless/rebootschedule", "dhcp",
          "parental-control", "remote-maintenance", "wireless/wps", "test/led", "test/cert-db-reset", "system/log/clear")


def parts(bounds: Bounds) -> list[tuple]:
    count = WHOLE if bounds.count is None else bounds.count
    each = max(4, min(count // 200, 100))
    return [(mixed, ("orvane", count // 2, bounds)), (mixed, ("tesmir", count // 2, bounds)),
            (many_clients, ("lighttpd", each, bounds))]


def mixed(brand: str, count: int, bounds: Bounds) -> Figures:
    figures = Figures()
    asan = SANITIZER_OPTIONS["ASAN_OPTIONS"] + ":quarantine_size_mb=1"  # a freed block stays resident in the quarantine
    unit = Unit("lan", prepare=lambda router: router.brand(brand), environment={"ASAN_OPTIONS": asan})
    router, draw = unit.router, random.Random(f"{bounds.seed} {NAME} {brand}")
    try:
        kinds = [lambda: _get(figures, router, draw), lambda: _post(figures, router, draw), lambda: _leave(figures, router, draw),
                 lambda: _nonsense(figures, router, draw)]
        warm_up = max(60, count // 10)
        for number in range(count):
            if bounds.over():
                break
            if number == warm_up:
                before = _state(unit)
            draw.choices(kinds, (6, 2, 1, 1))[0]()
            figures.count("tries")
            if number % 50 == 49:
                unit.settle()
                router.forget_calls()
        if figures.counts["tries"] <= warm_up:
            before = _state(unit)
        _compare(figures, unit, before, _state(unit))
        unit.finish()
    finally:
        router.discard()
    return figures


def _state(unit: Unit) -> dict:
    unit.settle()
    pid = unit.router.pid()
    unit.router.wait_until(lambda: len(sockets(pid)) == 2, "the end of the last request")  # listening, logging
    held = resources(pid)
    return {"descriptors": held.descriptors, "threads": held.threads, "children": held.children, "memory": resident_kib(pid),
            "files": {path for path, content in unit.files().items() if path.startswith("/tmp/") and content}}


def _compare(figures: Figures, unit: Unit, before: dict, after: dict) -> None:
    for name in ("descriptors", "threads", "children"):
        if before[name] != after[name]:
            figures.lose(f"{name} were {before[name]}, are {after[name]}")
    growth = after["memory"] - before["memory"]
    figures.notes.add(f"resident memory {before['memory']:,} kB, later {after['memory']:,} kB")
    if growth > GROWTH_KIB and figures.counts["tries"] > _TELLS_GROWTH:
        figures.lose(f"memory grew by {growth} kB")
    if new := after["files"] - before["files"] - {"/tmp/log/messages.log.old"}:
        figures.lose(f"new below /tmp: {sorted(new)[:5]}")


def _get(figures: Figures, router: kit.Router, draw: random.Random) -> None:
    route = draw.choice(get_routes())
    if wrong := answers.complaint("GET", route, router.get(API + route)):
        figures.lose(f"GET {route}: {wrong}")


def _post(figures: Figures, router: kit.Router, draw: random.Random) -> None:
    route = draw.choice(STEADY)
    if wrong := answers.complaint("POST", route, router.post(API + route, first_documents()[route])):
        figures.lose(f"POST {route}: {wrong}")


def _leave(figures: Figures, router: kit.Router, draw: random.Random) -> None:
    """Hangs up somewhere in the request, or with the answer half read."""
    route, body = draw.choice(STEADY), kit.encrypt(b"[]")
    whole = fastcgi.request({"REQUEST_METHOD": draw.choice(("GET", "POST")), "REQUEST_URI": API + route,
                             "CONTENT_LENGTH": str(len(body))}, body)
    with fastcgi.connect(str(router.directory / "fcgi.sock"), _END_S) as leaving:
        leaving.sendall(whole[:draw.randint(0, len(whole))])
        if draw.random() < 0.3 and draw.random() < 0.5:
            leaving.settimeout(0.001)
            try:
                leaving.recv(draw.randint(1, 64))
            except OSError:
                pass
    figures.count("left")


def _nonsense(figures: Figures, router: kit.Router, draw: random.Random) -> None:
    route = draw.choice(STEADY)
    body = draw.randbytes(draw.randint(0, 2000))
    answer = router.fcgi({"REQUEST_METHOD": draw.choice(("POST", "PUT", "post", "")), "REQUEST_URI": API + route,
                          "CONTENT_LENGTH": draw.choice((str(len(body)), "0", "-1", "x", "99999999999"))}, body)
    if not answer.empty and answer.body not in (*answers.PLAIN, b"Not Found") and answers.complaint("POST", route, answer):
        figures.lose(f"nonsense to {route}: {answer!r}")


def many_clients(server: str, each: int, bounds: Bounds) -> Figures:
    """Through the web server with the real jose: each client asks one request after another, all of them at once."""
    import client
    import simulator

    figures = Figures()
    router = simulator.Simulator(Path(os.environ["ROUTER_API_BUILD"]), simulator.options_parser().parse_args(
        ["--web-server", server]))
    document = client.encrypt(json.dumps({"pptpEnable": 1, "ipsecEnable": 1}).encode())
    fast = ("ntp", "lan", "security/protect", "port-open", "wireless/wps-status", "dhcp")

    def one(number: int) -> list[str]:
        draw, losses = random.Random(f"{bounds.seed} client {number}"), []
        for turn in range(each):
            if bounds.over():
                break
            posts = draw.random() < 0.2
            route = "security/passthrough" if posts else draw.choice(fast)
            answer = client.request(router.base, "POST" if posts else "GET", API + route, document if posts else None, plain=True)
            asked.append(route)
            if answer.status != 200 or not answer.encrypted:
                losses.append(f"client {number}, {route}: {answer.status} {answer.body[:80]!r}")
            elif turn == 0 and answer.json["result"] != 0:
                losses.append(f"client {number}, {route}: {answer.text}")
        return losses

    asked: list[str] = []
    try:
        router.start()
        pid = router.program_pid()
        with concurrent.futures.ThreadPoolExecutor(bounds.clients) as clients:
            for losses in clients.map(one, range(bounds.clients)):
                figures.losses += losses
        figures.count("tries", len(asked))
        figures.count("through the web server", len(asked))
        if router.program_pid() != pid:
            figures.lose("the program was started again")
        end = time.monotonic() + _END_S
        while len(sockets(pid)) != 2 and time.monotonic() < end:
            time.sleep(0.01)
        if len(sockets(pid)) != 2 or children(pid):
            figures.lose(f"afterwards it holds {sockets(pid)} and children {children(pid)}")
    finally:
        router.stop()
    return figures
