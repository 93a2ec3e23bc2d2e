"""The sections one after another, their parts beside each other, and the table."""

from __future__ import annotations

import argparse
import dataclasses
import importlib
import multiprocessing
import os
import platform
import sys
import time
import traceback

from .figures import Bounds, Figures, table

SECTIONS = ["injection", "dead_platform", "faults", "kills", "life", "fuzzing", "sanitizers"]


def parser() -> argparse.ArgumentParser:
    sections = {name: _module(name) for name in SECTIONS}
    found = argparse.ArgumentParser(
        prog="script/torture", formatter_class=argparse.RawDescriptionHelpFormatter,
        description="Does to the program what a home network could, and worse, and prints what was tried and what was lost.\n"
                    "Everything happens in roots of its own, bounded in count or time; a seed repeats a run.",
        epilog="sections:\n" + "\n".join(f"  {name:<13} {module.HELP}" for name, module in sections.items()) +
               "\n\nexamples:\n  script/torture --short\n  script/torture injection --count 20000 --seed 7\n"
               "  script/torture life --seconds 600\n")
    found.add_argument("section", nargs="*", metavar="SECTION", help="default: all of them")
    found.add_argument("--short", action="store_true", help="the form of script/test: bounded in count, always the same")
    found.add_argument("--seed", type=int, default=1, help="what is drawn by lot; default: 1")
    found.add_argument("--count", type=int, help="about so many tries of each section; default: all there are")
    found.add_argument("--seconds", type=float, help="no new try of a section after so many seconds")
    found.add_argument("--targets", type=int, default=0, metavar="SECONDS", help="fuzzing: each fuzz target, too, so long")
    found.add_argument("--threads", action="store_true", help="sanitizers: units and routes with threads under ThreadSanitizer, too")
    found.add_argument("--jobs", type=int, default=os.cpu_count() or 1, help="parts at once; default: one per processor")
    found.add_argument("--only", default="", help="only the parts whose names hold this text")
    found.add_argument("--preset", default="asan", help="whose programs; default: asan")
    return found


def _module(name: str):
    return importlib.import_module(f"torture.{name}")


def _run_part(work: tuple) -> Figures:
    function, arguments = work
    begin = time.monotonic()
    if any(isinstance(argument, Bounds) and argument.over() for argument in arguments):
        return Figures()
    try:
        return function(*arguments)
    except BaseException as error:  # a part that breaks is a loss, not the end of the others
        figures = Figures()
        places = " < ".join(f"{frame.name}:{frame.lineno}" for frame in traceback.extract_tb(error.__traceback__)[:0:-1])
        figures.lose(f"{name_of(work)}: {type(error).__name__} at {places}: {str(error)[:2000]}")
        return figures
    finally:
        if "TORTURE_TIMES" in os.environ:
            print(f"{time.monotonic() - begin:6.1f} s {name_of(work)}", file=sys.stderr, flush=True)


def name_of(work: tuple) -> str:
    function, arguments = work
    return " ".join([function.__name__, *(argument for argument in arguments if isinstance(argument, str))])


def _run_section(module, options: argparse.Namespace) -> tuple[Figures, float]:
    begin = time.monotonic()
    until = begin + options.seconds if options.seconds else float("inf")
    bounds = Bounds(options.seed, options.count, until, options.targets, options.threads)
    if options.short:
        bounds = dataclasses.replace(bounds, **module.SHORT)
    parts = [work for work in module.parts(bounds) if options.only in name_of(work)]
    figures = Figures()
    # A process for each part: what a part leaves in memory, or breaks, is its own.
    with multiprocessing.get_context("fork").Pool(options.jobs, maxtasksperchild=1) as pool:
        for done in pool.imap_unordered(_run_part, parts):
            figures.add(done)
            for loss in done.losses:
                print(f"LOST {module.NAME}: {loss}", flush=True)
    return figures, time.monotonic() - begin


def main() -> int:
    known = parser()
    options = known.parse_args()
    chosen = options.section or SECTIONS
    if unknown := [name for name in chosen if name not in SECTIONS]:
        known.error(f"there is no section {' '.join(unknown)}; there are: {' '.join(SECTIONS)}")
    print(f"seed {options.seed}, preset {options.preset}, {options.jobs} at once, {platform.machine()}, "
          f"{os.cpu_count()} processors", flush=True)
    figures, seconds = {}, {}
    for name in chosen:
        figures[name], seconds[name] = _run_section(_module(name), options)
    print(table(figures, seconds))
    return 1 if any(found.losses for found in figures.values()) else 0


if __name__ == "__main__":
    sys.exit(main())
