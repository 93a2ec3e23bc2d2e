"""GET and POST /api/v1/dhcp, GET /api/v1/dhcp/client-list."""

import time

import pytest
from texts import cut, shown

from kit import GARBAGE_BODIES, HOSTILE

URI = "/api/v1/dhcp"
LEASES = "/api/v1/dhcp/client-list"
OK = {"result": 0, "version": 1, "waitTime": 20}
UNUSABLE = {"result": 1}
FAILED = {"result": 2}
LAN = "config dhcp 'lan'\n\toption ignore '0'\n\toption leasetime '12h'\n\toption start '192.168.0.100'\n\toption limit '50'\n"


def settings(**changes):
    return {"enable": 1, "leaseTime": 24, "startAddress": "192.168.0.100", "endAddress": "192.168.0.149",
            "fixedIpCount": 0, "fixedIpAllocation": [], **changes}


def hosts(count):
    return {"fixedIpCount": count, "fixedIpAllocation": [
        {"ipAddress": f"192.168.0.{10 + i}", "macAddress": f"00:11:22:33:44:{i:02X}"} for i in range(count)]}


@pytest.fixture
def dhcp(router):
    router.config("dhcp", LAN)
    return router


def test_the_document_has_its_keys_in_order(dhcp):
    dhcp.add("dhcp", "host", ip="192.168.0.7", mac="AA:BB:CC:DD:EE:01")
    a = dhcp.get(URI)
    assert a.encrypted
    assert list(a.json.items()) == [
        ("result", 0), ("version", 1), ("enable", 1), ("leaseTime", 12), ("startAddress", "192.168.0.100"),
        ("endAddress", "192.168.0.149"), ("fixedIpCount", 1),
        ("fixedIpAllocation", [{"ipAddress": "192.168.0.7", "macAddress": "AA:BB:CC:DD:EE:01"}])]


@pytest.mark.parametrize("stored, hours", [("12h", 12), ("2d", 48), ("90m", 0), ("7", 0), ("infinite", 0), ("h", 0)])
def test_the_lease_time_is_told_in_hours(dhcp, stored, hours):
    dhcp.set("dhcp.lan.leasetime", stored)
    assert dhcp.get(URI).json["leaseTime"] == hours


def test_a_server_that_is_off_has_no_pool_but_its_fixed_hosts(dhcp):
    dhcp.set("dhcp.lan.ignore", "1")
    dhcp.add("dhcp", "host", ip="192.168.0.7", mac="AA:BB:CC:DD:EE:01")
    a = dhcp.get(URI).json
    assert (a["enable"], a["leaseTime"], a["startAddress"], a["endAddress"], a["fixedIpCount"]) == (0, 0, "", "", 1)


@pytest.mark.parametrize("option, message", [("leasetime", "Fail to get dhcp.lan.leasetime by uci api"),
                                             ("start", "Fail to get dhcp.lan.start value by uci api"),
                                             ("limit", "Fail to get dhcp.lan.limit value by uci api")])
def test_a_missing_option_is_result_2(dhcp, option, message):
    dhcp.set(f"dhcp.lan.{option}", None)
    a = dhcp.get(URI)
    assert a.encrypted and a.json == FAILED
    assert dhcp.logged(message, priority=3, by="cmd_get_dhcp") and dhcp.logged("get dhcp param error.", priority=3)


@pytest.mark.parametrize("start", ["100", "192.168.0.0", "192.168.0.", "x"])
def test_a_start_without_a_last_number_is_result_2(dhcp, start):
    dhcp.set("dhcp.lan.start", start)
    assert dhcp.get(URI).json == FAILED
    assert dhcp.logged("Fail to get last digit from dhcp start ip", priority=3, by="cmd_get_dhcp")


@pytest.mark.parametrize("limit, end", [("0", "99"), ("-5", "94"), ("x", "99"), ("9223372036854775807", "100098"),
                                        ("-9223372036854775808", "-99900")])
