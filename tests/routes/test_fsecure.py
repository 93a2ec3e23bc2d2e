"""GET and POST /api/v1/fsecure_sense."""

import pytest
from texts import cut, shown

from kit import GARBAGE_BODIES, HOSTILE

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


def test_a_running_script_is_told_before_anything_else(unit):
    unit.tool("ps", out=f" 77 root  S  {SCRIPT} stop\n")
    unit.remove(VERSION)
    unit.set("fsecure.sense.disabled", None)
    assert unit.get(URI).json == {"result": 2}


def test_a_search_for_the_script_is_none(unit):
    unit.tool("ps", out=f" 77 root  S  grep {SCRIPT}\n")
    assert unit.get(URI).json["result"] == 0


@pytest.mark.parametrize("tool", ["ps", "grep", "wc"])
def test_without_a_process_list_no_script_runs(unit, tool):
    unit.tool(tool, missing=True)
    assert unit.get(URI).json["result"] == 0


def test_a_service_that_is_not_installed_needs_no_switch(unit):
    unit.remove(VERSION)
    unit.no_config("fsecure")
    assert unit.get(URI).json == {"result": 0, "version": 1, "enable": -1}


def test_a_version_file_without_a_text_is_result_1(unit):
    unit.write(VERSION, "")
    assert unit.get(URI).json == UNUSABLE


def test_a_version_that_is_no_file_is_result_1(unit):
    unit.remove(VERSION)
    unit.write(VERSION + "/file", "2.3.4\n")
    assert unit.get(URI).json == UNUSABLE


@pytest.mark.parametrize("text", [t for n, t in HOSTILE.items() if n != "empty"],
                         ids=[n for n in HOSTILE if n != "empty"])
def test_any_version_is_shown_up_to_its_bound(unit, text):
    unit.write(VERSION, text.encode("utf-8", "surrogateescape"))
    version = cut(text, 15).partition("\n")[0].partition("\r")[0]
    assert unit.get(URI).json["sense_ver"] == shown(version)
    unit.assert_nothing_ran()


@pytest.mark.parametrize("brand", ["orvane", "0999", None])
def test_another_device_has_no_such_service(unit, brand):
    if brand is None:
        unit.remove("/tmp/deviceid")
    else:
        unit.brand(brand)
    assert unit.get(URI).json == UNUSABLE
    assert unit.post(URI, {"enable": 1}).json == UNUSABLE
    assert unit.option("fsecure.sense.disabled") == "0"
    assert unit.commands() == []


@pytest.mark.parametrize("value", ["2", "x", None])
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


@pytest.mark.parametrize("tool", [{"exit": 1}, {"missing": True}, {"hang": True}], ids=["fails", "missing", "hangs"])
def test_a_script_that_does_not_answer_changes_no_answer(unit, tool):
    unit.tool(SCRIPT, **tool)
    assert unit.post(URI, {"enable": 0}).json == OK
    assert unit.alive()


def test_a_switch_that_cannot_be_stored_is_result_2(unit):
    unit.no_config("fsecure")
    a = unit.post(URI, {"enable": 1})
    assert a.encrypted and a.text == '{"result": 2}'
    assert unit.calls(SCRIPT) == []


@pytest.mark.parametrize("op_mode", ["ap", "re", "router2", "routerrouterrouter", None])
def test_outside_router_mode_it_is_refused(unit, op_mode):
    unit.set("system.@system[0].op_mode", op_mode)
    a = unit.post(URI, {"enable": 1})
    assert a.encrypted and a.json == UNUSABLE
    assert unit.calls(SCRIPT) == [] and unit.option("fsecure.sense.disabled") == "0"


@pytest.mark.parametrize("body", [{}, {"enable": 2}, None, *GARBAGE_BODIES.values()], ids=lambda value: None)
def test_a_missing_or_wrong_switch_is_result_1(unit, body):
    assert unit.post(URI, body).json == UNUSABLE
    assert unit.calls(SCRIPT) == []
