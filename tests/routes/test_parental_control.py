"""GET and POST /api/v1/parental-control, POST /api/v1/parental-control/delete."""

import pytest

from kit import GARBAGE_BODIES, HOSTILE

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
                                  {"enable": 1, "parentalControls": "x"}, None, *GARBAGE_BODIES.values()],
                         ids=lambda value: None)
def test_an_unusable_replace_is_result_1_and_keeps_the_list(mia, body):
    add(mia, 1)
    assert mia.post(URI, body).json == UNUSABLE
    assert explanations(mia) == ["child 1"]
    mia.wait_for_call("/etc/init.d/firewall", "restart")


def test_an_element_that_is_no_object_ends_the_replace(mia):
    assert mia.post(URI, {"enable": 1, "parentalControls": [None]}).json == UNUSABLE


def test_an_empty_text_does_not_break_the_list(mia):
    assert mia.post(URI, {"enable": 1, "parentalControls": [entry(1), entry(2, explain="", macAddress="")]}).json == OK
    assert [row["explain"] for row in mia.get(URI).json["parentalControls"]] == ["child 1", ""]


@pytest.mark.parametrize("text", [t for n, t in HOSTILE.items() if n not in ("empty", "control", "long", "long-quotes")])
def test_hostile_texts_are_stored_whole_and_do_nothing(mia, text):
    assert mia.post(URI, {"enable": 1, "parentalControls": [entry(1, explain=text)]}).json == OK
    assert explanations(mia) == [text]
    assert mia.get(URI).json["parentalControls"][0]["explain"] == text
    mia.wait_for_call("/etc/init.d/firewall", "restart")
    mia.assert_nothing_ran()


@pytest.mark.parametrize("name", ["long", "long-quotes"])
def test_a_text_of_thousands_of_characters_is_bounded_by_its_option(mia, name):
    assert mia.post(URI, {"enable": 1, "parentalControls": [entry(1, explain=HOSTILE[name])]}).json == OK
    assert explanations(mia) == [HOSTILE[name][:254 - len("mia.@macbind[-1].enable=")]]


# Delete.

def test_entries_are_deleted_from_the_last_one_on(mia):
    add(mia, 1, 2, 3, 4)
    a = mia.post(DELETE, {"parentalControls": [{"id": 0}, {"id": "2"}, {"id": 1}]})
    assert a.encrypted and a.json == OK
    assert explanations(mia) == ["child 4"]
    mia.wait_for_call("/etc/init.d/firewall", "restart")


@pytest.mark.parametrize("elements", [[{"id": 9}], [{}], [None], [{"id": None}], [{"id": 0}, {}]])
def test_an_id_that_is_missing_or_unknown_is_result_1(mia, elements):
    add(mia, 1)
    assert mia.post(DELETE, {"parentalControls": elements}).json == UNUSABLE
    assert explanations(mia) == ["child 1"]


def test_more_than_2048_ids_are_refused(mia):
    add(mia, 1)
    assert mia.post(DELETE, {"parentalControls": [{"id": 0}] * 2049}).json == UNUSABLE
    assert explanations(mia) == ["child 1"]


@pytest.mark.parametrize("body", [{}, {"parentalControls": 1}, None, *GARBAGE_BODIES.values()], ids=lambda value: None)
def test_an_unusable_delete_is_result_1(mia, body):
    assert mia.post(DELETE, body).json == UNUSABLE
    mia.wait_for_call("/etc/init.d/firewall", "restart")
