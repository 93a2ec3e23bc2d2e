"""POST /api/v1/wireless/setting."""

import itertools

import kit
import pytest
from routes.wireless_state import (BANDS_OF_MODE, BRANDS, CHAIN, CLOSE_MESH, ISOLATE, OPEN_MESH, SETTING, background,
                                   changes, element, mesh, packages, request, wait)

COMMITS = ["uci commit wireless", "uci commit wireless_for_easymesh"]
OK_70 = (wait(70), [*COMMITS, "wifi reload", ISOLATE])
RESULT_1 = '{"result": 1}'
RESULT_2 = '{"result": 2}'


def post(router, *elements, **members):
    router.forget_calls()
    return router.post(SETTING, request(*elements, **members))


def ends(router, answer, text, commands=()):
    """The answer is this one, and these commands ran; those in the background may come in another order."""
    assert answer.encrypted and answer.text == text, (answer, router.report())
    assert answer.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    for command in commands:
        router.wait_for_call(*command.split())
    assert sorted(router.commands()) == sorted(commands)
    assert in_order(router.commands()) == in_order(commands)


def in_order(commands):
    """Those that are waited for, or that wait for each other."""
    return [command for command in commands if command.startswith(("uci ", "/etc/init.d/", "sleep "))]


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


# A slot's options.


@pytest.mark.parametrize("name,ifname", [
    ("SSID1", "ath0"), ("SSID2", "ath01"), ("SSID3", "ath04"), ("SSID4", "ath1"), ("SSID5", "ath11"), ("SSID6", "ath14"),
    ("SSID7", "ath2"), ("SSID8", "ath21"), ("SSID9", "ath24")])
def test_every_slot_of_a_router(router, name, ifname):
    before = packages(router)
    post(router, element(name, ssidStatus=0, wifiSecurity=2, wifiStealth=1, wpaRekeyInterval=700))
    after = packages(router)
    mld = router.option(f"wireless.{ifname}.mld")
    changed = {f"wireless.{ifname}.{option}": value for option, value in {
        "disabled": "1", "ssid": "Name", "encryption": "psk2+ccmp", "key": "password", "hidden": "1",
        "wpa_group_rekey": "700", "sae": None, "sae_confirm_immediate": None, "force_invalid_group": None,
        "ieee80211w": None}.items()}
    changed[f"wireless.{mld}.mld_ssid"] = "Name"
    if ifname in ("ath1", "ath2"):
        changed[f"button_mesh.easymesh.Key{ifname[3] == '1' and 5 or 6}G"] = "password"
    if ifname in ("ath0", "ath1"):
        changed |= {f"wireless.{ifname}.wps_state": "1", f"wireless.{ifname}.wps_pbc": "0"}
    assert {key: new for key, (_, new) in changes(before, after).items()} == {
        key: value for key, value in changed.items() if before.get(key) != value}


@pytest.mark.parametrize("name,ifname,mld", [
    ("SSID1", "ath0", "mld1"), ("SSID2", "ath02", "mld4"), ("SSID3", "ath1", "mld2"), ("SSID4", "ath12", "mld5"),
    ("SSID5", "ath2", "mld3"), ("SSID6", "ath22", "mld6")])
def test_every_slot_of_a_repeater(router, name, ifname, mld):
    router.set("system.@system[0].op_mode", "re")
    assert post(router, element(name, ssidValue="New name")).text == wait(20)
    assert router.option(f"wireless.{ifname}.ssid") == router.option(f"wireless.{mld}.mld_ssid") == "New name"


@pytest.mark.parametrize("name", ["MLO SSID", "Mesh SSID"])
def test_a_slot_without_an_access_point_writes_nothing_on_a_repeater(router, name):
    router.set("system.@system[0].op_mode", "re")
    before = packages(router)
    ends(router, post(router, element(name)), wait(20), [*COMMITS, ISOLATE])
    assert changes(before, packages(router)) == {}


