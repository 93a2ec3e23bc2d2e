"""The WAN's routes through the web server with the real jose, on every line that the simulator has."""

import json
import os
import re
import socket
import time
from pathlib import Path

import pytest

import client
import sandbox
from waits import held_back, wait_for, wait_until

INFO = "/api/v1/router/wan-info"
FIRST = "/api/v1/system/config/waninit"
START = "/api/v1/pppoe/start"
RESPONSE = "/api/v1/pppoe/response"
RESULT = "/api/v1/pppoe/result"
REACHABILITY = "/api/v1/router/inetchk"

DHCP, STATIC, PPPOE, MAP_E, DS_LITE, IPIP6, STDPROV, AP = range(8)
NAMES = ("DHCP", "STATIC", "PPPOE", "MAP-E", "DS-Lite", "IPIP6", "STDPROV", "AP")
LINES = ("dhcp", "static", "pppoe", "map-e", "ds-lite", "ipip6", "map-e", "ap")
BRANDS = ("orvane", "tesmir")
LAN = {"orvane": "192.168.0.1", "tesmir": "192.168.2.1"}
NODES = [f"/sys/kernel/debug/ecm/{node}" for node in ("front_end_ipv4_stop", "front_end_ipv6_stop", "ecm_db/defunct_all")]
RELOAD = "/etc/init.d/network reload"
FINISHED = "logger -t LAN_INFO lan reload completely finished"
HOSTILE = ["Bob's", "$(touch /tmp/pwned)", "a\";touch /tmp/pwned;'", "a\\b\nc %s%n", "日本語 🛜", "`id`|x,<y>^"]


def request(method, **changes):
    return {"wanConfig": {
        "wanAutoSelectStatus": 0, "wanMethod": method, "wanIPv6Method": 2 if method in (MAP_E, DS_LITE, IPIP6, STDPROV) else 0,
        "vneAutoChangeStatus": 0, "pppoeMtu": 1446, "captivePortalStatus": 0, "natAccelerationEnable": 1, "uPnPIGD": 1,
        "pppoeUserName": "user@provider.example", "pppoePassword": "pppoe-key-1234", "dhcpcHostName": "",
        "wanIpv4Address": "203.0.113.20", "wanIpv4subMask": "255.255.255.0", "wanIpv4Gateway": "203.0.113.1",
        "wanIpv4Dns1": "203.0.113.53", "wanIpv4Dns2": "", "aftrAddress": "2001:db8:af::2", "ipipService": 1,
        "ipipV4Address": "198.51.100.9", "ipipBrAddress": "2001:db8:b::1", "ipipInterfaceId": "::c6:3364:900:0",
        "ipipResettingUrl": "http://update.provider.example/", "ipipUserId": "ipip-user", "ipipPassword": "ipip-key-1234",
        **changes}}


def accepted(wait):
    return {"result": 0, "version": 1, "waitTime": wait}


def wan_config(router):
    answer = router.get(INFO).json
    assert (answer["result"], answer["version"]) == (0, 1)
    return answer["wanConfig"]


def nodes(router):
    return [router.root.read(node).strip() for node in NODES]


@pytest.mark.parametrize("brand", BRANDS)
def test_every_route_answers_encrypted(live, brand):
    router = live(brand=brand)
    for answer, keys in (
            (router.get(INFO), ["result", "version", "wanConfig"]), (router.get(RESPONSE), ["result", "version", "response"]),
            (router.get(RESULT), ["result", "version", "connectResult"]),
            (router.get(REACHABILITY), ["result", "version", "inetchk"]),
            (router.post(START), ["result", "version", "waitTime"]),
            (router.post(INFO, request(DHCP)), ["result", "version", "waitTime"]),
            (router.post(FIRST), ["result", "version", "waitTime"])):
        assert answer.status == 200 and answer.encrypted
        assert list(answer.json) == keys and answer.json["result"] == 0


