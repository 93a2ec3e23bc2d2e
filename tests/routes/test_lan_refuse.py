"""POST /api/v1/lan: bodies that are no request, addresses that are refused or dropped, hostile texts."""

import pytest
from lan_setup import IFCONFIG, OK, UNUSABLE, URI, assert_refused, messages, set_mode, settings, stored

from kit import GARBAGE_BODIES, HOSTILE

NO_MODE = "Fail to get system.@system[0].op_mode value by uci api\n"
KEYS = ["globalIpProtectionEnable", "dhcpv4Enable", "lanIpv4Address", "lanIpv4SubMask", "lanIpv4Gateway", "lanIpv4Dns1",
        "lanIpv4Dns2"]


@pytest.fixture
def lan(router):
    router.tool("ifconfig", "br-lan", out=IFCONFIG)
    return router


# Bodies.

def test_no_body_is_result_1(lan):
    assert_refused(lan, None)
    assert messages(lan) == ["empty data is passed on seting lan network config\n"]


OBJECTS = {"empty-object", "invalid-utf8", "huge-number", "wrong-types"}


@pytest.mark.parametrize("name", sorted(OBJECTS))
def test_an_object_without_an_address_is_result_1(lan, name):
    assert_refused(lan, GARBAGE_BODIES[name])


@pytest.mark.parametrize("name", sorted(set(GARBAGE_BODIES) - OBJECTS))
def test_a_body_that_is_no_object_is_answered_with_nothing(lan, name):
    assert lan.post(URI, GARBAGE_BODIES[name]).empty
    assert messages(lan) == ["can't parse data to json format.\n"]
    assert lan.commands() == []


def test_an_unreadable_mode_is_answered_with_nothing(lan):
    lan.set("system.@system[0].op_mode", None)
    before = lan.read("/etc/config/network")
    assert lan.post(URI, settings()).empty
    assert messages(lan)[-1] == NO_MODE
    assert lan.read("/etc/config/network") == before and lan.commands() == []


def test_a_router_without_packages_answers_nothing(bare_router):
    assert bare_router.post(URI, settings()).empty
    assert messages(bare_router)[-1] == NO_MODE


def test_every_missing_key_is_logged_in_the_order_of_reading(lan):
    assert_refused(lan, {})
    assert messages(lan) == [f"{key} is not found.\n" for key in KEYS]


# Addresses.

@pytest.mark.parametrize("address", ["192.168.1.0", "192.168.1.255"], ids=["network", "broadcast"])
@pytest.mark.parametrize("mode, dhcp", [("router", 0), ("ap", 0), ("ap", 1), ("re", 1)])
def test_a_network_or_broadcast_address_is_result_1(lan, mode, dhcp, address):
    set_mode(lan, mode)
    assert_refused(lan, settings(lanIpv4Address=address, dhcpv4Enable=dhcp, lanIpv4Gateway="192.168.1.9"))
    assert messages(lan) == []  # the rest of the request is not looked at


@pytest.mark.parametrize("address, mask", [("192.168.5.1", "255.255.255.255"), ("10.0.0.0", "255.0.0.0"),
                                           ("10.255.255.255", "255.0.0.0"), ("192.168.1.255", "255.255.254.0"),
                                           ("192.168.0.0", "255.255.254.0")])
def test_the_mask_decides_which_addresses_are_its_ends(lan, address, mask):
    assert_refused(lan, settings(lanIpv4Address=address, lanIpv4SubMask=mask))


def test_an_address_that_ends_like_a_broadcast_in_a_wider_network_is_taken(lan):
    assert lan.post(URI, settings(lanIpv4Address="192.168.0.255", lanIpv4SubMask="255.255.254.0")).text == OK
    assert stored(lan, "ipaddr", "netmask") == ["192.168.0.255", "255.255.254.0"]


def test_the_first_address_of_a_reserved_range_is_taken(lan):
    assert lan.post(URI, settings(lanIpv4Address="224.0.0.0", lanIpv4SubMask="128.0.0.0")).text == OK
    assert stored(lan, "ipaddr", "netmask") == ["224.0.0.0", "128.0.0.0"]


@pytest.mark.parametrize("address, log", [
    ("224.0.0.1", " passed ip should not be in 224.0.0.0/4\n"), ("239.1.2.3", " passed ip should not be in 224.0.0.0/4\n"),
    ("240.0.0.1", " passed ip should not be in 240.0.0.0/4\n"), ("127.0.0.1", " passed ip should not be in 127.0.0.0/8\n"),
    ("192.168.5", "Invalid format of ip \n"), ("192.168.05.1", "Invalid format of ip \n"),
    ("192.168.5.256", "Invalid format of ip \n"), ("192.168.5.1 ", "Invalid format of ip \n"),
    ("192.168.5.1.", "Invalid format of ip \n"), (5, "Invalid format of ip \n"), ({"a": 1}, "lanIpv4Address is not found.\n"), (None, "lanIpv4Address is not found.\n"),
    (True, "lanIpv4Address is not found.\n"),
    ("0.0.0.0", None), ("255.255.255.255", None), ("", None)])
def test_an_unusable_address_where_one_is_needed_is_result_1(lan, address, log):
    assert_refused(lan, settings(lanIpv4Address=address))
    assert (log in messages(lan)) if log else messages(lan) == [f"{key} is not found.\n" for key in KEYS[4:]]


@pytest.mark.parametrize("mask", ["255.0.255.0", "0.0.0.0", "255.255.255", "255.255.255.0.0", "255.255.255.00", "255.255.253.0",
                                  "254.255.255.0", "x", "", " ", 24, None, [], {}, True, "255.255.255.128\n", "255x.255.255.0",
                                  "255.255.255.0\t", "255.255.255.128\r"])