_SECURITY = {
    (False, 1): {"encryption": "none", "key": None, "sae": None, "sae_confirm_immediate": None,
                 "force_invalid_group": None, "ieee80211w": None},
    (True, 1): {"owe": "1", "encryption": "ccmp", "key": None, "sae": None, "sae_confirm_immediate": None,
                "force_invalid_group": None, "ieee80211w": None},
    (False, 3): {"encryption": "ccmp", "sae": "1", "sae_confirm_immediate": "1", "force_invalid_group": "1",
                 "ieee80211w": "2", "key": "password", "owe": "x"},
    (True, 3): {"encryption": "ccmp", "sae": "1", "sae_confirm_immediate": "1", "force_invalid_group": "1",
                "ieee80211w": "2", "key": "password", "owe": None},
}
for _is_6g in (False, True):
    _SECURITY[_is_6g, 2] = {"encryption": "psk2+ccmp", "key": "password", "sae": None, "sae_confirm_immediate": None,
                            "force_invalid_group": None, "ieee80211w": None, "owe": "x"}
    _SECURITY[_is_6g, 4] = {"encryption": "psk2+ccmp", "sae": "1", "sae_confirm_immediate": "1",
                            "force_invalid_group": "1", "ieee80211w": "1", "key": "password", "owe": "x"}
    for _code in (0, 5, -1):
        _SECURITY[_is_6g, _code] = {option: "x" for option in _SECURITY[True, 1]}


@pytest.mark.parametrize("role", [0, 1, 2])
def test_the_options_of_every_security(router, role):
    mesh(router, role, brand=1)
    for (is_6g, code), (name, ifname) in itertools.product(_SECURITY, (
            ("SSID6", "ath14"), ("SSID8", "ath21"))):
        if is_6g != (ifname == "ath21"):
            continue
        for package, option in itertools.product(("wireless", "wireless_for_easymesh"), _SECURITY[True, 1]):
            router.set(f"{package}.{ifname}.{option}", "x")
        a = post(router, element(name, wifiSecurity=code), mesh=int(role != 0))
        assert a.text in (wait(100), wait(70))
        for option, value in _SECURITY[is_6g, code].items():
            assert router.option(f"wireless.{ifname}.{option}") == value, (ifname, option)
            copy = value if role == 1 else "x"
            assert router.option(f"wireless_for_easymesh.{ifname}.{option}") == copy, (ifname, option)


def test_the_rekey_interval_is_bounded(router):
    for sent, stored in ((599, "1800"), (600, "600"), (86400, "86400"), (86401, "1800"), (0, "1800"), (-5, "1800"),
                         ("700", "700")):
        post(router, element("SSID2", wpaRekeyInterval=sent))
        assert router.option("wireless.ath01.wpa_group_rekey") == stored, sent


def test_a_member_that_an_element_omits_is_that_of_the_element_before(router):
    post(router, element("SSID2", ssidValue="First", ssidStatus=0, ssidPassword="first key", wifiSecurity=2,
                         wifiStealth=1, wpaRekeyInterval=4000), {"ssidName": "SSID5"}, {"ssidName": "SSID8"})
    for ifname in ("ath01", "ath11", "ath21"):
        assert [router.option(f"wireless.{ifname}.{option}") for option in (
            "ssid", "disabled", "key", "encryption", "hidden", "wpa_group_rekey")] == [
                "First", "1", "first key", "psk2+ccmp", "1", "4000"]


def test_the_first_element_begins_with_nothing(router):
    post(router, {"ssidName": "SSID5"})
    assert [router.option(f"wireless.ath11.{option}") for option in ("ssid", "disabled", "hidden", "wpa_group_rekey")] \
        == [None, "1", "0", "0"]  # an empty text takes the option away
    assert router.option("wireless.ath11.key") == "factory-guest-1234"  # security 0 writes none


def test_a_name_is_never_cut_inside_a_character(router):
    for sent, stored in (("\u65e5" * 11, "\u65e5" * 10), ("a" * 31 + "\u00e9", "a" * 31), ("a" * 30 + "\u00e9", "a" * 30 + "\u00e9"),
                         ("a" * 29 + "\U0001f6dc", "a" * 29), ("a" * 28 + "\U0001f6dc", "a" * 28 + "\U0001f6dc")):
        assert post(router, element("SSID2", ssidValue=sent), element("MLO SSID", ssidValue=sent), mlo=4).text == wait(70)
        for option in ("wireless.ath01.ssid", "wireless.mld4.mld_ssid", "wireless.ath05.ssid", "wireless.mld0.mld_ssid"):
            assert router.option(option) == stored


