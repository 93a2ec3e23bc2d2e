"""The mesh, as a person sees it: agents and clients through the web server with the real jose."""

import re

import pytest

AGENT_INFO = "/api/v1/mesh/agent-info"
CLIENT_LIST = "/api/v1/router/client-list"
NETWORKS = {"orvane": "192.168.0", "tesmir": "192.168.2"}
NO_AGENTS = {"result": 0, "version": 1, "agentInfo": []}


def client(number: int) -> str:
    return f"02:00:00:00:01:{number:02X}"


def satellites(document) -> dict[str, list[str]]:
    return {key: [row["macAddress"] for row in rows] for key, rows in document.items() if key.startswith("easyMesh")}


def macs_of(text: str) -> set[str]:
    return {mac.upper() for mac in re.findall(r"02:00:00:00:01:[0-9A-Fa-f]{2}", text)}


@pytest.mark.parametrize("brand", NETWORKS)
def test_a_controller_lists_its_agents(live, brand):
    a = live(brand=brand, mode="controller", agents=4).get(AGENT_INFO)
    assert a.encrypted and (a.json["result"], a.json["version"]) == (0, 1)
    rows = [(row["agentDeviceNumber"], row["model"], row["ipv4Address"], row["connectionType"]) for row in a.json["agentInfo"]]
    at = NETWORKS[brand]
    # The walk is depth first, and the third agent hangs below the second; the fourth has a cable.
    assert rows == [(1, "satellite-1", f"{at}.11", 5), (2, "satellite-2", f"{at}.12", 5),
                    (3, "satellite-3", f"{at}.13", 5), (4, "satellite-4", f"{at}.14", 0)]
    agents = {row["model"]: row for row in a.json["agentInfo"]}
    assert agents["satellite-3"]["connectParentMacAddress"] == agents["satellite-2"]["macAddress"]
    assert agents["satellite-4"]["connectParentMacAddress"] == agents["satellite-1"]["connectParentMacAddress"]


@pytest.mark.parametrize("brand", NETWORKS)
def test_a_controllers_clients_stand_behind_their_units(live, brand):
    a = live(brand=brand, mode="controller", agents=2, clients=9).get(CLIENT_LIST)
    assert a.encrypted and a.json["result"] == 0
    assert list(a.json) == ["result", "numOfClient", "clientList", "easyMesh01", "easyMesh02"]
    own = {row["macAddress"]: (row["connectionType"], row["rssi"]) for row in a.json["clientList"]}
    assert own == {client(0): (0, 0), client(3): (1, 43), client(6): (2, 46)}
    assert a.json["easyMesh01"] == [{"macAddress": client(1), "connectionType": 2, "rssi": "0"},
                                    {"macAddress": client(4), "connectionType": 3, "rssi": "0"},
                                    {"macAddress": client(7), "connectionType": 1, "rssi": "0"}]
    assert satellites(a.json)["easyMesh02"] == [client(2), client(5), client(8)]
    assert a.json["numOfClient"] == 9


@pytest.mark.parametrize("brand", NETWORKS)
def test_an_agent_lists_its_own_clients_and_no_agents(live, brand):
    router = live(brand=brand, mode="agent", clients=4)
    assert router.get(AGENT_INFO).json == NO_AGENTS
    a = router.get(CLIENT_LIST)
    assert a.encrypted
    assert {row["macAddress"]: row["connectionType"] for row in a.json["clientList"]} == {
        client(1): 1, client(2): 2, client(3): 3, client(0): 0}
    assert a.json["numOfClient"] == 4


def test_a_controller_without_agents_has_its_own_clients(live):
    router = live(mode="controller", agents=0, clients=4)
    assert router.get(AGENT_INFO).json == NO_AGENTS
    a = router.get(CLIENT_LIST)
    assert satellites(a.json) == {}
    assert len(a.json["clientList"]) == a.json["numOfClient"] == 4


def test_without_a_mesh_the_list_has_the_attached_clients(live):
    router = live(mode="router", clients=4)
    assert router.get(AGENT_INFO).json == NO_AGENTS
    assert router.get(CLIENT_LIST).json["numOfClient"] == 4


def test_the_sources_of_a_mesh_agree(live):
    router = live(mode="controller", agents=15, clients=99)
    state = {name: macs_of(router.root.read(path)) for name, path in [
        ("dump", "/router/state/topology"), ("arp", "/router/state/clients"), ("bridge", "/router/state/bridge-macs"),
        ("wifi", "/router/state/wifi-clients"), ("leases", "/tmp/dhcp.leases")]}
    everybody = {client(number) for number in range(99)}
    assert state["dump"] == state["arp"] == state["bridge"] == state["leases"] == everybody
    assert state["wifi"] == {client(number) for number in range(16, 99, 16)}  # the first of the router's own has a cable
    a = router.get(CLIENT_LIST).json
    assert sorted(satellites(a)) == [f"easyMesh{number:02d}" for number in range(1, 16)]
    listed = {row["macAddress"] for row in a["clientList"]}.union(*satellites(a).values())
    assert listed == everybody and a["numOfClient"] == 99
