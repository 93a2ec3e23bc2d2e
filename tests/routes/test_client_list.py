"""GET /api/v1/router/client-list."""

import pytest

from kit import HOSTILE
from mesh_setup import (Station, agent, controller, mac, render, set_bridge, set_dump, set_mesh, set_wifi_clients,
                        wifi_client)

URI = "/api/v1/router/client-list"
PHONE, CABLE, TABLET = "02:00:00:0C:00:01", "02:00:00:0C:00:02", "02:00:00:0C:00:03"


def neighbour(router, address, of, **state):
    if not any("br-lan" in line for line in router.root.setup):
        router.network_device("br-lan", address="192.168.0.1/24")
    router.neighbour(address, of, **state)


def rows(answer):
    return {row["macAddress"]: row for row in answer.json["clientList"]}


# No mesh.

def test_a_wifi_client_has_its_bands_and_its_signal(router):
    set_mesh(router, 0)
    set_wifi_clients(router, wifi_client(PHONE, "2.4GHz 5GHz", "-45"))
    a = router.get(URI)
    assert a.encrypted
    assert a.json == {"result": 0, "numOfClient": 1,
                      "clientList": [{"macAddress": PHONE, "connectionType": 4, "rssi": -45}]}
    assert list(a.json) == ["result", "numOfClient", "clientList"]


def test_a_multi_link_client_is_listed_by_its_mld_address(router):
    set_mesh(router, 0)
    set_wifi_clients(router, wifi_client(PHONE, "5GHz 6GHz", mld=TABLET))
    assert list(rows(router.get(URI))) == [TABLET]


def test_a_client_known_from_arp_alone_is_wired_or_taken_for_2_4_ghz(router):
    set_mesh(router, 0)
    set_wifi_clients(router)
    set_bridge(router, (1, CABLE.lower()), (2, TABLET.lower()), (4, PHONE.lower()))
    for number, address in enumerate((CABLE, TABLET, PHONE, mac(0xC, 9)), 10):
        neighbour(router, f"192.168.0.{number}", address)
    listed = rows(router.get(URI))
    assert {address: row["connectionType"] for address, row in listed.items()} == {
        CABLE: 0, TABLET: 0, PHONE: 1, mac(0xC, 9): 1}
    assert router.logged(f"Target MAC {mac(0xC, 9)} not found in bridge", priority=3)


def test_the_drivers_word_counts_over_the_arp_tables(router):
    set_mesh(router, 0)
    set_bridge(router, (1, PHONE.lower()))
    set_wifi_clients(router, wifi_client(PHONE, "6GHz", "33"))
    neighbour(router, "192.168.0.10", PHONE)
    a = router.get(URI)
    assert a.json["numOfClient"] == 1
    assert rows(a)[PHONE] == {"macAddress": PHONE, "connectionType": 3, "rssi": 33}


def test_the_bridges_ports_are_read_in_both_notations(router):
    set_mesh(router, 0)
    set_wifi_clients(router)
    set_bridge(router, (0x1a, CABLE.lower()), (12, TABLET.lower()))
    router.write("/sys/class/net/br-lan/brif/eth0/port_no", "0X1A\n")
    router.write("/sys/class/net/br-lan/brif/eth2/port_no", "12\n")
    neighbour(router, "192.168.0.10", CABLE)
    neighbour(router, "192.168.0.11", TABLET)
    assert {row["connectionType"] for row in rows(router.get(URI)).values()} == {0}
    assert router.logged("Interface eth0 port from file: 0X1A -> 26", priority=7)
    assert router.logged("Interface eth2 port from file: 12 -> 12", priority=7)


def test_a_device_on_the_wan_port_is_not_wired(router):
    set_mesh(router, 0)
    set_wifi_clients(router)
    set_bridge(router, (4, CABLE.lower()))  # eth1
    neighbour(router, "192.168.0.10", CABLE)
    assert rows(router.get(URI))[CABLE]["connectionType"] == 1


def test_a_wifi_row_that_says_ethernet_is_taken_for_2_4_ghz_unless_the_bridge_confirms_it(router):
    set_mesh(router, 0)
    set_wifi_clients(router, wifi_client(PHONE, "ETHER"), wifi_client(CABLE, "eth0"))
    set_bridge(router, (2, CABLE.lower()), (4, PHONE.lower()))
    assert {mac: row["connectionType"] for mac, row in rows(router.get(URI)).items()} == {PHONE: 1, CABLE: 0}


