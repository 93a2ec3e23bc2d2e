"""GET and POST /api/v1/wireless/detail-setting."""

import json

import kit
import pytest
from routes.wireless_state import BRANDS, ISOLATE, changes, mesh, packages

DETAIL = "/api/v1/wireless/detail-setting"
RESULT_1 = '{"result": 1}'
RESULT_2 = '{"result": 2}'
OK_50 = '{"result": 0, "version": 1, "waitTime": 50}'
OK_100 = '{"result": 0, "version": 1, "waitTime": 100}'
COMMANDS = ["uci commit wireless", "uci commit wireless_for_easymesh", ISOLATE, "uci commit wireless"]
BAND_STEERING = ["uci commit lbd", "uci commit bandsteering"]

SETTINGS = {
    "beaconInterval": 100, "dtimPeriod": 1, "bandWidth2G": 1, "bandWidth5G": 3, "bandWidth6G": 4, "power2G": 100,
    "power5G": 100, "power6G": 100, "multicastConversionEnable": 1, "guestSsidIsolationEnable": 1,
    "beamforming5GEnable": 1, "beamforming6GEnable": 1, "ieee802dot11r": 0, "muMimoEnable": 1, "ofdmaEnable": 1,
    "multiRuEnable": 0, "wpsEnable": 1, "bandSteeringEnable": 0}
PERCENTS = (100, 90, 75, 50, 25, 10)
ACCEPTED = {
    "beaconInterval": range(40, 1001), "dtimPeriod": range(1, 256), "bandWidth2G": range(2), "bandWidth5G": range(4),
    "bandWidth6G": range(5), "power2G": PERCENTS, "power5G": PERCENTS, "power6G": PERCENTS,
    "bandSteeringEnable": range(3)}
MESSAGES = {"wpsEnable": "Get wlanDetailSetting.wpsEnable error",
            "bandSteeringEnable": "Get wlanDetailSetting.bandSteeringEnable error"}


def request(**members):
    return {**SETTINGS, **members}


def refused(router, body, text=RESULT_1):
    a = router.post(DETAIL, body)
    assert a.encrypted and a.text == text, (a, router.report())
    assert a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert router.commands() == []


def accepted(router, text, *reload, **members):
    router.forget_calls()
    a = router.post(DETAIL, request(**members))
    assert a.encrypted and a.text == text, (a, router.report())
    for command in (ISOLATE, *reload):
        router.wait_for_call(*command.split())
    assert sorted(router.commands()) == sorted([*COMMANDS, *reload])
    return [c for c in router.commands() if c != ISOLATE]


# GET.


def test_the_factory_settings(router):
    a = router.get(DETAIL)
    assert a.encrypted and a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    expected = {"result": 0, "version": 1, **SETTINGS}
    assert a.text == json.dumps(expected).replace("{", "{ ").replace("}", " }")
    assert router.commands() == []


def test_an_agent_shows_its_controllers_values_whatever_uci_holds(router):
    mesh(router, 2)
    for option, value in {"ath0.bintval": 500, "ath0.dtim_period": 9, "ath0.mcastenhance": 0, "ath01.guest_separation": 0,
                          "ath1.set_eht_mu_bfmr": 0, "ath2.set_eht_mu_bfmr": None, "ath0.set_eht_ulmumimo": 0,
                          "ath0.set_eht_ulofdma": None, "ath0.wps_pbc": 0, "ath1.wps_pbc": 0}.items():
        router.set(f"wireless.{option}", value)
    answer = router.get(DETAIL).json
    assert answer == {"result": 0, "version": 1, **SETTINGS, "ieee802dot11r": 1, "bandSteeringEnable": 1}


