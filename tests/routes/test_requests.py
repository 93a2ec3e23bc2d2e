"""The request loop and the router: what reaches a handler, what is refused, and what no request can break."""

import json
import os
import resource
import socket

import pytest
from process_state import below, sockets, sockets_that_children_keep

from torture.faults import KINDS, THROW, THROW_STANDARD, Control

from kit import HOSTILE, decrypt, encrypt, fastcgi
from kit.router import program

LAN = "/api/v1/lan"
DECRYPT = ("jwe", "dec", "-i-", "-p")
ENCRYPT = ("jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c")


def post_params(length: str | None, uri: str = LAN) -> dict:
    params = {"REQUEST_METHOD": "POST", "REQUEST_URI": uri}
    return params if length is None else {**params, "CONTENT_LENGTH": length}


# What is answered.

def test_an_answer_has_the_header_triple_and_one_json_text(router):
    a = router.get(LAN)
    assert a.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    assert a.encrypted and a.json["result"] == 0
    assert a.fcgi.ended


@pytest.mark.parametrize("missing", ["REQUEST_METHOD", "REQUEST_URI"])
def test_a_request_without_method_or_uri_is_answered_with_nothing(router, missing):
    params = {"REQUEST_METHOD": "GET", "REQUEST_URI": LAN}
    del params[missing]
    a = router.fcgi(params)
    assert a.empty and a.fcgi.ended


def test_a_query_string_is_part_of_the_uri(router):
    assert router.get(LAN + "?x=1").empty


def test_a_post_without_a_length_is_refused_as_text(router):
    a = router.fcgi(post_params(None), encrypt(b"{}"))
    assert (a.header_lines, a.body) == (["Content-Type: text/plain"], b"No content received")


@pytest.mark.parametrize("length", ["0", "-1", "-99999999999999999999", "abc", "", " ", "+0"])
def test_a_length_that_is_none_means_no_body(router, length):
    a = router.fcgi(post_params(length), encrypt(b'{"lanIpv4Address": "192.168.5.1"}'))
    assert a.json == {"result": 1}
    assert [c for c in router.calls("jose") if "dec" in c.args] == []


@pytest.mark.parametrize("length", ["12abc", " 12", "+12", "012"])
def test_a_length_is_read_as_atoi_reads_it(router, length):
    router.fcgi(post_params(length), b"0123456789abcdef")
    assert router.calls("jose")[0].stdin == "0123456789ab"


@pytest.mark.parametrize("length", ["2147483647", "4294967296", "99999999999999999999", "1000000"])
def test_a_claimed_length_reserves_nothing(router, length):
    body = encrypt(b"{}")
    a = router.fcgi(post_params(length), body)
    assert a.json == {"result": 1}
    assert router.calls("jose")[0].stdin == body.decode()


def test_a_claim_that_memory_cannot_hold_is_refused_as_text(router):
    router.get("/api/v1/nothing")
    limit_memory(router.pid(), spare_bytes=1 << 30)
    a = router.fcgi(post_params("2147483647"), b"x")
    assert (a.header_lines, a.body) == (["Content-Type: text/plain"], b"Memory allocation error")
    assert router.alive()


def limit_memory(pid, spare_bytes):
    size = int(open(f"/proc/{pid}/statm").read().split()[0]) * os.sysconf("SC_PAGE_SIZE")
    resource.prlimit(pid, resource.RLIMIT_AS, (size + spare_bytes, resource.RLIM_INFINITY))


@pytest.mark.parametrize("uri", ["/api/v1/system/firmware", "/api/v1/system/config/restore", "/api/v1/system/config/backup"])
def test_an_upload_reaches_its_handler_undecrypted(router, uri):
    a = router.post(uri, b"no ciphertext\0 and more", plain=True)
    assert a.header_lines[0] == "Content-Type: application/json" and not a.encrypted
    assert router.calls("jose") == []


def test_a_body_longer_than_its_claim_is_cut(router):
    router.fcgi(post_params("5"), b"0123456789" * 100_000)
    assert router.calls("jose")[0].stdin == "01234"
    assert router.alive()


def test_a_body_ends_at_its_first_nul_byte(router):
    router.fcgi(post_params("9"), b"abcd\0efgh")
    assert router.calls("jose")[0].stdin == "abcd"


def test_a_client_that_hangs_up_in_its_parameters_is_forgotten(router):
    whole = fastcgi.request(post_params("10"), b"0123456789")
    for cut in (1, 8, 12, 17, 30, 60):
        router.raw(whole[:cut], close=True)
    assert router.alive()


def test_a_client_that_hangs_up_in_its_body_reaches_no_handler_with_more_than_it_sent(router):
    data = fastcgi.begin() + fastcgi.stream(fastcgi.PARAMS, fastcgi.name_values(post_params("100000"))) + \
        fastcgi.record(fastcgi.PARAMS) + fastcgi.stream(fastcgi.STDIN, b"x" * 40_000)
    router.raw(data[:-20_000], close=True)
    assert router.alive()
    assert all(len(c.stdin) <= 40_000 for c in router.calls("jose") if "dec" in c.args)


def test_a_connection_is_close_on_exec_before_its_first_byte_is_read(router):
    router.get(LAN)
    before = set(sockets(router.pid()))
    with fastcgi.connect(str(router.directory / "fcgi.sock"), 20.0) as connection:
        connection.sendall(fastcgi.begin())
        router.wait_until(lambda: set(sockets(router.pid())) - before, "an accepted connection")
        assert sockets_that_children_keep(router.pid()) == []


def test_a_client_that_does_not_read_its_answer_harms_no_other(router):
    router.raw(fastcgi.request({"REQUEST_METHOD": "GET", "REQUEST_URI": LAN}), close=True)
    assert router.get(LAN).json["result"] == 0


