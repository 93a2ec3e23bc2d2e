"""GET /api/v1/wireless/setting: what it shows, and what it does without."""

import itertools
import json

import kit
import pytest
from routes.wireless_state import BANDS_OF_MODE, BRANDS, SETTING, mesh, slot

ROUTER_NAMES = [*(f"SSID{n}" for n in range(1, 10)), "MLO SSID", "Mesh SSID"]
REPEATER_NAMES = [*(f"SSID{n}" for n in range(1, 7)), "MLO SSID", "Mesh SSID"]
MLD_INFO = """Interface {mld}
\tifindex 40
\twdev 0x3
\taddr 02:90:fe:12:34:90
\tssid Some-Name
\ttype AP
\twiphy 3
\tlink 0:
\t\taddr 02:00:00:00:00:{n}0
\t\tchannel 6 (2437 MHz), width: 40 MHz, center1: 2447 MHz
\tlink 1:
\t\taddr 02:00:00:00:00:{n}1
\t\tchannel 36 (5180 MHz), width: 160 MHz, center1: 5250 MHz
\tlink 2:
\t\taddr 02:00:00:00:00:{n}2
\t\tchannel 37 (6135 MHz), width: 320 MHz, center1: 6105 MHz
"""


def links(router):
    """Every MLD has all three links; mldN's addresses end in N0, N1, N2."""
    for n in range(13):
        router.tool("iw", "dev", f"mld{n}", "info", out=MLD_INFO.format(mld=f"mld{n}", n=f"{n:x}"))


def is_refused(answer):
    return not answer.encrypted and answer.text == '{"result": 1}' and answer.header_lines == [
        "Content-Type: application/json", "Status: 200 OK"]


def test_the_document_has_its_keys_in_their_order(router):
    a = router.get(SETTING)
    assert a.encrypted and a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert list(a.json) == ["result", "version", "mlo", "mesh", "bandSteering", "ieee802dot11r", "set2GChannel",
                            "set5GChannel", "set6GChannel", "wirelessConfig"]
    assert {key: value for key, value in a.json.items() if key != "wirelessConfig"} == {
        "result": 0, "version": 1, "mlo": 0, "mesh": 0, "bandSteering": 0, "ieee802dot11r": 0,
        "set2GChannel": 0, "set5GChannel": 0, "set6GChannel": 0}
    for entry in a.json["wirelessConfig"]:
        assert list(entry) == ["ssidName", "band", "ssidValue", "ssidStatus", "bssid", "ssidPassword", "wifiSecurity",
                               "wifiStealth", "wpaRekeyInterval", "copySsid", "guestSsid"]


def test_it_starts_nothing_but_iw_and_changes_nothing(router):
    before = {p: router.read(f"/etc/config/{p}") for p in ("wireless", "button_mesh", "repacd")}
    router.get(SETTING)
    assert {call.tool for call in router.calls()} == {"iw"}
    assert all(router.read(f"/etc/config/{p}") == text for p, text in before.items())


def test_a_router_has_eleven_slots_with_their_bands(router):
    slots = router.get(SETTING).json["wirelessConfig"]
    assert [s["ssidName"] for s in slots] == ROUTER_NAMES
    assert [s["band"] for s in slots] == ["2.4GHz"] * 3 + ["5GHz"] * 3 + ["6GHz"] * 3 + ["2.4GHz", "2.4GHz,5GHz"]


def test_an_access_point_mode_has_eleven_slots(router):
    router.set("system.@system[0].op_mode", "ap")
    assert len(router.get(SETTING).json["wirelessConfig"]) == 11


def test_a_repeater_has_eight_slots_without_copies_and_guests(router):
    router.set("system.@system[0].op_mode", "re")
    slots = router.get(SETTING).json["wirelessConfig"]
    assert [s["ssidName"] for s in slots] == REPEATER_NAMES
    assert [s["ssidValue"] for s in slots[:6]] == [
        "Router-2.4G-1234", "Router-Backhaul-1234", "Router-5G-1234", "Router-Backhaul-1234", "Router-6G-1234",
        "Router-Backhaul-1234"]
    assert {s["copySsid"] for s in slots} == {s["guestSsid"] for s in slots} == {9}


