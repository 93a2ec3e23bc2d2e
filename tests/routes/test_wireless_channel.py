"""GET /api/v1/wireless/channel and GET /api/v1/repeater/channel."""

import itertools

import pytest
from routes.wireless_state import mesh

WIRELESS = "/api/v1/wireless/channel"
REPEATER = "/api/v1/repeater/channel"
RADIOS = ("wifi0", "wifi1", "wifi2")
CODES = {20: 0, 40: 1, 80: 4, 160: 5, 320: 6}


def info(channel, width, freq=5180):
    return (f"Interface wifi1\n\tifindex 7\n\twdev 0x1\n\taddr 00:90:fe:12:34:61\n\ttype managed\n\twiphy 1\n"
            f"\tchannel {channel} ({freq} MHz), width: {width} MHz, center1: 5250 MHz\n\ttxpower 24.00 dBm\n")


def operating(router, *channels):
    for radio, (channel, width) in zip(RADIOS, channels):
        router.tool("iw", "dev", radio, "info", out=info(channel, width))


def bands(router):
    return router.get(WIRELESS).json["wirelessChannel"]


def test_the_router_screen_has_three_bands(router):
    operating(router, (6, 40), (36, 160), (37, 320))
    router.set("wireless.wifi1.channel", "100")
    a = router.get(WIRELESS)
    assert a.encrypted and a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert a.text == (
        '{ "result": 0, "version": 1, "wirelessChannel": [ '
        '{ "band": 1, "setChannel": 0, "currentChannel": 6, "setChannelWidth": 1, "currentChannelWidth": 1 }, '
        '{ "band": 2, "setChannel": 100, "currentChannel": 36, "setChannelWidth": 5, "currentChannelWidth": 5 }, '
        '{ "band": 3, "setChannel": 0, "currentChannel": 37, "setChannelWidth": 6, "currentChannelWidth": 6 } ] }')
    assert router.commands() == ["iw dev wifi0 info", "iw dev wifi1 info", "iw dev wifi2 info"]


def test_a_disabled_radio_is_minus_one_whatever_iw_says(router):
    operating(router, (6, 40), (36, 160), (37, 320))
    for radio in RADIOS:
        router.set(f"wireless.{radio}.disabled", "1")
    assert [(b["setChannel"], b["currentChannel"]) for b in bands(router)] == [(-1, -1)] * 3


def test_configured_widths(router):
    for htmode, code in (
            ("HT20", 0), ("EHT20", 0), ("HT40", 1), ("EHT40", 1), ("EHT40+", 1), ("EHT40-", 1), ("HT80", 4),
            ("EHT80", 4), ("EHT160", 5), ("VHT160", 5), ("EHT320", 6)):
        for radio in RADIOS:
            router.set(f"wireless.{radio}.htmode", htmode)
        assert [b["setChannelWidth"] for b in bands(router)] == [code] * 3, htmode
    assert not router.logged("get band info error!")


@pytest.mark.parametrize("htmode", ["HE80", None])
def test_a_configured_width_that_is_unknown_is_zero(router, htmode):
    for radio in RADIOS:
        router.set(f"wireless.{radio}.htmode", htmode)
    assert [b["setChannelWidth"] for b in bands(router)] == [0] * 3
    assert router.logged("current not found!", priority=3) == (htmode is not None)
    assert router.logged("get band info error!", priority=7)


def test_operating_widths(router):
    for width in (20, 40, 80, 160, 320, 10, 0):
        operating(router, (6, width), (36, width), (37, width))
        assert [b["currentChannelWidth"] for b in bands(router)] == [CODES.get(width, 0)] * 3
        assert router.logged(f"width value {width} not found!", priority=3) == (width not in CODES)
    assert router.logged("get flashchannel info error!", priority=7)


@pytest.mark.parametrize("answer", [
    {"exit": 1}, {"out": "\tchannel 36\n"}, {"out": "\tchannel x (5180 MHz), width: 80 MHz\n"},
    {"out": "Interface wifi0\n\ttype managed\n\ttxpower 0.00 dBm\n"}, {"out": "\xff\x00channel width:\n"}])
def test_an_operating_channel_that_cannot_be_read_is_zero(router, answer):
    router.tool("iw", **answer)
    assert [(b["currentChannel"], b["currentChannelWidth"]) for b in bands(router)] == [(0, 0)] * 3
    assert router.logged("Failed to get channel width via iw cmd for interface wifi2", priority=3)


def test_without_iw_the_configured_values_are_shown(router):
    router.tool("iw", missing=True)
    assert [(b["setChannel"], b["setChannelWidth"], b["currentChannel"]) for b in bands(router)] == [
        (0, 1, 0), (0, 5, 0), (0, 6, 0)]


@pytest.mark.parametrize("option,message", [
    ("wireless.wifi0.disabled", "Failed to get disabled status for interface wifi0"),
    ("wireless.wifi0.channel", "Failed to get channel for interface wifi0"),
    ("button_mesh.easymesh.role", "Failed to get meshRole")])
def test_a_configured_channel_that_cannot_be_read_is_zero(router, option, message):
    router.set(option, None)
    assert bands(router)[0]["setChannel"] == 0
    assert router.logged(message, priority=3)
    assert router.logged("get channel info error!", priority=7)


def test_without_any_package_the_answer_holds_zeros(bare_router):
    assert [set(b.values()) for b in bands(bare_router)] == [{band, 0} for band in (1, 2, 3)]


# The configured channel of a unit whose channels its uplink decides.


