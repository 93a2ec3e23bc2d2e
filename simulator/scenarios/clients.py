"""Who is attached to the LAN: --clients N makes N of them, the first by cable, the others over the three bands in turn."""

import time

BANDS = ("2.4GHz", "5GHz", "6GHz")
LEASE_S = 43200


def add_options(parser):
    parser.add_argument("--clients", type=int, default=3, metavar="N", help="attached clients, 0 to 99; default: 3")


def apply(root, args):
    network = "192.168.2" if args.brand == "tesmir" else "192.168.0"
    now = int(time.clock_gettime(time.CLOCK_BOOTTIME))  # leases end by the uptime
    leases, clients, bridge, stations = "", "", "", ""
    for i in range(max(0, min(args.clients, 99))):
        address, mac, name = f"{network}.{100 + i}", f"02:00:00:00:01:{i:02x}", f"client-{i}"
        leases += f"{now + LEASE_S} {mac} {address} {name} 01:{mac}\n"
        clients += f"{address} {mac} {name}\n"
        band = (i - 1) % len(BANDS)
        bridge += f"  {1 if i == 0 else 3 + band}\t{mac}\tno\t\t   1.00\n"
        if i > 0:
            stations += f"mac_rssi:{mac} {40 + i}\noperating_band:{BANDS[band]}\nmlo:No\nmld_addr:00:00:00:00:00:00\npartner_mac:\n"
        if any("br-lan" in line for line in root.setup):
            root.add_neighbour(address, mac)
    root.write("/tmp/dhcp.leases", leases)
    root.write("/router/state/clients", clients)
    root.write("/router/state/bridge-macs", bridge)
    root.write("/router/state/wifi-clients", stations)