def test_any_stored_limit_gives_an_end_address(dhcp, limit, end):
    dhcp.set("dhcp.lan.limit", limit)
    assert dhcp.get(URI).json["endAddress"] == f"192.168.0.{end}"
    assert dhcp.alive()


@pytest.mark.parametrize("ignore, enable", [("0", 1), ("2", 1), ("x", 1), (None, 1), ("1", 0), ("1x", 0)])
def test_only_an_ignored_server_is_off(dhcp, ignore, enable):
    dhcp.set("dhcp.lan.ignore", ignore)
    assert dhcp.get(URI).json["enable"] == enable
    assert dhcp.logged("atoi(getVal) is [", priority=7)


def test_hosts_are_read_through_the_uci_command(dhcp):
    dhcp.add("dhcp", "host", ip="192.168.0.7", mac="AA:BB:CC:DD:EE:01")
    dhcp.add("dhcp", "host", ip="192.168.0.8", mac="AA:BB:CC:DD:EE:02")
    dhcp.get(URI)
    dhcp.assert_calls("uci show dhcp", "uci get dhcp.@host[0].ip", "uci get dhcp.@host[0].mac",
                      "uci get dhcp.@host[1].ip", "uci get dhcp.@host[1].mac")


def test_long_texts_of_a_host_are_bounded(dhcp):
    dhcp.add("dhcp", "host", ip="1" * 300, mac="m" * 40)
    assert dhcp.get(URI).json["fixedIpAllocation"] == [{"ipAddress": "1" * 31, "macAddress": "m" * 31}]


def test_a_first_line_without_a_text_is_shown_so(dhcp):
    dhcp.add("dhcp", "host", ip="192.168.0.7", mac="\nsecond")
    assert dhcp.get(URI).json["fixedIpAllocation"] == [{"ipAddress": "192.168.0.7", "macAddress": ""}]


def test_a_host_without_a_mac_shows_what_was_read_before_it(dhcp):
    dhcp.add("dhcp", "host", ip="192.168.0.7")
    assert dhcp.get(URI).json["fixedIpAllocation"] == [{"ipAddress": "192.168.0.7", "macAddress": "192.168.0.7"}]


def test_at_most_32_hosts_are_read(dhcp):
    for number in range(40):
        dhcp.add("dhcp", "host", ip=f"192.168.0.{number + 1}", mac="AA:BB:CC:DD:EE:01")
    a = dhcp.get(URI).json
    assert (a["fixedIpCount"], len(a["fixedIpAllocation"])) == (32, 32)


# POST.

@pytest.mark.parametrize("hours, text, read", [(36, "1d", 24), (5, "5h", 5), (24, "1d", 24), (23, "23h", 23), (0, "0h", 0),
                                               (168, "7d", 168)])
def test_a_lease_time_is_stored_in_days_or_hours(dhcp, hours, text, read):
    assert dhcp.post(URI, settings(leaseTime=hours)).json == OK
    assert dhcp.option("dhcp.lan.leasetime") == text
    assert dhcp.get(URI).json["leaseTime"] == read


def test_the_pool_is_stored_by_its_start_and_its_size(dhcp):
    a = dhcp.post(URI, settings(startAddress="192.168.1.100", endAddress="192.168.1.199"))
    assert a.encrypted and a.json == OK
    assert (dhcp.option("dhcp.lan.start"), dhcp.option("dhcp.lan.limit")) == ("192.168.1.100", "100")
    assert dhcp.option("dhcp.lan.ignore") == "0"
    assert dhcp.get(URI).json["endAddress"] == "192.168.1.199"


def test_the_commands_of_a_change_stand_in_their_order(dhcp):
    dhcp.add("dhcp", "host", ip="192.168.0.7", mac="AA:BB:CC:DD:EE:01")
    dhcp.add("dhcp", "host", ip="192.168.0.8", mac="AA:BB:CC:DD:EE:02")
    assert dhcp.post(URI, settings(**hosts(1))).json == OK
    assert dhcp.commands() == ["uci show dhcp", "uci del dhcp.@host[0]", "uci del dhcp.@host[0]", "uci commit dhcp",
                               "uci add dhcp host", "uci commit dhcp", "/etc/init.d/dnsmasq restart"]


