"""What the wireless routes refuse is refused before the first write: no package changes, no tool that changes anything runs."""

import pytest
from routes.test_agent_wifi_client import AGENT, CLOSE, OK_20, SAME
from routes.test_agent_wifi_client import prepare as prepare_agent
from routes.test_detail_setting import DETAIL, SETTINGS
from routes.wireless_state import CLOSE_MESH, ISOLATE, SETTING, changes, element, mesh, packages, request, wait

RESULT_1 = '{"result": 1}'
RESULT_2 = '{"result": 2}'
LEDS = [f"/sys/devices/platform/soc@0/soc@0:leds/leds/led_{band}g/brightness" for band in (2, 5, 6)]


def state(router):
    return {**packages(router), **{led: router.read(led) for led in LEDS}, "devicecustom": router.read("/etc/config/devicecustom")}


def refused(router, uri, body, answer, commands=()):
    before = state(router)
    router.forget_calls()
    a = router.post(uri, body)
    assert a.encrypted and a.text == answer, (a, router.report())
    for command in commands:
        router.wait_for_call(*command.split())
    assert router.commands() == list(commands)
    assert changes(before, state(router)) == {}


# Wireless settings. All else in these requests would be written.

NEW = [element("SSID2", ssidValue="New guest"), element("MLO SSID", ssidValue="New MLO")]


def refused_setting(router, answer, *elements, **members):
    wanted = {"ieee802dot11r": 1, "set2GChannel": 11, "set5GChannel": 36, "set6GChannel": 5, "mlo": 4, **members}
    refused(router, SETTING, request(*elements, **wanted), answer, [ISOLATE])


@pytest.mark.parametrize("channels", [{"set2GChannel": 14}, {"set5GChannel": 68}, {"set5GChannel": 165}, {"set6GChannel": 2}])
def test_one_channel_that_is_not_permitted_leaves_the_others_alone(router, channels):
    refused_setting(router, RESULT_1, *NEW, **channels)
    assert router.logged("Failed to set channel2G, channel5G, channel6G", priority=3)


@pytest.mark.parametrize("key", ["mesh", "mlo", "set6GChannel", "bandSteering"])
def test_a_missing_member_leaves_80211r_and_channels_alone(router, key):
    refused_setting(router, RESULT_1, *NEW, **{key: None})


@pytest.mark.parametrize("op_mode", ["router", "re"])
@pytest.mark.parametrize("bad", [
    element("SSID10"), element(None), element("SSID5", ssidPassword="short"), element("SSID5", ssidPassword="z" * 64),
    element("SSID5", ssidPassword="1234567\u00e9", wifiSecurity=2)])
def test_a_slot_that_is_refused_leaves_those_before_it_alone(router, op_mode, bad):
    router.set("system.@system[0].op_mode", op_mode)
    refused_setting(router, RESULT_2, *NEW, bad)


def test_a_password_is_looked_at_before_its_name_is_written(router):
    refused_setting(router, RESULT_2, element("SSID2", ssidValue="New", ssidStatus=0, ssidPassword="short"))
    assert router.logged("Password check failed", priority=3)
    assert router.logged("set_wireless_encryption failed", priority=3)
    assert router.logged("Failed to set wireless info", priority=3)


def test_what_band_steering_makes_of_a_slot_is_what_counts(router):
    router.set("lbd.config.Enable", 1)
    open_main = element("SSID1", ssidPassword="short", wifiSecurity=1)  # an open network's password does not matter
    refused_setting(router, RESULT_2, open_main, element("SSID7", wifiSecurity=3))  # 6 GHz keeps its security
    assert router.post(SETTING, request(open_main, element("SSID4", ssidPassword="x", wifiSecurity=3))).text == wait(70)
    assert router.option("wireless.ath1.encryption") == "none"


def test_a_refused_request_leaves_no_template_for_the_next(router):
    router.set("lbd.config.Enable", 1)
    refused_setting(router, RESULT_2, element("SSID1", ssidValue="Refused"), element("SSID10"))
    assert router.post(SETTING, request(element("SSID4", ssidValue="Its own"))).text == wait(70)
    assert router.option("wireless.ath1.ssid") == "Its own"


@pytest.mark.parametrize("brand,role", [(0, 0), (1, 0), (1, 1)])
def test_an_mlo_key_that_would_be_cut_leaves_the_links_alone(router, brand, role):
    mesh(router, role, brand=brand)
    refused_setting(router, RESULT_2, NEW[0], element("MLO SSID", ssidValue="New MLO", ssidPassword="'" * 60), mesh=role)
    assert router.logged("Failed to escape password (buffer too small or invalid input)", priority=3)
    assert router.logged("Failed to set Wifimlo", priority=3)


@pytest.mark.parametrize("name", ["SSID4", "MLO SSID"])
def test_a_security_that_the_fronthaul_does_not_know_leaves_all_alone(router, name):
    mesh(router, 1, brand=1)
    refused_setting(router, RESULT_2, NEW[0], element(name, wifiSecurity=7), mesh=1)
    assert router.logged("set_repacd_info: unknown wifiSecurity 7", priority=3)
    assert router.logged("set_repacd_info failed", priority=3)


@pytest.mark.parametrize("key", ["ssidValue", "ssidPassword"])
@pytest.mark.parametrize("name", ["SSID1", "MLO SSID", "Mesh SSID"])
def test_a_text_that_uci_cannot_hold_leaves_all_alone(router, name, key):
    refused_setting(router, RESULT_1, *NEW, element(name, **{key: "control\x01character"}))
    assert router.logged("ssidValue or ssidPassword holds control characters", priority=3)


