"""GET /api/v1/system/log/message and POST /api/v1/system/log/clear."""

from pathlib import Path

import pytest

from kit.router import SANITIZER_OPTIONS

URI = "/api/v1/system/log/message"
LOG = "/var/log/messages.log"


def entries(router):
    a = router.get(URI)
    assert a.encrypted and (a.json["result"], a.json["version"]) == (0, 1)
    return a.json["systemlogMsg"]


def test_a_line_is_split_into_time_category_and_text(router):
    router.write(LOG, "2026-01-02 03:04:05 [system] something happened\n")
    assert entries(router) == [{"time": "2026-01-02 03:04:05", "category": "[system]", "msg": "something happened"}]
    assert list(entries(router)[0]) == ["time", "category", "msg"]


@pytest.mark.parametrize("mark", ["AM", "PM"])
def test_a_line_of_the_wireless_driver_has_the_category_wlan(router, mark):
    router.write(LOG, f"01/02 03:04:05 {mark}   wireless station joined\n")
    assert entries(router) == [{"time": f"01/02 03:04:05 {mark}", "category": "[wlan]", "msg": "wireless station joined"}]


def test_am_is_looked_for_before_pm(router):
    router.write(LOG, "x PM y AM wireless\n")
    assert entries(router)[0]["time"] == "x PM y AM"


def test_lines_that_do_not_split_are_left_out_and_told(router):
    router.write(LOG, "no bracket\nopen [only\nwireless without a mark\n t [a] ok\n")
    assert [row["msg"] for row in entries(router)] == ["ok"]
    assert router.logged("Can't find character '[' in \"no bracket\"", priority=3)
    assert router.logged("Can't find character ']' in \"open [only\"", priority=3)
    assert router.logged("unknow format of log mesg of wlan", priority=3)


def test_the_messages_stand_under_the_name_of_the_function_that_splits(router):
    """Under a name that holds "wireless" the page would find its own messages again, as lines of the driver."""
    router.write(LOG, "no bracket\nopen [only\nwireless without a mark\n")
    assert entries(router) == []
    assert {line.function for line in router.log()} == {"fill_log_msg_value"}


def test_of_each_kind_of_line_that_does_not_split_the_first_one_is_told(router):
    router.write(LOG, "".join(f"no bracket {n}\nopen [only {n}\nwireless {n}\n" for n in range(50)))
    told = ["Can't find character '[' in \"no bracket 0\"", "Can't find character ']' in \"open [only 0\"",
            "unknow format of log mesg of wlan\n"]
    assert entries(router) == []
    assert [line.text for line in router.log()] == told
    assert entries(router) == []  # and again of the next request
    assert [line.text for line in router.log()] == told * 2


def test_a_shorter_value_keeps_the_tail_of_a_longer_one(router):
    router.write(LOG, "long-time [long-tag] a\nt [x] b\n")
    assert entries(router)[1] == {"time": "tong-time", "category": "[x]ng-tag]", "msg": "b"}


def test_without_a_log_the_list_is_empty(router):
    router.remove(LOG)
    assert entries(router) == []


def test_a_log_that_cannot_be_read_is_result_1_alone(router):
    router.remove(LOG)
    router.write(LOG + "/a-folder-in-its-place", "")
    assert router.get(URI).json == {"result": 1}


def test_a_line_that_begins_with_a_bracket_has_no_time(router):
    router.write(LOG, "[a] text\n")
    assert entries(router)[0]["time"] == ""


def test_long_lines_and_fields_are_bounded(router):
    router.write(LOG, "t" * 100 + " [" + "c" * 100 + "] " + "m" * 280 + "\n")
    row = entries(router)[0]
    assert (len(row["time"]), len(row["category"]), len(row["msg"])) == (63, 63, 255)


def test_hostile_lines_are_data(router):
    text = b"%n%s $(touch /tmp/pwned) [a'b\"] \xff\xfe `x`\n"
    router.write(LOG, text)
    assert "\udcff" in entries(router)[0]["msg"] or entries(router)[0]["msg"]
    router.assert_nothing_ran()


def test_a_log_of_3_megabytes_comes_whole(router):
    line = "2026-01-02 03:04:05 [system] " + "x" * 100 + "\n"
    count = 3 * 1024 * 1024 // len(line)
    router.write(LOG, line * count)
    assert len(entries(router)) == count


def kilobytes(router, key):
    return int((Path("/proc") / str(router.pid()) / "status").read_text().split(key + ":")[1].split()[0])


def test_a_log_of_3_megabytes_leaves_no_memory_behind(router):
    # A freed block stays resident in AddressSanitizer's quarantine.
    router.environment = {"ASAN_OPTIONS": SANITIZER_OPTIONS["ASAN_OPTIONS"] + ":quarantine_size_mb=0"
                                                                              ":thread_local_quarantine_size_kb=0"}
    line = "2026-01-02 03:04:05 [system] " + "x" * 90 + "\n"
    router.write(LOG, line * 100)
    for _ in range(3):
        router.get(URI)
    before = kilobytes(router, "VmRSS")
    router.write(LOG, line * (3_200_000 // len(line)))
    size = len(router.get(URI).body) // 1024
    assert kilobytes(router, "VmHWM") - before < 3 * size
    router.wait_until(lambda: kilobytes(router, "VmRSS") - before < 1024, "the end of what the log took")


@pytest.mark.parametrize("body", [None, {}, "x"])
def test_clearing_moves_the_log_aside(router, body):
    router.write(LOG, "new\n")
    router.write(LOG + ".old", "older\n")
    a = router.post("/api/v1/system/log/clear", body)
    assert a.encrypted and a.text == '{"result": 0, "version": 1}'
    router.wait_until(lambda: not router.exists(LOG))
    assert router.read(LOG + ".old") == "new\n"


def test_clearing_succeeds_without_a_log(router):
    router.remove(LOG)
    assert router.post("/api/v1/system/log/clear", {}).json == {"result": 0, "version": 1}
