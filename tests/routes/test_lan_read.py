"""GET /api/v1/lan."""

import pytest
from lan_setup import FAILED, IFCONFIG, URI, messages, set_mode
from texts import cut, shown

from kit import HOSTILE

ROUTER_KEYS = ["result", "version", "lanMacAddress", "globalIpProtectionEnable", "dhcpv4Enable", "lanIpv4Address",
               "lanIpv4SubMask", "ipv6AutoIp", "lanIpv6GlobalAddress", "lanIpv6LocalAddress"]
CLIENT_KEYS = [*ROUTER_KEYS[:7], "lanIpv4Gateway", "lanIpv4Dns1", "lanIpv4Dns2", *ROUTER_KEYS[7:], "lanIpv6Gateway",
               "lanIpv6Dns1", "lanIpv6Dns2"]
ENCRYPT = ("jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c")
RESOLV_CONF = """\
# Interface wan
nameserver 192.168.0.254
 nameserver 2001:db8::53
nameserver   8.8.8.8
nameserver 2001:db8::54
nameserver 9.9.9.9
search lan
"""


@pytest.fixture
def lan(router):
    router.tool("ifconfig", "br-lan", out=IFCONFIG)
    router.tool("ip", "route", out="192.168.0.0/24 dev br-lan\ndefault via 192.168.0.254 dev br-lan\n")
    router.tool("ip", "-6", "r", "s", out="fe80::/64 dev br-lan\ndefault via fe80::254 dev br-lan metric 512\n")
    router.write("/tmp/resolv.conf.auto", RESOLV_CONF)
    return router


# The document.

def test_a_router_tells_its_addresses_in_this_order(lan):
    a = lan.get(URI)
    assert a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert a.encrypted
    assert a.text == (
        '{ "result": 0, "version": 1, "lanMacAddress": "00:90:FE:12:34:50", "globalIpProtectionEnable": 1, '
        '"dhcpv4Enable": 0, "lanIpv4Address": "192.168.0.1", "lanIpv4SubMask": "255.255.255.0", "ipv6AutoIp": 5, '
        '"lanIpv6GlobalAddress": "2001:db8:10e7:10::1", "lanIpv6LocalAddress": "fe80::290:feff:fe12:3450" }')
    assert lan.calls("ip") == []


@pytest.mark.parametrize("mode", ["ap", "re"])
def test_a_client_of_another_router_tells_gateway_and_dns_too(lan, mode):
    set_mode(lan, mode, proto="dhcp")
    a = lan.get(URI)
    assert list(a.json) == CLIENT_KEYS
    assert a.json == {
        "result": 0, "version": 1, "lanMacAddress": "00:90:FE:12:34:50", "globalIpProtectionEnable": 1,
        "dhcpv4Enable": 1, "lanIpv4Address": "192.168.0.1", "lanIpv4SubMask": "255.255.255.0",
        "lanIpv4Gateway": "192.168.0.254", "lanIpv4Dns1": "192.168.0.254", "lanIpv4Dns2": "8.8.8.8", "ipv6AutoIp": 5,
        "lanIpv6GlobalAddress": "2001:db8:10e7:10::1", "lanIpv6LocalAddress": "fe80::290:feff:fe12:3450",
        "lanIpv6Gateway": "fe80::254", "lanIpv6Dns1": "2001:db8::53", "lanIpv6Dns2": "2001:db8::54"}
    assert lan.commands("ip") == ["ip route", "ip -6 r s"]


@pytest.mark.parametrize("mode", ["mesh", "AP", "ap ", None])
def test_another_mode_is_told_as_a_router(lan, mode):
    lan.set("system.@system[0].op_mode", mode)
    assert list(lan.get(URI).json) == ROUTER_KEYS
    assert ("Fail to get system.@system[0].op_mode value by uci api\n" in messages(lan)) == (mode is None)


# UCI's part.

@pytest.mark.parametrize("mode, proto, ignore, expected", [
    ("router", "static", "0", 0), ("router", "dhcp", "0", 1), ("router", None, "0", 0),
    ("ap", "static", "1", 0), ("ap", "static", "0", 0), ("ap", "dhcp", "1", 1), ("ap", "dhcp", "0", 1),
    ("re", "static", "1", 0), ("re", "dhcp", "1", 1), ("re", "static", "0", 2), ("re", "dhcp", "0", 2),
    ("re", "dhcp", None, 2), ("re", "dhcp", "11", 2), ("re", None, "1", 0)])
