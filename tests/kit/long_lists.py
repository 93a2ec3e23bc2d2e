"""Lists of any length, as a router has them: each prepares a router and says which request shows the list."""

import time

import sandbox
from mesh_dump import Station, agent, controller, render


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
    router.root.setup.append(f"{sandbox.machine_programs('ip')['ip']} -batch /router/neighbours")
    return "GET", "/api/v1/router/client-list", None


def as_controller(router):
    router.set("button_mesh.easymesh.enable", 1)
    router.set("button_mesh.easymesh.role", "controller")


def stations(router, length):
    """Stations of ten agents."""
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
