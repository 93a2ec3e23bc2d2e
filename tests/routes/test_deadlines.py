"""No tool and no client stops the program for ever: what each limit is, is in the program's own table; here its clock is fast."""

import os
import socket

import pytest
from process_state import below, children, resident_kib

from kit import encrypt, fastcgi

LAN = "/api/v1/lan"
INETCHK = "/api/v1/router/inetchk"
DECRYPT = ("jwe", "dec", "-i-", "-p")
ENCRYPT = ("jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c")


@pytest.fixture
def hurried(router):
    """20 s are over after 2 s."""
    router.time_rate = 10
    return router


def test_a_tool_that_hangs_counts_as_one_that_failed(hurried):
    hurried.tool("ifconfig", out="br-lan inet addr:1.2.3.4  Mask:255.0.0.0\n", hang=True)
    failed = hurried.get(LAN).json
    assert failed["result"] == 0 and failed["lanIpv4SubMask"] == "None"
    assert hurried.logged("'ifconfig br-lan |grep \"inet addr:\"' did not end within 20 s and is ended", priority=3)
    assert children(hurried.pid()) == []
    assert hurried.alive()


def test_what_a_late_tool_has_started_is_ended_with_it(hurried):
    hurried.tool("ifconfig", hang=True)
    hurried.start()
    hurried.get(LAN)
    assert below(hurried.pid()) == set()


def test_a_jose_that_hangs_is_a_decrypt_error(hurried):
    hurried.tool("jose", *DECRYPT, exact=True, out="[]", hang=True)
    assert hurried.post(LAN, "x").body == b"decrypt error"
    assert hurried.logged("'jose' did not end within 20 s", priority=3)


def test_what_a_hanging_jose_has_encrypted_is_no_answer(hurried):
    hurried.tool("jose", *ENCRYPT, exact=True, out="jwe.e30", hang=True)
    assert hurried.get(LAN).body == b'{"result": 1}'


def test_a_tool_that_was_late_once_gets_a_second_in_the_same_request(hurried):
    hurried.tool("ifconfig", hang=True)
    hurried.get("/api/v1/lan")
    limits = [line.text.split(" within ")[1] for line in hurried.log() if " did not end within " in line.text]
    assert limits[0] == "20 s and is ended\n"


def test_a_tool_that_never_stops_printing_costs_no_memory(hurried):
    hurried.get(LAN)
    before = resident_kib(hurried.pid())
    hurried.remove("/router/bin/inetchk")
    hurried.write("/router/bin/inetchk", "#!/bin/sh\nexec yes\n", 0o755)
    assert hurried.get(INETCHK).json["inetchk"] == 0
    assert peak_kib(hurried.pid()) - before < 8 * 1024


def peak_kib(pid):
    return int(open(f"/proc/{pid}/status").read().split("VmHWM:")[1].split()[0])


def test_a_jose_that_never_stops_printing_is_a_decrypt_error(router):
    """In the clock's own time: the bound of the output is met before the limit of the time."""
    router.remove("/router/bin/jose")
    router.write("/router/bin/jose", "#!/bin/sh\nexec yes\n", 0o755)
    assert router.post(LAN, "x").body == b"decrypt error"
    assert router.logged("jose printed more than 67108864 bytes", priority=3)


def test_work_that_outlives_its_request_has_no_limit(hurried):
    # 20 s of this clock are over when the tool is let go.
    os.mkfifo(hurried.root.path("/tmp/gate"))
    hurried.remove("/etc/init.d/firewall")
    hurried.write("/etc/init.d/firewall", "#!/bin/sh\ncat /tmp/gate\n: > /tmp/restarted\n", 0o755)
    hurried.tool("ifconfig", hang=True)
    assert hurried.post("/api/v1/security/protect", {"dosEnable": 1, "spiEnable": 1}).json["result"] == 0
    hurried.get(LAN)
    with open(hurried.root.path("/tmp/gate"), "w"):
        pass
    hurried.wait_until(lambda: hurried.exists("/tmp/restarted"))


@pytest.mark.parametrize("uri, path", [
    ("/api/v1/router/info", "/tmp/inetchkresult.txt"), ("/api/v1/router/info", "/tmp/deviceid"),
    ("/api/v1/router/client-list", "/tmp/clientList.txt")])
def test_a_fifo_in_the_place_of_a_file_keeps_nobody_waiting(router, uri, path):
    router.remove(path)
    os.mkfifo(router.root.path(path))
    assert "result" in router.get(uri).json
    assert router.alive()


# Clients.

def connect(router):
    router.start()
    return fastcgi.connect(str(router.directory / "fcgi.sock"), 20.0)


def ask(uri=LAN):
    return fastcgi.request({"REQUEST_METHOD": "GET", "REQUEST_URI": uri})


@pytest.mark.parametrize("part", ["nothing", "header", "parameters", "body"])
def test_a_request_that_arrives_half_is_given_up(hurried, part):
    whole = fastcgi.request({"REQUEST_METHOD": "POST", "REQUEST_URI": LAN, "CONTENT_LENGTH": "10"}, b"0123456789")
    size = {"nothing": 0, "header": 5, "parameters": 40, "body": len(whole) - 12}[part]
    with connect(hurried) as silent:
        silent.sendall(whole[:size])
        assert hurried.get(LAN).json["result"] == 0


def test_an_answer_that_nobody_reads_is_given_up(hurried):
    hurried.tool("jose", *ENCRYPT, exact=True, out="x" * 4_000_000)
    with connect(hurried) as deaf:
        deaf.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
        deaf.sendall(ask())
        hurried.wait_for_call("jose", *ENCRYPT)
        assert hurried.alive()


def test_what_clients_asked_that_have_left_is_not_looked_up(hurried):
    with connect(hurried) as half:  # keeps the program from the others, until it is given up
        half.sendall(ask()[:20])
        for _ in range(20):
            with connect(hurried) as leaving:
                leaving.sendall(ask("/api/v1/router/client-list"))
    assert hurried.alive()
    assert hurried.commands() == []


def test_a_post_that_arrived_whole_is_carried_out_though_its_client_has_left(hurried):
    text = hurried.option("network.lan.ipaddr")
    assert text != "192.168.5.1"
    body = encrypt(b'{"lanIpv4Address": "192.168.5.1", "lanIpv4SubMask": "255.255.255.0"}')
    params = {"REQUEST_METHOD": "POST", "REQUEST_URI": LAN, "CONTENT_LENGTH": str(len(body))}
    with connect(hurried) as leaving:
        leaving.sendall(fastcgi.request(params, body))
    hurried.wait_until(lambda: hurried.option("network.lan.ipaddr") == "192.168.5.1")