# --wan: wanMethod, wanHb46ppMethod, wanMethodStr, wanIpv4Address, response, connectResult, inetchk. None: it is missing.
CONDITIONS = {
    "dhcp": (DHCP, 0, "IPアドレス自動取得", "203.0.113.10", 1, 3, 1),
    "static": (STATIC, 0, "IPアドレス固定設定", "203.0.113.20", 1, 3, 1),
    "pppoe": (PPPOE, 0, "PPPoE認証", "198.51.100.23", 0, 0, 1),
    "map-e": (MAP_E, 1, "v6プラス", "198.51.100.7", 1, 3, 3),
    "ds-lite": (DS_LITE, 2, "transix", "192.0.0.2", 1, 3, 3),
    "ipip6": (IPIP6, 3, "v6プラス", "198.51.100.9", 1, 3, 3),
    "stdprov": (STDPROV, 1, "Example Net", "198.51.100.7", 1, 3, 3),
    "ap": (AP, 0, "APモード", None, 1, 3, 3),
    "down": (DHCP, 0, "IPアドレス自動取得", "None", 2, None, 0),
}


@pytest.mark.parametrize("brand", BRANDS)
@pytest.mark.parametrize("wan", CONDITIONS)
def test_each_line_shows_what_it_is(live, wan, brand):
    router = live(wan=wan, brand=brand)
    config = wan_config(router)
    seen = [config["wanMethod"], config["wanHb46ppMethod"], config["wanMethodStr"], config.get("wanIpv4Address"),
            router.get(RESPONSE).json["response"], router.get(RESULT).json.get("connectResult"),
            router.get(REACHABILITY).json["inetchk"]]
    assert tuple(seen) == CONDITIONS[wan]
    assert config["wanLinkStatus"] == (0 if wan == "down" else 1)
    assert (config["lanMacAddress"], config["wanMacAddress"]) == ("00:90:fe:12:34:50", "00:90:fe:12:34:51")


def test_an_access_point_needs_no_scenario(live):
    config = wan_config(live(mode="ap"))
    assert (config["wanMethod"], "wanIpv4Address" in config, "wanIpv6Method" in config) == (AP, False, False)


def test_a_repeater_says_so_whatever_its_method(live):
    router = live(mode="re")
    assert (wan_config(router)["wanMethod"], wan_config(router)["wanMethodStr"]) == (8, "リピーターモード")
    assert router.get(REACHABILITY).json["inetchk"] == 3


@pytest.mark.parametrize("mode, wan", [("re", "pppoe"), ("agent", "ap"), ("ap", "dhcp")])
def test_a_line_that_the_mode_has_not_is_refused(live, mode, wan):
    with pytest.raises(sandbox.SandboxError, match=f"--mode {mode}"):
        live(mode=mode, wan=wan)


def test_a_tunnel_has_its_addresses_and_ports(live):
    config = wan_config(live(wan="map-e"))
    assert config["wanIpv6CeAddress"] == "2001:db8:10e7:0:c6:3364:700:4100"
    assert config["wanIpv6GlobalAddress"] == "2001:db8:10e7::10/64"
    assert [config[key] for key in ("wanIpv4SubMask", "wanIpv4Gateway", "wanIpv4Dns1", "wanIpv4Dns2")] == ["None"] * 4
    assert [config[key] for key in ("wanIpv6Dns1", "wanIpv6Dns2")] == ["2001:db8::53", "2001:db8::54"]
    blocks = config["wanIpv4AvailablePorts"].split(" ")
    assert blocks == [f"{first}-{first + 15}" for first in range(5136, 65536, 4096)]


def test_the_tools_agree_on_the_line(live):
    router = live(wan="pppoe")
    status = json.loads(router.run("ifstatus", "wan"))
    assert (status["up"], status["proto"], status["l3_device"], status["errors"]) == (True, "pppoe", "pppoe-wan", [])
    assert status["ipv4-address"] == [{"address": "198.51.100.23", "mask": 32}]
    assert router.run("ip", "route").startswith(b"default via 198.51.100.1 dev pppoe-wan")

    router.root.write("/router/state/pppoe-login", "somebody\nelse\n")
    status = json.loads(router.run("ifstatus", "wan"))
    assert (status["up"], status["pending"], status["ipv4-address"]) == (False, True, [])
    assert status["errors"] == [{"subsystem": "pppoe", "code": "AUTH_TOPEER_FAILED"}]
    assert b"default" not in router.run("ip", "route")

    router.root.set_options({"network.wan.mode": "STATIC", "network.wan.proto": "static", "network.wan.ipaddr": "$(id)"})
    assert json.loads(router.run("ifstatus", "wan"))["ipv4-address"] == []


