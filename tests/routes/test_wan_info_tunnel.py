"""GET /api/v1/router/wan-info: the provider, and what the tunnel tool reports."""

import pytest

from wan_info_setup import ADDRESSES, LINE, TUNNEL, info, tunnel
from wan_setup import TUNNEL_TOOL, TUNNELS, addresses, set_wan, wan  # noqa: F401 (fixtures)

# The provider's name.

PROVIDERS = [("JPNE v6Plus", "v6プラス"), ("Biglobe IPv6 Option", "IPv6オプション"),
             ("OCN Virtual Connect", "OCNバーチャルコネクト"), ("Freebit IPv6 Premium", "その他MAP-Eサービス"),
             ("Unknown MAP-E", "その他MAP-Eサービス"), ("IMF transix", "transix"), ("Arteria Networks Xpass", "クロスパス"),
             ("Unknown DS-Lite", "その他DS-Liteサービス"), ("IPoE IPv6 Service", "IPv6 IPoEサービス"),
             ("Asahi Net v6Connect", "v6コネクト")]


@pytest.mark.parametrize("service, name", PROVIDERS, ids=[p[0] for p in PROVIDERS])
def test_a_known_provider_has_its_display_name(wan, service, name):
    for text in (service, f"{service} (fixed IP)"):
        tunnel(wan, f"VNE Service: {text}")
        assert info(wan)["wanMethodStr"] == name


@pytest.mark.parametrize("service, name", PROVIDERS, ids=[p[0] for p in PROVIDERS])
def test_a_providers_name_counts_whole_and_from_its_beginning(wan, service, name):
    for text in (service[:-1], f"x{service}", service.swapcase()):
        tunnel(wan, f"VNE Service: {text}")
        assert info(wan)["wanMethodStr"] == text


def test_an_unknown_provider_is_shown_as_it_is(wan):
    tunnel(wan, "VNE Service: Some Provider (beta) %s%n")
    assert info(wan)["wanMethodStr"] == "Some Provider (beta) %s%n"


@pytest.mark.parametrize("service, name", [("(Provider X)", "Provider X"), (" (Provider X) (Y)", "Provider X"), ("2 (X)", "X"),
                                           (" (日本)", "日本"), (" (open", "open"), (" ((X)", "(X")])
def test_standard_provisioning_shows_the_provider_in_its_parentheses(wan, service, name):
    tunnel(wan, f"VNE Service: Standard Provisioning Method{service}", mode="STDPROV")
    a = info(wan)
    assert (a["wanMethod"], a["wanMethodStr"]) == (6, name)


@pytest.mark.parametrize("service", ["", " ", " Provider X", " )(", " ()", " () (X)"])
def test_standard_provisioning_without_a_provider_has_no_name(wan, service):
    tunnel(wan, f"VNE Service: Standard Provisioning Method{service}", mode="STDPROV")
    assert info(wan)["wanMethodStr"] == ""
    assert wan.logged("sscanf error.", priority=7)


def test_a_long_provider_name_is_cut(wan):
    tunnel(wan, f"VNE Service: Standard Provisioning Method ({'n' * 300})", mode="STDPROV")
    name = info(wan)["wanMethodStr"]
    assert set(name) == {"n"} and 80 <= len(name) <= 99


# The codes.

@pytest.mark.parametrize("text, code", [("IPIP6", 3), ("IPIP6 fixed", 3), ("DS-Lite", 2), ("DS-Lite2", 2), ("MAP-E", 1),
                                        ("MAP-E/x", 1), ("", 0), ("map-e", 0), ("MAP", 0), ("other", 0), (" IPIP6", 0)])
def test_the_provisioned_method_comes_from_the_tunnel_tool(wan, text, code):
    for mode in TUNNELS:
        tunnel(wan, f"MAP-E/DS-Lite/IPIP6 mode: {text}", mode=mode)
        assert info(wan)["wanHb46ppMethod"] == code, mode


# The tunnel tool's lines.

def test_a_marker_may_stand_anywhere_in_its_line(wan):
    tunnel(wan, "[1] MAP-E/DS-Lite/IPIP6 mode: DS-Lite", "   CE: 2001:db8:ce::2", "*IPv4: 198.51.100.9")
    a = info(wan)
    assert (a["wanHb46ppMethod"], a["wanIpv6CeAddress"], a["wanIpv4Address"]) == (2, "2001:db8:ce::2", "198.51.100.9")


def test_the_first_marker_in_the_tables_order_takes_the_line(wan):
    tunnel(wan, "IPv4: 1.2.3.4 CE: 2001:db8:ce::3", "AFTR: x VNE Service: CE: name")
    a = info(wan)
    assert (a["wanIpv6CeAddress"], a["wanMethodStr"]) == ("2001:db8:ce::3", "CE: name")
    assert a["wanIpv4Address"] != "1.2.3.4 CE: 2001"


def test_a_later_line_replaces_an_earlier_one(wan):
    tunnel(wan, "CE: first", "CE: second")
    assert info(wan)["wanIpv6CeAddress"] == "second"


def test_lines_without_a_marker_are_ignored(wan):
    tunnel(wan, "", "noise", "CE:2001", "ipv4: 1.2.3.4", *TUNNEL[:4], "noise")
    a = info(wan)
    assert (a["wanIpv6CeAddress"], a["wanIpv4Address"]) == ("2001:db8:ce::1", "198.51.100.7")