def test_a_backhaul_key_is_never_cut_inside_a_character(router):
    post(router, element("Mesh SSID", band="2.4GHz,5GHz", ssidPassword="\u65e5" * 22))
    assert router.option("repacd.MAPConfig.BackhaulKey") == router.option("wireless.ath02.key") == "\u65e5" * 21
    before = packages(router)
    post(router, element("Mesh SSID", band="2.4GHz,5GHz", ssidPassword="\u65e5" * 21))
    assert changes(before, packages(router)) == {}


# Passwords.


def test_passwords(router):
    for password in ("", "12345678", "z" * 63, "a" * 64, "F0" * 32, "a" * 100):
        ends(router, post(router, element("SSID2", ssidPassword=password)), *OK_70)
        assert router.option("wireless.ath01.key") == (password[:64] or None)
    assert not router.logged("Password check failed")


@pytest.mark.parametrize("password", ["1234567", "z" + "a" * 63, "1234567\u00e9", "パスワードです", "z" * 65])
def test_a_password_that_is_none_is_refused(router, password):
    ends(router, post(router, element("SSID2", ssidPassword=password)), RESULT_2, [ISOLATE])
    assert router.option("wireless.ath01.key") == "factory-guest-1234"
    assert router.logged("Password check failed", priority=3)
    assert router.logged("set_wireless_encryption failed", priority=3)


def test_an_open_network_needs_no_valid_password(router):
    ends(router, post(router, element("SSID2", wifiSecurity=1, ssidPassword="x")), *OK_70)


@pytest.mark.parametrize("name,option", [("SSID4", "Key5G"), ("SSID7", "Key6G"), ("SSID1", None), ("SSID8", None)])
def test_the_keys_of_5_and_6_ghz_are_kept_for_the_mesh(router, name, option):
    before = {o: router.option(f"button_mesh.easymesh.{o}") for o in ("Key5G", "Key6G")}
    post(router, element(name, ssidPassword="the new key"))
    assert {o: router.option(f"button_mesh.easymesh.{o}") for o in before} == {
        o: "the new key" if o == option else value for o, value in before.items()}
    post(router, element(name, ssidPassword="not kept", wifiSecurity=1))
    assert "not kept" not in router.read("/etc/config/button_mesh")


# WPS.


@pytest.mark.parametrize("mac_filter", ["0", "1"])
def test_wps_ends_where_the_network_rules_it_out(router, mac_filter):
    router.set("macfilter.macfilter.enable", mac_filter)
    cases = (({"wifiSecurity": 1}, True), ({"wifiSecurity": 3}, True), ({"wifiSecurity": 2}, False),
             ({"wifiSecurity": 4}, False), ({"wifiSecurity": 4, "wifiStealth": 1}, True),
             ({"wifiSecurity": 4, "wifiStealth": 2}, False))
    for (members, off), (name, ifname) in itertools.product(
            cases, (("SSID1", "ath0"), ("SSID4", "ath1"), ("SSID7", "ath2"))):
        for interface in ("ath0", "ath1", "ath2"):
            router.set(f"wireless.{interface}.wps_state", "2")
            router.set(f"wireless.{interface}.wps_pbc", "1")
        logged = len(router.log())
        post(router, element(name, **members))
        is_off = off and ifname != "ath2" and mac_filter == "0"
        for interface in ("ath0", "ath1", "ath2"):
            expected = ("1", "0") if is_off and interface == ifname else ("2", "1")
            got = router.option(f"wireless.{interface}.wps_state"), router.option(f"wireless.{interface}.wps_pbc")
            assert got == expected, (members, name, interface)
        texts = [(line.text, line.priority) for line in router.log()[logged:]]
        assert (("Enable macfilter func, no wps func", 7) in texts) == (off and mac_filter == "1")
        assert (("Should not to change wps status", 3) in texts) == (members["wifiSecurity"] in (2, 4))


def test_a_mac_filter_that_cannot_be_read_counts_as_off(router):
    router.no_config("macfilter")
    post(router, element("SSID1", wifiSecurity=1))
    assert router.option("wireless.ath0.wps_state") == "1"


# Band steering.


def steering(router, value="1"):
    router.set("lbd.config.Enable", value)


MAIN = dict(ssidValue="Main", ssidPassword="main key", wifiSecurity=2, wifiStealth=1, wpaRekeyInterval=5000)


