"""POST /api/v1/router/wan-info: the answers, the modes, the wait, and the reload."""

import pytest

from wan_setup import (ENCRYPT, FLUSH, KEYS, LONG_WAIT, MODES, RELOAD, SHORT_WAIT, TUNNELS, UNUSABLE, UPNP_RELOAD,
                       URI, addresses, apply, request, set_wan, static_unit, stored, told, wait_for_reload, wan)  # noqa: F401 (fixtures)

# Answers.

def test_an_accepted_change_is_answered_before_the_reload(wan):
    wan.tool("/etc/init.d/network", hang=True)
    answer = wan.post(URI, request())
    assert answer.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert (answer.encrypted, answer.text) == (True, SHORT_WAIT)
    assert wan.alive()


@pytest.mark.parametrize("body", [None, b"", b"hello", b"{", b"[]", b"42", b'"text"', b"null"])
def test_a_body_that_is_no_object_is_refused_and_still_reloads(wan, body):
    before = stored(wan)
    answer = apply(wan, body) if body else wan.post(URI, None)
    wait_for_reload(wan)
    assert (answer.encrypted, answer.text) == (True, UNUSABLE)
    assert stored(wan) == before
    wan.assert_calls(*RELOAD)


@pytest.mark.parametrize("body", [b"hello", b"{", b'{"wanConfig": {'])
def test_an_unparsable_body_is_logged(wan, body):
    apply(wan, body)
    assert wan.logged("jsonObj is NULL.", priority=3)


@pytest.mark.parametrize("config", [None, 5, 0, "", "text", [], [1], ["wanMethod"], True, False, 1.5])
def test_a_wan_config_that_is_no_object_is_refused_and_still_reloads(wan, config):
    before = stored(wan)
    answer = apply(wan, {"wanConfig": config})
    assert (answer.encrypted, answer.text) == (True, UNUSABLE)
    assert stored(wan) == before
    wan.assert_calls(*RELOAD)


@pytest.mark.parametrize("body", [{}, {"wanconfig": {}}, {"wanMethod": 1}, {"result": 0}])
def test_a_body_without_a_wan_config_is_refused_and_still_reloads(wan, body):
    before = stored(wan)
    assert apply(wan, body).text == UNUSABLE
    assert stored(wan) == before
    wan.assert_calls(*RELOAD)


def test_an_answer_that_cannot_be_encrypted_is_plain_and_the_change_is_made(wan):
    wan.tool("jose", *ENCRYPT, exact=True, exit=1)
    answer = apply(wan, wanMethod=3)
    assert (answer.encrypted, answer.text) == (False, UNUSABLE)
    assert wan.option("network.wan.mode") == "MAP-E"
    wan.assert_calls(*RELOAD)


def test_an_empty_wan_config_is_a_change_to_dhcp(wan):
    set_wan(wan, mode="STATIC", proto="static")
    answer = apply(wan, {"wanConfig": {}})
    assert answer.text == SHORT_WAIT
    for key in KEYS:
        assert wan.logged(f"{key} is not found."), key
    assert (wan.option("network.wan.mode"), wan.option("network.wan.proto")) == ("DHCP", "dhcp")
    assert (wan.option("network.wan.slaac"), wan.option("network.wan.dhcpv6pd")) == ("0", "0")


def test_only_a_missing_key_is_named(wan):
    for key in KEYS:
        already = len(wan.log())
        apply(wan, {"wanConfig": {other: "1" for other in KEYS if other != key}})
        named = [line.text.strip() for line in wan.log()[already:] if line.text.strip().endswith(" is not found.")]
        assert named == [f"{key} is not found."]


def test_the_reading_routes_spellings_are_not_read(wan):
    apply(wan, wanMethod=1, wanIpv4SubMask="255.255.0.0", wanIPv6Method=None, wanIpv6Method=2)
    assert wan.option("network.wan.netmask") is None
    assert (wan.option("network.wan.slaac"), wan.option("network.wan.dhcpv6pd")) == ("0", "0")


def test_a_bad_captive_portal_status_comes_after_all_else(wan):
    apply(wan, wanMethod=3, natAccelerationEnable=0, uPnPIGD=3, captivePortalStatus=5)
    assert (wan.option("network.wan.mode"), wan.option("ecm.global.acceleration"), wan.option("upnpd.config.enabled")) == (
        "MAP-E", "0", "3")


# The mode.

