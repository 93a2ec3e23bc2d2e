"""Fixtures of the route tests: a fresh router for each."""

import sys
from pathlib import Path

import pytest

for folder in (Path(__file__).resolve().parents[1], Path(__file__).resolve().parent):
    sys.path.insert(0, str(folder))  # the kit; helpers that the tests of an area share

import kit  # noqa: E402


@pytest.fixture
def router():
    """A router as it leaves the factory: brand orvane, mode router."""
    yield from _router(kit.Router())


@pytest.fixture
def bare_router():
    """A router without any UCI package."""
    yield from _router(kit.Router(factory=False))


def _router(router):
    try:
        yield router
    finally:
        router.finish()


def pytest_sessionfinish(session, exitstatus):
    """A filter that leaves nothing of this set over is no failure."""
    if exitstatus == pytest.ExitCode.NO_TESTS_COLLECTED and session.config.option.keyword:
        session.exitstatus = pytest.ExitCode.OK
