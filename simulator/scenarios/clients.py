"""What the router sees of who is attached: the ARP table, the leases, the bridge and the radios. --clients N is how many.

Of clients behind a mesh agent the router sees no radio: they come in over the agent's backhaul."""

import time

import attached

LEASE_S = 43200
CABLE_PORTS = (1, 2)  # of the bridge: eth0 for a client, eth2 for an agent
RADIO_PORTS = (3, 4, 5)
BACKHAUL_PORT = 6


def add_options(parser):
    parser.add_argument("--clients", type=int, default=3, metavar="N",
                        help="attached clients, 0 to 99; below a mesh controller they are dealt out over the router and its "
                             "agents in turn; default: 3")


def port_of_unit(unit):
    return CABLE_PORTS[1] if unit.backhaul == ("ETHER",) else BACKHAUL_PORT


def port_of_client(client, units):
    if client.unit > 0:
        return port_of_unit(units[client.unit])
    return CABLE_PORTS[0] if client.interface == attached.CABLE else RADIO_PORTS[client.interface - 1]


def station(number, client):
    return (f"mac_rssi:{client.mac} {40 + number}\noperating_band:{attached.BANDS[client.interface - 1]}\nmlo:No\n"
            "mld_addr:00:00:00:00:00:00\npartner_mac:\n")


def apply(root, args):
    clients, units = attached.clients(args), attached.agents(args)
    hosts = [(client.address, client.mac, client.name, port_of_client(client, units)) for client in clients]
    if args.mode == "controller":
        hosts += [(unit.ip, unit.mac.lower(), f"satellite-{number}", port_of_unit(unit))
                  for number, unit in enumerate(units[1:], 1)]
    end = int(time.clock_gettime(time.CLOCK_BOOTTIME)) + LEASE_S  # leases end by the uptime
    files = {
        "/tmp/dhcp.leases": [f"{end} {mac} {address} {name} 01:{mac}\n" for address, mac, name, _ in hosts],
        "/router/state/clients": [f"{address} {mac} {name}\n" for address, mac, name, _ in hosts],
        "/router/state/bridge-macs": [f"  {port}\t{mac}\tno\t\t   1.00\n" for _, mac, _, port in hosts],
        "/router/state/wifi-clients": [station(number, client) for number, client in enumerate(clients)
                                       if client.unit == 0 and client.interface != attached.CABLE],
    }
    for path, lines in files.items():
        root.write(path, "".join(lines))
    if any("br-lan" in line for line in root.setup):
        for address, mac, _, _ in hosts:
            root.add_neighbour(address, mac)
