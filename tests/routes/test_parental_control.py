"""GET and POST /api/v1/parental-control, POST /api/v1/parental-control/delete."""

import pytest
from texts import cut

from kit import GARBAGE_BODIES

URI = "/api/v1/parental-control"
DELETE = URI + "/delete"
OK = {"result": 0, "version": 1, "waitTime": 10}
UNUSABLE = {"result": 1}


def entry(number=1, **changes):
    return {"explain": f"child {number}", "macAddress": f"AA:BB:CC:DD:EE:0{number}", "startTime": "07:00",
            "endTime": "20:00", **changes}


@pytest.fixture
def mia(router):
    router.config("mia", "config basic\n\toption enable '1'\n")
    return router


def add(router, *numbers):
    for number in numbers:
        router.add("mia", "macbind", enable=f"child {number}", macaddr=f"AA:BB:CC:DD:EE:0{number}", timeon="07:00",
                   timeoff="20:00")


def explanations(router):
    return [s.options.get("enable") for s in router.package("mia") if s.type == "macbind"]


def test_entries_are_listed_with_their_positions(mia):
    add(mia, 1, 2)
    a = mia.get(URI)
    assert a.encrypted
    assert a.json == {"result": 0, "version": 1, "enable": 1,
                      "parentalControls": [{"id": 0, **entry(1)}, {"id": 1, **entry(2)}]}
    assert list(a.json) == ["result", "version", "enable", "parentalControls"]
    assert list(a.json["parentalControls"][0]) == ["id", "explain", "macAddress", "startTime", "endTime"]


@pytest.mark.parametrize("enable", ["0", "2", "off"])
def test_with_the_switch_off_the_list_is_empty(mia, enable):
    add(mia, 1)
    mia.set("mia.@basic[0].enable", enable)
    a = mia.get(URI).json
    assert (a["parentalControls"], a["result"]) == ([], 0)


def test_without_entries_the_list_is_empty(mia):
    assert mia.get(URI).json["parentalControls"] == []


def test_an_unreadable_switch_is_result_1_alone(router):
    router.no_config("mia")
    a = router.get(URI)
    assert a.encrypted and a.json == UNUSABLE


def test_a_replace_writes_the_whole_list(mia):
    add(mia, 5, 6, 7)
    a = mia.post(URI, {"enable": 1, "parentalControls": [entry(1), entry(2)]})
    assert a.encrypted and a.json == OK
    assert [s.options for s in mia.package("mia") if s.type == "macbind"] == [
        {"enable": f"child {n}", "macaddr": f"AA:BB:CC:DD:EE:0{n}", "timeon": "07:00", "timeoff": "20:00"} for n in (1, 2)]
    mia.wait_for_call("/etc/init.d/firewall", "restart")


def test_an_empty_array_clears_the_list_and_sets_the_switch(mia):
    add(mia, 1)
    assert mia.post(URI, {"enable": 0, "parentalControls": []}).json == OK
    assert explanations(mia) == [] and mia.option("mia.@basic[0].enable") == "0"


@pytest.mark.parametrize("key", ["explain", "macAddress", "startTime", "endTime"])
def test_an_element_that_lacks_a_key_ends_the_replace_after_the_old_list_is_gone(mia, key):
    add(mia, 8)
    broken = entry(2)
    del broken[key]
    assert mia.post(URI, {"enable": 1, "parentalControls": [entry(1), broken, entry(3)]}).json == UNUSABLE
    assert explanations(mia) == ["child 1"]
    mia.wait_for_call("/etc/init.d/firewall", "restart")


@pytest.mark.parametrize("body", [{"parentalControls": []}, {"enable": None, "parentalControls": []},
                                  {"enable": 1}, {"enable": 1, "parentalControls": {}},
                                  {"enable": 1, "parentalControls": "x"}, {"enable": "", "parentalControls": []},
                                  {"enable": True, "parentalControls": []}, {"enable": [1], "parentalControls": []},
                                  {"enable": "1\x01", "parentalControls": []}, None, *GARBAGE_BODIES.values()],
                         ids=lambda value: None)
def test_an_unusable_replace_is_result_1_and_keeps_the_list(mia, body):
    add(mia, 1)
    assert mia.post(URI, body).json == UNUSABLE
    assert explanations(mia) == ["child 1"]
    mia.wait_for_call("/etc/init.d/firewall", "restart")


@pytest.mark.parametrize("element", [None, 1, "x", [], True], ids=str)
def test_an_element_that_is_no_object_is_refused_before_anything_is_written(mia, element):
    assert_refused(mia, [entry(1), element])


