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
import time
from pathlib import Path

from measured_router import about_machine, own_cpu, use

LENGTHS = (10, 100, 1000, 10000)
MORE_THAN_NOISE_MS = 0.3
TESTS = Path(__file__).resolve().parents[2] / "tests"


def mac(number: int) -> str:
    return "02:%02x:%02x:%02x:00:01" % (number >> 16, number >> 8 & 255, number & 255)


def address(number: int) -> str:
    return f"10.{number >> 16}.{number >> 8 & 255}.{number & 255}"


def clients(router, length):
    """Rows of the ARP and bridge tables."""
    rows = "".join(f"  {1 + n % 3}\t{mac(n)}\tno\t\t   1.00\n" for n in range(length))
    for name, port in (("eth0", 1), ("eth2", 2)):
        router.write(f"/sys/class/net/br-lan/brif/{name}/port_no", f"{port}\n")
    router.tool("brctl", "showmacs", "br-lan", out="port no\tmac addr\t\tis local?\tageing timer\n" + rows)
    router.network_device("br-lan", address="10.255.0.1/8")
    neighbours = "".join(f"neigh add {address(n + 1)} lladdr {mac(n)} nud permanent dev br-lan\n" for n in range(length))
    router.write("/router/neighbours", neighbours)
    import sandbox  # noqa: PLC0415
    router.root.setup.append(f"{sandbox.machine_programs('ip')['ip']} -batch /router/neighbours")
    return "GET", "/api/v1/router/client-list", None


def as_controller(router):
    router.set("button_mesh.easymesh.enable", 1)
    router.set("button_mesh.easymesh.role", "controller")