_MESSAGES_OF_READING = {
    "wireless.ath0.bintval": "Failed to get bintval value",
    "wireless.ath0.dtim_period": "Failed to get dtim_period value",
    "wireless.ath0.mcastenhance": "Failed to get mcastenhance value",
    "wireless.ath1.set_eht_mu_bfmr": "Failed to get 5G set_eht_mu_bfmr value",
    "wireless.ath2.set_eht_mu_bfmr": "Failed to get 6G set_eht_mu_bfmr value",
    "wireless.ath0.set_eht_ulmumimo": "Failed to get set_eht_ulmumimo value",
    "wireless.ath0.set_eht_ulofdma": "Failed to get set_eht_ulofdma value",
    "lbd.config.Enable": "Failed to get band steering status",
    "wireless.ath0.txpower": "Failed to get 2.4G txpower value",
    "wireless.ath1.txpower": "Failed to get 5G txpower value",
    "wireless.wifi0.htmode": "Failed to get 2.4G htmode value",
    "wireless.wifi1.htmode": "Failed to get 5G htmode value",
    "wireless.wifi2.htmode": "Failed to get 6G htmode value",
    "button_mesh.easymesh.enable": "Failed to get mesh mode",
}


def test_what_cannot_be_read_is_a_plain_failure(router):
    for address, message in _MESSAGES_OF_READING.items():
        value = router.option(address)
        router.set(address, None)
        a = router.get(DETAIL)
        assert not a.encrypted and a.text == RESULT_1, address
        assert a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
        assert router.logged(message, priority=3)
        router.set(address, value)
    for band, radio in (("2.4G", "wifi0"), ("5G", "wifi1"), ("6G", "wifi2")):
        value = router.option(f"wireless.{radio}.htmode")
        router.set(f"wireless.{radio}.htmode", "HE80")
        assert router.get(DETAIL).text == RESULT_1
        assert router.logged(f"Failed to match {band} htmode bandwidth", priority=3)
        router.set(f"wireless.{radio}.htmode", value)
    assert router.get(DETAIL).json["result"] == 0


def test_defaults_of_what_cannot_be_read(router):
    router.set("wireless.ath2.txpower", None)
    router.set("wireless.wifi1.dfs_puncture_en", None)
    router.set("wireless.ath01.guest_separation", None)
    router.set("wireless.ath1.wps_pbc", None)
    router.set("button_mesh.easymesh.ieee80211r", None)
    answer = router.get(DETAIL).json
    assert answer == {"result": 0, "version": 1, **SETTINGS, "guestSsidIsolationEnable": 0}
    for message in ("Failed to get 6G txpower value", "Failed to get ath1_wps_state",
                    "Failed to get WPS status, return default value"):
        assert router.logged(message, priority=3)


def test_a_power_that_is_in_no_table_row_reads_as_zero(router):
    router.set("wireless.ath0.txpower", "20")
    assert router.get(DETAIL).json["power2G"] == 0


def test_without_any_package(bare_router):
    a = bare_router.get(DETAIL)
    assert not a.encrypted and a.text == RESULT_1
    assert bare_router.post(DETAIL, SETTINGS).text == RESULT_2
    assert bare_router.commands() == []


# POST: what is refused.


def test_no_body(router):
    refused(router, None)
    assert router.logged("Empty data is passed on setting wireless detailed config.", priority=3)


@pytest.mark.parametrize("body", kit.GARBAGE_BODIES.values(), ids=kit.GARBAGE_BODIES)
def test_garbage(router, body):
    refused(router, body)


def test_text_that_is_no_json(router):
    refused(router, "hello")
    assert router.logged("Failed to parse data to json format.", priority=3)


def test_every_key_is_required(router):
    before = packages(router)
    for key in SETTINGS:
        refused(router, {k: v for k, v in SETTINGS.items() if k != key})
        assert router.logged(MESSAGES.get(key, "Get wlanDetailSetting"), priority=3) == (key in MESSAGES), key
    assert packages(router) == before


