"""Documents that a machine makes from those that succeed, through each POST route; and the fuzz targets of the parsers."""

from __future__ import annotations

import json
import os
import random
import re
import subprocess
from pathlib import Path

from route_documents import documents

from . import answers
from .corpus import CANARY, payloads
from .figures import Bounds, Figures
from .units import LASTING, RAW, Unit, first_documents, post_routes

NAME = "fuzzing"
HELP = "documents made at random through each POST route; with --targets SECONDS the fuzz targets, each so long"
SHORT = {"count": 170}

_TOP = Path(__file__).resolve().parents[2]
_EACH = 400  # documents of a route, when nothing bounds them
_TOGETHER = 10  # documents between two looks at the router


def parts(bounds: Bounds) -> list[tuple]:
    each = _EACH if bounds.count is None else max(1, bounds.count // len(post_routes()))
    targets = [(fuzz_targets, (bounds.targets,))] if bounds.targets else []
    return targets + [(documents_of, (route, each, bounds)) for route in post_routes()]


def documents_of(route: str, count: int, bounds: Bounds) -> Figures:
    figures, unit = Figures(), Unit(route)
    draw = random.Random(f"{bounds.seed} {NAME} {route}")
    seeds = [json.dumps(document).encode() for name, document in documents() if name == route]
    seeds = seeds or [first_documents()[route] or b"" if route in RAW else b"{}"]
    names = sorted({name for seed in seeds for name in re.findall(rb'"(\w+)":', seed)})
    try:
        for number in range(count):
            if bounds.over():
                break
            body = mutated(draw, draw.choice(seeds), names)
            answer = unit.send(body)
            figures.count("tries")
            if wrong := answers.complaint("POST", route, answer):
                figures.lose(f"{route}: {wrong} to {body[:400]!r}")
            accepted = answers.result(answer) == 0
            figures.count("accepted", accepted)
            if accepted and route in LASTING:
                unit.settle(True)
                unit.finish()
                unit = Unit(route)
            elif number % _TOGETHER == _TOGETHER - 1:
                _look(figures, unit, body)
        unit.finish()
    except AssertionError as error:
        figures.lose(f"{route}: {str(error)[:3000]}")
    finally:
        unit.router.discard()
    return figures


def _look(figures: Figures, unit: Unit, body: bytes) -> None:
    unit.settle()
    after = unit.files()
    if unit.router.calls(CANARY) or any(CANARY in path for path in after):
        figures.lose(f"{unit.route}: the canary, after some documents before {body[:200]!r}")
    unit.restore(after)


def mutated(draw: random.Random, seed: bytes, names: list[bytes]) -> bytes:
    """One to four changes: to the tree while it is one, to the bytes else."""
    for _ in range(draw.randint(1, 4)):
        change = draw.choice((_other_value, _other_value, _other_value, _no_member, _twice, _bytes))
        seed = change(draw, seed, names)
    return seed


_VALUE = re.compile(rb'("\w+": ?)("(?:[^"\\]|\\.)*"|-?[\d.]+|null|true|false)')


def _other_value(draw: random.Random, text: bytes, names: list[bytes]) -> bytes:
    found = list(_VALUE.finditer(text))
    if not found:
        return text + draw.choice(payloads()).json[:5000]
    at = draw.choice(found)
    if draw.random() < 0.5:
        value = draw.choice(payloads()).json[:20_000]
    else:
        value = str(draw.choice((0, 1, 2, 3, 4, 5, 9, draw.randint(-10, 300), draw.randint(-2**40, 2**40)))).encode()
        value = value if draw.random() < 0.6 else b'"' + value + b'"'
    return text[:at.start(2)] + value + text[at.end(2):]


def _no_member(draw: random.Random, text: bytes, names: list[bytes]) -> bytes:
    found = list(_VALUE.finditer(text))
    if not found:
        return text
    at = draw.choice(found)
    return re.sub(rb",\s*([}\]])", rb"\1", re.sub(rb"([{\[])\s*,", rb"\1", text[:at.start()] + text[at.end():].lstrip(b" ,")))


def _twice(draw: random.Random, text: bytes, names: list[bytes]) -> bytes:
    found = [at for at in range(len(text)) if text[at:at + 1] in b"{["]
    if not found:
        return text + text
    at = draw.choice(found) + 1
    name = draw.choice(names) if names else b"x"
    return text[:at] + b'"' + name + b'": ' + draw.choice((b"1", b'"x"', b"[]", b"{}", b"null", text[:200])) + b", " + text[at:]


def _bytes(draw: random.Random, text: bytes, names: list[bytes]) -> bytes:
    if not text:
        return draw.randbytes(draw.randint(1, 40))
    at = draw.randrange(len(text))
    return draw.choice((text[:at], text[:at] + draw.randbytes(1) + text[at + 1:], text[:at] + text[at + draw.randint(1, 8):],
                        text[:at] + draw.randbytes(draw.randint(1, 8)) + text[at:], text[:at] + text[at // 2:]))


def fuzz_targets(seconds: int) -> Figures:
    """script/fuzz on every target, each from its seeds and what earlier runs have found."""
    figures = Figures()
    done = subprocess.run([_TOP / "script/fuzz", "all", str(seconds)], capture_output=True, text=True, errors="replace",
                          env={name: value for name, value in os.environ.items() if name not in ("TMPDIR",)})
    names = re.findall(r"^== (\w+),", done.stdout, re.M)
    figures.count("targets", len(names))
    figures.count("runs of targets", sum(map(int, re.findall(r"stat::number_of_executed_units:\s+(\d+)", done.stdout + done.stderr))))
    figures.count("tries", figures.counts["runs of targets"])
    if done.returncode != 0:
        figures.lose((done.stdout + done.stderr)[-3000:])
    return figures
