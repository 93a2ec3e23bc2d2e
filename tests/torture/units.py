"""Routers on which a route succeeds, and that are as before after every request."""

from __future__ import annotations

import os

import kit
import repeater_setup
from process_state import below
from route_documents import API, GIVEN, OPENAPI, documents
from routes import test_firmware as firmware
from wan_setup import addresses

from .corpus import CANARY

kit.router.DEADLINE_S = 120.0  # what must come comes; how soon is no matter of the machine's load
RAW = {"system/firmware": b"\0\x01image " * 500, "system/config/restore": None, "system/config/backup": b""}
# Routes whose work goes on once it was accepted: the calls of which one tells that it is under way.
LASTING = {"reboot": {"reboot"}, "repeater/connect": {"/sbin/wifi up", "/sbin/wifi multi_up mld4 mld5 mld6 mld0"},
           "system/config/waninit": {"reboot"}, "system/config/restore": {"/sbin/reboot"}}
OUTSIDE = ("router", "usr", "machine", "proc", "dev")  # what of a root is no file of the router's


def post_routes() -> list[str]:
    return [uri.removeprefix(API) for uri, operations in OPENAPI["paths"].items() if "post" in operations]


def get_routes() -> list[str]:
    return [uri.removeprefix(API) for uri, operations in OPENAPI["paths"].items() if "get" in operations]


def first_documents() -> dict[str, dict | bytes]:
    """A body for every POST route, that succeeds."""
    found = {}
    for route, document in documents():
        found.setdefault(route, document)
    return {route: RAW[route] if route in RAW else found.get(route, {}) for route in post_routes()}


class Unit:
    """A router for one route, with the canary among its tools."""

    def __init__(self, route: str, method: str = "POST", start: bool = True, prepare=lambda router: None, threads: int = 0,
                 **attributes):
        """`threads`: how many a sanitizer keeps once the program had one. `attributes` are those of kit.Router that count
        before its start: time_rate, preload, environment."""
        self.route, self.method, self._threads = route, method, threads
        given = GIVEN.get(route) if method == "POST" else None
        self.router = _router(route)
        for name, value in attributes.items():
            setattr(self.router, name, value)
        try:
            self.router.tool(CANARY)
            prepare(self.router)
            if not start:
                return
            self._start()
            if given is not None:
                assert self.router.post(API + given[0], given[1]).json["result"] == 0
                self.settle()
            self.before = self.files()
            self.router.forget_calls()
        except BaseException:
            self.router.discard()
            raise

    def _start(self) -> None:
        self.router.start()
        assert self.router.alive()
        self.idle = self.activity()

    def start_again(self) -> None:
        """After router.kill()."""
        self.router.restart()
        self._start()

    def send(self, body: bytes) -> kit.Answer:
        """The route's request: a document travels encrypted, an upload as it is."""
        if self.method == "GET":
            return self.router.get(API + self.route)
        return self.router.post(API + self.route, body, plain=self.route in RAW)

    def settle(self, accepted: bool = False) -> None:
        """Waits until nothing goes on behind the answer, or until what goes on is well under way."""
        assert self.router.alive()  # what the program itself still does is done before the next request
        self.router.wait_until(lambda: accepted and self.is_under_way() or self.is_idle(), "the end of all background work")

    def is_under_way(self) -> bool:
        """Of the routes whose work goes on; not all that they accept makes them begin it."""
        return not LASTING.get(self.route, set()).isdisjoint(self.router.commands())

    def is_idle(self) -> bool:
        try:
            processes, threads = self.activity()
        except OSError:
            return False  # a process ended meanwhile
        return processes == self.idle[0] and threads in (self.idle[1], self.idle[1] + self._threads)

    def activity(self) -> tuple:
        """What runs: processes, and the program's threads."""
        program = self.router.processes()
        if not program:
            raise ProcessLookupError("the program has ended")
        return below(os.getpid()), len(os.listdir(f"/proc/{program[0]}/task"))

    def files(self) -> dict[str, bytes]:
        """Every regular file of the router's, by its path there."""
        root = str(self.router.root.fs)
        folders = [entry.path for entry in os.scandir(root) if entry.name not in OUTSIDE]
        found = {}
        while folders:
            for entry in _entries(folders.pop()):
                if entry.is_dir(follow_symlinks=False):
                    folders.append(entry.path)
                elif entry.is_file(follow_symlinks=False) and (content := _content(entry.path)) is not None:
                    found[entry.path.removeprefix(root)] = content
        return found

    def restore(self, after: dict[str, bytes]) -> None:
        """Puts every file back that is not as before."""
        for path in self.before.keys() | after.keys():
            if path not in self.before:
                self.router.remove(path)
            elif self.before[path] != after.get(path):
                self.router.write(path, self.before[path])
        self.router.forget_calls()

    def finish(self) -> None:
        self.router.finish()


def _entries(folder: str) -> list[os.DirEntry]:
    try:
        return list(os.scandir(folder))
    except (FileNotFoundError, NotADirectoryError):
        return []  # gone meanwhile, or a file of the root itself


def _content(path: str) -> bytes | None:
    try:
        with open(path, "rb", buffering=0) as file:
            return file.readall()
    except FileNotFoundError:
        return None


def _router(route: str) -> kit.Router:
    if route == "repeater/connect":
        return repeater_setup.prepare(kit.Router(factory=False), real_uci=True)
    router = kit.Router(brand="tesmir") if route == "fsecure_sense" else kit.Router()
    router.write("/sys/kernel/debug/gpio", " gpio38  in 0 low 8mA\n")
    router.write("/sys/devices/platform/soc@0/soc@0:leds/leds/led_router/brightness", "as it was\n")
    router.write("/var/log/messages.log", "2026-11-22 04:00:00 [system] started\n")
    addresses(router)
    firmware.downloads(router)
    return router
