"""DHCP, firewall switches, time, maintenance, security service, parental control and port forwarding, live."""

import json
import re
from pathlib import Path

import pytest

from waits import wait_for_calls

DOCS = Path(__file__).resolve().parents[2] / "docs" / "api"
API = "/api/v1/"
BRANDS = pytest.mark.parametrize("brand", ["orvane", "tesmir"])
HOSTILE = "Bob's \"x\"; $(touch /tmp/pwned) `touch /tmp/pwned` %n\n日本"


def ask(router, method, uri, body=None):
    a = router.get(API + uri) if method == "GET" else router.post(API + uri, body)
    assert a.status == 200 and a.encrypted, (method, uri)
    return a.json


def change(router, uri, body, wait):
    assert ask(router, "POST", uri, body) == {"result": 0, "version": 1, "waitTime": wait}, uri


@BRANDS
def test_the_dhcp_server_is_set_and_read_back(live, brand):
    router = live(brand=brand, clients=3)
    pool = {"enable": 1, "leaseTime": 48, "startAddress": "192.168.0.50", "endAddress": "192.168.0.99", "fixedIpCount": 1,
            "fixedIpAllocation": [{"ipAddress": "192.168.0.60", "macAddress": "AA:BB:CC:DD:EE:01"}]}
    change(router, "dhcp", pool, 20)
    assert ask(router, "GET", "dhcp") == {"result": 0, "version": 1, **pool}
    change(router, "dhcp", {"enable": 0, "fixedIpCount": 0}, 20)
    assert ask(router, "GET", "dhcp")["enable"] == 0
    assert ask(router, "POST", "dhcp", {**pool, "fixedIpCount": 2}) == {"result": 1}
    assert router.calls().count("/etc/init.d/dnsmasq restart") == 2


@BRANDS
def test_the_running_leases_are_listed(live, brand):
    a = ask(live(brand=brand, clients=3), "GET", "dhcp/client-list")
    network = {"orvane": "192.168.0", "tesmir": "192.168.2"}[brand]
    assert a["clientCount"] == 3
    assert [(row["ipAddress"], row["macAddress"]) for row in a["clientList"]] == [
        (f"{network}.{100 + i}", f"02:00:00:00:01:0{i}") for i in range(3)]
    assert all(0 < row["remainTime"] <= 43200 for row in a["clientList"])


@BRANDS
def test_the_firewall_s_switches_are_set_and_read_back(live, brand):
    router = live(brand=brand)
    for uri, body in (("security/passthrough", {"pptpEnable": 0, "ipsecEnable": 1}),
                      ("security/protect", {"dosEnable": 1, "spiEnable": 0})):
        change(router, uri, body, 20)
        assert ask(router, "GET", uri) == {"result": 0, "version": 1, **body}
        assert ask(router, "POST", uri, {key: 2 for key in body}) == {"result": 1}
    assert router.option("security.security.autoflag") == "1"
    wait_for_calls(router, "/etc/init.d/firewall restart")


@BRANDS
def test_the_time_service_is_set_and_read_back(live, brand):
    router = live(brand=brand)
    server = HOSTILE.replace("\n", " ")
    for enable, command in ((0, "stop"), (1, "restart")):
        change(router, "ntp", {"enable": enable, "server": server}, 20)
        assert ask(router, "GET", "ntp") == {"result": 0, "version": 1, "enable": enable, "server": server}
        wait_for_calls(router, f"/etc/init.d/sysntpd {command}")
    for body in ({"enable": 1}, {"enable": 1, "server": HOSTILE}):
        refused = router.post(API + "ntp", body)
        assert not refused.encrypted and refused.body == b'{"result": 1}'
    assert ask(router, "GET", "ntp")["server"] == server
    assert not router.root.exists("/tmp/pwned")


@BRANDS
def test_remote_maintenance_is_set_and_read_back(live, brand):
    router = live(brand=brand)
    detail = {"detailInfoSendEnable": 1} if brand == "orvane" else {}
    for enable in (1, 0):
        change(router, "remote-maintenance", {"enable": enable, **detail}, 20)
        assert ask(router, "GET", "remote-maintenance") == {"result": 0, "version": 1, "enable": enable, **detail}
    calls = {"tesmir": ["/usr/sbin/hotacron"], "orvane": [
        "/usr/sbin/IDM_from_qv/idm_start", "/etc/init.d/nwm_package start", "/usr/sbin/hotacron",
        "/usr/sbin/IDM_from_qv/idm_stop", "/etc/init.d/nwm_package stop"]}
    wait_for_calls(router, *calls[brand])
    assert ask(router, "POST", "remote-maintenance", {"enable": 2}) == {"result": 1}


@BRANDS
def test_a_running_update_agent_is_seen_in_the_process_list(live, brand):
    router = live(brand=brand, update_agent=True)
    assert ask(router, "GET", "remote-maintenance") == {"result": 2}
    assert ask(router, "GET", "parental-control")["result"] == 0


def test_the_security_service_is_switched_and_reported_on_its_brand(live):
    router = live(brand="tesmir")
    for enable, command in ((1, "start"), (0, "stop")):
        change(router, "fsecure_sense", {"enable": enable}, 20)
        assert ask(router, "GET", "fsecure_sense") == {"result": 0, "version": 1, "enable": enable, "sense_ver": "2.1.0"}
        wait_for_calls(router, f"/opt/sense/bin/sense_init.sh {command}")


