"""GET and POST /api/v1/port-open, POST /api/v1/delete-port."""

import contextlib
import os
from pathlib import Path

import pytest
from texts import cut

from kit import GARBAGE_BODIES

URI = "/api/v1/port-open"
DELETE = "/api/v1/delete-port"
OK = {"result": 0, "version": 1, "waitTime": 5}
UNUSABLE = {"result": 1}


def rule(number=1, **changes):
    return {"settingName": f"rule {number}", "ipAddress": f"192.168.0.{number}", "protocol": 1, "lanPortNum": 80 + number,
            "wanPortNum": 8080 + number, **changes}


@pytest.fixture
def ports(router):
    router.config("portmapping", "\n")
    return router


def add(router, **options):
    text = "".join(f"\toption {key} '{value}'\n" for key, value in options.items())
    router.config("portmapping", router.read("/etc/config/portmapping") + "\nconfig redirect\n" + text)


def stored(router):
    return [s.options for s in router.package("portmapping") if s.type == "redirect"]


def names(router):
    return [options.get("name") for options in stored(router)]


def open_pipes(pid):
    pipes = []
    for descriptor in Path(f"/proc/{pid}/fd").iterdir():
        with contextlib.suppress(FileNotFoundError):  # the last request's connection is closed about now
            if "pipe:" in os.readlink(descriptor):
                pipes.append(descriptor)
    return pipes


def test_rules_are_written_and_read_back_with_their_positions(ports):
    a = ports.post(URI, {"portOpenSettings": [rule(1), rule(2, protocol=2)]})
    assert a.encrypted and a.json == OK
    assert stored(ports) == [
        {"dest_port": str(80 + n), "src": "wan", "name": f"rule {n}", "src_dport": str(8080 + n), "target": "DNAT",
         "dest_ip": f"192.168.0.{n}", "dest": "lan", "proto": proto} for n, proto in ((1, "tcp"), (2, "udp"))]
    b = ports.get(URI)
    assert b.encrypted
    assert b.json == {"result": 0, "version": 1, "portOpenSettings": [{"id": 0, **rule(1)}, {"id": 1, **rule(2, protocol=2)}]}
    assert list(b.json["portOpenSettings"][0]) == ["id", "settingName", "ipAddress", "protocol", "lanPortNum", "wanPortNum"]
    ports.wait_for_call("/etc/init.d/firewall", "restart")


def test_options_are_read_through_the_uci_command(ports):
    add(ports, name="a")
    ports.get(URI)
    assert ports.commands("uci") == [f"uci get portmapping.@redirect[0].{option}" for option in
                                     ("name", "dest_ip", "proto", "dest_port", "src_dport")]


def test_a_rule_with_protocol_3_is_stored_without_one(ports):
    ports.post(URI, {"portOpenSettings": [rule(1, protocol=3)]})
    assert "proto" not in stored(ports)[0]
    assert ports.get(URI).json["portOpenSettings"][0]["protocol"] == 0


def test_an_unknown_protocol_is_not_reported(ports):
    add(ports, name="a", proto="icmp")
    assert "protocol" not in ports.get(URI).json["portOpenSettings"][0]


def test_missing_ports_are_not_reported(ports):
    add(ports, name="a", proto="tcp")
    assert ports.get(URI).json["portOpenSettings"] == [{"id": 0, "settingName": "a", "ipAddress": "", "protocol": 1}]


def test_long_stored_texts_are_bounded(ports):
    add(ports, name="n" * 100, dest_ip="1" * 40, proto="tcp" * 9, dest_port="9" * 40, src_dport="0" * 8 + "12")
    assert ports.get(URI).json["portOpenSettings"] == [
        {"id": 0, "settingName": "n" * 31, "ipAddress": "1" * 15, "lanPortNum": 999999999, "wanPortNum": 1}]


def test_an_empty_array_clears_all_rules(ports):
    add(ports, name="a")
    assert ports.post(URI, {"portOpenSettings": []}).json == OK
    assert stored(ports) == []


@pytest.mark.parametrize("value", [..., None, [], {}, True], ids=str)
def test_a_missing_key_counts_as_absent_text_or_0(ports, value):
    others = {} if value is ... else {"settingName": value, "protocol": None, "lanPortNum": "x", "wanPortNum": "1 "}
    assert ports.post(URI, {"portOpenSettings": [{"ipAddress": "192.168.0.1", **others}]}).json == OK
    assert stored(ports) == [{"dest_port": "0", "src": "wan", "src_dport": "0", "target": "DNAT", "dest": "lan",
                              "dest_ip": "192.168.0.1"}]


