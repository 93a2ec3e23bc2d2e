"""How often the program reads and writes a package for one request: counted, so that no loop brings it back."""

import os
import time
from collections import Counter

import pytest
from routes.wireless_state import SETTING, mesh

PORTS = "/api/v1/port-open"
PARENTAL = "/api/v1/parental-control"
FILTER = "/api/v1/wireless/mac-filter"
DHCP = "/api/v1/dhcp"


@pytest.fixture
def counted(router):
    router.count_uci = True
    return router


def commits(router):
    return Counter(call.split()[1] for call in router.uci_calls() if call.startswith("commit "))


def loads(router):
    return Counter(call.split()[1] for call in router.uci_calls() if call.startswith("load "))


def age(router):
    """Waits until no package was written just now: such a one is read again, as its times could not tell another change."""
    latest = max(os.stat(entry).st_ctime for entry in router.root.path("/etc/config").iterdir())
    router.wait_until(lambda: time.time() > latest + 0.1, "a package's age")


@pytest.mark.parametrize("role", [0, 1, 2])
def test_the_wireless_page_reads_each_package_twice_at_most(counted, role):
    mesh(counted, role)
    age(counted)
    assert counted.get(SETTING).json["result"] == 0
    assert max(loads(counted).values()) <= 2, loads(counted)
    assert not commits(counted)


@pytest.mark.parametrize("role", [0, 1])
def test_the_wireless_page_is_written_in_six_commits_at_most(counted, role):
    mesh(counted, role)
    document = counted.get(SETTING).json
    counted.forget_uci_calls()
    assert counted.post(SETTING, document).json["result"] == 0
    assert 1 <= commits(counted)["wireless"] <= 6, counted.uci_calls()


@pytest.mark.parametrize("entries", [1, 10, 100])
def test_port_rules_are_written_in_two_commits_at_most(counted, entries):
    counted.config("portmapping", "\nconfig redirect\n\toption name 'old'\n" * 3)
    rules = [{"settingName": f"rule {n}", "ipAddress": "192.168.0.9", "protocol": 1, "lanPortNum": n, "wanPortNum": n}
             for n in range(entries)]
    assert counted.post(PORTS, {"portOpenSettings": rules}).json["result"] == 0
    counted.wait_for_call("/etc/init.d/firewall", "restart")
    assert 1 <= commits(counted)["portmapping"] <= 2, counted.uci_calls()
    assert len(counted.package("portmapping")) == entries


@pytest.mark.parametrize("entries", [1, 10, 100])
def test_parental_rules_are_written_in_two_commits_at_most(counted, entries):
    counted.config("mia", "config basic\n\toption enable '1'\n" + "\nconfig macbind\n\toption enable 'old'\n" * 3)
    rules = [{"explain": f"child {n}", "macAddress": "AA:BB:CC:DD:EE:01", "startTime": "07:00", "endTime": "20:00"}
             for n in range(entries)]
    assert counted.post(PARENTAL, {"enable": "1", "parentalControls": rules}).json["result"] == 0
    counted.wait_for_call("/etc/init.d/firewall", "restart")
    assert 1 <= commits(counted)["mia"] <= 2, counted.uci_calls()
    assert len(counted.package("mia")) == entries + 1


@pytest.mark.parametrize("status", [0, 1])
def test_a_mac_filter_of_five_is_written_in_twelve_commits_at_most(counted, status):
    table = [{"description": f"device {n}", "macAddress": f"00:11:22:33:44:0{n}"} for n in range(5)]
    assert counted.post(FILTER, {"macFilterStatus": status, "macFilterTable": table}).json["result"] == 0
    assert 1 <= sum(commits(counted).values()) <= 12, counted.uci_calls()


def test_a_full_list_of_fixed_hosts_is_written_in_one_commit_for_each_that_its_commands_divide(counted):
    hosts = [{"ipAddress": f"192.168.0.{n + 10}", "macAddress": "AABBCCDDEE01"} for n in range(32)]
    body = {"enable": 1, "leaseTime": 24, "startAddress": "192.168.0.50", "endAddress": "192.168.0.99",
            "fixedIpCount": 32, "fixedIpAllocation": hosts}
    assert counted.post(DHCP, body).json["result"] == 0
    added = sum(command == "uci add dhcp host" for command in counted.commands())
    assert added == 32
    assert 1 <= commits(counted)["dhcp"] <= 4 + added, counted.uci_calls()