def test_bands_that_nobody_knows_are_minus_one(router):
    set_mesh(router, 0)
    set_wifi_clients(router, wifi_client(PHONE, "60GHz of another kind"))
    assert rows(router.get(URI))[PHONE]["connectionType"] == -1


@pytest.mark.parametrize("enable", ["0", "", "x", None])
def test_without_a_mesh_the_daemon_is_not_asked(router, enable):
    set_mesh(router, 0)
    router.set("button_mesh.easymesh.enable", enable)
    set_wifi_clients(router, wifi_client(PHONE))
    assert router.get(URI).json["numOfClient"] == 1
    assert router.calls("emt") == []


def test_without_mesh_settings_the_list_is_a_plain_routers(router):
    router.remove("/etc/config/button_mesh")
    set_wifi_clients(router, wifi_client(PHONE))
    assert router.get(URI).json["numOfClient"] == 1


def test_the_list_has_no_version(router):
    set_mesh(router, 0)
    assert "version" not in router.get(URI).json


@pytest.mark.parametrize("missing", ["eth0", "eth2"])
def test_without_a_port_file_nothing_counts_as_wired(router, missing):
    set_mesh(router, 0)
    set_wifi_clients(router)
    set_bridge(router, (1, CABLE.lower()))
    router.remove(f"/sys/class/net/br-lan/brif/{missing}/port_no")
    neighbour(router, "192.168.0.10", CABLE)
    assert rows(router.get(URI))[CABLE]["connectionType"] == 1
    assert router.logged(f"Failed to get {missing} port", priority=3)


def test_an_incomplete_neighbour_and_one_of_another_device_are_no_clients(router):
    set_mesh(router, 0)
    set_wifi_clients(router)
    neighbour(router, "192.168.0.10", CABLE, state="failed")
    router.network_device("br-lan2", address="10.0.0.1/24")
    router.neighbour("10.0.0.2", PHONE, device="br-lan2")
    assert router.get(URI).json["clientList"] == []


def test_the_arp_table_is_refreshed_first(router):
    set_mesh(router, 0)
    router.network_device("br-lan", address="192.168.7.1/24")
    router.get(URI)
    assert router.commands()[:4] == ["ip -4 neigh flush dev br-lan",
                                     "arp-scan -I br-lan --quiet 192.168.7.0/24", "sleep 2", "/etc/wireClient.sh"]


def test_without_an_address_on_the_bridge_nothing_is_scanned(router):
    set_mesh(router, 0)
    router.get(URI)
    assert router.commands()[:2] == ["ip -4 neigh flush dev br-lan", "/etc/wireClient.sh"]


# Controller.

def controller_with_one_agent(router, *stations):
    set_mesh(router, 1, "controller")
    root = controller(legacy={"eth0": [CABLE]})
    set_dump(router, [root, agent(1, root, bridged=list(stations))])
    set_wifi_clients(router)


def test_a_client_behind_the_first_satellite_stands_under_its_key_alone(router):
    controller_with_one_agent(router, Station(PHONE, (2,)))
    a = router.get(URI)
    assert list(a.json) == ["result", "numOfClient", "clientList", "easyMesh01"]
    assert a.json["clientList"] == []
    assert a.json["numOfClient"] == 1
    assert a.json["easyMesh01"] == [{"macAddress": PHONE, "connectionType": 2, "rssi": "0"}]


def test_a_satellites_client_that_the_driver_knows_has_the_drivers_bands_and_signal(router):
    controller_with_one_agent(router, Station(PHONE, (2,)))
    set_wifi_clients(router, wifi_client(PHONE, "6GHz", "61"))
    assert router.get(URI).json["easyMesh01"] == [{"macAddress": PHONE, "connectionType": 3, "rssi": "61"}]


def test_the_controllers_own_clients_are_its_own(router):
    controller_with_one_agent(router)
    set_wifi_clients(router, wifi_client(TABLET, "5GHz", "40"))
    set_bridge(router, (1, CABLE.lower()), (4, PHONE.lower()))
    neighbour(router, "192.168.0.10", CABLE)
    neighbour(router, "192.168.0.11", PHONE)  # neither wired nor known to the driver: dropped
    neighbour(router, "192.168.0.12", "02:00:00:A1:00:20")  # the satellite itself
    a = router.get(URI)
    assert a.json["clientList"] == [{"macAddress": TABLET, "connectionType": 2, "rssi": 40},
                                    {"macAddress": CABLE, "connectionType": 0, "rssi": 0}]
    assert "easyMesh01" not in a.json