@pytest.mark.parametrize("element", [
    None, 1, "x", [], {}, rule(2, ipAddress=""), rule(2, ipAddress=None), rule(2, ipAddress=[]), rule(2, ipAddress="1\n2"),
    rule(2, ipAddress="192.168.0.1\r"), rule(2, ipAddress="\x01"), rule(2, settingName="\x01")], ids=ascii)
def test_a_rule_that_cannot_be_kept_is_refused_before_anything_is_written(ports, element):
    add(ports, name="a")
    before = ports.read("/etc/config/portmapping")
    a = ports.post(URI, {"portOpenSettings": [rule(1), element]})
    assert a.encrypted and a.json == UNUSABLE
    assert ports.read("/etc/config/portmapping") == before
    ports.wait_for_call("/etc/init.d/firewall", "restart")


@pytest.mark.parametrize("lead", range(3))
def test_a_name_is_cut_at_a_character_s_end(ports, lead):
    text = "x" * lead + "日" * 100
    assert ports.post(URI, {"portOpenSettings": [rule(1, settingName=text)]}).json == OK
    assert names(ports) == [cut(text, 254 - len("portmapping.@redirect[-1].name="))]
    document = ports.get(URI).json
    assert document["portOpenSettings"][0]["settingName"] == cut(text, 31)
    assert ports.post(URI, document).json == OK and ports.get(URI).json == document


@pytest.mark.parametrize("number, kept", [(80.0, "80"), (True, "1"), ("80", "80"), ("080", "80"), (80.5, "0"), ("", "0"),
                                          ("80 ", "0"), ("0x50", "0")])
def test_a_port_is_a_whole_number_in_any_form(ports, number, kept):
    assert ports.post(URI, {"portOpenSettings": [rule(1, lanPortNum=number)]}).json == OK
    assert stored(ports)[0]["dest_port"] == kept


def test_of_null_in_the_place_of_the_list_the_old_rules_are_gone_as_of_none(ports):
    add(ports, name="a")
    assert ports.post(URI, {"portOpenSettings": None}).json == UNUSABLE
    assert stored(ports) == []


def test_without_a_list_the_old_rules_are_gone_all_the_same(ports):
    add(ports, name="a")
    assert ports.post(URI, {}).json == UNUSABLE
    assert stored(ports) == []
    assert ports.logged("portOpenSettings is NULL", priority=3, by="handle_set_portopen")


@pytest.mark.parametrize("body", [{"portOpenSettings": {}}, {"portOpenSettings": "x"}, {"portOpenSettings": 1}, b"[]", b"null", None, b"not json", b"[1"])
def test_a_list_that_is_none_and_an_unusable_body_keep_the_rules(ports, body):
    add(ports, name="a")
    assert ports.post(URI, body).json == UNUSABLE
    assert names(ports) == ["a"]
    ports.wait_for_call("/etc/init.d/firewall", "restart")


@pytest.mark.parametrize("body", GARBAGE_BODIES.values(), ids=GARBAGE_BODIES.keys())
def test_garbage_is_result_1(ports, body):
    assert ports.post(URI, body).json == UNUSABLE
    assert ports.post(DELETE, body).json == UNUSABLE


def test_a_missing_package_is_result_1(router):
    router.no_config("portmapping")
    a = router.get(URI)
    assert a.encrypted and a.json == UNUSABLE
    assert router.post(URI, {"portOpenSettings": [rule()]}).json == UNUSABLE


def test_rules_are_deleted_from_the_last_one_on(ports):
    for number in range(5):
        add(ports, name=str(number))
    assert ports.post(DELETE, {"portOpenSettings": [{"id": 1}, {"id": "3"}]}).json == OK
    assert names(ports) == ["0", "2", "4"]


@pytest.mark.parametrize("elements", [
    [{"id": 9}], [{}], [None], [{"id": None}], [{"id": 0}] * 257, *(
        [{"id": 0}, {"id": bad}] for bad in ("", "x", [], {}, [0], True, False, -1, "-1", 2**31, "4294967296", 2**64))],
    ids=lambda value: str(value)[:40])
