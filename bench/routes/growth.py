#!/usr/bin/python3
"""growth.py BUILD [--only TEXT] [--rounds N]

What lists of 10 to 10,000 entries cost the program: its own processor time, and its memory. The tools answer at once and
jose only rewrites letters, so what is left is the program's own. Prints a table:

  own ms     of the program's threads, children apart; the least of the rounds
  exponent   of own, less what an empty list takes, fitted over the lengths: 1 is linear
  answer     KB of the longest list's answer
  peak       memory at the height of its request above that before it, by the answer's size
  kept       KB that the program holds afterwards above that before it
"""

import argparse
import math
from pathlib import Path

from measured_router import about_machine, own_cpu, use

LENGTHS = (10, 100, 1000, 10000)
MORE_THAN_NOISE_MS = 0.3


# The longest list that is asked for, where commands make more of them a matter of hours.
SUBJECTS = {"clients": 10000, "stations": 10000, "headers": 10000, "scan": 10000, "log": 10000, "leases": 10000,
            "filter_read": 10000, "filter_written": 100, "ports_read": 1000, "ports_written": 10000, "parental_read": 10000,
            "parental_written": 10000}


def status_kb(pid: int, key: str) -> int:
    return int(Path(f"/proc/{pid}/status").read_text().partition(key + ":")[2].split()[0])


class Cost:
    """What one length costs."""

    def __init__(self, kit, subject, length: int, rounds: int):
        router = kit.Router()
        try:
            method, uri, document = subject(router, length)
            ask = (lambda: router.get(uri)) if document is None else (lambda: router.post(uri, document))
            pid = router.pid()
            for _ in range(2):
                router.fcgi({"REQUEST_METHOD": "GET", "REQUEST_URI": "/api/v1/ntp"})
            before, code_before = status_kb(pid, "VmRSS"), status_kb(pid, "RssFile")
            Path(f"/proc/{pid}/clear_refs").write_text("5")  # the height is counted anew
            times = []
            for _ in range(rounds):
                begin = own_cpu(pid)
                answer = ask()
                times.append((own_cpu(pid) - begin) * 1e3)
            self.own_ms = min(times)
            router.fcgi({"REQUEST_METHOD": "GET", "REQUEST_URI": "/api/v1/ntp"})  # all is given back before it is taken
            self.answer_kb = max(len(answer.body), len(str(document)) if document else 0) / 1024
            code = status_kb(pid, "RssFile") - code_before  # pages of the program and its libraries, read once
            self.peak_kb = status_kb(pid, "VmHWM") - before - code
            self.kept_kb = status_kb(pid, "VmRSS") - before - code
        finally:
            router.discard()


def exponent(costs: dict[int, Cost]) -> float:
    """The slope of log(own) over log(length), least squares, of what the lengths add to the empty list."""
    points = [(math.log(length), math.log(cost.own_ms - costs[0].own_ms)) for length, cost in costs.items()
              if length and cost.own_ms - costs[0].own_ms > MORE_THAN_NOISE_MS]
    if len(points) < 2:
        return math.nan
    mean_x, mean_y = (sum(values) / len(points) for values in zip(*points))
    return sum((x - mean_x) * (y - mean_y) for x, y in points) / sum((x - mean_x) ** 2 for x, _ in points)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    kit = use(options.build.resolve())
    kit.router.DEADLINE_S = 600.0
    print(f"{about_machine()}; the least of {options.rounds} rounds\n")
    print(f"| entries | {' | '.join(f'own at {length:,}' for length in (0, *LENGTHS))} | exponent | answer | peak | kept |")
    print("|---" * (len(LENGTHS) + 6) + "|", flush=True)
    for name, longest in SUBJECTS.items():
        if options.only not in name:
            continue
        subject = getattr(kit.long_lists, name)
        costs = {length: Cost(kit, subject, length, options.rounds) for length in (0, *LENGTHS) if length <= longest}
        last = costs[max(costs)]
        print(f"| {subject.__doc__.rstrip('.')} | "
              + " | ".join(f"{costs[length].own_ms:.1f}" if length in costs else "" for length in (0, *LENGTHS))
              + f" | {exponent(costs):.2f} | {last.answer_kb:.0f} | {last.peak_kb} ({last.peak_kb / last.answer_kb:.1f}×) "
              f"| {last.kept_kb} |", flush=True)


if __name__ == "__main__":
    main()
