"""POST /api/v1/pppoe/start, GET /api/v1/pppoe/response and /api/v1/pppoe/result."""

import json
import re

import pytest

from kit import GARBAGE_BODIES, HOSTILE

from wan_setup import ENCRYPT

START = "/api/v1/pppoe/start"
RESPONSE = "/api/v1/pppoe/response"
RESULT = "/api/v1/pppoe/result"

PROBE = "/etc/qvpppoe_chk_cmd.sh"
VERDICT = "/tmp/pppoechkresult.txt"
CARRIER = "/sys/class/net/eth1/carrier"

HEADER = ["Content-Type: application/json", "Status: 200 OK"]
UNUSABLE = '{"result": 1}'


# The start of a probe.

@pytest.mark.parametrize("body", [None, {}, {"a": 1}, b"hello"])
def test_a_probe_is_started_whatever_the_body(router, body):
    answer = router.post(START, body)
    assert answer.header_lines == HEADER
    assert (answer.encrypted, answer.text) == (True, '{"result": 0, "version": 1, "waitTime": 20}')
    router.assert_calls(PROBE)


def test_a_garbage_body_is_not_looked_at(router):
    for name, body in GARBAGE_BODIES.items():
        assert router.post(START, body).json["result"] == 0, name
    router.assert_calls(*[PROBE] * len(GARBAGE_BODIES))


@pytest.mark.parametrize("answer", [{"exit": 1}, {"exit": 255}, {"exit": 127}, {"signal": 9}, {"missing": True}],
                         ids=["fails", "fails-255", "fails-127", "dies", "missing"])
def test_a_probe_that_fails_is_result_1(router, answer):
    router.tool(PROBE, **answer)
    response = router.post(START)
    assert response.header_lines == HEADER
    assert (response.encrypted, response.text) == (True, UNUSABLE)


def test_the_probes_output_is_not_answered(router):
    router.tool(PROBE, out="{}\n%s\n")
    assert router.post(START).text == '{"result": 0, "version": 1, "waitTime": 20}'


# The outcome of a probe.

def verdict(router, text, carrier="1\n"):
    """What the probe leaves, and the line it finds."""
    router.write(CARRIER, carrier)
    router.tool(PROBE, write={} if text is None else {VERDICT: text})


def test_the_outcome_stands_in_its_order(router):
    verdict(router, "1\n")
    answer = router.get(RESPONSE)
    assert answer.header_lines == HEADER
    assert (answer.encrypted, answer.text) == (True, '{ "result": 0, "version": 1, "response": 0 }')
    router.assert_calls(PROBE)


@pytest.mark.parametrize("carrier", ["0\n", "0", "", "x", "0\n1\n", None])
def test_without_a_cable_the_probe_is_not_run(router, carrier):
    verdict(router, "1\n")
    router.remove(CARRIER) if carrier is None else router.write(CARRIER, carrier)
    assert router.get(RESPONSE).text == '{ "result": 0, "version": 1, "response": 2 }'
    router.assert_calls()


@pytest.mark.parametrize("text, response", [
    ("1\n", 0), ("1", 0), ("2\n", 0), ("255\n", 0), ("-2\n", 0), (" 1\n", 0), ("1x\n", 0), ("0\n", 1), ("0", 1), ("-1\n", 1),
    ("x\n", 1), ("", 1), ("\n", 1), ("-1x", 1), ("00\n", 1)])
def test_a_verdict_other_than_0_and_minus_1_is_a_server(router, text, response):
    verdict(router, text)
    assert router.get(RESPONSE).json == {"result": 0, "version": 1, "response": response}


@pytest.mark.parametrize("text, response", [
    ("0\n1\n", 0), ("1\n0\n", 1), ("1\n\n", 1), ("first line\n5\n", 0), ("12345670", 1), ("00000001", 0), ("1234567\n", 1),
    ("123456\n", 0), ("x" * 700 + "3", 0), ("x" * 701 + "3", 1)])
def test_the_last_piece_of_7_characters_is_the_verdict(router, text, response):
    verdict(router, text)
    assert router.get(RESPONSE).json["response"] == response


def test_without_a_verdict_there_is_no_server(router):
    verdict(router, None)
    assert router.get(RESPONSE).json["response"] == 1
    assert router.logged("open pppoechkresult.txt failed.", priority=3)


def test_a_probe_that_fails_leaves_the_last_verdict(router):
    verdict(router, "0\n")
    router.write(VERDICT, "1\n")
    router.tool(PROBE, exit=1)
    assert router.get(RESPONSE).json["response"] == 0
    router.tool(PROBE, missing=True)
    assert router.get(RESPONSE).json["response"] == 0


def test_each_request_probes_again(router):
    verdict(router, "0\n")
    assert router.get(RESPONSE).json["response"] == 1
    verdict(router, "1\n")
    assert router.get(RESPONSE).json["response"] == 0
    router.assert_calls(PROBE, PROBE)


