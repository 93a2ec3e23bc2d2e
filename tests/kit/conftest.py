"""Lets the kit's own tests import it."""

import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))


def pytest_sessionfinish(session, exitstatus):
    """A filter that leaves nothing of this set over is no failure."""
    if exitstatus == pytest.ExitCode.NO_TESTS_COLLECTED and session.config.option.keyword:
        session.exitstatus = pytest.ExitCode.OK
