"""Hostile texts in every field of the access and DHCP routes: each reaches its place, whole or cut at its bound, and
nothing else."""

import pytest

from kit import HOSTILE

ADDRESS_MAX = 254  # bytes of "package.section.option=value"
TEXTS = pytest.mark.parametrize("name", HOSTILE)
FIREWALL = ["/etc/init.d/firewall restart"]
GOOD_CHILD = {"explain": "child", "macAddress": "AA:BB:CC:DD:EE:01", "startTime": "07:00", "endTime": "20:00"}
GOOD_RULE = {"settingName": "web", "ipAddress": "192.168.0.9", "protocol": 1, "lanPortNum": 80, "wanPortNum": 8080}
GOOD_POOL = {"enable": 1, "leaseTime": 5, "startAddress": "192.168.0.100", "endAddress": "192.168.0.149",
             "fixedIpCount": 1, "fixedIpAllocation": [{"ipAddress": "192.168.0.9", "macAddress": "AA:BB:CC:DD:EE:09"}]}
PACKAGES = {
    "mia": "config basic\n\toption enable '1'\n",
    "portmapping": "\n",
    "security": "config security 'security'\n\toption pptp '1'\n\toption ipsec '0'\n\toption dos '1'\n\toption spi '0'\n",
    "dhcp": "config dhcp 'lan'\n\toption ignore '1'\n\nconfig host\n\toption ip '192.168.0.7'\n",
}


def cut(text, size):
    return text.encode("utf-8", "surrogateescape")[:size].decode("utf-8", "surrogateescape")


def stored(address, text):
    """What an option holds after `text` was set; None when it was refused, "" when it is absent."""
    value = cut(text, ADDRESS_MAX - len(address) - 1)
    is_text = all(character >= " " or character in "\t\r\n" for character in value)
    return value if is_text else None


def first_line(text, size):
    return cut(text, size).partition("\n")[0]


@pytest.fixture
def unit(router):
    for package, text in PACKAGES.items():
        router.config(package, text)
    return router


def packages(router):
    return {path.name: path.read_bytes() for path in router.root.path("/etc/config").iterdir()}


@pytest.fixture
def elsewhere(unit):
    """Asserts at the end of a test that no command ran and that no other package changed."""
    before = packages(unit)

    def check(*changed):
        unit.assert_nothing_ran()
        after = packages(unit)
        assert {name for name in {*before, *after} if before.get(name) != after.get(name)} <= set(changed)
        assert unit.alive()

    return check


def sections(router, package, type):
    return [section.options for section in router.package(package) if section.type == type]


def written(options, values, refused):
    """The options that a section has after `values` were set in their order: none from the refused one on."""
    kept = {}
    for option in options:
        if option == refused:
            break
        if values[option] != "":
            kept[option] = values[option]
    return kept


# Parental control.

CHILD_OPTIONS = {"explain": "enable", "macAddress": "macaddr", "startTime": "timeon", "endTime": "timeoff"}


@TEXTS
@pytest.mark.parametrize("key", CHILD_OPTIONS)
def test_a_text_of_a_parental_control(unit, elsewhere, key, name):
    option = CHILD_OPTIONS[key]
    value = stored(f"mia.@macbind[-1].{option}", HOSTILE[name])
    a = unit.post("/api/v1/parental-control", {"enable": 1, "parentalControls": [
        GOOD_CHILD, {**GOOD_CHILD, key: HOSTILE[name]}]})
    assert a.json == ({"result": 1} if value is None else {"result": 0, "version": 1, "waitTime": 10})
    good = {CHILD_OPTIONS[k]: text for k, text in GOOD_CHILD.items()}
    second = written(CHILD_OPTIONS.values(), {**good, option: value}, option if value is None else None)
    assert sections(unit, "mia", "macbind") == [good, second]
    shown = {k: second.get(CHILD_OPTIONS[k], "") for k in CHILD_OPTIONS}
    assert unit.get("/api/v1/parental-control").json == {
        "result": 0, "version": 1, "enable": 1, "parentalControls": [{"id": 0, **GOOD_CHILD}, {"id": 1, **shown}]}
    unit.wait_for_call("/etc/init.d/firewall", "restart")
    unit.assert_calls(*FIREWALL)
    elsewhere("mia")


@TEXTS
def test_the_switch_of_parental_control_is_kept_as_it_came(unit, elsewhere, name):
    value = stored("mia.@basic[0].enable", HOSTILE[name])
    a = unit.post("/api/v1/parental-control", {"enable": HOSTILE[name], "parentalControls": []})
    assert a.json["result"] == (1 if value is None else 0)
    assert unit.option("mia.@basic[0].enable") == ("1" if value is None else value or None)
    shown = unit.get("/api/v1/parental-control").json
    if value == "":  # an absent switch
        assert shown == {"result": 1}
    else:
        assert shown == {"result": 0, "version": 1, "enable": 1 if value is None else 0, "parentalControls": []}
    unit.wait_for_call("/etc/init.d/firewall", "restart")
    unit.assert_calls(*FIREWALL)
    elsewhere("mia")