def test_fixed_hosts_replace_the_old_ones_whole(dhcp):
    dhcp.add("dhcp", "host", ip="192.168.0.7", mac="AA:BB:CC:DD:EE:01")
    dhcp.post(URI, settings(leaseTime=5, **hosts(2)))
    stored = [s.options for s in dhcp.package("dhcp") if s.type == "host"]
    assert stored == [{"ip": f"192.168.0.{10 + i}", "leasetime": "5h", "name": str(i), "dns": "1",
                       "mac": f"00:11:22:33:44:0{i}"} for i in range(2)]


def test_an_empty_list_takes_the_hosts_away(dhcp):
    dhcp.add("dhcp", "host", ip="192.168.0.7", mac="AA:BB:CC:DD:EE:01")
    assert dhcp.post(URI, settings()).json == OK
    assert [s for s in dhcp.package("dhcp") if s.type == "host"] == []


@pytest.mark.parametrize("given, stored", [("0011AABBCCDD", "00:11:AA:BB:CC:DD"), ("00:11:AA:BB:CC:DD", "00:11:AA:BB:CC:DD"),
                                           ("abc", "ab:c"), ("ab", "ab")])
def test_a_mac_gets_its_colons(dhcp, given, stored):
    dhcp.post(URI, settings(fixedIpCount=1, fixedIpAllocation=[{"ipAddress": "192.168.0.9", "macAddress": given}]))
    assert dhcp.option("dhcp.@host[0].mac") == stored


def test_switching_off_keeps_the_hosts(dhcp):
    dhcp.add("dhcp", "host", ip="192.168.0.7", mac="AA:BB:CC:DD:EE:01")
    assert dhcp.post(URI, settings(enable=0)).json == OK
    lan = next(s for s in dhcp.package("dhcp") if s.name == "lan")
    assert lan.options == {"ignore": "1"}
    assert dhcp.option("dhcp.@host[0].ip") == "192.168.0.7"
    assert dhcp.commands() == ["uci commit dhcp", "/etc/init.d/dnsmasq restart"]


@pytest.mark.parametrize("option", ["leasetime", "start", "limit"])
def test_switching_off_twice_is_result_2(dhcp, option):
    dhcp.set(f"dhcp.lan.{option}", None)
    assert dhcp.post(URI, settings(enable=0)).json == FAILED
    assert dhcp.logged(f"fail to delete dhcp.lan.{option}  by uci api", priority=3, by="cmd_set_dhcp")
    assert dhcp.calls("/etc/init.d/dnsmasq") == []


def test_without_the_package_a_change_is_result_2(router):
    router.no_config("dhcp")
    assert router.post(URI, settings()).json == FAILED
    assert router.logged("fail to set dhcp.lan.ignore to 0 by uci api", priority=3, by="cmd_set_dhcp")


@pytest.mark.parametrize("changes", [{"fixedIpCount": 2, **{"fixedIpAllocation": hosts(3)["fixedIpAllocation"]}},
                                     {"fixedIpCount": 1}, {"fixedIpCount": -1}, hosts(33),
                                     {"fixedIpAllocation": {}}, {"fixedIpAllocation": "x"}, {"fixedIpAllocation": 0},
                                     {**hosts(1), "fixedIpCount": "1x"}, {**hosts(1), "fixedIpCount": 1.5}, {
                                         **hosts(1), "fixedIpCount": None}], ids=str)
def test_a_list_that_is_none_or_has_another_length_is_result_1_and_changes_nothing(dhcp, changes):
    before = dhcp.read("/etc/config/dhcp")
    assert dhcp.post(URI, settings(**changes)).json == UNUSABLE
    assert dhcp.read("/etc/config/dhcp") == before and dhcp.commands() == []


def test_32_hosts_are_taken(dhcp):
    assert dhcp.post(URI, settings(**hosts(32))).json == OK
    assert dhcp.get(URI).json["fixedIpCount"] == 32


