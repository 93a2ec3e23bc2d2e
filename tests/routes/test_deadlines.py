"""No tool and no client stops the program for ever. What each limit is, is in the program's own tables; here a test says
when it is over."""

import os
import socket

import pytest
from process_state import below, children, resident_kib

import kit
from kit import encrypt, fastcgi

LAN = "/api/v1/lan"
INETCHK = "/api/v1/router/inetchk"
DECRYPT = ("jwe", "dec", "-i-", "-p")
ENCRYPT = ("jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c")
# A script's way to say that whoever waits for it need not wait any longer.
SAY_THAT_IT_HANGS = "read -r _ _ _ _ group _ </proc/self/stat\n: >/router/hanging/$group\n"


def give_up(router):
    """Whom the program waits for next, to send or to read, has no time left."""
    router.write("/router/client-is-given-up", "")


def test_a_tool_that_hangs_counts_as_one_that_failed(router):
    router.tool("ifconfig", out="br-lan inet addr:1.2.3.4  Mask:255.0.0.0\n", hang=True)
    failed = router.get(LAN).json
    assert failed["result"] == 0 and failed["lanIpv4SubMask"] == "None"
    assert router.logged("'ifconfig br-lan |grep \"inet addr:\"' did not end within 20 s and is ended", priority=3)
    assert children(router.pid()) == []
    assert router.alive()


def test_what_a_late_tool_has_started_is_ended_with_it(router):
    router.tool("ifconfig", hang=True)
    router.start()
    router.get(LAN)
    assert below(router.pid()) == set()


def test_a_jose_that_hangs_is_a_decrypt_error(router):
    router.tool("jose", *DECRYPT, exact=True, out="[]", hang=True)
    assert router.post(LAN, "x").body == b"decrypt error"
    assert router.logged("'jose' did not end within 20 s", priority=3)


def test_what_a_hanging_jose_has_encrypted_is_no_answer(router):
    router.tool("jose", *ENCRYPT, exact=True, out="jwe.e30", hang=True)
    assert router.get(LAN).body == b'{"result": 1}'


def test_a_tool_that_was_late_once_gets_a_second_in_the_same_request(router):
    router.tool("ifconfig", hang=True)
    router.get("/api/v1/lan")
    limits = [line.text.split(" within ")[1] for line in router.log() if " did not end within " in line.text]
    assert limits[0] == "20 s and is ended\n"


def test_a_tool_that_never_stops_printing_costs_no_memory(router):
    router.get(LAN)
    before = resident_kib(router.pid())
    router.remove("/router/bin/inetchk")
    router.write("/router/bin/inetchk", "#!/bin/sh\nyes | head -c 20000000\n" + SAY_THAT_IT_HANGS + "exec yes\n", 0o755)
    assert router.get(INETCHK).json["inetchk"] == 0
    assert peak_kib(router.pid()) - before < 8 * 1024


def peak_kib(pid):
    return int(open(f"/proc/{pid}/status").read().split("VmHWM:")[1].split()[0])


def test_a_jose_that_never_stops_printing_is_a_decrypt_error(router):
    router.remove("/router/bin/jose")
    router.write("/router/bin/jose", "#!/bin/sh\nexec yes\n", 0o755)
    assert router.post(LAN, "x").body == b"decrypt error"
    assert router.logged("jose printed more than 67108864 bytes", priority=3)


def test_work_that_outlives_its_request_has_no_limit(router):
    gate = router.root.path("/tmp/gate")
    os.mkfifo(gate)
    held = os.open(gate, os.O_RDWR)
    router.remove("/etc/init.d/firewall")
    router.write("/etc/init.d/firewall", "#!/bin/sh\n" + SAY_THAT_IT_HANGS + "cat /tmp/gate\n: >/tmp/restarted\n", 0o755)
    assert router.post("/api/v1/security/protect", {"dosEnable": 1, "spiEnable": 1}).json["result"] == 0
    router.wait_until(lambda: os.listdir(router.root.path("/router/hanging")), "the hanging tool")
    router.get(LAN)
    gate.unlink()
    os.close(held)
    router.wait_until(lambda: router.exists("/tmp/restarted"))


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
    return fastcgi.connect(str(router.directory / "fcgi.sock"), kit.router.DEADLINE_S)


def ask(uri=LAN):
    return fastcgi.request({"REQUEST_METHOD": "GET", "REQUEST_URI": uri})


@pytest.mark.parametrize("part", ["nothing", "header", "parameters", "body"])
def test_a_request_that_arrives_half_is_given_up(router, part):
    whole = fastcgi.request({"REQUEST_METHOD": "POST", "REQUEST_URI": LAN, "CONTENT_LENGTH": "10"}, b"0123456789")
    size = {"nothing": 0, "header": 5, "parameters": 40, "body": len(whole) - 12}[part]
    with connect(router) as silent:
        silent.sendall(whole[:size])
        give_up(router)
        assert router.get(LAN).json["result"] == 0


def test_an_answer_that_nobody_reads_is_given_up(router):
    router.tool("jose", *ENCRYPT, exact=True, out="x" * 4_000_000)
    with connect(router) as deaf:
        deaf.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
        deaf.sendall(ask())
        router.wait_for_call("jose", *ENCRYPT)
        give_up(router)
        assert router.alive()


def test_what_clients_asked_that_have_left_is_not_looked_up(router):
    with connect(router) as half:  # keeps the program from the others, until it is given up
        half.sendall(ask()[:20])
        for _ in range(20):
            with connect(router) as leaving:
                leaving.sendall(ask("/api/v1/router/client-list"))
        give_up(router)
        router.wait_until(lambda: not router.exists("/router/client-is-given-up"), "the end of its time")
    assert router.alive()
    assert router.commands() == []


def test_a_post_that_arrived_whole_is_carried_out_though_its_client_has_left(router):
    text = router.option("network.lan.ipaddr")
    assert text != "192.168.5.1"
    body = encrypt(b'{"lanIpv4Address": "192.168.5.1", "lanIpv4SubMask": "255.255.255.0"}')
    params = {"REQUEST_METHOD": "POST", "REQUEST_URI": LAN, "CONTENT_LENGTH": str(len(body))}
    with connect(router) as leaving:
        leaving.sendall(fastcgi.request(params, body))
    router.wait_until(lambda: router.option("network.lan.ipaddr") == "192.168.5.1")