def test_a_delete_with_a_missing_unknown_or_too_many_ids_is_result_1(ports, elements):
    add(ports, name="a")
    assert ports.post(DELETE, {"portOpenSettings": elements}).json == UNUSABLE
    assert names(ports) == ["a"]


def test_an_unknown_position_is_met_before_the_lower_ones(ports):
    add(ports, name="a")
    add(ports, name="b")
    assert ports.post(DELETE, {"portOpenSettings": [{"id": 0}, {"id": 9}, {"id": 1}]}).json == UNUSABLE
    assert names(ports) == ["a", "b"]
    assert ports.logged("Failed to delete section: portmapping.@redirect[9]", priority=3, by="port_mapping_delete_from_json")
    ports.wait_for_call("/etc/init.d/firewall", "restart")


def test_256_ids_are_taken(ports):
    add(ports, name="a")
    add(ports, name="b")
    assert ports.post(DELETE, {"portOpenSettings": [{"id": 0}] * 256}).json == OK  # an id named twice is one
    assert names(ports) == ["b"]


@pytest.mark.parametrize("uri", [URI, DELETE])
@pytest.mark.parametrize("body, message", [
    (None, "data is NULL"), (b"not json", "jsonObj is NULL"), ({}, "portOpenSettings is NULL")])
def test_an_unusable_change_is_told_in_the_log(ports, uri, body, message):
    a = ports.post(uri, body)
    assert a.encrypted and a.json == UNUSABLE
    assert ports.logged(message, priority=3)
    ports.wait_for_call("/etc/init.d/firewall", "restart")


def test_without_a_package_a_delete_is_result_1(router):
    router.no_config("portmapping")
    assert router.post(DELETE, {"portOpenSettings": [{"id": 0}]}).json == UNUSABLE
    assert router.logged("Failed to delete section: portmapping.@redirect[0]", priority=3, by="port_mapping_delete_from_json")


def test_a_package_that_cannot_be_read_is_result_1(router):
    router.config("portmapping", "config redirect\n\toption name 'a\n")
    assert router.get(URI).json == UNUSABLE
    assert router.post(URI, {"portOpenSettings": [rule()]}).json == UNUSABLE


def test_options_are_stored_in_their_order(ports):
    ports.post(URI, {"portOpenSettings": [rule()]})
    assert list(stored(ports)[0]) == ["dest_port", "src", "name", "src_dport", "target", "dest_ip", "dest", "proto"]


@pytest.mark.parametrize("number, kept", [(0, "0"), (-1, "-1"), (1234567, "1234567"), (123456789, "1234567"),
                                          ("443", "443"), (None, "0")])
def test_a_port_is_kept_in_seven_characters(ports, number, kept):
    assert ports.post(URI, {"portOpenSettings": [rule(1, lanPortNum=number, wanPortNum=number)]}).json == OK
    assert (stored(ports)[0]["dest_port"], stored(ports)[0]["src_dport"]) == (kept, kept)


def test_what_is_read_is_traced(ports):
    ports.post(URI, {"portOpenSettings": [rule(1)]})
    ports.get(URI)
    for text in ("dest_ip: 192.168.0.1", "dest_port: 81", "src_dport: 8081"):
        assert ports.logged(text, priority=7, by="handle_get_portopen_json")


def test_reading_absent_options_leaves_no_pipe_open(ports):
    for _ in range(5):
        add(ports)
    assert len(ports.get(URI).json["portOpenSettings"]) == 5
    assert open_pipes(ports.pid()) == []


@pytest.mark.parametrize("tool", [{"missing": True}, {"exit": 1}], ids=["missing", "fails"])
def test_with_a_dead_uci_tool_rules_have_no_texts(ports, tool):
    add(ports, name="a", dest_ip="192.168.0.1", proto="tcp", dest_port="80", src_dport="81")
    ports.tool("uci", **tool)
    assert ports.get(URI).json["portOpenSettings"] == [{"id": 0, "settingName": "", "ipAddress": "", "protocol": 0}]


@pytest.mark.parametrize("tool", [{"exit": 1}, {"missing": True}, {"hang": True}], ids=["fails", "missing", "hangs"])
def test_a_firewall_that_does_not_restart_changes_no_answer(ports, tool):
    ports.tool("/etc/init.d/firewall", **tool)
    assert ports.post(URI, {"portOpenSettings": [rule(1)]}).json == OK
    assert ports.post(DELETE, {"portOpenSettings": [{"id": 0}]}).json == OK
    assert ports.alive()