def test_who_decides_the_channel(router):
    router.set("wireless.wifi1.channel", "48")
    operating(router, (6, 40), (149, 160), (37, 320))
    for role, onboarded, status in itertools.product((0, 1, 2), ("0", "1"), ("success", "fail")):
        mesh(router, role, onboarded=onboarded)
        router.set("repeater.repeater_band.status", status)
        from_iw = (role == 2 and onboarded == "1") or (role == 0 and status == "success")
        expected = 149 if from_iw else 0 if role == 2 else 48
        assert bands(router)[1]["setChannel"] == expected, (role, onboarded, status)


@pytest.mark.parametrize("text", ["1000", "", "12345"])
def test_an_operating_channel_of_a_wrong_length_is_refused(router, text):
    mesh(router, 2, onboarded=1)
    operating(router, (6, 40), (text, 160), (37, 320))
    assert [b["setChannel"] for b in bands(router)] == [6, 0, 37]
    assert router.logged(f"Channel length invalid: {len(text)} (interface=wifi1)", priority=3)
    assert router.logged("Failed to parse channel from iw output (interface=wifi1)", priority=3)
    assert router.logged("Failed to get channel via iw cmd for interface wifi1", priority=3)


def test_an_iw_that_fails_behind_its_output_is_not_believed(router):
    mesh(router, 2, onboarded=1)
    router.tool("iw", "dev", "wifi1", "info", out=info(36, 80), exit=3)
    assert bands(router)[1]["setChannel"] == 0
    assert router.logged("Command execute failed: iw dev wifi1 info (exit status=3)", priority=3)


# The repeater screen.


def current(document):
    return [document[f"current{band}Channel"] for band in ("2g", "5g", "6g")]


def widths(document):
    return [document[f"current{band}ChannelWidth"] for band in ("2g", "5g", "6g")]


def test_the_repeater_screen_has_its_keys_in_their_order(router):
    operating(router, (6, 40), (36, 160), (37, 320))
    a = router.get(REPEATER)
    assert a.encrypted and a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert a.text == (
        '{ "result": 0, "version": 1, "connectBand": 2, "current2gChannel": 6, "current5gChannel": 36, '
        '"current6gChannel": 37, "current2gChannelWidth": 1, "current5gChannelWidth": 5, "current6gChannelWidth": 6 }')
    assert router.commands() == ["iw dev wifi0 info", "iw dev wifi1 info", "iw dev wifi2 info"]


def test_the_connected_band(router):
    operating(router, (6, 40), (36, 160), (37, 320))
    for mlo, band, code in (
            ("0", "2.4GHz", 1), ("0", "5GHz", 2), ("0", "6GHz", 3), ("0", "0", 0), ("0", "5GHz,6GHz", 2),
            ("1", "6GHz", 4), ("2", "6GHz", 5), ("3", "6GHz", 6), ("4", "6GHz", 0)):
        router.set("repeater.repeater_band.mlo", mlo)
        router.set("repeater.repeater_band.repeater_select_band", band)
        assert router.get(REPEATER).json["connectBand"] == code, (mlo, band)


def test_only_an_agent_that_has_not_joined_has_no_channels(router):
    operating(router, (6, 40), (36, 160), (37, 320))
    for role, onboarded in itertools.product((0, 1, 2), ("0", "1", None)):
        mesh(router, role)
        router.set("repacd.MAPConfig.OnboardingDone", onboarded)
        router.forget_calls()
        logged = len(router.log())
        document = router.get(REPEATER).json
        if role == 2 and onboarded == "0":
            assert (current(document), widths(document)) == (["---"] * 3, [0] * 3)
            assert router.commands() == []
        else:
            assert (current(document), widths(document)) == ([6, 36, 37], [1, 5, 6])
        texts = [line.text for line in router.log()[logged:]]
        assert ("get OnboardingDone failed" in texts) == (onboarded is None)


@pytest.mark.parametrize("option,message", [
    ("repeater.repeater_band.mlo", "Failed to get the connectBand_str option for repeater.repeater_band.mlo"),
    ("repeater.repeater_band.repeater_select_band", "get repeater_select_band failed"),
    ("button_mesh.easymesh.enable", "Failed to get meshRole"),
    ("button_mesh.easymesh.role", "Failed to get meshRole")])
def test_what_cannot_be_read_answers_result_1(router, option, message):
    operating(router, (6, 40), (36, 160), (37, 320))
    router.set(option, None)
    a = router.get(REPEATER)
    assert a.encrypted and a.text == '{"result": 1}'
    assert router.logged(message, priority=3)


@pytest.mark.parametrize("radio", RADIOS)
def test_a_radio_that_tells_no_channel_answers_result_1(router, radio):
    operating(router, (6, 40), (36, 160), (37, 320))
    router.tool("iw", "dev", radio, "info", out="Interface\n\ttype managed\n\ttxpower 0.00 dBm\n")
    a = router.get(REPEATER)
    assert a.encrypted and a.text == '{"result": 1}'
    assert router.logged(f"Failed to get flash channel and width info for interface {RADIOS.index(radio)}", priority=3)


@pytest.mark.parametrize("break_it", [
    lambda router: router.tool("iw", missing=True), lambda router: router.tool("iw", signal=9),
    lambda router: router.no_config("repeater", "button_mesh")])
def test_with_a_dead_tool_or_package_the_answer_is_result_1(router, break_it):
    break_it(router)
    assert router.get(REPEATER).text == '{"result": 1}'
    assert router.alive()
