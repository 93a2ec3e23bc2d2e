"""Members of the wireless routes' documents: what counts as a number or a text, and what is a missing member."""

import kit
import pytest
from routes.test_agent_wifi_client import AGENT, MISSING, SAME
from routes.test_detail_setting import DETAIL, SETTINGS
from routes.test_wps import STATUS
from routes.wireless_state import ISOLATE, SETTING, changes, element, packages, request, wait

RESULT_1 = '{"result": 1}'
RESULT_2 = '{"result": 2}'
NO_NUMBERS = [None, [], [1], {}, {"a": 1}, "", " ", "abc", "1x", " 1", "0x1", "1.0", 1.5]
NO_TEXTS = [None, [], ["SSID1"], {}, {"a": "b"}, True, False]
ONES = [1, 1.0, True, "1", "01"]
ZEROS = [0, 0.0, False, "0", "-0"]


def refused(router, uri, body, answer=RESULT_1, commands=()):
    router.forget_calls()
    a = router.post(uri, body)
    assert a.encrypted and a.text == answer, (body, a)
    for command in commands:
        router.wait_for_call(*command.split())
    assert router.commands() == list(commands), body


# Wireless settings.


@pytest.mark.parametrize("key,message", [
    ("set2GChannel", "Failed to parse channel2G"), ("set5GChannel", "Failed to parse channel5G"),
    ("set6GChannel", "Failed to parse channel6G"), ("mlo", "Failed to parse mlo"), ("mesh", "Failed to parse mesh")])
def test_a_number_of_the_settings_that_is_none_is_missing(router, key, message):
    router.set("button_mesh.easymesh.enable", 1)  # so that a 0 would take the mesh down
    router.set("button_mesh.easymesh.role", "controller")
    before = packages(router)
    for value in NO_NUMBERS:
        logged = len(router.log())
        refused(router, SETTING, request(element("SSID1", ssidValue="New"), ieee802dot11r=1, **{key: value}),
                commands=[ISOLATE])
        assert message in [line.text for line in router.log()[logged:]], value
    assert changes(before, packages(router)) == {}


def test_band_steering_and_slots_that_are_none_are_missing(router):
    before = packages(router)
    for value in (None, [], {}, [1]):
        refused(router, SETTING, request(element("SSID1", ssidValue="New"), bandSteering=value), commands=[ISOLATE])
    assert router.logged("Failed to parse bandSteering", priority=3)
    for value in (None, {}, "text", 1, True, {"0": element("SSID1")}):
        refused(router, SETTING, {**request(), "wirelessConfig": value}, commands=[ISOLATE])
    assert router.logged("Failed to parse wirelessConfig", priority=3)
    assert changes(before, packages(router)) == {}


def test_a_number_of_a_slot_that_is_none_is_that_of_the_slot_before(router):
    first = element("SSID2", ssidStatus=0, wifiSecurity=2, wifiStealth=1, wpaRekeyInterval=4000)
    stored = {"ssidStatus": ("disabled", "1"), "wifiSecurity": ("sae", None), "wifiStealth": ("hidden", "1"),
              "wpaRekeyInterval": ("wpa_group_rekey", "4000")}
    for key, (option, value) in stored.items():
        for none in NO_NUMBERS:
            router.set(f"wireless.ath11.{option}", "x")
            assert router.post(SETTING, request(first, element("SSID5", **{key: none}))).text == wait(70)
            assert router.option(f"wireless.ath11.{option}") == value, (key, none)


def test_a_text_of_a_slot_that_is_none_is_that_of_the_slot_before(router):
    first = element("SSID2", ssidValue="First", ssidPassword="first key")
    for none in NO_TEXTS:
        assert router.post(SETTING, request(first, element("SSID5", ssidValue=none, ssidPassword=none))).text == wait(70)
        assert (router.option("wireless.ath11.ssid"), router.option("wireless.ath11.key")) == ("First", "first key"), none


def test_a_slot_whose_name_is_no_text_does_not_exist(router):
    before = packages(router)
    for none in NO_TEXTS:
        refused(router, SETTING, request(element(none)), RESULT_2, [ISOLATE])
    assert changes(before, packages(router)) == {}


