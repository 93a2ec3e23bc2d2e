"""POST /repeater/connect: what is refused, what fails, and hostile texts."""

import itertools

import pytest

from kit.hostile import HOSTILE
from repeater_setup import (APS, BRIDGE_MAC, CONNECT, MLO, MULTI_RU_OFF, OK, PACKAGES, STATIONS, UNUSABLE, commands,
                            finished_commands, follow, ifconfig, request, storing_unit, unit)  # noqa: F401 (fixtures)

# Failures.


def assert_refused(router, a, *messages):
    assert (a.text, a.encrypted) == (UNUSABLE, True)
    for message in messages:
        assert router.logged(message, priority=3), message


@pytest.mark.parametrize("frequency", [4, -1, 100])
def test_an_unknown_frequency_fails_after_the_last_connection_is_cleared(unit, frequency):
    unit.set("wireless.ath13", "wifi-iface")
    a = unit.post(CONNECT, request(frequency=frequency))
    assert_refused(unit, a, "set  wifi frequency param error", "SetWifiConnectInfoByBand error")
    unit.assert_calls(MULTI_RU_OFF, "uci set repeater.repeater_band.mlo=0")
    assert unit.option("wireless.ath13") is None


@pytest.mark.parametrize("ap", APS)
def test_an_unreadable_follow_flag_fails(unit, ap):
    unit.set(f"wireless.{ap}.ssid_change", None)
    a = unit.post(CONNECT, request())
    assert_refused(unit, a, f"get {ap} ssid_change error", "SetWifiConnectInfoByBand error")
    unit.assert_calls(MULTI_RU_OFF, "uci set repeater.repeater_band.mlo=0")


@pytest.mark.parametrize("variant, name", [(1, "SetMlo25GInfo"), (2, "SetMlo56GInfo"), (3, "SetMlo256GInfo")])
def test_an_unreadable_follow_flag_fails_a_multi_link(unit, variant, name):
    unit.set("wireless.ath12.ssid_change", None)
    a = unit.post(CONNECT, request(multiLinkOperationEnable=variant))
    assert_refused(unit, a, "get ath12 ssid_change error", f"{name} error", "SetWifiConnectInfoByMlo error")
    deleted = [f"uci delete wireless.{station}" for station in MLO[variant][0]]
    unit.assert_calls(MULTI_RU_OFF, "ifconfig br-lan", *deleted)


def test_an_unreadable_multi_link_state_fails(unit):
    unit.set("repeater.repeater_band.mlo", None)
    a = unit.post(CONNECT, request(multiLinkOperationEnable=1))
    assert_refused(unit, a, "get mlo band error", "SetWifiConnectInfoByMlo error")
    unit.assert_calls(MULTI_RU_OFF)


@pytest.mark.parametrize("how", [{"out": ""}, {"exit": 1}, {"out": "br-lan  Link encap:Ethernet\n"}])
def test_a_bridge_without_an_address_fails_a_multi_link(unit, how):
    unit.tool("ifconfig", "br-lan", **how)
    assert_refused(unit, unit.post(CONNECT, request(multiLinkOperationEnable=1)), "get br_lan mac error")
    unit.assert_calls(MULTI_RU_OFF, "ifconfig br-lan")


def test_a_dead_ifconfig_fails_both_ways(unit):
    unit.tool("ifconfig", missing=True)
    assert_refused(unit, unit.post(CONNECT, request()), "fgets ip addr error", "GetLanIpaddr error",
                   "SetNetworkParamInfoToConnect error", "SetWifiConnectInfoByBand error")
    assert_refused(unit, unit.post(CONNECT, request(multiLinkOperationEnable=2)), "get br_lan mac error")
    assert "uci set repeater.repeater_band.status=success" not in commands(unit)


def test_a_lan_without_an_ipv4_address_fails(unit):
    unit.tool("ifconfig", "br-lan", out=f"br-lan  Link encap:Ethernet  HWaddr {BRIDGE_MAC}\n  UP BROADCAST\n")
    assert_refused(unit, unit.post(CONNECT, request(multiLinkOperationEnable=1)), "fgets ip addr error",
                   "SetNetworkParamInfoToConnect error", "SetWifiConnectInfoByMlo error")


@pytest.mark.parametrize("address, dot", [("192", "first"), ("192.168", "second"), ("192.168.1", "third")])
def test_an_address_without_three_dots_fails(unit, address, dot):
    unit.tool("ifconfig", "br-lan", out=ifconfig(address))
    assert_refused(unit, unit.post(CONNECT, request()), f"Invalid IP address: no {dot} dot")
    assert commands(unit)[-1] == "uci set dhcp.lan.ignore=0"


def test_a_line_of_ifconfig_is_no_command(unit):
    unit.tool("ifconfig", "br-lan", out=ifconfig("1.2.3.4;touch${IFS}/tmp/pwned", "';touch${IFS}/tmp/pwned;'"))
    unit.post(CONNECT, request(multiLinkOperationEnable=1))
    unit.assert_nothing_ran()