@pytest.mark.parametrize("disabled", ["0", "1", None])
def test_copies_and_guests_tell_their_switch(router, disabled):
    for ifname in ("ath01", "ath11", "ath21", "ath04", "ath14", "ath24"):
        router.set(f"wireless.{ifname}.disabled", disabled)
    slots = router.get(SETTING).json["wirelessConfig"]
    on = 0 if disabled == "1" else 1
    assert [s["copySsid"] for s in slots] == [9, 9, on, 9, 9, on, 9, 9, on, 9, 9]
    assert [s["guestSsid"] for s in slots] == [9, on, 9, 9, on, 9, 9, on, 9, 9, 9]
    assert [slots[i]["ssidStatus"] for i in (1, 2, 4, 5, 7, 8)] == [on] * 6


def test_every_option_of_a_slot_is_shown(router):
    for option, value in {"ssid": "My name", "key": "my password", "encryption": "psk2", "hidden": "1",
                          "wpa_group_rekey": "86400", "disabled": "1"}.items():
        router.set(f"wireless.ath1.{option}", value)
    entry = slot(router.get(SETTING).json, "SSID4")
    assert entry == {"ssidName": "SSID4", "band": "5GHz", "ssidValue": "My name", "ssidStatus": 0,
                     "bssid": "00:90:FE:12:34:61", "ssidPassword": "my password", "wifiSecurity": 2, "wifiStealth": 1,
                     "wpaRekeyInterval": 86400, "copySsid": 9, "guestSsid": 9}


def test_missing_options_have_their_defaults(router):
    for option in ("ssid", "key", "encryption", "sae", "hidden", "wpa_group_rekey", "disabled"):
        router.set(f"wireless.ath0.{option}", None)
    router.set("wireless.wifi0.macaddr", None)
    assert slot(router.get(SETTING).json, "SSID1") == {
        "ssidName": "SSID1", "band": "2.4GHz", "ssidValue": "", "ssidStatus": 1, "bssid": "00:00:00:00:00:00",
        "ssidPassword": "", "wifiSecurity": 0, "wifiStealth": 0, "wpaRekeyInterval": 1800, "copySsid": 9,
        "guestSsid": 9}
    for text in ("Failed to get SSID for interface ath0, return default value",
                 "Failed to get disabled status for interface ath0, return default value",
                 "Failed to get MAC address for radio wifi0, return default value",
                 "Failed to get password for interface ath0, return default value",
                 "Failed to get wifi security for interface ath0",
                 "Failed to get hidden status for interface ath0, return default value",
                 "Failed to get WPA rekey interval for interface ath0, return default value"):
        assert router.logged(text, priority=3), text


def test_an_unknown_encryption_is_told_and_reads_as_zero(router):
    router.set("wireless.ath0.encryption", "wep %s%n")
    assert slot(router.get(SETTING).json, "SSID1")["wifiSecurity"] == 0
    assert router.logged("Unknown encryption mode: wep %s%n", priority=3)


@pytest.mark.parametrize("brand,role", list(itertools.product(range(3), range(3))))
def test_access_points_that_a_mesh_lacks_count_as_disabled(router, brand, role):
    mesh(router, role, brand=brand)
    for ifname in ("ath02", "ath04"):
        router.set(f"wireless.{ifname}", None)
    assert slot(router.get(SETTING).json, "SSID3")["ssidStatus"] == (0 if brand == 0 and role == 1 else 1)
    router.set("system.@system[0].op_mode", "re")
    assert slot(router.get(SETTING).json, "SSID2")["ssidStatus"] == (0 if role == 2 else 1)


# Hard failures.


@pytest.mark.parametrize("option,message", [
    ("button_mesh.easymesh.enable", "Failed to get mesh"),
    ("lbd.config.Enable", "Failed to get bandSteering"),
    ("system.@system[0].op_mode", "Failed to get opmode"),
    ("wireless.wifi0.disabled", "Failed to get channel info for index 0"),
    ("wireless.wifi1.channel", "Failed to get channel info for index 1"),
    ("wireless.wifi2.channel", "Failed to get channel info for index 2"),
    ("button_mesh.easymesh.role", "Failed to get channel"),
])
def test_a_hard_failure_answers_plain_result_1(router, option, message):
    router.set(option, None)
    assert is_refused(router.get(SETTING))
    assert router.logged(message, priority=3)


@pytest.mark.parametrize("package", ["button_mesh", "lbd", "system", "wireless"])
def test_a_missing_package_answers_plain_result_1(router, package):
    router.no_config(package)
    assert is_refused(router.get(SETTING))


def test_without_any_package_it_answers_plain_result_1(bare_router):
    assert is_refused(bare_router.get(SETTING))


# Soft failures.


