"""What the program makes of what it is started with: descriptors, PATH, umask, its user."""

import os
import shlex
import stat
import subprocess

import pytest

from kit import fastcgi
from kit.router import sandbox

LAN = "/api/v1/lan"


def program():
    """The program, in a line of the router's shell; another processor's is run by its emulator."""
    return shlex.join([*sandbox.emulator(), "/usr/sbin/router-api"])


def start_by_shell(router, text):
    """Starts the program by a shell line of the router, in place of the kit's own way."""
    router.start = lambda: None
    environment = router.install_program()
    with open(router.directory / "stderr", "ab") as stderr:
        router._process = subprocess.Popen(router.root.command(["/bin/sh", "-c", text], environment), stdin=router._listener,
                                           stdout=stderr, stderr=stderr)


@pytest.mark.parametrize("closed", ["2>&-", "1>&-", "1>&- 2>&-"])
def test_a_standard_stream_that_is_closed_lets_nothing_into_the_answer(router, closed):
    router.tool("ifconfig", err="of a tool", out="")
    router.remove("/tmp/deviceid")  # told on standard error
    start_by_shell(router, f"exec {program()} {closed}")
    for uri in (LAN, "/api/v1/router/info", "/api/v1/system/log/message"):
        answer = router.get(uri)
        assert answer.fcgi.records and set(answer.fcgi.records) <= {fastcgi.STDOUT, fastcgi.STDERR, fastcgi.END_REQUEST}
        assert answer.fcgi.ended and answer.header_lines[0] == "Content-Type: application/json"
    links = {os.readlink(f"/proc/{router.pid()}/fd/{number}") for number in (0, 1, 2) if f" {number}>" in " " + closed or number == 0}
    assert links == {"/dev/null"}


@pytest.mark.parametrize("environment", ["-u PATH", "PATH="])
def test_without_a_path_tools_are_found_where_a_router_has_them(router, environment):
    router.link = router.root.link
    router.link("/usr/sbin/uci", "/router/bin/uci")
    router.link("/usr/sbin/jose", "/router/bin/jose")
    start_by_shell(router, f"exec env {environment} {program()}")
    assert router.get(LAN).encrypted


def test_own_files_are_private_and_those_of_tools_are_as_they_were(router):
    router.remove("/etc/init.d/dnsmasq")
    router.write("/etc/init.d/dnsmasq", "#!/bin/sh\n: > /tmp/made-by-a-tool\n", 0o755)
    start_by_shell(router, f"umask 022; exec {program()}")
    assert router.post("/api/v1/dhcp", {}).json["result"] == 0
    router.wait_until(lambda: router.exists("/tmp/made-by-a-tool"))
    assert mode(router, "/tmp/made-by-a-tool") == 0o644
    assert int(open(f"/proc/{router.pid()}/status").read().split("Umask:")[1].split()[0], 8) == 0o077


def mode(router, path):
    return stat.S_IMODE(os.stat(router.root.path(path)).st_mode)


def test_a_user_that_cannot_write_the_packages_is_told_of_once(router):
    router.root.mount(router.root.path("/etc/config"), "/etc/config")
    router.get(LAN)
    router.get(LAN)
    told = [line for line in router.log() if "no setting will be stored" in line.text]
    assert [(line.priority, line.text) for line in told] == \
        [(3, "user 0 cannot write /etc/config (Read-only file system): no setting will be stored\n")]


def test_a_user_that_can_is_not(router):
    router.get(LAN)
    assert not router.logged("no setting will be stored")
