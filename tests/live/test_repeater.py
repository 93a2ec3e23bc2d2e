"""The repeater's routes through the web server: a walk from the scan to the loss and the return of the uplink."""

import json
import os
import re
from pathlib import Path

import pytest

from waits import wait_for, wait_until

CONNECT = "/api/v1/repeater/connect"
RESULT = "/api/v1/repeater/wifiresult"
SURVEY = "/api/v1/wireless/sitesurvey"
OK = {"result": 0, "version": 1, "waitTime": 80}
KEY = "upstream-key-1234"

LOST = "hostapd_cli -i mld6 -p /var/run/hostapd-wifi2 disable"
RETURNED = "ifconfig br-lan up"


@pytest.fixture
def repeater(live):
    """A repeater whose program's waits pass at once, as those of its monitor would take minutes."""
    return live(mode="re", uplink="good", fast_time=os.environ["FAST_TIME_LIB"])


def upstream(router, state):
    router.root.write("/router/state/uplink", state + "\n")


def request(**changes):
    return {"ssid": "Upstream-5G", "bssid": "00:11:22:33:44:51", "frequency": 2, "encryptType": 2, "encryptKey": KEY,
            "multiRuEnable": 1, "multiLinkOperationEnable": 0, "tryConnectOrSettingRepeater": 0} | changes


def try_connect(router, **changes):
    router.root.remove("/router/state/stations")
    assert router.post(CONNECT, request(**changes)).json == OK
    wait_until(lambda: router.root.exists("/router/state/stations"), "the restart of Wi-Fi")


def connect_result(router):
    return router.get(RESULT).json["wifiConnectResult"]


def test_an_uplink_is_found_joined_lost_and_found_again(repeater):
    found = {entry["essid"]: entry for entry in repeater.get(SURVEY).json["wifiApList"]}
    assert list(found) == ["Upstream-2G", "Upstream-MLO", "Cafe-Free-Wifi", "Upstream-5G", "Neighbour", "Upstream-6G", "OWE-Cafe"]
    entry = found["Upstream-5G"]
    assert entry == {"bssid": "00:11:22:33:44:51", "band": 2, "wirelessProduct": 4, "channel": 36, "rssi": 63,
                     "essid": "Upstream-5G", "security": 8}

    try_connect(repeater, ssid=entry["essid"], bssid=entry["bssid"], frequency=entry["band"], encryptKey="not-the-key")
    assert connect_result(repeater) == 2
    assert repeater.option("repeater.repeater_band.status") == "fail"
    assert repeater.post(CONNECT, request(tryConnectOrSettingRepeater=1)).json == OK  # undone
    assert "uci set dhcp.lan.ignore=1" not in repeater.calls()

    try_connect(repeater, ssid=entry["essid"], bssid=entry["bssid"], frequency=entry["band"])
    assert connect_result(repeater) == 0
    report = repeater.get(CONNECT).json
    assert (report["result"], report["ssid"], report["bssid"], report["frequency"]) == (0, "Upstream-5G", "00:11:22:33:44:51", 2)
    assert (report["encryptKey"], report["encryptType"], report["multiRuEnable"]) == (KEY, 2, 1)
    assert report["5gMacAddr"] == "00:90:fe:12:34:13"

    assert repeater.post(CONNECT, request(tryConnectOrSettingRepeater=1)).json == OK
    assert repeater.option("network.lan.proto") == "dhcp"
    assert [repeater.option(f"wireless.{ap}.disabled") for ap in ("ath02", "ath12", "ath22")] == ["0", "0", "0"]
    wait_for(repeater, RETURNED)

    upstream(repeater, "lost")
    wait_for(repeater, LOST)
    assert connect_result(repeater) == 2
    assert "Upstream-5G" not in [e["essid"] for e in repeater.get(SURVEY).json["wifiApList"]]
    upstream(repeater, "good")
    wait_for(repeater, RETURNED, 2)
    assert connect_result(repeater) == 0


def test_a_multi_link_uplink_is_joined(repeater):
    try_connect(repeater, ssid="Upstream-MLO", multiLinkOperationEnable=3)
    assert connect_result(repeater) == 0
    report = repeater.get(CONNECT).json
    assert (report["result"], report["ssid"], report["bssid"], report["frequency"], report["multiLinkOperationEnable"]) == (
        0, "Upstream-MLO", "00:11:22:33:55:50", 0, 3)
    assert [report[key] for key in ("bssidmlo24g", "bssidmlo5g", "bssidmlo6g")] == [f"00:90:fe:12:34:7{n}" for n in range(3)]
    assert repeater.option("wireless.mld7.mld_ssid") == "Upstream-MLO"


def test_an_upstream_that_refuses_the_key_is_not_joined(live):
    router = live(mode="re", uplink="wrong-key")
    try_connect(router)
    assert connect_result(router) == 2


@pytest.mark.parametrize("text", ["Bob's", "$(touch /tmp/pwned)", "\";touch /tmp/pwned;'", "a\\b\nc", "日本語 🛜"])
def test_hostile_texts_arrive_whole(live, text):
    router = live(mode="re")
    try_connect(router, ssid=text, encryptKey=text, bssid="';reboot;'")
    assert router.option("wireless.ath13.ssid") == text
    assert router.option("wireless.ath13.key") == text
    report = router.get(CONNECT).json
    assert (report["ssid"], report["encryptKey"]) == (text, text)
    assert not router.root.exists("/tmp/pwned")


def test_requests_that_are_none_are_refused(live):
    router = live(mode="re")
    for body in (None, "hello", "[]", {}, request(multiRuEnable=2), request(ssid="x" * 33)):
        assert router.post(CONNECT, body).json == {"result": 1, "version": 1, "waitTime": 20}


def documented(kind, route):
    """The example of docs/api/repeater.md."""
    text = (Path(__file__).resolve().parents[2] / "docs" / "api" / "repeater.md").read_text()
    return json.loads(re.search(rf"```json {kind} {re.escape(route)}\n(.*?)```", text, re.S)[1])


def test_the_documented_examples_hold(live):
    router = live(mode="re")
    listed = router.get(SURVEY).json
    example = documented("answer", f"GET {SURVEY}")
    assert listed | {"wifiApList": [e for e in listed["wifiApList"] if e["essid"] == "Upstream-5G"]} == example
    router.root.remove("/router/state/stations")
    assert router.post(CONNECT, documented("request", f"POST {CONNECT}")).json == documented("answer", f"POST {CONNECT}")
    wait_until(lambda: router.root.exists("/router/state/stations"), "the restart of Wi-Fi")
    assert router.get(RESULT).json == documented("answer", f"GET {RESULT}")
    assert router.get(CONNECT).json == documented("answer", f"GET {CONNECT}")
