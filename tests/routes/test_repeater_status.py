"""GET /repeater/connect and GET /repeater/wifiresult: what is told of the uplink."""

import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parent))

from kit.hostile import HOSTILE
from repeater_setup import APS, CONNECT, RESULT, STATIONS, commands, request, storing_unit, unit  # noqa: F401 (fixtures)

NO_MAC = "000000000000"
MACS = ("24gMacAddr", "5gMacAddr", "6gMacAddr")
LINKS = ("bssidmlo24g", "bssidmlo5g", "bssidmlo6g")
FREQUENCY = {"ath03": 1, "ath13": 2, "ath23": 3}
MAC_OF = {"ath03": "00:90:fe:12:34:63", "ath13": "00:90:fe:12:34:73", "ath23": "00:90:fe:12:34:83"}
SETTINGS = {"multiRuEnable": 0, "easyMeshBackHaulFrequency": 0, "compatiMode": 0, "compatiWiFi6Mode": 1}


def link(mld, number):
    return f"00:90:fe:{'07' if mld == 'mld7' else '00'}:00:0{number}"


def add_station(router, name, **options):
    """A station interface, joined to an upstream."""
    router.write(f"/sys/class/net/{name}/address", MAC_OF[name] + "\n")
    router.set(f"wireless.{name}", "wifi-iface")
    for option, value in {"ssid": f"Up-{name}", "key": f"key-{name}", "encryption": "psk2+ccmp", **options}.items():
        router.set(f"wireless.{name}.{option}", value)
    joined(router, name)


def joined(router, name):
    router.tool("iw", "dev", name, "link", out=f"Connected to aa:bb:cc:dd:ee:0{name[-1]} (on {name})\n\tSSID: Up\n")


def add_links(router, mld, *numbers):
    for number in numbers:
        router.write(f"/sys/class/net/{mld}/link{number}/address_link{number}", link(mld, number) + "\n")


def report(router, result=0, **expected):
    a = router.get(CONNECT)
    assert a.encrypted and a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert a.json["result"] == result
    for key, value in expected.items():
        assert a.json.get(key, "<absent>") == value, key
    return a.json


# A station on one band.


@pytest.mark.parametrize("name", STATIONS)
def test_a_single_station_is_reported(unit, name):
    add_station(unit, name, encryption="ccmp", sae="1")
    macs = {key: MAC_OF[name] if STATIONS[index] == name else NO_MAC for index, key in enumerate(MACS)}
    assert report(unit) == {
        "version": 1, "ssid": f"Up-{name}", "bssid": "AA:BB:CC:DD:EE:03", **macs, **dict.fromkeys(LINKS, ""),
        "frequency": FREQUENCY[name], "encryptKey": f"key-{name}", "encryptType": 2, "multiLinkOperationEnable": 0, **SETTINGS,
        "result": 0}


def test_the_keys_come_in_the_order_in_which_they_are_found(unit):
    add_station(unit, "ath13")
    assert list(report(unit)) == ["version", "ssid", "bssid", *MACS, *LINKS, "frequency", "encryptKey", "encryptType",
                                  "multiLinkOperationEnable", *SETTINGS, "result"]


@pytest.mark.parametrize("name", ["ath03", "ath13"])
@pytest.mark.parametrize("options, encrypt_type", [
    ({"sae": "1"}, 2), ({"sae": "0"}, 2), ({"sae": "1", "encryption": "ccmp"}, 2), ({}, 1), ({"encryption": "psk2"}, 0),
    ({"encryption": "none"}, 0), ({"encryption": "ccmp"}, 0)])
def test_the_security_of_a_24g_or_5g_station(unit, name, options, encrypt_type):
    add_station(unit, name, **options)
    report(unit, encryptType=encrypt_type)


@pytest.mark.parametrize("options, encrypt_type", [
    ({"encryption": "ccmp"}, 2), ({"encryption": "ccmp", "owe": "1"}, 0), ({"encryption": "ccmp", "owe": "0"}, 2),
    ({"encryption": "ccmp", "owe": "1", "sae": "1"}, 0), ({"encryption": "psk2+ccmp"}, "<absent>"), ({"encryption": "none"}, "<absent>")])
