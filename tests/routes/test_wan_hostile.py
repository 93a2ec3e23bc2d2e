"""Hostile texts in each field of POST /api/v1/router/wan-info, and in all that GET tells from."""

import pytest

from kit import GARBAGE_BODIES, HOSTILE

from wan_setup import (FLUSH, RELOAD, TUNNEL_TOOL, UNUSABLE, URI, addresses, apply, cut, packages, restore, set_wan, shown,
                       stored, wan)  # noqa: F401

# Per mode: field, option, bytes of its buffer.
FIELDS = {
    0: [("dhcpcHostName", "hostname", 32)],
    1: [("wanIpv4Address", "ipaddr", 16), ("wanIpv4subMask", "netmask", 16), ("wanIpv4Gateway", "gateway", 16),
        ("wanIpv4Dns1", "dns", 16)],
    2: [("pppoeUserName", "username", 65)],
    4: [("aftrAddress", "aftr", 132)],
    5: [("ipipV4Address", "ip4addr", 16), ("ipipBrAddress", "braddr", 64), ("ipipInterfaceId", "interfaceid", 32),
        ("ipipResettingUrl", "url", 64), ("ipipUserId", "ipipusername", 32), ("ipipPassword", "ipippasswd", 32)],
}
ALONE = {1: [("wanIpv4Dns2", "dns", 16)], 2: [("pppoePassword", "password", 65)]}

SWITCHES = {"wanAutoSelectStatus": "network.wan.autoflag", "vneAutoChangeStatus": "network.wan.v6vne",
            "captivePortalStatus": "system.easysetup.http_redirect_enable", "natAccelerationEnable": "ecm.global.acceleration",
            "uPnPIGD": "upnpd.config.enabled"}

NAMES = list(HOSTILE)
HELD = {"control": "\x01"}  # the package files hold no control characters: an option of these is not kept
SECRETS = ("pppoePassword", "ipipPassword")  # may hold line ends and tabs, as a package file may


def is_storable(field, text):
    allowed = "\t\n\r\x7f" if field in SECRETS else ""
    return not any(ord(c) < 32 or c == "\x7f" for c in text if c not in allowed)


def all_in(text):
    """Every group of fields that may be hostile at once."""
    for groups in (FIELDS, ALONE):
        for mode, fields in groups.items():
            yield mode, fields, {field: text for field, _, _ in fields}


@pytest.mark.parametrize("name", NAMES)
def test_a_hostile_text_reaches_its_options_whole_and_nothing_else(wan, name):
    unit = packages(wan)
    for mode, fields, values in all_in(HOSTILE[name]):
        restore(wan, unit)
        apply(wan, wanMethod=mode)
        plain = stored(wan)
        restore(wan, unit)
        before = stored(wan)
        answer = apply(wan, wanMethod=mode, **values)
        if not all(is_storable(field, cut(HOSTILE[name], size)) for field, _, size in fields):
            assert (answer.text, stored(wan)) == (UNUSABLE, before), fields
            wan.assert_calls(*RELOAD)
            continue
        assert answer.json["result"] == 0
        for _, option, size in fields:
            kept = cut(HOSTILE[name], size)
            if kept:
                plain[f"network.wan.{option}"] = [kept] if option == "dns" else kept
        assert stored(wan) == plain, fields
        flushes = [FLUSH] if mode == 1 and "wanIpv4Address" in values and HOSTILE[name] else []
        wan.assert_calls(*flushes, *RELOAD)
    wan.assert_nothing_ran()


@pytest.mark.parametrize("name", NAMES)
def test_a_hostile_switch_is_a_missing_one(wan, name):
    apply(wan, natAccelerationEnable=0, uPnPIGD=0)
    expected = stored(wan)
    for address in SWITCHES.values():
        expected.pop(address)
    assert apply(wan, **{field: HOSTILE[name] for field in SWITCHES}).json["result"] == 0
    assert stored(wan) == expected
    wan.assert_calls(*RELOAD)
    wan.assert_nothing_ran()


