"""GET /api/v1/router/inetchk: is the Internet reached over IPv4, over IPv6?"""

import pytest

from wan_setup import ENCRYPT

URI = "/api/v1/router/inetchk"
COMMAND = "inetchk -46 -woi"

# Of the tool's exit status: the low four bits are the IPv4 test, the next four the IPv6 test; 1 is passed.
PASSED = 1


def expected(status):
    ipv4, ipv6 = status & 15 == PASSED, status >> 4 & 15 == PASSED
    code = ipv4 + 2 * ipv6
    return {"result": 0 if code else 1, "version": 1, "inetchk": code}


@pytest.mark.parametrize("status, result, code", [(17, 0, 3), (16, 0, 2), (1, 0, 1), (0, 1, 0), (34, 1, 0), (33, 0, 1), (18, 0, 2),
                                                  (255, 1, 0)])
def test_the_status_tells_which_protocols_work(router, status, result, code):
    router.tool("inetchk", exit=status)
    answer = router.get(URI)
    assert answer.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert answer.encrypted
    assert answer.text == f'{{ "result": {result}, "version": 1, "inetchk": {code} }}'
    router.assert_calls(COMMAND)


@pytest.mark.parametrize("ipv6", range(16))
def test_every_status_has_its_answer(router, ipv6):
    for ipv4 in range(16):
        status = ipv6 << 4 | ipv4
        router.tool("inetchk", exit=status)
        assert router.get(URI).json == expected(status), status


def test_what_the_tool_prints_does_not_count(router):
    router.tool("inetchk", out="IPv4 OK\n1\n16\n" + "x" * 500 + "\n", err="17\n", exit=16)
    assert router.get(URI).json["inetchk"] == 2


def test_a_print_without_a_line_end_joins_the_status(router):
    router.tool("inetchk", out="IPv4 OK", exit=17)
    assert router.get(URI).json == {"result": 1, "version": 1, "inetchk": 0}
    router.tool("inetchk", out="1", exit=6)  # 16
    assert router.get(URI).json["inetchk"] == 2


def test_a_tool_that_dies_reaches_nothing(router):
    router.tool("inetchk", signal=9)  # the shell tells 137
    assert router.get(URI).json == expected(137) == {"result": 1, "version": 1, "inetchk": 0}


def test_without_the_tool_nothing_is_reached(router):
    router.tool("inetchk", missing=True)
    assert router.get(URI).json == {"result": 1, "version": 1, "inetchk": 0}


def test_each_request_checks_again(router):
    router.tool("inetchk", exit=1, then=[{"exit": 17}])
    assert [router.get(URI).json["inetchk"] for _ in range(2)] == [1, 3]
    router.assert_calls(COMMAND, COMMAND)


def test_without_jose_the_answer_is_a_plain_refusal(router):
    router.tool("jose", *ENCRYPT, exact=True, exit=1)
    answer = router.get(URI)
    assert (answer.encrypted, answer.text) == (False, '{"result": 1}')
