"""Writes, renames, memory and more that fail, and disks that are full or read-only: each package is that of some barrier,
each state file old or new, and the program answers again."""

from __future__ import annotations

import difflib
import math
import mmap
import os
import random
import re
import struct
import time
from pathlib import Path

import sandbox
from kit.router import program

from . import answers
from .dead_platform import _body
from .figures import Bounds, Figures
from .units import LASTING, Unit, first_documents, post_routes

NAME = "faults"
HELP = "writes, forks, memory and more that fail, full disks"
SHORT = {"count": 64, "routes": 7}

# As faults.cpp numbers them.
# What the log says where a change is left out and the next one is made all the same.
LEFT_OUT = ("uci_commit failed", "UciAddList wireless error", "Failed to set macfilter enable", "exec syscmd error!",
            "system error")
# What a route stores where it cannot read: a mode that is not told counts as MAP-E.
STORED_UNREAD = {"reboot": {b"\toption qvmapebootflag ' '"}}
KINDS = ("none", "write", "fsync", "rename", "open", "fork", "spawn", "pipe", "memory")
ONCE, FROM_THEN_ON, SHORT_WRITE, DIE, THROW, THROW_STANDARD = range(6)
MODES = {ONCE: "once", FROM_THEN_ON: "from then on", SHORT_WRITE: "short"}
_FIELDS = ("armed", "kind", "mode", "at", "seen", "failed", "versions")
_MOST_OF_A_KIND = 60  # places that are tried of one kind: a request asks for memory some hundred times

_ERROR = 3  # of syslog
_PAGE = os.sysconf("SC_PAGE_SIZE")


def parts(bounds: Bounds) -> list[tuple]:
    """Every place that can fail and every disk; of a count, nine tenths are places."""
    routes = bounds.some(NAME, post_routes())
    faults = None if bounds.count is None else max(1, round(bounds.count * 0.9 / len(routes)))
    disks = len(DISKS) if bounds.count is None or bounds.count > 1000 else 1 if bounds.count >= len(routes) * 10 else 0
    work = [(faults_of, (route, faults, bounds)) for route in routes]
    return work + [(disks_of, (route, disks, bounds)) for route in routes if disks]


class Control:
    """What is to fail, and what was counted: shared with the program."""

    def __init__(self, router):
        self._file = router.root.path("/router/faults")
        self._file.write_bytes(bytes(4096))
        router.root.path("/router/versions").mkdir(exist_ok=True)
        with open(self._file, "r+b") as file:
            self._map = mmap.mmap(file.fileno(), 4096)

    def arm(self, kind: int = 0, at: int = 0, mode: int = ONCE) -> None:
        kept = self.field("versions")  # names of files
        self._map[:4096] = bytes(4096)
        for field, value in (("versions", kept), ("kind", kind), ("at", at), ("mode", mode), ("armed", 1)):
            struct.pack_into("i", self._map, 4 * _FIELDS.index(field), value)

    def disarm(self) -> None:
        struct.pack_into("i", self._map, 0, 0)

    def field(self, name: str) -> int:
        return struct.unpack_from("i", self._map, 4 * _FIELDS.index(name))[0]

    def counts(self) -> dict[str, int]:
        return {kind: struct.unpack_from("i", self._map, 4 * (len(_FIELDS) + i))[0] for i, kind in enumerate(KINDS)}


