"""GET /api/v1/router/wan-info: the document, the modes, and what the packages hold."""

import itertools

import pytest

from wan_info_setup import ADDRESSES, HOST, LINE, LINK, SWITCHES, TUNNEL, info, tunnel
from wan_setup import (ADDRESS_SCRIPT, ENCRYPT, MODES, TUNNEL_TOOL, TUNNELS, URI, addresses, set_wan, stored, told,
                       wan)  # noqa: F401 (fixtures)

IPIP = ["ipipService", "ipipV4Address", "ipipBrAddress", "ipipInterfaceId", "ipipResettingUrl", "ipipUserId", "ipipPassword"]


# The document.

def test_the_document_of_a_line_with_dhcp(wan):
    set_wan(wan, hostname="unit", autoflag="2", qvilas_res="18")
    wan.set("system.easysetup.http_redirect_enable", "1")
    wan.write("/sys/class/net/br-lan/address", "00:90:fe:12:34:50\n")
    wan.write("/sys/class/net/eth1/address", "00:90:fe:12:34:51\n")
    wan.write("/sys/class/net/eth1/carrier", "1\n")
    addresses(wan, *LINE)
    answer = wan.get(URI)
    assert answer.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert answer.encrypted
    assert answer.text.startswith('{ "result": 0, "version": 1, "wanConfig": { "lanMacAddress": "00:90:fe:12:34:50", ')
    assert list(answer.json) == ["result", "version", "wanConfig"]
    assert list(answer.json["wanConfig"].items()) == [
        ("lanMacAddress", "00:90:fe:12:34:50"), ("wanMacAddress", "00:90:fe:12:34:51"), ("wanLinkStatus", 1),
        ("wanAutoSelectStatus", 2), ("wanMethod", 0), ("wanHb46ppMethod", 0), ("wanMethodStr", "IPアドレス自動取得"),
        ("wanIpv6Method", 0), ("vneAutoChangeStatus", 0), ("pppoeMtu", 1454), ("wanIpv4Address", "203.0.113.10"),
        ("wanIpv4SubMask", "255.255.255.0"), ("wanIpv4Gateway", "203.0.113.1"), ("wanIpv4Dns1", "203.0.113.53"),
        ("wanIpv4Dns2", "203.0.113.54"), ("wanIpv6GlobalAddress", "2001:db8::10/64"), ("wanIpv6LocalAddress", "fe80::2/64"),
        ("wanIpv6CeAddress", "None"), ("wanIpv6Gateway", "fe80::1"), ("wanIpv6Dns1", "2001:db8::53"),
        ("wanIpv6Dns2", "2001:db8::54"), ("wanIpv4AvailablePorts", "none"), ("dhcpcHostName", "unit"),
        ("captivePortalStatus", 1), ("natAccelerationEnable", 1), ("uPnPIGD", "1"), ("previousInternetLineAutoResult", 1)]


def test_the_document_of_a_tunnel(wan):
    tunnel(wan, *TUNNEL)
    addresses(wan, *LINE)
    assert info(wan) == {
        **info(wan), "wanMethod": 3, "wanHb46ppMethod": 1, "wanMethodStr": "v6プラス", "wanIpv4Address": "198.51.100.7",
        "wanIpv4SubMask": "None", "wanIpv4Gateway": "None", "wanIpv4Dns1": "None", "wanIpv4Dns2": "None",
        "wanIpv6GlobalAddress": "2001:db8::7/64", "wanIpv6LocalAddress": "fe80::2/64",
        "wanIpv6CeAddress": "2001:db8:ce::1", "wanIpv6Gateway": "fe80::1", "wanIpv6Dns1": "2001:db8::53",
        "wanIpv6Dns2": "2001:db8::54", "wanIpv4AvailablePorts": "5136-5151"}


@pytest.mark.parametrize("mode", MODES)
def test_the_members_stand_in_their_order(wan, mode):
    set_wan(wan, mode=mode, username="user", password="secret")
    own = {"DS-Lite": ["aftrAddress"], "IPIP6": IPIP}.get(mode, [])
    for button_mode in ("router_mode", "ap_mode", "wb_mode"):
        wan.set("system.@system[0].button_mode", button_mode)
        wan.forget_calls()
        routed = button_mode == "router_mode" and mode != "AP"
        assert list(info(wan)) == [*LINK, *(["wanIpv6Method"] if routed else []), "vneAutoChangeStatus", "pppoeUserName",
                                   "pppoePassword", "pppoeMtu", *(ADDRESSES if routed else []), *HOST, *own, *SWITCHES]
        assert wan.commands() == ([TUNNEL_TOOL] if mode in TUNNELS else []) + ([ADDRESS_SCRIPT] if routed else [])


