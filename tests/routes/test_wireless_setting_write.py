"""POST /api/v1/wireless/setting: how a request ends, what it is refused for, 802.11r and channels."""

import itertools

import kit
import pytest
from routes.wireless_posts import COMMITS, OK_70, RESULT_1, RESULT_2, ends, post
from routes.wireless_state import (BANDS_OF_MODE, BRANDS, CHAIN, CLOSE_MESH, ISOLATE, OPEN_MESH, SETTING, background,
                                   changes, element, mesh, packages, request, wait)

# Endings.


def test_a_change_of_a_router_reloads_wifi(router):
    a = post(router, element("SSID1", ssidValue="New name"))
    ends(router, a, *OK_70)
    assert router.commands()[:2] == COMMITS
    assert router.option("wireless.ath0.ssid") == router.option("wireless.mld1.mld_ssid") == "New name"


def test_no_slots_at_all_are_fine(router):
    ends(router, post(router), *OK_70)


def test_a_repeater_only_commits(router):
    router.set("system.@system[0].op_mode", "re")
    a = post(router, element("SSID2", ssidValue="Second"))
    ends(router, a, wait(20), [*COMMITS, ISOLATE])
    assert router.option("wireless.ath02.ssid") == "Second"
    assert router.logged("opmode is repaeter,no need to wifi reload ,just return success. "
                         "because detail_setting will handle it.", priority=7)


def test_a_repeater_needs_no_mesh_member_and_ignores_it(router):
    router.set("system.@system[0].op_mode", "re")
    mesh(router, 2)
    body = request(element("SSID1"), element("Mesh SSID", ssidPassword="another key"))
    del body["mesh"]
    router.forget_calls()
    ends(router, router.post(SETTING, body), wait(20), [*COMMITS, ISOLATE])
    assert router.option("repacd.MAPConfig.BackhaulKey") == "factory-backhaul-1234"


def test_switching_the_mesh_off_closes_it_behind_the_answer(router):
    mesh(router, 1)
    a = post(router, element("SSID1"), mesh=0)
    ends(router, a, wait(180), ["uci commit repacd", *COMMITS, ISOLATE, CLOSE_MESH])


_CHAIN_MLDS = {(0, 0): "1 2 4 5 6", (0, 1): "1 2 4 5 6", (0, 2): "1 2 4 5 6", (0, 3): "1 2 4 5 6",
               (1, 0): "1 2 3 5 7 9 11", (1, 1): "1 2 3 4 6 8 10", (1, 2): "1 2 3 5 6 8 10"}


@pytest.mark.parametrize("brand,mode", list(itertools.product(range(3), (0, 1, 2, 3))))
def test_a_mesh_that_stays_on_runs_its_reload_chain(router, brand, mode):
    mesh(router, 1, mode, brand=brand)
    a = post(router, mesh=1)
    mlds = _CHAIN_MLDS.get((brand, mode))
    if mlds is None:
        ends(router, a, RESULT_2, [*COMMITS, ISOLATE])
        assert router.logged("Not supported device_id(2)" if brand == 2 else
                             "Not supported meshMode(3) for TESMIR device", priority=3)
        return
    bring_up = "wifi multi_up " + " ".join(f"mld{n}" for n in mlds.split())
    ends(router, a, wait(100), [*COMMITS, *CHAIN, bring_up, ISOLATE])
    assert [c for c in router.commands() if c != ISOLATE] == [*COMMITS, *CHAIN, bring_up]


@pytest.mark.parametrize("step", [0, 1])
def test_a_reload_chain_stops_where_a_step_fails(router, step):
    mesh(router, 1)
    router.tool(CHAIN[step].split()[0], exit=1)
    ends(router, post(router, mesh=1), wait(100), [*COMMITS, *CHAIN[:step + 1], ISOLATE])


# The mesh change procedure.


