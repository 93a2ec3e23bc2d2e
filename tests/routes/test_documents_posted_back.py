"""What a GET tells is sent back unchanged: no option's value changes, but for the exceptions that are named here."""

import itertools

import kit
import pytest
from routes.wireless_state import SETTING, changes, mesh, packages, slot

DETAIL = "/api/v1/wireless/detail-setting"
WPS = "/api/v1/wireless/wps-status"
FILTER = "/api/v1/wireless/mac-filter"
MAINS = ("ath0", "ath1", "ath2")
BACKHAUL = ("ath02", "ath12", "ath22")
MLO_LINKS = ("ath05", "ath15", "ath25")
BACKHAUL_KEYS = ("repacd.MAPConfig.BackhaulKey", "repacd_org.MAPConfig.BackhaulKey",
                 *(f"wireless.{ifname}.key" for ifname in BACKHAUL))
UNKNOWN_MODE = 3
OPERATING = {"wifi0": 6, "wifi1": 36, "wifi2": 37}  # what the simulated iw shows


def sent_back(router, uri):
    """The values that changed, and the answer. Options that were not there before are no changed values."""
    document = router.get(uri).json
    assert document["result"] == 0
    before = packages(router)
    answer = router.post(uri, document)
    changed = changes(before, packages(router))
    return {key: pair for key, pair in changed.items() if pair[0] is not None}, answer


def fronthaul(brand, op_mode):
    """Whose key the agents of a mesh take: on tesmir that of SSID4, which a repeater has elsewhere."""
    return "ath0" if brand != 1 else "ath12" if op_mode == "re" else "ath1"


def settle(router, brand, role, op_mode="router"):
    """What a router that runs has: an MLD has the name of the access points it carries, the mesh knows the keys, an agent
    does what its controller decides. Keys differ where they may, so that one in the wrong place shows."""
    for package in ("wireless", "wireless_for_easymesh"):
        for section in router.package(package):
            if section.type == "wifi-iface":
                router.set(f"{package}.{section.name}.ssid", "One name")
                key = "key of the MLO network" if section.name in MLO_LINKS else f"key of {section.name}"
                router.set(f"{package}.{section.name}.key", key)
            if section.type == "wifi-mld":
                router.set(f"{package}.{section.name}.mld_ssid", "One name")
    router.set("button_mesh.easymesh.Key5G", "key of ath1")
    router.set("button_mesh.easymesh.Key6G", "key of ath2")
    router.set("button_mesh.easymesh.mlo_key", "key of the MLO network")
    router.set("repacd.MAPConfig.FronthaulSSID", "One name")
    router.set("repacd.MAPConfig.FronthaulKey", f"key of {fronthaul(brand, op_mode)}")
    if role == 2:
        router.set("lbd.config.Enable", 1)
        for address in (*(f"wireless.{ifname}.key" for ifname in MAINS), *BACKHAUL_KEYS, "button_mesh.easymesh.Key5G",
                        "button_mesh.easymesh.Key6G"):
            router.set(address, "one key for all")


@pytest.mark.parametrize("brand,role,mode", list(itertools.product(range(3), range(3), (0, 1, 2, UNKNOWN_MODE))))
def test_no_value_changes(brand, role, mode):
    for index, op_mode in enumerate(("router", "ap", "re")):
        router = kit.Router()
        try:
            mesh(router, role, mode, brand, onboarded=(mode + index) % 2)
            router.set("system.@system[0].op_mode", op_mode)
            settle(router, brand, role, op_mode)
            router.tool("iw", simulated=True)
            is_guessed = mode == UNKNOWN_MODE and op_mode != "re"
            expected = {"button_mesh.easymesh.mode": ("3", "2")} if is_guessed else {}
            if is_guessed and role != 0:  # which is a change of the mesh
                expected["button_mesh.easymesh.mode_change"] = ("0", "1")
            if (role, router.option("repacd.MAPConfig.OnboardingDone")) != (2, "0"):  # who has no uplink yet shows 0
                for (radio, channel), package in itertools.product(OPERATING.items(), ("wireless", "wireless_for_easymesh")):
                    router.set(f"{package}.{radio}.channel", channel)
            for uri in (SETTING, DETAIL, WPS, *((FILTER,) if (mode + role) % 3 == index else ())):
                changed, answer = sent_back(router, uri)
                assert changed == (expected if uri == SETTING else {}), (uri, op_mode)
                if brand != 2:
                    assert answer.json["result"] == 0, (uri, op_mode)
            changed, _ = sent_back(router, SETTING)
            assert changed == {}, op_mode  # the second time there are no exceptions
        finally:
            router.finish()


