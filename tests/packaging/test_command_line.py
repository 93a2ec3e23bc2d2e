"""What the program says of itself when a person starts it."""

import os
import re
import socket
import subprocess
from pathlib import Path

import pytest

SOURCES = Path(__file__).resolve().parents[2]


def run(*options, stdin=subprocess.DEVNULL):
    return subprocess.run([os.environ["ROUTER_API_BIN"], *options], capture_output=True, text=True, timeout=120,
                          stdin=stdin)


def test_the_version_is_the_projects():
    version = re.search(r"^project\(router-api VERSION (\S+)", (SOURCES / "CMakeLists.txt").read_text(), re.M)[1]
    done = run("--version")
    assert (done.returncode, done.stdout, done.stderr) == (0, f"router-api {version}\n", "")


def test_the_help_names_the_options_and_the_manual():
    done = run("--help")
    assert (done.returncode, done.stderr) == (0, "")
    for word in ("--help", "--version", "descriptor 0", "router-api(8)"):
        assert word in done.stdout


@pytest.mark.parametrize("options", [["--no-such-option"], ["--version", "twice"], [""], ["serve"]])
def test_anything_else_is_refused_and_nothing_is_served(options):
    done = run(*options)
    assert (done.returncode, done.stdout) == (2, "")
    assert done.stderr.startswith(f"router-api: '{options[-1]}' is not an option\n") and "--help" in done.stderr


def test_without_a_socket_it_says_so_and_ends():
    done = run()
    assert done.returncode == 0 and done.stderr.startswith("FCGX_Accept_r: ")


def test_with_a_socket_that_does_not_listen_it_says_so_and_ends():
    with socket.socket(socket.AF_UNIX) as not_listening:
        done = run(stdin=not_listening)
    assert (done.returncode, done.stderr) == (0, "FCGX_Accept_r: Invalid argument\n")
