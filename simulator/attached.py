"""Who is attached to the simulated router: clients, and below a mesh controller agents with their own clients."""

from __future__ import annotations

from dataclasses import dataclass

import mesh_dump

BANDS = ("2.4GHz", "5GHz", "6GHz")
MOST_CLIENTS = 99
MOST_AGENTS = 15  # a mesh has sixteen units
CABLE = 0  # interface indices of a unit, as in the mesh's dump; 1, 2, 3 are the radios
_MEDIA_OF_AGENTS = (2, 3, 1, CABLE)  # the first client of an agent is on 5 GHz


@dataclass
class Client:
    mac: str  # lower case, as the kernel prints it
    address: str
    name: str
    unit: int  # 0 is this router, N the N-th agent
    interface: int  # of the unit


def _clamp(number: int, most: int) -> int:
    return max(0, min(number, most))


def network(args) -> str:
    return "192.168.2" if args.brand == "tesmir" else "192.168.0"


def clients(args) -> list[Client]:
    """Below a controller they are dealt out in turn, the router first. The router's first one has a cable, the others
    the three bands in turn."""
    units = 1 + (_clamp(args.agents, MOST_AGENTS) if args.mode == "controller" else 0)
    found = []
    for i in range(_clamp(args.clients, MOST_CLIENTS)):
        turn, unit = divmod(i, units)
        if unit == 0:
            interface = CABLE if turn == 0 else 1 + (turn - 1) % len(BANDS)
        else:
            interface = _MEDIA_OF_AGENTS[turn % len(_MEDIA_OF_AGENTS)]
        found.append(Client(f"02:00:00:00:01:{i:02x}", f"{network(args)}.{100 + i}", f"client-{i}", unit, interface))
    return found


def agents(args) -> list[mesh_dump.Device]:
    """The units of the mesh, the controller first; every third agent hangs below the one before it, and every fourth has
    a cable to its parent. Without a mesh nobody."""
    if args.mode not in ("controller", "agent"):
        return []
    units = [mesh_dump.controller(network(args))]
    least = 1 if args.mode == "agent" else 0  # an agent sees itself
    for number in range(1, max(least, _clamp(args.agents, MOST_AGENTS)) + 1):
        parent = units[-1] if number % 3 == 0 else units[0]
        backhaul = ("ETHER",) if number % 4 == 0 else ("WLAN5G", "WLAN6G")
        units.append(mesh_dump.agent(number, parent, network(args), backhaul=backhaul))
    return units
