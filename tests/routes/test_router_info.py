"""GET and POST /api/v1/router/info, GET /api/v1/router/device-info."""

import re

import pytest

from kit import GARBAGE_BODIES, HOSTILE

URI = "/api/v1/router/info"
DEVICE = "/api/v1/router/device-info"
LED = "/sys/devices/platform/soc@0/soc@0:leds/leds/led_router/brightness"
KEYS = ["notification", "location", "ledStatus", "certDBNumber", "modeSwitchStatus", "currentMode", "productId", "model",
        "macAddress", "fwVersion", "locationCustom", "currentDateTime", "fwUpdateUrl", "bootcodeVersion",
        "dualImageAreaAStatus", "dualImageAreaBStatus"]
OK = {"result": 0, "version": 1, "waitTime": 20}
GPIO = " gpio{0}  (x |y ) in {1} \n"


def info(router):
    return router.get(URI).json["routerInfo"]


def test_the_document_has_its_keys_in_order(router):
    router.config("devicecustom", "config info 'info'\n\toption location '3'\n\toption locationCustom 'attic'\n")
    router.set("network.wan.macaddr", "00:90:FE:00:00:01")
    router.write("/etc/mtn_version", "V1.2.3\r\nmore\n")
    router.write(LED, "255\n")
    a = router.get(URI)
    assert a.encrypted
    assert list(a.json) == ["result", "version", "routerInfo"]
    assert list(a.json["routerInfo"]) == KEYS
    got = a.json["routerInfo"]
    assert (got["location"], got["locationCustom"], got["macAddress"]) == (3, "attic", "00:90:FE:00:00:01")
    assert (got["certDBNumber"], got["bootcodeVersion"], got["fwVersion"]) == ("1", "U-Boot 2023.04", "V1.2.3")
    assert re.fullmatch(r"\d+/\d\d/\d\d \d\d:\d\d:\d\d", got["currentDateTime"])


@pytest.mark.parametrize("brand, product, option", [("orvane", "0221", "orvanepathV4"), ("tesmir", "0121", "tesmirpath")])
def test_product_and_update_url_are_the_brands(router, brand, product, option):
    router.brand(brand)
    router.config("hota", f"config hota 'info'\n\toption {option} 'https://{brand}.example/fw'\n")
    got = info(router)
    assert (got["productId"], got["fwUpdateUrl"]) == (product, f"https://{brand}.example/fw")


def test_an_unknown_brand_has_neither(router):
    router.brand("0999")
    assert (info(router)["productId"], info(router)["fwUpdateUrl"]) == ("", "")


@pytest.mark.parametrize("check, hota, notification", [
    ("1", "0", 0), ("16", "0", 0), ("16", "1", 3), ("1", "1", 3), ("100", "1", 2), ("2", "1", 1), ("", "1", 1),
    (None, "1", 1), ("1", None, 0)])
def test_the_notification(router, check, hota, notification):
    for path, text in (("/tmp/inetchkresult.txt", check), ("/tmp/HotaVersionStatus", hota)):
        router.remove(path)
        if text is not None:
            router.write(path, text + "\n")
    assert info(router)["notification"] == notification
    asked = [c for c in router.commands() if c == "orvanehota -c"]
    assert asked == (["orvanehota -c"] if check in ("1", "16") else [])
    assert router.logged("Failed to open fail", priority=7) == (check is None or hota is None)


@pytest.mark.parametrize("op_mode, mode", [("router", 0), ("ap", 1), ("re", 2), ("other", 0)])
def test_the_current_mode(router, op_mode, mode):
    router.set("button_mesh.easymesh.enable", 0)
    router.set("system.@system[0].op_mode", op_mode)
    assert info(router)["currentMode"] == mode


def test_on_a_mesh_agent_both_modes_are_2(router):
    router.set("button_mesh.easymesh.enable", 1)
    router.set("button_mesh.easymesh.role", "agent")
    router.write("/sys/kernel/debug/gpio", GPIO.format(38, "low"))
    assert (info(router)["modeSwitchStatus"], info(router)["currentMode"]) == (2, 2)


@pytest.mark.parametrize("text, status", [("0\n", 0), ("255\n", 1), ("1", 1), ("00\n", 1)])
def test_the_led_is_on_unless_its_file_holds_0(router, text, status):
    router.write(LED, text)
    assert info(router)["ledStatus"] == status


def test_image_areas_are_asked_for_first_and_default_to_ready(router):
    router.config("test", "config test 'test'\n\toption statusa 'Active'\n")
    got = info(router)
    assert (got["dualImageAreaAStatus"], got["dualImageAreaBStatus"]) == ("Active", "Ready")
    assert "/usr/sbin/testinfo" in router.commands()


def test_with_no_packages_every_value_is_empty_or_0(bare_router):
    got = info(bare_router)
    assert (got["model"], got["macAddress"], got["location"], got["locationCustom"]) == ("", "", 0, "")
    assert bare_router.logged("get executed failed.", priority=7)


# POST.

