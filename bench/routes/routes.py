#!/usr/bin/python3
"""routes.py BUILD [--rounds N] [--only TEXT]

Every GET and a set of POSTs in a simulated router, against the floor: the same children started bare, one after the
other, with the same arguments and input. Waits that a route prescribes are skipped on both sides. Prints a table:

  wall        median of a request, ms
  own         processor time of the program itself, children apart, ms
  children    how many, and their processor time, ms
  floor       median of the bare children, ms; and wall / floor
  reads, commits of packages
"""

import argparse
import os
import statistics
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tests"), str(ROOT / "simulator")]
sys.dont_write_bytecode = True

TICK = os.sysconf("SC_CLK_TCK")
MAC = "00:11:22:33:44:{:02x}"

POSTS = {
    "/api/v1/lan": {"lanIpv4Address": "192.168.0.1", "lanIpv4SubMask": "255.255.255.0"},
    "/api/v1/ntp": {"enable": 1, "server": "ntp.example"},
    "/api/v1/dhcp": {"enable": 1, "leaseTime": 24, "startAddress": "192.168.0.50", "endAddress": "192.168.0.99",
                     "fixedIpCount": 3, "fixedIpAllocation": [
                         {"ipAddress": f"192.168.0.{n + 10}", "macAddress": "AABBCCDDEE01"} for n in range(3)]},
    "/api/v1/port-open": {"portOpenSettings": [
        {"settingName": f"rule {n}", "ipAddress": "192.168.0.9", "protocol": 1, "lanPortNum": n, "wanPortNum": n}
        for n in range(10)]},
    "/api/v1/parental-control": {"enable": "1", "parentalControls": [
        {"explain": f"child {n}", "macAddress": MAC.format(n), "startTime": "07:00", "endTime": "20:00"}
        for n in range(10)]},
    "/api/v1/wireless/mac-filter": {"macFilterStatus": 0, "macFilterTable": [
        {"description": f"device {n}", "macAddress": MAC.format(n)} for n in range(5)]},
    "/api/v1/security/passthrough": {"pptpEnable": 1, "ipsecEnable": 1},
    "/api/v1/wireless/wps-status": {"status": 0},
}
SENT_BACK = ("/api/v1/wireless/setting", "/api/v1/wireless/detail-setting")  # what GET tells, as it was told


def get_routes():
    text = (ROOT / "src/request/route_table.cpp").read_text().partition("get_routes{{")[2]
    return [line.split('"')[1] for line in text.splitlines() if '"/api/' in line]


def cpu_of(pid):
    """Seconds of the program's threads that live, and of its children that ended."""
    own = sum(int((task / "schedstat").read_text().split()[0]) for task in Path(f"/proc/{pid}/task").iterdir()) / 1e9
    fields = Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    return own, (int(fields[13]) + int(fields[14])) / TICK


def prepare(kit):
    router = kit.Router()
    router.config("portmapping", "\n")
    router.config("mia", "config basic\n\toption enable '1'\n")
    return router


def children_of(kit, ask, shim):
    """What one request starts, as bare_children reads it; and its reads and commits."""
    router = prepare(kit)
    try:
        router.preload.append(shim)
        router.count_uci = True
        ask(router)
        inputs = {tool: [call.stdin or "" for call in router.calls(tool)] for tool in ("jose", "passwd")}
        records = []
        for record in (router.read("/router/children") or "").split("CHILD ")[1:]:
            first = record.split("\n", 3)[2]
            stdin = inputs[first].pop(0) if inputs.get(first) else ""
            records.append(f"CHILD {record}{len(stdin.encode())}\n{stdin}\n")
        calls = router.uci_calls()
        reads, commits = (sum(call.startswith(word) for call in calls) for word in ("load", "commit"))
        return "".join(records), len(records), reads, commits
    finally:
        router.finish()


def measure(kit, uri, ask, build, rounds):
    records, count, reads, commits = children_of(kit, ask, build / "bench/routes/libkeep_children.so")
    router = prepare(kit)
    try:
        router.root.mount(build / "bench/routes/bare_children", "/router/bare_children")
        router.write("/router/children.list", records)
        ask(router)
        pid = router.pid()
        walls, floors, own, children = [], [], 0.0, 0.0
        for _ in range(rounds):
            before = cpu_of(pid)
            begin = time.perf_counter()
            ask(router)
            walls.append((time.perf_counter() - begin) * 1e3)
            after = cpu_of(pid)
            own, children = own + after[0] - before[0], children + after[1] - before[1]
            done = router.run("/router/bare_children", "/router/children.list", "1")
            floors.append(int(done.stdout) / 1e6)
    finally:
        router.finish()
    wall, floor = statistics.median(walls), statistics.median(floors)
    print(f"| {uri} | {wall:.1f} | {own * 1e3 / rounds:.2f} | {count} | {children * 1e3 / rounds:.1f} | {floor:.1f} | "
          f"{wall / floor:.2f} | {reads} | {commits} |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("--rounds", type=int, default=30)
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    build = options.build.resolve()
    for line in (build / "tests/environment").read_text().splitlines():
        name, _, value = line.partition("=")
        os.environ[name] = value
    import kit  # noqa: PLC0415  the environment tells it what was built

    print("| route | wall | own | children | their time | floor | wall / floor | reads | commits |")
    print("|---|---|---|---|---|---|---|---|---|")
    asks = [(f"GET {uri}", lambda router, uri=uri: router.get(uri)) for uri in get_routes()]
    asks += [(f"POST {uri}", lambda router, uri=uri, body=body: router.post(uri, body)) for uri, body in POSTS.items()]
    for uri in SENT_BACK:
        asks.append((f"POST {uri}", lambda router, uri=uri: router.post(uri, documents[uri])))
    sender = prepare(kit)
    try:
        documents = {uri: sender.get(uri).json for uri in SENT_BACK}
    finally:
        sender.finish()
    for name, ask in asks:
        if options.only in name:
            measure(kit, name, ask, build, options.rounds)


if __name__ == "__main__":
    main()