def test_every_value_out_of_range_is_refused(router):
    before = packages(router)
    for key in SETTINGS:
        values = ACCEPTED.get(key, range(2))
        for value in {min(values) - 1, max(values) + 1, -1, 2**31 - 1, -2**31, 2**70} - set(values):
            refused(router, request(**{key: value}))
    for key in ("power2G", "power5G", "power6G"):
        for value in (0, 1, 11, 24, 26, 49, 51, 74, 76, 80, 89, 91, 99):
            refused(router, request(**{key: value}))
    refused(router, request(beaconInterval=39))
    refused(router, request(beaconInterval=1001))
    assert packages(router) == before


def test_hostile_texts_in_place_of_numbers(router):
    for text in kit.HOSTILE.values():
        a = router.post(DETAIL, request(beaconInterval=text))
        assert a.text == RESULT_1, text
    assert router.commands() == []
    router.assert_nothing_ran()


# POST: what is written.


@pytest.mark.parametrize("role", [0, 1])
def test_the_read_document_posted_back_changes_nothing(router, role):
    mesh(router, role)
    before = packages(router)
    document = router.get(DETAIL).json
    if role == 0:
        accepted(router, OK_50, "wifi reload", **document)
    else:
        accepted(router, OK_100, "wifi reload", "wifi multi_up mld2 mld3 mld6", **document)
    assert changes(before, packages(router)) == {}
    assert router.get(DETAIL).json == document


def test_what_is_posted_is_read_back(router):
    posted = {**SETTINGS, "beaconInterval": 250, "dtimPeriod": 5, "bandWidth2G": 0, "bandWidth5G": 2, "bandWidth6G": 3,
              "power2G": 90, "power5G": 75, "power6G": 10, "multicastConversionEnable": 0, "guestSsidIsolationEnable": 0,
              "beamforming5GEnable": 0, "beamforming6GEnable": 0, "muMimoEnable": 0, "ofdmaEnable": 0,
              "multiRuEnable": 1, "wpsEnable": 0, "ieee802dot11r": 1}
    calls = accepted(router, OK_50, "wifi reload", **posted)
    assert calls == ["uci commit wireless", "uci commit wireless_for_easymesh", "uci commit wireless", "wifi reload"]
    # 802.11r is the wireless settings' to write.
    assert router.get(DETAIL).json == {"result": 0, "version": 1, **posted, "ieee802dot11r": 0}
    assert [router.option(f"wireless.ath{band}.txpower") for band in range(3)] == ["24", "18", "3"]


def test_every_width_and_power(router):
    for width in range(5):
        for power in PERCENTS:
            posted = request(bandWidth2G=min(width, 1), bandWidth5G=min(width, 3), bandWidth6G=width, power2G=power,
                             power5G=power, power6G=power)
            if (width, power) not in ((0, 10), (1, 25), (2, 50), (3, 75), (4, 90), (4, 100)):
                continue  # each row of each table once: they are walked whole in the unit tests
            assert router.post(DETAIL, posted).text == OK_50
            assert router.get(DETAIL).json == {"result": 0, "version": 1, **posted}


def test_short_beacon_intervals_are_stored_as_100(router):
    for interval, stored in ((40, "100"), (99, "100"), (100, "100"), (101, "101"), (1000, "1000")):
        assert router.post(DETAIL, request(beaconInterval=interval)).text == OK_50
        assert router.option("wireless.ath25.bintval") == stored


@pytest.mark.parametrize("brand", BRANDS)
@pytest.mark.parametrize("role", [0, 1, 2])
def test_the_reload_goes_by_brand_role_and_mode(router, brand, role):
    modes = {(0, 1): {1: "2 3 6", 2: "0 1 6"}, (1, 1): {0: "2 5 6 11 12", 1: "0 2 4 10 11", 2: "0 2 5 10 11", 7: None},
             (0, 2): {1: "4 5", 2: "2 3"}, (1, 2): {0: "5 8 9", 1: "4 6 7", 2: "3 4 7"}}
    for mode in (0, 1, 2, 7):
        mesh(router, role, mode, brand=brand)
        reload = ["wifi reload"] if role == 0 else []
        mlds = modes.get((brand, role), {}).get(mode, "")
        if mlds:
            reload = ["wifi reload", "wifi multi_up " + " ".join(f"mld{n}" for n in mlds.split())]
        if mlds is None:
            reload = ["wifi reload"]  # a controller of this brand reloads plainly where its mode is unknown
        accepted(router, OK_50 if role == 0 else OK_100, *reload)