def test_numbers_of_the_settings_in_other_forms(router):
    for value in ONES:
        router.set("button_mesh.easymesh.ieee80211r", "x")
        for radio in ("wifi0", "wifi2"):
            router.set(f"wireless.{radio}.channel", "x")
        body = request(element("SSID2", wifiStealth=value, ssidStatus=value), ieee802dot11r=value, set2GChannel=value,
                       set6GChannel=value)
        assert router.post(SETTING, body).text == wait(70), value
        assert router.option("button_mesh.easymesh.ieee80211r") == "1"
        assert router.option("wireless.wifi0.channel") == router.option("wireless.wifi2.channel") == "1"
        assert (router.option("wireless.ath01.hidden"), router.option("wireless.ath01.disabled")) == ("1", "0")
    for value in ZEROS:
        assert router.post(SETTING, request(element("SSID2", wifiStealth=value, ssidStatus=value), mlo=value, mesh=value,
                                            set5GChannel=value)).text == wait(70), value
        assert (router.option("wireless.ath01.hidden"), router.option("wireless.ath01.disabled")) == ("0", "1")


def test_numbers_count_as_names_and_passwords(router):
    assert router.post(SETTING, request(element("SSID2", ssidValue=12345, ssidPassword=1234567890))).text == wait(70)
    assert (router.option("wireless.ath01.ssid"), router.option("wireless.ath01.key")) == ("12345", "1234567890")


# Detail settings.


def test_every_detail_setting_that_is_no_number_is_missing(router):
    before = packages(router)
    for key in SETTINGS:
        for value in NO_NUMBERS:
            refused(router, DETAIL, {**SETTINGS, key: value})
    assert router.logged("Get wlanDetailSetting.wpsEnable error", priority=3)
    assert packages(router) == before


def test_detail_settings_in_other_forms(router):
    for one in ONES:
        body = {**SETTINGS, "wpsEnable": one, "dtimPeriod": one, "multiRuEnable": one, "beaconInterval": "0250"}
        assert router.post(DETAIL, body).json["result"] == 0, one
        assert router.get(DETAIL).json["multiRuEnable"] == 1
    for zero in ZEROS:
        assert router.post(DETAIL, {**SETTINGS, "wpsEnable": zero, "multiRuEnable": zero}).json["result"] == 0, zero
        assert (router.get(DETAIL).json["wpsEnable"], router.get(DETAIL).json["multiRuEnable"]) == (0, 0)


# WPS.


def test_a_wps_status_that_is_no_number_is_missing(router):
    before = packages(router)
    for value in NO_NUMBERS:
        refused(router, STATUS, {"status": value})
    for text in kit.HOSTILE.values():
        refused(router, STATUS, {"status": text})
    assert packages(router) == before


def test_a_wps_status_in_other_forms(router):
    for values, pbc in ((ZEROS, "0"), (ONES, "1")):
        for value in values:
            router.set("wireless.ath0.wps_pbc", "x")
            assert router.post(STATUS, {"status": value}).json["result"] == 0, value
            assert router.option("wireless.ath0.wps_pbc") == pbc


# Set-up of a mesh agent.


def test_every_agent_setting_that_is_none_is_missing(router):
    before = packages(router)
    for key in SAME:
        for value in NO_TEXTS if key == "locationCustom" else NO_NUMBERS:
            logged = len(router.log())
            refused(router, AGENT, {**SAME, "mesh": 1, key: value})
            assert MISSING[key] in [line.text for line in router.log()[logged:]], (key, value)
    assert packages(router) == before


def test_agent_settings_in_other_forms(router):
    for value in ONES:
        router.set("button_mesh.easymesh.ieee80211r", "x")
        assert router.post(AGENT, {**SAME, "ieee802dot11r": value, "compatiMode": value, "locationCustom": 12}).json[
            "result"] == 0, value
        assert router.option("button_mesh.easymesh.ieee80211r") == router.option("repeater.compatiMode.value") == "1"
        assert router.option("devicecustom.info.locationCustom") == "12"


# A document that is JSON and no object: what is missing is its first member.


@pytest.mark.parametrize("body", [b"[]", b"[1]", b"1", b'"text"', b"true", b"1.5"])
def test_a_document_that_is_no_object_lacks_its_first_member(router, body):
    before = packages(router)
    for uri, message in ((SETTING, "Failed to parse wirelessConfig"), (AGENT, "parse mesh error"), (DETAIL, None)):
        a = router.post(uri, body)
        assert a.encrypted and a.text == RESULT_1
        texts = [line.text for line in router.log()]
        assert message is None or message in texts
        for unparsable in ("Can't parse request_body to json format.", "can't parse data to json format.",
                           "Failed to parse data to json format."):
            assert unparsable not in texts
    assert packages(router) == before