def test_the_security_of_a_6g_station(unit, options, encrypt_type):
    add_station(unit, "ath23", **options)
    report(unit, encryptType=encrypt_type)


@pytest.mark.parametrize("name, mac_text, encryption_text", [
    ("ath03", "get  24gMacAddr error", "get ath03 encryption failed"),
    ("ath13", "get  24gMacAddr error", "get ath03 encryption failed"),
    ("ath23", "get 24gMacAddr error", "get ath23 encryption failed")])
def test_what_a_station_lacks_is_empty_and_told_in_the_log(unit, name, mac_text, encryption_text):
    add_station(unit, name)
    for option, text in (("ssid", "get ssid failed"), ("key", f"get {name} encryptKey failed."), ("encryption", encryption_text)):
        value = unit.option(f"wireless.{name}.{option}")
        unit.set(f"wireless.{name}.{option}", None)
        report(unit, result=2)
        assert unit.logged(text, priority=3)
        unit.set(f"wireless.{name}.{option}", value)
    report(unit, result=0)
    unit.set(f"wireless.{name}.ssid", None)
    unit.set(f"wireless.{name}.key", None)
    report(unit, result=2, ssid="", encryptKey="")
    unit.set(f"wireless.{name}.ssid", "a")
    unit.set(f"wireless.{name}.key", "b")
    unit.write(f"/sys/class/net/{name}/address", "")
    report(unit, result=0, **{MACS[STATIONS.index(name)]: ""})  # its own address is no failure
    assert unit.logged(mac_text, priority=3)


@pytest.mark.parametrize("link_output, bssid", [
    ("Not connected.\n", ""), ("", ""), ("Connected to aa:bb (on ath13)\n", ""),
    ("Connected to aa:bb:cc:dd:ee:ff (on ath13)\n", "AA:BB:CC:DD:EE:FF")])
def test_the_bssid_is_that_of_the_link(unit, link_output, bssid):
    add_station(unit, "ath13")
    unit.tool("iw", "dev", "ath13", "link", out=link_output)
    report(unit, bssid=bssid)


def test_a_dead_iw_leaves_the_bssid_empty(unit):
    add_station(unit, "ath13")
    unit.tool("iw", missing=True)
    report(unit, bssid="")


# No station, several stations.


@pytest.mark.parametrize("mode, multi_link", [("0", 0), ("1", 1), ("2", 2), ("3", 0)])
def test_without_a_station_and_without_a_mesh_all_is_empty(unit, mode, multi_link):
    unit.set("button_mesh.easymesh.mode", mode)
    assert report(unit) == {
        "version": 1, "ssid": "", "bssid": NO_MAC, **dict.fromkeys((*LINKS, *MACS), ""), "frequency": 0, "encryptType": 2,
        "encryptKey": "", "multiLinkOperationEnable": multi_link, **SETTINGS,
        "easyMeshBackHaulFrequency": {"1": 4, "2": 5}.get(mode, 0), "result": 0}


@pytest.mark.parametrize("names", [("ath03", "ath13"), ("ath03", "ath23"), ("ath13", "ath23"), STATIONS])
def test_several_single_stations_are_described_by_nothing(unit, names):
    for name in names:
        add_station(unit, name)
    assert report(unit) == {"version": 1, **SETTINGS, "result": 0}


# Multi-link.

MLO = {"1": ("ath03", (0, 1)), "2": ("ath13", (1, 2)), "3": ("ath03", (0, 1, 2))}


def add_mlo(router, mlo):
    router.set("repeater.repeater_band.mlo", mlo)
    for name in STATIONS:
        add_station(router, name)
    add_links(router, "mld7", 0, 1, 2)
    router.tool("iw", "dev", "mld7", "link", out="Connected to 02:bb:cc:dd:ee:77 (on mld7)\n")


@pytest.mark.parametrize("mlo", MLO)
def test_a_multi_link_uplink_is_reported(unit, mlo):
    add_mlo(unit, mlo)
    name, numbers = MLO[mlo]
    links = [link("mld7", number) if number in numbers else NO_MAC for number in range(3)]
    assert report(unit) == {
        "version": 1, "ssid": f"Up-{name}", "bssid": "02:BB:CC:DD:EE:77", **dict(zip(LINKS, links)), **dict(zip(MACS, links)),
        "frequency": 0, "encryptKey": f"key-{name}", "encryptType": 1, "multiLinkOperationEnable": int(mlo), **SETTINGS, "result": 0}