def test_satellites_have_keys_of_two_digits(router):
    set_mesh(router, 1, "controller")
    root = controller()
    agents = [agent(number, root, bridged=[Station(mac(0xC, number), (1,))]) for number in range(1, 18)]
    set_dump(router, [root, *agents])
    set_wifi_clients(router)
    keys = [key for key in router.get(URI).json if key.startswith("easyMesh")]
    assert keys == [f"easyMesh{number:02d}" for number in range(1, 17)]


def test_a_satellite_below_a_satellite_has_a_number_of_its_own(router):
    set_mesh(router, 1, "controller")
    root = controller()
    first = agent(1, root, bridged=[Station(mac(0xC, 1), (1,))])
    second = agent(2, first, bridged=[Station(mac(0xC, 2), (2,))])
    set_dump(router, [root, first, second])
    set_wifi_clients(router)
    a = router.get(URI)
    assert [row["macAddress"] for row in a.json["easyMesh01"]] == [mac(0xC, 1)]
    assert [row["macAddress"] for row in a.json["easyMesh02"]] == [mac(0xC, 2)]
    assert a.json["numOfClient"] == 2


def test_a_client_seen_behind_two_units_stands_behind_the_deeper_one(router):
    set_mesh(router, 1, "controller")
    root = controller(legacy={"ath0": [PHONE]})
    first = agent(1, root, bridged=[Station(PHONE, (1,))])
    second = agent(2, first, bridged=[Station(PHONE, (2,))])
    set_dump(router, [root, first, second])
    set_wifi_clients(router)
    a = router.get(URI)
    assert "easyMesh01" not in a.json
    assert a.json["easyMesh02"] == [{"macAddress": PHONE, "connectionType": 2, "rssi": "0"}]


def test_a_satellites_client_in_the_arp_table_is_not_listed_twice(router):
    controller_with_one_agent(router, Station(PHONE, (2,)))
    set_bridge(router, (1, PHONE.lower()))
    neighbour(router, "192.168.0.10", PHONE)
    a = router.get(URI)
    assert a.json["clientList"] == [] and a.json["numOfClient"] == 1


@pytest.mark.parametrize("role", ["", "other", "Controller"])
def test_with_another_role_satellites_clients_stand_in_the_list_itself(router, role):
    controller_with_one_agent(router, Station(PHONE, (2,)))
    router.set("button_mesh.easymesh.role", role)
    a = router.get(URI)
    assert list(a.json) == ["result", "numOfClient", "clientList"]
    assert a.json["clientList"] == [{"macAddress": PHONE, "connectionType": 2, "rssi": 0}]


@pytest.mark.parametrize("text", ["no devices here\n", "\n", "\0\0", "QCA IEEE 1905.1 device: "])
def test_a_dump_without_devices_leaves_the_drivers_clients(router, text):
    set_mesh(router, 1, "controller")
    router.tool("emt", out=text)
    set_wifi_clients(router, wifi_client(PHONE, "5GHz", "40"))
    assert router.get(URI).json["clientList"] == [{"macAddress": PHONE, "connectionType": 2, "rssi": 40}]


def test_a_long_answer_is_told_to_the_console_instead_of_the_log(router):
    set_mesh(router, 0)
    set_wifi_clients(router, *(wifi_client(mac(0xC, number)) for number in range(60)))
    assert router.get(URI).json["numOfClient"] == 60
    assert "[TOPO_LOG] Content too long (need " in router.console()
    assert "handle_get_client_list" not in (router.read("/tmp/topology.log") or "")


def test_a_full_topology_log_begins_anew(router):
    set_mesh(router, 0)
    set_wifi_clients(router)
    router.write("/tmp/topology.log", "x" * 16000)
    router.get(URI)
    assert router.read("/tmp/topology.log").startswith("handle_get_client_list = {")
    assert "[TOPO_LOG] Log file full (15.6KB), truncated to empty\n" in router.console()


def test_a_topology_log_that_cannot_be_written_is_told_to_the_console(router):
    set_mesh(router, 0)
    router.write("/tmp/topology.log/file", "")
    assert router.get(URI).json["result"] == 0
    assert "[TOPO_LOG] Failed to open log file: /tmp/topology.log\n" in router.console()


def test_the_tree_and_the_answer_are_kept_in_the_topology_log(router):
    controller_with_one_agent(router)
    router.get(URI)
    log = router.read("/tmp/topology.log")
    assert "[Main Router]\n    Device: MAC: 02:00:00:00:00:01" in log
    assert "├─ Child Device: MAC: 02:00:00:A1:00:20" in log
    assert "handle_get_client_list = {" in log


