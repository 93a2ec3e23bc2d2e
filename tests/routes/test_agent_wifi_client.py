"""POST /api/v1/mesh/agent-wificlient-info."""

import itertools

import kit
import pytest
from routes.wireless_state import BRANDS, changes, mesh, packages

AGENT = "/api/v1/mesh/agent-wificlient-info"
JOIN = "/usr/sbin/easymesh_agent.sh"
CLOSE = "/usr/sbin/easymesh_close_for_agent.sh"
RESULT_1 = '{"result": 1}'
RESULT_2 = '{"result": 2}'
OK_20 = '{"result": 0, "version": 1, "waitTime": 20}'

# What changes nothing on a router as it leaves the factory but the location.
SAME = {"mesh": 0, "frequency": 5, "multiLinkOperationEnable": 1, "ieee802dot11r": 0, "multiRuEnable": 0, "location": 3,
        "locationCustom": "living room", "ledStatus": 1, "compatiMode": 0, "compatiWiFi6Mode": 0}
MISSING = {key: f"parse {key} error" for key in SAME} | {"location": "parse Location error"}
SWITCH_6GHZ = [f"{package}.{section}.disabled" for package in ("wireless", "wireless_for_easymesh")
               for section in ("ath2", "ath25")]


def wait(seconds):
    return '{"result":0, "version":1, "waitTime": %d}' % seconds


def post(router, **members):
    router.forget_calls()
    a = router.post(AGENT, {**SAME, **members})
    assert a.encrypted and a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    return a.text


def ran(router, *commands):
    for command in commands:
        router.wait_for_call(*command.split())
    assert router.commands() == list(commands)


def prepare(router, enable, mode=1, compati=0, multi_ru=0, brand=0):
    mesh(router, 2 if enable else 0, mode, brand=brand)
    router.set("button_mesh.easymesh.compatiWiFi6Mode", compati)
    router.set("button_mesh.easymesh.mode_change", 0)
    router.set("wireless.wifi1.dfs_puncture_en", multi_ru)
    for address in SWITCH_6GHZ:
        router.set(address, "old")


# What is refused.


def test_no_body(router):
    a = router.post(AGENT, None)
    assert a.encrypted and a.text == RESULT_1
    assert router.logged("request error", priority=3)


@pytest.mark.parametrize("body", kit.GARBAGE_BODIES.values(), ids=kit.GARBAGE_BODIES)
def test_garbage(router, body):
    before = packages(router)
    a = router.post(AGENT, body)
    assert a.encrypted and a.text == RESULT_1
    assert router.commands() == [] and packages(router) == before


def test_text_that_is_no_json(router):
    assert router.post(AGENT, "hello").text == RESULT_1
    assert router.logged("can't parse data to json format.", priority=3)


def test_every_key_is_required_and_nothing_is_written_before(router):
    before = packages(router)
    for key in SAME:
        body = {k: v for k, v in SAME.items() if k != key}
        assert router.post(AGENT, {**body, **({"ieee802dot11r": 1} if key != "ieee802dot11r" else {})}).text == RESULT_1
        assert router.logged(MISSING[key], priority=3), key
    assert router.commands() == [] and packages(router) == before


# What is written.


def test_the_same_values_again_run_nothing(router):
    for enable in (0, 1):
        prepare(router, enable)
        before = packages(router)
        assert post(router, mesh=enable) == OK_20
        assert router.commands() == []
        assert changes(before, packages(router)) == {}
    assert router.option("devicecustom.info.locationCustom") == "living room"


def test_every_value_is_stored(router):
    assert post(router, ieee802dot11r=1, multiRuEnable=1, locationCustom="attic", compatiMode=2,
                multiLinkOperationEnable=2) == wait(120)
    assert router.option("button_mesh.easymesh.ieee80211r") == "1"
    assert router.option("wireless.wifi1.dfs_puncture_en") == "1"
    assert router.option("devicecustom.info.locationCustom") == "attic"
    assert router.option("repeater.compatiMode.value") == "2"
    assert router.option("button_mesh.easymesh.mode") == "2"
    assert router.option("devicecustom.info.location") == "0"
    ran(router, "wifi reload")