@pytest.mark.parametrize("body", [None, b"not json", b'{"enable"', b"nul", b"[]", b"null", b"1", b'"x"', b"[{}]"])
def test_an_unusable_body_is_result_1_and_changes_nothing(dhcp, body):
    before = dhcp.read("/etc/config/dhcp")
    a = dhcp.post(URI, body)
    assert a.encrypted and a.json == UNUSABLE
    assert dhcp.read("/etc/config/dhcp") == before and dhcp.commands() == []
    message = "can't parse request_body to json format." if body else "empty request_body is passed on seting dhcp config"
    assert dhcp.logged(message, priority=3)


@pytest.mark.parametrize("body", GARBAGE_BODIES.values(), ids=GARBAGE_BODIES.keys())
def test_garbage_never_breaks_the_program(dhcp, body):
    assert dhcp.post(URI, body).json["result"] in (0, 1, 2)


@pytest.mark.parametrize("key", ["enable", "leaseTime", "fixedIpCount", "startAddress", "endAddress"])
def test_a_missing_key_is_told_in_the_log_and_counts_as_0_or_empty(dhcp, key):
    body = settings()
    del body[key]
    assert dhcp.post(URI, body).json == OK
    assert dhcp.logged(f"{key} is not found.", priority=3, by="handle_set_dhcp_config")
    stored = {"enable": ("ignore", "1"), "leaseTime": ("leasetime", "0h"), "startAddress": ("start", None),
              "endAddress": ("limit", str(-1 - 100 + 1)), "fixedIpCount": ("ignore", "0")}
    option, value = stored[key]
    assert dhcp.option(f"dhcp.lan.{option}") == value


def test_an_empty_address_of_the_pool_is_told_in_the_log(dhcp):
    assert dhcp.post(URI, settings(endAddress="")).json == OK
    assert dhcp.logged("the value of passing parameter is empry when calling", priority=3)


def test_without_a_list_of_hosts_there_are_none(dhcp):
    dhcp.add("dhcp", "host", ip="192.168.0.7", mac="AA:BB:CC:DD:EE:01")
    body = settings()
    del body["fixedIpAllocation"]
    assert dhcp.post(URI, body).json == OK
    assert dhcp.commands() == ["uci show dhcp", "uci del dhcp.@host[0]", "uci commit dhcp", "/etc/init.d/dnsmasq restart"]
    assert [s for s in dhcp.package("dhcp") if s.type == "host"] == []


@pytest.mark.parametrize("key, option", [("ipAddress", "ip"), ("macAddress", "mac")])
def test_a_host_that_lacks_a_key_is_stored_without_it(dhcp, key, option):
    host = {"ipAddress": "192.168.0.9", "macAddress": "0011AABBCCDD"}
    del host[key]
    assert dhcp.post(URI, settings(fixedIpCount=1, fixedIpAllocation=[host])).json == OK
    assert dhcp.logged(f"{key} is not found.", priority=3, by="handle_set_dhcp_config")
    assert dhcp.option(f"dhcp.@host[0].{option}") is None and dhcp.option("dhcp.@host[0].name") == "0"


def test_a_mac_of_17_characters_is_told_to_be_right(dhcp):
    dhcp.post(URI, settings(**hosts(1)))
    assert dhcp.logged("The mac address format is correct.", priority=7)


def test_any_switch_but_0_is_on(dhcp):
    dhcp.set("dhcp.lan.ignore", "1")
    assert dhcp.post(URI, settings(enable=2)).json == OK
    assert dhcp.option("dhcp.lan.ignore") == "0"


def assert_refused(router, body):
    """Nothing was stored, nothing was staged, nothing ran; and the hosts that there are stay readable."""
    router.add("dhcp", "host", ip="192.168.0.7", mac="AA:BB:CC:DD:EE:01")
    router.add("dhcp", "host", ip="192.168.0.8", mac="AA:BB:CC:DD:EE:02")
    before = router.read("/etc/config/dhcp")
    a = router.post(URI, body)
    assert a.encrypted and a.json == UNUSABLE
    assert router.read("/etc/config/dhcp") == before
    assert router.commands() == [] and not router.exists("/tmp/.uci/dhcp")
    assert router.get(URI).json["fixedIpCount"] == 2