def test_a_factory_reset_does_not_plug_the_cable_in(live):
    router = live(wan="down")
    router.root.write("/tmp/left-over", "")
    router.run("/sbin/firstboot", "-r", "-y")
    wait_until(lambda: not router.root.exists("/tmp/left-over") and not router.root.exists("/router/reboot"), "the restart")
    assert wan_config(router)["wanLinkStatus"] == 0


# Changes of the method.

def walk(ways):
    """A walk from DHCP back to it that takes each of `ways` (from, to) once."""
    ways = {station: [to for start, to in ways if start == station] for station in range(8)}
    path, route = [DHCP], []
    while path:
        if ways[path[-1]]:
            path.append(ways[path[-1]].pop())
        else:
            route.append(path.pop())
    return route[::-1]


# What stands in network.wan for one method only.
OF_METHOD = {
    STATIC: {"ipaddr": "203.0.113.20", "netmask": "255.255.255.0", "gateway": "203.0.113.1", "dns": ["203.0.113.53"]},
    PPPOE: {"mtu": "1454", "keepalive": "5 60"},
    MAP_E: {},
    DS_LITE: {"aftr": "2001:db8:af::2"},
    IPIP6: {"v6service": "v6plus", "ip4addr": "198.51.100.9", "braddr": "2001:db8:b::1", "interfaceid": "::c6:3364:900:0",
            "url": "http://update.provider.example/", "ipipusername": "ipip-user", "ipippasswd": "ipip-key-1234"},
}
PROTOS = ("dhcp", "static", "pppoe", "none", "none", "none", "none", "none")
ADDRESSES = ("203.0.113.10", "203.0.113.20", "198.51.100.23", "198.51.100.7", "192.0.0.2", "198.51.100.9", "198.51.100.7",
             None)


def check_packages(router, method, brand):
    option = router.option
    assert (option("network.wan.mode"), option("network.wan.proto")) == (NAMES[method], PROTOS[method])
    for owner, options in OF_METHOD.items():
        for name, value in options.items():
            expected = value if owner == method else None
            assert option(f"network.wan.{name}") == expected or (name == "dns" and expected is None and
                                                                 option("network.wan.dns") in (None, [])), name
    is_ap = method == AP
    assert option("network.lan.proto") == ("dhcp" if is_ap else "static")
    assert option("network.lan.ipaddr") == (None if is_ap else LAN[brand])
    assert option("network.@device[0].ports") == (["eth0", "eth1", "eth2"] if is_ap else ["eth0", "eth2"])
    assert option("system.@system[0].op_mode") == ("ap" if is_ap else "router")


ALL_WAYS = [(old, new) for old in range(8) for new in range(8) if old != new]
INTO_AND_OUT_OF_AP = [way for way in ALL_WAYS if AP in way]  # where the brands differ


@pytest.mark.parametrize("brand, ways", [("orvane", ALL_WAYS), ("tesmir", INTO_AND_OUT_OF_AP)], ids=BRANDS)
def test_a_walk_takes_each_method_to_each_other(live, brand, ways):
    router = live(brand=brand, fast_time=os.environ["FAST_TIME_LIB"])
    router.root.set_options({"network.wan.mtu": None})  # PPPoE's own; the factory sets one, too
    route = walk(ways)
    assert sorted(zip(route, route[1:])) == sorted(ways)
    for old, new in zip(route, route[1:]):
        router.root.write("/router/state/wan-line", LINES[new] + "\n")
        plain = old <= PPPOE and new <= PPPOE
        assert router.post(INFO, request(new)).json == accepted(90 if plain else 300), (old, new)
        check_packages(router, new, brand)
        config = wan_config(router)
        assert (config["wanMethod"], config.get("wanIpv4Address")) == (new, ADDRESSES[new]), (old, new)
    wait_for(router, RELOAD, len(ways))