# Port forwarding.

RULE_ORDER = ("dest_port", "src", "name", "src_dport", "target", "dest_ip", "dest", "proto")
RULE = {"dest_port": "80", "src": "wan", "name": "web", "src_dport": "8080", "target": "DNAT", "dest_ip": "192.168.0.9",
        "dest": "lan", "proto": "tcp"}


@TEXTS
@pytest.mark.parametrize("key, option, shown_bytes", [("settingName", "name", 31), ("ipAddress", "dest_ip", 15)])
def test_a_text_of_a_port_rule(unit, elsewhere, key, option, shown_bytes, name):
    value = stored(f"portmapping.@redirect[-1].{option}", HOSTILE[name])
    a = unit.post("/api/v1/port-open", {"portOpenSettings": [GOOD_RULE, {**GOOD_RULE, key: HOSTILE[name]}]})
    assert a.json == ({"result": 1} if value is None else {"result": 0, "version": 1, "waitTime": 5})
    second = written(RULE_ORDER, {**RULE, option: value}, option if value is None else None)
    assert sections(unit, "portmapping", "redirect") == [RULE, second]
    unit.wait_for_call("/etc/init.d/firewall", "restart")
    unit.assert_calls(*FIREWALL)
    shown = unit.get("/api/v1/port-open").json
    assert shown["portOpenSettings"][0] == {"id": 0, **GOOD_RULE}
    assert shown["portOpenSettings"][1][key] == first_line(second.get(option, ""), shown_bytes)
    elsewhere("portmapping")


@pytest.mark.parametrize("key, option", [("lanPortNum", "dest_port"), ("wanPortNum", "src_dport"), ("protocol", "proto")])
def test_a_number_of_a_port_rule_that_is_a_text_is_0(unit, elsewhere, key, option):
    for text in HOSTILE.values():
        assert unit.post("/api/v1/port-open", {"portOpenSettings": [{**GOOD_RULE, key: text}]}).json["result"] == 0
        rule, = sections(unit, "portmapping", "redirect")
        assert rule.get(option) == (None if option == "proto" else "0"), text
    elsewhere("portmapping")


# Time service.

@TEXTS
def test_a_time_server(unit, elsewhere, name):
    value = stored("system.ntp.server", HOSTILE[name])
    a = unit.post("/api/v1/ntp", {"enable": 1, "server": HOSTILE[name]})
    if value is None:
        assert not a.encrypted and a.body == b'{"result": 2}'
        assert unit.option("system.ntp.server") is None
        assert unit.get("/api/v1/ntp").json == {"result": 1}
        unit.assert_calls()
    else:
        assert a.json == {"result": 0, "version": 1, "waitTime": 20}
        assert unit.option("system.ntp.server") == [value]
        assert unit.get("/api/v1/ntp").json == {"result": 0, "version": 1, "enable": 1, "server": value}
        unit.wait_for_call("/etc/init.d/sysntpd", "restart")
        unit.assert_calls("/etc/init.d/sysntpd restart")
    elsewhere("system")


def test_a_time_switch_that_is_a_text_is_0(unit, elsewhere):
    for text in HOSTILE.values():
        assert unit.post("/api/v1/ntp", {"enable": text, "server": "ntp.example"}).json["result"] == 0
        assert unit.option("system.ntp.enabled") == "0", text
    unit.wait_for_call("/etc/init.d/sysntpd", "stop", times=len(HOSTILE))
    assert set(unit.commands()) == {"/etc/init.d/sysntpd stop"}
    elsewhere("system")


# DHCP.

FIELD_MAX = 31
LAST_NUMBERS = {"empty": -1, "equals-and-dots": 4}  # of the texts; of all others 0
POOL_COMMANDS = ["uci show dhcp", "uci del dhcp.@host[0]", "uci commit dhcp", "uci add dhcp host"]
POOL_END = ["uci commit dhcp", "/etc/init.d/dnsmasq restart"]
HOST_ORDER = ("ip", "leasetime", "name", "dns", "mac")
HOST = {"ip": "192.168.0.9", "leasetime": "5h", "name": "0", "dns": "1", "mac": "AA:BB:CC:DD:EE:09"}


def with_colons(mac):
    """A MAC address as it is stored, byte for byte."""
    data = mac.encode("utf-8", "surrogateescape")
    if len(data) != 17:
        data = b":".join(data[i:i + 2] for i in range(0, len(data), 2))
    return data[:FIELD_MAX].decode("utf-8", "surrogateescape")


@TEXTS
def test_a_start_address(unit, elsewhere, name):
    value = stored("dhcp.lan.start", cut(HOSTILE[name], FIELD_MAX))
    a = unit.post("/api/v1/dhcp", {**GOOD_POOL, "startAddress": HOSTILE[name]})
    assert a.json == ({"result": 2} if value is None else {"result": 0, "version": 1, "waitTime": 20})
    lan, = sections(unit, "dhcp", "dhcp")
    assert lan.get("start") == (value or None) and lan["leasetime"] == "5h"
    unit.assert_calls(*([] if value is None else POOL_COMMANDS + POOL_END))
    shown = unit.get("/api/v1/dhcp").json
    if LAST_NUMBERS.get(name, 0) > 0:
        assert (shown["result"], shown["startAddress"]) == (0, value)
    else:
        assert shown == {"result": 2}  # there is no pool without a last number
    elsewhere("dhcp")


