#!/usr/bin/python3
"""footprint.py BUILD PROGRAM... [--requests N]

What the program occupies: the size of each PROGRAM, stripped, and the private memory of the first one at rest, after
10,000 requests, and after the longest answers. Prints two tables.
"""

import argparse
import os
import subprocess
import tempfile
from pathlib import Path

from measured_router import about_machine, use

LENGTH = 10000


def stripped_kb(program: Path) -> tuple[str, float]:
    """Its processor, and its size."""
    described = subprocess.run(["readelf", "-h", program], capture_output=True, text=True).stdout
    machine = next(line.partition(":")[2].strip() for line in described.splitlines() if "Machine:" in line)
    tool = "aarch64-linux-gnu-strip" if machine == "AArch64" else "strip"
    with tempfile.NamedTemporaryFile() as copy:
        subprocess.run([tool, "-o", copy.name, program], check=True)
        return machine, os.path.getsize(copy.name) / 1024


def settled_kb(router) -> tuple[int, int]:
    """Private memory, when the last request's work has ended: what was written, and pages of files that nobody else maps."""
    router.fcgi({"REQUEST_METHOD": "PUT", "REQUEST_URI": "/"})
    rollup = Path(f"/proc/{router.pid()}/smaps_rollup").read_text()
    return tuple(int(rollup.partition(key + ":")[2].split()[0]) for key in ("Private_Dirty", "Private_Clean"))


def memory(kit, requests: int) -> list[tuple[str, tuple[int, int]]]:
    router = kit.Router()
    try:
        rows = [("at rest", settled_kb(router))]
        for _ in range(requests):
            router.get("/api/v1/router/device-info")
        rows.append((f"after {requests:,} requests", settled_kb(router)))
        for uri in ("wireless/setting", "router/info", "lan", "ntp", "dhcp"):
            router.get(f"/api/v1/{uri}")
        rows.append(("after some of all kinds", settled_kb(router)))
        lists = kit.long_lists
        for subject in (lists.log, lists.leases, lists.scan, lists.headers, lists.clients, lists.stations):
            _, uri, _ = subject(router, LENGTH)
            router.get(uri)
        rows.append((f"after answers to lists of {LENGTH:,} entries", settled_kb(router)))
        return rows
    finally:
        router.discard()


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("programs", type=Path, nargs="+")
    parser.add_argument("--requests", type=int, default=10000)
    options = parser.parse_args()
    kit = use(options.build.resolve())
    kit.router.DEADLINE_S = 600.0
    print(f"{about_machine()}\n\n| -Os, stripped, for | KB |\n|---|---|")
    for program in options.programs:
        print("| {} | {:.0f} |".format(*stripped_kb(program)))
    os.environ["ROUTER_API_BIN"] = str(options.programs[0].resolve())
    print("\n| private memory, KB | written | of files |\n|---|---|---|")
    for name, (written, of_files) in memory(kit, options.requests):
        print(f"| {name} | {written} | {of_files} |", flush=True)


if __name__ == "__main__":
    main()