def test_80211r_is_shown_as_a_number_and_zero_when_missing(router):
    for value, shown in (("1", 1), ("0", 0), ("2", 2), (None, 0)):
        router.set("button_mesh.easymesh.ieee80211r", value)
        assert router.get(SETTING).json["ieee802dot11r"] == shown
    assert router.logged("Failed to get 80211r", priority=3)


def test_an_mlo_mode_that_cannot_be_read_is_zero(router):
    mesh(router, 1, brand=0)
    router.set("button_mesh.easymesh.mode", None)
    a = router.get(SETTING)
    assert a.json["mlo"] == 0 and a.json["mesh"] == 1
    assert router.logged("Failed to get MLO", priority=3)
    assert [s["ssidName"] for s in a.json["wirelessConfig"]] == ROUTER_NAMES[:9]  # both virtual slots need the mode
    assert router.logged("Failed to handle MLO SSID, continue next", priority=3)
    assert router.logged("Failed to get mesh info, continue next", priority=3)


@pytest.mark.parametrize("missing", ["Enable", "BackhaulSSID", "BackhaulKey"])
def test_a_mesh_slot_that_cannot_be_read_is_left_out(router, missing):
    mesh(router, 1, brand=1)
    router.set(f"repacd.{'repacd' if missing == 'Enable' else 'MAPConfig'}.{missing}", None)
    assert [s["ssidName"] for s in router.get(SETTING).json["wirelessConfig"]] == ROUTER_NAMES[:10]
    assert router.logged({"Enable": "Failed to get ssidStatusValue"}.get(missing, f"Failed to get {missing}"))
    assert router.logged("Failed to get mesh info, continue next", priority=3)


# Band steering, channels.


@pytest.mark.parametrize("value,shown", [("0", 0), ("1", 1), ("2", 0)])
def test_band_steering(router, value, shown):
    router.set("lbd.config.Enable", value)
    assert router.get(SETTING).json["bandSteering"] == shown


def test_configured_channels(router):
    for radio, channel, disabled in (("wifi0", "13", "0"), ("wifi1", "auto", "0"), ("wifi2", "93", "1")):
        router.set(f"wireless.{radio}.channel", channel)
        router.set(f"wireless.{radio}.disabled", disabled)
    document = router.get(SETTING).json
    assert [document[f"set{band}Channel"] for band in ("2G", "5G", "6G")] == [13, 0, -1]


@pytest.mark.parametrize("status,mesh_on,asked", [("success", 0, True), ("success", 1, False), ("fail", 0, False)])
def test_a_connected_repeater_shows_the_operating_channels(router, status, mesh_on, asked):
    router.set("system.@system[0].op_mode", "re")
    router.set("repeater.repeater_band.status", status)
    if mesh_on:
        mesh(router, 1)
    for mld, line in (("mld1", "channel 6 (2437 MHz), width: 40 MHz"), ("mld2", "channel 100 (5500 MHz), width: 160 MHz"),
                      ("mld3", "channel 37 (6135 MHz), width: 320 MHz")):
        router.tool("iw", "dev", mld, "info", out=f"Interface {mld}\n\t{line}, center1: 1 MHz\n")
    router.set("wireless.wifi2.disabled", "1")
    document = router.get(SETTING).json
    expected = [6, 100, -1] if asked else [0, 0, -1]
    assert [document[f"set{band}Channel"] for band in ("2G", "5G", "6G")] == expected
    first = router.commands()[:6]
    if asked:
        assert first == ["iw dev mld1 info", "iw dev mld2 info", "iw dev mld3 info", "iw dev wifi0 info",
                         "iw dev wifi1 info", "iw dev wifi2 info"]


def test_a_connected_repeater_whose_mlds_cannot_be_asked_answers_result_1(router):
    router.set("system.@system[0].op_mode", "re")
    router.set("repeater.repeater_band.status", "success")
    router.write("/router/no-children", "iw dev mld2 info")
    assert router.get(SETTING).json == {"result": 1}
    assert router.logged("popen error", priority=3)
    assert router.commands() == ["iw dev mld1 info"]


def test_a_connected_repeater_whose_mlds_are_down_shows_what_the_radios_say(router):
    router.set("system.@system[0].op_mode", "re")
    router.set("repeater.repeater_band.status", "success")
    for radio, channel in (("wifi0", "11"), ("wifi1", "44"), ("wifi2", "5")):
        router.tool("iw", "dev", radio, "info", out=f"\tchannel {channel} (1 MHz), width: 20 MHz\n")
    document = router.get(SETTING).json
    assert [document[f"set{band}Channel"] for band in ("2G", "5G", "6G")] == [11, 44, 5]


