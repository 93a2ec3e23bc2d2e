"""The scripts: what they say of themselves, what they show, and what they say where something is missing."""

import json
import os
import re
import signal
import socket
import subprocess
from pathlib import Path

import pytest
import simulator

SOURCES = Path(__file__).resolve().parents[2]
SCRIPTS = sorted(path.name for path in (SOURCES / "script").iterdir() if os.access(path, os.X_OK))
DEADLINE_S = 180
LAN = "/api/v1/lan"


def run(*argv, **environment):
    return subprocess.run([str(word) for word in argv], capture_output=True, text=True, timeout=DEADLINE_S,
                          stdin=subprocess.DEVNULL, env={**os.environ, **environment})


def script(name, *args, **environment):
    return run(SOURCES / "script" / name, *args, **environment)


def simulate(*args, **environment):
    """The last step of script/run."""
    return run("/usr/bin/python3", SOURCES / "simulator/simulator.py", "--build", os.environ["ROUTER_API_BUILD"],
               "--port", 0, "--once", *args, **environment)


@pytest.mark.parametrize("name", SCRIPTS)
def test_a_script_explains_itself(name):
    done = script(name, "--help")
    assert done.returncode == 0 and done.stderr == ""
    assert f"script/{name}" in done.stdout and len(done.stdout.splitlines()) > 3


@pytest.mark.parametrize("name", ["setup", "test", "request"])
def test_an_unknown_option_is_refused(name):
    done = script(name, "--no-such-option")
    assert done.returncode == 2 and f"script/{name}" in done.stderr


def test_a_second_setup_finds_nothing_to_do():
    done = script("setup")
    assert (done.returncode, done.stdout, done.stderr) == (0, "", "")


def test_a_plain_cmake_builds_the_program_and_the_uci_command(tmp_path):
    plain = {name: value for name, value in os.environ.items() if name != "CMAKE_GENERATOR"}
    done = subprocess.run(["cmake", "-S", SOURCES, "-B", tmp_path], capture_output=True, text=True, env=plain)
    assert done.returncode == 0, done.stderr
    targets = run("cmake", "--build", tmp_path, "--target", "help").stdout.split()
    assert {"router-api", "uci"} <= set(targets)


def test_one_exchange_is_shown_in_full_with_its_plain_text():
    done = simulate("--brand", "tesmir")
    assert done.returncode == 0, done.stderr
    assert "A simulated router (tesmir, router) answers on http://127.0.0.1:" in done.stdout
    assert '{"lanIpv4Address": "192.168.2.1", "lanIpv4SubMask": "255.255.255.0", "globalIpProtectionEnable": 1}' in done.stdout
    assert '{"result": 0, "version": 1, "waitTime": 60}' in done.stdout
    assert len(re.findall(r"^eyJ[\w-]+(?:\.[\w-]*){4}$", done.stdout, re.M)) == 2  # the body, the answer


@pytest.mark.parametrize("number, status", [(signal.SIGINT, 0), (signal.SIGTERM, 128 + signal.SIGTERM)])
def test_a_router_serves_until_it_is_ended_and_leaves_nothing(number, status):
    command = ["/usr/bin/python3", SOURCES / "simulator/simulator.py", "--build", os.environ["ROUTER_API_BUILD"], "--port", "0"]
    with subprocess.Popen(command, stdout=subprocess.PIPE, text=True, start_new_session=True) as router:
        shown = ""
        while "Ctrl-C ends it." not in shown:
            line = router.stdout.readline()
            assert line, shown
            shown += line
        port = re.search(r"http://127\.0\.0\.1:(\d+)/", shown)[1]
        files = Path(re.search(r"Its files: +(\S+)", shown)[1])
        assert files.is_dir()
        assert script("request", "--port", port, "GET", LAN).returncode == 0
        router.send_signal(number)
        assert router.wait(DEADLINE_S) == status
    assert not files.exists()
    assert script("request", "--port", port, "GET", LAN).returncode == 2


def test_a_request_prints_its_answer_and_tells_its_result_by_its_status(live):
    port = live().port
    done = script("request", "--port", port, "GET", LAN)
    assert done.returncode == 0
    assert json.loads(done.stdout)["lanIpv4Address"] == "192.168.0.1" and done.stdout.count("\n") > 5
    done = script("request", "--port", port, "POST", LAN, '{"lanIpv4Address": "192.168.0.0", "lanIpv4SubMask": "255.255.255.0"}')
    assert (done.returncode, json.loads(done.stdout)) == (1, {"result": 1})
    done = script("request", "--port", port, "GET", "/api/v1/nothing")
    assert done.returncode == 2 and done.stderr.startswith("script/request: ")


def test_a_reader_that_has_seen_enough_is_no_failure(live):
    router = live()
    router.root.write("/var/log/messages.log", "t [a] " + "x" * 200 + "\n" + "t [a] b\n" * 20_000)
    command = [SOURCES / "script/request", "--port", str(router.port), "GET", "/api/v1/system/log/message"]
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE) as done:
        assert done.stdout.read(1) == b"{"
        done.stdout.close()
        assert done.stderr.read() == b""
    assert done.returncode == 0


def test_a_request_to_nobody_is_told_in_a_line():
    with socket.socket() as silent:
        silent.bind(("127.0.0.1", 0))  # nobody else's, and nobody listens
        done = script("request", "--port", silent.getsockname()[1], "GET", LAN)
    assert done.returncode == 2
    assert done.stderr.startswith("script/request: ") and len(done.stderr.splitlines()) == 1


def test_a_machine_that_forbids_namespaces_is_told_what_to_allow(tmp_path):
    bwrap = tmp_path / "bwrap"
    bwrap.write_text("#!/bin/sh\necho 'bwrap: No permissions to create new namespace' >&2\nexit 1\n")
    bwrap.chmod(0o755)
    done = simulate(PATH=f"{tmp_path}:{os.environ['PATH']}")
    assert done.returncode == 1
    assert "bubblewrap cannot mount a router's root here: bwrap: No permissions to create new namespace" in done.stderr
    assert "To help it: " in done.stderr and "Traceback" not in done.stderr


def test_an_ordinary_user_is_told_of_user_namespaces(tmp_path, monkeypatch):
    import sandbox
    bwrap = tmp_path / "bwrap"
    bwrap.write_text("#!/bin/sh\necho 'bwrap: setting up uid map: Permission denied' >&2\nexit 1\n")
    bwrap.chmod(0o755)
    monkeypatch.setenv("PATH", f"{tmp_path}:{os.environ['PATH']}")
    monkeypatch.setattr(os, "geteuid", lambda: 1000)
    sandbox.isolation.cache_clear()
    try:
        with pytest.raises(sandbox.SandboxError, match="allow user namespaces .*or run it as root"):
            sandbox.isolation()
    finally:
        sandbox.isolation.cache_clear()


def test_a_machine_without_bubblewrap_is_told_how_to_get_it(tmp_path):
    done = simulate(PATH=str(tmp_path))
    assert done.returncode == 1
    assert done.stderr == "simulator: bubblewrap is missing: script/setup installs it (package bubblewrap)\n"
