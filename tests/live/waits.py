"""Waiting for what a router does behind an answer."""

import time

DEADLINE_S = 180.0  # only a failure takes so long


def wait_until(condition, what="it"):
    end = time.monotonic() + DEADLINE_S
    while not condition():
        assert time.monotonic() < end, f"{what}: not in time"
        time.sleep(0.05)


def wait_for(router, command, times=1):
    """Until this call of a tool was made so often."""
    wait_until(lambda: router.calls().count(command) >= times, command)


def wait_for_calls(router, *expected):
    """Until each of these calls was made: what runs in the background may come after the answer."""
    wait_until(lambda: set(expected) <= set(router.calls()), expected)
