"""The network reload behind POST /api/v1/lan: its chain, its name servers, and what it does to the program."""

import os

import pytest
from lan_setup import CHAIN, IFCONFIG, OK, RELOAD_LOG, URI, messages, set_mode, settings, wait_for_chain
from process_state import below, daemons, resources, sockets

from kit import encrypt, fastcgi

RESOLV_CONF = "/tmp/resolv.conf.auto"
BACKUP = "/tmp/resolv.conf.auto.bak"
CP = f"cp {BACKUP} {RESOLV_CONF}"


@pytest.fixture
def lan(router):
    router.tool("ifconfig", "br-lan", out=IFCONFIG)
    return router


def wait_for_message(router, text):
    router.wait_until(lambda: text in messages(router, priority=7), f"the message {text!r}")


@pytest.mark.parametrize("mode, dhcp", [("router", 0), ("ap", 0), ("ap", 1), ("re", 0), ("re", 1)])
def test_the_chain_runs_in_its_order_with_its_waits(lan, mode, dhcp):
    set_mode(lan, mode)
    assert lan.post(URI, settings(dhcpv4Enable=dhcp)).text == OK
    assert wait_for_chain(lan) == CHAIN


def test_the_chain_runs_for_a_client_that_has_gone(lan):
    body = encrypt(b'{"lanIpv4Address": "192.168.5.1", "lanIpv4SubMask": "255.255.255.0"}')
    lan.raw(fastcgi.request({"REQUEST_METHOD": "POST", "REQUEST_URI": URI, "CONTENT_LENGTH": str(len(body))}, body), close=True)
    assert wait_for_chain(lan) == CHAIN
    assert lan.option("network.lan.ipaddr") == "192.168.5.1"
    assert lan.alive()


def test_the_answer_does_not_wait_for_the_chain(lan):
    lan.tool("/etc/init.d/globalip", hang=True)
    assert lan.post(URI, settings()).text == OK
    lan.wait_for_call("/etc/init.d/globalip", "start")
    assert lan.get(URI).json["result"] == 0  # the next request is served, too
    assert lan.commands("ubus") == []
    lan.kill()


@pytest.mark.parametrize("dead", [{"exit": 1}, {"signal": 9}], ids=["failing", "killed"])
@pytest.mark.parametrize("tool", ["/etc/init.d/globalip", "/etc/init.d/dnsmasq", "ubus", "logger", "msg_tool"])
def test_a_dead_tool_does_not_stop_the_chain(lan, tool, dead):
    lan.write(RESOLV_CONF, "nameserver 1.1.1.1\n")
    lan.tool(tool, **dead)
    assert lan.post(URI, settings()).text == OK
    assert wait_for_chain(lan) == CHAIN
    wait_for_message(lan, f"{RESOLV_CONF} has dns，skip check")


@pytest.mark.parametrize("tool", ["/etc/init.d/globalip", "/etc/init.d/dnsmasq", "ubus", "logger", "msg_tool"])
def test_a_missing_tool_does_not_stop_the_chain(lan, tool):
    lan.write(RESOLV_CONF, "nameserver 1.1.1.1\n")
    lan.tool(tool, missing=True)
    assert lan.post(URI, settings()).text == OK
    wait_for_message(lan, f"{RESOLV_CONF} has dns，skip check")
    commands = lan.commands()
    assert commands[commands.index("sleep 2"):] == [command for command in CHAIN if command.split()[0] != tool]


# The name servers that the chain leaves.

def test_name_servers_that_are_there_are_kept(lan):
    lan.record("cp")
    lan.write(RESOLV_CONF, "nameserver 1.1.1.1\n")
    lan.write(BACKUP, "nameserver 2.2.2.2\n")
    lan.post(URI, settings())
    wait_for_message(lan, f"{RESOLV_CONF} has dns，skip check")
    assert lan.read(RESOLV_CONF) == "nameserver 1.1.1.1\n"
    assert lan.calls("cp") == []