def _mesh_ending(brand, enabled, requested, mode_changes):
    """Answer and commands behind those that any request has."""
    if requested and enabled and mode_changes:
        return wait(230), [CLOSE_MESH]
    if requested and not enabled:
        return wait(150 if brand == 0 else 220), [OPEN_MESH, *COMMITS, ISOLATE]
    if enabled and not requested:
        return wait(180), [*COMMITS, ISOLATE, CLOSE_MESH]
    if not enabled:
        return OK_70
    if brand == 2:
        return RESULT_2, [*COMMITS, ISOLATE]
    mlds = _CHAIN_MLDS[brand, 1]
    return wait(100), [*COMMITS, *CHAIN, "wifi multi_up " + " ".join(f"mld{n}" for n in mlds.split()), ISOLATE]


@pytest.mark.parametrize("brand", BRANDS)
def test_every_change_of_the_mesh(router, brand):
    for enabled, requested, mode, key in itertools.product((0, 1), (0, 1), (0, 1, 2), ("old key 1", "new key 2")):
        mesh(router, enabled, mode=1, brand=brand)
        for package in ("repacd", "repacd_org"):
            router.set(f"{package}.MAPConfig.BackhaulKey", "old key 1")
        router.set("button_mesh.easymesh.mode_change", "0")
        for ifname in ("ath02", "ath12", "ath22"):
            router.set(f"wireless.{ifname}.key", "old key 1")
        a = post(router, element("Mesh SSID", band=BANDS_OF_MODE[mode], ssidPassword=key), mesh=requested)
        text, commands = _mesh_ending(brand, enabled, requested, mode != 1)
        ends(router, a, text, commands)
        assert router.option("button_mesh.easymesh.mode") == str(mode)
        ended = bool(requested and enabled and mode != 1)
        assert router.option("button_mesh.easymesh.mode_change") == str(int(ended))
        assert router.option("button_mesh.easymesh.enable") == str(enabled)  # the scripts' own to change
        for address in ("repacd.MAPConfig.BackhaulKey", "repacd_org.MAPConfig.BackhaulKey", "wireless.ath02.key",
                        "wireless.ath12.key", "wireless.ath22.key"):
            assert router.option(address) == key, address


def test_an_element_without_change_writes_no_mode(router):
    mesh(router, 0, mode=1)
    router.set("button_mesh.easymesh.mode", "01")  # the number is what counts
    ends(router, post(router, element("Mesh SSID", band="2.4GHz,5GHz", ssidPassword="factory-backhaul-1234")), *OK_70)
    assert router.option("button_mesh.easymesh.mode") == "01"


def test_an_unknown_band_keeps_the_mode_of_the_element_before(router):
    mesh(router, 0, mode=1)
    post(router, element("Mesh SSID", band="5GHz,6GHz"), element("Mesh SSID", band="6GHz"))
    assert router.option("button_mesh.easymesh.mode") == "2"
    post(router, element("Mesh SSID", band="6GHz"))
    assert router.option("button_mesh.easymesh.mode") == "0"


def test_a_mode_change_ends_the_request_before_the_elements_behind(router):
    mesh(router, 1, mode=1)
    a = post(router, element("SSID2", ssidValue="Before"), element("Mesh SSID", band="5GHz,6GHz"),
             element("SSID5", ssidValue="Behind"), mesh=1)
    assert a.text == wait(230)
    background(router, CLOSE_MESH)
    assert router.commands() == [CLOSE_MESH]
    assert router.option("wireless.ath01.ssid") == "Before"
    assert router.option("wireless.ath11.ssid") == "Router-Guest-5G-1234"


def test_a_mesh_that_is_switched_on_goes_on_with_the_elements_behind(router):
    a = post(router, element("Mesh SSID", band="2.4GHz,5GHz"), element("SSID5", ssidValue="Behind"), mesh=1)
    assert a.text == wait(150)
    assert router.option("wireless.ath11.ssid") == "Behind"


def test_a_mesh_switched_on_without_its_element_just_reloads(router):
    ends(router, post(router, element("SSID5"), mesh=1), *OK_70)