def test_the_dhcp_client_is_told_by_protocol_mode_and_dhcp_server(lan, mode, proto, ignore, expected):
    set_mode(lan, mode, proto=proto)
    lan.set("dhcp.lan.ignore", ignore)
    assert lan.get(URI).json["dhcpv4Enable"] == expected


@pytest.mark.parametrize("proto", ["pppoe", "none", "DHCP"])
def test_a_protocol_that_no_lan_has_is_result_2(lan, proto):
    lan.set("network.lan.proto", proto)
    a = lan.get(URI)
    assert a.encrypted and a.text == FAILED
    assert messages(lan) == ["Unkown value of\tnetwork.lan.proto by uci get api \n", "fail to get lan network config\n"]


@pytest.mark.parametrize("stored, expected", [("0", 0), ("1", 1), ("2", 1), ("-1", 1), ("on", 0)])
def test_the_protection_is_on_for_any_number_but_0(lan, stored, expected):
    lan.set("network.lan.globalIp", stored)
    assert lan.get(URI).json["globalIpProtectionEnable"] == expected


@pytest.mark.parametrize("option, message", [("globalIp", "Fail to get network.lan.globalIp by uci api\n"),
                                             ("ipv6", "Fail to get network.lan.ipv6 value by uci api\n")])
def test_a_missing_switch_is_result_2(lan, option, message):
    lan.set(f"network.lan.{option}", None)
    a = lan.get(URI)
    assert a.encrypted and a.text == FAILED
    assert messages(lan)[-2:] == [message, "fail to get lan network config\n"]


def test_a_missing_mac_address_is_empty(lan):
    lan.set("network.@device[0].macaddr", None)
    assert lan.get(URI).json["lanMacAddress"] == ""
    assert "Fail to get network.lan.macaddr value by uci api\n" in messages(lan)


def test_a_router_without_packages_answers_result_2(bare_router):
    a = bare_router.get(URI)
    assert a.encrypted and a.text == FAILED
    assert messages(bare_router)[-2:] == ["Fail to get network.lan.globalIp by uci api\n", "fail to get lan network config\n"]


@pytest.mark.parametrize("mode", ["router", "ap", "re"])
def test_a_missing_dhcp_package_counts_as_a_server_that_is_on(lan, mode):
    set_mode(lan, mode, proto="static")
    lan.no_config("dhcp")
    assert lan.get(URI).json["dhcpv4Enable"] == (2 if mode == "re" else 0)
    assert any(text.startswith("uci_lookup_ptr dhcp.lan.ignore failed.") for text in messages(lan))


@pytest.mark.parametrize("mode", ["ap", "re"])
def test_a_static_client_tells_the_stored_gateway_and_dns(lan, mode):
    set_mode(lan, mode, proto="static", gateway="192.168.0.9", dns=["1.1.1.1", "2.2.2.2", "3.3.3.3"])
    a = lan.get(URI).json
    assert (a["lanIpv4Gateway"], a["lanIpv4Dns1"], a["lanIpv4Dns2"]) == ("192.168.0.9", "1.1.1.1", "2.2.2.2")
    assert lan.commands("ip") == ["ip -6 r s"]


@pytest.mark.parametrize("stored, told", [(None, ("None", "None")), (["1.1.1.1"], ("1.1.1.1", "None")),
                                          ("1.1.1.1", ("None", "None"))])
def test_a_static_client_without_gateway_or_dns_tells_none(lan, stored, told):
    set_mode(lan, "ap", proto="static", dns=stored)
    a = lan.get(URI).json
    assert (a["lanIpv4Gateway"], a["lanIpv4Dns1"], a["lanIpv4Dns2"]) == ("None", *told)


def test_a_repeater_with_its_dhcp_server_on_tells_the_live_gateway_and_dns(lan):
    set_mode(lan, "re", dhcp_server=True, proto="static", gateway="192.168.0.9", dns=["1.1.1.1"])
    a = lan.get(URI).json
    assert (a["lanIpv4Gateway"], a["lanIpv4Dns1"], a["lanIpv4Dns2"]) == ("192.168.0.254", "192.168.0.254", "8.8.8.8")