def test_the_last_line_needs_no_line_end(wan):
    tunnel(wan)
    wan.tool(TUNNEL_TOOL, out="CE: 2001:db8:ce::4\nIPv4: 198.51.100.4")
    a = info(wan)
    assert (a["wanIpv6CeAddress"], a["wanIpv4Address"]) == ("2001:db8:ce::4", "198.51.100.4")


def test_each_tunnel_value_is_traced(wan):
    tunnel(wan, *TUNNEL)
    info(wan)
    for name, value in [("mode", "MAP-E"), ("vne_service", "JPNE v6Plus"), ("CE", "2001:db8:ce::1"), ("ipv4", "198.51.100.7"),
                        ("port", "5136-5151"), ("wan_global_addr", "2001:db8::7"), ("aftr", "2001:db8::a")]:
        assert wan.logged(f"g_ip4orip6Info.{name} is [{value}", priority=7), name


def test_ports_go_on_over_lines_without_a_separator(wan):
    tunnel(wan, "Port: 5136-5151 ", "9232-9247 ", "13328-13343")
    assert info(wan)["wanIpv4AvailablePorts"] == "5136-5151 9232-9247 13328-13343"


def test_a_second_port_marker_is_a_line_of_the_ports(wan):
    tunnel(wan, "Port: 1-2", "Port: 3-4")
    assert info(wan)["wanIpv4AvailablePorts"] == "1-2Port: 3-4"


@pytest.mark.parametrize("marker, member, unset", [
    ("MAP-E/DS-Lite/IPIP6 mode: IPIP6", "wanHb46ppMethod", 0), ("VNE Service: Other", "wanMethodStr", ""),
    ("CE: 2001:db8:ce::1", "wanIpv6CeAddress", "None"), ("WAN global address: 2001:db8::7", "wanIpv6GlobalAddress", "None"),
    ("IPv4: 198.51.100.7", "wanIpv4Address", None), ("AFTR: 2001:db8::a", None, None)])
def test_the_line_whose_marker_ends_the_ports_is_lost(wan, marker, member, unset):
    tunnel(wan, "Port: 1-2", "3-4", marker, "5-6")
    a = info(wan)
    assert a["wanIpv4AvailablePorts"] == "1-23-4"
    if unset is not None:
        assert a[member] == unset
    assert marker.split(": ")[1] not in a.values()


def test_what_follows_the_lost_line_is_read(wan):
    tunnel(wan, "Port: 1-2", "CE: lost", "CE: 2001:db8:ce::5", "IPv4: 198.51.100.5", "Port: 7-8")
    a = info(wan)
    assert (a["wanIpv6CeAddress"], a["wanIpv4Address"]) == ("2001:db8:ce::5", "198.51.100.5")
    assert a["wanIpv4AvailablePorts"] == "7-8"


def test_ports_are_bounded(wan):
    ports = [f"{1000 + i}-{2000 + i} " for i in range(400)]
    tunnel(wan, "CE: 2001:db8:ce::1", f"Port: {ports[0]}", *ports[1:])
    a = info(wan)
    assert a["wanIpv4AvailablePorts"] == "".join(ports)[:1023]
    assert a["wanIpv6CeAddress"] == "2001:db8:ce::1"


@pytest.mark.parametrize("line, member, kept", [("CE: ", "wanIpv6CeAddress", 63), ("IPv4: ", "wanIpv4Address", 15),
                                                ("WAN global address: ", "wanIpv6GlobalAddress", 63)])
def test_a_tunnel_value_is_cut_to_its_field(wan, line, member, kept):
    for length in (kept, kept + 1, 90, 5000):
        tunnel(wan, line + "a" * length)
        tail = "/64" if member == "wanIpv6GlobalAddress" else ""
        assert info(wan)[member] == "a" * kept + tail


def test_a_tunnel_that_has_no_global_address_shows_the_lines(wan):
    tunnel(wan, "WAN global address: ", "IPv4: 198.51.100.7")
    addresses(wan, *LINE)
    assert info(wan)["wanIpv6GlobalAddress"] == "2001:db8::10/64"


@pytest.mark.parametrize("mode", TUNNELS)
def test_the_addresses_of_a_tunnel_win(wan, mode):
    tunnel(wan, *TUNNEL, mode=mode)
    addresses(wan, *LINE)
    a = info(wan)
    assert (a["wanIpv4Address"], a["wanIpv6GlobalAddress"]) == ("198.51.100.7", "2001:db8::7/64")
    assert [a[name] for name in ADDRESSES[1:5]] == ["None"] * 4


@pytest.mark.parametrize("answer", [{"missing": True}, {"out": ""}], ids=["missing", "silent"])
def test_without_a_report_of_its_tool_a_tunnel_has_defaults(wan, answer):
    wan.tool(TUNNEL_TOOL, **answer)
    set_wan(wan, mode="MAP-E")
    a = info(wan)
    assert (a["wanMethod"], a["wanHb46ppMethod"], a["wanMethodStr"]) == (3, 0, "")
    assert [a[name] for name in ADDRESSES] == ["None"] * 11 + ["none"]


@pytest.mark.parametrize("answer", [{"exit": 3}, {"signal": 9}, {"out": "%s%n%x: \n"}], ids=["fails", "dies", "babbles"])
def test_a_broken_tunnel_tool_leaves_the_rest(wan, answer):
    set_wan(wan, mode="DS-Lite", aftr="2001:db8::a")
    wan.tool(TUNNEL_TOOL, **answer)
    addresses(wan, *LINE)
    a = info(wan)
    assert (a["wanMethod"], a["wanMethodStr"], a["aftrAddress"]) == (4, "", "2001:db8::a")
    assert a["wanIpv6LocalAddress"] == "fe80::2/64"