def options(router, ifname):
    return [router.option(f"wireless.{ifname}.{o}") for o in ("ssid", "key", "encryption", "hidden", "wpa_group_rekey")]


def test_with_band_steering_the_main_networks_follow_the_first(router):
    steering(router)
    post(router, element("SSID1", **MAIN), element("SSID4"), element("SSID5"), element("SSID7", wifiSecurity=3))
    assert options(router, "ath1") == ["Main", "main key", "psk2+ccmp", "1", "5000"]
    assert router.option("wireless.ath1.sae") is None  # its security, too
    assert options(router, "ath2") == ["Main", "main key", "ccmp", "1", "5000"]  # its own security
    assert options(router, "ath11") == ["Name", "password", "psk2+ccmp", "0", "3600"]
    assert router.option("wireless.ath1.disabled") == "0"
    assert router.option("wireless.mld2.mld_ssid") == "Main"


@pytest.mark.parametrize("value", ["0", "2", None])
def test_without_band_steering_they_do_not(router, value):
    steering(router, value)
    post(router, element("SSID1", **MAIN), element("SSID4"), element("SSID7"))
    assert options(router, "ath1")[0] == options(router, "ath2")[0] == "Name"


def test_sent_first_a_slot_gets_the_template_of_the_request_before(router):
    steering(router)
    post(router, element("SSID4"))
    assert options(router, "ath1")[0] == "Name"  # there was none yet
    post(router, element("SSID1", **MAIN))
    post(router, element("SSID4"), element("SSID1", ssidValue="Later"))
    assert options(router, "ath1")[:2] == ["Main", "main key"]
    post(router, element("SSID4"))
    assert options(router, "ath1")[:2] == ["Later", "password"]


def test_the_6_ghz_guest_ends_the_template(router):
    steering(router)
    post(router, element("SSID1", **MAIN), element("SSID8"), element("SSID7"), element("SSID4"))
    assert options(router, "ath1")[0] == options(router, "ath2")[0] == "Name"


def test_an_element_behind_a_follower_inherits_what_was_sent(router):
    steering(router)
    post(router, element("SSID1", **MAIN), element("SSID4", ssidValue="Sent"), {"ssidName": "SSID5"})
    assert router.option("wireless.ath11.ssid") == "Sent"


# A mesh controller's copies.


@pytest.mark.parametrize("brand", BRANDS)
@pytest.mark.parametrize("role", [0, 1, 2])
def test_a_controller_mirrors_its_slots_and_fronthaul(router, brand, role):
    mesh(router, role, brand=brand)
    before = packages(router)
    a = post(router, element("SSID1", ssidValue="Two", ssidPassword="two key 2", wifiStealth=1),
             element("SSID4", ssidValue="Five", ssidPassword="five key 5"),
             element("SSID7", ssidValue="Six", ssidPassword="six key 66", wifiSecurity=3), mesh=int(role != 0))
    assert a.text == (wait(70) if role == 0 else RESULT_2 if brand == 2 else wait(100))
    changed = {key: new for key, (_, new) in changes(before, packages(router)).items()}
    mirrored = {key: value for key, value in changed.items() if key.startswith(("wireless_for_easymesh.", "repacd."))}
    if role != 1:
        assert mirrored == {}
        return
    for ifname, ssid, key, band, auth, mld in (("ath0", "Two", "two key 2", 2, "1", "mld1"),
                                               ("ath1", "Five", "five key 5", 5, "1", "mld2"),
                                               ("ath2", "Six", "six key 66", 6, "12", "mld3")):
        for option in ("ssid", "key", "hidden", "wpa_group_rekey", "encryption", "disabled"):
            assert router.option(f"wireless_for_easymesh.{ifname}.{option}") == router.option(f"wireless.{ifname}.{option}")
        assert router.option(f"wireless_for_easymesh.{mld}.mld_ssid") == ssid
        assert [router.option(f"repacd.MAPConfig.FHOverride{o}{band}G") for o in ("SSID", "Key", "AuthType")] == [ssid, key, auth]
    fronthaul = {0: ("Two", "two key 2"), 1: ("Five", "five key 5"), 2: ("Router-2.4G-1234", "factory-key-1234")}[brand]
    assert (router.option("repacd.MAPConfig.FronthaulSSID"), router.option("repacd.MAPConfig.FronthaulKey")) == fronthaul
    names = {mld: router.option(f"wireless.{mld}.mld_ssid") for mld in ("mld1", "mld2", "mld3", "mld4")}
    assert {mld: name for mld, name in names.items() if not name.startswith("Router")} == (
        {"mld1": "Five", "mld2": "Six"} if brand == 0 else {"mld3": "Two", "mld1": "Five", "mld4": "Six"})
    assert router.commands("uci").count("uci commit repacd") == 3