def test_the_same_method_again_takes_no_longer(live):
    router = live(wan="ipip6", fast_time=os.environ["FAST_TIME_LIB"])
    assert router.post(INFO, request(IPIP6)).json == accepted(90)
    assert router.post(INFO, request(IPIP6, ipipService=2)).json == accepted(300)
    assert (wan_config(router)["ipipService"], wan_config(router)["wanMethodStr"]) == (2, "transix")


def test_a_tunnel_that_the_line_lacks_is_down(live):
    router = live(wan="dhcp", fast_time=os.environ["FAST_TIME_LIB"])
    assert router.post(INFO, request(DS_LITE)).json == accepted(300)
    config = wan_config(router)
    assert (config["wanMethod"], config["wanHb46ppMethod"], config["wanMethodStr"]) == (DS_LITE, 0, "")
    assert (config["wanIpv4Address"], config["wanIpv4AvailablePorts"]) == ("None", "none")
    assert router.get(REACHABILITY).json == {"result": 1, "version": 1, "inetchk": 0}


def test_ipv6_is_reached_once_it_is_asked_for(live):
    router = live(fast_time=os.environ["FAST_TIME_LIB"])
    for method, inetchk in ((0, 1), (1, 3), (2, 3)):
        assert router.post(INFO, request(DHCP, wanIPv6Method=method)).json == accepted(90)
        assert wan_config(router)["wanIpv6Method"] == method
        assert router.get(REACHABILITY).json["inetchk"] == inetchk


def test_a_static_address_reaches_as_far_as_its_gateway(live):
    router = live(wan="static", fast_time=os.environ["FAST_TIME_LIB"])
    assert router.post(INFO, request(STATIC, wanIpv4Gateway="203.0.113.99")).json == accepted(90)
    assert "ip addr flush dev eth1" in router.calls()
    assert wan_config(router)["wanIpv4Gateway"] == "203.0.113.99"
    assert router.get(REACHABILITY).json["inetchk"] == 0


def test_what_a_request_leaves_out_counts_as_0_and_is_not_kept(live):
    router = live(wan="static", fast_time=os.environ["FAST_TIME_LIB"])
    router.root.set_options({"network.wan.hostname": "kept"})
    assert router.post(INFO, {"wanConfig": {"wanMethod": 1}}).json == accepted(90)
    assert [router.option(f"network.wan.{name}") for name in ("ipaddr", "netmask", "gateway")] == [None] * 3
    for option in ("network.wan.autoflag", "network.wan.v6vne", "ecm.global.acceleration", "upnpd.config.enabled",
                   "system.easysetup.http_redirect_enable"):
        assert router.option(option) is None, option
    assert router.post(INFO, {"wanConfig": {}}).json == accepted(90)
    config = wan_config(router)
    assert (config["wanMethod"], config["wanIpv6Method"], config["dhcpcHostName"]) == (DHCP, 0, "kept")


def test_a_number_out_of_its_range_is_left_out(live):
    router = live(fast_time=os.environ["FAST_TIME_LIB"])
    assert router.post(INFO, request(9, natAccelerationEnable=2, uPnPIGD="3", wanAutoSelectStatus=2)).json == accepted(300)
    config = wan_config(router)
    assert [config[key] for key in ("wanMethod", "natAccelerationEnable", "uPnPIGD", "wanAutoSelectStatus")] == [0, 1, "3", 2]
    assert "Invalid wanMethod parameter, waninfo->wanMethod = 9" in router.root.read("/var/log/messages.log")


# PPPoE.

