#!/usr/bin/python3
"""process_table.py: what process_bench says in JSON on standard input, as a table."""

import json
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "routes"))

from measured_router import about_machine  # noqa: E402


def main() -> None:
    times = {}
    for run in json.load(sys.stdin)["benchmarks"]:
        name, megabytes = run["name"].split("/")[:2]
        times[name, int(megabytes)] = f"{run['real_time']:.0f} | {run['cpu_time']:.0f}"
    print(f"{about_machine()}\n\n| resident MB | a child, µs | own | by fork, µs | own |\n|---|---|---|---|---|")
    for megabytes in sorted({size for _, size in times}):
        print(f"| {megabytes} | {times['Run', megabytes]} | {times['ForkAndExec', megabytes]} |")


if __name__ == "__main__":
    main()
