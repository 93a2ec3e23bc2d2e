"""The live set: a simulated router behind lighttpd, asked with the real jose."""

import os
import sys
from pathlib import Path

import pytest

sys.path[:0] = [str(Path(__file__).parent), str(Path(__file__).resolve().parents[2] / "simulator")]

import simulator  # noqa: E402


@pytest.fixture
def live():
    """Starts routers: router = live(brand="tesmir", mode="ap"), with any option of simulator.py by its name.

    A router has get(uri), post(uri, object | text | bytes, plain=False), option("network.lan.ipaddr"), calls() as
    texts, and root (read, write, exists by the router's paths)."""
    routers = []

    def start(**options):
        args = simulator.options_parser().parse_args([])
        for name, value in options.items():
            if not hasattr(args, name):
                raise TypeError(f"simulator.py has no option --{name}")
            setattr(args, name, value)
        router = simulator.Simulator(Path(os.environ["ROUTER_API_BUILD"]), args)
        routers.append(router)
        router.start()
        return router

    yield start
    for router in routers:
        router.stop()


def pytest_sessionfinish(session, exitstatus):
    """A filter that leaves nothing of this set over is no failure."""
    if exitstatus == pytest.ExitCode.NO_TESTS_COLLECTED and session.config.option.keyword:
        session.exitstatus = pytest.ExitCode.OK
