"""The kit itself: what its stand-ins keep and answer, and what it does not let pass."""

import errno
import json
import os
import shutil
import signal
import subprocess
import tempfile
import threading
import time
from pathlib import Path

import pytest

import kit
import uci_text


@pytest.fixture
def router():
    made = kit.Router()
    yield made
    made.discard()


def test_a_stand_in_keeps_its_name_and_every_byte_of_its_arguments(router):
    for text in kit.HOSTILE.values():
        router.forget_calls()
        router.run("ubus", "call", text)
        router.run("/etc/init.d/dnsmasq", text)
        router.run("sh", "/usr/sbin/ledtest", text)
        assert router.calls() == [kit.Call("ubus", ("call", text)), kit.Call("/etc/init.d/dnsmasq", (text,)),
                                  kit.Call("/usr/sbin/ledtest", (text,))]


def test_a_tool_answers_by_its_longest_arguments(router):
    router.tool("iw", out="any\n")
    router.tool("iw", "dev", "ath0", "link", out="ath0\n")
    router.tool("iw", "dev", out="dev\n", err="warning\n", exit=3)
    assert router.run("iw", "dev", "ath0", "link").stdout == "ath0\n"
    answer = router.run("iw", "dev", "ath1", "link")
    assert (answer.stdout, answer.stderr, answer.returncode) == ("dev\n", "warning\n", 3)
    assert router.run("iw").stdout == "any\n"


def test_a_tool_that_nobody_speaks_of_fails_by_its_name_and_so_does_its_test(router):
    for command in (["brctl", "show"], ["ubus", "call", "nosuch"], ["/sbin/firstboot"], ["iw"]):
        answer = router.run(*command)
        assert (answer.stdout, answer.returncode) == ("", 127)
        assert answer.stderr == f"stand-in: nobody said what this call does: {' '.join(command)}\n"
    with pytest.raises(AssertionError, match='"brctl show"\n"ubus call nosuch"\n"/sbin/firstboot"\n"iw"\n'):
        router.finish()


def test_a_tool_that_acts_is_silent_unless_told_otherwise(router):
    assert (router.run("wifi", "reload").stdout, router.run("wifi", "reload").returncode) == ("", 0)
    router.tool("wifi", "reload", exit=3)
    assert router.run("wifi", "reload").returncode == 3
    assert router.run("wifi", "multi_up", "mld0").returncode == 0, "what is said of one call is said of no other"


def test_a_tool_that_is_asked_tells_of_a_router_on_which_nothing_is_up(router):
    answer = router.run("iw", "dev", "mld0", "info")
    assert (answer.stdout, answer.stderr, answer.returncode) == ("", "command failed: No such device (-19)\n", 237)
    router.tool("iw", "dev", "mld0", "info", out="Interface mld0\n")
    assert router.run("iw", "dev", "mld0", "info").stdout == "Interface mld0\n"
    assert router.run("iw", "dev", "mld1", "info").returncode == 237


def test_the_latest_answer_for_the_same_arguments_counts(router):
    router.tool("arp", "-a", out="old")
    router.tool("arp", "-a", out="new")
    assert router.run("arp", "-a").stdout == "new"


def test_exact_arguments_do_not_answer_longer_ones(router):
    router.tool("iw", "dev", out="just dev", exact=True)
    router.tool("iw", "dev", out="dev and more")
    assert [router.run("iw", *words).stdout for words in (["dev"], ["dev", "x"])] == ["just dev", "dev and more"]


def test_answers_follow_one_another_and_the_last_repeats(router):
    router.tool("inetchk", exit=1, then=[{"out": "2"}, {"out": "3"}])
    answers = [router.run("inetchk") for _ in range(4)]
    assert [(a.returncode, a.stdout) for a in answers] == [(1, ""), (0, "2"), (0, "3"), (0, "3")]


def test_a_tool_leaves_files_and_any_bytes(router):
    router.tool("/etc/getIpAddr.sh", out=b"\xff\x00\xfe", write={"/tmp/ipAddrResult": "addr:1.2.3.4\n"})
    assert router.run("/etc/getIpAddr.sh").stdout == "\udcff\x00\udcfe"
    assert router.read("/tmp/ipAddrResult") == "addr:1.2.3.4\n"


def test_a_tool_may_be_missing_or_die(router):
    router.tool("ubus", missing=True)
    router.tool("md5sum", missing=True)
    router.tool("/sbin/wifi", missing=True)
    for command in ("ubus", "md5sum", "/sbin/wifi"):
        assert router.run("sh", "-c", command).returncode == 127
    router.tool("iw", signal=9)
    assert router.run("sh", "-c", "iw; echo $?").stdout.strip() == "137"