# Requests that cannot be used.


def test_what_is_no_request_answers_result_1(router):
    before = packages(router)
    for body in (None, *kit.GARBAGE_BODIES.values()):
        router.forget_calls()
        ends(router, router.post(SETTING, body), RESULT_1, [ISOLATE])
    assert changes(before, packages(router)) == {}
    assert router.logged("Can't parse request_body to json format.", priority=3)


@pytest.mark.parametrize("key,message", [
    ("wirelessConfig", "Failed to parse wirelessConfig"), ("bandSteering", "Failed to parse bandSteering"),
    ("set2GChannel", "Failed to parse channel2G"), ("set5GChannel", "Failed to parse channel5G"),
    ("set6GChannel", "Failed to parse channel6G"), ("mesh", "Failed to parse mesh"), ("mlo", "Failed to parse mlo")])
def test_a_missing_key_answers_result_1(router, key, message):
    body = request(element("SSID1", ssidValue="New name"))
    del body[key]
    ends(router, router.post(SETTING, body), RESULT_1, [ISOLATE])
    assert router.logged(message, priority=3)
    assert router.option("wireless.ath0.ssid") == "Router-2.4G-1234"


def test_a_repeater_needs_mlo(router):
    router.set("system.@system[0].op_mode", "re")
    body = request()
    del body["mlo"]
    ends(router, router.post(SETTING, body), RESULT_1, [ISOLATE])
    assert router.logged("Failed to parse mlo", priority=3)


def test_slots_that_are_no_array_of_objects_answer_result_1(router):
    before = packages(router)
    for value in ({}, None, "text", 1, [1], [[]], [None], ["SSID1"], [element("SSID1"), 1]):
        router.forget_calls()
        ends(router, router.post(SETTING, {**request(), "wirelessConfig": value}), RESULT_1, [ISOLATE])
    assert changes(before, packages(router)) == {}


def test_an_unreadable_operation_mode_answers_result_1(router):
    router.set("system.@system[0].op_mode", None)
    ends(router, post(router), RESULT_1, [ISOLATE])
    assert router.logged("Failed to get opmode", priority=3)


def test_an_unreadable_mesh_role_answers_result_1(router):
    router.set("button_mesh.easymesh.role", None)
    ends(router, post(router), RESULT_1, [ISOLATE])
    assert router.logged("get_mesh_role_value failed", priority=3)
    assert router.logged("Failed to set channel2G, channel5G, channel6G", priority=3)


def test_without_any_package_it_answers_result_1(bare_router):
    ends(bare_router, bare_router.post(SETTING, request(element("SSID1"))), RESULT_1, [ISOLATE])


def test_an_unknown_slot_answers_result_2(router):
    for slot in ("SSID0", "SSID10", "", "ssid1", "Guest", "MLO", "x" * 10000, "../../etc"):
        ends(router, post(router, element(slot)), RESULT_2, [ISOLATE])
    assert router.logged("Find_wireless_config: ssidName", priority=3)
    assert router.logged("Failed to set wireless info", priority=3)


def test_a_slot_without_a_name_answers_result_2(router):
    nameless = element("SSID1")
    del nameless["ssidName"]
    ends(router, post(router, nameless), RESULT_2, [ISOLATE])


def test_a_repeater_knows_its_own_slots_alone(router):
    router.set("system.@system[0].op_mode", "re")
    ends(router, post(router, element("SSID7")), RESULT_2, [ISOLATE])
    assert router.logged("Find_wireless_config: ssidName SSID7 not found", priority=3)


def test_a_slot_before_one_that_is_refused_is_not_written(router):
    ends(router, post(router, element("SSID2", ssidValue="First"), element("SSID10")), RESULT_2, [ISOLATE])
    assert router.option("wireless.ath01.ssid") == "Router-Guest-2.4G-1234"


# 802.11r.


