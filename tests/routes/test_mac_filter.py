"""GET and POST /api/v1/wireless/mac-filter."""

import json

import kit
import pytest
from routes.wireless_state import changes, mesh, packages
from texts import cut, is_one_line, shown

FILTER = "/api/v1/wireless/mac-filter"
RESULT_1 = '{"result": 1}'
OK_100 = '{"result": 0, "version": 1, "waitTime": 100}'
HEADERS = ["Content-Type: application/json", "Status: 200 OK"]
MESH_INTERFACES = ["ath0", "ath1", "ath2", "ath01", "ath11", "ath21", "ath04", "ath14", "ath24", "ath05", "ath15",
                   "ath25"]
BACKHAUL = ["ath02", "ath12", "ath22"]
INTERFACES = MESH_INTERFACES + BACKHAUL
LISTS = ("namelist", "maclist", "maclist_sec")
COMMIT = "uci commit macfilter"
CLEANUP = [f"uci delete macfilter.{ifname}.{name}" for ifname in INTERFACES
           for name in ("maclist", "maclist_sec", "namelist")] + [COMMIT]
RELOAD = ["uci commit wireless", "wifi reload"]


def entry(description, mac="00:11:22:33:44:55"):
    return {"description": description, "macAddress": mac, "enableTime": 0, "remainTime": 0}


def adding(description, interfaces=INTERFACES):
    return [*(f"uci add_list macfilter.{ifname}.namelist={description}" for ifname in interfaces), COMMIT, COMMIT]


def fill(router, *pairs):
    for ifname in INTERFACES:
        for name in LISTS:
            router.set(f"macfilter.{ifname}.{name}", [pair[0 if name == "namelist" else 1] for pair in pairs])


def accepted(router, body, *commands):
    router.forget_calls()
    a = router.post(FILTER, body)
    assert a.encrypted and a.text == OK_100 and a.header_lines == HEADERS, (a, router.report())
    router.wait_for_call("wifi", "reload")
    assert router.commands() == [*commands, *RELOAD]


def refused(router, body, *commands):
    router.forget_calls()
    a = router.post(FILTER, body)
    assert not a.encrypted and a.text == RESULT_1 and a.header_lines == HEADERS, (a, router.report())
    assert router.commands() == list(commands)


def lists(router, ifname):
    return [router.option(f"macfilter.{ifname}.{name}") or [] for name in LISTS]


# GET.


def test_the_factory_table_is_empty(router):
    a = router.get(FILTER)
    assert a.encrypted and a.header_lines == HEADERS
    assert a.text == '{ "result": 0, "version": 1, "macFilterStatus": 0, "numOfmacFilterTable": 0, "max": 60, ' \
                     '"macFilterTable": [ ] }'
    assert router.commands() == []


def test_the_table_of_ath0_is_shown(router):
    router.set("macfilter.macfilter.enable", 1)
    router.set("macfilter.ath0.namelist", ["One", "Two", "Three"])
    router.set("macfilter.ath0.maclist", ["00:00:00:00:00:01", "00:00:00:00:00:02"])
    router.set("macfilter.ath1.namelist", ["Other"])
    a = router.get(FILTER)
    assert a.text == (
        '{ "result": 0, "version": 1, "macFilterStatus": 1, "numOfmacFilterTable": 2, "max": 60, "macFilterTable": [ '
        '{ "description": "One", "macAddress": "00:00:00:00:00:01", "enableTime": 0, "remainTime": 0 }, '
        '{ "description": "Two", "macAddress": "00:00:00:00:00:02", "enableTime": 0, "remainTime": 0 } ] }')


def test_sixty_entries_at_most(router):
    router.set("macfilter.ath0.namelist", [f"n{i}" for i in range(75)])
    router.set("macfilter.ath0.maclist", [f"m{i}" for i in range(61)])
    answer = router.get(FILTER).json
    assert answer["numOfmacFilterTable"] == 60
    assert answer["macFilterTable"] == [entry(f"n{i}", f"m{i}") for i in range(60)]


@pytest.mark.parametrize("enable,status", [("1", 1), ("0", 0), ("01", 0), ("on", 0), (None, 0)])
def test_the_switch(router, enable, status):
    router.set("macfilter.macfilter.enable", enable)
    assert router.get(FILTER).json["macFilterStatus"] == status
    assert router.logged("Failed to get macfiler_enable", priority=3) == (enable is None)


def test_without_the_package(bare_router):
    a = bare_router.get(FILTER)
    assert not a.encrypted and a.text == RESULT_1 and a.header_lines == HEADERS
    assert bare_router.logged("Failed to open file: /etc/config/macfilter", priority=3)
    assert bare_router.logged("Failed to parse mac filter table", priority=3)
    refused(bare_router, {"macFilterStatus": 1})
    assert bare_router.logged("Failed to get opmode", priority=3, by="handle_set_mac_filter")


