"""Clients that are not the project's own, from npm: script/clients installs them and runs this."""

import re
import subprocess
from pathlib import Path

import pytest
import yaml

HERE = Path(__file__).resolve().parent
DOCUMENT = yaml.safe_load((HERE.parents[1] / "docs" / "openapi.yaml").read_text(encoding="utf-8"))
DEADLINE_S = 900


def run(*argv):
    done = subprocess.run(argv, cwd=HERE, capture_output=True, text=True, timeout=DEADLINE_S)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


def test_the_description_passes_a_public_linter():
    run("npm", "run", "--silent", "lint")


def test_a_generated_client_makes_ten_calls(live):
    """script/clients has compiled it: the other tests use what that made."""
    told = run("node", "typed_client.mjs", live().base).splitlines()
    assert len(told) == 10 and all(line.endswith(": as expected") for line in told)


def posts_of(name):
    return sum(example.get("x-router", "router") == name
               for methods in DOCUMENT["paths"].values() if "post" in methods
               for content in methods["post"]["responses"]["200"]["content"].values()
               for example in content.get("examples", {}).values())


@pytest.mark.parametrize("name", DOCUMENT["x-routers"])
def test_another_jwe_library_posts_every_example_and_reads_every_answer(live, name):
    told = run("node", "every_example.mjs", live(**DOCUMENT["x-routers"][name]).base, name).splitlines()
    assert len(told) == posts_of(name) + 1
    assert re.fullmatch(r"\d+ answers decrypted, 0 wrong", told[-1])