def test_a_router_without_uci_answers_all_the_same(unit):
    unit.tool("uci", missing=True)
    assert unit.post(CONNECT, request()).text == OK
    unit.wait_for_call("/sbin/wifi", "up")


@pytest.mark.parametrize("tool", ["/sbin/wifi", "/etc/init.d/network", "/etc/init.d/dnsmasq"])
def test_a_script_that_fails_changes_no_answer(unit, tool):
    unit.tool(tool, exit=1)
    assert unit.post(CONNECT, request()).text == OK


# Requests.


def test_no_content_is_refused_and_leaves_all_as_it_is(unit):
    assert_refused(unit, unit.post(CONNECT), "request_body is null")
    unit.assert_calls()


@pytest.mark.parametrize("body", ["hello", "nul", "", " ", "{", '{"ssid":'])
def test_a_body_that_is_not_json_is_refused(unit, body):
    a = unit.post(CONNECT, body)
    assert_refused(unit, a, "parse rootJson error" if body else "request_body is null")
    unit.assert_calls()


@pytest.mark.parametrize("body", ["[]", "42", '"text"', "null", "true", "[{}]"])
def test_a_document_that_is_no_object_is_none(unit, body):
    assert_refused(unit, unit.post(CONNECT, body), "parse rootJson error")
    unit.assert_calls()


@pytest.mark.parametrize("body", ["{}", '{"ssid": "a"}'])
def test_a_body_that_is_no_request_is_refused(unit, body):
    assert_refused(unit, unit.post(CONNECT, body), "parse json data error")
    unit.assert_calls()


@pytest.mark.parametrize("key", list(request()))
def test_every_key_is_needed(unit, key):
    body = request()
    del body[key]
    told = "multiLinkOperationEnable" if key == "tryConnectOrSettingRepeater" else key
    assert_refused(unit, unit.post(CONNECT, body), f"parse {told} json error", "parse json data error")
    unit.assert_calls()


TEXT_KEYS = ("ssid", "bssid", "encryptKey")


def test_a_document_of_nulls_leaves_the_uplink_as_it_is(storing_unit):
    for section in (*STATIONS, "mld7"):
        storing_unit.set(f"wireless.{section}", "wifi-iface")
    before = {package: storing_unit.read(f"/etc/config/{package}") for package in PACKAGES}
    for value in (None, [], {}):
        assert_refused(storing_unit, storing_unit.post(CONNECT, dict.fromkeys(request(), value)), "parse ssid json error")
    assert {package: storing_unit.read(f"/etc/config/{package}") for package in PACKAGES} == before
    storing_unit.assert_calls()


@pytest.mark.parametrize("key", list(request()))
def test_a_member_of_another_kind_is_a_missing_one(unit, key):
    told = "multiLinkOperationEnable" if key == "tryConnectOrSettingRepeater" else key
    kinds = [None, [], {}, [1]] + ([True] if key in TEXT_KEYS else ["", "abc", "1x", 0.5])
    for value in kinds:
        assert_refused(unit, unit.post(CONNECT, request(**{key: value})), f"parse {told} json error")
    unit.assert_calls()


@pytest.mark.parametrize("key", TEXT_KEYS)
def test_a_text_that_cannot_be_stored_is_refused_before_the_last_connection_is_cleared(unit, key):
    for section in (*STATIONS, "mld7"):
        unit.set(f"wireless.{section}", "wifi-iface")
    before = unit.read("/etc/config/wireless")
    texts = ["\x01", "a\x1b[31m"] + (["00:11\n", "\r", "a\tb"] if key == "bssid" else [])
    for text, mlo in itertools.product(texts, (0, 3)):
        a = unit.post(CONNECT, request(**{key: text}, multiLinkOperationEnable=mlo))
        assert_refused(unit, a, f"{key} holds control characters", "parse json data error")
    assert unit.read("/etc/config/wireless") == before
    unit.assert_calls()


@pytest.mark.parametrize("key, name, longest", [("ssid", "ssid", 32), ("bssid", "bssid", 17), ("encryptKey", "password", 64)])
def test_texts_have_bounds(unit, key, name, longest):
    follow(unit, (0, 1, 0))
    assert_refused(unit, unit.post(CONNECT, request(**{key: "x" * (longest + 1)})), f"{name} string is too long")
    unit.assert_calls()
    assert unit.post(CONNECT, request(**{key: "x" * longest})).text == OK
    if key != "bssid":
        option = "ssid" if key == "ssid" else "key"
        assert f"uci set wireless.ath13.{option}={'x' * longest}" in finished_commands(unit, "/sbin/wifi", "up")