# POST: what is refused.


def test_no_body(router):
    refused(router, None)


# Objects without any known member are requests for an empty table.
_OBJECTS = ("empty-object", "deep-object", "huge-number", "wrong-types", "invalid-utf8")


@pytest.mark.parametrize("name", [name for name in kit.GARBAGE_BODIES if name not in _OBJECTS])
def test_garbage(router, name):
    before = packages(router)
    refused(router, kit.GARBAGE_BODIES[name])
    assert packages(router) == before


@pytest.mark.parametrize("table", [5, "text", {}, {"0": entry("a")}, True, [1], [None], ["a"], [[]],
                                   [entry("good"), 7]], ids=json.dumps)
def test_a_table_that_is_none_changes_nothing(router, table):
    fill(router, ("One", "mac"))
    before = packages(router)
    refused(router, {"macFilterStatus": 1, "macFilterTable": table})
    assert packages(router) == before


def test_an_entry_without_its_members(router):
    bad = {"description": "x"}, {"macAddress": "y"}, {}, {"description": None, "macAddress": "y"}, {
        "description": "x", "macAddress": None}
    fill(router, ("One", "mac"))
    before = packages(router)
    for i, member in enumerate(bad):
        refused(router, {"macFilterStatus": 1, "macFilterTable": [entry("first"), member, entry("third")]})
        message = "Failed to get macAddress" if i in (0, 4) else "Failed to get description"
        assert router.logged(message, priority=3, by="handle_set_mac_filter")
    assert packages(router) == before


@pytest.mark.parametrize("bad, message", [
    (entry("x" * 256), "Failed to set namelist policy"), (entry("日" * 86), "Failed to set namelist policy"),
    (entry("x" * 1000000), "Failed to set namelist policy"), (entry("\x01"), "Failed to set namelist policy"),
    (entry("x", "\x01"), "Failed to set maclist policy"), (entry("x", "00:11\n"), "Failed to set maclist policy"),
    (entry("x", "\r"), "Failed to set maclist policy"), (entry("x", [1]), "Failed to get macAddress"),
    (entry({}), "Failed to get description"), (entry(True), "Failed to get description")], ids=lambda value: ascii(value)[:60])
def test_an_entry_that_cannot_be_kept_is_refused_before_anything_is_written(router, bad, message):
    fill(router, ("One", "mac"))
    before = packages(router)
    refused(router, {"macFilterStatus": 1, "macFilterTable": [entry("good"), bad]})
    assert router.logged(message, priority=3, by="handle_set_mac_filter")
    assert packages(router) == before


def test_the_operation_mode_is_needed_first(router):
    router.set("system.@system[0].op_mode", None)
    refused(router, {"macFilterTable": []})
    assert router.logged("Failed to get opmode", priority=3, by="handle_set_mac_filter")


# POST: the switch.


def test_on_sets_the_policies_and_switches_wps_off(router):
    before = packages(router)
    accepted(router, {"macFilterStatus": 1}, COMMIT, *CLEANUP)
    assert changes(before, packages(router)) == {
        "macfilter.macfilter.enable": ("0", "1"),
        **{f"macfilter.{ifname}.{option}": (None, "allow") for ifname in INTERFACES
           for option in ("macfilter", "macfilter_sec")},
        **{f"wireless.ath{band}.wps_state": ("2", "0") for band in (0, 1)},
        **{f"wireless.ath{band}.wps_pbc": ("1", "0") for band in (0, 1)}}


def test_on_in_a_mesh_denies_and_leaves_the_backhaul_alone(router):
    mesh(router, 1)
    router.forget_calls()
    a = router.post(FILTER, {"macFilterStatus": 1, "macFilterTable": [entry("One", "mac")]})
    assert a.text == OK_100
    router.wait_for_call("wifi", "multi_up")
    assert router.commands() == [COMMIT, *CLEANUP, *adding("One", MESH_INTERFACES), "uci commit wireless",
                                 "wifi reload", "wifi multi_up mld2 mld3 mld6"]
    for ifname in INTERFACES:
        filtered = ifname in MESH_INTERFACES
        assert router.option(f"macfilter.{ifname}.macfilter") == ("deny" if filtered else None)
        assert router.option(f"macfilter.{ifname}.macfilter_sec") == ("allow" if filtered else None)
        assert lists(router, ifname) == ([["One"], ["mac"], ["mac"]] if filtered else [[], [], []])