@pytest.mark.parametrize("mlo,links", [(1, "110"), (3, "011"), (4, "111")])
@pytest.mark.parametrize("brand,role", list(itertools.product(range(3), (0, 1))))
def test_an_mlo_network_keeps_its_values(router, brand, role, mlo, links):
    mesh(router, role, brand=brand)
    settle(router, brand, role)
    for ifname, is_on in zip(MLO_LINKS, links):
        router.set(f"wireless.{ifname}.disabled", 1 - int(is_on))
        router.set(f"wireless_for_easymesh.{ifname}.disabled", 1 - int(is_on))
    changed, _ = sent_back(router, SETTING)
    assert changed == {}


# The exceptions: what the interface tells of such a state is not what it writes for it.


def test_each_quote_of_an_mlo_password_grows_again(router):
    for ifname in MLO_LINKS:
        router.set(f"wireless.{ifname}.disabled", 0)
        router.set(f"wireless.{ifname}.key", "it's a secret")
    document = router.get(SETTING).json
    assert slot(document, "MLO SSID")["ssidPassword"] == "it's a secret"
    expected = "it's a secret"
    for _ in range(3):
        changed, _ = sent_back(router, SETTING)
        grown = expected.replace("'", "'\\''")
        assert changed == {f"wireless.{ifname}.key": (expected, grown) for ifname in MLO_LINKS}
        expected = grown


def test_an_mlo_network_on_2_4_and_6_ghz_is_taken_away(router):
    for ifname, disabled in zip(MLO_LINKS, (0, 1, 0)):
        router.set(f"wireless.{ifname}.disabled", disabled)
    assert router.get(SETTING).json["mlo"] == 2
    changed, answer = sent_back(router, SETTING)
    assert answer.json["result"] == 0
    gone = {f"wireless.{ifname}.mld": ("mld0", None) for ifname in MLO_LINKS}
    off = {f"wireless.{ifname}.disabled": ("0", "1") for ifname in ("ath05", "ath25")}
    assert {key: pair for key, pair in changed.items() if ".mld0." not in key and "enable_ema" not in key} == gone | off
    assert router.get(SETTING).json["mlo"] == 0


def test_an_automatic_channel_becomes_zero(router):
    for radio in ("wifi0", "wifi1", "wifi2"):
        router.set(f"wireless.{radio}.channel", "auto")
    changed, _ = sent_back(router, SETTING)
    assert changed == {f"wireless.{radio}.channel": ("auto", "0") for radio in ("wifi0", "wifi1", "wifi2")}


@pytest.mark.parametrize("role", [0, 2])
def test_channels_that_an_uplink_decides_become_the_configured_ones(router, role):
    mesh(router, role, onboarded=1)
    settle(router, 0, role)
    router.set("system.@system[0].op_mode", "re")
    router.set("repeater.repeater_band.status", "success")
    router.tool("iw", out="\tchannel 11 (2462 MHz), width: 20 MHz, center1: 2462 MHz\n")
    router.tool("iw", "dev", "wifi1", out="\tchannel 100 (5500 MHz), width: 20 MHz, center1: 5500 MHz\n")
    router.tool("iw", "dev", "mld2", out="\tchannel 100 (5500 MHz), width: 20 MHz, center1: 5500 MHz\n")
    router.tool("iw", "dev", "wifi2", out="\tchannel 37 (6135 MHz), width: 20 MHz, center1: 6135 MHz\n")
    router.tool("iw", "dev", "mld3", out="\tchannel 37 (6135 MHz), width: 20 MHz, center1: 6135 MHz\n")
    changed, _ = sent_back(router, SETTING)
    assert changed == {f"wireless.wifi{band}.channel": ("0", channel) for band, channel in enumerate(("11", "100", "37"))}


def test_a_key_that_an_agent_shows_for_its_backhaul_goes_everywhere(router):
    mesh(router, 2)
    shown = slot(router.get(SETTING).json, "Mesh SSID")["ssidPassword"]
    changed, _ = sent_back(router, SETTING)
    assert {key: pair[1] for key, pair in changed.items() if "mld_ssid" not in key} == dict.fromkeys(BACKHAUL_KEYS, shown)


