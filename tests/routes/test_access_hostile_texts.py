"""Hostile texts in every field of the access and DHCP routes: each reaches its place, whole or cut at its bound, and
nothing else."""

import re

import pytest
from texts import cut, is_one_line, is_storable, shown

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


def stored(address, text):
    """What an option holds after `text` was set; "" when it is absent."""
    return cut(text, ADDRESS_MAX - len(address) - 1)


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


def options_of(order, values):
    """The options of a section in their order; an empty text is none."""
    return {option: values[option] for option in order if values[option] != ""}


# Parental control.

CHILD_OPTIONS = {"explain": "enable", "macAddress": "macaddr", "startTime": "timeon", "endTime": "timeoff"}


@TEXTS
@pytest.mark.parametrize("key", CHILD_OPTIONS)
def test_a_text_of_a_parental_control(unit, elsewhere, key, name):
    text, option = HOSTILE[name], CHILD_OPTIONS[key]
    is_taken = is_storable(text) if key == "explain" else text != "" and is_one_line(text)
    a = unit.post("/api/v1/parental-control", {"enable": 1, "parentalControls": [GOOD_CHILD, {**GOOD_CHILD, key: text}]})
    assert a.json == ({"result": 0, "version": 1, "waitTime": 10} if is_taken else {"result": 1})
    good = {CHILD_OPTIONS[k]: value for k, value in GOOD_CHILD.items()}
    value = stored(f"mia.@macbind[-1].{option}", text)
    second = options_of(CHILD_OPTIONS.values(), {**good, option: value})
    assert sections(unit, "mia", "macbind") == ([good, second] if is_taken else [])
    rows = [{"id": 0, **GOOD_CHILD}, {"id": 1, **GOOD_CHILD, key: shown(value)}] if is_taken else []
    assert unit.get("/api/v1/parental-control").json == {"result": 0, "version": 1, "enable": 1, "parentalControls": rows}
    unit.wait_for_call("/etc/init.d/firewall", "restart")
    unit.assert_calls(*FIREWALL)
    elsewhere("mia")


@TEXTS
def test_the_switch_of_parental_control_is_kept_as_it_came(unit, elsewhere, name):
    is_taken = HOSTILE[name] != "" and is_storable(HOSTILE[name])
    a = unit.post("/api/v1/parental-control", {"enable": HOSTILE[name], "parentalControls": []})
    assert a.json["result"] == (0 if is_taken else 1)
    value = stored("mia.@basic[0].enable", HOSTILE[name]) if is_taken else "1"
    assert unit.option("mia.@basic[0].enable") == value
    assert unit.get("/api/v1/parental-control").json == {
        "result": 0, "version": 1, "enable": 0 if is_taken else 1, "parentalControls": []}
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
    text = HOSTILE[name]
    is_taken = is_storable(text) if key == "settingName" else text != "" and is_one_line(text)
    a = unit.post("/api/v1/port-open", {"portOpenSettings": [GOOD_RULE, {**GOOD_RULE, key: text}]})
    assert a.json == ({"result": 0, "version": 1, "waitTime": 5} if is_taken else {"result": 1})
    value = stored(f"portmapping.@redirect[-1].{option}", text)
    assert sections(unit, "portmapping", "redirect") == (
        [RULE, options_of(RULE_ORDER, {**RULE, option: value})] if is_taken else [])
    unit.wait_for_call("/etc/init.d/firewall", "restart")
    unit.assert_calls(*FIREWALL)
    rules = unit.get("/api/v1/port-open").json["portOpenSettings"]
    assert rules == ([{"id": 0, **GOOD_RULE}, {
        "id": 1, **GOOD_RULE, key: shown(first_line(value, shown_bytes))}] if is_taken else [])
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
    before = unit.option("system.ntp.server")
    a = unit.post("/api/v1/ntp", {"enable": 1, "server": HOSTILE[name]})
    if HOSTILE[name] == "" or not is_one_line(HOSTILE[name]):
        assert not a.encrypted and a.body == b'{"result": 1}'
        assert unit.option("system.ntp.server") == before
        unit.assert_calls()
    else:
        value = stored("system.ntp.server", HOSTILE[name])
        assert a.json == {"result": 0, "version": 1, "waitTime": 20}
        assert unit.option("system.ntp.server") == [value]
        assert unit.get("/api/v1/ntp").json == {"result": 0, "version": 1, "enable": 1, "server": shown(value)}
        unit.wait_for_call("/etc/init.d/sysntpd", "restart")
        unit.assert_calls("/etc/init.d/sysntpd restart")
    elsewhere("system")


def test_a_time_switch_that_is_a_text_is_a_missing_one(unit, elsewhere):
    before = unit.option("system.ntp.enabled")
    for text in HOSTILE.values():
        assert unit.post("/api/v1/ntp", {"enable": text, "server": "ntp.example"}).body == b'{"result": 1}'
        assert unit.option("system.ntp.enabled") == before, text
    unit.assert_calls()
    elsewhere("system")