def test_values_are_stored_as_decimals_whatever_they_are(router):
    assert post(router, ieee802dot11r=-5, compatiMode="77", compatiWiFi6Mode=2**40) == OK_20
    assert router.option("button_mesh.easymesh.ieee80211r") == "-5"
    assert router.option("repeater.compatiMode.value") == "77"
    assert router.option("button_mesh.easymesh.compatiWiFi6Mode") == str(2**31 - 1)


def test_the_mesh_mode_is_0_1_or_2_or_stays(router):
    for mode in (0, 1, 2, 3, -1, 100):
        router.set("button_mesh.easymesh.mode", 1)
        assert post(router, multiLinkOperationEnable=mode) == OK_20
        assert router.option("button_mesh.easymesh.mode") == (str(mode) if mode in (0, 1, 2) else "1")


def test_a_custom_location_replaces_the_number_and_is_cut(router):
    for text, stored in (("12345678901234567", "12345678901234567"), ("12345678901234567890", "12345678901234567"),
                         ("日本語日本語日本語", "日本語日本"), ("", None)):
        post(router, location=7, locationCustom=text)
        assert router.option("devicecustom.info.locationCustom") == stored


@pytest.mark.parametrize("name", kit.HOSTILE)
def test_hostile_locations_arrive_whole(router, name):
    text = kit.HOSTILE[name]
    raw = text.encode("utf-8", "surrogateescape")
    body = b'{"mesh": 0, "frequency": 5, "multiLinkOperationEnable": 1, "ieee802dot11r": 0, "multiRuEnable": 0, ' \
           b'"location": 3, "ledStatus": 1, "compatiMode": 0, "compatiWiFi6Mode": 0, "locationCustom": "%s"}' % (
               raw.replace(b"\\", b"\\\\").replace(b'"', b'\\"').replace(b"\n", b"\\n").replace(b"\r", b"\\r")
               .replace(b"\t", b"\\t").replace(b"\x01", b"\\u0001").replace(b"\x02", b"\\u0002")
               .replace(b"\x1b", b"\\u001b"))
    a = router.post(AGENT, body)
    if name == "control":  # UCI holds no such characters
        assert a.text == RESULT_1 and router.logged("parse locationCustom error", priority=3)
    else:
        assert a.text == OK_20
        cut = raw[:17].decode("utf-8", "ignore" if name == "utf8" else "surrogateescape")
        assert router.option("devicecustom.info.locationCustom") == (cut or None)
    assert router.commands() == []
    router.assert_nothing_ran()


# What it comes to.


@pytest.mark.parametrize("brand", BRANDS)
@pytest.mark.parametrize("enable", [0, 1])
def test_every_change_of_the_mesh(router, brand, enable):
    for requested, old_mode, mode, compati, old_compati in itertools.product(
            (0, 1, 2), (0, 1, 2), (0, 1, 2, 3), (0, 1), (0, 1)):
        if brand != 0 and not (requested == 1 and enable == 0) and (mode == 0 or old_mode == 0):
            continue  # only the answer to joining goes by the brand
        prepare(router, enable, old_mode, old_compati, brand=brand)
        answer = post(router, mesh=requested, multiLinkOperationEnable=mode, compatiWiFi6Mode=compati)
        is_other_mode = mode in (0, 1, 2) and mode != old_mode and not compati  # with it the mode in force is 1
        changed = is_other_mode or compati != old_compati
        stored_mode = mode if mode in (0, 1, 2) else old_mode
        if enable and requested == 0:
            expected, command, mode_change = wait(120), [CLOSE], "0"
        elif not enable and requested == 1:
            expected, command, mode_change = wait(130 if brand == 0 else 150), [JOIN], "0"
        elif enable and requested == 1 and changed:
            expected, command, mode_change = wait(150), [CLOSE], "1"
        else:
            expected, command, mode_change = OK_20, [], "0"
        what = (requested, old_mode, mode, compati, old_compati)
        assert answer == expected, what
        ran(router, *command)
        disabled = "old" if not command else "1" if compati == 1 else "0"
        assert [router.option(address) for address in SWITCH_6GHZ] == [disabled] * 4, what
        assert router.option("button_mesh.easymesh.mode") == str(1 if command and compati == 1 else stored_mode), what
        assert router.option("button_mesh.easymesh.mode_change") == mode_change, what
        assert router.option("button_mesh.easymesh.compatiWiFi6Mode") == str(compati)