@pytest.mark.parametrize("name,commits", [("SSID1", 1), ("SSID2", 0), ("SSID3", 0)])
def test_slots_without_an_override_leave_repacd(router, name, commits):
    mesh(router, 1)
    before = router.read("/etc/config/repacd")
    post(router, element(name), mesh=1)
    assert router.commands("uci").count("uci commit repacd") == commits
    assert (router.read("/etc/config/repacd") == before) == (commits == 0)
    if not commits:
        assert router.logged("set_repacd_info: repacd_config_sync is NULL, no need to set", priority=7)


def test_an_open_fronthaul_has_a_blank_key(router):
    mesh(router, 1)
    post(router, element("SSID1", wifiSecurity=1), mesh=1)
    assert router.option("repacd.MAPConfig.FHOverrideKey2G") == " "
    assert router.option("repacd.MAPConfig.FHOverrideAuthType2G") is None


@pytest.mark.parametrize("code", [0, 5, -1])
def test_a_security_code_that_the_fronthaul_does_not_know_answers_result_2(router, code):
    mesh(router, 1)
    ends(router, post(router, element("SSID1", wifiSecurity=code), mesh=1), RESULT_2, [ISOLATE])
    assert router.logged(f"set_repacd_info: unknown wifiSecurity {code}", priority=3)
    assert router.logged("set_repacd_info failed", priority=3)


# MLO.

_LINKS = {1: "110", 3: "011", 4: "111"}


@pytest.mark.parametrize("brand,role,mode", list(itertools.product(range(3), range(3), (1, 3, 4))))
def test_an_mlo_network(router, brand, role, mode):
    mesh(router, role, brand=brand)
    before = packages(router)
    a = post(router, element("MLO SSID", wifiSecurity=2, wifiStealth=1), mlo=mode, mesh=int(role != 0))
    assert a.text == (wait(70) if role == 0 else RESULT_2 if brand == 2 else wait(100))
    after = packages(router)
    if brand == 0 and role:
        assert changes(before, after) == {}
        assert router.logged("ORVANE device does not support MLO with mesh enabled", priority=3)
        return
    is_mirrored = brand == 1 and role != 0
    for ifname, on in zip(("ath05", "ath15", "ath25"), _LINKS[mode]):
        for package in ("wireless", "wireless_for_easymesh") if is_mirrored else ("wireless",):
            got = [after.get(f"{package}.{ifname}.{o}") for o in ("disabled", "hidden", "ssid", "wpa_group_rekey")]
            assert got == [str(1 - int(on)), "1", "Name", "3600"], (package, ifname)
        keyed = ("wireless", "wireless_for_easymesh") if role == 1 else ("wireless",)
        for package in keyed:
            got = [after.get(f"{package}.{ifname}.{o}") for o in ("encryption", "sae", "key", "owe")]
            assert got == ["ccmp" if ifname == "ath25" else "psk2+ccmp", "1", "password", None], (package, ifname)
    assert after["wireless.mld2.mld_ssid" if is_mirrored else "wireless.mld0.mld_ssid"] == "Name"
    assert (after["wireless_for_easymesh.mld0.mld_ssid"] == "Name") == (brand == 1 and role == 1)
    assert (after["button_mesh.easymesh.mlo_key"] == "password") == (brand == 1)
    fronthaul = {o: after.get(f"repacd.MAPConfig.AdditionalFHOverride{o}1") for o in (
        "2Gssid", "2Gauth", "2Gkey", "5Gssid", "5Gauth", "5Gkey", "6Gssid", "6Gauth", "6Gkey")}
    assert list(fronthaul.values()) == (["Name", "0", "password"] * 2 + ["Name", "12", "password"] if is_mirrored
                                        else [None] * 9)
    if role != 1 and not is_mirrored:
        assert not any(key.startswith("wireless_for") for key in changes(before, after))
    commits = ["uci commit repacd"] * 3 if is_mirrored else []
    assert router.commands("uci") == [*commits, "uci commit wireless", *COMMITS]