# DHCP.

FIELD_MAX = 31
LAST_NUMBERS = {"empty": -1, "equals-and-dots": 4}  # of the texts; of all others 0
POOL_COMMANDS = ["uci show dhcp", "uci del dhcp.@host[0]", "uci commit dhcp", "uci add dhcp host"]
POOL_END = ["uci commit dhcp", "/etc/init.d/dnsmasq restart"]
HOST_ORDER = ("ip", "leasetime", "name", "dns", "mac")
HOST = {"ip": "192.168.0.9", "leasetime": "5h", "name": "0", "dns": "1", "mac": "AA:BB:CC:DD:EE:09"}


def with_colons(mac):
    """A MAC address as it is stored, by its characters; a byte that only continues one begins none."""
    raw = mac.encode("utf-8", "surrogateescape")
    if len(raw) != 17:
        characters = re.findall(rb"[\x00-\x7f\xc0-\xff][\x80-\xbf]*|^[\x80-\xbf]+", raw)
        raw = b":".join(b"".join(characters[i:i + 2]) for i in range(0, len(characters), 2))
    return cut(raw.decode("utf-8", "surrogateescape"), FIELD_MAX)


@TEXTS
def test_a_start_address(unit, elsewhere, name):
    value = cut(HOSTILE[name], FIELD_MAX)
    before = unit.read("/etc/config/dhcp")
    a = unit.post("/api/v1/dhcp", {**GOOD_POOL, "startAddress": HOSTILE[name]})
    if not is_one_line(value):
        assert a.json == {"result": 1} and unit.read("/etc/config/dhcp") == before
        unit.assert_calls()
        return elsewhere()
    assert a.json == {"result": 0, "version": 1, "waitTime": 20}
    lan, = sections(unit, "dhcp", "dhcp")
    assert lan.get("start") == (value or None) and lan["leasetime"] == "5h"
    unit.assert_calls(*POOL_COMMANDS, *POOL_END)
    document = unit.get("/api/v1/dhcp").json
    if LAST_NUMBERS.get(name, 0) > 0:
        assert (document["result"], document["startAddress"]) == (0, value)
    else:
        assert document == {"result": 2}  # there is no pool without a last number
    return elsewhere("dhcp")


@TEXTS
def test_an_end_address_is_its_last_number_alone(unit, elsewhere, name):
    if not is_one_line(cut(HOSTILE[name], FIELD_MAX)):
        assert unit.post("/api/v1/dhcp", {**GOOD_POOL, "endAddress": HOSTILE[name]}).json == {"result": 1}
        unit.assert_calls()
        return elsewhere()
    assert unit.post("/api/v1/dhcp", {**GOOD_POOL, "endAddress": HOSTILE[name]}).json["result"] == 0
    last = LAST_NUMBERS.get(name, 0)
    assert unit.option("dhcp.lan.limit") == str(last - 100 + 1)
    unit.assert_calls(*POOL_COMMANDS, *POOL_END)
    assert unit.get("/api/v1/dhcp").json["endAddress"] == f"192.168.0.{last}"
    return elsewhere("dhcp")


@TEXTS
@pytest.mark.parametrize("key, option", [("ipAddress", "ip"), ("macAddress", "mac")])
def test_a_text_of_a_fixed_host(unit, elsewhere, key, option, name):
    text = cut(HOSTILE[name], FIELD_MAX)
    a = unit.post("/api/v1/dhcp", {**GOOD_POOL, "fixedIpAllocation": [
        {**GOOD_POOL["fixedIpAllocation"][0], key: HOSTILE[name]}]})
    if not is_one_line(text):
        assert a.json == {"result": 1}
        unit.assert_calls()
        return elsewhere()
    assert a.json == {"result": 0, "version": 1, "waitTime": 20}
    value = with_colons(text) if option == "mac" else text
    assert sections(unit, "dhcp", "host") == [options_of(HOST_ORDER, {**HOST, option: value})]
    unit.assert_calls(*POOL_COMMANDS, *POOL_END)
    document = unit.get("/api/v1/dhcp").json
    assert (document["result"], document["fixedIpCount"]) == (0, 1)
    if value:
        assert document["fixedIpAllocation"][0][key] == shown(value)
    return elsewhere("dhcp")


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
def test_a_text_without_a_digit_is_no_position(unit, elsewhere, uri, package, type, key):
    unit.add(package, type, name=None, macaddr="first")
    before = unit.read(f"/etc/config/{package}")
    for text in HOSTILE.values():
        assert unit.post(f"/api/v1/{uri}", {key: [{"id": 0}, {"id": text}]}).json == {"result": 1}, text
    assert unit.read(f"/etc/config/{package}") == before
    unit.wait_for_call("/etc/init.d/firewall", "restart", times=len(HOSTILE))
    assert set(unit.commands()) == set(FIREWALL)
    elsewhere(package)