@pytest.mark.parametrize("code", [8, 9, -1, 99, "-1", "9999999999"])
def test_an_unknown_method_is_logged_and_the_rest_is_done(wan, code):
    before = stored(wan)
    answer = apply(wan, wanMethod=code, natAccelerationEnable=0, wanAutoSelectStatus=2)
    assert answer.json == {"result": 0, "version": 1, "waitTime": 300}
    number = int(str(code)[:7])
    assert wan.logged(f"Invalid wanMethod parameter, waninfo->wanMethod = {number}", priority=3)
    assert wan.logged(f"id is [{number}],type is [N]")
    assert stored(wan) == {**before, "network.backwan.change": "1", "network.backwan.waninfobak": f"{str(code)[:7]}0",
                           "network.wan.autoflag": "2", "network.wan.v6vne": "0", "ecm.global.acceleration": "0"}
    wan.assert_calls(*RELOAD)


def test_a_text_that_is_no_number_is_method_0(wan):
    set_wan(wan, mode="STATIC", proto="static")
    apply(wan, wanMethod="PPPOE")
    assert wan.option("network.wan.mode") == "DHCP"


@pytest.mark.parametrize("code, service", [(0, "manual"), (1, "v6plus"), (2, "transix"), (3, "v6connect"), (4, "manual"),
                                           (-1, "manual"), (None, "manual"), ("x", "manual"), ("2", "transix")])
def test_the_ipip_service_is_stored_by_its_name(wan, code, service):
    apply(wan, wanMethod=5, ipipService=code)
    assert wan.option("network.wan.v6service") == service
    assert told(wan, f"v6ServerMode = {service}")


@pytest.mark.parametrize("mtu, text", [(1446, "1454"), ("1446", "1454"), (0, "8"), (-8, "0"), (-100, "-92"), ("x", None),
                                       (1446.0, "1454"), (1446.9, None)])
def test_the_mtu_is_stored_with_its_header(wan, mtu, text):
    apply(wan, wanMethod=2, pppoeMtu=mtu)
    assert wan.option("network.wan.mtu") == text


def test_the_mtu_is_told_as_it_was_given(wan):
    apply(wan, wanMethod=2, pppoeMtu=1446)
    addresses(wan)
    assert wan.option("network.wan.mtu") == "1454"
    assert wan.get(URI).json["wanConfig"]["pppoeMtu"] == 1446


@pytest.mark.parametrize("mtu", [2147483647, -2147483648, 2147483640, 99999999999999999999, -99999999999999999999])
def test_the_largest_mtu_breaks_nothing(wan, mtu):
    assert apply(wan, wanMethod=2, pppoeMtu=mtu).text == SHORT_WAIT
    assert len(wan.option("network.wan.mtu")) <= 11
    assert wan.option("network.wan.mtu").lstrip("-").isdigit()
    assert wan.alive()


def test_a_pppoe_change_without_credentials_keeps_the_stored_ones(wan):
    set_wan(wan, username="kept-user", password="kept-password", mtu="1400")
    apply(wan, wanMethod=2, pppoeUserName="", pppoePassword="")
    assert [wan.option(f"network.wan.{name}") for name in ("username", "password", "mtu", "keepalive", "proto")] == [
        "kept-user", "kept-password", "1400", "5 60", "pppoe"]


@pytest.mark.parametrize("value", [None, ""])
def test_an_empty_tunnel_end_point_leaves_none(wan, value):
    set_wan(wan, aftr="old")
    assert apply(wan, wanMethod=4, aftrAddress=value).text == LONG_WAIT
    assert wan.option("network.wan.aftr") is None


# The static mode.

STATIC = {"wanMethod": 1, "wanIpv4Address": "203.0.113.10", "wanIpv4subMask": "255.255.255.0", "wanIpv4Gateway": "203.0.113.1"}


def test_the_same_static_address_needs_no_flush(wan):
    static_unit(wan)
    apply(wan, **STATIC)
    wan.assert_calls(*RELOAD)
    assert not told(wan, "wan need flush!!!")
    assert [wan.option(f"network.wan.{name}") for name in ("ipaddr", "netmask", "gateway")] == [
        "203.0.113.10", "255.255.255.0", "203.0.113.1"]


@pytest.mark.parametrize("changes", [{"wanIpv4Address": "203.0.113.11"}, {"wanIpv4subMask": "255.255.0.0"},
                                     {"wanIpv4Gateway": "203.0.113.2"}, {"wanIpv4Gateway": ""}, {"wanIpv4Address": None}])
def test_another_static_address_mask_or_gateway_flushes_the_port(wan, changes):
    static_unit(wan)
    apply(wan, **STATIC | changes)
    wan.assert_calls(FLUSH, *RELOAD)
    assert told(wan, "wan need flush!!!")


def test_a_first_static_address_flushes_the_port(wan):
    apply(wan, **STATIC)
    wan.assert_calls(FLUSH, *RELOAD)


def test_no_static_address_before_and_after_needs_no_flush(wan):
    apply(wan, wanMethod=1)
    wan.assert_calls(*RELOAD)