@pytest.mark.parametrize("text", ["\x01", "a\nb", "192.168.0.9\r", "\t", "\x7f"], ids=ascii)
@pytest.mark.parametrize("key", ["startAddress", "endAddress", "ipAddress", "macAddress"])
def test_a_text_that_is_no_line_is_refused_before_anything_is_written(dhcp, key, text):
    body = settings(**hosts(3))
    (body if key in body else body["fixedIpAllocation"][2])[key] = text
    assert_refused(dhcp, body)


@pytest.mark.parametrize("element", [None, 1, "x", [], True], ids=str)
def test_a_host_that_is_no_object_is_refused_before_anything_is_written(dhcp, element):
    body = settings(**hosts(3))
    body["fixedIpAllocation"][2] = element
    assert_refused(dhcp, body)


@pytest.mark.parametrize("enable", [0, False, 0.0, "0", None, "x", "1 ", 0.5, [1], {}], ids=str)
def test_every_form_of_0_and_every_value_that_is_no_number_is_off(dhcp, enable):
    assert dhcp.post(URI, settings(enable=enable)).json == OK
    assert dhcp.option("dhcp.lan.ignore") == "1"


@pytest.mark.parametrize("enable", [1, True, 1.0, "1", "01"], ids=str)
def test_every_form_of_1_is_on(dhcp, enable):
    dhcp.set("dhcp.lan.ignore", "1")
    assert dhcp.post(URI, settings(enable=enable)).json == OK
    assert dhcp.option("dhcp.lan.ignore") == "0"


def test_an_empty_object_is_off(dhcp):
    assert dhcp.post(URI, {}).json == OK
    assert dhcp.option("dhcp.lan.ignore") == "1"


@pytest.mark.parametrize("tool", [{"missing": True}, {"exit": 1}], ids=["missing", "fails"])
def test_with_a_dead_uci_tool_there_are_no_hosts(dhcp, tool):
    dhcp.add("dhcp", "host", ip="192.168.0.7", mac="AA:BB:CC:DD:EE:01")
    dhcp.tool("uci", **tool)
    a = dhcp.get(URI).json
    assert (a["result"], a["endAddress"], a["fixedIpAllocation"]) == (0, "192.168.0.149", [])
    assert dhcp.post(URI, settings()).json == OK
    assert dhcp.post(URI, settings(enable=0)).json == OK


def test_with_a_dead_uci_tool_a_new_host_is_result_2(dhcp):
    dhcp.tool("uci", missing=True)
    assert dhcp.post(URI, settings(**hosts(1))).json == FAILED
    assert dhcp.logged("fail to set dhcp.host.ip by uci api", priority=3, by="cmd_set_dhcp")


def test_a_host_that_cannot_be_deleted_ends_the_change(dhcp):
    dhcp.tool("uci", "show", "dhcp", out="dhcp.@host[0]=host\ndhcp.@host[1]=host\n")
    dhcp.tool("uci", "del", exit=1)
    assert dhcp.post(URI, settings(**hosts(1))).json == FAILED
    assert dhcp.commands() == ["uci show dhcp", "uci del dhcp.@host[0]"]
    assert dhcp.logged("fail to delete dhcp.host by uci", priority=3, by="cmd_set_dhcp")


@pytest.mark.parametrize("tool", [{"exit": 1}, {"missing": True}], ids=["fails", "missing"])
@pytest.mark.parametrize("enable", [0, 1])
def test_a_dead_dhcp_server_changes_no_answer(dhcp, enable, tool):
    dhcp.tool("/etc/init.d/dnsmasq", **tool)
    assert dhcp.post(URI, settings(enable=enable)).json == OK


# Leases.

