"""POST /api/v1/test/led, /test/switch, /test/cert-db-reset."""

import pytest

from kit import GARBAGE_BODIES

OK = {"result": 0, "version": 1, "waitTime": 20}
UNUSABLE = {"result": 1}
NOT_JSON = {name: body for name, body in GARBAGE_BODIES.items() if name in ("not-json", "truncated", "binary")}
LINE_OF_POSITION = {1: 39, 2: 38, 3: 10}


def set_lines(router, *low):
    router.write("/sys/kernel/debug/gpio", "".join(
        f" gpio{line}  in 0 {'low' if line in low else 'high'} 8mA\n" for line in (10, 38, 39, 100)))


def test_the_led_test_runs_its_script(router):
    a = router.post("/api/v1/test/led", {"anything": 1})
    assert a.encrypted and a.json == OK
    assert "/usr/sbin/ledtest" in router.commands()[0]


@pytest.mark.parametrize("route", ["led", "switch"])
@pytest.mark.parametrize("body", [None, *NOT_JSON.values()], ids=["none", *NOT_JSON])
def test_a_body_that_is_not_json_is_result_1_and_runs_nothing(router, route, body):
    assert router.post(f"/api/v1/test/{route}", body).json == UNUSABLE
    assert router.commands() == []


@pytest.mark.parametrize("set_to", [1, 2, 3])
@pytest.mark.parametrize("asked", [1, 2, 3])
def test_the_switch_is_compared_with_the_position_asked_for(router, set_to, asked):
    set_lines(router, LINE_OF_POSITION[set_to])
    a = router.post("/api/v1/test/switch", {"position": asked})
    assert a.json == {"result": 0, "version": 1, "position": asked, "switchTestResult": int(asked == set_to)}
    assert list(a.json) == ["result", "version", "position", "switchTestResult"]
    assert router.commands() == ["fact switch-key 1"]


def test_of_lines_38_and_39_line_38_wins(router):
    set_lines(router, 38, 39)
    assert router.post("/api/v1/test/switch", {"position": 2}).json["switchTestResult"] == 1


@pytest.mark.parametrize("position", [0, 4, -1, 2147483647, "x"])
def test_another_position_is_result_1(router, position):
    set_lines(router, 38)
    assert router.post("/api/v1/test/switch", {"position": position}).json == UNUSABLE


@pytest.mark.parametrize("position", [1, 2, 3])
def test_with_no_line_low_every_position_is_result_1(router, position):
    set_lines(router)
    assert router.post("/api/v1/test/switch", {"position": position}).json == UNUSABLE


def test_a_missing_position_and_a_missing_gpio_file_are_result_1(router):
    router.remove("/sys/kernel/debug/gpio")
    assert router.post("/api/v1/test/switch", {}).json == UNUSABLE


@pytest.mark.parametrize("body", [None, "not json", {}])
def test_the_certificate_database_is_reset_whatever_the_body(router, body):
    assert router.post("/api/v1/test/cert-db-reset", body).json == OK
    assert "/usr/sbin/resetdbnum" in router.commands()[0]
