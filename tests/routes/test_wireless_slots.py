"""POST /api/v1/wireless/setting: what it writes of an SSID slot, with its WPS, band steering and copies for the mesh."""

import itertools

import pytest
from routes.wireless_posts import COMMITS, OK_70, RESULT_2, ends, post
from routes.wireless_state import BRANDS, ISOLATE, changes, element, mesh, packages, wait

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
