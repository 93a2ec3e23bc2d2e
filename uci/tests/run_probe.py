#!/usr/bin/python3
"""run_probe.py PROBE: runs the interface probe in a folder of its own and compares what it prints."""

import difflib
import subprocess
import sys
import tempfile
from pathlib import Path

DEADLINE_S = 600


def main() -> int:
    expected = (Path(__file__).resolve().parent / "api_probe.expected").read_bytes().decode("latin-1")
    with tempfile.TemporaryDirectory(prefix="uci-probe-") as folder:
        done = subprocess.run([sys.argv[1], folder], capture_output=True, timeout=DEADLINE_S, check=False)
    printed = done.stdout.decode("latin-1")
    sys.stderr.write(done.stderr.decode("latin-1"))
    if done.returncode == 0 and printed == expected:
        return 0
    print(f"exit status {done.returncode}")
    sys.stdout.writelines(difflib.unified_diff(expected.splitlines(True), printed.splitlines(True), "expected", "printed"))
    return 1


if __name__ == "__main__":
    sys.exit(main())