def test_standard_input_is_kept_where_it_is_asked_for(router):
    router.run("passwd", "admin", input="geheim\ngeheim\n")
    router.tool("emt", stdin=True)
    router.run("emt", input=b"td s2\n\xff")
    assert router.calls("passwd")[0].stdin == "geheim\ngeheim\n"
    assert router.calls("emt")[0].stdin == "td s2\n\udcff"
    router.run("ubus", input="x")
    assert router.calls("ubus")[0].stdin is None


@pytest.mark.parametrize("text", [*kit.HOSTILE.values(), "x" * 300000], ids=[*kit.HOSTILE, "very-long"])
def test_the_fake_jose_returns_every_text(router, text):
    data = text.encode("utf-8", "surrogateescape")
    encrypted = router.run("jose", "jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c", input=data)
    assert encrypted.stdout.encode() == kit.encrypt(data)
    decrypted = router.run("jose", "jwe", "dec", "-i-", "-p", input=encrypted.stdout)
    assert decrypted.stdout == text


@pytest.mark.parametrize("text", ["", "{}", "jwe", "jwe.?", "jwe.a", "jwe.YQ\njwe.YQ", "'jwe.YQ"])
def test_the_fake_jose_refuses_what_it_did_not_make(router, text):
    refused = router.run("jose", "jwe", "dec", "-i-", "-p", input=text)
    assert (refused.stdout, refused.returncode) == ("", 1)
    assert router.run("jose", "jwe", "fmt", "-i-", input=text).returncode == 1


def test_a_real_tool_works_and_is_kept(router):
    router.record("rm")
    router.write("/tmp/x", "")
    router.run("rm", "/tmp/x")
    assert not router.exists("/tmp/x")
    assert router.commands() == ["rm /tmp/x"]


def test_the_root_keeps_the_machine_out(router):
    names = router.run("sh", "-c", "ls / /root; touch /usr/lib/x || echo read-only").stdout
    assert "read-only" in names
    for name in ("home", "boot", "srv"):
        assert name not in names.split()


def test_a_start_adds_no_mounts(router):
    """Every one makes the next start slower, and the program's view of its file systems longer."""
    for _ in range(2):
        assert router.get("/api/v1/ntp").status == 200
        mounts = router.root.command(["true"])
        router.kill()
        router.restart()
    assert router.root.command(["true"]) == mounts


def test_waits_pass_at_once_and_are_kept_in_their_order(router):
    router.root.mount(os.environ["FAST_TIME_LIB"], "/router/fast_time.so")
    script = "import time, os; time.sleep(86400); os.system('logger x; sleep 3'); time.sleep(0.25)"
    router.run("python3", "-c", script, environment={"LD_PRELOAD": "/router/fast_time.so"})
    assert router.commands() == ["sleep 86400", "logger x", "sleep 3", "sleep 0.25"]


def test_loads_and_commits_of_packages_are_kept(router):
    router.count_uci = True
    assert router.get("/api/v1/ntp").status == 200
    assert set(router.uci_calls()) == {"load system"}
    router.forget_uci_calls()
    assert router.post("/api/v1/ntp", {"enable": 1, "server": "new.example"}).json["result"] == 0
    assert "commit system" in router.uci_calls()
    router.forget_uci_calls()
    router.run("uci", "get", "system.ntp.enabled")
    assert router.uci_calls() == []


def test_a_unit_program_refuses_to_run_on_the_machine_itself():
    program = os.path.join(os.environ["ROUTER_API_BUILD"], "tests/unit/unit_platform")
    done = subprocess.run([program, "--gtest_list_tests"], capture_output=True, text=True, timeout=60, check=False)
    assert (done.returncode, done.stdout) == (125, "") and "in-sandbox" in done.stderr


def test_neighbours_stand_in_the_arp_table(router):
    router.network_device("br-lan", "192.168.0.1/24")
    router.neighbour("192.168.0.5", "02:00:00:00:00:05")
    router.neighbour("192.168.0.6", "02:00:00:00:00:06", state="none")
    rows = [line.split() for line in router.run("cat", "/proc/net/arp").stdout.splitlines()[1:]]
    assert [(row[0], row[2], row[3], row[5]) for row in rows if row[2] != "0x0"] == \
        [("192.168.0.5", "0x6", "02:00:00:00:00:05", "br-lan")]


def test_options_are_read_and_written(router):
    router.config("x", "config host\n\toption name \"a \\\"b\\\"\"\nconfig host 'named'\n\toption k 'it'\\''s'\n\tlist l 1\n\tlist l '2 3'\n")
    assert router.option("x.@host[0].name") == 'a "b"'
    assert router.option("x.named.k") == "it's"
    assert router.option("x.@host[-1].l") == ["1", "2 3"]
    assert router.option("x.named") == "host"
    assert router.option("x.none.k") is None and router.option("y.z.k") is None
    router.set("x.named.k", "new\nline's")
    router.set("x.@host[0].name", None)
    router.set("x.other", "type")
    router.add("x", "host", ip="1.2.3.4", dns=["a", "b"])
    assert [(s.type, s.name, s.options) for s in router.package("x")] == [
        ("host", None, {}), ("host", "named", {"k": "new\nline's", "l": ["1", "2 3"]}), ("type", "other", {}),
        ("host", None, {"ip": "1.2.3.4", "dns": ["a", "b"]})]