@pytest.mark.parametrize("code", [1, 2, 3, 4, 0, 7])
def test_the_security_of_the_mlo_links(router, code):
    for ifname in ("ath05", "ath15", "ath25"):
        router.set(f"wireless.{ifname}.owe", "0")
    post(router, element("MLO SSID", wifiSecurity=code), mlo=4)
    for ifname in ("ath05", "ath15", "ath25"):
        got = [router.option(f"wireless.{ifname}.{o}") for o in ("encryption", "sae", "key", "owe")]
        secured = ["ccmp" if ifname == "ath25" else "psk2+ccmp", "1", "password", None]
        assert got == (["ccmp", None, None, "1"] if code == 1 else secured), ifname


@pytest.mark.parametrize("mode", [2, 5, -1, 1000000])
def test_an_mlo_mode_that_cannot_be_written_clears_mlo(router, mode):
    router.set("wireless.wifi2.enable_ema", "1")
    for ifname in ("ath05", "ath15", "ath25"):
        router.set(f"wireless.{ifname}.disabled", "0")
    ends(router, post(router, element("MLO SSID"), mlo=mode), wait(70), ["uci commit wireless", *OK_70[1]])
    assert router.option("wireless.mld0") is None
    assert router.option("wireless.wifi2.enable_ema") is None
    for ifname in ("ath05", "ath15", "ath25"):
        assert (router.option(f"wireless.{ifname}.disabled"), router.option(f"wireless.{ifname}.mld")) == ("1", None)
    assert router.logged(f"mlo value {mode} is not supported.", priority=3)


def test_mlo_off_writes_nothing(router):
    before = packages(router)
    ends(router, post(router, element("MLO SSID")), *OK_70)
    assert changes(before, packages(router)) == {}


def test_the_mlo_network_of_a_repeater_counts_as_outside_a_mesh(router):
    router.set("system.@system[0].op_mode", "re")
    mesh(router, 2, brand=0)
    ends(router, post(router, element("MLO SSID"), mlo=4), wait(20), ["uci commit wireless", *COMMITS, ISOLATE])
    assert router.option("wireless.mld0.mld_ssid") == "Name"


def test_a_backhaul_shown_as_mlo_network_is_written_once_it_changes(router):
    router.set("system.@system[0].op_mode", "re")
    mesh(router, 2, brand=0)
    shown = {"ssidValue": "Router-5G-1234", "ssidPassword": "factory-key-1234"}  # the second access point's
    before = packages(router)
    ends(router, post(router, element("MLO SSID", **shown), mlo=1), wait(20), [*COMMITS, ISOLATE])
    assert changes(before, packages(router)) == {}
    post(router, element("MLO SSID", **{**shown, "ssidValue": "Its own"}), mlo=1)
    assert router.option("wireless.ath05.ssid") == "Its own"


@pytest.mark.parametrize("brand,role,limit", [(0, 0, 16), (1, 0, 16), (2, 1, 16), (1, 1, 16)])
def test_quotes_in_an_mlo_password_are_stored_as_four_characters(router, brand, role, limit):
    mesh(router, role, brand=brand)
    password = "it's" + "'" * limit
    post(router, element("MLO SSID", ssidPassword=password), mlo=4, mesh=role)
    escaped = password.replace("'", "'\\''")
    assert router.option("wireless.ath05.key") == router.option("wireless.ath25.key") == escaped
    if brand == 1:
        assert router.option("button_mesh.easymesh.mlo_key") == escaped


@pytest.mark.parametrize("brand,role,longest", [(0, 0, 235), (2, 0, 235), (1, 0, 225), (2, 1, 222), (1, 1, 222)])
def test_a_password_whose_escaped_form_would_be_cut_is_refused(router, brand, role, longest):
    """`longest` is what the longest address of the key leaves of its 254 bytes."""
    for length in (longest, longest + 1):
        mesh(router, role, brand=brand)
        quotes, letters = divmod(length, 4)
        password = "'" * quotes + "a" * letters
        a = post(router, element("MLO SSID", ssidPassword=password), mlo=4, mesh=role)
        if length == longest:
            assert a.text in (wait(70), wait(100)) or brand == 2 and role == 1
            assert router.option("wireless.ath05.key") == password.replace("'", "'\\''")
        else:
            assert a.text == RESULT_2
            assert router.logged("Failed to escape password (buffer too small or invalid input)", priority=3)
            assert router.logged("Failed to set Wifimlo", priority=3)
        assert len(router.option("wireless.ath05.key")) == longest