@pytest.mark.parametrize("options, encrypt_type", [({"sae": "1"}, 2), ({}, 1), ({"encryption": "none"}, 0)])
@pytest.mark.parametrize("mlo", MLO)
def test_the_security_of_a_multi_link_uplink_is_that_of_its_station(unit, mlo, options, encrypt_type):
    add_mlo(unit, mlo)
    add_station(unit, MLO[mlo][0], **options)
    report(unit, encryptType=encrypt_type)


@pytest.mark.parametrize("mlo", MLO)
def test_multi_link_replaces_what_a_single_station_told(unit, mlo):
    add_mlo(unit, mlo)
    for name in STATIONS:
        if name != MLO[mlo][0]:
            unit.remove(f"/sys/class/net/{name}")
    report(unit, frequency=0, multiLinkOperationEnable=int(mlo), bssid="02:BB:CC:DD:EE:77")


@pytest.mark.parametrize("mlo, number, text", [
    ("1", 0, "get link0macaddr failed"), ("1", 1, "get link1macaddr failed"), ("2", 1, "get link1macaddr failed"),
    ("2", 2, "get link1macaddr failed"), ("3", 0, "get link0macaddr failed"), ("3", 2, "get link1macaddr failed")])
def test_a_link_without_an_address_is_a_failure(unit, mlo, number, text):
    add_mlo(unit, mlo)
    unit.remove(f"/sys/class/net/mld7/link{number}")
    report(unit, result=2, **{LINKS[number]: "", MACS[number]: ""})
    assert unit.logged(text, priority=3)


@pytest.mark.parametrize("mlo", ["0", "4", "", "x"])
def test_another_variant_is_not_reported_as_multi_link(unit, mlo):
    add_mlo(unit, mlo)
    answer = report(unit, result=0 if mlo else 2)
    assert "ssid" not in answer and "multiLinkOperationEnable" not in answer


# EasyMesh.

EASYMESH = {"1": ((0, 1), 0, 1), "2": ((1, 2), 0, 2), "0": ((1,), 2, 0), "7": ((1,), 2, 0)}


def add_easymesh(router, mode, onboarded="1"):
    router.set("button_mesh.easymesh.enable", "1")
    router.set("button_mesh.easymesh.mode", mode)
    router.set("repacd.MAPConfig.OnboardingDone", onboarded)
    for name in ("mld31", "mld41"):
        router.write(f"/tmp/run/hostapd-{name}.conf", "ssid=Backhaul\nwpa_passphrase=backhaul-key\n")
    add_links(router, "mld0", 0, 1, 2)
    router.tool("iw", "dev", "mld0", "link", out="Connected to 02:bb:cc:dd:ee:00 (on mld0)\n")


@pytest.mark.parametrize("mode", EASYMESH)
def test_a_mesh_uplink_is_reported(unit, mode):
    add_easymesh(unit, mode)
    numbers, frequency, multi_link = EASYMESH[mode]
    macs = [link("mld0", number) if number in numbers else "" for number in range(3)]
    assert report(unit) == {
        "version": 1, "ssid": "Backhaul", "encryptKey": "backhaul-key", "bssid": "02:BB:CC:DD:EE:00", **dict.fromkeys(LINKS, ""),
        **dict(zip(MACS, macs)), "frequency": frequency, "multiLinkOperationEnable": multi_link, "encryptType": 2, **SETTINGS,
        "easyMeshBackHaulFrequency": {"1": 4, "2": 5}.get(mode, 0), "result": 0}


@pytest.mark.parametrize("onboarded, ssid, key", [("0", "", ""), ("1", "Backhaul", "backhaul-key"), ("2", "Backhaul", "backhaul-key")])
def test_a_mesh_uplink_is_named_once_it_is_set_up(unit, onboarded, ssid, key):
    add_easymesh(unit, "1", onboarded)
    report(unit, ssid=ssid, encryptKey=key)