def test_a_controller_mirrors_what_the_mesh_shares(router):
    mesh(router, 1)
    before = packages(router)
    router.post(DETAIL, request(beaconInterval=300, dtimPeriod=7, bandWidth2G=0, power2G=50, multiRuEnable=1,
                                guestSsidIsolationEnable=0, wpsEnable=0, ofdmaEnable=0, muMimoEnable=0,
                                multicastConversionEnable=0, beamforming5GEnable=0, beamforming6GEnable=0))
    changed = changes(before, packages(router))
    mirrored = {key.split(".", 1)[1]: value for key, value in changed.items() if key.startswith("wireless_for")}
    beacons = ("ath0", "ath1", "ath2", "ath01", "ath11", "ath21", "ath02", "ath12", "ath22")
    assert mirrored == {
        **{f"{ifname}.bintval": ("100", "300") for ifname in beacons},
        **{f"ath{band}.dtim_period": ("1", "7") for band in range(3)},
        **{f"ath{band}.wps_state": ("2", "1") for band in range(2)},
        **{f"ath{band}.wps_pbc": ("1", "0") for band in range(2)},
        "wifi0.htmode": ("HT40", "HT20"), "ath0.txpower": ("27", "13"), "ath01.guest_separation": ("1", "0"),
        "wifi1.dfs_puncture_en": ("0", "1")}
    own = {key.split(".", 1)[1]: value for key, value in changed.items() if key.startswith("wireless.")}
    assert {key: own.get(key) for key in mirrored} == mirrored
    assert {key for key in own if key not in mirrored} == {
        *(f"ath{band}.{option}" for band in range(3) for option in (
            "mcastenhance", "igmpmcasten", "set_eht_ulmumimo", "he_ul_mimo", "he_ul_ofdma", "he_dl_ofdma",
            "set_eht_ulofdma")),
        *(f"ath{band}.{option}" for band in (1, 2) for option in (
            "set_eht_mu_bfmr", "set_eht_su_bfmr", "he_subfer", "he_mubfer", "vhtsubfer", "vhtmubfer"))}


@pytest.mark.parametrize("op_mode", ["re", "repeater"])
def test_a_repeater_leaves_guests_and_their_beacons_alone(router, op_mode):
    router.set("system.@system[0].op_mode", op_mode)
    before = packages(router)
    accepted(router, OK_50, "wifi reload", beaconInterval=200, guestSsidIsolationEnable=0)
    assert changes(before, packages(router)) == {f"wireless.ath{band}.bintval": ("100", "200") for band in range(3)}


# POST: WPS and band steering.


def test_wps_is_refused_with_both_networks_hidden(router):
    for band in (0, 1):
        router.set(f"wireless.ath{band}.hidden", 1)
    refused(router, request(beaconInterval=500), RESULT_2)
    assert router.logged("2G and 5G hidden_value  not match", priority=3)
    assert router.logged("Failed to set wpsEnable", priority=3)
    assert router.option("wireless.ath0.bintval") == "100"  # nothing is written before


def test_wps_is_refused_without_wpa2_and_without_radios(router):
    for band, encryption in ((0, "none"), (1, "ccmp")):
        router.set(f"wireless.ath{band}.encryption", encryption)
    refused(router, SETTINGS, RESULT_2)
    assert router.logged("2G and 5G encryption modes do not match", priority=3)
    router.set("wireless.wifi0.disabled", 1)
    router.set("wireless.ath1.disabled", 1)
    refused(router, SETTINGS, RESULT_2)
    assert router.logged("2G and 5G band is disabled, cannot set WPS status", priority=3)
    assert router.post(DETAIL, request(wpsEnable=0)).text == OK_50