def test_reading_changes_nothing(wan):
    tunnel(wan, *TUNNEL)
    before = stored(wan)
    info(wan)
    assert stored(wan) == before


def test_each_request_reads_afresh(wan):
    tunnel(wan, *TUNNEL)
    addresses(wan, *LINE)
    assert info(wan)["wanIpv6CeAddress"] == "2001:db8:ce::1"
    wan.tool(TUNNEL_TOOL, out="IPv4: 198.51.100.8\n")
    after = info(wan)
    assert (after["wanIpv4Address"], after["wanIpv6CeAddress"], after["wanMethodStr"]) == ("198.51.100.8", "None", "")
    assert (after["wanHb46ppMethod"], after["wanIpv6GlobalAddress"]) == (0, "2001:db8::10/64")


# wanMethod.

FIXED = {"DHCP": (0, "IPアドレス自動取得"), "STATIC": (1, "IPアドレス固定設定"), "PPPOE": (2, "PPPoE認証")}


@pytest.mark.parametrize("mode", [*MODES, "", "rubbish"])
def test_a_repeater_is_method_8_whatever_the_mode(wan, mode):
    set_wan(wan, mode=mode or None)
    wan.set("system.@system[0].button_mode", "wb_mode")
    a = info(wan)
    assert (a["wanMethod"], a["wanMethodStr"]) == (8, "リピーターモード")
    assert "wanIpv4Address" not in a and "wanIpv6Method" not in a
    assert not wan.logged("Invalid mode")


@pytest.mark.parametrize("button_mode", ["wb_mode2", "wb_mode_x"])
def test_a_repeater_is_told_by_its_first_letters(wan, button_mode):
    wan.set("system.@system[0].button_mode", button_mode)
    assert info(wan)["wanMethod"] == 8


@pytest.mark.parametrize("mode", FIXED)
def test_the_plain_modes_have_fixed_names(wan, mode):
    for button_mode, tail in itertools.product(("router_mode", "ap_mode", "other"), ("", "x", "-2")):
        set_wan(wan, mode=mode + tail)
        wan.set("system.@system[0].button_mode", button_mode)
        a = info(wan)
        assert (a["wanMethod"], a["wanMethodStr"]) == FIXED[mode], (button_mode, tail)


@pytest.mark.parametrize("mode", TUNNELS)
def test_the_tunnel_modes_carry_the_providers_name(wan, mode):
    for tail in ("", "x", "-2"):
        tunnel(wan, *TUNNEL, mode=mode + tail)
        wan.forget_calls()
        a = info(wan)
        assert (a["wanMethod"], a["wanMethodStr"]) == (MODES.index(mode), "v6プラス")
        assert wan.commands() == [TUNNEL_TOOL, ADDRESS_SCRIPT]


@pytest.mark.parametrize("button_mode", ["router_mode", "ap_mode", "ap_mode2"])
@pytest.mark.parametrize("mode", ["AP", "APx"])
def test_an_access_point_is_method_7_without_addresses(wan, mode, button_mode):
    set_wan(wan, mode=mode)
    wan.set("system.@system[0].button_mode", button_mode)
    a = info(wan)
    assert (a["wanMethod"], a["wanMethodStr"]) == (7, "APモード")
    assert "wanIpv6Method" not in a and not set(ADDRESSES) & set(a)
    wan.assert_calls()


@pytest.mark.parametrize("mode, button_mode", [("AP", "other"), ("AP", None), ("dhcp", "router_mode"), ("DHC", "router_mode"),
                                               ("MAP", "router_mode"), (" DHCP", "router_mode"), ("STDPRO", "ap_mode"),
                                               ("A", "ap_mode"), (None, "router_mode"), ("wb_mode", "router_mode")])
def test_an_unknown_mode_is_method_0_without_a_name(wan, mode, button_mode):
    set_wan(wan, mode=mode)
    wan.set("system.@system[0].button_mode", button_mode)
    a = info(wan)
    assert (a["wanMethod"], a["wanMethodStr"]) == (0, "")
    assert wan.logged(f"Invalid mode, modeValue = {mode or ''}.", priority=3)


def test_a_mode_is_read_up_to_15_bytes(wan):
    set_wan(wan, mode="0123456789abcdefgh")
    info(wan)
    assert wan.logged("Invalid mode, modeValue = 0123456789abcde.", priority=3)