def test_an_unreadable_backhaul_is_a_failure(unit):
    add_easymesh(unit, "1")
    unit.remove("/tmp/run/hostapd-mld31.conf")
    unit.remove("/tmp/run/hostapd-mld41.conf")
    report(unit, result=2, ssid="", encryptKey="", bssid="02:BB:CC:DD:EE:00")
    assert unit.logged("get agent backhaul info failed", priority=3)


@pytest.mark.parametrize("mode, number", [("1", 0), ("1", 1), ("2", 2), ("0", 1)])
def test_a_mesh_link_without_an_address_is_a_failure(unit, mode, number):
    add_easymesh(unit, mode)
    unit.remove(f"/sys/class/net/mld0/link{number}")
    report(unit, result=2, **{MACS[number]: ""})


@pytest.mark.parametrize("mlo", MLO)
def test_a_mesh_uplink_goes_before_a_multi_link_one(unit, mlo):
    add_mlo(unit, mlo)
    add_easymesh(unit, "1")
    report(unit, ssid="Backhaul", bssid="02:BB:CC:DD:EE:00", multiLinkOperationEnable=1, bssidmlo5g="")
    assert "iw dev mld7 link" not in unit.commands()


@pytest.mark.parametrize("enable", ["2", "x", "on"])
def test_another_mesh_switch_is_neither_mesh_nor_multi_link(unit, enable):
    add_mlo(unit, "1")
    unit.set("button_mesh.easymesh.enable", enable)
    assert "ssid" not in report(unit)


# Settings.


@pytest.mark.parametrize("address, text, key", [
    ("button_mesh.easymesh.enable", "get repacd enable failed.", None),
    ("repeater.repeater_band.mlo", "get mlo staus failed.", None),
    ("repacd.MAPConfig.OnboardingDone", "get OnboardingDone failed", None),
    ("button_mesh.easymesh.mode", "get meshMode failed", "multiLinkOperationEnable"),
    ("wireless.wifi1.dfs_puncture_en", "get dfs_puncture_en failed.", "multiRuEnable")])
def test_an_unreadable_setting_is_a_failure(unit, address, text, key):
    unit.set(address, None)
    answer = report(unit, result=2)
    assert unit.logged(text, priority=3)
    if key:
        assert answer[key] == 0
    if address.endswith(".mode"):
        assert unit.logged("get repacd enable failed.", priority=3) and answer["easyMeshBackHaulFrequency"] == 0


@pytest.mark.parametrize("address, key, text", [
    ("repeater.compatiMode.value", "compatiMode", "get compatiMode value failed."),
    ("button_mesh.easymesh.compatiWiFi6Mode", "compatiWiFi6Mode", "get compatiWiFi6Mode value failed.")])
def test_an_optional_setting_is_told_where_it_is_there(unit, address, key, text):
    for value, told in (("2", 2), ("1x", 1), ("x", 0)):
        unit.set(address, value)
        report(unit, **{key: told})
    unit.set(address, None)
    report(unit, result=0, **{key: "<absent>"})
    assert unit.logged(text, priority=3)


@pytest.mark.parametrize("value, told", [("1", 1), ("0", 0), ("x", 0), ("12345", 123)])
def test_multi_ru_is_told_as_a_number(unit, value, told):
    unit.set("wireless.wifi1.dfs_puncture_en", value)
    report(unit, multiRuEnable=told)


def test_a_router_without_packages_is_reported_with_failures(bare_router):
    report(bare_router, result=2, ssid="", bssid=NO_MAC)


@pytest.mark.parametrize("name", [n for n, text in HOSTILE.items() if 0 < len(text.encode("utf-8", "surrogateescape")) <= 39 and "utf8" not in n])
def test_a_stored_text_is_reported_whole(unit, name):
    text = HOSTILE[name]
    add_station(unit, "ath13", ssid=text, key=text)
    report(unit, ssid=text, encryptKey=text)
    unit.assert_nothing_ran()


def test_a_long_stored_text_is_cut(unit):
    add_station(unit, "ath13", ssid="s" * 50, key="k" * 200)
    report(unit, ssid="s" * 39, encryptKey="k" * 99)


# GET /repeater/wifiresult.

