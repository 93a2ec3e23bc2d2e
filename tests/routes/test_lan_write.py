"""POST /api/v1/lan: what is stored, what is started, and what is answered."""

import pytest
from lan_setup import (FAILED, IFCONFIG, OK, UNUSABLE, URI, assert_refused, messages, reloads, set_mode, settings, stored,
                       wait_for_chain)

ENCRYPT = ("jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c")


@pytest.fixture
def lan(router):
    router.tool("ifconfig", "br-lan", out=IFCONFIG)
    return router


def test_a_changed_address_is_answered_with_its_wait_time(lan):
    a = lan.post(URI, settings())
    assert a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert a.encrypted and a.text == OK
    assert stored(lan, "ipaddr", "netmask", "proto", "globalIp") == ["192.168.5.1", "255.255.255.0", "static", "0"]
    assert ("workMode:router\n", 7) in [(line.text, line.priority) for line in lan.log()]
    assert reloads(lan)


# The switches.

@pytest.mark.parametrize("value, expected", [(1, "1"), (0, "0"), ("1", "1"), (True, "1"), (2, "2"), (-1, "-1"), ("on", "0"),
                                             (1e20, "2147483647"), ([1], "0"), (None, "0")])
def test_the_protection_is_stored_as_a_number(lan, value, expected):
    assert lan.post(URI, settings(globalIpProtectionEnable=value)).text == OK
    assert stored(lan, "globalIp") == [expected]


def test_a_router_is_never_a_dhcp_client(lan):
    assert lan.post(URI, settings(dhcpv4Enable=1)).text == OK
    assert stored(lan, "proto", "ipaddr", "netmask") == ["static", "192.168.5.1", "255.255.255.0"]


@pytest.mark.parametrize("mode", ["ap", "re", "mesh"])
def test_a_dhcp_client_keeps_no_static_settings(lan, mode):
    set_mode(lan, mode, gateway="192.168.0.9", dns=["1.1.1.1", "2.2.2.2"])
    assert lan.post(URI, settings(dhcpv4Enable=1, lanIpv4Gateway="192.168.5.9", lanIpv4Dns1="1.1.1.1")).text == OK
    assert stored(lan, "proto", "ipaddr", "netmask", "gateway", "dns") == ["dhcp", None, None, None, None]
    assert reloads(lan)
    assert not any("fail to delete" in text for text in messages(lan))


def test_static_settings_that_a_new_dhcp_client_does_not_have_are_logged(lan):
    set_mode(lan, "ap", ipaddr=None, netmask=None)
    assert lan.post(URI, settings(dhcpv4Enable=1)).text == OK
    assert [text for text in messages(lan) if text.startswith("fail")] == [
        f"fail to delete network.lan.{option} by uci api\n" for option in ("ipaddr", "dns", "gateway", "netmask")]
    assert reloads(lan)


@pytest.mark.parametrize("flag", [2, -1])
def test_another_flag_is_a_dhcp_client_with_an_address(lan, flag):
    set_mode(lan, "ap", gateway="192.168.0.9")
    assert lan.post(URI, settings(dhcpv4Enable=flag)).text == OK
    assert stored(lan, "proto", "ipaddr", "netmask", "gateway") == ["dhcp", "192.168.5.1", "255.255.255.0", None]


def test_another_flag_needs_an_address_too(lan):
    set_mode(lan, "ap")
    assert_refused(lan, settings(dhcpv4Enable=2, lanIpv4Address=None))


# An address that stays.

def test_a_router_whose_address_stays_reloads_nothing(lan):
    lan.set("network.lan.proto", "dhcp")
    lan.set("network.lan.gateway", "192.168.0.9")
    a = lan.post(URI, settings(lanIpv4Address="192.168.0.1", globalIpProtectionEnable=0))
    assert a.text == OK
    assert not reloads(lan)
    lan.assert_calls("ifconfig br-lan")
    assert stored(lan, "proto", "globalIp", "ipaddr", "gateway") == ["static", "0", "192.168.0.1", "192.168.0.9"]


