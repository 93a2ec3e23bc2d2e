"""POST /repeater/connect, the setting call, and the uplink monitor that it starts."""

import os
import shlex
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parent))

from repeater_setup import (APS, CONNECT, OK, STATIONS, UNUSABLE, commands, finished_commands, prepare, request,  # noqa: F401
                            storing_unit, unit)

STATUS = "wpa_cli -i {0} -p /var/run/wpa_supplicant-{0} status"
ENABLE = [f"uci set wireless.{ap}.disabled=0" for ap in APS]
ENABLE_EXTRA = [f"uci set wireless.{ap}.disabled=0" for ap in ("ath05", "ath15", "ath25")]
TO_DHCP = ["uci delete network.lan.ipaddr", "uci delete network.lan.netmask", "uci delete network.lan.ip6assign",
           "uci set network.lan.proto=dhcp"]
CLIENT = ["uci set network.lan.proto=dhcp", "uci set network.lan.ifname=eth0 eth2",
          "uci commit wireless", "uci commit network", "uci commit dhcp", "uci commit repeater"]
RELOAD = ["sleep 3", "ubus call network reload", "/sbin/wifi multi_up mld4 mld5 mld6 mld0"]
MULTI_RU_OFF = "uci set wireless.wifi1.dfs_puncture_en=0"


def setting(**changes):
    return request(tryConnectOrSettingRepeater=1, **changes)


def attach(*stations):
    return ["uci set dhcp.lan.ignore=1", *(f"uci set wireless.{station}.network=lan" for station in stations)]


@pytest.fixture
def quiet_unit(unit):
    """Not in the operating mode that is monitored."""
    unit.set("system.@system[0].op_mode", "router")
    return unit


def last_reload(multi_link):
    return ("/sbin/wifi", "multi_up", "mld7") if multi_link in (2, 3) else ("/sbin/wifi", "multi_up", "mld4")


@pytest.mark.parametrize("mlo, band, stations", [
    ("0", "2.4GHz", ["ath03"]), ("0", "5GHz", ["ath13"]), ("0", "6GHz", ["ath23"]),
    ("1", "MLO", ["ath03", "ath13"]), ("2", "MLO", ["ath13", "ath23"]), ("3", "MLO", ["ath03", "ath13", "ath23"])])
def test_the_lan_becomes_a_client_of_the_upstream(quiet_unit, mlo, band, stations):
    quiet_unit.set("repeater.repeater_band.mlo", mlo)
    quiet_unit.set("repeater.repeater_band.repeater_select_band", band)
    a = quiet_unit.post(CONNECT, setting())
    assert (a.text, a.encrypted) == (OK, True)
    assert finished_commands(quiet_unit, "/sbin/wifi", "multi_up") == [
        MULTI_RU_OFF, *attach(*stations), *TO_DHCP, *CLIENT, *ENABLE, "uci commit wireless", *RELOAD]


@pytest.mark.parametrize("multi_link", [0, 1, 2, 3, 4])
def test_the_multi_link_station_is_brought_up_where_6g_is_part_of_it(quiet_unit, multi_link):
    quiet_unit.post(CONNECT, setting(multiLinkOperationEnable=multi_link))
    calls = finished_commands(quiet_unit, *last_reload(multi_link))
    extra = ["/sbin/wifi multi_up mld7"] if multi_link in (2, 3) else []
    assert calls[calls.index("sleep 3"):] == [*RELOAD, *extra]


@pytest.mark.parametrize("brand, extra", [("orvane", []), ("tesmir", ENABLE_EXTRA), ("9999", ENABLE_EXTRA), ("", ENABLE_EXTRA),
                                          (None, ENABLE_EXTRA)])
def test_the_brand_chooses_the_access_points_that_serve_again(quiet_unit, brand, extra):
    if brand is None:
        quiet_unit.remove("/tmp/deviceid")
    else:
        quiet_unit.brand(brand)
    assert quiet_unit.post(CONNECT, setting()).text == OK
    assert finished_commands(quiet_unit, "/sbin/wifi", "multi_up") == [
        MULTI_RU_OFF, *attach("ath13"), *TO_DHCP, *CLIENT, *ENABLE, *extra, "uci commit wireless", *RELOAD]


@pytest.mark.parametrize("dns, deletes", [("8.8.8.8", []), (["8.8.8.8"], TO_DHCP), (None, TO_DHCP)])
def test_a_lan_with_a_dns_option_keeps_its_address(quiet_unit, dns, deletes):
    quiet_unit.set("network.lan.dns", dns)
    quiet_unit.post(CONNECT, setting())
    assert finished_commands(quiet_unit, "/sbin/wifi", "multi_up") == [
        MULTI_RU_OFF, *attach("ath13"), *deletes, *CLIENT, *ENABLE, "uci commit wireless", *RELOAD]


