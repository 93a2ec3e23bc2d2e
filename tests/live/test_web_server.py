"""What only the whole chain shows: lighttpd, the real jose, real waits."""

import os
import signal
import socket
import time

import client
from waits import held_back, wait_until

LAN = "/api/v1/lan"


def test_an_answer_is_encrypted_json(live):
    a = live().get(LAN)
    assert (a.status, a.headers["content-type"]) == (200, "application/json")
    assert a.encrypted
    assert a.json["result"] == 0
    assert a.json["lanIpv4Address"] == "192.168.0.1"


def test_the_lan_address_changes_at_once_and_the_network_after_the_answer(live):
    router = live()
    started = time.monotonic()
    with held_back(router, "/etc/init.d/globalip"):  # the client is answered first
        a = router.post(LAN, {"lanIpv4Address": "192.168.5.1", "lanIpv4SubMask": "255.255.255.0", "globalIpProtectionEnable": 1})
        assert a.json == {"result": 0, "version": 1, "waitTime": 60}
        assert router.option("network.lan.ipaddr") == "192.168.5.1"

    wait_until(lambda: "msg_tool -r easymesh_over" in router.calls())
    assert time.monotonic() - started >= 3.0  # 2 s before the chain, 1 s in it
    calls = router.calls()
    assert calls[calls.index("/etc/init.d/globalip start"):] == [
        "/etc/init.d/globalip start",
        "/etc/init.d/dnsmasq restart",
        "ubus call network reload",
        "ubus call network.interface.lan up",
        "logger -t LAN_INFO lan reload completely finished",
        "msg_tool -r easymesh_over",
    ]
    assert router.get(LAN).json["lanIpv4Address"] == "192.168.5.1"


def test_a_body_that_is_not_encrypted_is_refused_as_text(live):
    a = live().post(LAN, '{"lanIpv4Address": "192.168.5.1"}', plain=True)
    assert (a.headers["content-type"], a.body) == ("text/plain", b"decrypt error")


def test_another_method_is_not_found(live):
    assert client.request(live().base, "PUT", LAN).body == b"Not Found"


def test_the_query_string_is_part_of_the_compared_uri(live):
    router = live()
    for uri in (LAN + "?x=1", LAN + "/", "/api/v1/%6can", "/api/v1/./lan"):
        answer = router.get(uri)
        assert not answer.encrypted and b"result" not in answer.body


def test_3_megabytes_are_sent_and_decrypted_whole(live):
    router = live()
    body = {"filler": "x" * 3_000_000, "lanIpv4Address": "192.168.0.0", "lanIpv4SubMask": "255.255.255.0"}
    assert router.post(LAN, body).json == {"result": 1}  # the last keys were read: a network's address


def test_the_two_command_lines_of_jose_return_any_text(live):
    router = live()
    enc = ["jose", "jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c"]
    dec = ["jose", "jwe", "dec", "-i-", "-p"]
    for text in (b"x", b"Bob's \"$(touch /tmp/pwned)\" `id`; %s%n \\ \n\r\t", "日本語 🛜".encode(), bytes(range(256)),
                 b"y" * 3_000_000):
        encrypted = router.run(*enc, input=text)
        assert client.is_encrypted(encrypted)
        assert router.run(*dec, input=encrypted) == text
        assert client.decrypt(encrypted) == text  # and the client's key is the router's
    assert not router.root.exists("/tmp/pwned")


def test_a_client_that_hangs_up_leaves_the_others_served(live):
    router = live()
    for _ in range(5):
        with socket.create_connection(("127.0.0.1", router.port)) as connection:
            connection.sendall(b"POST /api/v1/lan HTTP/1.1\r\nHost: x\r\nContent-Length: 1000000\r\n\r\nab")
    assert router.get(LAN).json["result"] == 0


def test_each_brand_and_mode_answers(live):
    for brand in ("orvane", "tesmir"):
        for mode in ("router", "ap", "re", "controller", "agent"):
            a = live(brand=brand, mode=mode).get(LAN)
            assert a.json["result"] == 0, (brand, mode)


def test_a_program_that_ends_is_started_again(live):
    router = live()
    os.kill(router.program_pid(), signal.SIGKILL)
    wait_until(lambda: "is started again" in (router.root.read("/var/log/messages.log") or ""))
    assert router.get(LAN).json["result"] == 0


def test_a_restart_keeps_the_packages_and_a_factory_reset_does_not(live):
    router = live()
    router.root.set_options({"network.lan.ipaddr": "192.168.7.1"})
    router.root.write("/tmp/left-over", "")

    router.run("reboot")
    wait_until(lambda: not router.root.exists("/tmp/left-over") and not router.root.exists("/router/reboot"))
    assert router.get(LAN).json["lanIpv4Address"] == "192.168.7.1"

    router.run("/sbin/firstboot", "-r", "-y")
    wait_until(lambda: router.option("network.lan.ipaddr") == "192.168.0.1")
    wait_until(lambda: router.get(LAN).json["lanIpv4Address"] == "192.168.0.1")