@TEXTS
def test_an_end_address_is_its_last_number_alone(unit, elsewhere, name):
    assert unit.post("/api/v1/dhcp", {**GOOD_POOL, "endAddress": HOSTILE[name]}).json["result"] == 0
    last = LAST_NUMBERS.get(name, 0)
    assert unit.option("dhcp.lan.limit") == str(last - 100 + 1)
    unit.assert_calls(*POOL_COMMANDS, *POOL_END)
    assert unit.get("/api/v1/dhcp").json["endAddress"] == f"192.168.0.{last}"
    elsewhere("dhcp")


@TEXTS
@pytest.mark.parametrize("key, option", [("ipAddress", "ip"), ("macAddress", "mac")])
def test_a_text_of_a_fixed_host(unit, elsewhere, key, option, name):
    text = cut(HOSTILE[name], FIELD_MAX)
    value = stored(f"dhcp.@host[0].{option}", with_colons(text) if option == "mac" else text)
    host = {**GOOD_POOL["fixedIpAllocation"][0], key: HOSTILE[name]}
    a = unit.post("/api/v1/dhcp", {**GOOD_POOL, "fixedIpAllocation": [host]})
    assert a.json == ({"result": 2} if value is None else {"result": 0, "version": 1, "waitTime": 20})
    kept = written(HOST_ORDER, {**HOST, option: value}, option if value is None else None)
    assert sections(unit, "dhcp", "host") == ([kept] if kept else [])
    unit.assert_calls(*POOL_COMMANDS, *([] if value is None else POOL_END))
    shown = unit.get("/api/v1/dhcp").json
    assert (shown["result"], shown["fixedIpCount"]) == (0, 1)
    if value:
        assert shown["fixedIpAllocation"][0][key] == first_line(value, FIELD_MAX).partition("\r")[0]
    elsewhere("dhcp")


@pytest.mark.parametrize("key, address, value", [("leaseTime", "dhcp.lan.leasetime", "0h"),
                                                 ("enable", "dhcp.lan.ignore", "1")])
def test_a_number_of_the_pool_that_is_a_text_is_0(unit, elsewhere, key, address, value):
    for text in HOSTILE.values():
        unit.config("dhcp", PACKAGES["dhcp"].replace("ignore '1'", "ignore '0'\n\toption leasetime '9h'\n"
                                                     "\toption start '1.2.3.4'\n\toption limit '5'"))
        assert unit.post("/api/v1/dhcp", {**GOOD_POOL, key: text}).json["result"] == 0, text
        assert unit.option(address) == value, text
    elsewhere("dhcp")


def test_a_count_of_hosts_that_is_a_text_is_0(unit, elsewhere):
    for text in HOSTILE.values():
        assert unit.post("/api/v1/dhcp", {**GOOD_POOL, "fixedIpCount": text}).json == {"result": 1}, text
    unit.assert_calls()
    elsewhere()


# Switches and positions.

@pytest.mark.parametrize("uri, body", [
    ("security/passthrough", {"pptpEnable": None}), ("security/passthrough", {"pptpEnable": 1, "ipsecEnable": None}),
    ("security/protect", {"dosEnable": None}), ("security/protect", {"dosEnable": 1, "spiEnable": None}),
    ("remote-maintenance", {"enable": None}), ("remote-maintenance", {"enable": 0, "detailInfoSendEnable": None}),
    ("fsecure_sense", {"enable": None})], ids=lambda value: value if isinstance(value, str) else list(value)[-1])
def test_a_switch_that_is_a_text_is_refused(unit, elsewhere, uri, body):
    unit.brand("tesmir" if uri == "fsecure_sense" else "orvane")
    for text in HOSTILE.values():
        asked = {key: text if value is None else value for key, value in body.items()}
        assert unit.post(f"/api/v1/{uri}", asked).json == {"result": 1}, text
    unit.assert_calls()
    elsewhere()


@pytest.mark.parametrize("uri, package, type, key", [
    ("parental-control/delete", "mia", "macbind", "parentalControls"),
    ("delete-port", "portmapping", "redirect", "portOpenSettings")])
def test_a_position_that_is_a_text_is_0(unit, elsewhere, uri, package, type, key):
    for text in HOSTILE.values():
        unit.config(package, PACKAGES[package])
        unit.add(package, type, name=None, macaddr="first")
        unit.add(package, type, name=None, macaddr="second")
        assert unit.post(f"/api/v1/{uri}", {key: [{"id": text}]}).json["result"] == 0, text
        assert sections(unit, package, type) == [{"macaddr": "second"}], text
    unit.wait_for_call("/etc/init.d/firewall", "restart", times=len(HOSTILE))
    assert set(unit.commands()) == set(FIREWALL)
    elsewhere(package)