def test_pppoe_is_probed_refused_and_let_in(live):
    router = live(wan="pppoe", fast_time=os.environ["FAST_TIME_LIB"])
    assert router.post(START).json == accepted(20)
    assert router.get(RESPONSE).json == {"result": 0, "version": 1, "response": 0}
    for password, expected in (("not the key", 1), ("pppoe-key-1234", 0)):
        assert router.post(INFO, request(PPPOE, pppoePassword=password)).json == accepted(90)
        assert wan_config(router)["pppoePassword"] == password
        assert router.get(RESULT).json == {"result": 0, "version": 1, "connectResult": expected}
    assert wan_config(router)["wanIpv4Address"] == "198.51.100.23"

    router.root.write("/router/state/wan-line", "dhcp\n")
    assert router.get(RESPONSE).json["response"] == 1
    assert router.get(RESULT).json["connectResult"] == 2


def test_pulling_the_cable_is_seen_at_once(live):
    router = live(wan="pppoe")
    router.root.write("/sys/class/net/eth1/carrier", "0\n")
    assert router.get(RESPONSE).json == {"result": 0, "version": 1, "response": 2}
    assert "/etc/qvpppoe_chk_cmd.sh" not in router.calls()
    assert router.get(RESULT).json == {"result": 1}
    assert router.post(START).json == {"result": 1}
    assert wan_config(router)["wanLinkStatus"] == 0

    router.root.write("/sys/class/net/eth1/carrier", "1\n")
    assert router.get(RESPONSE).json["response"] == 0
    assert router.get(RESULT).json["connectResult"] == 0


# What happens once the client is answered.

def daemons(router):
    """The program's processes but for the one that serves."""
    return [pid for pid in sandbox.find_programs(router._program.pid, "router-api") if pid != router.program_pid()]


def test_the_reload_outlives_the_request_and_keeps_its_order(live):
    router = live()
    started = time.monotonic()
    with held_back(router, "/etc/init.d/network"):  # the client is answered first
        assert router.post(INFO, request(DHCP, natAccelerationEnable=0, uPnPIGD=0)).json == accepted(90)
        reloading = daemons(router)
        assert len(reloading) == 1
        held = {os.readlink(f"/proc/{reloading[0]}/fd/{fd}") for fd in os.listdir(f"/proc/{reloading[0]}/fd")}
        assert not [name for name in held if name.startswith("socket:")], held
        assert router.get(INFO).json["wanConfig"]["natAccelerationEnable"] == 0  # and others are served meanwhile

    wait_for(router, "/etc/init.d/miniupnpd reload")
    assert time.monotonic() - started >= 4.0  # 2 s before the network's reload, 2 s before the UPnP daemon's
    calls = router.calls()
    assert [call for call in calls[calls.index(RELOAD):] if "init.d" in call or "logger" in call] == [
        RELOAD, FINISHED, "/etc/init.d/miniupnpd reload"]
    wait_until(lambda: nodes(router) == ["1", "1", "1"], "the acceleration's end")


def test_a_client_that_does_not_wait_for_its_answer_has_its_request_applied(live):
    router = live(fast_time=os.environ["FAST_TIME_LIB"])
    body = client.encrypt(json.dumps(request(STATIC)).encode())
    with socket.create_connection(("127.0.0.1", router.port)) as connection:
        connection.sendall(b"POST %s HTTP/1.1\r\nHost: x\r\nContent-Length: %d\r\n\r\n" % (INFO.encode(), len(body)) + body)
    wait_for(router, RELOAD)
    assert wan_config(router)["wanMethod"] == STATIC


def test_acceleration_goes_off_and_on_and_else_is_left_alone(live):
    router = live(fast_time=os.environ["FAST_TIME_LIB"])
    for enable, expected in ((0, "1"), (1, "0")):
        assert router.post(INFO, request(DHCP, natAccelerationEnable=enable)).json == accepted(90)
        wait_until(lambda: nodes(router) == [expected] * 3, f"acceleration {enable}")
        assert wan_config(router)["natAccelerationEnable"] == enable
    for node in NODES:
        router.root.write(node, "untouched\n")
    assert router.post(INFO, request(DHCP, uPnPIGD=0)).json == accepted(90)
    wait_for(router, "/etc/init.d/miniupnpd reload")
    assert router.post(INFO, request(DHCP, uPnPIGD=0)).json == accepted(90)
    wait_for(router, RELOAD, 4)
    wait_until(lambda: not daemons(router), "the end of the reloads")
    assert nodes(router) == ["untouched"] * 3
    assert router.calls().count("/etc/init.d/miniupnpd reload") == 1


