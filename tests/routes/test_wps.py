"""GET and POST /api/v1/wireless/wps-status, POST /api/v1/wireless/wps."""

import kit
import pytest
from routes.wireless_state import changes, mesh, packages

STATUS = "/api/v1/wireless/wps-status"
PUSH = "/api/v1/wireless/wps"
RESULT_1 = '{"result": 1}'
OK_20 = '{"result": 0, "version": 1, "waitTime": 20}'
HEADERS = ["Content-Type: application/json", "Status: 200 OK"]
ON = {"wps_state": "2", "wps_pbc": "1"}
OFF = {"wps_state": "1", "wps_pbc": "0"}


def wps(router, band):
    return {option: router.option(f"wireless.ath{band}.{option}") for option in ("wps_state", "wps_pbc")}


def set_pbc(router, *values):
    for band, value in enumerate(values):
        router.set(f"wireless.ath{band}.wps_pbc", value)


# GET.


def test_wps_is_on(router):
    a = router.get(STATUS)
    assert a.encrypted and a.header_lines == HEADERS
    assert a.text == '{ "result": 0, "version": 1, "status": 1 }'
    assert router.commands() == []


def test_one_band_is_enough(router):
    set_pbc(router, 1, 0)
    assert router.get(STATUS).json["status"] == 1
    router.set("wireless.ath0.disabled", 1)
    assert router.get(STATUS).json["status"] == 0


def test_without_radios_it_is_off(router):
    for radio in ("wifi0", "wifi1"):
        router.set(f"wireless.{radio}.disabled", 1)
    assert router.get(STATUS).json == {"result": 0, "version": 1, "status": 0}


def test_an_unreadable_state_is_told_as_off(router):
    for option, message in (("ath0.wps_pbc", "Failed to get ath0_wps_state"),
                            ("ath1.wps_pbc", "Failed to get ath1_wps_state"),
                            ("ath0.disabled", "Failed to get ath0_disabled_state"),
                            ("ath1.disabled", "Failed to get ath1_disabled_state"),
                            ("wifi0.disabled", "Failed to get wifi0_disabled_state"),
                            ("wifi1.disabled", "Failed to get wifi1_disabled_state")):
        value = router.option(f"wireless.{option}")
        router.set(f"wireless.{option}", None)
        a = router.get(STATUS)
        assert a.encrypted and a.json == {"result": 0, "version": 1, "status": 0}
        assert router.logged(message, priority=3)
        router.set(f"wireless.{option}", value)
    assert router.logged("get wpsStatus fail!", priority=7)


def test_without_any_package(bare_router):
    assert bare_router.get(STATUS).json == {"result": 0, "version": 1, "status": 0}
    assert bare_router.post(PUSH, None).text == RESULT_1
    assert bare_router.post(STATUS, {"status": 1}).text == OK_20


# POST of the status.


@pytest.mark.parametrize("status,options", [(0, OFF), (1, ON)])
def test_wps_is_switched_in_wireless_alone(router, status, options):
    mesh(router, 1)
    for band in (0, 1):
        for option in options:
            router.set(f"wireless.ath{band}.{option}", "old")
    before = packages(router)
    a = router.post(STATUS, {"status": status})
    assert a.encrypted and a.text == OK_20 and a.header_lines == HEADERS
    router.wait_for_call("wifi", "multi_up")
    assert router.commands() == ["uci commit wireless", "wifi reload", "wifi multi_up mld2 mld3 mld6"]
    assert changes(before, packages(router)) == {
        f"wireless.ath{band}.{option}": ("old", value) for band in (0, 1) for option, value in options.items()}


def test_no_precondition_is_asked(router):
    for band in (0, 1):
        router.set(f"wireless.ath{band}.hidden", 1)
        router.set(f"wireless.ath{band}.disabled", 1)
        router.set(f"wireless.ath{band}.encryption", "none")
    router.set("macfilter.macfilter.enable", 1)
    set_pbc(router, 0, 0)
    assert router.post(STATUS, {"status": 1}).text == OK_20
    router.wait_for_call("wifi", "reload")
    assert wps(router, 0) == wps(router, 1) == ON