def test_the_lan_is_stored_as_a_client(storing_unit):
    storing_unit.set("system.@system[0].op_mode", "router")
    storing_unit.set("wireless.ath13", "wifi-iface")
    storing_unit.post(CONNECT, setting())
    storing_unit.wait_for_call("/sbin/wifi", "multi_up")
    assert [storing_unit.option(f"network.lan.{name}") for name in ("proto", "ifname", "ipaddr", "netmask", "ip6assign")] == [
        "dhcp", "eth0 eth2", None, None, None]
    assert storing_unit.option("dhcp.lan.ignore") == "1"
    assert storing_unit.option("wireless.ath13.network") == "lan"
    assert [storing_unit.option(f"wireless.{ap}.disabled") for ap in APS] == ["0", "0", "0"]


@pytest.mark.parametrize("brand", ["orvane", "tesmir"])
@pytest.mark.parametrize("status", ["fail", "", "succes", "success2", "0"])
def test_a_try_that_did_not_succeed_is_undone(unit, status, brand):
    unit.brand(brand)
    unit.set("repeater.repeater_band.status", status)
    a = unit.post(CONNECT, setting(multiLinkOperationEnable=3))
    if status == "success2":  # longer than what is looked at
        assert "uci set dhcp.lan.ignore=1" in commands(unit)
        return
    assert a.text == (OK if status else UNUSABLE)
    undo = [*(f"uci delete wireless.{station}.mld" for station in STATIONS), *(f"uci set wireless.{ap}.disabled=1" for ap in APS),
            "uci set repeater.repeater_band.mlo=0", "uci commit wireless", "uci commit repeater"]
    unit.assert_calls(MULTI_RU_OFF, *(undo if status else []))


# Failures.


@pytest.mark.parametrize("change, message, ran", [
    (("status", None), "get repeater result error", []),
    (("repeater_select_band", None), "get repeater band error", attach()),
    (("mlo", None), "get mlo band error", attach()),
    (("mlo", "4"), "get mlo band error", attach()),
    (("mlo", "x"), "get mlo band error", attach()),
    (("repeater_select_band", "MLO"), "repeater band error", attach()),
    (("repeater_select_band", "60GHz"), "repeater band error", attach()),
])
def test_an_unusable_configuration_fails(unit, change, message, ran):
    option, value = change
    unit.set(f"repeater.repeater_band.{option}", value)
    assert unit.post(CONNECT, setting()).text == UNUSABLE
    assert unit.logged(message, priority=3)
    assert unit.logged("StartDhcpServerAfterConnect error", priority=3) == (option != "status")
    unit.assert_calls(MULTI_RU_OFF, *ran)


def test_a_monitor_that_cannot_be_started_changes_no_answer(unit):
    unit.set("system.@system[0].op_mode", None)
    assert unit.post(CONNECT, setting()).text == OK
    assert unit.logged("get opmode error", priority=3)
    assert unit.logged("Wifi monitoring init failed", priority=3)


def test_the_monitor_tells_of_a_missing_compatibility_mode(unit):
    unit.set("repeater.compatiMode.value", None)
    assert unit.post(CONNECT, setting()).text == OK
    unit.wait_until(lambda: {line.function for line in unit.log() if "get compatiModevalue error" in line.text} == {
        "handle_repeater_connect", "CheckWifiConnection"}, "both readings")


@pytest.mark.parametrize("tool", ["ubus", "/sbin/wifi", "uci"])
def test_a_dead_tool_changes_no_answer(quiet_unit, tool):
    quiet_unit.tool(tool, missing=True)
    assert quiet_unit.post(CONNECT, setting()).text == OK


# The uplink monitor.


def hostapd(verb):
    return [f"hostapd_cli -i {mld} -p /var/run/hostapd-{radio} {verb}"
            for mld, radio in (("mld4", "wifi0"), ("mld5", "wifi1"), ("mld6", "wifi2"))]


def store(disabled):
    return [*(f"uci set wireless.{ap}.disabled={disabled}" for ap in APS), "uci commit wireless"]


DOWN = [*hostapd("disable"), *store(1)]
UP = [*hostapd("enable"), *store(0), "ifconfig br-lan down", "ifconfig br-lan up"]


def connected(router, name, *states):
    """What wpa_supplicant tells of a station, round by round; the last state stays."""
    answers = [{"out": f"bssid=00:11:22:33:44:55\nwpa_state={state}\nip_address=192.168.10.2\n"} for state in states]
    router.tool("wpa_cli", "-i", name, **answers[0], then=answers[1:])


def station(router, *names):
    for name in names:
        router.write(f"/sys/class/net/{name}/address", "00:90:fe:12:34:61\n")


