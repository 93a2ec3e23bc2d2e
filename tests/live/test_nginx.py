"""Through nginx, with the packaged locations: what a web server that starts no responder changes, which is little."""

import pytest

LAN = "/api/v1/lan"


@pytest.fixture
def router(live):
    return live(web_server="nginx")


def test_a_document_is_read_changed_and_read_again(router):
    before = router.get(LAN)
    assert before.encrypted and before.headers["content-type"] == "application/json" and before.json["result"] == 0
    answer = router.post(LAN, {"lanIpv4Address": "192.168.5.1", "lanIpv4SubMask": "255.255.255.0", "globalIpProtectionEnable": 1})
    assert answer.json == {"result": 0, "version": 1, "waitTime": 60}
    assert router.option("network.lan.ipaddr") == "192.168.5.1"


def test_what_is_no_document_or_no_route(router):
    refused = router.post(LAN, '{"lanIpv4Address": "192.168.5.1"}', plain=True)
    assert (refused.headers["content-type"], refused.body) == ("text/plain", b"decrypt error")
    for uri in (LAN + "?x=1", LAN + "/", "/api/v1/%6can", "/api/v1/./lan"):  # compared as sent
        answer = router.get(uri)
        assert answer.status == 502 and b"result" not in answer.body


def test_a_document_of_3_megabytes_is_taken_and_one_of_5_is_not(router):
    document = {"filler": "x" * 2_500_000, "lanIpv4Address": "192.168.0.0", "lanIpv4SubMask": "255.255.255.0"}
    assert router.post(LAN, document).json == {"result": 1}  # the last keys were read: a network's address
    assert router.post(LAN, "x" * 5_000_000, plain=True).status == 413


def test_a_backup_is_fetched_and_restored(router):
    backup = router.post("/api/v1/system/config/backup", b"", plain=True)
    assert backup.headers["content-type"] == "application/octet-stream"
    assert router.post("/api/v1/system/config/restore", backup.body, plain=True).json["result"] == 0


def test_an_image_of_20_megabytes_reaches_the_router_whole(router):
    image = bytes(range(256)) * (20 * 4096)
    answer = router.post("/api/v1/system/firmware", image, plain=True)
    assert answer.status == 200 and "result" in answer.json
    assert "/usr/sbin/tesmirupg.sh" in " ".join(router.calls())