# The live system's part.

@pytest.mark.parametrize("line, address, mask", [
    ("inet addr:10.0.0.1  Bcast:10.0.0.255  Mask:255.0.0.0", "10.0.0.1", "255.0.0.0"),
    ("inet addr:10.0.0.1  Bcast:10.0.0.255", "10.0.0.1", "None"),
    ("inet addr:10.0.0.01  Bcast:10.0.0.255  Mask:255.0.0.0", "0.0.0.0", "None"),
    ("inet addr:  Bcast:10.0.0.255  Mask:255.0.0.0", "0.0.0.0", "None"),
    ("inet addr:", "0.0.0.0", "None")])
def test_the_live_address_is_the_one_that_ifconfig_prints(lan, line, address, mask):
    lan.tool("ifconfig", "br-lan", out=f"br-lan    Link encap:Ethernet\n          {line}\n          UP\n")
    a = lan.get(URI).json
    assert (a["lanIpv4Address"], a["lanIpv4SubMask"]) == (address, mask)


def test_of_two_live_addresses_the_first_is_told(lan):
    lan.tool("ifconfig", "br-lan", out="  inet addr:10.0.0.1  Bcast:x  Mask:255.0.0.0\n  inet addr:10.0.0.2  Bcast:x  Mask:y\n")
    a = lan.get(URI).json
    assert (a["lanIpv4Address"], a["lanIpv4SubMask"]) == ("10.0.0.1", "255.0.0.0")


@pytest.mark.parametrize("dead", [{"missing": True}, {"exit": 1}, {"signal": 9}, {"out": "no address here\n"}],
                         ids=["missing", "failing", "killed", "other words"])
def test_a_dead_ifconfig_leaves_no_address(lan, dead):
    lan.tool("ifconfig", "br-lan", **dead)
    a = lan.get(URI).json
    assert (a["result"], a["lanIpv4Address"], a["lanIpv4SubMask"]) == (0, "0.0.0.0", "None")
    assert (a["lanIpv6GlobalAddress"], a["lanIpv6LocalAddress"]) == ("None", "None")


@pytest.mark.parametrize("dead", [{"missing": True}, {"exit": 1}, {"out": "default via\n"}, {"out": "10.0.0.0/8 dev x\n"}],
                         ids=["missing", "failing", "cut", "no default route"])
def test_a_dead_ip_leaves_no_gateway(lan, dead):
    set_mode(lan, "ap", proto="dhcp")
    if "missing" in dead:
        lan.tool("ip", **dead)
    else:
        lan.tool("ip", "route", **dead)
        lan.tool("ip", "-6", "r", "s", **dead)
    a = lan.get(URI).json
    assert (a["lanIpv4Gateway"], a["lanIpv6Gateway"]) == ("None", "None")
    assert a["lanIpv4Dns1"] == "192.168.0.254"


@pytest.mark.parametrize("resolv_conf, told", [
    (None, ("None", "None", "None", "None")),
    ("", ("None", "None", "None", "None")),
    ("nameserver\nnameservers 1.1.1.1\nsearch nameserver\n", ("None", "None", "None", "None")),
    ("nameserver 1.1.1.1", ("1.1.1.1", "None", "None", "None")),
    ("nameserver ::1\nnameserver 1.1.1.1\n", ("1.1.1.1", "None", "::1", "None")),
    ("\t nameserver \t 1.1.1.1 # x\nnameserver 2.2.2.2\nnameserver 3.3.3.3\n", ("1.1.1.1", "2.2.2.2", "None", "None")),
    ("nameserver " + "f" * 80 + "\n", ("None", "None", "f" * 63, "None"))])
def test_live_dns_are_the_first_two_of_each_family(lan, resolv_conf, told):
    set_mode(lan, "ap", proto="dhcp")
    if resolv_conf is None:
        lan.remove("/tmp/resolv.conf.auto")
    else:
        lan.write("/tmp/resolv.conf.auto", resolv_conf)
    a = lan.get(URI).json
    assert (a["lanIpv4Dns1"], a["lanIpv4Dns2"], a["lanIpv6Dns1"], a["lanIpv6Dns2"]) == told