@pytest.mark.parametrize("role", ["controller", "agent"])
@pytest.mark.parametrize("kind", ["missing", "silent"])
def test_without_a_dump_nothing_is_answered(router, role, kind):
    set_mesh(router, 1, role)
    router.tool("emt", missing=kind == "missing", out="")
    assert router.get(URI).empty
    assert router.logged("Failed to get agent topology data", priority=3, by="handle_get_client_list") == (role == "agent")


# Agent.

def test_an_agent_lists_its_wifi_clients_and_wired_devices(router):
    set_mesh(router, 1, "agent")
    router.set("system.@system[0].op_mode", "re")
    root = controller(legacy={"eth0": [CABLE], "eth1": [TABLET]})
    router_devices = [root, agent(1, root)]
    set_dump(router, router_devices)
    set_wifi_clients(router, wifi_client(PHONE, "5GHz", "50"))
    a = router.get(URI)
    assert a.json["clientList"] == [{"macAddress": PHONE, "connectionType": 2, "rssi": 50},
                                    {"macAddress": CABLE, "connectionType": 0, "rssi": 0}]
    assert a.json["numOfClient"] == 2
    log = router.read("/tmp/topology.log")
    assert "===== Agent Topology =====\nAgent count: 2\n  Agent[0]: 02:00:00:00:00:01\n" in log
    assert "Legacy wired device count: 1\n  Legacy[0]: " + CABLE in log


def test_the_only_unit_that_an_agent_sees_is_no_client_of_it(router):
    set_mesh(router, 1, "agent")
    root = controller(legacy={"eth0": [CABLE]})
    set_dump(router, [root])
    set_wifi_clients(router, wifi_client(root.mac), wifi_client(PHONE))
    assert set(rows(router.get(URI))) == {PHONE, CABLE}


def test_an_agent_that_sees_no_agents_lists_nothing(router):
    set_mesh(router, 1, "agent")
    router.tool("emt", out="no devices here\n")
    set_wifi_clients(router, wifi_client(PHONE))
    assert router.get(URI).json == {"result": 0, "numOfClient": 0, "clientList": []}


def test_dead_tools_leave_an_empty_list(router):
    set_mesh(router, 0)
    for tool in ("/etc/wireClient.sh", "brctl", "arp-scan", "ip"):
        router.tool(tool, missing=True)
    router.remove("/tmp/clientList.txt")
    assert router.get(URI).json == {"result": 0, "numOfClient": 0, "clientList": []}


@pytest.mark.parametrize("role", ["controller", "agent"])
def test_dead_tools_beside_the_daemon_leave_an_empty_list(router, role):
    set_mesh(router, 1, role)
    set_dump(router, [controller()])
    for tool in ("/etc/wireClient.sh", "brctl", "arp-scan", "ip", "arp"):
        router.tool(tool, missing=True)
    assert router.get(URI).json == {"result": 0, "numOfClient": 0, "clientList": []}


@pytest.mark.parametrize("role", ["controller", "agent"])
def test_a_daemon_that_fails_after_its_dump_was_heard(router, role):
    set_mesh(router, 1, role)
    router.tool("emt", out=render([controller()]), exit=1, stdin=True)
    assert router.get(URI).json["result"] == 0


@pytest.mark.parametrize("enable, role", [(0, ""), (1, "controller"), (1, "agent")], ids=["alone", "controller", "agent"])
@pytest.mark.parametrize("text", HOSTILE.values(), ids=HOSTILE.keys())
def test_hostile_text_of_the_tools_does_nothing(router, enable, role, text):
    set_mesh(router, enable, role)
    data = text.encode("utf-8", "surrogateescape")
    header = b"QCA IEEE 1905.1 device: %s, IPv4 address: %s"
    agents = b"%s\nUpstream Device: None\nLegacy Devices:\nInterface eth0:\n%s: and more than seventeen\nRadios:\n%s\n" % (
        header % (b"02:00:00:00:00:01", data), data, header % (data[:17], b"1.1.1.1"))
    router.tool("emt", out=agents)
    router.tool("brctl", out=b"port\n1 %s\n" % data)
    clients = b"mac_rssi:%s %s\noperating_band:%s\nmlo:Yes\nmld_addr:%s\n" % (data, data, data, data)
    router.tool("/etc/wireClient.sh", write={"/tmp/clientList.txt": clients.decode("utf-8", "surrogateescape")})
    neighbour(router, "192.168.0.10", CABLE)
    assert router.get(URI).json["result"] == 0
    router.assert_nothing_ran()
