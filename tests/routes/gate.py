"""A tool that does not come to its end before a test lets it."""

import os

GATE = "/tmp/gate"
PASSED = "/tmp/passed"


class Gate:
    def __init__(self, router, tool):
        """`tool`: the path of it in the router's root."""
        self.router = router
        self.gate = router.root.path(GATE)
        os.mkfifo(self.gate)
        self.held = os.open(self.gate, os.O_RDWR)
        router.remove(tool)
        router.write(tool, f"#!/bin/sh\ncat {GATE}\n: >{PASSED}\n", 0o755)

    def is_passed(self):
        return self.router.exists(PASSED)

    def open(self):
        """Returns when the tool has come to its end."""
        self.gate.unlink()  # who comes late finds no gate
        os.close(self.held)
        self.router.wait_until(self.is_passed, "the tool behind the gate")
