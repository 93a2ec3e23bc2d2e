"""POST /api/v1/router/wan-info: into the access point mode and back, and what a change deletes of the old mode."""

import pytest

from wan_setup import DELETED, LONG_WAIT, MODE_OPTIONS, MODES, apply, set_wan, static_unit, stored, wan  # noqa: F401

PORTS = "network.@device[0].ports"


def access_point(wan, **changes):
    set_wan(wan, mode="AP", proto="none")
    for address, value in {"network.lan.proto": "dhcp", "network.lan.ipaddr": None, "network.lan.netmask": None,
                           "dhcp.lan.ignore": "1", "system.@system[0].op_mode": "ap", PORTS: ["eth0", "eth1", "eth2"],
                           **changes}.items():
        wan.set(address, value)


@pytest.mark.parametrize("device, address, start", [("orvane", "192.168.0.1", "192.168.0.2"), ("tesmir", "192.168.2.1", "192.168.2.2"),
                                                    ("9999", "192.168.0.1", "192.168.0.2"), ("", "192.168.0.1", "192.168.0.2"),
                                                    (None, "192.168.0.1", "192.168.0.2"), ("0121-b", "192.168.2.1", "192.168.2.2")])
def test_leaving_an_access_point_the_lan_gets_the_brands_address(wan, device, address, start):
    access_point(wan, **{"network.backlan.ipaddr1": None})
    wan.remove("/tmp/deviceid") if device is None else wan.brand(device)
    assert apply(wan, wanMethod=0).text == LONG_WAIT
    assert (wan.option("network.lan.ipaddr"), wan.option("network.lan.netmask")) == (address, "255.255.255.0")
    assert wan.option("network.backlan.start") == start
    assert (wan.option("network.lan.proto"), wan.option("network.lan.ifname")) == ("static", "eth0")
    assert (wan.option("dhcp.lan.ignore"), wan.option("system.@system[0].op_mode")) == (None, "router")


@pytest.mark.parametrize("brand", ["orvane", "tesmir", "9999"])
def test_leaving_an_access_point_the_lan_gets_its_kept_address(wan, brand):
    access_point(wan, **{"network.backlan.ipaddr1": "10.1.2.3"})
    wan.brand(brand)
    apply(wan, wanMethod=2)
    assert wan.option("network.lan.ipaddr") == "10.1.2.3"
    assert wan.option("network.backlan.start") is None


def test_an_access_point_without_backlan_is_restored(wan):
    access_point(wan)
    wan.set("network.backlan", None)
    apply(wan, wanMethod=0)
    assert (wan.option("network.lan.ipaddr"), wan.option("network.lan.proto")) == ("192.168.0.1", "static")


@pytest.mark.parametrize("mode", ["APx", "AP-2"])
def test_an_access_point_is_told_by_its_first_letters(wan, mode):
    access_point(wan)
    set_wan(wan, mode=mode)
    apply(wan, wanMethod=0)
    assert wan.option("network.lan.ipaddr") == "192.168.7.1"


def lan(wan):
    return {address: value for address, value in stored(wan).items()
            if address.startswith(("network.lan.", "dhcp.", "network.backlan."))}


def test_from_another_mode_the_lan_keeps_its_address(wan):
    wan.set("dhcp.lan.ignore", "1")
    before = lan(wan)
    for mode in (*MODES[:7], "ap", "other"):
        set_wan(wan, mode=mode)
        apply(wan, wanMethod=0)
        assert lan(wan) == before, mode


@pytest.mark.parametrize("ports", [["eth0", "eth1", "eth2"], ["eth2", "eth0"], ["eth1"], None, ["eth0", "eth0", "eth1", "eth2"]])
def test_the_wan_port_is_in_the_lan_bridge_of_an_access_point_alone(wan, ports):
    for code in range(10):
        wan.set(PORTS, ports)
        apply(wan, wanMethod=code)
        assert wan.option(PORTS) == (["eth0", "eth1", "eth2"] if code == 7 else ["eth0", "eth2"]), code


def test_other_ports_stay_in_the_bridge(wan):
    wan.set(PORTS, ["eth0", "ath9", "eth1", "eth10"])
    apply(wan)
    assert wan.option(PORTS) == ["ath9", "eth10", "eth0", "eth2"]


def test_into_an_access_point_and_back(wan):
    before = stored(wan)
    assert apply(wan, wanMethod=7).text == LONG_WAIT
    assert (wan.option("network.lan.proto"), wan.option("network.lan.ipaddr"), wan.option(PORTS)) == (
        "dhcp", None, ["eth0", "eth1", "eth2"])
    assert apply(wan, wanMethod=0).text == LONG_WAIT
    assert stored(wan) == {**before, "network.lan.ipaddr": "192.168.7.1", "network.lan.ifname": "eth0",
                           "network.lan.ieee1905managed": "1", "network.lan.force_link": "1", "network.lan.globalIp": "1",
                           "network.wan.v6vne": "0", "network.backwan.change": "1"}


# What is deleted of the old mode.

@pytest.mark.parametrize("text, mode", [("S", "STATIC"), ("STAT", "STATIC"), ("P", "PPPOE"), ("MAP", "MAP-E"), ("I", "IPIP6"),
                                        ("IPIP", "IPIP6"), ("DS", "DS-Lite"), ("D", "DS-Lite")])
def test_a_part_of_a_modes_name_counts_as_the_mode(wan, text, mode):
    set_wan(wan, mode=text, **MODE_OPTIONS)
    apply(wan, wanMethod=6)
    assert {name for name in MODE_OPTIONS if wan.option(f"network.wan.{name}") is None} == set(DELETED[mode])


def test_other_texts_delete_nothing(wan):
    wan.set("network.wan_mape", "interface")
    for text in ("STATICX", "static", "PPPOE2", "MAP-E2", "IPIP6x", "DS-Lite2", "DHCP", "STDPROV", "AP", "wb_mode", "other"):
        set_wan(wan, mode=text, **MODE_OPTIONS)
        apply(wan, wanMethod=6)
        assert {name: wan.option(f"network.wan.{name}") for name in MODE_OPTIONS} == MODE_OPTIONS, text
        assert wan.option("network.wan_mape") == "interface"


@pytest.mark.parametrize("empty", [False, True])
def test_without_a_stored_mode_nothing_is_deleted(wan, empty):
    set_wan(wan, mode=None, **MODE_OPTIONS)
    if empty:
        wan.config("network", wan.read("/etc/config/network").replace("option dhcpv6pd", "option mode ''\n\toption dhcpv6pd"))
    assert apply(wan, wanMethod=3).text == LONG_WAIT
    assert {name: wan.option(f"network.wan.{name}") for name in MODE_OPTIONS} == MODE_OPTIONS
    assert wan.option("network.wan.mode") == "MAP-E"
    assert wan.logged("Invalid mode, mode = .", priority=3)


@pytest.mark.parametrize("text", ["STATIC", "STATIC2"])
def test_a_method_that_is_a_name_counts_as_missing(wan, text):
    static_unit(wan)
    apply(wan, wanMethod=text)
    assert wan.logged("wanMethod is not found.")
    assert (wan.option("network.wan.mode"), wan.option("network.wan.ipaddr")) == ("DHCP", None)


def test_deleting_what_is_not_there_is_no_failure(wan):
    for mode in MODES:
        set_wan(wan, mode=mode)
        assert apply(wan, wanMethod=6).json["result"] == 0
