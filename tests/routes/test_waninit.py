"""POST /api/v1/system/config/waninit: the Internet side goes back to DHCP, and the router restarts."""

import pytest

from kit import GARBAGE_BODIES

from wan_setup import DELETED, ENCRYPT, FAILED, INIT, MODE_OPTIONS, MODES, set_wan, stored, told, wan  # noqa: F401

OK = '{"result": 0, "version": 1, "waitTime": 420}'

RESET = {"network.wan.mode": "DHCP", "network.wan.lastmode": "DHCP", "network.wan.proto": "dhcp", "network.wan.dhcpv6pd": "0",
         "network.wan.slaac": "0", "network.wan.autoflag": "0", "system.@system[0].op_mode": "router"}


def rebooted(router):
    router.wait_for_call("reboot")
    return router.commands() == ["reboot"]


def test_the_answer_and_the_restart(wan):
    answer = wan.post(INIT)
    assert answer.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert (answer.encrypted, answer.text) == (True, OK)
    assert rebooted(wan)


def test_a_restart_that_takes_its_time_holds_nothing_up(wan):
    wan.tool("reboot", hang=True)
    assert wan.post(INIT).text == OK
    assert rebooted(wan)
    assert wan.alive()


@pytest.mark.parametrize("mode", [*MODES, "other", "wb_mode"])
def test_each_mode_leaves_just_what_others_share(wan, mode):
    set_wan(wan, **MODE_OPTIONS)
    set_wan(wan, mode=mode, proto="x", slaac="1", dhcpv6pd="1", autoflag="2", lastmode="x")
    wan.set("network.wan_mape", "interface")
    wan.set("network.wan_mape.proto", "map")
    wan.set("system.@system[0].op_mode", "ap")
    expected = stored(wan) | RESET
    for option in DELETED.get(mode, ()):
        del expected[f"network.wan.{option}"]
    if mode == "MAP-E":
        expected = {address: value for address, value in expected.items() if address.split(".")[1] != "wan_mape"}
    assert wan.post(INIT).text == OK
    assert stored(wan) == expected
    assert rebooted(wan)


@pytest.mark.parametrize("mode, length", [("DHCP", 4), ("MAP-E", 5), ("0123456789abcdefgh", 15)])
def test_the_stored_mode_is_traced(wan, mode, length):
    set_wan(wan, mode=mode)
    assert wan.post(INIT).text == OK
    assert told(wan, f"currentModeValue = {mode[:15]}, strlen(currentModeValue) = {length}")


@pytest.mark.parametrize("missing", ["option", "section", "package"])
def test_without_a_stored_mode_it_is_result_2_without_a_restart(wan, missing):
    if missing == "package":
        wan.no_config("network")
    else:
        wan.set("network.wan.mode" if missing == "option" else "network.wan", None)
    before = stored(wan)
    answer = wan.post(INIT)
    assert answer.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert (answer.encrypted, answer.text) == (True, FAILED)
    assert wan.alive()
    assert stored(wan) == before
    wan.assert_calls()


def test_with_an_empty_mode_it_is_result_2_without_a_restart(wan):
    wan.config("network", wan.read("/etc/config/network").replace("option mode 'DHCP'", "option mode ''"))
    before = stored(wan)
    assert wan.post(INIT).text == FAILED
    assert wan.alive()
    assert stored(wan) == before
    wan.assert_calls()


def test_the_body_is_not_looked_at(wan):
    for name, body in GARBAGE_BODIES.items():
        wan.forget_calls()
        assert wan.post(INIT, body).text == OK, name
        assert rebooted(wan)


def test_a_missing_system_section_is_made(wan):
    wan.config("system", "config easysetup 'easysetup'\n\toption http_redirect_enable '0'\n")
    assert wan.post(INIT).text == OK
    assert wan.option("system.@system[0].op_mode") == "router"
    assert rebooted(wan)


def test_without_the_system_package_the_wan_is_reset(wan):
    wan.no_config("system")
    assert wan.post(INIT).text == OK
    assert wan.option("network.wan.lastmode") == "DHCP"
    assert rebooted(wan)


def test_an_answer_that_cannot_be_encrypted_is_plain_and_the_reset_is_done(wan):
    wan.tool("jose", *ENCRYPT, exact=True, exit=1)
    answer = wan.post(INIT)
    assert (answer.encrypted, answer.text) == (False, '{"result": 1}')
    assert wan.option("network.wan.lastmode") == "DHCP"
    assert rebooted(wan)


def test_without_a_restart_tool_the_answer_stands(wan):
    wan.tool("reboot", missing=True)
    assert wan.post(INIT).text == OK
    assert wan.alive()
