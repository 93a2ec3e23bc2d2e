"""What was tortured is instrumented; and the units that have threads, under ThreadSanitizer."""

from __future__ import annotations

import os
import subprocess
from pathlib import Path

import kit
from kit.router import program

from .figures import Bounds, Figures

NAME = "sanitizers"
HELP = "the program under torture is instrumented and its reports are seen; with --threads the units under ThreadSanitizer"
SHORT = {"count": 1}

_TOP = Path(__file__).resolve().parents[2]
_MARKS = {b"__asan_init": "AddressSanitizer", b"__ubsan_handle": "UndefinedBehaviorSanitizer", b"__tsan_init": "ThreadSanitizer"}
WITH_THREADS = ("platform", "system", "repeater", "waninfoMethod", "lan", "wireless", "mesh")


def parts(bounds: Bounds) -> list[tuple]:
    return [(instruments, (bounds,))] + ([(threads, (area, bounds)) for area in WITH_THREADS] if bounds.threads else [])


def instruments(bounds: Bounds) -> Figures:
    figures = Figures()
    content = program("ROUTER_API_BIN").read_bytes()
    found = [name for mark, name in _MARKS.items() if mark in content]
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


def threads(area: str, bounds: Bounds) -> Figures:
    figures, folder = Figures(), _TOP / "build/tsan"
    for command in (["cmake", "--preset", "tsan"], ["ninja", "-C", str(folder), f"unit_{area}"]):
        done = subprocess.run(command, cwd=_TOP, capture_output=True, text=True)
        if done.returncode != 0:
            figures.lose(f"{' '.join(command)}: {done.stdout[-2000:]}")
            return figures
    done = subprocess.run([_TOP / "tests/kit/in-sandbox", folder / f"tests/unit/unit_{area}"], capture_output=True, text=True,
                          errors="replace", env={**os.environ, "TSAN_OPTIONS": "halt_on_error=0"})
    figures.count("tries", done.stdout.count("[       OK ]"))
    figures.count("units under ThreadSanitizer", done.stdout.count("[       OK ]"))
    if done.returncode != 0 or "WARNING: ThreadSanitizer" in done.stdout + done.stderr:
        figures.lose(f"unit_{area}: {(done.stdout + done.stderr)[-3000:]}")
    return figures