def test_the_mac_filter_does_not_refuse_wps(router):
    router.set("macfilter.macfilter.enable", 1)
    assert router.post(DETAIL, request(wpsEnable=0)).text == OK_50
    assert router.logged("Enable macfilter func, no wps func", priority=7)
    assert router.option("wireless.ath0.wps_pbc") == "0"
    assert router.post(DETAIL, request(wpsEnable=1)).text == OK_50
    assert router.option("wireless.ath0.wps_pbc") == "1"


def test_band_steering_is_switched_on_and_off(router):
    before = packages(router)
    assert router.post(DETAIL, request(bandSteeringEnable=1)).text == OK_50
    assert router.commands()[:2] == BAND_STEERING
    for band in (1, 2):
        assert router.option(f"wireless.ath{band}.ssid") == "Router-2.4G-1234"
        assert router.option(f"wireless.mld{band + 1}.mld_ssid") == "Router-2.4G-1234"
    assert router.get(DETAIL).json["bandSteeringEnable"] == 1
    # The same again: nothing of band steering runs.
    accepted(router, OK_50, "wifi reload", bandSteeringEnable=1)
    assert router.post(DETAIL, request(bandSteeringEnable=0)).text == OK_50
    assert set(changes(before, packages(router))) == {"wireless.ath2.ieee80211w"}


def test_names_and_keys_go_through_band_steering_whole(router):
    for text in kit.HOSTILE.values():
        if not text or len(text) > 100 or "\x01" in text:
            continue  # what the wireless settings would not have stored
        router.set("wireless.ath0.ssid", text)
        assert router.post(DETAIL, request(bandSteeringEnable=1)).text == OK_50
        assert router.option("wireless.ath2.ssid") == router.option("wireless.mld3.mld_ssid") == text
        assert router.post(DETAIL, request(bandSteeringEnable=0)).text == OK_50
        assert router.option("wireless.ath2.ssid") == "Router-6G-1234"
    router.assert_nothing_ran()


def test_band_steering_2_is_accepted_and_does_nothing(router):
    before = packages(router)
    accepted(router, OK_50, "wifi reload", bandSteeringEnable=2)
    assert router.logged("bandSteering data is error", priority=3)
    assert changes(before, packages(router)) == {}


# POST: what cannot be applied.


@pytest.mark.parametrize("section,message", [
    ("ath0", "Failed to set wireless.ath0.bintval"), ("ath05", "Failed to set wireless.ath05.bintval"),
    ("wifi0", "Failed to get 2G radio disable status"), ("wifi2", "Failed to set wireless.wifi2.htmode")])
def test_a_missing_section_fails(router, section, message):
    router.set(f"wireless.{section}", None)
    refused(router, SETTINGS, RESULT_2)
    assert router.logged(message, priority=3)
    if "bintval" in message:
        assert router.logged("Failed to set beacon interval", priority=3)


def test_a_missing_role_and_operation_mode_fail(router):
    router.set("system.@system[0].op_mode", None)
    refused(router, SETTINGS, RESULT_2)
    assert router.logged("Failed to get opmode", priority=3)
    router.set("button_mesh.easymesh.enable", None)
    refused(router, SETTINGS, RESULT_2)
    assert router.logged("Failed to get mesh role", priority=3)


@pytest.mark.parametrize("how", [{"exit": 1}, {"missing": True}, {"signal": 9}])
def test_dead_tools_change_no_answer(router, how):
    for tool in ("wifi", ISOLATE, "uci"):
        router.tool(tool, **how)
    assert router.post(DETAIL, request(bandSteeringEnable=1, dtimPeriod=9)).text == OK_50
    assert router.option("wireless.ath1.dtim_period") == "9"
    assert router.get(DETAIL).json["bandSteeringEnable"] == 1
