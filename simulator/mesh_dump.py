"""The topology dump of a mesh, as the daemon's console prints it. Also makes the fixtures of the parser's tests."""

from dataclasses import dataclass, field

RADIO_OCTET = 0x10
NETWORK = "192.168.0"


@dataclass
class Station:
    mac: str
    interfaces: tuple[int, ...]  # interface indices of its device: 0 wired, 1 2.4 GHz, 2 5 GHz, 3 6 GHz


@dataclass
class Device:
    mac: str
    ip: str
    parent: str | None = None
    backhaul: tuple[str, ...] = ("WLAN5G", "WLAN6G")  # media of its link to the parent; ("ETHER",) for a cable
    bridged: list[Station] = field(default_factory=list)
    legacy: dict[str, list[str]] = field(default_factory=dict)  # stations by interface, of the controller

    def interface_mac(self, index: int) -> str:
        """The MACs of a unit's interfaces: the wired port stands one below the 2.4 GHz radio."""
        octet = (int(self.mac[-2:], 16) + RADIO_OCTET + index - 1) % 256
        return f"{self.mac[:-2]}{octet:02X}"


MEDIA = ("ETHER", "WLAN2G", "WLAN5G", "WLAN6G")
NAMES = ("eth0", "ath0", "ath1", "ath2")


def _remote_rows(device: Device) -> list[str]:
    rows = ["    Remote connections (Directly connected to self)",
            "        Interface name   Medium Type  MAC Address        MID"]
    for medium in device.backhaul:
        name = "eth1" if medium == "ETHER" else NAMES[MEDIA.index(medium)] + "3"
        rows.append(f"        {name:<16} {'' if medium == 'ETHER' else medium:<12} {device.parent}  1")
    return rows + ["", "    Remote connections (Not directly connected to self)", ""]


def _bridged_rows(device: Device, children: list[Device]) -> list[str]:
    rows = [(station.mac, index) for station in device.bridged for index in station.interfaces]
    rows += [(child.mac, MEDIA.index(medium)) for child in children for medium in child.backhaul]
    text = [f"    {len(rows)} Bridged addresses:", "        Address              Index    Interface Type"]
    return text + [f"        {mac}    {index}        Remote" for mac, index in rows] + [""]


def _legacy_rows(device: Device) -> list[str]:
    rows = ["    Legacy Devices:"]
    for interface, macs in device.legacy.items():
        rows += [f"        Interface {interface}:", *(f"            {mac}" for mac in macs)]
    return rows


def device_rows(device: Device, children: list[Device]) -> list[str]:
    rows = [f"QCA IEEE 1905.1 device: {device.mac}, IPv4 address: {device.ip} , MAP Agent",
            f"    Upstream Device: {device.parent or 'None'}",
            "    Interfaces:",
            "        Index   Medium Type   MAC Address"]
    rows += [f"        {index} ({name})   {medium}   {device.interface_mac(index)}   up"
             for index, (name, medium) in enumerate(zip(NAMES, MEDIA))]
    if device.parent is not None:
        rows += _remote_rows(device)
    rows += _bridged_rows(device, children)
    return [*rows, *_legacy_rows(device), "    Radios:", "        3 radios", ""]


def render(devices: list[Device]) -> str:
    lines = ["1905.1 topology dump", ""]
    for device in devices:
        lines += device_rows(device, [child for child in devices if child.parent == device.mac])
    return "\n".join(lines) + "\n"


def mac(kind: int, number: int) -> str:
    return f"02:00:00:{kind:02X}:{number // 256:02X}:{number % 256:02X}"


def controller(network: str = NETWORK, **options) -> Device:
    return Device(mac(0, 1), f"{network}.1", **options)


def agent(number: int, parent: Device, network: str = NETWORK, **options) -> Device:
    return Device(mac(0xA0 + number, 0x20), f"{network}.{10 + number}", parent.mac, **options)