@pytest.mark.parametrize("change", [{"lanIpv4Address": "192.168.0.2"}, {"lanIpv4Address": "192.168.0.1", "lanIpv4SubMask": "255.255.0.0"}])
def test_a_change_of_address_or_mask_reloads(lan, change):
    assert lan.post(URI, settings(**change)).text == OK
    assert reloads(lan)


def test_a_mask_with_blanks_is_the_mask_without_them(lan):
    assert lan.post(URI, settings(lanIpv4Address="192.168.0.1", lanIpv4SubMask=" 255.255.255.0 ")).text == OK
    assert not reloads(lan)
    assert stored(lan, "netmask") == ["255.255.255.0"]


@pytest.mark.parametrize("mode", ["ap", "re"])
def test_an_access_point_whose_address_stays_reloads(lan, mode):
    set_mode(lan, mode)
    assert lan.post(URI, settings(lanIpv4Address="192.168.0.1")).text == OK
    assert reloads(lan)
    assert lan.calls("ifconfig") == []


@pytest.mark.parametrize("dead", [{"missing": True}, {"exit": 1}, {"out": "x\n"}], ids=["missing", "failing", "other words"])
def test_an_address_that_ifconfig_does_not_tell_counts_as_changed(lan, dead):
    lan.tool("ifconfig", "br-lan", **dead)
    assert lan.post(URI, settings(lanIpv4Address="192.168.0.1")).text == OK
    assert reloads(lan)


# Gateway and DNS.

@pytest.mark.parametrize("mode", ["ap", "re"])
def test_a_static_client_stores_gateway_and_dns(lan, mode):
    set_mode(lan, mode, dns=["8.8.8.8", "9.9.9.9"])
    lan.write("/tmp/dnsmasq.d/ipv4_dns.conf", "server=8.8.8.8\n")
    a = lan.post(URI, settings(lanIpv4Gateway="192.168.5.9", lanIpv4Dns1="1.1.1.1", lanIpv4Dns2="2.2.2.2"))
    assert a.text == OK
    assert stored(lan, "proto", "ipaddr", "netmask", "gateway", "dns") == [
        "static", "192.168.5.1", "255.255.255.0", "192.168.5.9", ["1.1.1.1", "2.2.2.2"]]
    assert not lan.exists("/tmp/dnsmasq.d/ipv4_dns.conf")
    assert reloads(lan)


@pytest.mark.parametrize("before, dns2, after", [
    (None, None, ["1.1.1.1"]), (None, "2.2.2.2", ["1.1.1.1", "2.2.2.2"]), (["8.8.8.8"], "127.0.0.1", ["1.1.1.1"]),
    (["8.8.8.8", "9.9.9.9", "7.7.7.7"], "2.2.2.2", ["7.7.7.7", "1.1.1.1", "2.2.2.2"]),
    (["1.1.1.1"], None, ["1.1.1.1"])])
def test_new_dns_take_the_place_of_the_first_two(lan, before, dns2, after):
    set_mode(lan, "ap", dns=before)
    assert lan.post(URI, settings(lanIpv4Gateway="192.168.5.9", lanIpv4Dns1="1.1.1.1", lanIpv4Dns2=dns2)).text == OK
    assert stored(lan, "dns") == [after]


def test_the_dns_file_of_dnsmasq_goes_before_the_reload(lan):
    set_mode(lan, "ap")
    lan.record("rm")
    lan.post(URI, settings(lanIpv4Gateway="192.168.5.9", lanIpv4Dns1="1.1.1.1"))
    wait_for_chain(lan)
    assert lan.commands()[:2] == ["rm /tmp/dnsmasq.d/ipv4_dns.conf", "sleep 2"]