def start_monitor(router):
    """A setting call; what the monitor does then is kept apart from it."""
    assert router.post(CONNECT, setting()).text == OK
    router.wait_for_call("/sbin/wifi", "multi_up")


def actions(router):
    """What the monitor did, without its questions."""
    calls = commands(router)
    return [c for c in calls[calls.index("ubus call network reload") + 2:] if not c.startswith("wpa_cli")]


def test_only_a_repeater_is_monitored(quiet_unit):
    for mode in ("router", "ap", "r", "repeater"):
        quiet_unit.set("system.@system[0].op_mode", mode)
        quiet_unit.forget_calls()
        start_monitor(quiet_unit)
        assert quiet_unit.get("/api/v1/repeater/wifiresult").json["result"] == 0
        assert "wait 1" not in quiet_unit.commands()
        assert not quiet_unit.logged("check wifi connect status")


def test_the_monitor_decides_first_after_80_seconds_and_then_every_20(unit):
    station(unit, "ath13")
    connected(unit, "ath13", "COMPLETED")
    start_monitor(unit)
    unit.wait_for_call("wpa_cli", times=3)
    calls = [c for c in unit.commands() if c == "wait 1" or c.startswith("wpa_cli")]
    assert calls[:82] == ["wait 1"] * 80 + [STATUS.format("ath13"), "wait 1"]
    assert calls[81:103] == ["wait 1"] * 20 + [STATUS.format("ath13"), "wait 1"]
    assert unit.logged("check wifi connect status", priority=7)


@pytest.fixture
def small_stacks(monkeypatch):
    """128 KiB for the program and each of its threads: what a router's C library, musl, gives a thread."""
    if os.environ.get("ROUTER_API_EMULATOR"):
        pytest.skip("the limit would be the emulator's")
    script = 'if [ "$1" = -E ]; then export "$2"; shift 2; fi; ulimit -s 128; exec "$@"'
    monkeypatch.setenv("ROUTER_API_EMULATOR", shlex.join(["/usr/bin/sh", "-c", script, "sh"]))


def test_the_monitor_needs_no_larger_stack_than_musl_gives(small_stacks, unit):
    station(unit, "ath13")
    connected(unit, "ath13", "COMPLETED", "SCANNING")
    start_monitor(unit)
    unit.wait_until(lambda: actions(unit) == UP + DOWN, "the access points' way up and down")


@pytest.mark.parametrize("name", STATIONS)
def test_the_access_points_follow_the_uplink_of_a_single_band(unit, name):
    station(unit, name)
    connected(unit, name, "COMPLETED", "COMPLETED", "SCANNING", "DISCONNECTED", "COMPLETED")
    start_monitor(unit)
    unit.wait_for_call("ifconfig", "br-lan", "up", times=2)
    assert actions(unit)[:len(UP + DOWN + UP)] == [*UP, *DOWN, *UP]
    assert unit.commands("wpa_cli")[0] == STATUS.format(name)


@pytest.mark.parametrize("mlo", ["1", "2", "3", "9", None])
def test_the_access_points_follow_the_multi_link_uplink(unit, mlo):
    unit.set("repeater.repeater_band.mlo", mlo or "1")
    station(unit, "ath03", "ath13")
    connected(unit, "mld7", "COMPLETED", "SCANNING")
    if mlo == "9" or mlo is None:  # the setting call would refuse it: it changes later
        unit.set("repeater.repeater_band.mlo", "1")
        unit.tool("wpa_cli", "-i", "mld7", out="wpa_state=COMPLETED\n", then=[{"out": "wpa_state=SCANNING\n"}])
    start_monitor(unit)
    if mlo == "9" or mlo is None:
        unit.set("repeater.repeater_band.mlo", mlo)
    unit.wait_for_call("hostapd_cli", "-i", "mld6", "-p", "/var/run/hostapd-wifi2", "disable")
    assert unit.commands("wpa_cli")[0] == STATUS.format("mld7")
    assert actions(unit)[:len(UP)] == UP


def test_without_a_station_the_uplink_is_down(unit):
    start_monitor(unit)
    unit.wait_for_call("uci", "commit", "wireless", times=3)
    assert actions(unit)[:len(DOWN)] == DOWN
    assert unit.commands("wpa_cli") == []


@pytest.mark.parametrize("names", [("ath03", "ath13"), ("ath03", "ath23"), ("ath13", "ath23"), STATIONS])
def test_several_single_stations_keep_the_state_of_before(unit, names):
    station(unit, "ath13")
    connected(unit, "ath13", "COMPLETED")
    start_monitor(unit)
    unit.wait_for_call("ifconfig", "br-lan", "up")
    for name in STATIONS:
        if name not in names:
            unit.remove(f"/sys/class/net/{name}")
    station(unit, *names)
    unit.wait_until(lambda: unit.commands()[-40:] == ["wait 1"] * 40, "two rounds without a question")
    assert actions(unit) == UP