def stations(router, length):
    """Stations of ten agents."""
    from mesh_dump import Station, agent, controller, render  # noqa: PLC0415
    as_controller(router)
    root = controller()
    agents = [agent(number, root, bridged=[Station(mac(number * 10000 + n).upper(), (2, 3)) for n in range(length // 10)])
              for number in range(1, 11)]
    router.tool("emt", out=render([root, *agents]))
    return "GET", "/api/v1/router/client-list", None


def headers(router, length):
    """Devices whose header has no address, and as many rows of the ARP table."""
    as_controller(router)
    router.tool("emt", out="1905.1 topology dump\n\n" + "".join(
        f"IEEE 1905.1 device: {mac(n)}, MAP Agent\n    Upstream Device: {'None' if n == 0 else mac(0)}\n"
        for n in range(length)))
    router.tool("arp", "-a", out="".join(f"? ({address(n)}) at {mac(n)} [ether] on br-lan\n" for n in range(length)))
    return "GET", "/api/v1/mesh/agent-info", None


def scan(router, length):
    """Networks that a scan sees."""
    for band, frequency in enumerate((2412, 5180, 5955)):
        count = length // 3 + (band < length % 3)
        router.tool("iw", "dev", f"mld{band + 1}", "scan", out="BSS\n" + "".join(
            f"BSS {mac(n)}(on mld{band + 1})\n\tfreq: {frequency}\n\tsignal: -60.00 dBm\n\tSSID: network {n}\n"
            for n in range(count)))
    return "GET", "/api/v1/wireless/sitesurvey", None


def log(router, length):
    """Lines of the log."""
    router.write("/var/log/messages.log", "2026-01-02 03:04:05 [system] something happened to somebody\n" * length)
    return "GET", "/api/v1/system/log/message", None


def leases(router, length):
    """Leases."""
    end = int(time.clock_gettime(time.CLOCK_BOOTTIME)) + 100000
    router.write("/tmp/dhcp.leases", "".join(f"{end} {mac(n)} {address(n)} host 01:{mac(n)}\n" for n in range(length)))
    return "GET", "/api/v1/dhcp/client-list", None


def filter_read(router, length):
    """MAC filter, read."""
    lists = "".join(f"\tlist namelist 'device {n}'\n\tlist maclist '{mac(n)}'\n" for n in range(length))
    router.config("macfilter", f"config macfilter 'macfilter'\n\toption enable '1'\n\nconfig wifi-iface 'ath0'\n{lists}")
    return "GET", "/api/v1/wireless/mac-filter", None


def filter_written(router, length):
    """MAC filter, written: sixteen commands each."""
    table = [{"description": f"device {n}", "macAddress": mac(n)} for n in range(length)]
    return "POST", "/api/v1/wireless/mac-filter", {"macFilterStatus": 1, "macFilterTable": table}


def ports_read(router, length):
    """Port rules, read: a command for each option."""
    router.config("portmapping", "".join(
        f"config redirect\n\toption name 'rule {n}'\n\toption dest_ip '{address(n)}'\n\toption proto 'tcp'\n"
        f"\toption dest_port '{n}'\n\toption src_dport '{n}'\n\n" for n in range(length)) or "\n")
    return "GET", "/api/v1/port-open", None


def ports_written(router, length):
    """Port rules, written."""
    router.config("portmapping", "\n")
    rules = [{"settingName": f"rule {n}", "ipAddress": "192.168.0.9", "protocol": 1, "lanPortNum": n, "wanPortNum": n}
             for n in range(length)]
    return "POST", "/api/v1/port-open", {"portOpenSettings": rules}


def parental_read(router, length):
    """Parental rules, read."""
    router.config("mia", "config basic\n\toption enable '1'\n" + "".join(
        f"\nconfig macbind\n\toption enable 'child {n}'\n\toption macaddr '{mac(n)}'\n\toption timeon '07:00'\n"
        "\toption timeoff '20:00'\n" for n in range(length)))
    return "GET", "/api/v1/parental-control", None


def parental_written(router, length):
    """Parental rules, written."""
    router.config("mia", "config basic\n\toption enable '1'\n")
    rules = [{"explain": f"child {n}", "macAddress": mac(n), "startTime": "07:00", "endTime": "20:00"}
             for n in range(length)]
    return "POST", "/api/v1/parental-control", {"enable": "1", "parentalControls": rules}


# The longest list that is asked for, where commands make more of them a matter of hours.
SUBJECTS = {clients: 10000, stations: 10000, headers: 10000, scan: 10000, log: 10000, leases: 10000,
            filter_read: 10000, filter_written: 100, ports_read: 1000, ports_written: 10000, parental_read: 10000,
            parental_written: 10000}


def status_kb(pid: int, key: str) -> int:
    return int(Path(f"/proc/{pid}/status").read_text().partition(key + ":")[2].split()[0])


def private_kb(pid: int) -> int:
    rollup = Path(f"/proc/{pid}/smaps_rollup").read_text()
    return sum(int(rollup.partition(key + ":")[2].split()[0]) for key in ("Private_Clean", "Private_Dirty"))


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
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    kit = use(options.build.resolve())
    kit.router.DEADLINE_S = 600.0
    print(f"{about_machine()}; the least of {options.rounds} rounds\n")
    print(f"| entries | {' | '.join(f'own at {length:,}' for length in (0, *LENGTHS))} | exponent | answer | peak | kept |")
    print("|---" * (len(LENGTHS) + 6) + "|", flush=True)
    for subject, longest in SUBJECTS.items():
        if options.only not in subject.__name__:
            continue
        costs = {length: Cost(kit, subject, length, options.rounds) for length in (0, *LENGTHS) if length <= longest}
        last = costs[max(costs)]
        print(f"| {subject.__doc__.rstrip('.')} | "
              + " | ".join(f"{costs[length].own_ms:.1f}" if length in costs else "" for length in (0, *LENGTHS))
              + f" | {exponent(costs):.2f} | {last.answer_kb:.0f} | {last.peak_kb} ({last.peak_kb / last.answer_kb:.1f}×) "
              f"| {last.kept_kb} |", flush=True)


if __name__ == "__main__":
    main()