@pytest.mark.parametrize("ignore", ["0", None, "11"])
@pytest.mark.parametrize("mode", ["ap", "re"])
def test_with_the_dhcp_server_on_gateway_and_dns_end_the_change_without_a_reload(lan, mode, ignore):
    set_mode(lan, mode, gateway="192.168.0.9", dns=["8.8.8.8"])
    lan.set("dhcp.lan.ignore", ignore)
    a = lan.post(URI, settings(lanIpv4Gateway="192.168.5.9", lanIpv4Dns1="1.1.1.1"))
    assert a.text == OK
    assert messages(lan)[-1] == "fail to set network.lan.gateway by uci api\n"
    assert stored(lan, "ipaddr", "gateway", "dns") == ["192.168.5.1", "192.168.0.9", ["8.8.8.8"]]
    assert not reloads(lan) and lan.commands() == []


@pytest.mark.parametrize("server", [False, True], ids=["server off", "server on"])
@pytest.mark.parametrize("given, gateway, dns", [
    ({}, None, None), ({"lanIpv4Gateway": "192.168.5.9"}, "192.168.0.9", None),
    ({"lanIpv4Dns1": "1.1.1.1"}, None, ["8.8.8.8"]), ({"lanIpv4Dns2": "1.1.1.1"}, None, None)])
def test_half_of_gateway_and_dns_is_not_stored_and_the_other_half_is_deleted(lan, server, given, gateway, dns):
    set_mode(lan, "ap", dhcp_server=server, gateway="192.168.0.9", dns=["8.8.8.8"])
    assert lan.post(URI, settings(**given)).text == OK
    assert stored(lan, "gateway", "dns") == [gateway, dns]
    assert reloads(lan)


@pytest.mark.parametrize("mode", ["router", "mesh"])
def test_a_router_stores_neither_gateway_nor_dns(lan, mode):
    set_mode(lan, mode, gateway="192.168.0.9", dns=["8.8.8.8"])
    assert lan.post(URI, settings(lanIpv4Gateway="192.168.5.9", lanIpv4Dns1="1.1.1.1")).text == OK
    assert stored(lan, "gateway", "dns") == ["192.168.0.9", ["8.8.8.8"]]
    assert lan.post(URI, settings(lanIpv4Address="192.168.5.2")).text == OK
    assert stored(lan, "gateway", "dns") == [None, None]


# What fails.

def test_a_lan_section_that_is_missing_is_result_2(lan):
    lan.set("network.lan", None)
    assert_refused(lan, settings(), answer=FAILED)
    assert messages(lan)[-1] == "fail to set network.lan.globalIp by uci api\n"


@pytest.mark.parametrize("network", [None, "config interface 'lan\n\toption x"], ids=["missing", "broken"])
def test_a_network_package_that_cannot_be_read_is_result_2(lan, network):
    if network is None:
        lan.no_config("network")
    else:
        lan.config("network", network)
    assert_refused(lan, settings(), answer=FAILED)


def test_an_address_that_cannot_be_stored_is_result_2(lan):
    lan.tool("ifconfig", "br-lan", write={"/etc/config/network": "config interface 'wan'\n"})  # gone half-way
    a = lan.post(URI, settings())
    assert a.encrypted and a.text == FAILED
    assert messages(lan)[-1] == "fail to set network.lan.ipaddr by uci api\n"
    assert not reloads(lan)


@pytest.mark.parametrize("dead", [{"exit": 1}, {"signal": 9}], ids=["failing", "killed"])
def test_a_change_whose_answer_cannot_be_encrypted_is_a_plain_result_1(lan, dead):
    lan.tool("jose", *ENCRYPT, exact=True, **dead)
    a = lan.post(URI, settings())
    assert not a.encrypted and a.body == UNUSABLE.encode()
    assert stored(lan, "ipaddr") == ["192.168.5.1"]


def test_without_jose_nothing_changes(lan):
    lan.tool("jose", missing=True)
    assert lan.post(URI, settings()).body == b"decrypt error"
    assert stored(lan, "ipaddr") == ["192.168.0.1"]
