"""A mesh below this router: --agents N, each with its share of --mesh-clients, seen alike by the daemon, the ARP table,
the bridge and the Wi-Fi driver."""

import mesh_dump

MEDIA_OF_BAND = {1: "2.4GHz", 2: "5GHz", 3: "6GHz"}


def add_options(parser):
    parser.add_argument("--agents", type=int, default=2, metavar="N",
                        help="mesh agents below a controller, 0 to 15; default: 2")
    parser.add_argument("--mesh-clients", type=int, default=4, metavar="N",
                        help="clients behind the agents, dealt out in turn, 0 to 99; default: 4")


def build(agents, clients):
    """The controller and its agents; every third agent hangs below the one before it."""
    root = mesh_dump.controller(legacy={"eth0": [mesh_dump.mac(0xC, 200)]})
    devices = [root]
    for number in range(1, agents + 1):
        parent = devices[-1] if number % 3 == 0 else root
        devices.append(mesh_dump.agent(number, parent, backhaul=("ETHER",) if number % 4 == 0 else ("WLAN5G", "WLAN6G")))
    for number in range(clients if agents else 0):
        behind = devices[1 + number % agents]
        behind.bridged.append(mesh_dump.Station(mesh_dump.mac(0xC, number), (1 + number % 3,)))
    return devices


def apply(root, args):
    if args.mode not in ("controller", "agent"):
        return
    devices = build(max(0, min(args.agents, 15)), max(0, min(args.mesh_clients, 99)))
    root.write("/router/state/topology", mesh_dump.render(devices))
    leases = root.read("/tmp/dhcp.leases") or ""
    for number, device in enumerate(devices[1:], 1):
        leases += f"99999999 {device.mac.lower()} {device.ip} satellite-{number} *\n"
    root.write("/tmp/dhcp.leases", leases)