def test_several_single_stations_count_as_down_at_first(unit):
    station(unit, "ath03", "ath13")
    start_monitor(unit)
    unit.wait_for_call("uci", "commit", "wireless", times=3)
    assert actions(unit)[:len(DOWN)] == DOWN
    assert unit.commands("wpa_cli") == []


@pytest.mark.parametrize("output", ["wpa_state=SCANNING\n", "", "wpa_state=\n", "wpa_state=AUTHENTICATING_COMPLETED\n"])
def test_another_state_than_completed_is_down(unit, output):
    station(unit, "ath13")
    unit.tool("wpa_cli", out=output)
    start_monitor(unit)
    unit.wait_for_call("uci", "commit", "wireless", times=3)
    assert actions(unit)[:len(DOWN)] == DOWN


def test_a_dead_wpa_cli_is_down(unit):
    station(unit, "ath13")
    unit.tool("wpa_cli", missing=True)
    start_monitor(unit)
    unit.wait_for_call("uci", "commit", "wireless", times=3)
    assert actions(unit)[:len(DOWN)] == DOWN


def test_a_state_is_applied_once(unit):
    station(unit, "ath13")
    connected(unit, "ath13", "COMPLETED")
    start_monitor(unit)
    unit.wait_for_call("wpa_cli", times=5)
    assert actions(unit) == UP


def test_while_the_platform_reloads_nothing_is_stored(unit):
    unit.write("/tmp/wifireload_restart", "")
    station(unit, "ath13")
    connected(unit, "ath13", "COMPLETED", "SCANNING")
    start_monitor(unit)
    unit.wait_for_call("wpa_cli", times=4)
    assert actions(unit) == [*hostapd("enable"), *hostapd("disable")]


def test_the_state_is_remembered_over_monitors(unit):
    station(unit, "ath13")
    connected(unit, "ath13", "COMPLETED")
    start_monitor(unit)
    unit.wait_for_call("ifconfig", "br-lan", "up")
    unit.forget_calls()
    start_monitor(unit)
    unit.wait_for_call("wpa_cli", times=3)
    assert actions(unit) == []


def test_the_next_call_stops_the_monitor_first(unit):
    station(unit, "ath13")
    connected(unit, "ath13", "COMPLETED")
    start_monitor(unit)
    unit.wait_for_call("wpa_cli", times=2)
    assert unit.post(CONNECT, request(tryConnectOrSettingRepeater=9)).text == OK
    calls = unit.commands()
    assert calls[-2:] == ["sleep 1", MULTI_RU_OFF]
    assert unit.post(CONNECT, request(tryConnectOrSettingRepeater=9)).text == OK
    assert unit.commands()[len(calls):] == [MULTI_RU_OFF]  # nothing to stop, and nothing runs any more


@pytest.mark.parametrize("body", ["hello", "[]", '{"ssid": 1}'])
def test_a_refused_call_stops_the_monitor_too(unit, body):
    start_monitor(unit)
    assert unit.post(CONNECT, body).text == UNUSABLE
    assert unit.commands()[-1] == "sleep 1"


def test_a_call_without_content_leaves_the_monitor_alone(unit):
    start_monitor(unit)
    assert unit.post(CONNECT).text == UNUSABLE
    assert "sleep 1" not in unit.commands()
    unit.wait_for_call("hostapd_cli", "-i", "mld6")


def test_a_stop_ends_the_first_wait_of_a_minute_at_once(bare_router):
    router = prepare(bare_router)
    router.write("/router/waits-last", "")  # a stop that waited with the monitor would wait for ever
    for _ in range(2):
        assert router.post(CONNECT, setting()).text == OK
        router.wait_until(lambda: router.logged("check wifi connect status"), "the monitor's start")
    assert router.post(CONNECT, request(tryConnectOrSettingRepeater=9)).text == OK
    assert router.stop() == 0


def test_another_setting_call_leaves_one_monitor(unit):
    station(unit, "ath13")
    connected(unit, "ath13", "COMPLETED")
    threads = Path(f"/proc/{unit.pid()}/task")
    start_monitor(unit)
    counted = len(list(threads.iterdir()))
    for _ in range(2):
        start_monitor(unit)
        assert len(list(threads.iterdir())) == counted


def test_the_program_ends_while_the_monitor_waits(unit):
    station(unit, "ath13")
    connected(unit, "ath13", "COMPLETED")
    start_monitor(unit)
    assert unit.stop() == 0


def test_the_program_ends_while_the_monitor_works(unit):
    station(unit, "ath13")
    connected(unit, "ath13", "COMPLETED", "SCANNING", "COMPLETED", "SCANNING")
    start_monitor(unit)
    unit.wait_for_call("hostapd_cli", times=2)
    assert unit.stop() == 0