def assert_refused(mia, elements):
    """Result 1, and the list as it was; the firewall is restarted all the same."""
    add(mia, 8)
    before = mia.read("/etc/config/mia")
    a = mia.post(URI, {"enable": 0, "parentalControls": elements})
    assert a.encrypted and a.json == UNUSABLE
    assert mia.read("/etc/config/mia") == before
    mia.wait_for_call("/etc/init.d/firewall", "restart")


@pytest.mark.parametrize("key, text", [
    *((key, text) for key in ("macAddress", "startTime", "endTime") for text in ("", "a\nb", "a\r", "\x01")),
    ("explain", "\x01")], ids=ascii)
def test_a_text_that_cannot_be_kept_is_refused_before_anything_is_written(mia, key, text):
    assert_refused(mia, [entry(1), entry(2, **{key: text})])


@pytest.mark.parametrize("value", [None, [], {}, True], ids=str)
def test_a_value_that_is_no_text_is_a_missing_one(mia, value):
    add(mia, 8)
    assert mia.post(URI, {"enable": 1, "parentalControls": [entry(1), entry(2, endTime=value)]}).json == UNUSABLE
    assert explanations(mia) == ["child 1"]


def test_an_empty_explanation_reads_as_empty(mia):
    assert mia.post(URI, {"enable": 1, "parentalControls": [entry(1), entry(2, explain="")]}).json == OK
    assert [row["explain"] for row in mia.get(URI).json["parentalControls"]] == ["child 1", ""]


@pytest.mark.parametrize("option", ["macaddr", "timeon", "timeoff"])
def test_an_entry_that_lacks_an_option_is_result_2_alone(mia, option):
    add(mia, 1, 2, 3)
    mia.set(f"mia.@macbind[1].{option}", None)
    a = mia.get(URI)
    assert a.encrypted and a.text == '{ "result": 2 }'


@pytest.mark.parametrize("option, answer", [("timeon", {"result": 2}), ("timeoff", {"result": 2}), (
    "macaddr", {"result": 0, "version": 1, "enable": 1, "parentalControls": []})])
def test_a_last_entry_without_an_address_leaves_the_list_empty(mia, option, answer):
    add(mia, 1, 2)
    mia.set(f"mia.@macbind[1].{option}", None)
    assert mia.get(URI).json == answer


@pytest.mark.parametrize("key, option", [("explain", "enable"), ("startTime", "timeon")])
def test_a_text_is_cut_at_a_character_s_end(mia, key, option):
    bound = 254 - len(f"mia.@macbind[-1].{option}=")
    for lead in range(3):
        text = "x" * lead + "日" * 100
        assert mia.post(URI, {"enable": 1, "parentalControls": [entry(1, **{key: text})]}).json == OK
        kept = cut(text, bound)
        assert len(kept.encode()) > bound - 3 and mia.option(f"mia.@macbind[0].{option}") == kept
        document = mia.get(URI).json
        assert document["parentalControls"][0][key] == kept
        assert mia.post(URI, document).json == OK and mia.get(URI).json == document


def test_a_stored_text_is_shown_up_to_a_character_s_end(mia):
    add(mia, 1)
    mia.set("mia.@macbind[0].enable", "x" + "日" * 400)
    assert mia.get(URI).json["parentalControls"][0]["explain"] == "x" + "日" * 340  # of 1,023 bytes


@pytest.mark.parametrize("option", ["enable", "macaddr", "timeon", "timeoff"])
def test_an_entry_that_cannot_be_read_is_result_2_alone(mia, option):
    add(mia, 1, 2)
    mia.set(f"mia.@macbind[0].{option}", ["a", "b"])
    a = mia.get(URI)
    assert a.encrypted and a.text == '{ "result": 2 }'


def test_a_last_address_that_cannot_be_read_leaves_the_list_empty(mia):
    add(mia, 1, 2)
    mia.set("mia.@macbind[1].macaddr", ["a", "b"])
    assert mia.get(URI).json == {"result": 0, "version": 1, "enable": 1, "parentalControls": []}
    assert mia.logged("get mia.macbind macaddr error", priority=7, by="handle_get_parental_control_info")


def test_an_absent_switch_is_result_1_alone(mia):
    add(mia, 1)
    mia.set("mia.@basic[0].enable", None)
    a = mia.get(URI)
    assert a.encrypted and a.text == '{ "result": 1 }'


def test_a_long_stored_text_is_bounded(mia):
    add(mia, 1)
    mia.set("mia.@macbind[0].enable", "x" * 2000)
    assert mia.get(URI).json["parentalControls"][0]["explain"] == "x" * 1023


@pytest.mark.parametrize("enable, kept", [(1, "1"), ("1", "1"), (1.0, "1.0"), ("on", "on"), (0, "0"), (-3, "-3")])
def test_the_switch_is_kept_as_its_text(mia, enable, kept):
    assert mia.post(URI, {"enable": enable, "parentalControls": []}).json == OK
    assert mia.option("mia.@basic[0].enable") == kept


