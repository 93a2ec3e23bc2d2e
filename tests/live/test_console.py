"""The console: its parts in Node, its pages in a headless Chromium against simulated routers."""

import json
import os
import shutil
import subprocess
from pathlib import Path

import pytest

CONSOLE_TESTS = Path(__file__).resolve().parents[1] / "console"
DEADLINE_S = 600
NEEDED = os.environ.get("CONSOLE_TESTS") == "needed"  # then what is missing is a failure
HOSTILE_NEIGHBOUR = r"0 06:00:00:00:00:01 2437 -60.00 <img\x20src=x\x20onerror=alert(1)> PSK"


def need(found, what):
    if found:
        return
    message = f"{what} is missing, without which the console is not tested: script/setup --console installs it"
    pytest.fail(message) if NEEDED else pytest.skip(message)


def node_test(*files, **environment):
    need(shutil.which("node"), "node")
    need((CONSOLE_TESTS / "node_modules" / "playwright-core").exists(), "tests/console/node_modules")
    done = subprocess.run(["node", "--test", *files], cwd=CONSOLE_TESTS, env={**os.environ, **environment},
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=DEADLINE_S)
    if done.returncode != 0:
        pytest.fail(done.stdout, pytrace=False)


def test_its_parts():
    node_test("jwe.test.js", "schema.test.js", "mesh.test.js")


def test_its_pages(live):
    need(shutil.which("chromium"), "chromium")
    fast = {"fast_time": os.environ["FAST_TIME_LIB"]}
    routers = {
        "router": live(**fast),
        "ap": live(mode="ap", **fast),
        "controller": live(mode="controller", agents=3, clients=12, **fast),
        "wide": live(mode="controller", agents=7, clients=24, **fast),
        "hostile": live(**fast),
    }
    routers["hostile"].root.write("/router/state/neighbours", HOSTILE_NEIGHBOUR + "\n")
    node_test("browser.test.js", ROUTERS=json.dumps({name: router.base for name, router in routers.items()}))