def test_what_an_agents_controller_decides_becomes_its_own(router):
    mesh(router, 2)
    router.set("wireless.ath0.dtim_period", 3)
    router.set("wireless.ath1.he_subfer", 0)
    changed, _ = sent_back(router, DETAIL)
    assert changed["wireless.ath0.dtim_period"] == ("3", "1")
    assert changed["wireless.ath1.he_subfer"] == ("0", "1")
    assert changed["lbd.config.Enable"] == ("0", "1")


def test_an_mld_takes_the_name_of_its_access_point(router):
    router.set("wireless.mld2.mld_ssid", "Another")
    changed, _ = sent_back(router, SETTING)
    assert changed == {"wireless.mld2.mld_ssid": ("Another", "Router-5G-1234")}


def test_other_spellings_become_the_usual_ones(router):
    router.set("wireless.ath01.encryption", "psk2")
    router.set("wireless.ath01.sae", None)
    router.set("wireless.ath11.wpa_group_rekey", 60)
    router.set("wireless.ath21.hidden", "00")
    changed, _ = sent_back(router, SETTING)
    changed = {key: pair for key, pair in changed.items() if pair[1] is not None}
    assert changed == {"wireless.ath01.encryption": ("psk2", "psk2+ccmp"),
                       "wireless.ath11.wpa_group_rekey": ("60", "1800"), "wireless.ath21.hidden": ("00", "0")}


def test_mixed_security_of_the_6_ghz_network_becomes_wpa3_in_a_mesh(router):
    mesh(router, 1)
    settle(router, 0, 1)
    router.set("wireless.ath2.encryption", "psk2+ccmp")
    router.set("wireless.ath2.sae", 1)
    changed, _ = sent_back(router, SETTING)
    assert changed["wireless.ath2.encryption"] == ("psk2+ccmp", "ccmp")


@pytest.mark.parametrize("option,value", [("hidden", 1), ("encryption", "none")])
def test_wps_ends_on_a_network_that_rules_it_out(router, option, value):
    router.set(f"wireless.ath0.{option}", value)
    changed, _ = sent_back(router, SETTING)
    assert {key: pair for key, pair in changed.items() if ".wps_" in key} == {
        "wireless.ath0.wps_state": ("2", "1"), "wireless.ath0.wps_pbc": ("1", "0")}


def test_a_short_beacon_interval_becomes_100(router):
    for ifname in MAINS:
        router.set(f"wireless.{ifname}.bintval", 50)
    changed, _ = sent_back(router, DETAIL)
    assert changed == {f"wireless.{ifname}.bintval": ("50", "100") for ifname in MAINS}


def test_a_power_of_no_table_row_is_refused_and_stays(router):
    router.set("wireless.ath0.txpower", 20)
    changed, answer = sent_back(router, DETAIL)
    assert (changed, answer.text) == ({}, '{"result": 1}')


def test_what_the_first_access_point_has_is_what_the_others_get(router):
    router.set("wireless.ath2.dtim_period", 3)
    router.set("wireless.ath21.bintval", 200)
    changed, _ = sent_back(router, DETAIL)
    assert changed == {"wireless.ath2.dtim_period": ("3", "1"), "wireless.ath21.bintval": ("200", "100")}


def test_wps_on_one_band_becomes_wps_on_both(router):
    router.set("wireless.ath1.wps_pbc", 0)
    router.set("wireless.ath1.wps_state", 1)
    changed, _ = sent_back(router, WPS)
    assert changed == {"wireless.ath1.wps_pbc": ("0", "1"), "wireless.ath1.wps_state": ("1", "2")}


def test_a_mac_filter_that_is_off_switches_wps_on(router):
    for ifname in ("ath0", "ath1"):
        router.set(f"wireless.{ifname}.wps_pbc", 0)
        router.set(f"wireless.{ifname}.wps_state", 1)
    changed, _ = sent_back(router, FILTER)
    assert changed == {f"wireless.{ifname}.{option}": pair for ifname in ("ath0", "ath1")
                       for option, pair in (("wps_pbc", ("0", "1")), ("wps_state", ("1", "2")))}


def test_entries_that_are_not_shown_are_lost(router):
    for name, values in (("namelist", ["One", "Two", "Three"]), ("maclist", ["m1", "m2"]), ("maclist_sec", ["m1", "m2"])):
        router.set(f"macfilter.ath0.{name}", values)
    changed, _ = sent_back(router, FILTER)
    assert changed == {"macfilter.ath0.namelist": (["One", "Two", "Three"], ["One", "Two"])}