def test_slots_behind_a_change_of_the_mesh_mode_refuse_nothing(router):
    mesh(router, 1, mode=1)
    a = router.post(SETTING, request(element("Mesh SSID", band="5GHz,6GHz"), element("SSID10"), mesh=1))
    assert a.text == wait(230)
    router.wait_for_call(CLOSE_MESH)


# A slot whose section a mesh has taken away.


def test_a_slot_without_a_section_names_no_mld(router):
    mesh(router, 1, mode=0, brand=1)  # mld7 carries ath01, the slot table has it for ath04
    for package in ("wireless", "wireless_for_easymesh"):
        for ifname in ("ath04", "ath05", "ath15", "ath25"):
            router.set(f"{package}.{ifname}", None)
        for mld in ("mld2", "mld7"):
            router.set(f"{package}.{mld}.mld_ssid", "Another's")
    a = router.post(SETTING, request(element("SSID3", ssidValue="Lost"), element("MLO SSID", ssidValue="Lost"), mlo=4, mesh=1))
    assert a.text == wait(100)
    assert [router.option(f"{package}.{mld}.mld_ssid") for package in ("wireless", "wireless_for_easymesh")
            for mld in ("mld2", "mld7")] == ["Another's"] * 4
    assert router.option("wireless_for_easymesh.mld0.mld_ssid") != "Lost"


def test_a_copy_without_a_section_names_no_mld(router):
    mesh(router, 1)
    router.set("wireless_for_easymesh.ath01", None)
    before = router.option("wireless_for_easymesh.mld4.mld_ssid")
    assert router.post(SETTING, request(element("SSID2", ssidValue="New"), mesh=1)).text == wait(100)
    assert router.option("wireless.mld4.mld_ssid") == router.option("wireless.ath01.ssid") == "New"
    assert router.option("wireless_for_easymesh.mld4.mld_ssid") == before


# Detail settings.


@pytest.mark.parametrize("states,message", [
    ({"ath0.hidden": 1, "ath1.hidden": 1}, "2G and 5G hidden_value  not match"),
    ({"ath0.encryption": "none", "ath1.encryption": "ccmp"}, "2G and 5G encryption modes do not match"),
    ({"wifi0.disabled": 1, "ath1.disabled": 1}, "2G and 5G band is disabled, cannot set WPS status")])
def test_wps_that_is_refused_leaves_the_other_settings_alone(router, states, message):
    for option, value in states.items():
        router.set(f"wireless.{option}", value)
    refused(router, DETAIL, {**SETTINGS, "beaconInterval": 500, "bandSteeringEnable": 1}, RESULT_2)
    assert router.logged(message, priority=3)
    assert router.logged("Failed to set wpsEnable", priority=3)


def names_and_keys(router):
    return {f"{ifname}.{option}": router.option(f"wireless.{ifname}.{option}") for ifname in ("ath0", "ath1", "ath2")
            for option in ("ssid", "key", "encryption", "sae", "owe", "hidden")}


def test_band_steering_makes_the_places_where_names_and_keys_are_kept(router):
    router.config("bandsteering", "")
    router.config("lbd", "")
    own = names_and_keys(router)
    assert router.post(DETAIL, {**SETTINGS, "bandSteeringEnable": 1}).json["result"] == 0
    assert names_and_keys(router)["ath1.ssid"] == own["ath0.ssid"] != own["ath1.ssid"]
    assert router.option("bandsteering.ath2.ssid") == own["ath2.ssid"]
    assert router.option("lbd.config.Enable") == "1"
    assert router.post(DETAIL, {**SETTINGS, "bandSteeringEnable": 0}).json["result"] == 0
    assert names_and_keys(router) == own


@pytest.mark.parametrize("package", ["bandsteering", "lbd"])
def test_without_such_a_place_band_steering_overwrites_nothing(router, package):
    router.no_config(package)
    own = names_and_keys(router)
    router.forget_calls()
    assert router.post(DETAIL, {**SETTINGS, "bandSteeringEnable": 1}).json["result"] == 0  # it is no failure of the request
    assert names_and_keys(router) == own
    assert router.option("lbd.config.Enable") in ("0", None)
    assert not {"uci commit lbd", "uci commit bandsteering"} & set(router.commands())
    assert any(line.text.startswith(f"Failed to create {package}.") for line in router.log())


# Set-up of a mesh agent.


def test_a_location_that_uci_cannot_hold_leaves_all_alone(router):
    refused(router, AGENT, {**SAME, "mesh": 1, "ieee802dot11r": 1, "multiRuEnable": 1, "locationCustom": "a\x01b"}, RESULT_1)
    assert router.logged("parse locationCustom error", priority=3)


@pytest.mark.parametrize("mode", [0, 1, 2])
def test_a_request_that_repeats_what_is_in_force_runs_nothing(router, mode):
    prepare_agent(router, 1, mode=1, compati=0)
    body = {**SAME, "mesh": 1, "multiLinkOperationEnable": mode, "compatiWiFi6Mode": 1}
    assert router.post(AGENT, body).json["waitTime"] == 150
    router.wait_for_call(CLOSE)
    assert router.option("button_mesh.easymesh.mode") == "1"
    for _ in range(3):
        router.forget_calls()
        router.set("button_mesh.easymesh.mode_change", 0)
        assert router.post(AGENT, body).text == OK_20
        assert router.commands() == []
        assert router.option("button_mesh.easymesh.mode_change") == "0"