def test_off_deletes_the_policies_and_switches_wps_on(router):
    accepted(router, {"macFilterStatus": 1}, COMMIT, *CLEANUP)
    accepted(router, {"macFilterStatus": 0}, COMMIT, *CLEANUP)
    assert router.option("macfilter.macfilter.enable") == "0"
    for ifname in INTERFACES:
        assert router.option(f"macfilter.{ifname}.macfilter") is None
        assert router.option(f"macfilter.{ifname}.macfilter_sec") is None
    for band in (0, 1):
        assert router.option(f"wireless.ath{band}.wps_state") == "2"
        assert router.option(f"wireless.ath{band}.wps_pbc") == "1"


@pytest.mark.parametrize("pbc,touched", [
    ((0, 0), False), ((2, 0), False), ((None, None), False), (("x", ""), False), ((1, 0), True), ((0, 1), True),
    ((1, 1), True), ((1, None), True)])
def test_on_leaves_wps_alone_that_is_off(router, pbc, touched):
    for band, value in enumerate(pbc):
        router.set(f"wireless.ath{band}.wps_pbc", value)
        router.set(f"wireless.ath{band}.wps_state", "old")
    accepted(router, {"macFilterStatus": 1}, COMMIT, *CLEANUP)
    for band in (0, 1):
        assert router.option(f"wireless.ath{band}.wps_state") == ("0" if touched else "old")
    assert router.logged("Failed to get wps_pbc", priority=3, by="handle_set_mac_filter") == (pbc[0] is None)
    assert router.logged("Failed to get wps_state", priority=3, by="handle_set_mac_filter") == (pbc[1] in (None, ""))


@pytest.mark.parametrize("status", [2, -1, 2**40, "5", None, [], {}, "", "x", "0x", "1 ", 0.5])
def test_other_values_switch_nothing(router, status):
    before = packages(router)
    accepted(router, {"macFilterStatus": status}, *CLEANUP)
    assert packages(router) == before


def test_wps_that_cannot_be_switched_fails(router):
    router.set("wireless.ath0.wps_pbc", 1)
    router.set("wireless.ath1", None)
    refused(router, {"macFilterStatus": 1})
    assert router.logged("Failed to set wps disable for ath1", priority=3, by="set_wps_disable")
    assert router.logged("set_wps_disable error", priority=3, by="handle_set_mac_filter")
    assert router.option("macfilter.macfilter.enable") == "1"  # what was written before stays
    refused(router, {"macFilterStatus": 0}, COMMIT)
    assert router.logged("set_wps_enable error", priority=3, by="handle_set_mac_filter")
    assert router.option("macfilter.macfilter.enable") == "0"


# POST: the table.


def test_the_table_is_replaced_without_a_switch(router):
    router.set("macfilter.macfilter.enable", 1)
    fill(router, ("Old", "old"))
    before = packages(router)
    accepted(router, {"macFilterTable": [entry("One", "m1"), entry("Two", "m2")]}, *CLEANUP, *adding("One"),
             *adding("Two"))
    assert changes(before, packages(router)) == {
        f"macfilter.{ifname}.{name}": (["Old"], ["One", "Two"]) if name == "namelist" else (["old"], ["m1", "m2"])
        for ifname in INTERFACES for name in LISTS}
    assert router.get(FILTER).json["macFilterTable"] == [entry("One", "m1"), entry("Two", "m2")]


def test_the_lists_of_an_entry_are_written_in_their_order(router):
    assert router.post(FILTER, {"macFilterTable": [entry("One", "m1")]}).text == OK_100
    section = router.read("/etc/config/macfilter").partition("config wifi-iface 'ath0'\n")[2].partition("\nconfig")[0]
    assert [line.split()[1] for line in section.splitlines() if line.split()[:1] == ["list"]] == [
        "namelist", "maclist_sec", "maclist"]


@pytest.mark.parametrize("status", [1, 1.0, True, "1"])
def test_every_form_of_1_is_on(router, status):
    few_interfaces(router)
    assert router.post(FILTER, {"macFilterStatus": status}).text == OK_100
    assert router.option("macfilter.macfilter.enable") == "1"


@pytest.mark.parametrize("body", [{"macFilterTable": []}, {}, {"macFilterTable": None}, {"a": 99999999999999999999999999999999}])
def test_no_entries_empty_the_lists(router, body):
    fill(router, ("Old", "old"))
    accepted(router, body, *CLEANUP)
    for ifname in INTERFACES:
        assert lists(router, ifname) == [[], [], []]


def test_in_a_mesh_the_backhaul_lists_stay_empty(router):
    fill(router, ("Old", "old"))
    mesh(router, 1)
    assert router.post(FILTER, {"macFilterTable": [entry("One", "m1")]}).text == OK_100
    for ifname in INTERFACES:
        assert lists(router, ifname) == ([[], [], []] if ifname in BACKHAUL else [["One"], ["m1"], ["m1"]])


