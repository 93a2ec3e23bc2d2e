"""Answers reach the client before the work that comes after them, which takes long or ends the program."""

import os

import client
import pytest

from waits import wait_until

ANSWER_DEADLINE_S = 120.0
# Each runs until the test lets it go on.
WORK = [
    ("/api/v1/reboot", {"timeTillReboot": 0}, "reboot", 360),
    ("/api/v1/accounts", {"newUser": "owner", "newPassword": "secret", "oldPassword": ""}, "usr/sbin/refreshPasswd.sh", 10),
    ("/api/v1/system/config/waninit", {}, "reboot", 420),
]


def replace_tool(router, tool, script):
    place = f"/router/tools/{tool}"
    router.root.remove(place)
    router.root.write(place, "#!/bin/sh\n" + script, 0o755)


def post(router, uri, body):
    sent = client.encrypt(client.json.dumps(body).encode())
    return client.request(router.base, "POST", uri, sent, plain=True, timeout_s=ANSWER_DEADLINE_S)


@pytest.mark.parametrize("uri, body, tool, wait", WORK, ids=[work[0] for work in WORK])
def test_the_answer_comes_while_the_work_still_runs(live, uri, body, tool, wait):
    router = live()
    os.mkfifo(router.root.path("/tmp/gate"))
    replace_tool(router, tool, "cat /tmp/gate\n: > /tmp/worked\n")
    assert post(router, uri, body).json == {"result": 0, "version": 1, "waitTime": wait}
    assert not router.root.exists("/tmp/worked")
    with open(router.root.path("/tmp/gate"), "w"):
        pass
    wait_until(lambda: router.root.exists("/tmp/worked"))
    assert router.get("/api/v1/lan").json["result"] == 0


def test_the_answer_comes_although_the_reboot_ends_the_program(live):
    router = live()
    replace_tool(router, "reboot", "kill -9 $(pgrep -x router-api)\n")
    first = router.program_pid()
    assert post(router, "/api/v1/reboot", {"timeTillReboot": 0}).json["result"] == 0
    wait_until(lambda: not os.path.exists(f"/proc/{first}"))
    wait_until(lambda: "is started again" in (router.root.read("/var/log/messages.log") or ""))
    assert router.get("/api/v1/lan").json["result"] == 0


def test_the_log_is_moved_once_the_answer_has_gone(live):
    router = live()
    router.root.write("/var/log/messages.log", "old\n")
    assert router.post("/api/v1/system/log/clear", {}).json == {"result": 0, "version": 1}
    wait_until(lambda: (router.root.read("/var/log/messages.log.old") or "").startswith("old\n"))
