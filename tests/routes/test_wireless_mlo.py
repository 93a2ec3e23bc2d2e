"""POST /api/v1/wireless/setting: the MLO network."""

import itertools

import pytest
from routes.wireless_posts import COMMITS, OK_70, RESULT_1, RESULT_2, ends, post
from routes.wireless_state import ISOLATE, changes, element, mesh, packages, wait

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
