"""GET and POST /api/v1/fsecure_sense."""

import pytest

from kit import GARBAGE_BODIES

URI = "/api/v1/fsecure_sense"
VERSION = "/opt/sense/VERSION"
SCRIPT = "/opt/sense/bin/sense_init.sh"
OK = {"result": 0, "version": 1, "waitTime": 20}
UNUSABLE = {"result": 1}


@pytest.fixture
def unit(router):
    router.brand("tesmir")
    router.set("system.@system[0].op_mode", "router")
    router.config("fsecure", "config sense 'sense'\n\toption disabled '0'\n")
    router.tool(SCRIPT)
    router.write(VERSION, "2.3.4\nmore\n")
    return router


@pytest.mark.parametrize("disabled, enable", [("0", 1), ("1", 0)])
def test_switch_and_version_are_reported(unit, disabled, enable):
    unit.set("fsecure.sense.disabled", disabled)
    a = unit.get(URI)
    assert a.encrypted and a.text == f'{{ "result": 0, "version": 1, "enable": {enable}, "sense_ver": "2.3.4" }}'


def test_without_a_version_file_the_service_is_not_installed(unit):
    unit.remove(VERSION)
    assert unit.get(URI).json == {"result": 0, "version": 1, "enable": -1}


def test_while_its_script_runs_the_answer_is_result_2(unit):
    unit.tool("ps", out=f" 77 root  S  {SCRIPT} start\n")
    assert unit.get(URI).json == {"result": 2}


@pytest.mark.parametrize("brand", ["orvane", "0999", None])
def test_another_device_has_no_such_service(unit, brand):
    if brand is None:
        unit.remove("/tmp/deviceid")
    else:
        unit.brand(brand)
    assert unit.get(URI).json == UNUSABLE
    assert unit.post(URI, {"enable": 1}).json == UNUSABLE
    assert unit.option("fsecure.sense.disabled") == "0"


@pytest.mark.parametrize("value", ["2", None])
def test_a_stored_value_other_than_0_and_1_is_result_1(unit, value):
    unit.set("fsecure.sense.disabled", value)
    assert unit.get(URI).json == UNUSABLE


def test_a_long_version_is_bounded(unit):
    unit.write(VERSION, "v" * 100)
    assert unit.get(URI).json["sense_ver"] == "v" * 15


@pytest.mark.parametrize("enable, disabled, command", [(1, "0", "start"), (0, "1", "stop")])
def test_the_service_is_started_or_stopped(unit, enable, disabled, command):
    a = unit.post(URI, {"enable": enable})
    assert a.encrypted and a.json == OK
    assert unit.option("fsecure.sense.disabled") == disabled
    unit.wait_for_call(SCRIPT, command)


@pytest.mark.parametrize("op_mode", ["ap", "re", None])
def test_outside_router_mode_it_is_refused(unit, op_mode):
    unit.set("system.@system[0].op_mode", op_mode)
    assert unit.post(URI, {"enable": 1}).json == UNUSABLE
    assert unit.calls(SCRIPT) == []


@pytest.mark.parametrize("body", [{}, {"enable": 2}, None, *GARBAGE_BODIES.values()], ids=lambda value: None)
def test_a_missing_or_wrong_switch_is_result_1(unit, body):
    assert unit.post(URI, body).json == UNUSABLE
    assert unit.calls(SCRIPT) == []