def test_an_mlo_network_needs_the_mesh_state(router):
    router.set("button_mesh.easymesh.role", None)
    assert post(router, element("MLO SSID"), mlo=4).text == RESULT_1  # the channels need the role first


# A document that was read is posted back.


@pytest.mark.parametrize("mode", ["router", "ap", "re", "controller", "agent"])
@pytest.mark.parametrize("brand", BRANDS.values())
def test_a_document_posted_back_changes_no_value(brand, mode):
    router = kit.Router(brand="tesmir" if brand == "0999" else brand, mode=mode)
    try:
        router.brand(brand)
        document = router.get(SETTING).json
        before = packages(router)
        assert router.post(SETTING, document).json["result"] in ((0, 2) if brand == "0999" else (0,))
        changed = changes(before, packages(router))
        assert {key: pair for key, pair in changed.items() if pair[0] is not None} == {}
        # What a mesh keeps beside the networks is written for the first time.
        assert all(key.startswith(("repacd.MAPConfig.FHOverride", "repacd.MAPConfig.AdditionalFH")) for key in changed)
        again = packages(router)
        router.post(SETTING, router.get(SETTING).json)
        assert changes(again, packages(router)) == {}
    finally:
        router.finish()


# Hostile texts and dead tools.


@pytest.mark.parametrize("text", list(kit.HOSTILE.values()), ids=list(kit.HOSTILE))
def test_hostile_texts_reach_uci_whole_and_nothing_else(router, text):
    mesh(router, 1, brand=1)
    before = packages(router)
    raw = text.encode("utf-8", "surrogateescape")
    ssid = raw[:32].decode("utf-8", "surrogateescape")
    key = raw[:64].decode("utf-8", "surrogateescape")
    is_hex = len(raw) >= 64 and set(raw[:64]) <= set(b"0123456789abcdefABCDEF")
    is_valid = key == "" or is_hex or (8 <= len(raw[:64]) < 64 and raw.isascii())
    is_held = text != kit.HOSTILE["control"]
    assert post(router, element("SSID1", ssidValue=text), mesh=1).text == (wait(100) if is_held else RESULT_1)
    assert router.option("wireless.ath0.ssid") == ((ssid or None) if is_held else "Router-2.4G-1234")
    a = post(router, element("SSID1", ssidPassword=text), mesh=1)
    assert a.text == (RESULT_1 if not is_held else wait(100) if is_valid else RESULT_2)
    if is_held and is_valid:
        assert router.option("wireless.ath0.key") == router.option("wireless_for_easymesh.ath0.key") == (key or None)
        assert router.option("repacd.MAPConfig.FHOverrideKey2G") == (key or "password")  # an empty one is not written there
    touched = {key.rsplit(".", 1)[0] for key in changes(before, packages(router))}
    assert touched <= {"wireless.ath0", "wireless_for_easymesh.ath0", "wireless.mld3", "wireless_for_easymesh.mld1",
                       "repacd.MAPConfig"}
    router.assert_nothing_ran()


