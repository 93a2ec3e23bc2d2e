"""POST /api/v1/accounts."""

import os
import stat

import pytest
from gate import Gate

from kit import GARBAGE_BODIES, HOSTILE

URI = "/api/v1/accounts"
UNUSABLE = {"result": 1}
GOOD = {"newUser": "owner", "newPassword": "s3cret pass", "oldPassword": "old"}
PASSWORDS = {name: text for name, text in HOSTILE.items() if 0 < len(text.encode("utf-8", "surrogateescape")) < 64
             and "\n" not in text}


def test_user_and_password_are_set(router):
    a = router.post(URI, GOOD)
    assert a.encrypted and a.text == '{"result": 0, "version": 1, "waitTime": 10}'
    assert router.option("rpcd.log_on.username") == "owner"
    assert [(c.args, c.stdin) for c in router.calls("passwd")] == [(("admin",), "s3cret pass\ns3cret pass\n")]
    assert router.read("/etc/apfpasswd") == "s3cret pass\n"
    router.wait_until(lambda: any("/usr/sbin/refreshPasswd.sh" in c for c in router.commands()))


def test_the_answer_comes_before_the_refresh(router):
    gate = Gate(router, "/usr/sbin/refreshPasswd.sh")
    assert router.post(URI, GOOD).json["result"] == 0
    assert not gate.is_passed()
    gate.open()


def test_the_password_file_is_its_owners_alone(router):
    router.write("/etc/apfpasswd", "old\n", 0o644)
    router.post(URI, GOOD)
    assert stat.S_IMODE(os.stat(router.root.path("/etc/apfpasswd")).st_mode) == 0o600


@pytest.mark.parametrize("text", PASSWORDS.values(), ids=PASSWORDS.keys())
def test_any_text_is_a_password_and_stands_in_no_argument_and_no_log(router, text):
    assert router.post(URI, {**GOOD, "newPassword": text}).json["result"] == 0
    assert router.calls("passwd")[0].stdin == f"{text}\n{text}\n"
    assert router.read("/etc/apfpasswd") == text + "\n"
    if len(text) > 3:
        assert not any(text in word for call in router.calls() for word in call.args)
        assert not router.logged(text)
    router.assert_nothing_ran()


@pytest.mark.parametrize("change", [
    {"newUser": None}, {"newPassword": None}, {"newUser": ""}, {"newPassword": ""}, {"newUser": "u" * 16},
    {"newPassword": "p" * 64}, {"oldPassword": "o" * 64}, {"newPassword": "two\nlines"}, {"newUser": "two\nlines"}],
    ids=str)
def test_a_missing_long_or_broken_text_is_result_1_and_changes_nothing(router, change):
    before = router.read("/etc/config/rpcd")
    body = {key: value for key, value in {**GOOD, **change}.items() if value is not None}
    assert router.post(URI, body).json == UNUSABLE
    assert router.read("/etc/config/rpcd") == before
    assert router.calls("passwd") == [] and not router.exists("/etc/apfpasswd")


@pytest.mark.parametrize("text", ["a\rb", "a\tb", "\x01", "\x7f", "line\n"], ids=repr)
def test_a_name_that_is_no_line_of_text_is_refused(router, text):
    before = router.read("/etc/config/rpcd")
    assert router.post(URI, {**GOOD, "newUser": text}).json == UNUSABLE
    assert router.read("/etc/config/rpcd") == before
    assert router.calls("passwd") == [] and not router.exists("/etc/apfpasswd")


def test_a_password_with_a_lines_end_is_refused(router):
    assert router.post(URI, {**GOOD, "newPassword": "two\rlines"}).json == UNUSABLE
    assert router.calls("passwd") == []


def test_without_room_for_the_password_everything_stays_as_it_was(router):
    router.full_disk("/etc", {"apfpasswd": "old\n", "config/rpcd": "config rpcd 'log_on'\n\toption username 'me'\n"})
    assert router.post(URI, GOOD).json == UNUSABLE
    assert router.read_running("/etc/apfpasswd") == "old\n"
    assert "'me'" in router.read_running("/etc/config/rpcd")
    assert router.commands() == []


def test_texts_as_long_as_their_limits_are_taken(router):
    body = {"newUser": "u" * 15, "newPassword": "p" * 63, "oldPassword": "o" * 63}
    assert router.post(URI, body).json["result"] == 0
    assert router.option("rpcd.log_on.username") == "u" * 15


@pytest.mark.parametrize("body", [None, *GARBAGE_BODIES.values()], ids=["none", *GARBAGE_BODIES])
def test_an_unusable_body_is_result_1_and_changes_nothing(router, body):
    assert router.post(URI, body).json == UNUSABLE
    assert router.calls("passwd") == []


def test_dead_tools_are_not_reported(router):
    router.tool("passwd", missing=True)
    router.no_config("rpcd")
    assert router.post(URI, GOOD).json["result"] == 0


def test_what_passwd_says_of_a_password_stays_out_of_the_web_servers_log(router):
    router.tool("passwd", err="BAD PASSWORD: s3cret\n")
    assert router.post(URI, GOOD).json["result"] == 0
    assert "BAD PASSWORD" not in router.stderr()