# BSSIDs.


def test_bssids_are_those_of_the_links(router):
    links(router)
    slots = router.get(SETTING).json["wirelessConfig"]
    assert [s["bssid"] for s in slots] == [
        "02:00:00:00:00:10", "02:00:00:00:00:40", "02:00:00:00:00:70", "02:00:00:00:00:21", "02:00:00:00:00:51",
        "02:00:00:00:00:81", "02:00:00:00:00:32", "02:00:00:00:00:62", "02:00:00:00:00:92", "02:00:00:00:00:10",
        "00:00:00:00:00:00"]


def test_upstream_iw_is_understood(router):
    router.tool("iw", "dev", "mld2", "info", out="Interface mld2\n\taddr 02:00:00:00:00:99\n\ttype AP\n"
                "\tMLD with links:\n\t - link ID  0 link addr 02:00:00:00:00:a0\n"
                "\t - link ID  1 link addr 02:00:00:00:00:a1\n\t   channel 36 (5180 MHz), width: 80 MHz\n")
    assert slot(router.get(SETTING).json, "SSID4")["bssid"] == "02:00:00:00:00:a1"


@pytest.mark.parametrize("answer", [
    {"exit": 237, "err": "command failed: No such device (-19)\n"}, {"out": ""}, {"out": "link 0:\n"},
    {"out": "link 1:\n\taddr 02:00:00:00:00:01\n"}, {"out": "\x00\xff" * 5000}, {"out": "addr " * 20000}])
def test_an_iw_without_the_link_gives_the_radios_address(router, answer):
    router.tool("iw", **answer)
    assert slot(router.get(SETTING).json, "SSID1")["bssid"] == "00:90:FE:12:34:60"
    assert router.logged("get_mld_link_mac: No MAC found - mld=mld1 link=0", priority=3)


def test_without_iw_every_slot_has_its_radios_address(router):
    router.tool("iw", missing=True)
    slots = router.get(SETTING).json["wirelessConfig"]
    assert [s["bssid"] for s in slots[:9]] == [f"00:90:FE:12:34:6{band}" for band in (0, 0, 0, 1, 1, 1, 2, 2, 2)]


def test_when_the_client_cannot_be_encrypted_for_it_gets_plain_result_1(router):
    router.tool("jose", missing=True)
    assert is_refused(router.get(SETTING))


_MLDS = {  # what get_mesh_mld_by_ifname gives for the nine access points of the slots; "." for the slot's own
    (0, 1, "*", 1): "1 4 . 1 5 . 2 6 .", (0, 1, "*", 2): "2 4 . 1 5 . 1 6 .",
    (0, 2, "*", 1): "2 . . 2 . . 4 . .", (0, 2, "*", 2): "4 . . 2 . . 2 . .",
    (1, 1, "*", 0): "3 7 . 1 9 . 5 11 .", (1, 1, "*", 1): "3 6 7 1 8 9 4 10 11", (1, 1, "*", 2): "3 6 7 1 8 9 5 10 11",
    (1, 2, 0, 0): "6 . . 3 . . 8 . .", (1, 2, 0, 1): "5 . . 2 . . 6 . .", (1, 2, 0, 2): "5 . . 2 . . 7 . .",
    (1, 2, 1, 0): "5 . . 3 . . 8 . .", (1, 2, 1, 1): "3 . . 2 . . 6 . .", (1, 2, 1, 2): "4 . . 2 . . 7 . .",
}
_OWN = [1, 4, 7, 2, 5, 8, 3, 6, 9]


def _expected_mlds(brand, role, onboarded, mode):
    key_brand = min(brand, 1)
    row = _MLDS.get((key_brand, role, "*", mode)) or _MLDS.get((key_brand, role, onboarded, mode)) or ". " * 9
    return [f"iw dev mld{own if mld == '.' else mld} info" for mld, own in zip(row.split(), _OWN)]


def _unknown(brand, role, onboarded, mode):
    if role == 0 or mode < (1 if brand == 0 else 0) or mode > 2:
        if role == 0:
            return None  # not asked
        if brand != 0 and role == 2 and onboarded:
            return f"Unknown mesh_role: {role}"
        return f"Unknown mesh_mode: {mode}"
    return None