@pytest.mark.parametrize("text", list(kit.HOSTILE.values()), ids=list(kit.HOSTILE))
def test_hostile_texts_reach_the_mlo_network_whole_and_nothing_else(router, text):
    mesh(router, 1, brand=1)
    before = packages(router)
    raw = text.encode("utf-8", "surrogateescape")
    ssid = raw[:32].decode("utf-8", "surrogateescape")
    key = raw[:64].decode("utf-8", "surrogateescape").replace("'", "'\\''")
    a = post(router, element("MLO SSID", ssidValue=text, ssidPassword=text), mlo=4, mesh=1)
    changed = changes(before, packages(router))
    if text == kit.HOSTILE["control"]:
        assert (a.text, changed) == (RESULT_1, {})
    elif len(key) > 222:  # the address bound of UCI would cut it
        assert (a.text, changed) == (RESULT_2, {})
    else:
        assert a.text == wait(100)
        for ifname in ("ath05", "ath15", "ath25"):
            for package in ("wireless", "wireless_for_easymesh"):
                assert router.option(f"{package}.{ifname}.ssid") == (ssid or None)
                assert router.option(f"{package}.{ifname}.key") == (key or None)
        assert router.option("wireless.mld2.mld_ssid") == (ssid or None)
        if key:
            assert router.option("button_mesh.easymesh.mlo_key") == key
            assert router.option("repacd.MAPConfig.AdditionalFHOverride2Gkey1") == raw[:64].decode("utf-8", "surrogateescape")
    assert {address.rsplit(".", 1)[0] for address in changed} <= {
        *(f"{package}.{name}" for package in ("wireless", "wireless_for_easymesh")
          for name in ("ath05", "ath15", "ath25", "mld0", "mld2")), "repacd.MAPConfig", "button_mesh.easymesh"}
    router.assert_nothing_ran()


@pytest.mark.parametrize("key", ["ssidValue", "ssidPassword"])
@pytest.mark.parametrize("slot", ["SSID1", "MLO SSID", "Mesh SSID"])
def test_control_characters_that_uci_cannot_keep_are_refused(router, slot, key):
    before = packages(router)
    ends(router, post(router, element(slot, **{key: "control\x01character"}), mlo=4), RESULT_1, [ISOLATE])
    assert changes(before, packages(router)) == {}
    assert router.logged("ssidValue or ssidPassword holds control characters", priority=3)
    kept = post(router, element("SSID2", **{key: "tab\tand\r\nlines"}))
    assert kept.text == wait(70)
    assert "tab\tand\r\nlines" in router.read("/etc/config/wireless")


@pytest.mark.parametrize("text", list(kit.HOSTILE.values()), ids=list(kit.HOSTILE))
def test_hostile_texts_in_every_other_member(router, text):
    for members in ({"ssidName": text}, {"band": text}, {"ssidStatus": text}, {"wifiSecurity": text},
                    {"wifiStealth": text}, {"wpaRekeyInterval": text}):
        assert post(router, element("SSID2", **members)).json["result"] in (0, 2)
        assert post(router, element("Mesh SSID", **members)).json["result"] in (0, 2)
    for key in ("mlo", "mesh", "set2GChannel", "bandSteering", "ieee802dot11r"):
        assert post(router, element("SSID2"), **{key: text}).json["result"] in (0, 1)
    router.assert_nothing_ran()
    assert router.alive()


@pytest.mark.parametrize("text", list(kit.HOSTILE.values()), ids=list(kit.HOSTILE))
def test_a_hostile_backhaul_key_arrives_whole(router, text):
    post(router, element("Mesh SSID", band="2.4GHz,5GHz", ssidPassword=text))
    key = text.encode("utf-8", "surrogateescape")[:64].decode("utf-8", "surrogateescape") or None
    if text == kit.HOSTILE["control"]:
        key = "factory-backhaul-1234"
    for address in ("repacd.MAPConfig.BackhaulKey", "repacd_org.MAPConfig.BackhaulKey", "wireless.ath22.key"):
        assert router.option(address) == key
    router.assert_nothing_ran()


@pytest.mark.parametrize("tool", ["wifi", "uci", ISOLATE])
@pytest.mark.parametrize("broken", [{"missing": True}, {"exit": 1}, {"signal": 9}])
def test_a_dead_tool_stops_nothing(router, tool, broken):
    router.tool(tool, **broken)
    a = post(router, element("SSID1", ssidValue="New name"))
    assert a.text == wait(70)
    assert router.option("wireless.ath0.ssid") == "New name"
    assert router.alive()


def test_a_reload_that_hangs_keeps_nobody_waiting(router):
    router.tool("wifi", hang=True)
    assert post(router).text == wait(70)
    assert router.get(SETTING).json["result"] == 0


def test_sections_that_a_mesh_lacks_are_no_failure(router):
    for section in ("ath04", "mld7", "mld9", "ath24"):
        router.set(f"wireless.{section}", None)
    ends(router, post(router, element("SSID3"), element("SSID9")), *OK_70)
    assert router.option("wireless.ath04") is None
