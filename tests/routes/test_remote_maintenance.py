"""GET and POST /api/v1/remote-maintenance."""

import pytest

from kit import GARBAGE_BODIES

URI = "/api/v1/remote-maintenance"
OK = {"result": 0, "version": 1, "waitTime": 20}
UNUSABLE, FAILED = {"result": 1}, {"result": 2}
RUNNING = "  500 root     1200 S    /usr/sbin/hotacron\n"
START = ["/usr/sbin/IDM_from_qv/idm_start", "/etc/init.d/nwm_package start"]
STOP = ["/usr/sbin/hotacron", "/usr/sbin/IDM_from_qv/idm_stop", "/etc/init.d/nwm_package stop"]


@pytest.fixture
def unit(router):
    router.config("hota", "config hota 'info'\n\toption auto '1'\n")
    router.config("firmware", "config idm 'idm'\n\toption enabled '0'\n")
    for path in ("/usr/sbin/hotacron", "/usr/sbin/IDM_from_qv/idm_start", "/usr/sbin/IDM_from_qv/idm_stop",
                 "/etc/init.d/nwm_package"):
        router.tool(path)
    return router


def agents(router, count):
    router.wait_until(lambda: len([c for c in router.commands() if c.split()[0] not in ("ps",)]) >= count)
    return [c for c in router.commands() if c.split()[0] != "ps"]


@pytest.mark.parametrize("brand, keys", [("orvane", {"enable": 1, "detailInfoSendEnable": 0}), ("tesmir", {"enable": 1}),
                                         ("0999", {"enable": 1})])
def test_the_switches_are_reported(unit, brand, keys):
    unit.brand(brand)
    a = unit.get(URI)
    assert a.encrypted and a.json == {"result": 0, "version": 1, **keys}


def test_while_the_update_agent_runs_the_answer_is_result_2(unit):
    unit.tool("ps", out=RUNNING)
    assert unit.get(URI).json == FAILED


def test_a_search_for_the_update_agent_is_none(unit):
    unit.tool("ps", out="  501 root     1200 S    grep /usr/sbin/hotacron\n  502 root 99 S /usr/sbin/other\n")
    assert unit.get(URI).json["result"] == 0
    assert unit.commands() == ["ps"]


@pytest.mark.parametrize("tool", ["ps", "grep", "wc"])
def test_without_a_process_list_no_update_agent_runs(unit, tool):
    unit.tool(tool, missing=True)
    assert unit.get(URI).json == {"result": 0, "version": 1, "enable": 1, "detailInfoSendEnable": 0}


@pytest.mark.parametrize("break_it", [
    lambda r: r.remove("/tmp/deviceid"), lambda r: r.set("hota.info.auto", "2"), lambda r: r.set("hota.info.auto", "x"),
    lambda r: r.set("hota.info.auto", None), lambda r: r.no_config("hota"), lambda r: r.no_config("firmware")],
    ids=["no-device", "2", "text", "absent", "no-hota", "no-firmware"])
def test_an_unreadable_state_is_result_1(unit, break_it):
    break_it(unit)
    a = unit.get(URI)
    assert a.encrypted and a.json == UNUSABLE


def test_the_state_of_the_details_is_shown_as_its_number(unit):
    unit.set("firmware.idm.enabled", "2")
    assert unit.get(URI).json["detailInfoSendEnable"] == 2


@pytest.mark.parametrize("enable, commands", [(1, START), (0, STOP)])
@pytest.mark.parametrize("detail", [0, 1])
def test_a_change_starts_or_stops_the_agents(unit, enable, commands, detail):
    a = unit.post(URI, {"enable": enable, "detailInfoSendEnable": detail})
    assert a.encrypted and a.json == OK
    assert (unit.option("hota.info.auto"), unit.option("firmware.idm.enabled")) == (str(enable), str(detail))
    called = agents(unit, len(commands))
    assert sorted(called) == sorted(commands)
    if enable == 0:  # the others run in the background
        assert called[0] == "/usr/sbin/hotacron"