@pytest.mark.parametrize("status", [5, -1, 2, 2**31 - 1, 2**70, "7"])
def test_other_values_succeed_and_change_nothing(router, status):
    before = packages(router)
    assert router.post(STATUS, {"status": status}).text == OK_20
    assert router.alive()
    assert router.commands() == [] and packages(router) == before


def test_no_body_is_refused(router):
    a = router.post(STATUS, None)
    assert a.encrypted and a.text == RESULT_1 and a.header_lines == HEADERS
    assert router.commands() == []


@pytest.mark.parametrize("body", kit.GARBAGE_BODIES.values(), ids=kit.GARBAGE_BODIES)
def test_garbage_is_refused(router, body):
    before = packages(router)
    a = router.post(STATUS, body)
    assert a.encrypted and a.text == RESULT_1
    assert router.commands() == [] and packages(router) == before


def test_hostile_texts(router):
    for text in kit.HOSTILE.values():
        assert router.post(STATUS, {"status": text}).text == RESULT_1
        assert router.post(STATUS, {text: 1, "Status": 1}).text == RESULT_1
    router.assert_nothing_ran()


def test_a_second_request_reloads_again(router):
    for status in (0, 1):
        assert router.post(STATUS, {"status": status}).text == OK_20
    router.wait_for_call("wifi", "reload", times=2)
    assert router.commands("wifi") == ["wifi reload", "wifi reload"]


def test_a_reload_that_never_ends_keeps_no_one_waiting(router):
    router.tool("uci", "commit", hang=True)
    assert router.post(STATUS, {"status": 1}).text == OK_20
    router.wait_for_call("uci", "commit", "wireless")
    assert router.get(STATUS).json["status"] == 1


@pytest.mark.parametrize("how", [{"exit": 1}, {"missing": True}, {"signal": 9}])
def test_dead_tools_change_no_answer(router, how):
    for tool in ("wifi", "uci"):
        router.tool(tool, **how)
    assert router.post(STATUS, {"status": 0}).text == OK_20
    assert wps(router, 0) == wps(router, 1) == OFF
    router.tool("/usr/sbin/wps_web.sh", **how)
    set_pbc(router, 1, 1)
    assert router.post(PUSH, None).text == OK_20


# POST of a push-button session.


def test_a_session_starts_with_wps_on_both_bands(router):
    a = router.post(PUSH, None)
    assert a.encrypted and a.text == OK_20 and a.header_lines == HEADERS
    router.wait_for_call("/usr/sbin/wps_web.sh")
    assert router.commands() == ["/usr/sbin/wps_web.sh"]


@pytest.mark.parametrize("first", [0, 1, 2, None])
@pytest.mark.parametrize("second", [0, 1, 2, None])
def test_a_session_needs_both_bands(router, first, second):
    set_pbc(router, first, second)
    a = router.post(PUSH, None)
    assert a.encrypted and a.text == (OK_20 if (first, second) == (1, 1) else RESULT_1)
    if (first, second) != (1, 1):
        assert router.commands() == []


def test_a_body_is_not_read(router):
    for body in ({"status": 0}, "no json", b"\xff"):
        assert router.post(PUSH, body).text == OK_20
    router.wait_for_call("/usr/sbin/wps_web.sh", times=3)


def test_a_session_that_never_ends_keeps_no_one_waiting(router):
    router.tool("/usr/sbin/wps_web.sh", hang=True)
    assert router.post(PUSH, None).text == OK_20
    router.wait_for_call("/usr/sbin/wps_web.sh")
    assert router.post(PUSH, None).text == OK_20
    router.wait_for_call("/usr/sbin/wps_web.sh", times=2)
