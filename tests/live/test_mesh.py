"""The mesh, as a person sees it: agents and clients through the web server with the real jose."""


def test_the_agents_and_the_clients_of_a_mesh_agree(live):
    router = live(mode="controller", agents=3, mesh_clients=6, clients=2)
    agents = router.get("/api/v1/mesh/agent-info")
    assert agents.encrypted
    assert [row["model"] for row in agents.json["agentInfo"]] == ["satellite-1", "satellite-2", "satellite-3"]
    clients = router.get("/api/v1/router/client-list")
    assert clients.encrypted and clients.json["result"] == 0
    behind = [row["macAddress"] for key, rows in clients.json.items() if key.startswith("easyMesh") for row in rows]
    assert len(behind) == 6 and len(set(behind)) == 6
    assert not set(behind) & {row["macAddress"] for row in clients.json["clientList"]}


def test_without_a_mesh_the_list_has_the_attached_clients(live):
    router = live(mode="router", clients=4)
    assert router.get("/api/v1/mesh/agent-info").json == {"result": 0, "version": 1, "agentInfo": []}
    assert router.get("/api/v1/router/client-list").json["numOfClient"] == 4