class FaultyUnit:
    """A unit whose calls can be made to fail, and what it leaves behind undisturbed."""

    def __init__(self, route: str):
        self.route = route
        self.body = _body(route, first_documents()[route])
        self.start()
        self.control.arm()
        begin = time.monotonic()
        answer = self.unit.send(self.body)
        self.seconds = time.monotonic() - begin
        self.success = answers.result(answer) == 0
        self.unit.settle(self.success)
        self.control.disarm()
        self.counts = self.control.counts()
        after = self.unit.files()
        self.changed = {path for path in after if path.startswith("/etc/") and after[path] != self.unit.before.get(path)}
        self.allowed = {path: {self.unit.before.get(path), after.get(path)} for path in self.unit.before.keys() | after.keys()}
        for kept in self.unit.router.root.path("/router/versions").iterdir():
            path = "/etc/config/" + kept.name.split("-", 2)[2]
            self.allowed.setdefault(path if path in self.allowed else "/etc/" + path.rsplit("/", 1)[1], set()).add(kept.read_bytes())
        self.again(after)

    def start(self) -> None:
        library = program("TORTURE_FAULTS_LIB")
        self.unit = Unit(self.route, preload=[library], prepare=self._prepare)
        self.before = self.unit.before

    def _prepare(self, router) -> None:
        self.control = Control(router)
        # The `uci` commands' files are kept, too.
        router.root.mount(program("UCI_BIN"), "/router/real-uci")
        router.root._mounts = [mount for mount in router.root._mounts if mount[2] != "/router/tools/uci"]
        router.write("/router/tools/uci", "#!/bin/sh\nFAULTS_ONLY_VERSIONS=1 LD_PRELOAD=/router/" +
                     program("TORTURE_FAULTS_LIB").name + ' exec /router/real-uci "$@"\n', 0o755)

    def again(self, after: dict[str, bytes] | None = None, fresh: bool = False) -> None:
        """As before the request; a program of its own where the last one ended, or goes on working."""
        if fresh or self.route in LASTING:
            self.unit.router.discard()
            self.start()
        else:
            self.unit.restore(after if after is not None else self.unit.files())

    def _difference(self, path: str, after: dict[str, bytes]) -> str:
        """Against the known text that is most like it."""
        texts = [(known or b"").decode(errors="replace").splitlines() for known in self.allowed[path]]
        now = after.get(path, b"").decode(errors="replace").splitlines()
        return min((" ".join(line.strip() for line in difflib.unified_diff(known, now, n=0, lineterm=""))[8:] for known in texts),
                   key=len)[:400]

    def is_made_of_versions(self, path: str, after: dict[str, bytes]) -> bool:
        """What every version holds is there, and nothing that none holds: a change is left out, and no part of one."""
        if path not in after:
            return False
        versions = [set((known or b"").split(b"\n")) for known in self.allowed[path]]
        lines = set(after[path].split(b"\n"))
        return set.intersection(*versions) <= lines <= set.union(*versions, STORED_UNREAD.get(self.route, set()))

    def complaints(self, after: dict[str, bytes], is_failure_told: bool) -> list[str]:
        """What neither was there nor would have come. A commit that fails, and a command that cannot be started, are told
        in the log and leave their change out; what is committed later comes without it."""
        found = []
        for path in {path for path in self.allowed | after if path.startswith("/etc/")}:
            if path not in self.allowed or after.get(path) in self.allowed[path]:
                continue
            may_differ = is_failure_told or self.route in STORED_UNREAD
            if may_differ and self.is_made_of_versions(path, after):
                continue
            found.append(f"{path} is {'gone' if path not in after else 'something in between'}: {self._difference(path, after)}")
        return found


def faults_of(route: str, count: int | None, bounds: Bounds) -> Figures:
    figures, faulty = Figures(), FaultyUnit(route)
    try:
        for kind, at, mode in _places(faulty.counts, route, count, bounds):
            if bounds.over():
                break
            _fault(figures, faulty, kind, at, mode)
        faulty.unit.finish()
    finally:
        faulty.unit.router.discard()
    return figures


def _places(counts: dict[str, int], route: str, count: int | None, bounds: Bounds) -> list[tuple[int, int, int]]:
    draw = random.Random(f"{bounds.seed} {NAME} {route}")
    found = []
    for kind, name in enumerate(KINDS):
        numbers = range(1, counts[name] + 1)
        for at in numbers if len(numbers) <= _MOST_OF_A_KIND else draw.sample(numbers, _MOST_OF_A_KIND):
            found += [(kind, at, ONCE), (kind, at, FROM_THEN_ON)] + [(kind, at, SHORT_WRITE)] * (name == "write")
    return found if count is None or count >= len(found) else draw.sample(found, count)


