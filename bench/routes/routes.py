#!/usr/bin/python3
"""routes.py BUILD [--before PROGRAM] [--rounds N] [--only TEXT]

Every GET and a set of POSTs in a simulated router with the real jose, against the floor: the children that the answer
waits for, started bare, one after the other, with the same arguments and input. The two are measured in turn, so that a
machine whose speed drifts does not favour one. Waits that a route prescribes are skipped on both sides. With --before,
an older program answers in the same rounds. Prints a table, times in ms:

  children    how many the answer waits for; their processor time
  floor       median of the bare children
  wall        median of a request, from the first byte sent to the last received
  over        wall / floor, the median of the rounds
  own         processor time of the program itself, all its threads, children apart
  spawn       of it, what a program needs that does nothing but start and reap the same children
  share       own / processor time of the children
  reads, commits of packages
"""

import argparse
from pathlib import Path

from measured_router import Measured, about_machine, median, own_cpu, use
from request_list import all_requests


def kept_children(text: str) -> list[str]:
    """The records that stand before the answer."""
    return text.partition("ANSWER\n")[0].split("CHILD ")[1:]


def children_of(program: Path, request, shim: Path):
    """What the answer to one request waits for, as bare_children reads it; and the request's reads and commits."""
    router = Measured(program, [shim], count_uci=True)
    try:
        for tool in ("jose", "passwd"):
            router.router.root.record_stdin(tool)
        router.start()
        router.ask_quietly(*request)  # the first one may find less to delete than those that are measured
        router.router.remove("/router/children")
        router.router.forget_calls()
        router.router.forget_uci_calls()
        router.ask_quietly(*request)
        inputs = {tool: [call.stdin or "" for call in router.router.calls(tool)] for tool in ("jose", "passwd")}
        records = []
        for record in kept_children(router.router.read("/router/children") or ""):
            first = record.split("\n", 3)[2]
            stdin = inputs[first].pop(0) if inputs.get(first) else ""
            records.append(f"CHILD {record}{len(stdin.encode())}\n{stdin}\n")
        calls = router.router.uci_calls()
        return records, *(sum(call.startswith(word) for call in calls) for word in ("load", "commit"))
    finally:
        router.finish()


class Rounds:
    """The rounds of one program and one request."""

    def __init__(self, program: Path, request):
        self.router = Measured(program)
        self.request = request
        self.pid = self.router.start()
        self.walls: list[float] = []
        self.router.ask_quietly(*request)
        self._begin = own_cpu(self.pid)

    def ask(self) -> None:
        self.walls.append(self.router.ask_quietly(*self.request))

    def own_ms(self) -> float:
        return (own_cpu(self.pid) - self._begin) * 1e3 / len(self.walls)


def measure(programs: list[Path], request, build: Path, rounds: int) -> str:
    counts = [children_of(program, request, build / "bench/routes/libkeep_children.so") for program in programs]
    records = counts[-1][0]
    asked = [Rounds(program, request) for program in programs]
    try:
        asked[-1].router.start_floor(build / "bench/routes/bare_children", "".join(records))
        asked[-1].router.floor()
        floors = []
        for _ in range(rounds):
            for each in asked:
                each.ask()
            floors.append(asked[-1].router.floor())
        own = [each.own_ms() for each in asked]
    finally:
        for each in asked:
            each.router.finish()
    return row(request, records, floors, asked, own, counts)


def row(request, records, floors, asked, own, counts) -> str:
    walls, theirs, parents = ([floor[part] for floor in floors] for part in range(3))
    over = median([wall / floor for wall, floor in zip(asked[-1].walls, walls)]) if records else None
    spent = sum(theirs) / len(theirs)

    def each(values, form):
        texts = [form.format(value) for value in values]
        return texts[0] if len(set(texts)) == 1 else " → ".join(texts)

    return " | ".join([
        f"| {request[0]} {request[1].removeprefix('/api/v1')}", each([len(c[0]) for c in counts], "{}"), f"{spent:.1f}",
        f"{median(walls):.1f}" if records else "", each([median(a.walls) for a in asked], "{:.1f}"),
        f"{over:.2f}" if records else "", each(own, "{:.2f}"), f"{sum(parents) / len(parents):.2f}",
        f"{own[-1] / spent:.0%}" if records else "", each([c[1] for c in counts], "{}"),
        each([c[2] for c in counts], "{}")]) + " |"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("--before", type=Path)
    parser.add_argument("--rounds", type=int, default=30)
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    build = options.build.resolve()
    use(build)
    programs = [program.resolve() for program in (options.before, build / "router-api") if program]
    sender = Measured(programs[-1])
    try:
        sender.start()
        requests = all_requests(sender)
    finally:
        sender.finish()
    print(f"{about_machine()}; {options.rounds} rounds{', before → after' if options.before else ''}\n")
    print("| route | children | their time | floor | wall | over | own | spawn | share | reads | commits |")
    print("|---|---|---|---|---|---|---|---|---|---|---|", flush=True)
    for request in requests:
        if options.only in f"{request[0]} {request[1]}":
            print(measure(programs, request, build, options.rounds), flush=True)
    print(f"\nload at the end: {about_machine().rpartition(' ')[2]}")


if __name__ == "__main__":
    main()