def test_addresses_are_not_checked(router):
    for mac in ("", "no address", 7, "00-11"):
        assert router.post(FILTER, {"macFilterTable": [{"description": 5, "macAddress": mac}]}).text == OK_100
        assert router.get(FILTER).json["macFilterTable"] == [entry("5", str(mac))]


def few_interfaces(router):
    """Leaves the sections of ath0 and ath22, for tests of many or long entries."""
    for ifname in INTERFACES[1:-1]:
        router.set(f"macfilter.{ifname}", None)


def test_the_read_document_posted_back_changes_nothing(router):
    few_interfaces(router)
    texts = ["Bob's", "a 'quoted' one", "back\\slash", "'\\''", "two\nlines", 'say "hi"', "日本語", "", "%s", "# x"]
    table = [entry(text, f"00:00:00:00:00:{i:02}") for i, text in enumerate(texts)]
    assert router.post(FILTER, {"macFilterTable": table}).text == OK_100
    document = router.get(FILTER).json
    assert document["macFilterTable"] == table
    before = packages(router)
    assert router.post(FILTER, document).text == OK_100
    assert changes(before, packages(router)) == {}
    assert router.get(FILTER).json == document


def encoded(text):
    """A JSON string of these very bytes."""
    raw = json.dumps(text, ensure_ascii=False).encode("utf-8", "surrogateescape")
    return raw


@pytest.mark.parametrize("name", kit.HOSTILE)
def test_hostile_texts_arrive_whole(router, name):
    text = kit.HOSTILE[name]
    body = b'{"macFilterTable": [{"description": %s, "macAddress": "00:00:00:00:00:01"}]}' % encoded(text)
    if name == "control" or len(text) > 255:  # UCI holds no such characters, the lists no such lengths
        refused(router, body)
        assert router.logged("Failed to set namelist policy", priority=3, by="handle_set_mac_filter")
    else:
        accepted(router, body, *CLEANUP, *adding(text))
        for ifname in ("ath0", "ath22"):
            assert lists(router, ifname) == [[text], ["00:00:00:00:00:01"], ["00:00:00:00:00:01"]]
        assert router.get(FILTER).json["macFilterTable"] == [entry(shown(text), "00:00:00:00:00:01")]
    router.assert_nothing_ran()


@pytest.mark.parametrize("name", kit.HOSTILE)
def test_hostile_addresses_arrive_as_far_as_uci_holds_them(router, name):
    text = kit.HOSTILE[name]
    body = b'{"macFilterTable": [{"description": "One", "macAddress": %s}]}' % encoded(text)
    a = router.post(FILTER, body)
    if not is_one_line(text):
        assert a.text == RESULT_1 and router.logged("Failed to set maclist policy", priority=3, by="handle_set_mac_filter")
        assert lists(router, "ath0") == [[], [], []]
    else:
        assert a.text == OK_100
        bounds = [254 - len(f"macfilter.ath0.{key}=") for key in ("maclist", "maclist_sec")]
        assert lists(router, "ath0") == [["One"], [cut(text, bounds[0])], [cut(text, bounds[1])]]
    router.assert_nothing_ran()


@pytest.mark.parametrize("text", ["x" * 255, "日" * 85, "'" * 255], ids=["letters", "characters", "quotes"])
def test_a_description_of_255_bytes_is_stored_whole(router, text):
    few_interfaces(router)
    assert router.post(FILTER, {"macFilterTable": [entry(text)]}).text == OK_100
    assert router.option("macfilter.ath22.namelist") == [text]
    assert router.get(FILTER).json["macFilterTable"] == [entry(text)]


# POST: dead tools.


@pytest.mark.parametrize("how", [{"exit": 1}, {"missing": True}, {"signal": 9}])
def test_without_uci_the_table_is_refused_and_the_switch_works(router, how):
    router.tool("uci", **how)
    a = router.post(FILTER, {"macFilterStatus": 1, "macFilterTable": [entry("One")]})
    assert not a.encrypted and a.text == RESULT_1
    assert router.logged("Failed to set namelist policy", priority=3, by="handle_set_mac_filter")
    assert router.post(FILTER, {"macFilterStatus": 1, "macFilterTable": []}).text == OK_100
    assert router.option("macfilter.macfilter.enable") == "1"


@pytest.mark.parametrize("how", [{"exit": 1}, {"missing": True}, {"signal": 9}, {"hang": True}])
def test_without_wifi_the_answer_is_the_same(router, how):
    router.tool("wifi", **how)
    assert router.post(FILTER, {"macFilterStatus": 1}).text == OK_100
