"""A mesh: --agents N below a controller. What its daemon prints agrees with what clients.py shows of the same clients."""

import attached
import mesh_dump


def add_options(parser):
    parser.add_argument("--agents", type=int, default=2, metavar="N", help="mesh agents below a controller, 0 to 15; default: 2")


def place(client, units, own):
    """Puts a client into the tables of its unit: this router's own are legacy devices, an agent's are bridged."""
    address = client.mac.upper()
    if client.unit > 0:
        units[client.unit].bridged.append(mesh_dump.Station(address, (client.interface,)))
    else:
        own.legacy.setdefault(mesh_dump.NAMES[client.interface], []).append(address)


def apply(root, args):
    units = attached.agents(args)
    if not units:
        return
    own = units[1] if args.mode == "agent" else units[0]
    for client in attached.clients(args):
        place(client, units, own)
    root.write("/router/state/topology", mesh_dump.render(units))
