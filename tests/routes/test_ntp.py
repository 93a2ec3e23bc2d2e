"""GET and POST /api/v1/ntp."""

import pytest

from kit import GARBAGE_BODIES

URI = "/api/v1/ntp"


@pytest.fixture
def ntp(router):
    router.config("system", "config system\n\toption op_mode 'router'\n\nconfig timeserver 'ntp'\n\toption enabled '1'\n"
                  "\tlist server 'ntp.example'\n\tlist server 'second.example'\n")
    return router


def test_the_switch_and_the_first_server_are_reported(ntp):
    a = ntp.get(URI)
    assert a.encrypted and a.text == '{ "result": 0, "version": 1, "enable": 1, "server": "ntp.example" }'


@pytest.mark.parametrize("option, message", [("enabled", "Fail to get system.ntp.enabled value by uci api"),
                                             ("server", "Fail to get system.ntp.server value by uci api")])
def test_an_unreadable_option_is_result_1(ntp, option, message):
    ntp.set(f"system.ntp.{option}", None)
    a = ntp.get(URI)
    assert a.encrypted and a.json == {"result": 1}
    assert ntp.logged(message, priority=3)


@pytest.mark.parametrize("enable, command", [(1, "restart"), (5, "restart"), (0, "stop")])
def test_a_change_is_stored_and_the_service_told(ntp, enable, command):
    a = ntp.post(URI, {"enable": enable, "server": "new.example"})
    assert a.encrypted and a.json == {"result": 0, "version": 1, "waitTime": 20}
    assert (ntp.option("system.ntp.enabled"), ntp.option("system.ntp.server")) == (str(enable), ["new.example"])
    ntp.wait_for_call("/etc/init.d/sysntpd", command)


def test_a_negative_switch_is_written_unsigned(ntp):
    ntp.post(URI, {"enable": -1, "server": "x"})
    assert ntp.option("system.ntp.enabled") == "4294967295"


def test_a_server_without_a_switch_is_stored_and_answered_plain_result_1(ntp):
    a = ntp.post(URI, {"server": "new.example"})
    assert not a.encrypted and a.body == b'{"result": 1}'
    assert ntp.option("system.ntp.server") == ["new.example"]
    assert ntp.calls("/etc/init.d/sysntpd") == []


def test_a_switch_without_a_server_is_stored_and_answered_plain_result_1(ntp):
    a = ntp.post(URI, {"enable": 0})
    assert not a.encrypted and a.body == b'{"result": 1}'
    assert ntp.option("system.ntp.enabled") == "0"


def test_a_list_that_cannot_be_deleted_is_a_plain_result_2(ntp):
    ntp.set("system.ntp.server", None)
    a = ntp.post(URI, {"enable": 1, "server": "x"})
    assert not a.encrypted and a.body == b'{"result": 2}'
    assert ntp.logged("fail to del system.ntp.server by uci api", priority=3, by="handle_set_ntp_config")


def test_without_the_section_every_write_fails(router):
    router.config("system", "config system\n")
    a = router.post(URI, {"enable": 1, "server": "x"})
    assert not a.encrypted and a.body == b'{"result": 2}'
    assert router.logged("fail to set system.ntp.enabled by uci api", priority=3, by="handle_set_ntp_config")
    assert router.logged("fail to set system.ntp.server by uci api", priority=3, by="handle_set_ntp_config")


@pytest.mark.parametrize("body, message", [(None, "empty request_body is passed on seting dhcp config"),
                                           (b"not json", "can't parse request_body to json format.")])
def test_an_unusable_body_is_a_plain_result_1(ntp, body, message):
    a = ntp.post(URI, body)
    assert not a.encrypted and a.body == b'{"result": 1}'
    assert ntp.logged(message, priority=3)


@pytest.mark.parametrize("body", GARBAGE_BODIES.values(), ids=GARBAGE_BODIES.keys())
def test_a_body_without_both_keys_is_a_plain_result_1_and_changes_nothing(ntp, body):
    before = ntp.read("/etc/config/system")
    a = ntp.post(URI, body)
    assert not a.encrypted and a.body == b'{"result": 1}'
    assert ntp.read("/etc/config/system") == before and ntp.commands() == []


@pytest.mark.parametrize("enable", [None, [], {}, "", "x", "1 ", 1.5])
def test_a_switch_that_is_no_value_counts_as_missing(ntp, enable):
    a = ntp.post(URI, {"enable": enable, "server": "new.example"})
    assert not a.encrypted and a.body == b'{"result": 1}'
    assert (ntp.option("system.ntp.enabled"), ntp.option("system.ntp.server")) == ("1", ["new.example"])


@pytest.mark.parametrize("enable, stored", [(1.0, "1"), (True, "1"), ("0", "0"), ("7", "7")])
def test_every_form_of_a_number_is_one(ntp, enable, stored):
    assert ntp.post(URI, {"enable": enable, "server": "new.example"}).json["result"] == 0
    assert ntp.option("system.ntp.enabled") == stored


@pytest.mark.parametrize("server", ["", None, [], {}, True])
def test_an_empty_server_counts_as_missing(ntp, server):
    a = ntp.post(URI, {"enable": 0, "server": server})
    assert not a.encrypted and a.body == b'{"result": 1}'
    assert (ntp.option("system.ntp.enabled"), ntp.option("system.ntp.server")) == ("0", ["ntp.example", "second.example"])
    assert ntp.commands() == []


@pytest.mark.parametrize("server", ["a\x01b", "a\nb", "a\r", "\t", "\x7f"], ids=ascii)
def test_a_server_that_is_no_line_is_refused_before_anything_is_written(ntp, server):
    before = ntp.read("/etc/config/system")
    a = ntp.post(URI, {"enable": 0, "server": server})
    assert not a.encrypted and a.body == b'{"result": 1}'
    assert ntp.read("/etc/config/system") == before and ntp.commands() == []
    assert ntp.post(URI, {"enable": 0, "server": "good.example"}).json["result"] == 0  # and the next one works


@pytest.mark.parametrize("body, result", [({"enable": 1}, 1), ({"server": "x"}, 2)])
def test_of_a_missing_key_and_a_failed_write_the_later_step_decides(router, body, result):
    router.config("system", "config system\n")
    a = router.post(URI, body)
    assert not a.encrypted and a.json == {"result": result}


@pytest.mark.parametrize("enabled, shown", [("0", 0), ("7", 7), ("on", 0), ("-1", -1)])
def test_the_stored_switch_is_shown_as_its_number(ntp, enabled, shown):
    ntp.set("system.ntp.enabled", enabled)
    assert ntp.get(URI).json["enable"] == shown


def test_a_server_that_is_no_list_is_result_1(ntp):
    ntp.set("system.ntp.server", "ntp.example")
    assert ntp.get(URI).json == {"result": 1}
    assert ntp.logged("Fail to get system.ntp.server value by uci api", priority=3)


def test_a_long_stored_server_is_bounded(ntp):
    ntp.set("system.ntp.server", ["n" * 400])
    assert ntp.get(URI).json["server"] == "n" * 256


@pytest.mark.parametrize("tool", [{"exit": 1}, {"missing": True}, {"hang": True}], ids=["fails", "missing", "hangs"])
@pytest.mark.parametrize("enable", [0, 1])
def test_a_dead_time_service_changes_no_answer(ntp, enable, tool):
    ntp.tool("/etc/init.d/sysntpd", **tool)
    assert ntp.post(URI, {"enable": enable, "server": "new.example"}).json["result"] == 0
    assert ntp.option("system.ntp.server") == ["new.example"]
    assert ntp.alive()