# Encrypted bodies.

def test_jose_is_started_with_these_arguments_and_the_text_on_its_input(router):
    router.post(LAN, "{}")
    decryption, encryption = router.calls("jose")
    assert decryption.args == DECRYPT
    assert decryption.stdin == encrypt(b"{}").decode()
    assert encryption.args == ENCRYPT
    assert encryption.stdin == '{"result": 1}'


@pytest.mark.parametrize("text", HOSTILE.values(), ids=HOSTILE.keys())
def test_a_body_of_any_text_can_only_fail_to_decrypt(router, text):
    data = text.encode("utf-8", "surrogateescape")
    if not data:
        pytest.skip("no body")
    a = router.fcgi(post_params(str(len(data))), data)
    assert a.body == b"decrypt error"
    assert router.calls("jose")[0].stdin == text.strip(" \t\r\n\v\f")
    router.assert_nothing_ran()


def test_a_plaintext_that_jose_then_rejects_is_not_used(router):
    router.tool("jose", *DECRYPT, exact=True, out="[]", exit=1)
    assert router.post(LAN, "x").body == b"decrypt error"
    assert router.logged("jose printed 2 bytes and ended with status 1", priority=3)


def test_white_space_around_a_body_does_not_reach_jose(router):
    body = b" \t\r\n\v\f" + encrypt(b"{}") + b"\r\n"
    assert router.fcgi(post_params(str(len(body))), body).json == {"result": 1}
    assert router.calls("jose")[0].stdin == encrypt(b"{}").decode()


def test_a_missing_jose_is_a_decrypt_error(router):
    router.tool("jose", missing=True)
    assert router.post(LAN, {}).body == b"decrypt error"
    assert router.logged("Failed to allocate memory for plaintext_str.", priority=3)


def test_an_answer_that_cannot_be_encrypted_is_a_plain_result_1(router):
    router.tool("jose", *ENCRYPT, exact=True, exit=1)
    a = router.get(LAN)
    assert not a.encrypted and a.body == b'{"result": 1}'
    assert router.logged("Failed to allocate memory for jwe_str.", priority=3)


def test_an_answer_keeps_what_jose_printed_trailing_newline_included(router):
    router.tool("jose", *ENCRYPT, exact=True, out="jwe.e30\n")
    assert router.get(LAN).body == b"jwe.e30\n"


def test_a_ciphertext_with_percent_signs_is_no_format(router):
    router.tool("jose", *ENCRYPT, exact=True, out="%s%n%d%%")
    assert router.get(LAN).body == b"%s%n%d%%"


def test_a_ciphertext_of_3_megabytes_comes_whole(router):
    text = "x" * (3 * 1024 * 1024)
    router.tool("jose", *ENCRYPT, exact=True, out=text)
    assert router.get(LAN).body == text.encode()


def test_a_body_of_1_megabyte_is_decrypted_whole(router):
    padding = " " * (1024 * 1024)
    a = router.post(LAN, "{" + padding + "}")
    assert a.json == {"result": 1}
    assert len(decrypt(router.calls("jose")[0].stdin.encode())) == len(padding) + 2


# What outlives a request.

def test_a_child_holds_neither_the_connection_nor_the_listening_socket(router):
    # The stand-in hangs while the connection is open; what it holds is looked at from outside.
    router.tool("ifconfig", hang=True)
    router.start()
    with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
        connection.connect(str(router.directory / "fcgi.sock"))
        connection.sendall(fastcgi.request({"REQUEST_METHOD": "GET", "REQUEST_URI": LAN}))
        router.wait_for_call("ifconfig", "br-lan")
        program = router.pid()
        assert len(sockets(program)) >= 2  # the listening socket, the connection
        children = below(program)
        assert children
        for child in children:
            assert sockets(child) == []
    router.kill()


def test_hostile_text_in_an_answer_is_json(router):
    router.tool("ifconfig", "br-lan", out="          inet addr:192.168.1.1  Bcast:1.1.1.1  Mask:%n\"\\\n")
    a = router.get(LAN)
    assert json.loads(a.data)["lanIpv4SubMask"] == "%n\"\\"


def test_a_plaintext_with_a_single_quote_reaches_jose_unchanged(router):
    router.set("network.@device[0].macaddr", "Bob's")
    a = router.get(LAN)
    assert a.json["lanMacAddress"] == "Bob's"
    assert router.calls("jose")[-1].stdin == a.text


def test_a_program_whose_socket_is_gone_says_so_and_ends_well(router):
    router.get("/api/v1/nothing")
    assert router.stop() == 0
    assert "FCGX_Accept_r: " in router.stderr()


# What no handler should throw.

@pytest.mark.parametrize(("mode", "told"), [(THROW, "no standard exception"), (THROW_STANDARD, "std::bad_alloc")])
@pytest.mark.parametrize("uri", [LAN, "/api/v1/ntp"])
def test_what_is_thrown_is_answered_and_the_loop_goes_on(router, uri, mode, told):
    if b"libstdc++.so" not in program("ROUTER_API_BIN").read_bytes():
        pytest.skip("the program holds a C++ library of its own, which what another one throws would end")
    router.preload = [program("TORTURE_FAULTS_LIB")]
    faults = Control(router)
    assert router.get(uri).json["result"] == 0
    faults.arm(KINDS.index("spawn"), at=1, mode=mode)
    a = router.get(uri)
    assert a.json == {"result": 1} and not a.encrypted and a.fcgi.ended
    assert router.logged(f"request failed: {told}", priority=3)
    assert router.get(uri).json["result"] == 0
