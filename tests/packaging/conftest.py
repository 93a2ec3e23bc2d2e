"""The packaging tests: what a router gets installed, and what an engineer reads about it."""

import sys
from pathlib import Path

import pytest

sys.path[:0] = [str(Path(__file__).parent), str(Path(__file__).resolve().parents[1]), str(Path(__file__).resolve().parents[2] / "simulator")]


def pytest_sessionfinish(session, exitstatus):
    """A filter that leaves nothing of this set over is no failure."""
    if exitstatus == pytest.ExitCode.NO_TESTS_COLLECTED and session.config.option.keyword:
        session.exitstatus = pytest.ExitCode.OK