@pytest.mark.parametrize("value", [2, -1, 100])
def test_another_multi_ru_value_is_refused_before_anything_is_written(unit, value):
    assert_refused(unit, unit.post(CONNECT, request(multiRuEnable=value)), "multiRuEnable error")
    unit.assert_calls()


@pytest.mark.parametrize("value", [2, -1, 7])
def test_another_kind_of_call_changes_nothing_further(unit, value):
    assert unit.post(CONNECT, request(tryConnectOrSettingRepeater=value, multiRuEnable=1)).text == OK
    unit.assert_calls("uci set wireless.wifi1.dfs_puncture_en=1")


def test_a_request_is_told_in_the_log(unit):
    unit.post(CONNECT, request(tryConnectOrSettingRepeater=2))
    for line in ("ssid=Upstream,bssid=00:11:22:33:44:55", "frequency=2,encryptType=1",
                 "encryptKey=secret-key,multiRuEnable=0", "multiLinkOperationEnable=0,tryConnectOrSettingRepeater=2"):
        assert unit.logged(line, priority=7)


@pytest.mark.parametrize("body, message, function", [
    ("hello", "parse rootJson error", "handle_repeater_connect"),
    ({"ssid": "a"}, "parse bssid json error", "ParseRepeaterJsonData"),
    (request(multiRuEnable=2), "multiRuEnable error", "handle_repeater_connect"),
    (request(frequency=4), "set  wifi frequency param error", "SetWifiConnectInfoByBand"),
    (request(), "get ath02 ssid_change error", "SetWifiConnectInfoByBand"),
    (request(multiLinkOperationEnable=2), "get ath02 ssid_change error", "SetMlo56GInfo"),
    (request(multiLinkOperationEnable=2), "SetMlo56GInfo error", "SetWifiConnectInfoByMlo"),
    (request(multiLinkOperationEnable=2), "SetWifiConnectInfoByMlo error", "handle_repeater_connect")])
def test_messages_stand_under_the_names_of_the_functions_they_tell_of(unit, body, message, function):
    follow(unit, (0, 0, 0) if "frequency" in message else (None, 0, 0))
    unit.post(CONNECT, body)
    assert [line.function for line in unit.log() if message in line.text] == [function]


# Texts of the client.

SHORT = {name: text for name, text in HOSTILE.items()
         if 0 < len(text.encode("utf-8", "surrogateescape")) <= 64 and name != "control"}


@pytest.mark.parametrize("name", SHORT)
def test_hostile_texts_arrive_whole_and_do_nothing_else(unit, name):
    text = SHORT[name]
    follow(unit, (1, 1, 1))
    length = len(text.encode("utf-8", "surrogateescape"))
    ssid, bssid = text if length <= 32 else "Upstream", text if length <= 17 and "\n" not in text else ""
    assert unit.post(CONNECT, request(ssid=ssid, bssid=bssid, encryptKey=text)).text == OK
    unit.wait_for_call("/sbin/wifi", "up")
    arguments = [call.args for call in unit.calls("uci")]
    assert ("set", f"wireless.ath13.key={text}") in arguments
    assert ("set", f"wireless.ath13.ssid={ssid}") in arguments
    assert ("set", f"wireless.mld5.mld_ssid={ssid}") in arguments
    assert [args[1] for args in arguments if text in args[-1] and args[1].split("=")[0].split(".")[-1] not in ("key", "ssid", "mld_ssid")] == []

    unit.forget_calls()
    assert unit.post(CONNECT, request(ssid=ssid, encryptKey=text, multiLinkOperationEnable=3)).text == OK
    unit.wait_for_call("/sbin/wifi", "up")
    arguments = [call.args for call in unit.calls("uci")]
    for option in MLO[3][3]:
        assert ("set", f"wireless.{option}={text}") in arguments
    assert ("set", f"wireless.mld7.mld_ssid={ssid}") in arguments
    unit.assert_nothing_ran()


@pytest.mark.parametrize("text", ["Bob's", '";reboot;"', "a\\b\\\\c", "日本語", "$(reboot)", "%s%n", " two  blanks "])
def test_hostile_texts_are_stored_whole(storing_unit, text):
    follow(storing_unit, (0, 1, 0))
    assert storing_unit.post(CONNECT, request(ssid=text, encryptKey=text)).text == OK
    storing_unit.wait_for_call("/sbin/wifi", "up")
    assert storing_unit.option("wireless.ath13.ssid") == text
    assert storing_unit.option("wireless.ath13.key") == text
    assert storing_unit.option("wireless.ath12.ssid") == text


@pytest.mark.parametrize("name", [name for name in HOSTILE if name.startswith("long")])
def test_far_too_long_texts_are_refused(unit, name):
    for key in ("ssid", "bssid", "encryptKey"):
        assert unit.post(CONNECT, request(**{key: HOSTILE[name]})).text == UNUSABLE
    unit.assert_calls()
