"""POST /api/v1/reboot, POST /api/v1/system/config/initialize, GET and POST /api/v1/wireless/rebootschedule."""

import os
import stat

import pytest
from gate import Gate
from process_state import descriptors, resources

from kit import GARBAGE_BODIES, HOSTILE

REBOOT = "/api/v1/reboot"
RESET = "/api/v1/system/config/initialize"
SCHEDULE = "/api/v1/wireless/rebootschedule"
FILE = "/etc/config/rebootschedule.txt"
CRON_LIST = "/tmp/tmp_cron_list"
UNUSABLE = {"result": 1}


# Reboot.

@pytest.mark.parametrize("brand, wait", [("orvane", 360), ("tesmir", 500), ("0999", 360)])
@pytest.mark.parametrize("flag, button, is_long", [("0", "router_mode", True), ("1", "router_mode", False),
                                                   (None, "router_mode", False), ("0", "ap_mode", False),
                                                   ("off", "router_mode", True)])
def test_the_wait_depends_on_brand_flag_and_button(router, brand, wait, flag, button, is_long):
    router.brand(brand)
    router.set("network.wan.autoflag", flag)
    router.set("system.@system[0].button_mode", button)
    a = router.post(REBOOT, {"timeTillReboot": 0})
    assert a.encrypted and a.json == {"result": 0, "version": 1, "waitTime": wait if is_long else 120}
    router.wait_for_call("reboot")


def test_the_answer_comes_before_the_reboot(router):
    gate = Gate(router, "/router/bin/reboot")
    assert router.post(REBOOT, {"timeTillReboot": 0}).json["result"] == 0
    assert not gate.is_passed()
    gate.open()


@pytest.mark.parametrize("seconds", [1, 60, 3600])
def test_a_delay_arms_a_timer_and_reboots_once_it_is_over(router, seconds):
    assert router.post(REBOOT, {"timeTillReboot": seconds}).json["result"] == 0
    router.wait_for_call("reboot")
    assert [c for c in router.commands() if c.startswith(("timer", "reboot"))][:2] == [f"timer {seconds}", "reboot"]


def test_the_reboot_is_asked_for_until_the_router_goes_down(router):
    router.tool("reboot", exit=1)
    router.post(REBOOT, {"timeTillReboot": 60})
    router.wait_for_call("reboot", times=3)
    assert router.commands("timer") == ["timer 60"]


def test_one_reboot_is_pending_at_most(router):
    router.real_time = True
    router.post(REBOOT, {"timeTillReboot": 3600})
    before = resources(router.pid()).threads
    for seconds in range(3500, 3520):
        assert router.post(REBOOT, {"timeTillReboot": seconds}).json["result"] == 0
    assert resources(router.pid()).threads == before
    assert [link for link in descriptors(router.pid()) if "timerfd" in link] == ["anon_inode:[timerfd]"]
    assert router.calls("reboot") == []


@pytest.mark.parametrize("body", [{"timeTillReboot": 3601}, {"timeTillReboot": -1}, {}, None, *GARBAGE_BODIES.values()],
                         ids=["3601", "negative", "missing", "none", *GARBAGE_BODIES])
def test_another_delay_is_result_1_and_does_not_reboot(router, body):
    assert router.post(REBOOT, body).json == UNUSABLE
    assert router.calls("reboot") == []


@pytest.mark.parametrize("mode, is_set", [("MAP-E", True), ("MAP", True), (None, True), ("DHCP", False), ("MAP-E2", False)])
def test_a_map_e_line_is_told_that_a_reboot_comes(router, mode, is_set):
    router.set("network.wan.qvmapebootflag", None)
    router.set("network.wan.mode", mode)
    router.post(REBOOT, {"timeTillReboot": 60})
    assert router.option("network.wan.qvmapebootflag") == (" " if is_set else None)


@pytest.mark.parametrize("body", [{}, {"timeTillReboot": 3601}, None])
def test_a_refused_reboot_tells_a_map_e_line_nothing(router, body):
    router.set("network.wan.qvmapebootflag", None)
    router.set("network.wan.mode", "MAP-E")
    assert router.post(REBOOT, body).json == UNUSABLE
    assert router.option("network.wan.qvmapebootflag") is None


# Factory reset.

def test_a_reset_that_cannot_be_begun_is_result_2(router):
    router.write("/router/no-threads", "")
    assert router.post(RESET, {}).json == {"result": 2}
    assert [line.text for line in router.log()] == ["pthread_create fail"]


@pytest.mark.parametrize("brand, wait", [("orvane", 420), ("tesmir", 480), ("0999", 420)])
@pytest.mark.parametrize("body", [None, "not json"])
def test_a_reset_is_answered_and_then_run(router, brand, wait, body):
    router.brand(brand)
    a = router.post(RESET, body)
    assert a.encrypted and a.json == {"result": 0, "version": 1, "waitTime": wait}
    router.wait_for_call("/sbin/firstboot", "-r", "-y")
    assert router.commands()[-2:] == ["sleep 2", "/sbin/firstboot -r -y"]


# Schedule.

def test_without_a_file_the_schedule_is_off(router):
    a = router.get(SCHEDULE)
    assert not a.encrypted
    assert a.text == ('{ "result": 0, "version": 1, "rebootSchduleStatus": 0, "rebootDayOfWeek": 0, '
                      '"rebootTime": "0000" }')


