"""GET /api/v1/router/wan-info: the line's addresses and name servers, as the address script finds them."""

import pytest

from wan_info_setup import LINK, ADDRESSES, HOST, SWITCHES, TUNNEL, info, tunnel
from wan_setup import ADDRESS_FILE, ADDRESS_SCRIPT, URI, addresses, cut, wan  # noqa: F401 (fixtures)

# The address file.

@pytest.mark.parametrize("count, first, second", [(0, "None", "None"), (1, "10.0.0.1", "None"), (2, "10.0.0.1", "10.0.0.2"),
                                                  (3, "10.0.0.1", "10.0.0.2")])
def test_only_the_first_two_ipv4_name_servers_are_told(wan, count, first, second):
    addresses(wan, *(f"nameserver 10.0.0.{i + 1}" for i in range(count)))
    a = info(wan)
    assert (a["wanIpv4Dns1"], a["wanIpv4Dns2"], a["wanIpv6Dns1"]) == (first, second, "None")


@pytest.mark.parametrize("count, first, second", [(1, "fd00::1", "None"), (2, "fd00::1", "fd00::2"), (4, "fd00::1", "fd00::2")])
def test_only_the_first_two_ipv6_name_servers_are_told(wan, count, first, second):
    addresses(wan, *(f"nameserver fd00::{i + 1}" for i in range(count)))
    a = info(wan)
    assert (a["wanIpv6Dns1"], a["wanIpv6Dns2"], a["wanIpv4Dns1"]) == (first, second, "None")


@pytest.mark.parametrize("text", ["256.1.1.1", "1.2.3", "1.2.3.4.5", "01.2.3.4x", "dns.example", "1" * 80])
def test_a_name_server_that_is_no_ipv4_address_counts_as_ipv6(wan, text):
    addresses(wan, f"nameserver {text}")
    a = info(wan)
    assert (a["wanIpv4Dns1"], a["wanIpv6Dns1"]) == ("None", cut(text, 64))


def test_the_first_address_counts_the_last_mask_and_gateway(wan):
    addresses(wan, "addr:10.0.0.1", "addr:10.0.0.2", "Mask:255.0.0.0", "Mask:255.255.0.0", "gatewayV4:10.0.0.8",
              "gatewayV4:10.0.0.9", "ipv6Global:fd00::1", "ipv6Global:fd00::2")
    a = info(wan)
    assert [a[name] for name in ADDRESSES[:3]] == ["10.0.0.1", "255.255.0.0", "10.0.0.9"]
    assert a["wanIpv6GlobalAddress"] == "fd00::1"


def test_a_key_counts_at_the_beginning_of_its_line(wan):
    addresses(wan, " addr:10.0.0.1", "xMask:255.0.0.0", "gatewayV5:10.0.0.8", "Addr:10.0.0.3", "noise", "")
    a = info(wan)
    assert [a[name] for name in ADDRESSES] == ["None"] * 11 + ["none"]


def test_the_value_follows_the_first_colon(wan):
    addresses(wan, "address of the line:10.0.0.1", "ipv6Link:fe80::2", "gatewayV6:fe80::1")
    a = info(wan)
    assert (a["wanIpv4Address"], a["wanIpv6LocalAddress"], a["wanIpv6Gateway"]) == ("10.0.0.1", "fe80::2", "fe80::1")


@pytest.mark.parametrize("key, member, kept", [("addr:", "wanIpv4Address", 15), ("Mask:", "wanIpv4SubMask", 15),
                                               ("gatewayV4:", "wanIpv4Gateway", 15), ("ipv6Global:", "wanIpv6GlobalAddress", 71),
                                               ("ipv6Link:", "wanIpv6LocalAddress", 63), ("gatewayV6:", "wanIpv6Gateway", 63),
                                               ("nameserver ", "wanIpv6Dns1", 63)])
def test_an_over_long_address_is_cut_to_its_field(wan, key, member, kept):
    for length in (kept, kept + 1, 100, 10000):
        addresses(wan, "noise", key + "z" * length)
        a = info(wan)
        assert a[member] == "z" * kept, length
        assert [a[name] for name in ADDRESSES[:-1] if name != member] == ["None"] * 10


@pytest.mark.parametrize("line", ["addr", "Mask", "gatewayV4", "ipv6Global", "ipv6Link", "gatewayV6", "nameserver", "addr:",
                                  "nameserver ", ":", " "])
def test_a_line_without_a_value_breaks_nothing(wan, line):
    addresses(wan, line, "gatewayV6:fe80::1")
    assert info(wan)["wanIpv6Gateway"] in ("fe80::1",)
    addresses(wan, text=line)
    info(wan)
    assert wan.alive()


def test_without_the_script_the_addresses_are_none(wan):
    wan.tool(ADDRESS_SCRIPT, missing=True)
    wan.write(ADDRESS_FILE, "addr:10.0.0.1\n")
    a = info(wan)
    assert [a[name] for name in ADDRESSES] == ["None"] * 11 + ["none"]
    assert list(a)[-5:] == [*HOST, *SWITCHES]
    assert wan.logged("The getIpAddr.sh file does not exist.", priority=3)


def test_without_the_script_a_tunnel_keeps_its_address(wan):
    wan.tool(ADDRESS_SCRIPT, missing=True)
    tunnel(wan, *TUNNEL)
    assert info(wan)["wanIpv4Address"] == "198.51.100.7"


def test_a_script_that_leaves_no_file_ends_the_answer_after_the_mtu(wan):
    wan.tool(ADDRESS_SCRIPT)
    answer = wan.get(URI)
    assert answer.encrypted and answer.json["result"] == 0
    assert list(answer.json["wanConfig"]) == [*LINK, "wanIpv6Method", "vneAutoChangeStatus", "pppoeMtu"]
    assert wan.logged("open /tmp/ipAddrResult fail.", priority=3)


def test_the_script_is_run_before_its_file_is_read(wan):
    wan.write(ADDRESS_FILE, "addr:10.0.0.1\n")
    addresses(wan, "addr:10.0.0.2")
    assert info(wan)["wanIpv4Address"] == "10.0.0.2"
    assert wan.commands() == [ADDRESS_SCRIPT]


def test_the_script_may_fail(wan):
    wan.tool(ADDRESS_SCRIPT, exit=1, write={ADDRESS_FILE: "addr:10.0.0.2\n"})
    assert info(wan)["wanIpv4Address"] == "10.0.0.2"