def _fault(figures: Figures, faulty: FaultyUnit, kind: int, at: int, mode: int) -> None:
    unit, where = faulty.unit, f"{faulty.route}: {KINDS[kind]} {at} fails {MODES[mode]}"
    figures.count("tries")
    figures.count(f"{KINDS[kind]} failed")
    log_before = len(unit.router.log())
    faulty.control.arm(kind, at, mode)
    answer = unit.send(faulty.body)
    if faulty.route not in LASTING:
        unit.router.wait_until(lambda: not unit.router.alive_process() or unit.is_idle(), "the end of all background work")
    faulty.control.disarm()
    after = unit.files()
    silent = answer.empty and KINDS[kind] == "memory"  # what cannot be asked for cannot be answered
    if not silent and (wrong := answers.complaint("POST", faulty.route, answer)):
        figures.lose(f"{where}: {wrong}")
    compare(figures, faulty, where, after, answers.result(answer) == 0, log_before)
    if not unit.router.alive():
        if ended_by_libfcgi(unit.router):
            figures.count("ends of libfcgi's")
        elif _ended_by_sanitizer(unit.router):
            figures.count("ends of the sanitizer's")
        else:
            figures.lose(f"{where}: the program does not answer any more\n{unit.router.report()[-3000:]}")
        faulty.again(fresh=True)
    else:
        faulty.again(after)


def ended_by_libfcgi(router) -> bool:
    """libfcgi asserts that it gets its memory while it reads a request. The web server then starts the program again."""
    return re.search(r"fcgiapp\.c:\d+: Malloc: Assertion", router.stderr()) is not None


def _ended_by_sanitizer(router) -> bool:
    """AddressSanitizer asks for memory where a thread begins, and ends the program without it."""
    return re.search(r"AddressSanitizer: CHECK failed: sanitizer_linux_libcdep.*\(0xc, 0x0\)", router.sanitizer_report()) is not None


def compare(figures: Figures, faulty: FaultyUnit, where: str, after: dict[str, bytes], said_success: bool,
             log_before: int = 0) -> None:
    lines = faulty.unit.router.log()[log_before:]
    errors = [line.text for line in lines if line.priority == _ERROR]
    is_told = any(known in line.text for line in lines for known in LEFT_OUT)
    figures.count("changes left out and logged", is_told)
    for wrong in faulty.complaints(after, is_told):
        figures.lose(f"{where}: {wrong}")
    if any(".uci-" in path or path.endswith("~") for path in after.keys() - faulty.before.keys() if path.startswith("/etc/")):
        figures.count("temporary files left")
    stored = {path for path in faulty.changed if after.get(path) != faulty.before.get(path)}
    if said_success and faulty.changed and not stored:
        figures.count("nothing stored, success, " + ("an error logged" if errors else "nothing logged"))
        if not errors:
            figures.notes.add(f"{where}: success, nothing stored, nothing logged")


DISKS = ("/etc/config full", "/etc/config read-only", "/tmp read-only", "/tmp full")


def disks_of(route: str, count: int, bounds: Bounds) -> Figures:
    figures = Figures()
    undisturbed = None
    for disk in random.Random(f"{bounds.seed} disks {route}").sample(DISKS, count):
        if bounds.over():
            break
        path, how = disk.split()
        unit = Unit(route, start=False)
        try:
            files = _fill(unit.router, path, how)
            figures.count("tries")
            figures.count(f"{how} disks")
            answer = unit.send(_body(route, first_documents()[route]))
            if wrong := answers.complaint("POST", route, answer):
                figures.lose(f"{route} with {disk}: {wrong}")
            if not unit.router.alive():
                figures.lose(f"{route} with {disk}: does not answer any more")
            for name, content in files.items():
                if path == "/etc/config" and not _is_package(unit.router.read_running(name)):
                    figures.lose(f"{route} with {disk}: {name} is lost; it was {content[:80]!r}")
        except AssertionError as error:
            figures.lose(f"{route} with {disk}: {str(error)[:2000]}")
        finally:
            unit.router.discard()
    return figures


def _is_package(text: str | None) -> bool:
    return text is not None and text.strip() != "" or text == ""


def _fill(router, path: str, how: str) -> dict[str, bytes]:
    """Puts a disk at `path` that holds what is there, and takes no more."""
    there = router.root.path(path)
    files = {"/" + str(place.relative_to(router.root.fs)): place.read_bytes() for place in there.rglob("*") if place.is_file()}
    if how == "read-only":
        router.root.mount(there, path)
        return files
    pages = sum(max(1, math.ceil(len(content) / _PAGE)) for content in files.values())
    kept = router.root.path("/router/disk")
    router.root.copy_tree(there, "/router/disk")
    assert kept.is_dir()
    router.root._mounts.append(("--size", str(pages * _PAGE), "--tmpfs", path))
    router.root.setup.append(f"cp -a /router/disk/. {path}/")
    return files
