"""The network reload that follows every POST /api/v1/router/wan-info, and the switches that it applies."""

import os

import pytest

from wan_setup import ECM, ECM_NODES, RELOAD, SHORT_WAIT, UNUSABLE, UPNP_RELOAD, URI, apply, request, wan  # noqa: F401


@pytest.mark.parametrize("stored_text, wanted, reloads", [("1", 1, False), ("1", 0, True), ("0", 1, True), ("0", 0, False),
                                                          ("1", 3, True), ("3", "3", False), (None, 0, False), (None, 1, True),
                                                          ("1", None, True), ("x", 0, False), ("1", 9, True)])
def test_upnp_is_reloaded_when_its_switch_changes(wan, stored_text, wanted, reloads):
    wan.set("upnpd.config.enabled", stored_text)
    apply(wan, uPnPIGD=wanted)
    wan.assert_calls(*RELOAD, *(UPNP_RELOAD if reloads else []))


def nodes(wan):
    return [wan.read(node) for node in ECM_NODES]


def set_nodes(wan, text="9"):
    for node in ECM_NODES:
        wan.write(node, text)


@pytest.mark.parametrize("stored_text, wanted, text", [
    ("1", 1, "9"), ("1", 0, "1"), ("0", 1, "0"), ("0", 0, "9"), ("0", 2, "1"), ("1", None, "1"), (None, 1, "0"), (None, 0, "9"),
    ("x", "1", "0"), ("2", 1, "0"), ("1", -1, "1"), ("0", None, "9")])
def test_nat_acceleration_is_switched_when_it_changes(wan, stored_text, wanted, text):
    wan.set("ecm.global.acceleration", stored_text)
    set_nodes(wan)
    apply(wan, natAccelerationEnable=wanted)
    assert nodes(wan) == [text] * 3
    assert wan.logged("Disabling ECM acceleration via debugfs...") is (text == "1")
    assert wan.logged("Enabling ECM acceleration via debugfs...") is (text == "0")


OFF = [f"Failed to open {ECM}/{node}: No such file or directory" for node in
       ("front_end_ipv4_stop", "front_end_ipv6_stop", "ecm_db/defunct_all")]


@pytest.mark.parametrize("stored_text, wanted, order", [("1", 0, OFF), ("0", 1, OFF[::-1])], ids=["off", "on"])
def test_the_nodes_are_written_in_mirrored_orders(wan, stored_text, wanted, order):
    wan.set("ecm.global.acceleration", stored_text)
    wan.remove(ECM)
    assert apply(wan, natAccelerationEnable=wanted).text == SHORT_WAIT
    failures = [line for line in wan.log() if line.text.startswith("Failed to open")]
    if wanted == 1:
        order = [order[0], order[2], order[1]]  # the database first, then IPv4 before IPv6
    assert [line.text.strip() for line in failures] == order
    assert {line.priority for line in failures} == {3}
    assert not wan.exists(ECM)


@pytest.mark.parametrize("broken", range(3))
@pytest.mark.parametrize("stored_text, wanted, text", [("1", 0, "1"), ("0", 1, "0")], ids=["off", "on"])
def test_a_broken_node_does_not_hold_up_the_others(wan, broken, stored_text, wanted, text):
    wan.set("ecm.global.acceleration", stored_text)
    set_nodes(wan)
    wan.remove(ECM_NODES[broken])
    os.mkdir(wan.root.path(ECM_NODES[broken]))
    apply(wan, natAccelerationEnable=wanted)
    assert wan.logged(f"Failed to open {ECM_NODES[broken]}: Is a directory", priority=3)
    assert [wan.read(node) for i, node in enumerate(ECM_NODES) if i != broken] == [text] * 2


@pytest.mark.parametrize("stored_text, wanted, text", [("1", 0, "1"), ("0", 1, "0")], ids=["off", "on"])
def test_a_node_that_takes_nothing_is_logged(wan, stored_text, wanted, text):
    wan.set("ecm.global.acceleration", stored_text)
    set_nodes(wan)
    wan.root.link(ECM_NODES[0], "/dev/full")
    apply(wan, natAccelerationEnable=wanted)
    assert wan.logged(f"Failed to write '{text}' to {ECM_NODES[0]}: No space left on device", priority=3)
    assert [wan.read(node) for node in ECM_NODES[1:]] == [text] * 2