@pytest.mark.parametrize("mode", [*MODES[:3], "AP"])
def test_outside_the_tunnel_modes_the_tool_is_not_asked(wan, mode):
    tunnel(wan, *TUNNEL, mode=mode)
    a = info(wan)
    assert a["wanHb46ppMethod"] == 0
    assert a.get("wanIpv6CeAddress", "None") == "None"
    assert wan.calls(TUNNEL_TOOL) == []


@pytest.mark.parametrize("slaac, dhcpv6pd, code", [
    ("1", "0", 1), ("1", "1", 1), ("1", None, 1), ("01", "1", 1), ("0", "0", 0), (None, None, 0), ("0", "1", 2),
    (None, "1", 2), ("2", "1", 2), ("2", "2", 0), ("x", "x", 0), ("0", "2", 0), ("1x", "0", 1)])
def test_the_ipv6_method_comes_from_two_switches(wan, slaac, dhcpv6pd, code):
    set_wan(wan, slaac=slaac, dhcpv6pd=dhcpv6pd)
    assert info(wan)["wanIpv6Method"] == code


@pytest.mark.parametrize("service, code", [("v6plus", 1), ("v6plus2", 1), ("transix", 2), ("transix-x", 2), ("v6connect", 3),
                                           ("v6connects", 3), ("manual", 0), (None, 0), ("other", 0), ("V6plus", 0),
                                           ("v6plu", 0), ("v6", 0)])
def test_the_ipip_service_has_a_code(wan, service, code):
    set_wan(wan, mode="IPIP6", v6service=service)
    assert info(wan)["ipipService"] == code


PREVIOUS = {1: (2, 18, 34, 130, 146, 162), 2: (4, 20, 36, 132, 148, 164), 3: (65, 66), 4: (67, 68), 5: (71, 168), 6: (69,)}
LISTED = {value: result for result, values in PREVIOUS.items() for value in values}
UNLISTED = sorted({near for value in LISTED for near in (value - 2, value - 1, value + 1, value + 2)} - set(LISTED))


@pytest.mark.parametrize("result", PREVIOUS)
def test_each_listed_line_detection_has_its_result(wan, result):
    for value in PREVIOUS[result]:
        set_wan(wan, qvilas_res=str(value))
        assert info(wan)["previousInternetLineAutoResult"] == result, value


def test_every_other_line_detection_is_0(wan):
    for value in [None, "", "x", "-2", "00", "255", "256", "65538", *map(str, UNLISTED)]:
        set_wan(wan, qvilas_res=value or None)
        assert info(wan)["previousInternetLineAutoResult"] == 0, value


@pytest.mark.parametrize("text, result", [("69", 6), ("70", 0), ("069", 6), (" 69", 6), ("69x", 6)])
def test_a_line_detection_is_read_as_a_number(wan, text, result):
    set_wan(wan, qvilas_res=text)
    assert info(wan)["previousInternetLineAutoResult"] == result


# PPPoE and the rest of the options.

@pytest.mark.parametrize("stored_mtu, told_mtu", [(None, 1454), ("1500", 1492), ("1454", 1446), ("8", 0), ("0", -8), ("x", -8),
                                                  ("-1", -9), ("123456789", 1234559)])
def test_the_mtu_is_told_without_its_header(wan, stored_mtu, told_mtu):
    set_wan(wan, mtu=stored_mtu)
    assert info(wan)["pppoeMtu"] == told_mtu


@pytest.mark.parametrize("option, member", [("username", "pppoeUserName"), ("password", "pppoePassword")])
def test_a_credential_is_left_out_when_it_is_empty(wan, option, member):
    assert member not in info(wan)
    set_wan(wan, **{option: "x"})
    assert info(wan)[member] == "x"


@pytest.mark.parametrize("own, kept, name", [("a", "b", "a"), ("a", None, "a"), (None, "b", "b"), (None, None, "")])
def test_the_host_name_has_a_second_source(wan, own, kept, name):
    set_wan(wan, hostname=own)
    wan.set("network.backwan.hostname", kept)
    assert info(wan)["dhcpcHostName"] == name


@pytest.mark.parametrize("text, status", [("1", 1), ("0", 0), (None, 0), ("x", 0)])
def test_the_captive_portal_switch(wan, text, status):
    wan.set("system.easysetup.http_redirect_enable", text)
    assert info(wan)["captivePortalStatus"] == status


@pytest.mark.parametrize("text, status", [("0", 0), ("1", 1), ("2", 2), ("x", 0)])
def test_the_nat_acceleration_switch(wan, text, status):
    wan.set("ecm.global.acceleration", text)
    assert info(wan)["natAccelerationEnable"] == status
    assert not wan.logged("Not found ecm.global.acceleration")