@pytest.mark.parametrize("body, message", [
    (None, "data is NULL"), (b"not json", "jsonObj is NULL"), ({"enable": 1}, "parentalControls is NULL"),
    ({"enable": 1, "parentalControls": None}, "parentalControls is NULL"), ({"parentalControls": []}, "enable is NULL")])
def test_a_replace_that_is_unusable_is_told_in_the_log(mia, body, message):
    assert mia.post(URI, body).json == UNUSABLE
    assert mia.logged(message, priority=3)


def test_without_the_switch_s_section_the_replace_ends_after_the_old_list_is_gone(router):
    router.config("mia", "config macbind\n\toption enable 'old'\n")
    assert router.post(URI, {"enable": 1, "parentalControls": [entry()]}).json == UNUSABLE
    assert router.logged("Failed to set enable", priority=3)
    assert router.package("mia") == []


def test_without_the_package_a_change_is_result_1(router):
    router.no_config("mia")
    assert router.post(URI, {"enable": 1, "parentalControls": [entry()]}).json == UNUSABLE
    assert router.post(DELETE, {"parentalControls": [{"id": 0}]}).json == UNUSABLE
    assert not router.exists("/etc/config/mia")


def test_what_is_stored_is_traced(mia):
    mia.post(URI, {"enable": 1, "parentalControls": [entry(1)]})
    for text in ("explain: child 1", "macAddress: AA:BB:CC:DD:EE:01", "startTime: 07:00", "endTime: 20:00"):
        assert mia.logged(text, priority=7, by="parental_control_set_from_json")


@pytest.mark.parametrize("tool", [{"exit": 1}, {"missing": True}, {"hang": True}], ids=["fails", "missing", "hangs"])
def test_a_firewall_that_does_not_restart_changes_no_answer(mia, tool):
    mia.tool("/etc/init.d/firewall", **tool)
    assert mia.post(URI, {"enable": 1, "parentalControls": [entry(1)]}).json == OK
    assert mia.post(DELETE, {"parentalControls": [{"id": 0}]}).json == OK
    assert mia.alive()


# Delete.

def test_entries_are_deleted_from_the_last_one_on(mia):
    add(mia, 1, 2, 3, 4)
    a = mia.post(DELETE, {"parentalControls": [{"id": 0}, {"id": "2"}, {"id": 1}]})
    assert a.encrypted and a.json == OK
    assert explanations(mia) == ["child 4"]
    mia.wait_for_call("/etc/init.d/firewall", "restart")


@pytest.mark.parametrize("elements", [[{"id": 9}], [{}], [None], [{"id": None}], [{"id": 0}, {}], *(
    [{"id": 0}, {"id": bad}] for bad in ("", "x", [], {}, [0], True, False, -1, "-1", 2**31, "4294967296", 2**64))], ids=str)
def test_an_id_that_is_missing_or_unknown_is_result_1(mia, elements):
    add(mia, 1)
    assert mia.post(DELETE, {"parentalControls": elements}).json == UNUSABLE
    assert explanations(mia) == ["child 1"]


def test_an_unknown_position_is_met_before_the_lower_ones(mia):
    add(mia, 1, 2)
    assert mia.post(DELETE, {"parentalControls": [{"id": 0}, {"id": 9}, {"id": 1}]}).json == UNUSABLE
    assert explanations(mia) == ["child 1", "child 2"]
    assert mia.logged("Failed to delete section: mia.@macbind[9]", priority=3, by="parental_control_delete_from_json")
    for number in (0, 9, 1):
        assert mia.logged(f"id: {number}")


@pytest.mark.parametrize("body, message", [(None, "data is NULL"), (b"not json", "jsonObj is NULL"),
                                           ({}, "parentalControls is NULL")])
def test_a_delete_that_is_unusable_is_told_in_the_log(mia, body, message):
    assert mia.post(DELETE, body).json == UNUSABLE
    assert mia.logged(message, priority=3)


def test_2048_ids_are_taken(mia):
    add(mia, 1)
    add(mia, 2)
    assert mia.post(DELETE, {"parentalControls": [{"id": 0}] * 2048}).json == OK  # an id named twice is one
    assert explanations(mia) == ["child 2"]


def test_more_than_2048_ids_are_refused(mia):
    add(mia, 1)
    assert mia.post(DELETE, {"parentalControls": [{"id": 0}] * 2049}).json == UNUSABLE
    assert explanations(mia) == ["child 1"]


@pytest.mark.parametrize("body", [{}, {"parentalControls": 1}, None, *GARBAGE_BODIES.values()], ids=lambda value: None)
def test_an_unusable_delete_is_result_1(mia, body):
    assert mia.post(DELETE, body).json == UNUSABLE
    mia.wait_for_call("/etc/init.d/firewall", "restart")