def last_piece(text):
    """What reading lines in pieces of 7 bytes ends with."""
    line = text.encode("utf-8", "surrogateescape").splitlines(keepends=True)[-1:]
    return line[0][(len(line[0]) - 1) // 7 * 7:] if line else b""


def test_a_hostile_verdict_is_read_as_a_number(router):
    for name, text in HOSTILE.items():
        verdict(router, text)
        number = re.match(rb"\s*([+-]?\d+)", last_piece(text))
        assert router.get(RESPONSE).json["response"] == (1 if number is None or int(number[1]) in (0, -1) else 0), name
    router.assert_nothing_ran()


# The outcome of the session.

def session(router, status=None, out=None):
    """What ifstatus says of the WAN side."""
    router.tool("ifstatus", "wan", exact=True, out=json.dumps(status) if out is None else out)


def down(**members):
    return {"up": False, "proto": "pppoe", **members}


@pytest.mark.parametrize("status, code", [
    ({"up": True, "proto": "pppoe"}, 0), ({"up": True, "proto": "dhcp"}, 3), ({"up": True, "proto": "static"}, 3), ({"up": True}, 3),
    ({"up": True, "proto": "pppoe", "errors": [{"code": "AUTH_TOPEER_FAILED"}]}, 0), ({"up": True, "proto": "PPPOE"}, 3),
    (down(errors=[{"code": "AUTH_TOPEER_FAILED"}]), 1), (down(errors=[{"code": "NO_RESPONSE"}]), 2), (down(errors=[{"code": ""}]), 2),
    (down(errors=[{"code": "auth_topeer_failed"}]), 2), (down(errors=[{"code": "AUTH_TOPEER_FAILED2"}]), 2),
    (down(errors=[{"code": 5}]), 2), (down(errors=[{}]), 0), (down(errors=[{"subsystem": "pppoe"}]), 0),
    (down(errors=[{"code": "X"}, {"code": "AUTH_TOPEER_FAILED"}]), 2), (down(errors=[{"code": "AUTH_TOPEER_FAILED"}, {"code": "X"}]), 1),
    ({"proto": "pppoe", "errors": [{"code": "X"}]}, 2)])
def test_the_session_has_a_code(router, status, code):
    session(router, status)
    answer = router.get(RESULT)
    assert answer.header_lines == HEADER
    assert (answer.encrypted, answer.text) == (True, f'{{ "result": 0, "version": 1, "connectResult": {code} }}')
    router.assert_calls("ifstatus wan")


@pytest.mark.parametrize("status", [down(), down(errors=[]), down(errors="AUTH_TOPEER_FAILED"), down(errors={"code": "X"}),
                                    down(errors=None), {"up": False, "proto": "dhcp", "errors": [{"code": "X"}]},
                                    {"up": False}, {}, [], 5, "text", {"errors": [{"code": "X"}]}])
def test_a_line_that_is_down_without_a_pppoe_error_is_result_1(router, status):
    session(router, status)
    answer = router.get(RESULT)
    assert answer.header_lines == HEADER
    assert answer.encrypted and answer.json == {"result": 1} and list(answer.json) == ["result"]


@pytest.mark.parametrize("out", ["", "hello", "{", "Interface wan not found\n", '{"up": true, "proto": "pppoe"', "\0", "[" * 5000])
def test_an_unreadable_state_is_result_1(router, out):
    session(router, out=out)
    assert router.get(RESULT).json == {"result": 1}
    assert router.logged("Failed to parse JSON.", priority=3)


def test_without_ifstatus_it_is_result_1(router):
    router.tool("ifstatus", missing=True)
    assert router.get(RESULT).json == {"result": 1}
    assert router.logged("Failed to parse JSON.", priority=3) or router.logged("popen failed.", priority=3)


@pytest.mark.parametrize("answer", [{"exit": 4}, {"signal": 9}], ids=["fails", "dies"])
def test_the_tools_status_does_not_count(router, answer):
    router.tool("ifstatus", out='{"up": true, "proto": "pppoe"}', **answer)
    assert router.get(RESULT).json["connectResult"] == 0


def test_a_state_of_many_lines_is_read_whole(router):
    status = {"uptime": 5, "data": {f"key{i}": "x" * 40 for i in range(60)}, "up": True, "proto": "pppoe"}
    session(router, out=json.dumps(status, indent=1))
    assert router.get(RESULT).json["connectResult"] == 0


@pytest.mark.parametrize("length, result", [(4000, 0), (5000, 1), (100000, 1)])
def test_a_state_is_read_up_to_4085_characters(router, length, result):
    session(router, {"data": "x" * (length - 100), "up": True, "proto": "pppoe", "tail": "y" * 40})
    assert router.get(RESULT).json["result"] == result
    assert router.logged("Failed to parse JSON.", priority=3) is (result == 1)


def test_the_states_members_are_traced(router):
    session(router, down(errors=[{"code": "AUTH_%s%n"}]))
    assert router.get(RESULT).json["connectResult"] == 2
    assert router.logged("up:0, proto:pppoe") and router.logged("code AUTH_%s%n")


def test_the_protocol_is_read_up_to_7_characters(router):
    session(router, {"up": True, "proto": "dhcpv6-and-more"})
    assert router.get(RESULT).json["connectResult"] == 3
    assert router.logged("up:1, proto:dhcpv6-")


@pytest.mark.parametrize("errors", [["text"], [None], [[]], [5], [[{"code": "X"}]], [{"code": None}], [{"code": {"a": 1}}]])
def test_an_odd_error_breaks_nothing(router, errors):
    session(router, down(errors=errors))
    assert router.get(RESULT).json["result"] in (0, 1)
    assert router.alive()


def test_a_hostile_error_code_is_another_error(router):
    for name, text in HOSTILE.items():
        session(router, down(errors=[{"code": text[:3000]}]))
        assert router.get(RESULT).json["connectResult"] == 2, name
    router.assert_nothing_ran()


# Answers that cannot be encrypted.

@pytest.mark.parametrize("ask", [lambda r: r.post(START), lambda r: r.get(RESPONSE), lambda r: r.get(RESULT)],
                         ids=["start", "response", "result"])
def test_without_jose_the_answer_is_a_plain_refusal(router, ask):
    router.tool("jose", *ENCRYPT, exact=True, exit=1)
    answer = ask(router)
    assert (answer.encrypted, answer.text) == (False, UNUSABLE)
    assert router.alive()
