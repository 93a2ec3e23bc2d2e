"""Members of another kind than the one asked for, in every POST route of the system: each is a missing one."""

import pytest

NO_NUMBER = [None, [], {}, [1], {"a": 1}, "", "abc", "1x", " 1", "0x1", 1.5, 1e400]
NO_TEXT = [None, [], {}, ["a"], {"a": 1}, True, False]
NO_OBJECT = [None, [], [{}], "{}", 1, True]
UNUSABLE = {"result": 1}
OK_20 = {"result": 0, "version": 1, "waitTime": 20}
LED = "/sys/devices/platform/soc@0/soc@0:leds/leds/led_router/brightness"
SCHEDULE = {"rebootSchduleStatus": 1, "rebootDayOfWeek": 1, "rebootTime": "0330"}
ACCOUNT = {"newUser": "owner", "newPassword": "secret", "oldPassword": "old"}

# URI, a document that works, the member, what it is not, and the answer without it.
MEMBERS = [
    ("reboot", {"timeTillReboot": 0}, "timeTillReboot", NO_NUMBER, UNUSABLE),
    ("fwupdatechkandrun", {"checkAndUpdate": 1}, "checkAndUpdate", NO_NUMBER, UNUSABLE),
    ("wireless/rebootschedule", SCHEDULE, "rebootSchduleStatus", NO_NUMBER, UNUSABLE),
    ("wireless/rebootschedule", SCHEDULE, "rebootDayOfWeek", NO_NUMBER, UNUSABLE),
    ("wireless/rebootschedule", SCHEDULE, "rebootTime", NO_TEXT, UNUSABLE),
    ("accounts", ACCOUNT, "newUser", NO_TEXT, UNUSABLE),
    ("accounts", ACCOUNT, "newPassword", NO_TEXT, UNUSABLE),
    ("test/switch", {"position": 2}, "position", NO_NUMBER, UNUSABLE),
    ("router/info", {"routerInfo": {"location": 1}}, "routerInfo", NO_OBJECT, UNUSABLE),
]
OPTIONAL = [("model", NO_TEXT), ("location", NO_NUMBER), ("locationCustom", NO_TEXT), ("ledStatus", NO_NUMBER)]


def state(router):
    folder = router.root.path("/etc/config")
    return {path.name: path.read_bytes() for path in folder.iterdir()}


@pytest.mark.parametrize("route, good, member, values, answer", MEMBERS, ids=[f"{row[0]}-{row[2]}" for row in MEMBERS])
def test_a_member_of_another_kind_is_a_missing_one(router, route, good, member, values, answer):
    router.write("/tmp/HotaVersionStatus", "1\n")
    router.write("/sys/kernel/debug/gpio", " gpio38  in 0 low 8mA\n")
    before = state(router)
    without = {key: value for key, value in good.items() if key != member}
    assert router.post(f"/api/v1/{route}", without).json == answer
    for value in values:
        assert router.post(f"/api/v1/{route}", {**good, member: value}).json == answer, value
    busy_tests = {"wc", "grep", "ps"}
    assert [call for call in router.commands() if call.split()[0] not in busy_tests] == []
    assert state(router) == before


@pytest.mark.parametrize("member, values", OPTIONAL, ids=[row[0] for row in OPTIONAL])
def test_an_optional_member_of_another_kind_changes_nothing(router, member, values):
    router.write(LED, "as it was\n")
    before = state(router)
    for value in values:
        assert router.post("/api/v1/router/info", {"routerInfo": {member: value}}).json == OK_20, value
    assert state(router) == before and router.read(LED) == "as it was\n" and router.commands() == []


@pytest.mark.parametrize("value", NO_TEXT, ids=str)
def test_an_old_password_of_another_kind_is_not_looked_at(router, value):
    assert router.post("/api/v1/accounts", {**ACCOUNT, "oldPassword": value}).json["result"] == 0


@pytest.mark.parametrize("value", [0, "0", 0.0, False, "-0", "000"], ids=repr)
def test_what_counts_as_a_number(router, value):
    assert router.post("/api/v1/reboot", {"timeTillReboot": value}).json["result"] == 0
    router.wait_for_call("reboot")


@pytest.mark.parametrize("value", ["99999999999999999999", 99999999999999999999, "-1", 3601.0], ids=repr)
def test_a_number_beyond_int_is_a_large_one(router, value):
    assert router.post("/api/v1/reboot", {"timeTillReboot": value}).json == UNUSABLE
    assert router.commands() == []


def test_a_number_is_its_text_where_one_is_asked_for(router):
    assert router.post("/api/v1/accounts", {"newUser": 12, "newPassword": 3.5}).json["result"] == 0
    assert router.option("rpcd.log_on.username") == "12"
    assert router.calls("passwd")[0].stdin == "3.5\n3.5\n"
    assert router.post("/api/v1/wireless/rebootschedule", {**SCHEDULE, "rebootTime": 1230}).json == OK_20
    assert router.get("/api/v1/wireless/rebootschedule").json["rebootTime"] == "1230"
