"""`cmake --install`, and the installed program behind the installed snippets, unchanged, in a router's root."""

import os
import signal
import socket
import subprocess
import time

import client
import pytest
import sandbox
from installed import DEADLINE_S, FILES, InstalledRouter, install, listens, procd_instance

from kit import fastcgi

LAN = "/api/v1/lan"


@pytest.fixture(scope="module")
def destination(tmp_path_factory):
    place = tmp_path_factory.mktemp("destination")
    install(place)
    return place


@pytest.fixture
def router(destination):
    router = InstalledRouter(destination)
    yield router
    router.stop()


def test_each_file_is_in_its_place_with_its_permissions(destination):
    def mode(path):
        return (destination / path).stat().st_mode & 0o7777

    assert mode("usr/sbin/router-api") == 0o755
    for path in ("usr/share/man/man8/router-api.8", "etc/lighttpd/conf.d/50-router-api.conf",
                 "usr/share/router-api/lighttpd-socket.conf", "usr/share/router-api/nginx.locations",
                 "usr/share/router-api/router-api.keep"):
        assert mode(path) == 0o644, path
    assert mode("usr/share/router-api/router-api.init") == 0o755
    assert (destination / "etc/lighttpd/conf.d/50-router-api.conf").read_text() == (FILES / "lighttpd.conf").read_text()


def test_another_prefix_reaches_the_snippets(tmp_path):
    install(tmp_path, "/opt/router")
    for path in ("etc/lighttpd/conf.d/50-router-api.conf", "share/router-api/router-api.init"):
        text = (tmp_path / "opt/router" / path).read_text()
        assert "/opt/router/sbin/router-api" in text and "/usr/sbin/router-api" not in text, path
    program = tmp_path / "opt/router/sbin/router-api"
    assert subprocess.run([program, "--version"], capture_output=True, text=True).stdout.startswith("router-api ")


def read_and_change_the_lan(router):
    answer = router.request("GET", LAN)
    assert answer.status == 200, router.report()
    assert answer.encrypted and answer.json["lanIpv4Address"] == "192.168.0.1"
    body = client.encrypt(b'{"lanIpv4Address": "192.168.5.1", "lanIpv4SubMask": "255.255.255.0", "globalIpProtectionEnable": 1}')
    assert router.request("POST", LAN, body).json == {"result": 0, "version": 1, "waitTime": 60}
    assert "192.168.5.1" in router.root.read("/etc/config/network")


def test_lighttpd_starts_the_program_and_starts_it_again(router):
    server = router.start_lighttpd()
    router.wait_for_socket("/tmp/www.sock")
    read_and_change_the_lan(router)

    program = sandbox.find_program(server.pid, "router-api")
    environment = open(f"/proc/{program}/environ").read().split("\0")
    assert "PATH=/usr/sbin:/usr/bin:/sbin:/bin" in environment
    os.kill(program, signal.SIGKILL)
    router.wait_until(lambda: router.request("GET", LAN).status == 200, "an answer of the next program")
    assert sandbox.find_program(server.pid, "router-api") != program


def test_a_length_that_libfcgi_cannot_bear_ends_the_program_and_lighttpd_starts_it_again(router):
    """Only who holds the socket can send it: a web server makes the lengths itself. docs/reliability.md says more."""
    server = router.start_lighttpd()
    router.wait_for_socket("/tmp/www.sock")
    assert router.request("GET", LAN).status == 200
    program = sandbox.find_program(server.pid, "router-api")
    path, = router.root.path("/tmp/run").glob("router-api.socket*")
    lengths = bytes([0xFF, 0xFF, 0xFF, 0xFE]) * 2  # of a name and a value; their sum is beyond an int
    with fastcgi.connect(str(path), DEADLINE_S) as connection:
        connection.sendall(fastcgi.begin() + fastcgi.record(fastcgi.PARAMS, lengths + b"x"))
        router.wait_until(lambda: not os.path.exists(f"/proc/{program}"), "the program's end")
    router.wait_until(lambda: router.request("GET", LAN).status == 200, "an answer of the next program")
    assert sandbox.find_program(server.pid, "router-api") != program


def test_lighttpd_takes_a_large_image_and_no_large_document(router):
    router.start_lighttpd()
    router.wait_for_socket("/tmp/www.sock")
    image = b"\x7fimage\0" * 1_000_000
    assert router.request("POST", "/api/v1/system/firmware", image).status == 200
    assert router.request("POST", LAN, image).status == 413


def test_a_slow_client_does_not_keep_the_program_from_others(router):
    server = router.start_lighttpd()
    router.wait_for_socket("/tmp/www.sock")
    with slow_client(router):
        assert router.request("GET", LAN).json["result"] == 0
    assert server.poll() is None


def slow_client(router):
    """A connection whose body does not come."""
    connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    connection.connect(str(router.root.path("/tmp/www.sock")))
    connection.sendall(b"POST /api/v1/system/firmware HTTP/1.1\r\nHost: router\r\nContent-Length: 1000000\r\n\r\nab")
    return connection


def test_the_service_starts_it_for_a_web_server_that_does_not(router):
    instance = procd_instance(router.root)
    command = instance["command"]
    assert command[0] == "/usr/bin/spawn-fcgi" and command[-2:] == ["--", "/usr/sbin/router-api"]
    assert instance["respawn"][2] == "0"  # without end
    assert instance["env"] == ["PATH=/usr/sbin:/usr/bin:/sbin:/bin"]

    router.root.write("/etc/lighttpd/conf.d/50-router-api.conf", (FILES / "lighttpd-socket.conf").read_text())
    command[0] = sandbox.machine_programs("spawn-fcgi")["spawn-fcgi"]
    router.start(*command)
    router.wait_for_socket("/var/run/router-api.socket")
    router.start_lighttpd()
    router.wait_for_socket("/tmp/www.sock")
    read_and_change_the_lan(router)
    assert router.root.path("/tmp/run/router-api.socket").stat().st_mode & 0o777 == 0o660


@pytest.mark.parametrize("number", [signal.SIGUSR1, signal.SIGTERM])
def test_a_signal_ends_it_as_the_manual_says(tmp_path, number):
    path = tmp_path / "socket"
    with subprocess.Popen(["spawn-fcgi", "-n", "-s", path, "--", os.environ["ROUTER_API_BIN"]],
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as program:
        ask(path)
        program.send_signal(number)
        assert program.wait(DEADLINE_S) == 0


def ask(path):
    """One request, so that the program is known to be in its loop."""
    end = time.monotonic() + DEADLINE_S
    while not listens(path):
        assert time.monotonic() < end
        time.sleep(0.01)
    with fastcgi.connect(str(path), 20.0) as connection:
        connection.sendall(fastcgi.request({"REQUEST_METHOD": "PUT", "REQUEST_URI": "/"}))
        assert b"Not Found" in fastcgi.read_response(connection).stdout