def test_nat_acceleration_is_switched_after_upnp(wan):
    set_nodes(wan)
    wan.tool("/etc/init.d/miniupnpd", write={node: "7" for node in ECM_NODES})
    apply(wan, natAccelerationEnable=0, uPnPIGD=0)
    wan.assert_calls(*RELOAD, *UPNP_RELOAD)
    assert nodes(wan) == ["1"] * 3


def test_the_switches_of_an_earlier_change_are_done_once(wan):
    set_nodes(wan)
    apply(wan, natAccelerationEnable=0, uPnPIGD=0)
    set_nodes(wan)
    apply(wan, natAccelerationEnable=0, uPnPIGD=0)
    wan.assert_calls(*RELOAD)
    assert nodes(wan) == ["9"] * 3


def test_a_refused_request_reloads_with_the_switches_of_the_last_change(wan):
    apply(wan, natAccelerationEnable=0, uPnPIGD=0)
    set_nodes(wan)
    assert apply(wan, {"wanConfig": 5}).text == UNUSABLE
    wan.assert_calls(*RELOAD, *UPNP_RELOAD)
    assert nodes(wan) == ["1"] * 3


@pytest.mark.parametrize("tool", ["/etc/init.d/network", "logger", "/etc/init.d/miniupnpd"])
@pytest.mark.parametrize("answer", [{"exit": 1}, {"signal": 9}], ids=["fails", "dies"])
def test_a_failed_step_does_not_hold_up_the_reload(wan, tool, answer):
    set_nodes(wan)
    wan.tool(tool, **answer)
    apply(wan, natAccelerationEnable=0, uPnPIGD=0)
    wan.assert_calls(*RELOAD, *UPNP_RELOAD)
    assert nodes(wan) == ["1"] * 3


def test_a_missing_network_script_does_not_hold_up_the_reload(wan):
    wan.tool("/etc/init.d/network", missing=True)
    apply(wan, uPnPIGD=0)
    wan.assert_calls(RELOAD[0], RELOAD[2], *UPNP_RELOAD)


def test_a_reload_is_told(wan):
    apply(wan)
    assert wan.logged("Network reload task pushed to daemon safely.", priority=7)
    assert not wan.logged("Fork failed!")


def test_the_next_requests_do_not_wait_for_a_reload(wan):
    wan.tool("/etc/init.d/network", hang=True)
    for _ in range(3):
        assert wan.post(URI, request()).text == SHORT_WAIT
    wan.wait_for_call("/etc/init.d/network", "reload", times=3)
    assert len(wan.processes()) == 4
    assert wan.alive()


def test_the_reload_holds_neither_the_socket_nor_the_connection(wan):
    wan.tool("/etc/init.d/network", hang=True)
    wan.post(URI, request())
    wan.wait_for_call("/etc/init.d/network")
    (child,) = (pid for pid in wan.processes() if pid != wan.pid())
    held = [os.readlink(f"/proc/{child}/fd/{fd}") for fd in os.listdir(f"/proc/{child}/fd")]
    assert not [target for target in held if target.startswith("socket:") and not is_log(child, target)]
    assert os.readlink(f"/proc/{child}/fd/0") == "/dev/null"
    assert os.getsid(child) != os.getsid(wan.pid())


def is_log(pid, target):
    """Whether a socket is the unnamed end of a connection to the log."""
    inode = target[len("socket:["):-1]
    with open(f"/proc/{pid}/net/unix", encoding="utf-8", errors="replace") as table:
        rows = [row.split() for row in table if f" {inode}" in row]
    return any(row[4] == "0002" for row in rows)  # SOCK_DGRAM


def test_no_reload_stays_behind(wan):
    for code in (3, 9):
        apply(wan, wanMethod=code)
        assert wan.processes() == [wan.pid()]


def test_a_reload_that_cannot_be_started_is_no_success(wan):
    wan.write("/router/no-forks", "")
    assert wan.post(URI, request()).json == {"result": 2}
    assert wan.logged("Fork failed!", priority=3)
    assert wan.post(URI, {}).text == UNUSABLE
    assert not wan.logged("pushed to daemon safely")
    wan.remove("/router/no-forks")
    apply(wan)
    wan.assert_calls(*RELOAD)
