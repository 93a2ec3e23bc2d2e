"""GET /wireless/sitesurvey: the scans of the three bands."""

import json
import os
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parent))

from kit.hostile import HOSTILE
from repeater_setup import SURVEY

FIXTURES = Path(os.environ["ROUTER_API_BUILD"]) / "tests/unit/scans"  # tests/unit/repeater/make_scans.py
NAMES = ("2g", "5g", "6g")
FREQ = (2412, 5180, 5955)


def bss(band, ssid="net", mac="00:11:22:33:44:55", extra=""):
    return f"BSS {mac}(on mld{band + 1})\n\tfreq: {FREQ[band]}\n\tsignal: -60.00 dBm\n\tSSID: {ssid}\n{extra}"


def entry(band, ssid="net"):
    return {"bssid": "00:11:22:33:44:55", "band": band + 1, "channel": (1, 36, 1)[band], "wirelessProduct": band + 4, "rssi": 50,
            "essid": ssid, "security": 1}


def scans(router, *outputs):
    for band, output in enumerate(outputs):
        router.tool("iw", "dev", f"mld{band + 1}", "scan", out=output)


def command(band):
    return f"iw dev mld{band + 1} scan flush"


def test_full_scans_of_the_three_bands_are_listed(router):
    scans(router, *((FIXTURES / f"scan_{name}.txt").read_bytes() for name in NAMES))
    expected = [json.loads((FIXTURES / f"scan_{name}.json").read_text()) for name in NAMES]
    a = router.get(SURVEY)
    assert a.encrypted and a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert a.json == {"result": 0, "version": 1, "waitTime": 0, "wifiApList": sum(expected, [])}
    assert min(map(len, expected)) > 80
    router.assert_calls(*map(command, range(3)))


def test_the_answer_is_spaced_as_clients_know_it(router):
    scans(router, bss(0), "BSS\n", "BSS\n")
    assert router.get(SURVEY).text == (
        '{ "result": 0, "version": 1, "waitTime": 0, "wifiApList": [ { "bssid": "00:11:22:33:44:55", "band": 1, "channel": 1, '
        '"wirelessProduct": 4, "rssi": 50, "essid": "net", "security": 1 } ] }')


def test_a_scan_that_is_busy_is_tried_again_after_two_seconds(router):
    scans(router, bss(0), "", bss(2))
    router.tool("iw", "dev", "mld2", "scan", err="command failed: Device or resource busy (-16)\n", exit=240,
                then=[{"out": "scan aborted!\n"}, {"out": bss(1)}])
    assert router.get(SURVEY).json["wifiApList"] == [entry(0), entry(1), entry(2)]
    router.assert_calls(command(0), command(1), "sleep 2", command(1), "sleep 2", command(1), command(2))
    for attempt in (1, 2):
        assert router.logged(f"No BSS blocks found in command output: iw dev mld2 scan flush & (attempt {attempt}/15)", priority=3)


def test_a_band_without_access_points_is_left_out_after_15_tries(router):
    scans(router, "", bss(1), bss(2))
    assert router.get(SURVEY).json == {"result": 0, "version": 1, "waitTime": 0, "wifiApList": [entry(1), entry(2)]}
    router.assert_calls(*[command(0), "sleep 2"] * 15, command(1), command(2))
    assert router.logged("(attempt 15/15)", priority=3)
    assert router.logged("Failed to get BSS information after 15 attempts for command: iw dev mld1 scan flush &", priority=3)


def test_a_scan_that_hangs_is_not_tried_again(router):
    scans(router, bss(0), "", bss(2))
    router.tool("iw", "dev", "mld2", "scan", hang=True)
    assert router.get(SURVEY).json["wifiApList"] == [entry(0), entry(2)]
    router.assert_calls(command(0), command(1), command(2))
    assert router.logged("Failed to get BSS information in time for command: iw dev mld2 scan flush &", priority=3)


def test_a_dead_iw_leaves_an_empty_list(router):
    router.tool("iw", missing=True)
    assert router.get(SURVEY).json == {"result": 0, "version": 1, "waitTime": 0, "wifiApList": []}
    assert router.commands() == ["sleep 2"] * 45


