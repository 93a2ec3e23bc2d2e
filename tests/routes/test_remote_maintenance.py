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


@pytest.mark.parametrize("break_it", [lambda r: r.remove("/tmp/deviceid"), lambda r: r.set("hota.info.auto", "2"),
                                      lambda r: r.set("hota.info.auto", None), lambda r: r.set("firmware.idm.enabled", "x2"),
                                      lambda r: r.no_config("firmware")][:3] + [lambda r: r.no_config("firmware")])
def test_an_unreadable_state_is_result_1(unit, break_it):
    break_it(unit)
    assert unit.get(URI).json == UNUSABLE


@pytest.mark.parametrize("enable, commands", [(1, START), (0, STOP)])
@pytest.mark.parametrize("detail", [0, 1])
def test_a_change_starts_or_stops_the_agents(unit, enable, commands, detail):
    a = unit.post(URI, {"enable": enable, "detailInfoSendEnable": detail})
    assert a.encrypted and a.json == OK
    assert (unit.option("hota.info.auto"), unit.option("firmware.idm.enabled")) == (str(enable), str(detail))
    assert sorted(agents(unit, len(commands))) == sorted(commands)


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
    assert unit.post(URI, {"enable": 1, "detailInfoSendEnable": 1}).json == UNUSABLE
