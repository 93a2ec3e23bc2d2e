#!/usr/bin/python3
"""Runs two builds of uci_bench in turn, and prints how many times faster the second is.

    bench/uci/in_turn.py OTHER/uci_bench OURS/uci_bench [--rounds N] [--only REGEX]

One was built with -DUCI_BENCH_COMMAND=/usr/bin/uci -DROUTER_API_UCI=system, for instance, or from another commit. A
round is a run of each, so that both meet the same load of the machine; the ratio is the median of the rounds' ratios of
processor time, and its spread is from the first quarter to the third.
"""

import argparse
import json
import statistics
import subprocess
import sys


def times(program: str, only: str) -> dict[str, float]:
    """Name of a step to its processor time in microseconds."""
    output = subprocess.run([program, "--benchmark_format=json", f"--benchmark_filter={only}", "--benchmark_min_time=0.05"],
                            capture_output=True, check=True).stdout
    steps = [step for step in json.loads(output)["benchmarks"] if step["run_type"] == "iteration"]
    # A command's time is that of its process, told by hand.
    return {step["run_name"]: step["real_time" if step["run_name"].startswith("command_") else "cpu_time"] for step in steps}


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("other")
    parser.add_argument("ours")
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--only", default="/(40|1000)(/|$)|command_start", metavar="REGEX")
    args = parser.parse_args()
    if args.rounds < 3:
        parser.error("a median wants 3 rounds or more")
    rounds = []
    for number in range(args.rounds):
        rounds.append((times(args.other, args.only), times(args.ours, args.only)))
        print(f"round {number + 1} of {args.rounds}", file=sys.stderr)
    print("| step | other, us | ours, us | times faster | spread |\n|---|---|---|---|---|")
    for step in rounds[0][1]:
        others, ours = ([measured[step] for measured in side] for side in zip(*rounds))
        ratios = [other / our for other, our in zip(others, ours)]
        low, middle, high = statistics.quantiles(ratios, n=4, method="inclusive")
        name = step.removesuffix("/manual_time")
        print(f"| {name} | {statistics.median(others):.4g} | {statistics.median(ours):.4g} | {middle:.2f} | {low:.2f} to {high:.2f} |")


if __name__ == "__main__":
    main()
