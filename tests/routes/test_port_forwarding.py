"""GET and POST /api/v1/port-open, POST /api/v1/delete-port."""

import pytest

from kit import GARBAGE_BODIES, HOSTILE

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
    add(ports, name="n" * 100, dest_ip="1" * 40, dest_port="9" * 40)
    got = ports.get(URI).json["portOpenSettings"][0]
    assert (got["settingName"], got["ipAddress"]) == ("n" * 31, "1" * 15)


def test_an_empty_array_clears_all_rules(ports):
    add(ports, name="a")
    assert ports.post(URI, {"portOpenSettings": []}).json == OK
    assert stored(ports) == []


def test_a_missing_key_counts_as_absent_text_or_0(ports):
    assert ports.post(URI, {"portOpenSettings": [{}]}).json == OK
    assert stored(ports) == [{"dest_port": "0", "src": "wan", "src_dport": "0", "target": "DNAT", "dest": "lan"}]


def test_an_absent_element_is_skipped(ports):
    assert ports.post(URI, {"portOpenSettings": [None, rule(2)]}).json == OK
    assert names(ports) == ["rule 2"]


def test_without_a_list_the_old_rules_are_gone_all_the_same(ports):
    add(ports, name="a")
    assert ports.post(URI, {}).json == UNUSABLE
    assert stored(ports) == []
    assert ports.logged("portOpenSettings is NULL", priority=3)


@pytest.mark.parametrize("body", [{"portOpenSettings": {}}, {"portOpenSettings": "x"}, None, b"not json", b"[1"])
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


@pytest.mark.parametrize("elements", [[{"id": 9}], [{}], [None], [{"id": None}], [{"id": 0}] * 257])
def test_a_delete_with_a_missing_unknown_or_too_many_ids_is_result_1(ports, elements):
    add(ports, name="a")
    assert ports.post(DELETE, {"portOpenSettings": elements}).json == UNUSABLE
    assert names(ports) == ["a"]


@pytest.mark.parametrize("text", [t for n, t in HOSTILE.items() if n not in ("empty", "control", "long", "long-quotes")])
def test_hostile_names_are_stored_whole_and_do_nothing(ports, text):
    assert ports.post(URI, {"portOpenSettings": [rule(1, settingName=text, ipAddress=text)]}).json == OK
    assert names(ports) == [text]
    assert ports.get(URI).json["result"] == 0
    ports.assert_nothing_ran()