@pytest.mark.parametrize("answer", [{"exit": 1}, {"exit": 255}, {"signal": 9}, {"missing": True}])
def test_a_flush_that_fails_is_logged(wan, answer):
    wan.tool("ip", **answer)
    assert apply(wan, **STATIC).text == SHORT_WAIT
    assert wan.logged("Failed to flush WAN interface! cmd: [ip addr flush dev eth1]", priority=3)
    assert wan.option("network.wan.ipaddr") == "203.0.113.10"


def test_a_flush_that_works_logs_no_failure(wan):
    apply(wan, **STATIC)
    assert not wan.logged("Failed to flush")


@pytest.mark.parametrize("mode", ["STATIC", "DHCP"])
@pytest.mark.parametrize("fields, servers", [
    ({"wanIpv4Dns1": "10.0.0.1", "wanIpv4Dns2": "10.0.0.2"}, ["10.0.0.1", "10.0.0.2"]), ({"wanIpv4Dns1": "10.0.0.1"}, ["10.0.0.1"]),
    ({"wanIpv4Dns1": "", "wanIpv4Dns2": "10.0.0.2"}, ["10.0.0.2"]), ({}, None),
    ({"wanIpv4Dns1": "10.9.9.1", "wanIpv4Dns2": "10.9.9.2"}, ["10.9.9.1", "10.9.9.2"])])
def test_the_static_name_servers_replace_the_old_ones(wan, mode, fields, servers):
    static_unit(wan, mode=mode, dns=["10.9.9.1", "10.9.9.2", "10.9.9.3"])
    apply(wan, **STATIC, **fields)
    assert wan.option("network.wan.dns") == servers


@pytest.mark.parametrize("mode, kept", [("DHCP", 2), ("STATIC", 0)])
def test_at_most_8_old_name_servers_are_deleted_at_a_time(wan, mode, kept):
    """A change away from a static line deletes once more before the new servers are written."""
    servers = [f"10.9.9.{i}" for i in range(10)]
    static_unit(wan, mode=mode, dns=servers)
    apply(wan, **STATIC, wanIpv4Dns1="10.0.0.1")
    assert wan.option("network.wan.dns") == [*servers[10 - kept:], "10.0.0.1"]


def test_the_number_of_old_name_servers_is_told(wan):
    static_unit(wan, mode="DHCP", dns=["10.9.9.1", "10.9.9.2", "10.9.9.3"])
    apply(wan, **STATIC)
    assert told(wan, "dnsListNum = 3")


# The wait.

@pytest.mark.parametrize("old_key, fields, answer", [
    ("{}00", {}, SHORT_WAIT), ("{}00", {"ipipService": 1}, LONG_WAIT), ("{}00", {"wanIPv6Method": 1}, LONG_WAIT),
    ("{}0", {"ipipService": None}, SHORT_WAIT), ("{}00x", {}, LONG_WAIT), (None, {}, LONG_WAIT)])
def test_a_tunnel_waits_long_when_its_key_changes(wan, old_key, fields, answer):
    for mode in TUNNELS:
        code = MODES.index(mode)
        set_wan(wan, mode=mode)
        wan.set("network.backwan.waninfobak", old_key and old_key.format(code))
        assert apply(wan, **{"wanMethod": code, "ipipService": 0} | fields).text == answer, mode


def test_the_same_tunnel_settings_twice_wait_short(wan):
    fields = {"wanMethod": 5, "wanIPv6Method": 0, "ipipService": 1}
    assert apply(wan, **fields).text == LONG_WAIT
    assert apply(wan, **fields).text == SHORT_WAIT
    assert wan.option("network.backwan.waninfobak") == "501"


@pytest.mark.parametrize("old_key", [None, "000", "x"])
def test_the_key_does_not_count_for_the_plain_modes(wan, old_key):
    wan.set("network.backwan.waninfobak", old_key)
    assert apply(wan, wanMethod=2).text == SHORT_WAIT


@pytest.mark.parametrize("mode, code, answer", [
    ("wb_mode", 8, SHORT_WAIT), ("wb_mode", -1, SHORT_WAIT), ("wb_mode", 0, LONG_WAIT), ("wb_mode", 3, LONG_WAIT),
    ("AP", 8, LONG_WAIT), ("other", 0, SHORT_WAIT), ("other", 7, LONG_WAIT), ("MAP-E-2", 3, SHORT_WAIT),
    ("DHCP2", 1, SHORT_WAIT), ("wb_mode2", 9, SHORT_WAIT)])
def test_the_stored_modes_type_is_told_by_its_first_letters(wan, mode, code, answer):
    set_wan(wan, mode=mode)
    wan.set("network.backwan.waninfobak", f"{code}0")
    assert apply(wan, wanMethod=code).text == answer


