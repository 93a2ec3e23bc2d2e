#!/usr/bin/python3
"""path.py BUILD [--rounds N] [--requests N]

Requests a second through lighttpd, with a jose that only hands its input on, beside an empty libfcgi program in the same
place, in turn: one route that starts no child, and one whose answer goes through jose, as nearly all do. There, the empty
program starts jose, too. Prints a table; `ratio` is the median of the rounds' ratios.
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

from measured_router import about_machine, median, own_cpu, use

PATHS = (("no child", "/api/v1/router/device-info"), ("jose", "/api/v1/ntp"))
CLIENTS = (1, 8)


class Place:
    """A program behind a lighttpd of its own."""

    def __init__(self, kit, program: Path, build: Path):
        import sandbox  # noqa: PLC0415
        import simulator  # noqa: PLC0415
        import web_server  # noqa: PLC0415
        os.environ["ROUTER_API_BIN"] = str(program)
        self.router = kit.Router()
        self.router.real_time = True
        self.router.tool("jose", missing=True)
        self.router.root.mount(build / "bench/routes/instant_jose", "/router/bin/jose")
        self.router.start()
        self.held_port = simulator.held_port()
        self.port = self.held_port.getsockname()[1]
        self.server = web_server.start("lighttpd", self.router.directory, self.port)
        self.router.get("/")  # it runs
        self.pid = sandbox.find_program(self.router._process.pid, "router-api")  # the name of its place
        self.router.wait_until(lambda: self.load("/api/v1/router/device-info", 1, 1) > 0, "lighttpd")

    def load(self, uri: str, clients: int, requests: int) -> float:
        """Requests a second; 0 when there is no answer."""
        done = subprocess.run(["ab", "-q", "-k", "-c", str(clients), "-n", str(requests),
                               f"http://127.0.0.1:{self.port}{uri}"], capture_output=True, text=True)
        rate = re.search(r"Requests per second:\s+([\d.]+)", done.stdout)
        failed = re.search(r"Non-2xx responses:\s+(\d+)", done.stdout)
        return float(rate[1]) if rate and not failed else 0.0

    def stop(self) -> None:
        self.server.terminate()
        self.server.wait()
        self.held_port.close()
        self.router.discard()


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("--rounds", type=int, default=11)
    parser.add_argument("--requests", type=int, default=500)
    options = parser.parse_args()
    if shutil.which("ab") is None:
        print("path.py: not installed: ab; as root: apt-get install apache2-utils", file=sys.stderr)
        return 1
    build = options.build.resolve()
    kit = use(build)
    places = [Place(kit, program, build) for program in (build / "router-api", build / "bench/routes/empty_responder")]
    try:
        print(f"{about_machine()}; {options.rounds} rounds of {options.requests} requests\n")
        print("| answer | clients | requests/s | empty program | ratio | own ms | empty program |\n|---|---|---|---|---|---|---|")
        for name, uri in PATHS:
            for clients in CLIENTS:
                before = [own_cpu(place.pid) for place in places]
                rates = [[place.load(uri, clients, options.requests) for place in places] for _ in range(options.rounds)]
                spent = [(own_cpu(place.pid) - begin) * 1e3 / options.rounds / options.requests
                         for place, begin in zip(places, before)]
                ours, empty = (median(list(column)) for column in zip(*rates))
                ratio = median([one / other for one, other in rates])
                print(f"| {name} | {clients} | {ours:.0f} | {empty:.0f} | {ratio:.2f} | {spent[0]:.3f} | {spent[1]:.3f} |",
                      flush=True)
    finally:
        for place in places:
            place.stop()
    return 0


if __name__ == "__main__":
    sys.exit(main())