def test_a_device_of_no_brand_has_the_agents_too(unit):
    unit.brand("0999")
    assert unit.post(URI, {"enable": 1, "detailInfoSendEnable": 1}).json == OK
    assert sorted(agents(unit, 2)) == sorted(START)
    assert unit.get(URI).json == {"result": 0, "version": 1, "enable": 1}


@pytest.mark.parametrize("brand, enable", [("orvane", 0), ("tesmir", 0), ("tesmir", 1)])
def test_a_missing_update_agent_is_result_2(unit, brand, enable):
    unit.brand(brand)
    unit.tool("/usr/sbin/hotacron", missing=True)
    assert unit.post(URI, {"enable": enable, "detailInfoSendEnable": 0}).json == FAILED
    assert agents(unit, 0) == []


@pytest.mark.parametrize("tool", [{"exit": 1}, {"missing": True}, {"hang": True}], ids=["fails", "missing", "hangs"])
@pytest.mark.parametrize("enable", [0, 1])
def test_management_agents_that_do_not_answer_change_no_answer(unit, enable, tool):
    for path in ("/usr/sbin/IDM_from_qv/idm_start", "/usr/sbin/IDM_from_qv/idm_stop", "/etc/init.d/nwm_package"):
        unit.tool(path, **tool)
    assert unit.post(URI, {"enable": enable, "detailInfoSendEnable": 0}).json == OK
    assert unit.alive()


@pytest.mark.parametrize("package, auto", [("hota", None), ("firmware", "0")])
def test_a_switch_that_cannot_be_stored_is_result_2_and_starts_nothing(unit, package, auto):
    unit.no_config(package)
    a = unit.post(URI, {"enable": 0, "detailInfoSendEnable": 0})
    assert a.encrypted and a.text == '{"result": 2}'
    assert unit.option("hota.info.auto") == auto and unit.commands() == []


@pytest.mark.parametrize("brand", ["orvane", "0999"])
@pytest.mark.parametrize("details", [{}, {"detailInfoSendEnable": None}, {"detailInfoSendEnable": []},
                                     {"detailInfoSendEnable": 2}, {"detailInfoSendEnable": "x"}], ids=str)
def test_both_switches_are_looked_at_before_one_is_stored(unit, brand, details):
    unit.brand(brand)
    assert unit.post(URI, {"enable": 0, **details}).json == UNUSABLE
    assert unit.option("hota.info.auto") == "1" and unit.option("firmware.idm.enabled") == "0"
    assert unit.commands() == []


@pytest.mark.parametrize("status, answer", [(0, OK), (1, FAILED)])
@pytest.mark.parametrize("enable", [0, 1])
def test_the_other_brand_runs_its_update_agent_alone(unit, status, answer, enable):
    unit.brand("tesmir")
    unit.tool("/usr/sbin/hotacron", exit=status)
    assert unit.post(URI, {"enable": enable}).json == answer
    assert agents(unit, 1) == ["/usr/sbin/hotacron"]
    assert unit.option("hota.info.auto") == str(enable)


def test_the_first_failure_ends_the_chain(unit):
    unit.tool("/usr/sbin/hotacron", exit=1)
    assert unit.post(URI, {"enable": 0, "detailInfoSendEnable": 0}).json == FAILED
    assert agents(unit, 1) == ["/usr/sbin/hotacron"]


@pytest.mark.parametrize("body", [{}, {"enable": 2}, {"enable": -1}, {"enable": 1}, {"enable": 1, "detailInfoSendEnable": 2},
                                  None, *GARBAGE_BODIES.values()], ids=lambda value: None)
def test_a_missing_or_wrong_switch_is_result_1_and_starts_nothing(unit, body):
    assert unit.post(URI, body).json == UNUSABLE
    assert unit.commands() == []


def test_without_a_device_id_the_answer_is_result_1(unit):
    unit.remove("/tmp/deviceid")
    assert unit.post(URI, {"enable": 0, "detailInfoSendEnable": 1}).json == UNUSABLE
    assert (unit.option("hota.info.auto"), unit.option("firmware.idm.enabled")) == ("1", "0")
    assert unit.commands() == []