def test_every_factory_package_is_well_formed():
    for brand in ("orvane", "tesmir"):
        for mode in ("router", "ap", "re", "controller", "agent"):
            made = kit.Router(brand=brand, mode=mode)
            try:
                packages = os.listdir(made.root.path("/etc/config"))
                assert len(packages) > 20
                for package in packages:
                    text = made.read(f"/etc/config/{package}")
                    assert uci_text.parse(uci_text.render(uci_text.parse(text))) == uci_text.parse(text)
                assert made.option("system.@system[0].op_mode") in ("router", "ap", "re")
            finally:
                made.discard()


def test_nothing_is_left_on_the_machine(router):
    router.run("sh", "-c", "sleep 1 & echo > /tmp/x")
    directory = router.directory
    router.finish()
    assert not directory.exists()


@pytest.mark.parametrize(("variable", "value"), [("STAND_IN_BIN", ""), ("STAND_IN_BIN", "/none"), ("UCI_BIN", "/none")])
def test_a_router_that_cannot_be_made_leaves_nothing(monkeypatch, variable, value):
    with tempfile.TemporaryDirectory() as empty:
        monkeypatch.setattr("tempfile.tempdir", empty)
        monkeypatch.setenv(variable, value)
        with pytest.raises((RuntimeError, FileNotFoundError)):
            kit.Router()
        assert os.listdir(empty) == []


def test_a_program_that_ends_fails_the_test(router):
    router.start()
    os.kill(router.pid(), 9)
    router.wait_until(lambda: not router.alive_process())
    with pytest.raises(AssertionError, match="ended"):
        router.finish()


def test_the_program_is_found_whatever_its_file_is_called(router, monkeypatch, tmp_path):
    """A build may replace the file meanwhile, too."""
    file = Path(shutil.copy(os.environ["ROUTER_API_BIN"], tmp_path / "router-api-of-another-build"))
    monkeypatch.setenv("ROUTER_API_BIN", str(file))
    found = router.pid()
    file.unlink()
    assert [router.pid()] == router.processes() == [found]


def test_the_program_is_found_under_an_emulator(router, monkeypatch):
    """One that, as qemu does, stays what the process is; here with the program for its child."""
    router.real_time = True  # nothing is preloaded
    monkeypatch.setenv("ROUTER_API_EMULATOR", """/bin/bash -c '"$0"; exit $?'""")
    assert router.get("/api/v1/ntp").json["result"] == 0
    emulator, program = router.processes()
    assert router.pid() == emulator and Path(f"/proc/{emulator}/exe").readlink().name == "bash"
    assert Path(f"/proc/{program}/exe").readlink().name == "router-api"


def test_who_asks_a_program_that_ends_waits_no_longer(router):
    """The listening socket takes connections for it, before and after."""
    router.start()
    program = router.pid()
    os.kill(program, signal.SIGSTOP)
    killing = threading.Timer(0.1, os.kill, (program, signal.SIGKILL))
    killing.start()
    assert router.get("/api/v1/ntp").empty
    killing.join()
    router.wait_until(lambda: not router.alive_process())
    assert router.get("/api/v1/ntp").empty


def test_a_sanitizer_report_fails_the_test(router):
    router.write("/router/sanitizer.123", "ERROR: AddressSanitizer: heap-use-after-free")
    with pytest.raises(AssertionError, match="heap-use-after-free"):
        router.finish()


def test_calls_are_json_lines(router):
    router.run("ubus", 'a"b\\c\n\x01')
    line = json.loads((router.read("/router/calls.jsonl") or "").strip())
    assert time.time() - line.pop("time") < 3600.0
    assert line == {"tool": "ubus", "args": ['a"b\\c\n\x01']}


def test_a_call_is_one_whatever_ends_lines_elsewhere(router):
    argument = "a\u2028b\x85c\x0b"
    router.run("ubus", argument)
    assert [call.args for call in router.calls()] == [(argument,)]


def test_a_root_is_removed_though_something_in_it_ends_late(monkeypatch):
    router = kit.Router()
    remove, refusals = shutil.rmtree, [OSError(errno.ENOTEMPTY, "written to meanwhile")]

    def remove_at_the_second_try(path):
        if refusals:
            raise refusals.pop()
        return remove(path)

    monkeypatch.setattr("shutil.rmtree", remove_at_the_second_try)
    router.discard()
    assert not refusals and not router.directory.exists()