def test_nat_acceleration_is_on_where_nothing_is_stored(wan):
    wan.set("ecm.global.acceleration", None)
    assert info(wan)["natAccelerationEnable"] == 1
    wan.no_config("ecm")
    assert info(wan)["natAccelerationEnable"] == 1
    assert wan.logged("Not found ecm.global.acceleration ,use default 1.", priority=3)


@pytest.mark.parametrize("text", ["0", "1", "3", "on", "", "12345678"])
def test_the_upnp_switch_is_told_as_its_text(wan, text):
    wan.set("upnpd.config.enabled", text or None)
    assert info(wan)["uPnPIGD"] == text[:7]


@pytest.mark.parametrize("text, status", [("0", 0), ("2", 2), ("7", 7), ("x", 0), (None, 0)])
def test_the_automatic_selection(wan, text, status):
    set_wan(wan, autoflag=text)
    assert info(wan)["wanAutoSelectStatus"] == status


def test_the_options_of_ds_lite_and_ipip(wan):
    set_wan(wan, mode="DS-Lite", aftr="2001:db8::a")
    assert info(wan)["aftrAddress"] == "2001:db8::a"
    set_wan(wan, mode="IPIP6", v6service="v6connect", ip4addr="192.0.2.1", braddr="2001:db8::b", interfaceid="::5",
            url="http://p.example/", ipipusername="id", ipippasswd="secret")
    a = info(wan)
    assert [a[name] for name in IPIP] == [3, "192.0.2.1", "2001:db8::b", "::5", "http://p.example/", "id", "secret"]


def test_missing_options_of_ds_lite_and_ipip_are_empty(wan):
    set_wan(wan, mode="DS-Lite")
    assert info(wan)["aftrAddress"] == ""
    set_wan(wan, mode="IPIP6")
    a = info(wan)
    assert [a[name] for name in IPIP] == [0, "", "", "", "", "", ""]


@pytest.mark.parametrize("option, member, size", [
    ("username", "pppoeUserName", 65), ("password", "pppoePassword", 65), ("hostname", "dhcpcHostName", 32),
    ("aftr", "aftrAddress", 132), ("ip4addr", "ipipV4Address", 16), ("braddr", "ipipBrAddress", 40),
    ("interfaceid", "ipipInterfaceId", 32), ("url", "ipipResettingUrl", 64), ("ipipusername", "ipipUserId", 64),
    ("ipippasswd", "ipipPassword", 64)])
def test_an_option_is_told_up_to_its_size(wan, option, member, size):
    set_wan(wan, mode="DS-Lite" if option == "aftr" else "IPIP6")
    for length in (size - 1, size, 200):
        set_wan(wan, **{option: "x" * length})
        assert info(wan)[member] == "x" * (size - 1), length


# The kernel's files.

@pytest.mark.parametrize("content, address", [("aa:bb:cc:dd:ee:ff\n", "aa:bb:cc:dd:ee:ff"), ("aa\r\nbb\n", "aa"), ("aa", "aa"),
                                              ("x" * 18 + "\n", "x" * 18), ("x" * 300, "x" * 19)])
@pytest.mark.parametrize("device, member", [("eth1", "wanMacAddress"), ("br-lan", "lanMacAddress")])
def test_a_mac_is_the_first_line_of_its_file(wan, device, member, content, address):
    wan.write(f"/sys/class/net/{device}/address", content)
    assert info(wan)[member] == address


@pytest.mark.parametrize("device, member, message", [("eth1", "wanMacAddress", "get wanMac fail!"),
                                                     ("br-lan", "lanMacAddress", "get lanMac fail!")])
@pytest.mark.parametrize("content, reason", [(None, "open file failed."), ("", "get macaddr fail!")])
def test_an_unreadable_mac_is_empty(wan, device, member, message, content, reason):
    path = f"/sys/class/net/{device}/address"
    wan.remove(path) if content is None else wan.write(path, content)
    assert info(wan)[member] == ""
    assert wan.logged(reason, priority=3) and wan.logged(message, priority=3)


@pytest.mark.parametrize("content, status", [("1\n", 1), ("0\n", 0), ("", 0), (None, 0), ("x", 0), ("0\n1\n", 0),
                                             ("00000001", 0), ("0000001", 1)])
def test_the_link_is_the_carrier_of_the_wan_port(wan, content, status):
    path = "/sys/class/net/eth1/carrier"
    wan.remove(path) if content is None else wan.write(path, content)
    assert info(wan)["wanLinkStatus"] == status