@pytest.mark.parametrize("field", ["wanMethod", "wanIPv6Method", "ipipService"])
def test_a_hostile_code_is_a_missing_one(wan, field):
    for text in HOSTILE.values():
        wan.set("network.backwan.waninfobak", None)
        answer = apply(wan, **{"wanMethod": 5, "wanIPv6Method": None, "ipipService": None, field: text})
        assert answer.json["result"] == 0
        mode, key = ("DHCP", None) if field == "wanMethod" else ("IPIP6", "5")
        assert wan.option("network.wan.mode") == mode
        assert (wan.option("network.wan.slaac"), wan.option("network.wan.dhcpv6pd")) == ("0", "0")
        assert wan.option("network.backwan.waninfobak") == key
        if mode == "IPIP6":
            assert wan.option("network.wan.v6service") == "manual"
    wan.assert_nothing_ran()


def test_a_hostile_mtu_is_a_missing_one(wan):
    for text in HOSTILE.values():
        assert apply(wan, wanMethod=2, pppoeMtu=text).json["result"] == 0
        assert wan.option("network.wan.mtu") is None
    wan.assert_nothing_ran()


@pytest.mark.parametrize("name", NAMES)
def test_hostile_credentials_are_traced_as_they_are(wan, name):
    answer = apply(wan, wanMethod=2, pppoeUserName=HOSTILE[name], pppoePassword=HOSTILE[name])
    refused = answer.text == UNUSABLE
    text = cut(HOSTILE[name], 65)
    unstorable = not is_storable("pppoeUserName", text)
    assert refused == (unstorable or any(c in text for c in "\"',<>￥\\^`|"))
    assert wan.option("network.wan.username") == wan.option("network.wan.password") == (None if refused else text or None)
    if name != "invalid-utf8" and not unstorable:
        assert wan.logged(f"pppoeUserNameValue = {text}, pppoePasswordValue = {text}", priority=7)
    wan.assert_nothing_ran()


def test_a_garbage_body_is_refused_and_changes_nothing(wan):
    before = stored(wan)
    for name, body in GARBAGE_BODIES.items():
        assert apply(wan, body).text == UNUSABLE, name
        assert stored(wan) == before
        wan.assert_calls(*RELOAD)


def test_a_garbage_wan_config_never_breaks_the_program(wan):
    for name, body in GARBAGE_BODIES.items():
        assert apply(wan, b'{"wanConfig": ' + body + b"}").json["result"] in (0, 1), name
    assert wan.alive()


@pytest.mark.parametrize("value", [[], {}, [[]], {"wanMethod": {"wanMethod": 1}}, 1e308, -0.0, 18446744073709551615, True])
def test_a_field_of_any_type_never_breaks_the_program(wan, value):
    fields = ["wanAutoSelectStatus", "wanMethod", "wanIPv6Method", "pppoeMtu", *SWITCHES]
    for groups in (FIELDS, ALONE):
        fields += [field for row in groups.values() for field, _, _ in row]
    for mode in range(9):
        assert apply(wan, **{**dict.fromkeys(fields, value), "wanMethod": mode}).json["result"] in (0, 1)
    assert wan.alive()


# What GET tells from.

TOLD = [("DHCP", "username", "pppoeUserName", 65), ("DHCP", "password", "pppoePassword", 65), ("DHCP", "hostname", "dhcpcHostName", 32),
        ("DS-Lite", "aftr", "aftrAddress", 132), ("IPIP6", "ip4addr", "ipipV4Address", 16), ("IPIP6", "braddr", "ipipBrAddress", 40),
        ("IPIP6", "interfaceid", "ipipInterfaceId", 32), ("IPIP6", "url", "ipipResettingUrl", 64),
        ("IPIP6", "ipipusername", "ipipUserId", 64), ("IPIP6", "ipippasswd", "ipipPassword", 64)]
STORABLE = [name for name in NAMES if name not in HELD and HOSTILE[name]]