def test_leases_that_run_on_are_listed_in_file_order(router):
    now = int(time.clock_gettime(time.CLOCK_BOOTTIME))
    router.write("/tmp/dhcp.leases", f"{now + 5000} AA:BB:CC:DD:EE:01 192.168.0.7 name id\n"
                 f"{now + 100} AA:BB:CC:DD:EE:02 192.168.0.8 * *\r\n")
    a = router.get(LEASES)
    assert a.encrypted and list(a.json) == ["result", "version", "clientCount", "clientList"]
    assert a.json["clientCount"] == 2
    assert [(r["ipAddress"], r["macAddress"]) for r in a.json["clientList"]] == [
        ("192.168.0.7", "AA:BB:CC:DD:EE:01"), ("192.168.0.8", "AA:BB:CC:DD:EE:02")]
    assert 0 < a.json["clientList"][1]["remainTime"] <= 100


def test_ended_endless_and_broken_leases_are_left_out(router):
    router.write("/tmp/dhcp.leases", "1 AA:BB:CC:DD:EE:01 192.168.0.7 a b\n0 AA:BB:CC:DD:EE:02 192.168.0.8 a b\n"
                 "99999999999 onlytwo\n\nx y z\n")
    assert router.get(LEASES).json == {"result": 0, "version": 1, "clientCount": 0, "clientList": []}


def test_without_a_lease_file_the_list_is_empty(router):
    router.remove("/tmp/dhcp.leases")
    assert router.get(LEASES).json["clientList"] == []


@pytest.mark.parametrize("tool", ["cat", "awk"])
def test_without_the_tools_that_read_leases_the_list_is_empty(router, tool):
    router.write("/tmp/dhcp.leases", "99999999999 AA:BB:CC:DD:EE:01 192.168.0.7 a b\n")
    router.tool(tool, missing=True)
    assert router.get(LEASES).json == {"result": 0, "version": 1, "clientCount": 0, "clientList": []}


@pytest.mark.parametrize("field", ["a,b", "a,", ","])
def test_a_lease_with_a_comma_in_a_field_counts_by_its_fields(router, field):
    router.write("/tmp/dhcp.leases", f"99999999999 AA:BB {field} x\n99999999999 AA:CC 192.168.0.8 x\n")
    expected = {"a,b": ["192.168.0.8"], "a,": ["a", "192.168.0.8"], ",": ["192.168.0.8"]}[field]
    assert [row["ipAddress"] for row in router.get(LEASES).json["clientList"]] == expected


def test_texts_of_a_lease_are_cut_at_a_character_s_end(router):
    for lead in range(3):
        text = "x" * lead + "日" * 20
        router.write("/tmp/dhcp.leases", f"99999999999 {text} {text} x\n")
        row, = router.get(LEASES).json["clientList"]
        assert row["macAddress"] == row["ipAddress"] == cut(text, 31)


def test_what_is_no_utf8_in_a_lease_is_shown_as_such(router):
    router.write("/tmp/dhcp.leases", b"99999999999 AA\xff\xe6\x97 10.0.0.1 x\n")
    row, = router.get(LEASES).json["clientList"]
    assert row["macAddress"] == shown("AA\udcff\udce6\udc97") == "AA\ufffd\ufffd"


def test_texts_of_a_lease_are_bounded(router):
    router.write("/tmp/dhcp.leases", f"99999999999 {'m' * 40} {'i' * 40} x\n99999999999 {'m' * 300} ip x\n")
    row, = router.get(LEASES).json["clientList"]
    assert (row["macAddress"], row["ipAddress"], row["remainTime"]) == ("m" * 31, "i" * 31, 2147483647)


@pytest.mark.parametrize("name", [n for n in HOSTILE if n != "long" and not set(HOSTILE[n]) & set(" \n")])
def test_hostile_texts_of_a_lease_are_shown_and_do_nothing(router, name):
    text = HOSTILE[name]
    router.write("/tmp/dhcp.leases", f"99999999999 {text} {text} x\n".encode("utf-8", "surrogateescape"))
    answer = router.get(LEASES).json
    assert answer["result"] == 0 and answer["clientCount"] == len(answer["clientList"])
    router.assert_nothing_ran()
