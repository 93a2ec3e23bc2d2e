"""POST /api/v1/router/wan-info: how fields and switches are read and stored."""

import pytest

from wan_setup import (KEYS, RELOAD, SHORT_WAIT, UNUSABLE, UPNP_RELOAD, apply, cut, packages, restore, set_wan,
                       stored, wan)  # noqa: F401 (fixtures)

# Field, mode, option, and the bytes of its buffer.
TEXTS = [("pppoeUserName", 2, "username", 65), ("pppoePassword", 2, "password", 65), ("dhcpcHostName", 0, "hostname", 32),
         ("wanIpv4Address", 1, "ipaddr", 16), ("wanIpv4subMask", 1, "netmask", 16), ("wanIpv4Gateway", 1, "gateway", 16),
         ("wanIpv4Dns1", 1, "dns", 16), ("wanIpv4Dns2", 1, "dns", 16), ("aftrAddress", 4, "aftr", 132),
         ("ipipV4Address", 5, "ip4addr", 16), ("ipipBrAddress", 5, "braddr", 64), ("ipipInterfaceId", 5, "interfaceid", 32),
         ("ipipResettingUrl", 5, "url", 64), ("ipipUserId", 5, "ipipusername", 32), ("ipipPassword", 5, "ipippasswd", 32)]


# Field, option, first number that is refused, and whether negative ones are refused (all are).
SWITCHES = [("wanAutoSelectStatus", "network.wan.autoflag", 3), ("vneAutoChangeStatus", "network.wan.v6vne", 2),
            ("natAccelerationEnable", "ecm.global.acceleration", 2), ("uPnPIGD", "upnpd.config.enabled", 4),
            ("captivePortalStatus", "system.easysetup.http_redirect_enable", 2)]


# How fields are read.

@pytest.mark.parametrize("value", [3, "3", "03", 3.0])
def test_a_number_may_be_a_text(wan, value):
    apply(wan, wanMethod=value)
    assert wan.option("network.wan.mode") == "MAP-E"


@pytest.mark.parametrize("value", [" 3", "3x", "3 ", "+3", "3.0", "", 3.5, None, [], [3], {}, {"a": 3}])
def test_what_is_no_number_is_a_missing_one(wan, value):
    set_wan(wan, mode="STATIC", mtu="1400")
    for address in ("network.wan.autoflag", "ecm.global.acceleration", "upnpd.config.enabled"):
        wan.set(address, "1")
    answer = apply(wan, wanMethod=value, wanAutoSelectStatus=value, natAccelerationEnable=value, uPnPIGD=value, pppoeMtu=value)
    assert answer.json["result"] == 0
    for key in ("wanMethod", "wanAutoSelectStatus", "natAccelerationEnable", "uPnPIGD", "pppoeMtu"):
        assert wan.logged(f"{key} is not found."), key
    assert (wan.option("network.wan.mode"), wan.option("network.wan.mtu")) == ("DHCP", "1400")
    for address in ("network.wan.autoflag", "ecm.global.acceleration", "upnpd.config.enabled"):
        assert wan.option(address) is None


@pytest.mark.parametrize("value", ["", None, [], {}, "abc"])
def test_a_missing_mtu_stores_none(wan, value):
    apply(wan, wanMethod=2, pppoeMtu=value)
    assert wan.option("network.wan.mtu") is None


@pytest.mark.parametrize("value", [True, False, [1, "a"], {"a": 1}])
def test_what_is_no_text_is_a_missing_one(wan, value):
    set_wan(wan, hostname="kept")
    assert apply(wan, dhcpcHostName=value).text == SHORT_WAIT
    assert wan.logged("dhcpcHostName is not found.")
    assert wan.option("network.wan.hostname") == "kept"


# Field, and whether it may hold line ends.
LINES = [(field, mode, field in ("pppoePassword", "ipipPassword")) for field, mode, _, _ in TEXTS]


@pytest.mark.parametrize("field, mode, is_secret", LINES, ids=[row[0] for row in LINES])
def test_a_text_that_cannot_be_stored_is_refused_before_anything_is_written(wan, field, mode, is_secret):
    before = stored(wan)
    for text in ("\x01", "ab\x1b[31m", "ab\x0b") + (() if is_secret else ("ab\n", "a\rb", "\tab", "ab\x7f")):
        answer = apply(wan, wanMethod=mode, natAccelerationEnable=0, uPnPIGD=0, **{field: text})
        assert (answer.encrypted, answer.text, stored(wan)) == (True, UNUSABLE, before), text
        assert wan.logged(f"{field} holds control characters.", priority=3)
        wan.assert_calls(*RELOAD)


def test_a_text_that_cannot_be_stored_is_refused_whatever_the_method(wan):
    before = stored(wan)
    assert apply(wan, wanMethod=0, ipipPassword="\x02").text == UNUSABLE
    assert stored(wan) == before


@pytest.mark.parametrize("value, text", [(12, "12"), (1.5, "1.5"), ("x", "x"), (-7, "-7")])
def test_a_text_is_the_values_text_form(wan, value, text):
    apply(wan, dhcpcHostName=value)
    assert wan.option("network.wan.hostname") == text