@pytest.mark.parametrize("stored, auto", [("0", 0), ("1", 5), ("7", 5), ("off", 0)])
def test_without_automatic_ipv6_only_the_global_address_is_told(lan, stored, auto):
    set_mode(lan, "ap", proto="dhcp", ipv6=stored)
    a = lan.get(URI).json
    assert a["ipv6AutoIp"] == auto
    assert a["lanIpv6GlobalAddress"] == "2001:db8:10e7:10::1"
    rest = [a[key] for key in ("lanIpv6LocalAddress", "lanIpv6Gateway", "lanIpv6Dns1", "lanIpv6Dns2")]
    assert rest == (["fe80::290:feff:fe12:3450", "fe80::254", "2001:db8::53", "2001:db8::54"] if auto else ["None"] * 4)


def test_the_first_ipv6_address_of_each_scope_is_told(lan):
    lan.tool("ifconfig", "br-lan", out="          inet6 addr: 2001:db8::1/64 Scope:Global\n"
             "          inet6 addr: fe80::1/64 Scope:Link\n          inet6 addr: fe80::2/64 Scope:Link\n"
             "          inet6 addr: 2001:db8::2/64 Scope:Global\n")
    a = lan.get(URI).json
    assert (a["lanIpv6GlobalAddress"], a["lanIpv6LocalAddress"]) == ("2001:db8::1", "fe80::1")


def test_an_interface_without_ipv6_has_none(lan):
    lan.tool("ifconfig", "br-lan", out="          inet addr:192.168.0.1  Bcast:192.168.0.255  Mask:255.255.255.0\n")
    a = lan.get(URI).json
    assert (a["lanIpv6GlobalAddress"], a["lanIpv6LocalAddress"]) == ("None", "None")


# Dead jose, hostile texts.

@pytest.mark.parametrize("dead", [{"missing": True}, {"exit": 1}, {"signal": 9}], ids=["missing", "failing", "killed"])
def test_an_answer_without_jose_is_a_plain_result_1(lan, dead):
    if "missing" in dead:
        lan.tool("jose", missing=True)
    else:
        lan.tool("jose", *ENCRYPT, exact=True, **dead)
    a = lan.get(URI)
    assert not a.encrypted and a.body == b'{"result": 1}'
    assert "Failed to allocate memory for jwe_str.\n" in messages(lan)


STORED = {key: text for key, text in HOSTILE.items() if text}  # a package holds no empty option


@pytest.mark.parametrize("text", STORED.values(), ids=STORED)
def test_stored_texts_are_told_as_json_within_their_bounds(lan, text):
    set_mode(lan, "ap", proto="static", gateway=text, dns=[text, text])
    lan.set("network.@device[0].macaddr", text)
    a = lan.get(URI).json
    for key in ("lanMacAddress", "lanIpv4Gateway", "lanIpv4Dns1", "lanIpv4Dns2"):
        assert a[key] == shown(cut(text, 31)), key
    lan.assert_nothing_ran()


@pytest.mark.parametrize("text", HOSTILE.values(), ids=HOSTILE)
def test_texts_of_the_tools_are_told_as_json(lan, text):
    set_mode(lan, "ap", proto="dhcp")
    lan.tool("ifconfig", "br-lan", out=f"          inet addr:10.0.0.1  Bcast:x  Mask:{text}\n"
             f"          inet6 addr: {text}/64 Scope:Link\n          inet6 addr: {text}/64 Scope:Global\n")
    lan.tool("ip", "route", out=f"default via {text} dev br-lan\n")
    lan.tool("ip", "-6", "r", "s", out=f"default via {text} dev br-lan\n")
    lan.write("/tmp/resolv.conf.auto", f"nameserver {text}\nnameserver {text}\n")
    a = lan.get(URI)
    assert list(a.json) == CLIENT_KEYS and a.json["lanIpv4Address"] == "10.0.0.1"
    assert all(len(value.replace("\ufffd", "?").encode()) <= 63 for value in a.json.values() if isinstance(value, str))
    lan.assert_nothing_ran()
