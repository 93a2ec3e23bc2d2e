#!/usr/bin/python3
"""guard.py BUILD [--counts] [--renew]

Counts the instructions that the program needs for five fixed requests, with valgrind, and fails when one needs more than
its budget and a tenth. What it waits for, and what its tools do, does not count, so a busy machine counts the same.
Then looks at what long lists take of memory: less than three times the answer, and afterwards less than 1 MB.

  --counts   nothing of memory: how many pages a process has is also the machine's business
  --renew    makes what was counted the budget (bench/routes/guard.budget)
"""

import argparse
import os
import shlex
import shutil
import sys
from pathlib import Path

import growth
from measured_router import use

BUDGET = Path(__file__).with_name("guard.budget")
SLACK = 1.10
LONG_LIST = 5000
TIMES = 3  # each request; the last counts, when what is made once has been made
RULES = [{"settingName": f"rule {n}", "ipAddress": "192.168.0.9", "protocol": 1, "lanPortNum": n, "wanPortNum": n}
         for n in range(10)]
LOG = "2026-01-02 03:04:05 [system] something happened to somebody\n" * 1000


def mesh_dump() -> str:
    from mesh_dump import Station, agent, controller, mac, render  # noqa: PLC0415
    root = controller()
    return render([root, *(agent(number, root, bridged=[Station(mac(number, n), (1, 2)) for n in range(64)])
                           for number in range(1, 17))])


def prepare(kit):
    router = kit.Router()
    router.config("portmapping", "\n")
    router.write("/var/log/messages.log", LOG)
    router.real_time = True  # nothing is preloaded; none of these requests waits
    router.set("button_mesh.easymesh.enable", 1)
    router.set("button_mesh.easymesh.role", "controller")
    router.tool("emt", out=mesh_dump())
    router.environment = {"VALGRIND_LIB": "/machine/usr/libexec/valgrind"}
    return router


def port_rules(router):
    router.post("/api/v1/port-open", {"portOpenSettings": RULES})
    router.wait_for_call("/etc/init.d/firewall", "restart")
    router.forget_calls()


REQUESTS = {
    "GET /ntp": lambda router: router.get("/api/v1/ntp"),
    "GET /wireless/setting": lambda router: router.get("/api/v1/wireless/setting"),
    "GET /system/log/message, 1,000 lines": lambda router: router.get("/api/v1/system/log/message"),
    "GET /router/client-list, 16 agents with 64 stations": lambda router: router.get("/api/v1/router/client-list"),
    "POST /port-open, 10 rules": port_rules,
}


def counted(router) -> list[int]:
    """The instructions of each request so far, as callgrind wrote them down at its end."""
    dumps = sorted(router.root.path("/router").glob("count.*"), key=lambda path: int(path.suffix[1:]))
    return [int(line.split()[1]) for dump in dumps for line in dump.read_text().splitlines()
            if line.startswith("summary:")]


def count(kit) -> dict[str, int]:
    router = prepare(kit)
    counts = {}
    try:
        for name, ask in REQUESTS.items():
            for _ in range(TIMES):
                ask(router)
            dumps = len(counts) * TIMES + TIMES
            router.wait_until(lambda dumps=dumps: len(counted(router)) == dumps, f"{name}'s count")
            counts[name] = counted(router)[-1]
    finally:
        router.discard()
    return counts


def is_frugal(kit) -> bool:
    """Of answers to long lists."""
    frugal = True
    for subject in (kit.long_lists.log, kit.long_lists.leases, kit.long_lists.scan, kit.long_lists.clients,
                    kit.long_lists.stations):
        cost = growth.Cost(kit, subject, LONG_LIST, 1)
        fits = cost.peak_kb < 3 * cost.answer_kb and cost.kept_kb < 1024
        frugal = frugal and fits
        print(f"{cost.peak_kb:>6} KB at the height, {cost.kept_kb:>5} KB afterwards, of an answer of {cost.answer_kb:.0f} KB: "
              f"{subject.__doc__.rstrip('.').lower()}{'' if fits else '  too much'}")
    return frugal


def read_budget() -> dict[str, int]:
    lines = BUDGET.read_text().splitlines() if BUDGET.exists() else []
    return {line.partition(" ")[2]: int(line.partition(" ")[0]) for line in lines}


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("--counts", action="store_true")
    parser.add_argument("--renew", action="store_true")
    options = parser.parse_args()
    kit = use(options.build.resolve())
    kit.router.DEADLINE_S = 300.0
    os.environ["ROUTER_API_EMULATOR"] = shlex.join([
        shutil.which("valgrind"), "--tool=callgrind", "--callgrind-out-file=/router/count",
        "--dump-after=dispatch_request*", "--quiet"])
    counts = count(kit)
    if options.renew:
        BUDGET.write_text("".join(f"{number} {name}\n" for name, number in counts.items()))
    budget = read_budget()
    over = 0
    for name, number in counts.items():
        allowed = budget.get(name, 0)
        verdict = "" if number <= allowed * SLACK else "  more than a tenth over its budget"
        over += bool(verdict)
        print(f"{number:>12,} of {allowed:>12,}  {name}{verdict}")
    os.environ.pop("ROUTER_API_EMULATOR")
    return 0 if (options.counts or is_frugal(kit)) and not over else 1


if __name__ == "__main__":
    sys.exit(main())