@pytest.mark.parametrize("content", [None, ""], ids=["missing", "empty"])
def test_name_servers_that_are_gone_come_from_their_backup(lan, content):
    lan.record("cp")
    if content is not None:
        lan.write(RESOLV_CONF, content)
    lan.write(BACKUP, "nameserver 2.2.2.2\n")
    lan.post(URI, settings())
    wait_for_message(lan, "DNS restore success")
    assert lan.read(RESOLV_CONF) == "nameserver 2.2.2.2\n"
    assert lan.commands()[-2:] == ["msg_tool -r easymesh_over", CP]
    assert f"[{RESOLV_CONF}] is null,ready restore" in messages(lan, priority=7)


def test_without_a_backup_nothing_is_copied(lan):
    lan.record("cp")
    lan.post(URI, settings())
    wait_for_message(lan, f" [{BACKUP}] not exist")
    assert lan.calls("cp") == [] and not lan.exists(RESOLV_CONF)


def test_a_backup_that_cannot_be_copied_is_logged(lan):
    lan.tool("cp", missing=True)
    lan.write(BACKUP, "nameserver 2.2.2.2\n")
    lan.post(URI, settings())
    wait_for_message(lan, "DNS restore fail")
    assert not lan.exists(RESOLV_CONF)


def test_a_planted_link_in_the_place_of_the_name_servers_is_not_written_through(lan):
    lan.write("/etc/victim", "")
    lan.write(BACKUP, "nameserver 2.2.2.2\n")
    os.symlink("/etc/victim", lan.root.path(RESOLV_CONF))
    lan.post(URI, settings())
    wait_for_message(lan, "DNS restore success")
    assert lan.read("/etc/victim") == ""
    assert lan.read(RESOLV_CONF) == "nameserver 2.2.2.2\n" and not lan.root.path(RESOLV_CONF).is_symlink()


@pytest.mark.parametrize("link", [os.symlink, os.link], ids=["link", "second name"])
def test_a_planted_link_in_the_place_of_the_backup_publishes_no_file(lan, link):
    lan.write("/etc/victim", "root's own\n")
    link(lan.root.path("/etc/victim") if link is os.link else "/etc/victim", lan.root.path(BACKUP))
    lan.post(URI, settings())
    wait_for_message(lan, f" [{BACKUP}] not exist")
    assert not lan.exists(RESOLV_CONF)


def test_a_folder_in_the_place_of_the_name_servers_is_not_written_into(lan):
    lan.write("/etc/victim", "")
    lan.write(BACKUP, "nameserver 2.2.2.2\n")
    lan.root.path(RESOLV_CONF).mkdir()
    os.symlink("/etc/victim", lan.root.path(RESOLV_CONF) / "resolv.conf.auto.bak")
    lan.post(URI, settings())
    wait_for_message(lan, "DNS restore fail")
    assert lan.read("/etc/victim") == ""


# What it leaves in the program.

def test_the_daemon_holds_neither_a_connection_nor_the_listening_socket(lan):
    lan.tool("/etc/init.d/globalip", hang=True)
    lan.post(URI, settings())
    lan.wait_for_call("/etc/init.d/globalip", "start")
    (daemon,) = daemons(lan)
    tools = below(daemon)
    assert tools
    for pid in {daemon} | tools:
        assert sockets(pid) == []
    assert len(sockets(lan.pid())) >= 1  # the listening one
    lan.kill()


def test_requests_and_reloads_leave_no_child_thread_or_descriptor(lan):
    lan.post(URI, settings(lanIpv4Address="192.168.5.250"))
    lan.get(URI)
    wait_for_chain(lan)
    program = lan.pid()
    lan.wait_until(lambda: len(sockets(program)) == 2, "the end of the last request")  # listening, logging
    before = resources(program)
    for i in range(1, 21):
        assert lan.post(URI, settings(lanIpv4Address=f"192.168.5.{i}")).text == OK
        assert lan.get(URI).json["result"] == 0
    assert messages(lan, priority=7).count(RELOAD_LOG) == 21
    lan.wait_for_call("msg_tool", "-r", "easymesh_over", times=21)
    lan.wait_until(lambda: resources(program) == before, "what the program began with")
