"""Waiting for what a router does behind an answer."""

import contextlib
import os
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


@contextlib.contextmanager
def held_back(router, path):
    """Until the end of the block a tool that is called by its path waits before it is kept as a call."""
    gate = router.root.path("/tmp/gate")
    os.mkfifo(gate)
    router.root.write(path, router.root.read(path).replace("\n", "\ncat /tmp/gate 2>/dev/null\n", 1), 0o755)
    held = os.open(gate, os.O_RDWR)
    try:
        yield
    finally:
        gate.unlink()  # who comes late finds no gate
        os.close(held)