# Missing sections.

@pytest.mark.parametrize("missing", ["section", "package"])
def test_without_a_system_section_the_body_is_null(wan, missing):
    if missing == "section":
        wan.config("system", "config easysetup 'easysetup'\n\toption http_redirect_enable '0'\n")
    else:
        wan.no_config("system")
    answer = wan.get(URI)
    assert answer.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert (answer.encrypted, answer.text) == (True, "null")
    assert wan.logged("Invalid system.system section.", priority=3)
    wan.assert_calls()


@pytest.mark.parametrize("enable, role", [("0", "none"), ("0", "agent"), ("1", "controller"), ("1", "xagent"), (None, None),
                                          ("x", "agent")])
def test_without_a_wan_section_the_body_is_null(wan, enable, role):
    wan.set("network.wan", None)
    wan.set("button_mesh.easymesh.enable", enable)
    wan.set("button_mesh.easymesh.role", role)
    answer = wan.get(URI)
    assert (answer.status, answer.encrypted, answer.text) == (200, True, "null")
    assert wan.logged("Invalid network.wan section.", priority=3)


@pytest.mark.parametrize("enable, role", [("1", "agent"), ("01", "agent"), ("1x", "agent2")])
def test_a_mesh_agent_needs_no_wan_section(wan, enable, role):
    wan.set("network.wan", None)
    wan.set("network.backwan.hostname", "agent-host")
    wan.set("button_mesh.easymesh.enable", enable)
    wan.set("button_mesh.easymesh.role", role)
    wan.set("system.@system[0].button_mode", "wb_mode")
    a = info(wan)
    assert list(a) == [*LINK, "vneAutoChangeStatus", "pppoeMtu", *HOST, *SWITCHES]
    assert (a["wanMethod"], a["pppoeMtu"], a["dhcpcHostName"], a["wanAutoSelectStatus"]) == (8, 1454, "agent-host", 0)


def test_a_mesh_agent_in_router_mode_has_addresses(wan):
    wan.set("network.wan", None)
    wan.set("button_mesh.easymesh.enable", "1")
    wan.set("button_mesh.easymesh.role", "agent")
    addresses(wan, *LINE)
    a = info(wan)
    assert (a["wanMethod"], a["wanMethodStr"], a["wanIpv6Method"], a["wanIpv4Address"]) == (0, "", 0, "203.0.113.10")
    assert wan.logged("Invalid mode, modeValue = .", priority=3)


def test_an_answer_that_cannot_be_encrypted_is_a_plain_refusal(wan):
    wan.tool("jose", *ENCRYPT, exact=True, exit=1)
    answer = wan.get(URI)
    assert (answer.encrypted, answer.text) == (False, '{"result": 1}')
    assert wan.alive()


def test_every_default_of_an_empty_router(bare_router):
    bare_router.config("system", "config system\n\toption button_mode 'router_mode'\n")
    bare_router.config("network", "config interface 'wan'\n")
    addresses(bare_router)
    a = info(bare_router)
    assert {name: a[name] for name in a if "Mac" not in name and name != "wanLinkStatus"} == {
        "wanAutoSelectStatus": 0, "wanMethod": 0, "wanHb46ppMethod": 0, "wanMethodStr": "", "wanIpv6Method": 0,
        "vneAutoChangeStatus": 0, "pppoeMtu": 1454, **{name: "None" for name in ADDRESSES[:-1]},
        "wanIpv4AvailablePorts": "none", "dhcpcHostName": "", "captivePortalStatus": 0, "natAccelerationEnable": 1,
        "uPnPIGD": "", "previousInternetLineAutoResult": 0}
    assert told(bare_router, "Not found ecm.global.acceleration ,use default 1.")


# The log.

def functions(router, text):
    """The functions under whose name a message is logged."""
    return {line.function for line in router.log() if text in line.text}


def test_a_unit_without_an_operating_mode_is_told_in_the_log(wan):
    wan.set("system.@system[0].op_mode", None)
    assert wan.get(URI).json["result"] == 0
    assert wan.logged("find tuple system.@system[0].op_mode failed.", priority=3)


def test_messages_stand_under_the_name_of_the_handler(wan):
    set_wan(wan, mode="other")
    wan.set("ecm.global.acceleration", None)
    wan.tool(ADDRESS_SCRIPT, missing=True)
    wan.get(URI)
    for text in ("Invalid mode, modeValue", "Not found ecm.global.acceleration"):
        assert functions(wan, text) == {"handle_get_wanInfo_json"}, text
