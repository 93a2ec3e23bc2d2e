"""POST /api/v1/wireless/setting: documents posted back, hostile texts and dead tools."""

import kit
import pytest
from routes.wireless_posts import OK_70, RESULT_1, RESULT_2, ends, post
from routes.wireless_state import BRANDS, ISOLATE, SETTING, changes, element, mesh, packages, wait

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