@pytest.mark.parametrize("name", STORABLE)
def test_a_hostile_option_is_told_as_it_is(wan, name):
    for mode in ("DHCP", "DS-Lite", "IPIP6"):
        rows = [row for row in TOLD if row[0] == mode]
        set_wan(wan, mode=mode, **{option: HOSTILE[name] for _, option, _, _ in rows})
        a = wan.get(URI).json["wanConfig"]
        assert {member: a[member] for _, _, member, _ in rows} == {
            member: shown(cut(HOSTILE[name], size)) for _, _, member, size in rows}
    wan.assert_nothing_ran()


@pytest.mark.parametrize("name", STORABLE)
def test_a_hostile_mode_or_switch_is_no_known_one(wan, name):
    text = HOSTILE[name]
    set_wan(wan, mode=text, autoflag=text, mtu=text, slaac=text, dhcpv6pd=text, qvilas_res=text)
    for address in ("ecm.global.acceleration", "upnpd.config.enabled", "system.easysetup.http_redirect_enable"):
        wan.set(address, text)
    a = wan.get(URI).json["wanConfig"]
    assert (a["wanMethod"], a["wanMethodStr"], a["wanAutoSelectStatus"], a["wanIpv6Method"], a["pppoeMtu"]) == (0, "", 0, 0, -8)
    assert (a["captivePortalStatus"], a["natAccelerationEnable"], a["previousInternetLineAutoResult"]) == (0, 0, 0)
    assert a["uPnPIGD"] == shown(cut(text, 8))
    wan.assert_nothing_ran()


ONE_LINE = [name for name in STORABLE if "\n" not in HOSTILE[name] and len(HOSTILE[name]) < 100]


@pytest.mark.parametrize("name", ONE_LINE)
def test_hostile_lines_of_the_tools_are_told_as_they_are(wan, name):
    text = HOSTILE[name]
    set_wan(wan, mode="MAP-E")
    wan.tool(TUNNEL_TOOL, out=f"VNE Service: {text}\nCE: {text}\nIPv4: {text}\nMAP-E/DS-Lite/IPIP6 mode: {text}\nPort: {text}")
    addresses(wan, f"ipv6Global:{text}", f"ipv6Link:{text}", f"gatewayV6:{text}", f"nameserver {text}")
    a = wan.get(URI).json["wanConfig"]
    assert {member: a[member] for member in (
        "wanMethodStr", "wanIpv6CeAddress", "wanIpv4Address", "wanHb46ppMethod", "wanIpv4AvailablePorts", "wanIpv6GlobalAddress",
        "wanIpv6LocalAddress", "wanIpv6Gateway", "wanIpv6Dns1")} == {
        "wanMethodStr": shown(text), "wanIpv6CeAddress": shown(cut(text, 64)), "wanIpv4Address": shown(cut(text, 16)),
        "wanHb46ppMethod": 0, "wanIpv4AvailablePorts": shown(text), "wanIpv6GlobalAddress": shown(cut(text, 72)),
        "wanIpv6LocalAddress": shown(cut(text, 64)), "wanIpv6Gateway": shown(cut(text, 64)), "wanIpv6Dns1": shown(cut(text, 64))}
    wan.assert_nothing_ran()


@pytest.mark.parametrize("text", [*HOSTILE.values(), "\0" * 500, "Port: " * 4000, "Port: \n" * 4000, "nameserver\n" * 500, "addr:\n" * 9,
                                  "VNE Service: Standard Provisioning Method (" * 50, "CE: " + "x" * 123 + "IPv4: y"])
def test_no_output_of_a_tool_breaks_the_program(wan, text):
    set_wan(wan, mode="STDPROV")
    wan.tool(TUNNEL_TOOL, out=text)
    addresses(wan, text=text)
    wan.write("/sys/class/net/eth1/address", text)
    wan.write("/sys/class/net/eth1/carrier", text)
    a = wan.get(URI).json["wanConfig"]
    assert (a["wanMethod"], a["wanIpv4SubMask"]) == (6, "None")
    assert len(a["wanMacAddress"]) <= 19
    assert len(a["wanIpv4AvailablePorts"]) <= 1023
    wan.assert_nothing_ran()
