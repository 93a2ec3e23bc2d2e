#!/usr/bin/python3
"""differential.py UCI [OTHER] [--sequences N] [--seed N] [--driver PROGRAM]: looks for commands that behave differently.

Random package texts and random command lines go to two `uci` commands: after each line the exit status, both outputs,
the package and the staged changes must be the same. Every class of difference is shown by one example, made as small as
it can be, in the form of own_vectors.json.

With one command only, it is compared with the C interface: PROGRAM (interface_driver) makes the same changes with it in
one process; then success, package and staged changes must be the same.
"""

import argparse
import json
import os
import random
import subprocess
import sys
import tempfile
from pathlib import Path

DEADLINE_S = 600
NAMES = ["s", "n", "a", "b", "l", "x1", "cfg01b619", "@t[0]", "@t[-1]", "@u[1]", "@[0]", "@t[9]", "bad-name", ""]
TYPES = ["t", "u", "wifi-iface", "a b", "", "it's"]
VALUES = ["1", "x", "y z", "", "it's", "two\nlines", "#", ";", "a\\b", "\"", "\x01", "0", "-1", "v" * 300]
WORDS = ["config t s", "config t", "config u n", "config 'wifi-iface' 'x1'", "option a 1", "option a 'x y'", "option b \"q\"",
         "list l x", "list l 'y z'", "list a 2", "option l 3", "# comment", "", "bogus", "option a-b 1", "option b ;",
         "config u s", "config t 's'; option a 'x'", "option c 'two\nlines'", "option d a\\\nb", "option e 'open"]


def random_name(rng: random.Random) -> str:
    return rng.choice(NAMES[:6] * 4 + NAMES)


def random_place(rng: random.Random) -> str:
    return ".".join(["t", random_name(rng), random_name(rng)][:rng.choice([1, 2, 2, 3, 3, 3, 3])])


def random_command(rng: random.Random) -> list[str]:
    verb = rng.choice(["set"] * 5 + ["add_list"] * 3 + ["del_list", "delete", "delete", "rename", "reorder", "add", "revert",
                                                       "commit", "get", "show", "changes", "export"])
    place, value = random_place(rng), rng.choice(VALUES[:3] * 3 + VALUES)
    if verb == "set" and place.count(".") == 1:
        value = rng.choice(TYPES[:3] * 3 + TYPES)
    if verb in ("set", "add_list", "del_list"):
        return [verb, f"{place}={value}"]
    if verb == "delete":
        return [verb, place + rng.choice([""] * 4 + ["=0", "=1", "=x", "="])]
    if verb == "rename":
        return [verb, f"{place}={random_name(rng)}"]
    if verb == "reorder":
        return [verb, f"{place}={rng.choice(['0', '1', '2', '9', '-1'])}"]
    if verb == "add":
        return [verb, "t", rng.choice(TYPES[:3] * 3 + TYPES)]
    return [verb, "t" if verb in ("commit", "changes", "export") else place]


def random_case(rng: random.Random) -> dict:
    broken = rng.random() < 0.2
    words = WORDS if broken else [word for word in WORDS[:13] if word != "config u s"]
    lines = ["config t s", *rng.choices(words, k=rng.randrange(10))]
    return {"config": lines, "commands": [random_command(rng) for _ in range(rng.randrange(1, 9))]}


class Side:
    """One of the two that are compared, in a folder of its own."""

    def __init__(self, top: Path, name: str):
        self.folder = top / name
        self.conf, self.save = self.folder / "conf", self.folder / "save"
        for place in (self.conf, self.save):
            place.mkdir(parents=True)

    def begin(self, config: list[str]) -> None:
        for place in (self.conf, self.save):
            for path in place.iterdir():
                path.unlink()
        (self.conf / "t").write_text("\n".join(config) + "\n")

    def state(self) -> dict:
        def text(path: Path) -> str:
            return path.read_text("utf-8", "surrogateescape") if path.exists() else ""
        return {"file": text(self.conf / "t"), "delta": text(self.save / "t")}


class Command(Side):
    def __init__(self, top: Path, name: str, binary: str):
        super().__init__(top, name)
        self.binary = os.path.abspath(binary)

    def run(self, command: list[str]) -> dict:
        done = subprocess.run(["uci", "-c", str(self.conf), "-C", "", "-t", str(self.save), *command], executable=self.binary,
                              capture_output=True, timeout=DEADLINE_S, check=False, cwd=self.folder)
        return {"rc": done.returncode, "stdout": done.stdout.decode("utf-8", "surrogateescape"),
                "stderr": done.stderr.decode("utf-8", "surrogateescape"), **self.state()}

    def results(self, case: dict) -> list[dict]:
        self.begin(case["config"])
        return [self.run(command) for command in case["commands"]]


class Interface(Side):
    """The C interface, by a program that makes all changes of a case."""

    def __init__(self, top: Path, name: str, driver: str):
        super().__init__(top, name)
        self.driver = os.path.abspath(driver)

    def results(self, case: dict) -> list[dict]:
        self.begin(case["config"])
        text = "".join("\x1f".join(command) + "\x1e" for command in case["commands"])
        done = subprocess.run([self.driver, str(self.conf), str(self.save)], input=text.encode("utf-8", "surrogateescape"),
                              capture_output=True, timeout=DEADLINE_S, check=True)
        return [json.loads(line) for line in done.stdout.decode("utf-8", "surrogateescape").splitlines()]


def difference(case: dict, sides: list) -> tuple | None:
    """The class of the first difference: what was asked for, and in what the answers differ."""
    for command, one, other in zip(case["commands"], *(side.results(case) for side in sides)):
        if "succeeded" in other:
            one = {"succeeded": one["rc"] == 0}
        differing = tuple(sorted(key for key in one.keys() & other.keys() if one[key] != other[key]))
        if differing:
            return command[0], differing
    if sides[0].state() != sides[1].state():
        return "end", ("file", "delta")
    return None


def smaller(case: dict):
    for part in ("commands", "config"):
        for index in range(len(case[part])):
            yield {**case, part: case[part][:index] + case[part][index + 1:]}


def shrink(case: dict, kind: tuple, sides: list) -> dict:
    for attempt in smaller(case):
        if attempt["commands"] and difference(attempt, sides) == kind:
            return shrink(attempt, kind, sides)
    return case


def show(case: dict, kind: tuple, sides: list) -> None:
    print(f"\n{kind[0]}: {', '.join(kind[1])} differ")
    print(json.dumps({"name": "?", "configs": {"t": "\n".join(case["config"]) + "\n"}, "commands": case["commands"]}))
    for side in sides:
        print(f"  {side.folder.name}: {json.dumps(side.results(case)[-1])} {json.dumps(side.state())}")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("uci")
    parser.add_argument("other", nargs="?")
    parser.add_argument("--sequences", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--driver", help="interface_driver of the build, for a comparison with the C interface")
    args = parser.parse_args()
    if (args.other is None) == (args.driver is None):
        parser.error("either OTHER or --driver")
    rng = random.Random(args.seed)
    found: dict[tuple, dict] = {}
    with tempfile.TemporaryDirectory(prefix="uci-differential-") as top:
        sides = [Command(Path(top), "one", args.uci)]
        sides.append(Command(Path(top), "other", args.other) if args.other else
                     Interface(Path(top), "interface", args.driver))
        for _ in range(args.sequences):
            case = random_case(rng)
            kind = difference(case, sides)
            if kind is not None and kind not in found:
                found[kind] = shrink(case, kind, sides)
                show(found[kind], kind, sides)
    print(f"{args.sequences} sequences, {len(found)} classes of difference")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