# Security and names.


def test_an_open_network_loses_what_was_left_over(router):
    for ifname in ("ath01", "ath21"):
        router.set(f"wireless.{ifname}.encryption", "none")
    for option in ("key", "sae", "sae_confirm_immediate", "force_invalid_group", "ieee80211w"):
        router.set(f"wireless.ath01.{option}", "12345678")
    changed, answer = sent_back(router, SETTING)
    assert answer.json["result"] == 0
    assert {key: pair[1] for key, pair in changed.items() if ".ath01." in key} == {
        f"wireless.ath01.{option}": None for option in ("key", "sae", "sae_confirm_immediate", "force_invalid_group",
                                                        "ieee80211w")}
    assert changed["wireless.ath21.encryption"] == ("none", "ccmp")  # 6 GHz has no open network but an enhanced one
    assert router.option("wireless.ath21.owe") == "1"


def test_an_enhanced_open_network_of_2_4_ghz_becomes_open(router):
    router.set("wireless.ath01.encryption", "ccmp")
    router.set("wireless.ath01.owe", 1)
    changed, _ = sent_back(router, SETTING)
    assert changed["wireless.ath01.encryption"] == ("ccmp", "none")


def test_a_wpa2_network_loses_the_options_of_wpa3(router):
    router.set("wireless.ath01.encryption", "psk2+ccmp")
    router.set("wireless.ath01.sae", 0)
    router.set("wireless.ath01.ieee80211w", 1)
    changed, _ = sent_back(router, SETTING)
    assert (changed["wireless.ath01.sae"], changed["wireless.ath01.ieee80211w"]) == (("0", None), ("1", None))


def test_a_repeaters_second_5_ghz_network_follows_band_steering(router):
    router.set("system.@system[0].op_mode", "re")
    router.set("lbd.config.Enable", 1)
    for option, value in (("ssid", "Main"), ("key", "main key")):
        router.set(f"wireless.ath0.{option}", value)
    changed, _ = sent_back(router, SETTING)
    assert (changed["wireless.ath12.ssid"][1], changed["wireless.ath12.key"][1]) == ("Main", "main key")


def test_what_is_no_utf_8_in_a_name_becomes_what_is_shown(router):
    router.set("wireless.ath01.ssid", "caf\udce9")
    changed, _ = sent_back(router, SETTING)
    assert changed["wireless.ath01.ssid"] == ("caf\udce9", "caf\ufffd")


def test_mlo_0_does_not_switch_mlo_off(router):
    for ifname in MLO_LINKS:
        router.set(f"wireless.{ifname}.disabled", 0)
    document = router.get(SETTING).json
    assert document["mlo"] == 4
    assert router.post(SETTING, {**document, "mlo": 0}).json["result"] == 0
    assert router.get(SETTING).json["mlo"] == 4


@pytest.mark.parametrize("radio,spelling,usual", [
    ("wifi0", "EHT20", "HT20"), ("wifi0", "EHT40-", "HT40"), ("wifi1", "HT40", "EHT40"), ("wifi1", "EHT40+", "EHT40"),
    ("wifi2", "HT20", "EHT20")])
def test_a_width_gets_its_bands_usual_spelling(router, radio, spelling, usual):
    router.set(f"wireless.{radio}.htmode", spelling)
    changed, _ = sent_back(router, DETAIL)
    assert changed == {f"wireless.{radio}.htmode": (spelling, usual)}


@pytest.mark.parametrize("radio,htmode", [("wifi0", "EHT80"), ("wifi1", "EHT320")])
def test_a_width_that_the_band_cannot_have_is_refused_and_stays(router, radio, htmode):
    router.set(f"wireless.{radio}.htmode", htmode)
    changed, answer = sent_back(router, DETAIL)
    assert (changed, answer.text) == ({}, '{"result": 1}')


def test_mu_mimo_gets_each_bands_own_value(router):
    for ifname in MAINS:
        router.set(f"wireless.{ifname}.set_eht_ulmumimo", 1)
    changed, _ = sent_back(router, DETAIL)
    assert changed == {"wireless.ath1.set_eht_ulmumimo": ("1", "3"), "wireless.ath2.set_eht_ulmumimo": ("1", "7")}
