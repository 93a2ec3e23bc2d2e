"""What the mesh's route tests share: a mesh as the daemon prints it, and the files of the other sources."""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "simulator"))

from mesh_dump import Station, agent, controller, mac, render  # noqa: E402

WIFI = ["mac_rssi:{mac} {rssi}", "operating_band:{band}", "mlo:{mlo}", "mld_addr:{mld}", "partner_mac:"]


def set_mesh(router, enable: int, role: str = "controller") -> None:
    router.set("button_mesh.easymesh.enable", enable)
    router.set("button_mesh.easymesh.role", role)


def wifi_client(address: str, band: str = "5GHz", rssi: str = "50", mld: str | None = None) -> str:
    return "\n".join(WIFI).format(mac=address, rssi=rssi, band=band, mlo="Yes" if mld else "No",
                                  mld=mld or "00:00:00:00:00:00") + "\n"


def set_wifi_clients(router, *clients: str) -> None:
    router.tool("/etc/wireClient.sh", write={"/tmp/clientList.txt": "".join(clients)})


def set_bridge(router, *ports: tuple[int, str]) -> None:
    """eth0 is port 1, eth2 port 2, eth1 port 4; `ports` are (port, MAC) of learned addresses."""
    for name, port in (("eth0", "0x1"), ("eth1", "0x4"), ("eth2", "2")):
        router.write(f"/sys/class/net/br-lan/brif/{name}/port_no", port + "\n")
    rows = "".join(f"  {port}\t{address}\tno\t\t   1.00\n" for port, address in ports)
    router.tool("brctl", "showmacs", "br-lan", out="port no\tmac addr\t\tis local?\tageing timer\n" + rows)


def set_dump(router, devices) -> None:
    router.tool("emt", out=render(devices), stdin=True)


def set_leases(router, *leases: tuple[str, str, str]) -> None:
    router.write("/tmp/dhcp.leases", "".join(f"1 {address} {ip} {name} *\n" for address, ip, name in leases))


__all__ = ["Station", "agent", "controller", "mac", "render", "set_bridge", "set_dump", "set_leases", "set_mesh",
           "set_wifi_clients", "wifi_client"]
