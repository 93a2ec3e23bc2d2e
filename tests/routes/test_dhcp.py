"""GET and POST /api/v1/dhcp, GET /api/v1/dhcp/client-list."""

import time

import pytest

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
    assert dhcp.logged(message, priority=3) and dhcp.logged("get dhcp param error.", priority=3)


@pytest.mark.parametrize("start", ["100", "192.168.0.0", "192.168.0.", "x"])
def test_a_start_without_a_last_number_is_result_2(dhcp, start):
    dhcp.set("dhcp.lan.start", start)
    assert dhcp.get(URI).json == FAILED
    assert dhcp.logged("Fail to get last digit from dhcp start ip", priority=3)


@pytest.mark.parametrize("limit, end", [("0", "99"), ("-5", "94"), ("x", "99"), ("9223372036854775807", "100098"),
                                        ("-9223372036854775808", "-99900")])
def test_any_stored_limit_gives_an_end_address(dhcp, limit, end):
    dhcp.set("dhcp.lan.limit", limit)
    assert dhcp.get(URI).json["endAddress"] == f"192.168.0.{end}"
    assert dhcp.alive()


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
    assert dhcp.logged(f"fail to delete dhcp.lan.{option}  by uci api", priority=3)
    assert dhcp.calls("/etc/init.d/dnsmasq") == []


def test_without_the_package_a_change_is_result_2(router):
    router.no_config("dhcp")
    assert router.post(URI, settings()).json == FAILED
    assert router.logged("fail to set dhcp.lan.ignore to 0 by uci api", priority=3)


@pytest.mark.parametrize("changes", [{"fixedIpCount": 2, **{"fixedIpAllocation": hosts(3)["fixedIpAllocation"]}},
                                     {"fixedIpCount": 1}, {"fixedIpCount": -1}, hosts(33),
                                     {"fixedIpAllocation": {}}, {"fixedIpAllocation": "x"}], ids=lambda value: None)
def test_a_list_that_is_none_or_has_another_length_is_result_1_and_changes_nothing(dhcp, changes):
    before = dhcp.read("/etc/config/dhcp")
    assert dhcp.post(URI, settings(**changes)).json == UNUSABLE
    assert dhcp.read("/etc/config/dhcp") == before and dhcp.commands() == []


def test_32_hosts_are_taken(dhcp):
    assert dhcp.post(URI, settings(**hosts(32))).json == OK
    assert dhcp.get(URI).json["fixedIpCount"] == 32


@pytest.mark.parametrize("body", [None, b"not json", b'{"enable"', b"nul"])
def test_an_unusable_body_is_result_1(dhcp, body):
    assert dhcp.post(URI, body).json == UNUSABLE


@pytest.mark.parametrize("body", GARBAGE_BODIES.values(), ids=GARBAGE_BODIES.keys())
def test_garbage_never_breaks_the_program(dhcp, body):
    assert dhcp.post(URI, body).json["result"] in (0, 1, 2)


@pytest.mark.parametrize("text", HOSTILE.values(), ids=HOSTILE.keys())
def test_hostile_texts_reach_their_options_alone(dhcp, text):
    body = settings(startAddress=text, fixedIpCount=1, fixedIpAllocation=[{"ipAddress": text, "macAddress": text}])
    assert dhcp.post(URI, body).json["result"] in (0, 2)
    dhcp.assert_nothing_ran()
    assert set(c.split()[0] for c in dhcp.commands()) <= {"uci", "/etc/init.d/dnsmasq"}
    assert not any("pwned" in word for call in dhcp.calls() for word in call.args)


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