@pytest.mark.parametrize("brand", BRANDS)
def test_the_mld_of_every_slot_in_every_mesh(router, brand):
    router.brand(BRANDS[brand])
    # Onboarding matters to agents alone; the unit tests walk the rest of the product.
    for role, mode, onboarded in [(0, 1, 0), *itertools.product((1,), range(4), (0,)), *itertools.product((2,), range(4), (0, 1))]:
        mesh(router, role, mode, onboarded=onboarded)
        router.forget_calls()
        logged = len(router.log())
        router.get(SETTING)
        mlds = [c for c in router.commands("iw") if " mld" in c][:9]
        assert mlds == _expected_mlds(brand, role, onboarded, mode), (role, mode, onboarded)
        texts = [line.text for line in router.log()[logged:]]
        unknown = _unknown(brand, role, onboarded, mode)
        assert (unknown in texts) if unknown else not any(t.startswith("Unknown mesh") for t in texts)
        if role and not unknown and (brand == 0 or role == 2):
            assert "No mld found for ifname: ath04" in texts


# MLO.


@pytest.mark.parametrize("mode,on,band,source", [
    (1, "011", "2.4GHz,5GHz", "ath05"), (2, "101", "2.4GHz,6GHz", "ath05"), (3, "110", "5GHz,6GHz", "ath15"),
    (4, "111", "2.4GHz,5GHz,6GHz", "ath05"), (0, "000", "2.4GHz", "ath0"), (0, "001", "2.4GHz", "ath0"),
    (0, "010", "2.4GHz", "ath0"), (0, "100", "2.4GHz", "ath0")])
def test_the_mlo_slot_follows_the_links(router, mode, on, band, source):
    for ifname, bit in zip(("ath25", "ath15", "ath05"), on):
        router.set(f"wireless.{ifname}.disabled", 1 - int(bit))
    for ifname in ("ath05", "ath15", "ath25"):
        router.set(f"wireless.{ifname}.ssid", f"Name of {ifname}")
    document = router.get(SETTING).json
    entry = slot(document, "MLO SSID")
    assert (document["mlo"], entry["band"]) == (mode, band)
    assert entry["ssidValue"] == router.option(f"wireless.{source}.ssid")
    assert (entry["copySsid"], entry["guestSsid"]) == (9, 9)


def test_the_mlo_slot_of_mode_3_has_the_address_of_its_row(router):
    links(router)
    for ifname, disabled in (("ath05", 1), ("ath15", 0), ("ath25", 0)):
        router.set(f"wireless.{ifname}.disabled", disabled)
    assert slot(router.get(SETTING).json, "MLO SSID")["bssid"] == "02:00:00:00:00:00"  # link 0 of mld0


def test_a_link_with_another_value_or_none(router):
    router.set("wireless.ath05.disabled", "0")
    router.set("wireless.ath15.disabled", None)  # unreadable counts as off
    router.set("wireless.ath25.disabled", "0")
    assert router.get(SETTING).json["mlo"] == 2


def test_a_band_label_is_the_answers_own(router):
    router.set("wireless.ath15.disabled", 0)
    router.set("wireless.ath25.disabled", 0)
    mesh(router, 0, mode=0)
    document = router.get(SETTING).json
    assert [slot(document, name)["band"] for name in ("MLO SSID", "Mesh SSID")] == ["5GHz,6GHz", "2.4GHz,5GHz,6GHz"]
    router.set("wireless.ath15.disabled", 1)
    mesh(router, 0, mode=2)
    document = router.get(SETTING).json
    assert [slot(document, name)["band"] for name in ("MLO SSID", "Mesh SSID")] == ["2.4GHz", "5GHz,6GHz"]


# Mesh.


@pytest.mark.parametrize("brand", BRANDS)
def test_in_a_mesh_the_slots_of_the_backhaul(router, brand):
    for role, mode in itertools.product((1, 2), (0, 1, 2)):
        _check_backhaul(router, brand, role, mode)


