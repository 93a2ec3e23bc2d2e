#!/usr/bin/python3
"""make_fixtures.py: writes the dumps that the parser's tests read, from simulator/mesh_dump.py."""

import sys
from pathlib import Path

sys.dont_write_bytecode = True
HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[2] / "simulator"))

from mesh_dump import Station, agent, controller, mac, render  # noqa: E402

LEGACY = {"eth0": [mac(0xC, 1)], "eth1": [mac(0xC, 2)], "ath0": [mac(0xC, 3)]}


def one_agent():
    root = controller(legacy=LEGACY)
    below = agent(1, root, bridged=[Station(mac(0xC, 10), (1, 2)), Station(mac(0xC, 11), (3,)),
                                    Station(mac(0xC, 12), (0,)), Station(mac(0xC, 13), (1, 3))])
    return [root, below]


def chained():
    root = controller()
    first = agent(1, root)
    second = agent(2, first, bridged=[Station(mac(0xC, 20), (2,))])
    return [root, first, second]


def duplicates():
    root = controller(legacy={"eth0": [mac(0xC, 10)]})
    first = agent(1, root, bridged=[Station(mac(0xC, 10), (2,)), Station(mac(0xC, 30), (1,))])
    second = agent(2, first, bridged=[Station(mac(0xC, 30), (1,))])
    return [root, first, second]


def chain_of(count):
    devices = [controller()]
    for number in range(1, count):
        devices.append(agent(number, devices[-1]))
    return devices


def self_parent():
    root = controller()
    first = agent(1, root)
    first.parent = first.mac
    return [root, first, agent(2, root)]


def cycle():
    root = controller()
    devices = [agent(number, root) for number in (1, 2, 3)]
    for device, parent in zip(devices, [devices[2], devices[0], devices[1]]):
        device.parent = parent.mac
    return [root, *devices]


def two_parents():
    root = controller()
    first = agent(1, root)
    return [root, first, agent(2, first), agent(2, root)]


def reordered():
    root = controller()
    first = agent(1, root)
    return [root, agent(2, first), first]


FIXTURES = {
    "controller_alone": [controller(legacy=LEGACY)],
    "one_agent": one_agent(),
    "chained_agents": chained(),
    "wired_backhaul": [(root := controller()), agent(1, root, backhaul=("ETHER",))],
    "wireless_backhaul": [(root := controller()), agent(1, root, backhaul=("WLAN2G", "WLAN5G", "WLAN6G"))],
    "duplicates": duplicates(),
    "self_parent": self_parent(),
    "cycle": cycle(),
    "two_parents": two_parents(),
    "reordered": reordered(),
    "twenty_devices": chain_of(20),
}

for name, devices in FIXTURES.items():
    (HERE / "fixtures" / f"{name}.txt").write_text(render(devices))
