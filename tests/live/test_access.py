"""DHCP, firewall switches, time, maintenance, security service, parental control and port forwarding, live."""

import pytest


@pytest.mark.parametrize("brand", ["orvane", "tesmir"])
def test_every_route_answers_encrypted(live, brand):
    router = live(brand=brand, clients=3)
    for uri in ("dhcp", "dhcp/client-list", "security/passthrough", "security/protect", "ntp", "remote-maintenance",
                "fsecure_sense", "parental-control", "port-open"):
        a = router.get("/api/v1/" + uri)
        expected = 1 if (uri, brand) == ("fsecure_sense", "orvane") else 0
        assert a.encrypted and a.json["result"] == expected, uri
    assert router.get("/api/v1/dhcp/client-list").json["clientCount"] == 3


def test_what_is_posted_is_read_back(live):
    router = live()
    pool = {"enable": 1, "leaseTime": 48, "startAddress": "192.168.0.50", "endAddress": "192.168.0.99", "fixedIpCount": 1,
            "fixedIpAllocation": [{"ipAddress": "192.168.0.60", "macAddress": "AA:BB:CC:DD:EE:01"}]}
    assert router.post("/api/v1/dhcp", pool).json["result"] == 0
    assert router.get("/api/v1/dhcp").json == {"result": 0, "version": 1, **pool}

    for uri, body in (("security/passthrough", {"pptpEnable": 1, "ipsecEnable": 0}),
                      ("security/protect", {"dosEnable": 0, "spiEnable": 1}), ("ntp", {"enable": 1, "server": "ntp.example"})):
        assert router.post("/api/v1/" + uri, body).json["result"] == 0, uri
        assert router.get("/api/v1/" + uri).json == {"result": 0, "version": 1, **body}, uri

    child = {"explain": "Bob's tablet; $(x)", "macAddress": "AA:BB:CC:DD:EE:02", "startTime": "07:00", "endTime": "20:00"}
    assert router.post("/api/v1/parental-control", {"enable": 1, "parentalControls": [child]}).json["result"] == 0
    assert router.get("/api/v1/parental-control").json["parentalControls"] == [{"id": 0, **child}]
    assert router.post("/api/v1/parental-control/delete", {"parentalControls": [{"id": 0}]}).json["result"] == 0
    assert router.get("/api/v1/parental-control").json["parentalControls"] == []

    rule = {"settingName": "web", "ipAddress": "192.168.0.60", "protocol": 1, "lanPortNum": 80, "wanPortNum": 8080}
    assert router.post("/api/v1/port-open", {"portOpenSettings": [rule]}).json["result"] == 0
    assert router.get("/api/v1/port-open").json["portOpenSettings"] == [{"id": 0, **rule}]
    assert router.post("/api/v1/delete-port", {"portOpenSettings": [{"id": 0}]}).json["result"] == 0

    assert router.post("/api/v1/remote-maintenance", {"enable": 1, "detailInfoSendEnable": 0}).json["result"] == 0


def test_the_security_service_is_switched_on_its_brand(live):
    router = live(brand="tesmir")
    assert router.post("/api/v1/fsecure_sense", {"enable": 0}).json["result"] == 0
    assert router.option("fsecure.sense.disabled") == "1"


def test_the_security_service_is_reported_as_it_stands(live):
    assert live(brand="tesmir").get("/api/v1/fsecure_sense").json == {
        "result": 0, "version": 1, "enable": 0, "sense_ver": "2.1.0"}
    assert live(brand="tesmir", sense="absent").get("/api/v1/fsecure_sense").json == {
        "result": 0, "version": 1, "enable": -1}
    assert live(brand="tesmir", sense="busy").get("/api/v1/fsecure_sense").json == {"result": 2}


def test_a_running_update_agent_is_seen_in_the_process_list(live):
    assert live().get("/api/v1/remote-maintenance").json["result"] == 0
    router = live(update_agent=True)
    assert router.get("/api/v1/remote-maintenance").json == {"result": 2}
    assert router.get("/api/v1/parental-control").json["result"] == 0