def test_an_unknown_stored_mode_is_logged(wan):
    set_wan(wan, mode="other")
    apply(wan)
    assert wan.logged("Invalid mode, mode = other.", priority=3)
    assert wan.logged("cur_wan_mode is [other],id is [0],type is [A]")


@pytest.mark.parametrize("fields, key", [({"wanMethod": 5, "wanIPv6Method": 0, "ipipService": 0}, "500"),
                                         ({"wanMethod": "5", "wanIPv6Method": "0", "ipipService": "1"}, "501"),
                                         ({"wanMethod": 3, "wanIPv6Method": 2}, "32"), ({"wanIPv6Method": None, "ipipService": 2}, "02"),
                                         ({"wanMethod": "1234567", "wanIPv6Method": "1234567", "ipipService": "1234567"},
                                          "1234567" * 3)])
def test_the_key_joins_three_texts(wan, fields, key):
    apply(wan, **fields)
    assert wan.option("network.backwan.waninfobak") == key


def test_a_key_of_nothing_is_no_option(wan):
    apply(wan, wanMethod=None, wanIPv6Method=None)
    assert wan.option("network.backwan.waninfobak") is None


# Missing sections.

def test_without_a_wan_section_nothing_is_created(wan):
    wan.set("network.wan", None)
    assert apply(wan, wanMethod=1, wanIpv4Address="10.0.0.1", natAccelerationEnable=0).text == SHORT_WAIT
    assert wan.logged("create wan failed.", priority=3)
    assert wan.option("network.wan") is None
    assert wan.option("ecm.global.acceleration") == "0"
    wan.assert_calls(FLUSH, *RELOAD)


@pytest.mark.parametrize("package, section", [("ecm", "ecm.global"), ("upnpd", "upnpd.config")])
@pytest.mark.parametrize("whole", [False, True])
def test_without_a_switchs_section_the_rest_is_done(wan, package, section, whole):
    wan.no_config(package) if whole else wan.set(section, None)
    assert apply(wan, wanMethod=3, captivePortalStatus=1).text == LONG_WAIT
    assert wan.logged("create wan failed.", priority=3)
    assert (wan.option("network.wan.mode"), wan.option("system.easysetup.http_redirect_enable")) == ("MAP-E", "1")
    assert wan.option(section) is None


def test_with_all_sections_nothing_failed_to_be_created(wan):
    apply(wan)
    assert not wan.logged("create wan failed.")


def test_without_the_sections_of_backups_the_change_is_made(wan):
    wan.set("network.backwan", None)
    wan.set("network.backlan", None)
    assert apply(wan, wanMethod=5).text == LONG_WAIT
    assert wan.option("network.wan.mode") == "IPIP6"


def test_without_any_package_a_change_is_accepted_and_reloads(bare_router):
    answer = apply(bare_router, wanMethod=2, pppoeUserName="x", pppoeMtu=1400)
    assert answer.text == SHORT_WAIT
    bare_router.assert_calls(*RELOAD, *UPNP_RELOAD)
    assert bare_router.alive()


# Traces.

def test_the_fields_are_traced_in_one_line(wan):
    apply(wan, wanMethod=4, wanAutoSelectStatus=2, aftrAddress="2001:db8::%n")
    line = next(line for line in wan.log()
                if line.text.startswith("wanInfo.wanAutoSelectStatus = 2, wanInfo.wanMethod = 4"))
    assert line.priority == 7 and "2001:db8::%n" in line.text


def test_the_last_settings_are_traced(wan):
    static_unit(wan, gateway="203.0.113.200")
    wan.set("network.lan.globalIp", "1234")
    apply(wan)
    assert told(wan, "lastMode[STATIC],lastipaddr[203.0.113.10],lastnetmask[255.255.255.0],lastgateway[203.0.113.200]")
    assert told(wan, "globalIp = 123")


# The log.

def test_the_key_of_the_last_change_is_read_whatever_the_methods(wan):
    wan.set("network.backwan.waninfobak", None)
    assert apply(wan, wanMethod=0).text == SHORT_WAIT
    assert wan.logged("find tuple network.backwan.waninfobak failed.", priority=3)


def test_messages_stand_under_the_names_of_the_functions_they_tell_of(wan):
    apply(wan, wanMethod=9, uPnPIGD=7, dhcpcHostName=None)
    apply(wan, b"hello")
    for text, function in (("dhcpcHostName is not found.", "handle_set_wanInfo_json"), ("jsonObj is NULL.", "handle_set_wanInfo_json"),
                           ("cur_wan_mode is", "handle_set_wanInfo_json"), ("Invalid wanMethod parameter", "set_wanInfoConfig"),
                           ("Invalid uPnPIGD parameter", "set_wanInfoConfig"), ("lastMode[", "set_wanInfoConfig")):
        assert {line.function for line in wan.log() if text in line.text} == {function}, text