def _check_backhaul(router, brand, role, mode):
    mesh(router, role, mode, brand=brand, onboarded=1)
    router.set("wireless.ath04.disabled", "0")
    document = router.get(SETTING).json
    entry = slot(document, "Mesh SSID")
    agent = {"ssidValue": "Router-5G-1234", "ssidPassword": "factory-key-1234"}  # its second access point
    unit = {"ssidValue": "Router-Backhaul-1234", "ssidPassword": "factory-backhaul-1234"}
    assert entry == {"ssidName": "Mesh SSID", "band": BANDS_OF_MODE[mode], **(agent if role == 2 else unit),
                     "ssidStatus": 1, "bssid": "00:90:FE:12:34:A0", "wifiSecurity": 3, "wifiStealth": 0,
                     "wpaRekeyInterval": 1800, "copySsid": 9, "guestSsid": 9}
    mlo = slot(document, "MLO SSID")
    if brand == 0:
        assert document["mlo"] == (1 if mode == 1 else 3)
        assert {**mlo, "ssidName": "Mesh SSID", "band": entry["band"]} == entry
        assert mlo["band"] == ("2.4GHz" if mode == 2 else BANDS_OF_MODE[mode])  # mode 2 leaves the slot's own
    else:
        assert (document["mlo"], mlo["ssidValue"]) == (0, "Router-2.4G-1234")


def test_a_repeaters_mesh_slot_keeps_its_band_in_mode_2(router):
    router.set("system.@system[0].op_mode", "re")
    mesh(router, 2, mode=2)
    assert slot(router.get(SETTING).json, "Mesh SSID")["band"] == "5GHz"


def test_the_backhaul_without_mesh_has_no_address(router):
    entry = slot(router.get(SETTING).json, "Mesh SSID")
    assert (entry["ssidStatus"], entry["bssid"]) == (0, "00:00:00:00:00:00")


def test_the_backhaul_without_an_address(router):
    mesh(router, 1, brand=1)
    router.set("repacd.MAPConfig.mld_mac_addr", None)
    assert slot(router.get(SETTING).json, "Mesh SSID")["bssid"] == "00:00:00:00:00:00"
    assert router.logged("Failed to get bssid, return default value", priority=3)


def test_mixed_security_on_6_ghz_reads_as_wpa3_in_a_mesh(router):
    for role, sae, code in ((0, "1", 4), (1, "1", 3), (2, "1", 3), (1, "0", 2), (0, None, 2)):
        mesh(router, role)
        for ifname in ("ath2", "ath21", "ath1"):
            router.set(f"wireless.{ifname}.encryption", "psk2+ccmp")
            router.set(f"wireless.{ifname}.sae", sae)
        document = router.get(SETTING).json
        assert slot(document, "SSID7")["wifiSecurity"] == code, (role, sae)
        assert {slot(document, name)["wifiSecurity"] for name in ("SSID4", "SSID8")} == {2 if sae != "1" else 4}


def test_ccmp_is_open_with_owe(router):
    for owe, code in (("1", 1), ("0", 3), (None, 3), ("x", 3)):
        router.set("wireless.ath2.owe", owe)
        assert slot(router.get(SETTING).json, "SSID7")["wifiSecurity"] == code, owe


# Texts.


@pytest.mark.parametrize("text", list(kit.HOSTILE.values()), ids=list(kit.HOSTILE))
def test_hostile_texts_in_uci_are_shown_up_to_their_bound(router, text):
    quoted = text.replace("'", "'\\''")
    other = "\n".join(line for line in router.read("/etc/config/wireless").split("\n\n") if "'ath0'" not in line[:30])
    router.config("wireless", f"config wifi-iface 'ath0'\n\toption ssid '{quoted}'\n\toption key '{quoted}'\n\n{other}")
    entry = slot(router.get(SETTING).json, "SSID1")

    def cut(bound):
        """Bytes that are no UTF-8 are shown as U+FFFD."""
        return text.encode("utf-8", "surrogateescape")[:bound].decode("utf-8", "replace")
    assert (entry["ssidValue"], entry["ssidPassword"]) == (cut(32), cut(64))
    router.assert_nothing_ran()


def test_texts_are_never_cut_inside_a_character_and_answers_are_utf_8(router):
    router.set("wireless.ath0.ssid", "\u65e5" * 11)  # more than an SSID can be
    router.set("wireless.ath0.key", "a" * 63 + "\u00e9")
    router.set("wireless.ath01.ssid", "\udcff" * 32)
    router.set("repacd.MAPConfig.BackhaulSSID", "ab" + "\U0001f6dc" * 8)
    a = router.get(SETTING)
    document = json.loads(a.data.decode("utf-8"))  # strictly
    assert (slot(document, "SSID1")["ssidValue"], slot(document, "SSID1")["ssidPassword"]) == ("\u65e5" * 10, "a" * 63)
    assert slot(document, "SSID2")["ssidValue"] == "\ufffd" * 32
    assert slot(document, "Mesh SSID")["ssidValue"] == "ab" + "\U0001f6dc" * 7