def test_a_change_writes_each_key_that_is_given(router):
    a = router.post(URI, {"routerInfo": {"model": "My router", "location": 12, "locationCustom": "under the stairs",
                                         "ledStatus": 1}})
    assert a.encrypted and a.json == OK
    assert router.option("system.@system[0].hostname") == "My router"
    assert router.option("devicecustom.info.location") == "12"
    assert router.option("devicecustom.info.locationCustom") == "under the stairs"
    assert router.read(LED) == "255\n"


@pytest.mark.parametrize("status, text", [(1, "255\n"), (0, "0\n"), (2, "0\n"), (-1, "0\n")])
def test_the_led_file_gets_255_for_1_and_0_for_anything_else(router, status, text):
    assert router.post(URI, {"routerInfo": {"ledStatus": status}}).json == OK
    assert router.read(LED) == text


def test_no_key_changes_nothing(router):
    before = router.read("/etc/config/system")
    assert router.post(URI, {"routerInfo": {}}).json == OK
    assert router.read("/etc/config/system") == before


@pytest.mark.parametrize("body", [None, {}, {"routerInfo": []}, {"routerInfo": "x"}, *GARBAGE_BODIES.values()],
                         ids=["none", "empty", "array", "text", *GARBAGE_BODIES])
def test_an_unusable_body_is_result_1(router, body):
    assert router.post(URI, body).json == {"result": 1}


def test_texts_are_bounded_to_their_fields(router):
    router.post(URI, {"routerInfo": {"model": "m" * 40, "location": 123456, "locationCustom": "l" * 80}})
    assert router.option("system.@system[0].hostname") == "m" * 31
    assert router.option("devicecustom.info.location") == "123"
    assert router.option("devicecustom.info.locationCustom") == "l" * 63


@pytest.mark.parametrize("text", [t for t in HOSTILE.values() if t and len(t) < 64 and "\x01" not in t])
def test_hostile_texts_are_stored_and_do_nothing(router, text):
    assert router.post(URI, {"routerInfo": {"locationCustom": text}}).json == OK
    assert router.option("devicecustom.info.locationCustom") == text[:63]
    router.assert_nothing_ran()


@pytest.mark.parametrize("change", [{"model": "a\nb"}, {"model": "a\rb"}, {"model": "\x01"}, {"model": "\t"}, {"model": ""},
                                    {"locationCustom": "a\x01b"}, {"locationCustom": "\x1b"}], ids=str)
def test_a_text_that_cannot_be_kept_is_result_1_and_nothing_of_it_is_written(router, change):
    before = (router.read("/etc/config/system"), router.read("/etc/config/devicecustom"))
    router.write(LED, "as it was\n")
    whole = {"model": "Mine", "location": 5, "locationCustom": "attic", "ledStatus": 1, **change}
    assert router.post(URI, {"routerInfo": whole}).json == {"result": 1}
    assert (router.read("/etc/config/system"), router.read("/etc/config/devicecustom")) == before
    assert router.read(LED) == "as it was\n"


@pytest.mark.parametrize("letter", ["é", "日", "🛜"])
def test_texts_are_cut_at_a_characters_end_on_both_ways(router, letter):
    for before in range(4):  # the bound falls on each byte of the character
        text = "x" * before + letter * 40
        router.post(URI, {"routerInfo": {"model": text, "locationCustom": text}})
        stored = {"model": router.option("system.@system[0].hostname"),
                  "locationCustom": router.option("devicecustom.info.locationCustom")}
        for key, most in (("model", 31), ("locationCustom", 63)):
            assert text.startswith(stored[key]) and most - 4 < len(stored[key].encode()) <= most
        shown = info(router)
        for key in stored:
            assert stored[key].startswith(shown[key]) and 27 < len(shown[key].encode()) <= 31


def test_a_stored_text_that_is_no_utf8_is_shown_as_one(router):
    router.set("devicecustom.info.locationCustom", "caf\udce9")
    assert info(router)["locationCustom"] == "caf\ufffd"


def test_what_cannot_be_read_is_told_under_its_getters_name(bare_router):
    info(bare_router)
    told = {line.function for line in bare_router.log() if line.text == "get executed failed.\n"}
    assert {"get_routerInfo_macaddr", "get_routerInfo_model", "get_routerInfo_devicecustom",
            "get_routerInfo_currentMode"} <= told
    files = [line.function for line in bare_router.log() if line.text == "Failed to open fail\n"]
    assert files == ["get_internet_status"]


# Device information.

@pytest.mark.parametrize("device, name, found", [
    ("0221", "MX-9P300KLD", True), ("0121", "VR-EH700QTS", True), ("0221", "VR-EH700QTS", False),
    ("0121", "MX-9P300KLD", False), ("0999", "MX-9P300KLD", False)])
def test_device_information_is_plain_and_names_the_brands_own_model(router, device, name, found):
    router.write("/tmp/deviceid", device + "\n")
    router.set("system.@system[0].hostname", name)
    a = router.get(DEVICE)
    assert not a.encrypted
    assert a.json == ({"result": 0, "version": 1, "productId": device, "model": name} if found else {"result": 1})


def test_a_changed_host_name_hides_the_device(router):
    router.set("system.@system[0].hostname", "MX-9P300KLD")
    assert router.get(DEVICE).json["result"] == 0
    router.post(URI, {"routerInfo": {"model": "Mine"}})
    assert router.get(DEVICE).json == {"result": 1}