SUCCESS = ["uci set repeater.repeater_band.status=success", "uci commit repeater", "uci commit wireless"]
FAIL = ["uci set repeater.repeater_band.status=fail", "uci commit repeater", "uci commit wireless"]
CHOICES = [("0", "2.4GHz", "ath03"), ("0", "5GHz", "ath13"), ("0", "6GHz", "ath23"), ("1", "MLO", "mld7"), ("2", "MLO", "mld7"),
           ("3", "MLO", "mld7"), ("4", "5GHz", "mld7"), ("", None, "mld7")]


def choose(router, mlo, band):
    router.set("repeater.repeater_band.mlo", mlo)
    router.set("repeater.repeater_band.repeater_select_band", band)


def wpa_status(name):
    return f"wpa_cli -i {name} -p /var/run/wpa_supplicant-{name} status"


@pytest.mark.parametrize("mlo, band, name", CHOICES[:-1])
def test_an_associated_station_is_recorded_as_success(unit, mlo, band, name):
    choose(unit, mlo, band)
    unit.tool("wpa_cli", "-i", name, out="bssid=00:11:22:33:44:55\nwpa_state=COMPLETED\nip_address=192.168.10.2\n")
    a = unit.get(RESULT)
    assert a.encrypted and a.text == '{ "result": 0, "version": 1, "wifiConnectResult": 0 }'
    unit.assert_calls(wpa_status(name), *SUCCESS)
    assert unit.logged("mlo connect success", priority=7)


@pytest.mark.parametrize("output", ["wpa_state=SCANNING\n", "wpa_state=4WAY_HANDSHAKE\n", "", "Failed to connect\n"])
@pytest.mark.parametrize("mlo, band, name", CHOICES[:-1])
def test_another_station_is_recorded_as_fail(unit, mlo, band, name, output):
    choose(unit, mlo, band)
    unit.tool("wpa_cli", "-i", name, out=output)
    assert unit.get(RESULT).text == '{ "result": 0, "version": 1, "wifiConnectResult": 2 }'
    unit.assert_calls(wpa_status(name), *FAIL)
    assert unit.logged("mlo connect fail" if name == "mld7" else "slo connect fail", priority=3)


@pytest.mark.parametrize("how", [{"missing": True}, {"exit": 255}])
def test_a_dead_wpa_cli_is_recorded_as_fail(unit, how):
    unit.tool("wpa_cli", **how)
    assert unit.get(RESULT).json["wifiConnectResult"] == 2
    assert commands(unit)[-3:] == FAIL


@pytest.mark.parametrize("band", ["MLO", "60GHz", None])
def test_without_a_band_nothing_is_checked(unit, band):
    choose(unit, "0", band)
    assert unit.get(RESULT).text == '{ "result": 0, "version": 1 }'
    unit.assert_calls("uci commit wireless")
    assert unit.logged("get repeater_band failed.", priority=3) == (band is None)


def test_without_a_multi_link_state_the_access_points_are_disabled(unit):
    choose(unit, None, "5GHz")
    assert unit.get(RESULT).text == '{ "result": 0, "version": 1, "wifiConnectResult": 2 }'
    unit.assert_calls(*(f"uci set wireless.{ap}.disabled=1" for ap in APS), "uci commit wireless")
    assert unit.logged("get repeater_band mlo band failed.", priority=3)


def test_the_status_follows_the_last_poll_and_decides_the_setting_call(storing_unit):
    storing_unit.set("system.@system[0].op_mode", "router")
    storing_unit.tool("wpa_cli", "-i", "ath13", out="wpa_state=COMPLETED\n", then=[{"out": "wpa_state=SCANNING\n"}])
    assert storing_unit.get(RESULT).json["wifiConnectResult"] == 0
    assert storing_unit.option("repeater.repeater_band.status") == "success"
    assert storing_unit.get(RESULT).json["wifiConnectResult"] == 2
    assert storing_unit.option("repeater.repeater_band.status") == "fail"
    storing_unit.forget_calls()
    storing_unit.post(CONNECT, request(tryConnectOrSettingRepeater=1))
    assert "uci delete wireless.ath13.mld" in storing_unit.commands()
    assert "uci set dhcp.lan.ignore=1" not in storing_unit.commands()