@pytest.mark.parametrize("body", [None, "hello", "[]", {}, {"wanConfig": 1},
                                  request(PPPOE, pppoeUserName="a,b", pppoePassword="c|d")])
def test_a_refused_request_changes_nothing_and_still_reloads(live, body):
    router = live(fast_time=os.environ["FAST_TIME_LIB"])
    before = router.root.read("/etc/config/network")
    assert router.post(INFO, body).json == {"result": 1}
    wait_for(router, RELOAD)
    assert router.root.read("/etc/config/network") == before


@pytest.mark.parametrize("brand", BRANDS)
def test_the_first_state_of_the_wan_comes_with_a_restart(live, brand):
    router = live(brand=brand, wan="pppoe")
    router.root.write("/tmp/left-over", "")
    assert router.post(FIRST).json == accepted(420)
    wait_until(lambda: not router.root.exists("/tmp/left-over") and not router.root.exists("/router/reboot"), "the restart")
    config = wan_config(router)
    assert (config["wanMethod"], config["wanAutoSelectStatus"], config["wanIpv6Method"]) == (DHCP, 0, 0)
    assert config["pppoeMtu"] == 1454  # no MTU is left
    assert router.option("network.wan.keepalive") is None
    assert config["wanIpv4Address"] == "None"  # the line has no DHCP server


# Texts from outside.

def test_hostile_texts_arrive_whole(live):
    router = live(wan="pppoe", fast_time=os.environ["FAST_TIME_LIB"])
    for text in HOSTILE:
        assert router.post(INFO, request(PPPOE, pppoeUserName="user", pppoePassword=text)).json == accepted(90)
        config = wan_config(router)
        assert (config["pppoeUserName"], config["pppoePassword"]) == ("user", text)
        assert router.get(RESULT).json["connectResult"] == 1
    for text in HOSTILE:
        line = text.replace("\n", " ")  # only a password may hold line ends
        fields = {"ipipUserId": line, "ipipPassword": text, "ipipResettingUrl": line, "ipipInterfaceId": line}
        assert router.post(INFO, request(IPIP6, **fields)).json["result"] == 0
        config = wan_config(router)
        assert {key: config[key] for key in fields} == fields
    assert router.post(INFO, request(IPIP6, ipipUserId="a\nb")).json == {"result": 1}
    wait_for(router, RELOAD, 2 * len(HOSTILE))
    assert not router.root.exists("/tmp/pwned")


# The documentation.

def documented(kind, route):
    """The example of docs/api/wan.md."""
    text = (Path(__file__).resolve().parents[2] / "docs" / "api" / "wan.md").read_text()
    return json.loads(re.search(rf"```json {kind} {re.escape(route)}\n(.*?)```", text, re.S)[1])


def test_the_documented_examples_hold(live):
    router = live(wan="pppoe", fast_time=os.environ["FAST_TIME_LIB"])
    assert router.get(INFO).json == documented("answer", f"GET {INFO}")
    for uri in (RESPONSE, RESULT, REACHABILITY):
        assert router.get(uri).json == documented("answer", f"GET {uri}")
    assert router.post(START).json == documented("answer", f"POST {START}")
    asked = documented("request", f"POST {INFO}")
    assert router.post(INFO, asked).json == documented("answer", f"POST {INFO}")
    config = wan_config(router)
    spellings = {"wanIPv6Method": "wanIpv6Method", "wanIpv4subMask": "wanIpv4SubMask"}
    for key, value in asked["wanConfig"].items():
        key = spellings.get(key, key)
        if key != "vneAutoChangeStatus":
            assert str(config[key]) == str(value), key
    assert router.post(FIRST).json == documented("answer", f"POST {FIRST}")
