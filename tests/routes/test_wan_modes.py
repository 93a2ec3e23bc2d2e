"""POST /api/v1/router/wan-info: a change from each mode to each other mode, with all that it deletes and writes."""

import pytest

from wan_setup import (DELETED, FLUSH, LONG_WAIT, MODE_OPTIONS, MODES, RELOAD, SHORT_WAIT, apply, packages, restore,
                       set_wan, stored, wan)  # noqa: F401

# A request for each mode carries the fields of every mode.
FIELDS = {
    "pppoeUserName": "new-user", "pppoePassword": "new-password", "pppoeMtu": 1400, "dhcpcHostName": "new-host",
    "wanIpv4Address": "198.51.100.7", "wanIpv4subMask": "255.255.255.128", "wanIpv4Gateway": "198.51.100.1",
    "wanIpv4Dns1": "198.51.100.53", "wanIpv4Dns2": "198.51.100.54", "aftrAddress": "new.aftr.example", "ipipService": 2,
    "ipipV4Address": "192.0.2.99", "ipipBrAddress": "2001:db8::99", "ipipInterfaceId": "::99",
    "ipipResettingUrl": "http://new.example/", "ipipUserId": "new-id", "ipipPassword": "new-secret",
}

# What each mode writes: in network.wan, and elsewhere. None deletes.
WRITES = (
    {"mode": "DHCP", "proto": "dhcp", "hostname": "new-host"},
    {"mode": "STATIC", "proto": "static", "ipaddr": "198.51.100.7", "netmask": "255.255.255.128", "gateway": "198.51.100.1",
     "dns": ["198.51.100.53", "198.51.100.54"]},
    {"mode": "PPPOE", "proto": "pppoe", "username": "new-user", "password": "new-password", "mtu": "1408",
     "keepalive": "5 60"},
    {"mode": "MAP-E", "proto": "none"},
    {"mode": "DS-Lite", "proto": "none", "aftr": "new.aftr.example"},
    {"mode": "IPIP6", "proto": "none", "v6service": "transix", "ip4addr": "192.0.2.99", "braddr": "2001:db8::99",
     "interfaceid": "::99", "url": "http://new.example/", "ipipusername": "new-id", "ipippasswd": "new-secret"},
    {"mode": "STDPROV", "proto": "none"},
    {"mode": "AP", "proto": "none"},
)
PORTS = "network.@device[0].ports"
ELSEWHERE = {
    2: {"system.@system[0].op_mode": "router"},
    7: {"network.lan.force_link": None, "network.lan.ip6assign": None, "network.lan.netmask": None,
        "network.lan.ipaddr": None, "network.lan.proto": "dhcp", "network.lan.ieee1905managed": "1",
        "network.lan.globalIp": "1", "dhcp.lan.ignore": "1", "system.@system[0].op_mode": "ap",
        PORTS: ["eth0", "eth1", "eth2"]},
}

# What an access point's LAN becomes when it is a router again.
LEAVES_AP = {
    "network.lan.ifname": "eth0", "network.lan.proto": "static", "network.lan.ipaddr": "192.168.7.1",
    "network.lan.netmask": "255.255.255.0", "network.lan.ip6assign": "60", "network.lan.ieee1905managed": "1",
    "network.lan.force_link": "1", "system.@system[0].op_mode": "router", "dhcp.lan.ignore": None,
}
AP_UNIT = {"network.lan.proto": "dhcp", "network.lan.ipaddr": None, "network.lan.netmask": None,
           "network.lan.ip6assign": None, PORTS: ["eth0", "eth1", "eth2"], "network.lan.globalIp": "1", "dhcp.lan.ignore": "1",
           "system.@system[0].op_mode": "ap"}


def unit_in(router, mode):
    """A router in a mode, with what every other mode may have left."""
    set_wan(router, mode=mode, proto="none", **MODE_OPTIONS)
    router.set("network.wan_mape", "interface")
    router.set("network.wan_mape.proto", "map")
    if mode == "AP":
        for address, value in AP_UNIT.items():
            router.set(address, value)


def changed(content, changes):
    content = {**content, **changes}
    return {address: value for address, value in content.items() if value is not None}


def expected(before, old, new):
    """What UCI holds after a change of mode."""
    content = changed(before, {"network.backwan.change": "1", "network.backwan.waninfobak": f"{new}02",
                               "network.wan.autoflag": "0", "network.wan.slaac": "0", "network.wan.dhcpv6pd": "0",
                               "network.wan.v6vne": "0"})
    content = changed(content, {f"network.wan.{option}": None for option in DELETED.get(old, ())})
    if old == "MAP-E":
        content = {address: value for address, value in content.items() if address.split(".")[1] != "wan_mape"}
    if old == "AP":
        content = changed(content, LEAVES_AP)
    content = changed(content, {PORTS: ["eth0", "eth2"]})
    content = changed(content, {f"network.wan.{option}": value for option, value in WRITES[new].items()})
    return changed(content, ELSEWHERE.get(new, {}))


def family(code):
    return "A" if code <= 2 else "B"


@pytest.mark.parametrize("old", MODES)
def test_a_change_to_each_mode_deletes_and_writes_just_this(wan, old):
    unit_in(wan, old)
    unit, before = packages(wan), stored(wan)
    for new in range(8):
        restore(wan, unit)
        answer = apply(wan, wanMethod=new, **FIELDS)
        assert answer.encrypted and answer.json["result"] == 0
        assert stored(wan) == expected(before, old, new), (old, MODES[new])
        wan.assert_calls(*([FLUSH] if new == 1 else []), *RELOAD)


@pytest.mark.parametrize("old", MODES)
def test_a_change_to_each_mode_tells_how_long_it_takes(wan, old):
    code = MODES.index(old)
    set_wan(wan, mode=old)
    wan.set("network.backwan.waninfobak", f"{code}00")
    unit = packages(wan)
    for new in range(8):
        restore(wan, unit)
        answer = apply(wan, wanMethod=new, ipipService=0)
        long = family(code) != family(new) or (family(code) == "B" and code != new)
        assert answer.text == (LONG_WAIT if long else SHORT_WAIT), (old, MODES[new])
        assert wan.logged(f"cur_wan_mode is [{old}],id is [{code}],type is [{family(code)}]")
        assert wan.logged(f"set_wan_mode is [{new}],id is [{new}],type is [{family(new)}]")


@pytest.mark.parametrize("old", MODES)
def test_a_change_to_each_mode_with_no_more_than_its_number(wan, old):
    """Where the request brings nothing, nothing but the mode and its fixed options is written."""
    unit_in(wan, old)
    unit, before = packages(wan), stored(wan)
    brought = ("hostname", "ipaddr", "netmask", "gateway", "dns", "username", "password", "mtu", "ip4addr", "braddr",
               "interfaceid", "url", "ipipusername", "ipippasswd")
    for new in range(8):
        restore(wan, unit)
        assert apply(wan, wanMethod=new).json["result"] == 0
        after = expected(before, old, new)
        after["network.backwan.waninfobak"] = f"{new}0"
        for option in WRITES[new]:
            address = f"network.wan.{option}"
            if option in brought:
                kept = None if option in DELETED.get(old, ()) else before.get(address)
                after = changed(after, {address: kept})
        if new == 1:
            after.pop("network.wan.dns", None)
        if new == 4:
            after.pop("network.wan.aftr", None)
        if new == 5:
            after["network.wan.v6service"] = "manual"
        assert stored(wan) == after, (old, MODES[new])