def test_a_block_that_is_not_shown_ends_the_tries(router):
    scans(router, bss(0, ssid=""), bss(1), bss(2))
    assert router.get(SURVEY).json["wifiApList"] == [entry(1), entry(2)]
    assert "sleep 2" not in router.commands()


def test_a_hidden_network_is_never_listed(router):
    scans(router, bss(0, "") + bss(0, "\\x00\\x00") + bss(0, "seen"), bss(1), bss(2))
    assert router.get(SURVEY).json["wifiApList"][0] == entry(0, "seen")


def test_an_access_point_of_another_band_is_dropped(router):
    scans(router, bss(1) + bss(0), bss(1), bss(2))
    assert router.get(SURVEY).json["wifiApList"] == [entry(0), entry(1), entry(2)]


def test_an_escaped_blank_is_reported_as_a_blank(router):
    scans(router, bss(0, "a\\x20b"), bss(1), bss(2))
    assert router.get(SURVEY).json["wifiApList"][0]["essid"] == "a b"


@pytest.mark.parametrize("signal, rssi", [("-90.00", 0), ("-30.00", 100), ("-60.00", 50), ("-110.00", 0), ("0.00", 100), ("-45", 75)])
def test_the_signal_is_scaled(router, signal, rssi):
    scans(router, bss(0).replace("-60.00", signal), bss(1), bss(2))
    assert router.get(SURVEY).json["wifiApList"][0]["rssi"] == rssi


def test_a_6g_network_with_a_pre_shared_key_only_is_reported_as_open(router):
    rsn = "\tRSN:\t * Version: 1\n\t\t * Group cipher: CCMP\n\t\t * Pairwise ciphers: CCMP\n\t\t * Authentication suites: PSK\n"
    scans(router, bss(0, extra=rsn), bss(1, extra=rsn), bss(2, extra=rsn))
    assert [e["security"] for e in router.get(SURVEY).json["wifiApList"]] == [4, 4, 1]


@pytest.mark.parametrize("name", [n for n, text in HOSTILE.items() if text.strip() and len(text) < 128 and n not in ("newline", "carriage-return", "backslashes")])
def test_what_an_access_point_calls_itself_is_only_a_name(router, name):
    text = HOSTILE[name]
    scans(router, bss(0, text), bss(1), bss(2))
    assert router.get(SURVEY).json["wifiApList"][0]["essid"] == text.encode("utf-8", "surrogateescape").decode("utf-8", "replace")
    router.assert_nothing_ran()


@pytest.mark.parametrize("octets", [bytes(range(224, 256)), "日本語ワイファイあ".encode() + b"\xe6\x97", "🛜".encode() * 8, b"\x01\x1b\n\r" * 8,
                                    b"\xed\xa0\x80\xc0\xaf" + b"\xf5" * 27], ids=repr)
def test_32_octets_of_anything_are_shown_as_a_text(router, octets):
    scans(router, bss(0, "".join(f"\\x{octet:02x}" for octet in octets)), bss(1), bss(2))
    a = router.get(SURVEY)
    a.text.encode()  # valid UTF-8
    assert a.json["wifiApList"][0]["essid"] == octets.decode("utf-8", "replace")


def test_a_name_is_cut_to_127_bytes_of_whole_characters(router):
    scans(router, bss(0, "あ" * 50), bss(1, "x" + "\\xe3\\x81\\x82" * 50), bss(2, "y" * 200))
    assert [e["essid"] for e in router.get(SURVEY).json["wifiApList"]] == ["あ" * 42, "x" + "あ" * 42, "y" * 127]


def test_garbage_is_no_scan(router):
    garbage = bytes(range(256)) * 64
    scans(router, garbage, b"\0" * 5000, b"BSS" * 5000)
    router.get(SURVEY)
    assert router.alive()


def test_a_scan_may_come_without_a_last_line_end(router):
    scans(router, bss(0).rstrip("\n"), bss(1), bss(2).replace("\n", "\r\n"))
    assert router.get(SURVEY).json["wifiApList"] == [entry(0), entry(1), entry(2)]