def test_80211r(router):
    for value, stored in ((1, "1"), (0, "0"), (2, "0"), (-1, "0"), ("1", "1"), (None, "0"), ({}, "0")):
        router.set("button_mesh.easymesh.ieee80211r", "x")
        post(router, ieee802dot11r=value)
        assert router.option("button_mesh.easymesh.ieee80211r") == stored, value


def test_a_missing_80211r_is_off(router):
    router.set("button_mesh.easymesh.ieee80211r", "1")
    body = request()
    del body["ieee802dot11r"]
    assert router.post(SETTING, body).text == wait(70)
    assert router.option("button_mesh.easymesh.ieee80211r") == "0"
    assert router.logged("Failed to parse ieee802dot11r", priority=3)


def test_band_steering_itself_is_not_written(router):
    before = router.read("/etc/config/lbd")
    post(router, element("SSID1"), bandSteering=1)
    assert router.read("/etc/config/lbd") == before


# Channels.

LED = "/sys/devices/platform/soc@0/soc@0:leds/leds/led_{}/brightness"
BANDS = {"2G": ("wifi0", "led_2g"), "5G": ("wifi1", "led_5g"), "6G": ("wifi2", "led_6g")}


@pytest.mark.parametrize("band", BANDS)
@pytest.mark.parametrize("channel", [-1, 0, "highest"])
def test_a_channel_and_its_led(router, band, channel):
    radio, led = BANDS[band]
    channel = {"2G": 13, "5G": 144, "6G": 93}[band] if channel == "highest" else channel
    router.set(f"wireless.{radio}.disabled", "0" if channel == -1 else "1")
    router.set(f"wireless.{radio}.channel", "1")
    mirror = packages(router)
    ends(router, post(router, **{f"set{band}Channel": channel}), *OK_70)
    assert router.option(f"wireless.{radio}.disabled") == ("1" if channel == -1 else "0")
    assert router.option(f"wireless.{radio}.channel") == ("1" if channel == -1 else str(channel))
    assert router.read(LED.format(band.lower())) == ("0" if channel == -1 else "255").ljust(8, "\0")
    assert not any(key.startswith("wireless_for") for key in changes(mirror, packages(router)))


def test_a_channel_that_is_not_permitted_refuses_the_request(router):
    for band, channel in (
            ("2G", 14), ("2G", -2), ("2G", 36), ("5G", 68), ("5G", 165), ("5G", 1), ("5G", 37), ("5G", 96), ("5G", 148),
            ("6G", 2), ("6G", 97), ("6G", -2), ("6G", 2147483647), ("2G", -2147483648), ("5G", 4294967332)):
        a = post(router, element("SSID1", ssidValue="New"), **{f"set{band}Channel": channel})
        ends(router, a, RESULT_1, [ISOLATE])
        radio, index = BANDS[band][0], list(BANDS).index(band)
        told = max(-2147483648, min(2147483647, channel))
        assert router.logged(f"Invalid channel {told} for {radio} (band: {index})", priority=3)
        assert router.option(f"wireless.{radio}.channel") == "0"
    assert router.logged("Failed to set channel2G, channel5G, channel6G", priority=3)
    assert router.option("wireless.ath0.ssid") == "Router-2.4G-1234"


@pytest.mark.parametrize("role", [0, 1, 2])
def test_a_controllers_channels_are_mirrored(router, role):
    mesh(router, role)
    post(router, set2GChannel=11, set5GChannel=-1, set6GChannel=5, mesh=int(role != 0))
    copies = [router.option(f"wireless_for_easymesh.{radio}.channel") for radio in ("wifi0", "wifi1", "wifi2")]
    assert copies == (["11", "0", "5"] if role == 1 else ["0", "0", "0"])
    assert router.option("wireless_for_easymesh.wifi1.disabled") == "0"  # off is not mirrored
    assert router.option("wireless.wifi1.disabled") == "1"


def test_leds_that_are_not_there_are_told_and_no_failure(router):
    router.remove("/sys/devices")
    ends(router, post(router), *OK_70)
    assert router.logged("LedForWifi is error", priority=3)