def test_the_security_service_is_none_of_the_other_brand_s(live):
    router = live(brand="orvane")
    assert ask(router, "GET", "fsecure_sense") == {"result": 1}
    assert ask(router, "POST", "fsecure_sense", {"enable": 1}) == {"result": 1}
    assert router.option("fsecure.sense.disabled") == "1"


@pytest.mark.parametrize("sense, answer", [("absent", {"result": 0, "version": 1, "enable": -1}), ("busy", {"result": 2})])
def test_the_security_service_is_reported_as_it_stands(live, sense, answer):
    assert ask(live(brand="tesmir", sense=sense), "GET", "fsecure_sense") == answer


def test_outside_router_mode_the_security_service_is_not_switched(live):
    assert ask(live(brand="tesmir", mode="ap"), "POST", "fsecure_sense", {"enable": 1}) == {"result": 1}


@BRANDS
def test_parental_controls_are_replaced_listed_and_deleted(live, brand):
    router = live(brand=brand)
    rows = [{"explain": text, "macAddress": f"AA:BB:CC:DD:EE:0{i}", "startTime": "07:00", "endTime": "20:00"}
            for i, text in enumerate((HOSTILE, "", "last"))]
    change(router, "parental-control", {"enable": 1, "parentalControls": rows}, 10)
    assert ask(router, "GET", "parental-control") == {"result": 0, "version": 1, "enable": 1, "parentalControls": [
        {"id": i, **row} for i, row in enumerate(rows)]}
    change(router, "parental-control/delete", {"parentalControls": [{"id": 0}, {"id": 2}]}, 10)
    assert ask(router, "GET", "parental-control")["parentalControls"] == [{"id": 0, **rows[1]}]
    assert ask(router, "POST", "parental-control/delete", {"parentalControls": [{"id": 9}]}) == {"result": 1}
    assert ask(router, "POST", "parental-control", {"enable": 1}) == {"result": 1}
    wait_for_calls(router, "/etc/init.d/firewall restart")
    assert not router.root.exists("/tmp/pwned")


@BRANDS
def test_port_rules_are_replaced_listed_and_deleted(live, brand):
    router = live(brand=brand)
    rules = [{"settingName": name, "ipAddress": "192.168.0.60", "protocol": protocol, "lanPortNum": 80, "wanPortNum": 8080}
             for name, protocol in (("Bob's $(x) `x` %n", 1), ("game", 2), ("both", 0))]
    change(router, "port-open", {"portOpenSettings": rules}, 5)
    assert ask(router, "GET", "port-open") == {"result": 0, "version": 1, "portOpenSettings": [
        {"id": i, **rule} for i, rule in enumerate(rules)]}
    change(router, "delete-port", {"portOpenSettings": [{"id": 0}, {"id": 2}]}, 5)
    assert ask(router, "GET", "port-open")["portOpenSettings"] == [{"id": 0, **rules[1]}]
    assert ask(router, "POST", "delete-port", {"portOpenSettings": [{"id": 9}]}) == {"result": 1}
    assert ask(router, "POST", "port-open", {"portOpenSettings": 1}) == {"result": 1}
    wait_for_calls(router, "/etc/init.d/firewall restart")


# The documentation's examples.

def examples(name):
    """(method, uri, body, answer) of each answer in a document, in their order."""
    body, found = None, []
    for kind, method, uri, text in re.findall(r"^```json (request|answer) (\w+) /api/v1/(\S+)\n(.*?)^```$",
                                              (DOCS / name).read_text(), re.S | re.M):
        if kind == "request":
            body = json.loads(text)
        else:
            found.append((method, uri, body if method == "POST" else None, json.loads(text)))
    return found


def with_whole_leases(answer):
    """Time goes on between a start and a request."""
    for lease in answer.get("clientList", []):
        lease["remainTime"] = lease["remainTime"] + 600 > 43200
    return answer


def test_every_route_has_an_example():
    pairs = {"dhcp", "security/passthrough", "security/protect", "ntp", "remote-maintenance", "fsecure_sense",
             "parental-control", "port-open"}
    shown = {(method, uri) for name in ("access.md", "dhcp.md") for method, uri, _, _ in examples(name)}
    assert shown == {*((method, uri) for method in ("GET", "POST") for uri in pairs), ("GET", "dhcp/client-list"),
                     ("POST", "parental-control/delete"), ("POST", "delete-port")}


@pytest.mark.parametrize("name", ["access.md", "dhcp.md"])
def test_the_documented_examples_are_true(live, name):
    routers = {}
    for method, uri, body, answer in examples(name):
        brand = "tesmir" if uri == "fsecure_sense" else "orvane"
        if brand not in routers:
            routers[brand] = live(brand=brand)
        router = routers[brand]
        a = router.get(API + uri) if method == "GET" else router.post(API + uri, body)
        assert with_whole_leases(a.json) == with_whole_leases(answer), (method, uri)
        assert list(a.json) == list(answer), (method, uri)