def test_an_unusable_mask_drops_the_address_and_that_is_result_1_where_one_is_needed(lan, mask):
    assert_refused(lan, settings(lanIpv4SubMask=mask))


@pytest.mark.parametrize("change", [{"lanIpv4Address": "224.0.0.1"}, {"lanIpv4SubMask": "255.0.255.0"},
                                    {"lanIpv4Address": None}, {"lanIpv4Address": None, "lanIpv4SubMask": None}])
def test_a_dhcp_client_goes_on_without_the_address_that_was_dropped(lan, change):
    set_mode(lan, "ap")
    assert lan.post(URI, settings(dhcpv4Enable=1, **change)).text == OK
    assert stored(lan, "proto", "ipaddr", "netmask") == ["dhcp", None, None]


@pytest.mark.parametrize("mode", ["router", "ap", "re"])
def test_a_gateway_outside_the_network_is_result_1(lan, mode):
    set_mode(lan, mode)
    assert_refused(lan, settings(lanIpv4Gateway="192.168.6.1"))
    assert messages(lan) == ["#Unreasonable IP and gateway addresses\nip:192.168.5.1,vai:192.168.6.1 and mask:255.255.255.0\n"]


BLANK_MASKS = pytest.mark.parametrize("mask", ["255.255.255.0 ", " 255.255.255.0", "255.255.255. 0", "2 5 5.255.255.0   "])


@BLANK_MASKS
@pytest.mark.parametrize("address", ["192.168.5.0", "192.168.5.255"])
def test_a_mask_with_blanks_lets_no_network_address_pass(lan, mask, address):
    assert_refused(lan, settings(lanIpv4SubMask=mask, lanIpv4Address=address))


@BLANK_MASKS
def test_a_mask_with_blanks_is_compared_with_a_gateway(lan, mask):
    assert_refused(lan, settings(lanIpv4SubMask=mask, lanIpv4Gateway="192.168.6.9"))
    assert messages(lan)[0].startswith("#Unreasonable IP and gateway addresses\n")


@BLANK_MASKS
def test_a_mask_is_stored_without_its_blanks(lan, mask):
    assert lan.post(URI, settings(lanIpv4SubMask=mask, lanIpv4Gateway="192.168.5.9")).text == OK
    assert stored(lan, "netmask") == ["255.255.255.0"]


def test_a_gateway_without_an_address_is_not_compared(lan):
    set_mode(lan, "ap")
    assert lan.post(URI, settings(dhcpv4Enable=1, lanIpv4Address=None, lanIpv4Gateway="10.0.0.1")).text == OK


# Hostile texts.

@pytest.mark.parametrize("key", ["lanIpv4Address", "lanIpv4SubMask"])
def test_no_hostile_text_is_taken_for_an_address_or_a_mask(lan, key):
    before = lan.read("/etc/config/network")
    for name, text in HOSTILE.items():
        assert lan.post(URI, settings(**{key: text})).text == UNUSABLE, name
    assert lan.read("/etc/config/network") == before and lan.commands() == []
    lan.assert_nothing_ran()


@pytest.mark.parametrize("key, gateway, dns", [
    ("lanIpv4Gateway", None, ["8.8.8.8"]), ("lanIpv4Dns1", "192.168.5.9", None),
    ("lanIpv4Dns2", "192.168.5.9", ["1.1.1.1"])])
def test_a_hostile_gateway_or_dns_is_dropped(lan, key, gateway, dns):
    request = settings(lanIpv4Gateway="192.168.5.9", lanIpv4Dns1="1.1.1.1", lanIpv4Dns2="2.2.2.2")
    for name, text in HOSTILE.items():
        set_mode(lan, "ap", gateway="192.168.5.9", dns=["8.8.8.8"])
        assert lan.post(URI, {**request, key: text}).text == OK, name
        assert stored(lan, "gateway", "dns") == [gateway, dns], name
    lan.assert_nothing_ran()


@pytest.mark.parametrize("key", ["globalIpProtectionEnable", "dhcpv4Enable"])
def test_a_hostile_switch_is_0(lan, key):
    for name, text in HOSTILE.items():
        assert lan.post(URI, settings(**{key: text})).text == OK, name
        assert stored(lan, "proto", "globalIp") == ["static", "0"], name
    lan.assert_nothing_ran()


def test_hostile_keys_are_ignored(lan):
    assert lan.post(URI, {**{text: text for text in HOSTILE.values()}, **settings()}).text == OK
    assert stored(lan, "ipaddr") == ["192.168.5.1"]
    lan.assert_nothing_ran()


@pytest.mark.parametrize("mask", ["255.255.128;touch /tmp/pwned.0", "255.255.128`touch /tmp/pwned`.0", "128'\";touch /tmp/pwned.0.0.0",
                                  "255.255.128%s%n%99999d.0", "255.$(touch /tmp/pwned).0.0", "255$(touch /tmp/pwned).255.0.0"])
def test_a_mask_that_goes_on_behind_its_digits_is_none(lan, mask):
    assert_refused(lan, settings(lanIpv4SubMask=mask))
    lan.assert_nothing_ran()


def test_a_mask_is_cut_at_31_bytes(lan):
    assert_refused(lan, settings(lanIpv4SubMask=" " * 20 + "255.255.255.0"))  # of which the beginning is left
    assert lan.post(URI, settings(lanIpv4SubMask="255.255.255.0" + " " * 40)).text == OK
    assert stored(lan, "netmask") == ["255.255.255.0"]