def test_a_null_field_is_an_empty_one(wan):
    set_wan(wan, hostname="kept")
    answer = apply(wan, {"wanConfig": {key: None for key in KEYS}})
    assert answer.text == SHORT_WAIT
    assert (wan.option("network.wan.mode"), wan.option("network.wan.hostname")) == ("DHCP", "kept")
    assert wan.alive()


def test_a_text_ends_at_a_nul(wan):
    apply(wan, dhcpcHostName="ab\0cd")
    assert wan.option("network.wan.hostname") == "ab"


@pytest.mark.parametrize("field, mode, option, size", TEXTS, ids=[row[0] for row in TEXTS])
def test_a_text_is_stored_up_to_its_size(wan, field, mode, option, size):
    unit = packages(wan)
    for length in (1, size - 2, size - 1, size, size + 1, 300):
        restore(wan, unit)
        apply(wan, wanMethod=mode, **{field: "x" * length})
        text = "x" * min(length, size - 1)
        assert wan.option(f"network.wan.{option}") == ([text] if option == "dns" else text), length


@pytest.mark.parametrize("field, mode, option, size", TEXTS, ids=[row[0] for row in TEXTS])
def test_a_text_is_cut_by_bytes(wan, field, mode, option, size):
    text = "あ" * size
    apply(wan, wanMethod=mode, **{field: text})
    kept = wan.option(f"network.wan.{option}")
    assert kept in (cut(text, size), [cut(text, size)])


@pytest.mark.parametrize("field, address", [("wanAutoSelectStatus", "network.wan.autoflag"),
                                                  ("vneAutoChangeStatus", "network.wan.v6vne"),
                                                  ("captivePortalStatus", "system.easysetup.http_redirect_enable"),
                                                  ("natAccelerationEnable", "ecm.global.acceleration"),
                                                  ("uPnPIGD", "upnpd.config.enabled")])
def test_a_switch_is_stored_as_its_digits_up_to_its_size(wan, field, address):
    for value, text in (("01", "01"), ("0000001", "0000001"), ("00000012", "0000001"), (1.0, "1"), (True, "1"), (False, "0")):
        apply(wan, **{field: value})
        assert wan.option(address) == text, value


@pytest.mark.parametrize("field", ["wanMethod", "wanIPv6Method", "ipipService"])
def test_a_code_keeps_7_bytes_in_the_key_of_the_next_change(wan, field):
    apply(wan, **{"wanIPv6Method": None, "wanMethod": None, field: "0123456789"})
    assert wan.option("network.backwan.waninfobak") == "0123456"


# Switches.

@pytest.mark.parametrize("field, address, end", SWITCHES, ids=[row[0] for row in SWITCHES])
def test_a_switch_takes_each_number_of_its_range(wan, field, address, end):
    for number in range(end):
        for value in (number, str(number)):
            wan.set(address, "9")
            assert apply(wan, **{field: value}).text == SHORT_WAIT
            assert wan.option(address) == str(number)
    assert not wan.logged(f"Invalid {field} parameter")


@pytest.mark.parametrize("field, address, end", SWITCHES, ids=[row[0] for row in SWITCHES])
def test_a_number_beyond_its_range_is_logged_and_skipped(wan, field, address, end):
    wan.set(address, "1")
    for number in (end, end + 1, 255, -1, 9999999, -99999):
        answer = apply(wan, **{field: number})
        assert answer.text == SHORT_WAIT
        assert wan.logged(f"Invalid {field} parameter, waninfo->{field} = {number}", priority=3)
    assert wan.option(address) == "1"
    wan.assert_calls(*RELOAD, *(UPNP_RELOAD if field == "uPnPIGD" else []))


@pytest.mark.parametrize("field, address, end", SWITCHES, ids=[row[0] for row in SWITCHES])
@pytest.mark.parametrize("value", [None, ""])
def test_an_empty_switch_leaves_no_option_and_is_no_failure(wan, field, address, end, value):
    wan.set(address, "1")
    assert apply(wan, **{field: value}).text == SHORT_WAIT
    assert wan.option(address) is None
    assert not wan.logged(f"Invalid {field} parameter")


@pytest.mark.parametrize("value, slaac, dhcpv6pd, backup", [
    (0, "0", "0", {}), (1, "1", "0", {"network.backwan.slaac": "1"}), (2, "0", "1", {"network.backwan.dhcpv6pd": "1"}),
    (None, "0", "0", {}), ("1", "1", "0", {"network.backwan.slaac": "1"})])
def test_the_ipv6_method_sets_two_switches(wan, value, slaac, dhcpv6pd, backup):
    set_wan(wan, slaac="7", dhcpv6pd="7")
    before = stored(wan)
    apply(wan, wanIPv6Method=value)
    after = stored(wan)
    assert (after["network.wan.slaac"], after["network.wan.dhcpv6pd"]) == (slaac, dhcpv6pd)
    assert {a: v for a, v in after.items() if a not in before and a.startswith("network.backwan")} == backup


@pytest.mark.parametrize("value", [3, -1, 99])
def test_an_unknown_ipv6_method_is_logged_and_skipped(wan, value):
    set_wan(wan, slaac="7", dhcpv6pd="8")
    assert apply(wan, wanIPv6Method=value).text == SHORT_WAIT
    assert (wan.option("network.wan.slaac"), wan.option("network.wan.dhcpv6pd")) == ("7", "8")
    assert wan.logged(f"Invalid wanIPv6Method parameter, waninfo->wanIPv6Method = {value}", priority=3)