@pytest.mark.parametrize("text", ["", "1\n", "1 2\n", "x y z\n", "%n %s\n"])
def test_a_file_without_three_values_is_result_1(router, text):
    router.write(FILE, text)
    assert router.get(SCHEDULE).json == UNUSABLE


def test_a_stored_schedule_is_reported(router):
    router.write(FILE, "1 7 23599999")
    assert router.get(SCHEDULE).json == {"result": 0, "version": 1, "rebootSchduleStatus": 1, "rebootDayOfWeek": 7,
                                         "rebootTime": "2359"}


def schedule(status=1, day=1, time="0330"):
    return {"rebootSchduleStatus": status, "rebootDayOfWeek": day, "rebootTime": time}


@pytest.mark.parametrize("day, weekday", [(0, "*"), (1, "0"), (2, "1"), (7, "6")])
def test_a_schedule_is_written_to_its_file_and_to_cron(router, day, weekday):
    router.tool("crontab", "-l", out="1 2 * * * other\n")
    router.record("cat")
    router.tool("crontab", "/tmp/tmp_cron_list")
    a = router.post(SCHEDULE, schedule(day=day))
    assert not a.encrypted and a.text == '{"result": 0, "version": 1, "waitTime": 20}'
    assert router.read(FILE) == f"1 {day} 0330"
    assert router.commands("crontab") == ["crontab -l", "crontab /tmp/tmp_cron_list"]
    assert router.get(SCHEDULE).json["rebootDayOfWeek"] == day


def test_without_room_for_its_file_a_schedule_is_refused(router):
    router.full_disk("/etc/config", {"rebootschedule.txt": "1 7 2359"})
    a = router.post(SCHEDULE, schedule())
    assert not a.encrypted and a.json == UNUSABLE
    assert router.get(SCHEDULE).json["rebootTime"] == "2359"
    assert router.commands() == []


def test_the_cron_line_has_minute_hour_and_weekday(router):
    router.tool("crontab", "-l", out="")
    router.tool("crontab", "/tmp/tmp_cron_list", exit=1)  # the list then stays for us to read
    router.post(SCHEDULE, schedule(day=1, time="0330"))
    assert router.read("/tmp/tmp_cron_list") == "30 3 * * 0 reboot &\n"


def test_switching_off_takes_every_reboot_line_out(router):
    router.write(FILE, "1 1 0330")
    router.tool("crontab", "-l", out="1 2 * * * other\n30 3 * * 0 reboot &\n1 1 * * 1 reboot &\n")
    router.tool("crontab", "/tmp/tmp_cron_list", exit=1)
    assert router.post(SCHEDULE, schedule(status=0)).json["result"] == 0
    assert router.read("/tmp/tmp_cron_list") == "1 2 * * * other\n"
    assert not router.exists(FILE)


@pytest.mark.parametrize("status", [0, 1])
def test_a_planted_link_is_not_written_through(router, status):
    router.write("/etc/victim", "kept\n")
    os.symlink("/etc/victim", router.root.path(CRON_LIST))
    router.tool("crontab", "-l", out="1 2 * * * other\n")
    router.tool("crontab", CRON_LIST, exit=1)  # the list then stays for us to read
    assert router.post(SCHEDULE, schedule(status=status)).json["result"] == 0
    assert router.read("/etc/victim") == "kept\n"
    listed = os.lstat(router.root.path(CRON_LIST))
    assert stat.S_ISREG(listed.st_mode) and stat.S_IMODE(listed.st_mode) == 0o600
    assert router.read(CRON_LIST).startswith("1 2 * * * other\n")


@pytest.mark.parametrize("status", [0, 1])
def test_a_planted_fifo_holds_nobody(router, status):
    os.mkfifo(router.root.path(CRON_LIST))
    router.tool("crontab", "-l", out="1 2 * * * other\n")
    assert router.post(SCHEDULE, schedule(status=status)).json["result"] == 0
    assert router.commands("crontab") == ["crontab -l", f"crontab {CRON_LIST}"]
    assert not os.path.lexists(router.root.path(CRON_LIST))


@pytest.mark.parametrize("status", [0, 1])
def test_a_list_that_cannot_be_made_is_result_1_and_changes_nothing(router, status):
    router.write(FILE, "1 7 2359")
    os.mkdir(router.root.path(CRON_LIST))
    assert router.post(SCHEDULE, schedule(status=status)).json == UNUSABLE
    assert router.read(FILE) == "1 7 2359" and router.calls("crontab") == []
    assert router.logged(f"{CRON_LIST} cannot be made", priority=3)


@pytest.mark.parametrize("body", [
    schedule(status=2), schedule(status=-1), schedule(day=8), schedule(day=-1), schedule(time="2400"),
    schedule(time="0060"), schedule(time="330"), schedule(time="03300"), schedule(time="ab30"), schedule(time=""),
    {"rebootSchduleStatus": 1}, None, *GARBAGE_BODIES.values()],
    ids=lambda value: None)
def test_anything_else_is_result_1_and_changes_nothing(router, body):
    a = router.post(SCHEDULE, body)
    assert not a.encrypted and a.json == UNUSABLE
    assert not router.exists(FILE) and router.calls("crontab") == []


@pytest.mark.parametrize("text", HOSTILE.values(), ids=HOSTILE.keys())
def test_hostile_text_is_no_time(router, text):
    assert router.post(SCHEDULE, schedule(time=text)).json == UNUSABLE
    router.assert_nothing_ran()