def test_wifi_6_compatibility_forces_the_mode_only_where_the_mesh_changes(router):
    prepare(router, 1, mode=2, compati=1)
    assert post(router, mesh=1, multiLinkOperationEnable=2, compatiWiFi6Mode=1) == OK_20
    assert router.option("button_mesh.easymesh.mode") == "2"
    assert post(router, mesh=0, multiLinkOperationEnable=2, compatiWiFi6Mode=1) == wait(120)
    assert router.option("button_mesh.easymesh.mode") == "1"


def test_multi_ru_reloads_where_nothing_else_is_chosen(router):
    prepare(router, 0)
    assert post(router, multiRuEnable=1) == wait(120)
    ran(router, "wifi reload")
    prepare(router, 1)
    assert post(router, mesh=1, multiRuEnable=1) == wait(120)
    ran(router, "wifi reload")
    prepare(router, 0)
    assert post(router, mesh=1, multiRuEnable=1) == wait(130)
    ran(router, JOIN)
    prepare(router, 1)
    assert post(router, mesh=1, multiLinkOperationEnable=2, multiRuEnable=1) == wait(150)
    ran(router, CLOSE)


def test_the_scripts_keep_no_one_waiting(router):
    for tool in (JOIN, CLOSE, "wifi"):
        router.tool(tool, hang=True)
    prepare(router, 1)
    assert post(router, mesh=0) == wait(120)
    prepare(router, 0)
    assert post(router, mesh=1) == wait(130)
    prepare(router, 0)
    assert post(router, multiRuEnable=1) == wait(120)
    assert router.alive()


# What cannot be applied.


@pytest.mark.parametrize("address,message", [
    ("button_mesh.easymesh", "set ieee80211r error"),
    ("wireless.wifi1.dfs_puncture_en", "get multiRuEnable value error"),
    ("devicecustom.info", "set location error"),
    ("repeater.compatiMode", "set compatiMode value error"),
    ("button_mesh.easymesh.compatiWiFi6Mode", "get compatiWiFi6Mode value error"),
    ("button_mesh.easymesh.mode", "get mesh mode value error"),
    ("button_mesh.easymesh.enable", "get mesh value error"),
])
def test_what_cannot_be_read_or_written_fails(router, address, message):
    router.set(address, None)
    assert post(router) == RESULT_2
    assert router.logged(message, priority=3)
    assert router.commands() == []


@pytest.mark.parametrize("address", ["wireless.ath2", "wireless.ath25", "wireless_for_easymesh.ath25"])
def test_a_6ghz_network_that_is_missing_fails_before_the_mesh_is_touched(router, address):
    prepare(router, 0)
    router.set(address, None)
    assert post(router, mesh=1) == RESULT_2
    assert post(router) == OK_20
    assert router.commands() == []


def test_without_any_package(bare_router):
    assert bare_router.post(AGENT, SAME).text == RESULT_2
    assert bare_router.commands() == []


@pytest.mark.parametrize("how", [{"exit": 1}, {"missing": True}, {"signal": 9}])
def test_dead_tools_change_no_answer(router, how):
    for tool in ("wifi", JOIN, CLOSE):
        router.tool(tool, **how)
    prepare(router, 0)
    assert post(router, mesh=1) == wait(130)
    prepare(router, 1)
    assert post(router, mesh=0) == wait(120)
    prepare(router, 0)
    assert post(router, multiRuEnable=1) == wait(120)
