"""The test kit: a router in a sandbox for every test. See router.Router."""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "simulator"))

import uci_text  # noqa: E402

from . import fastcgi, long_lists  # noqa: E402
from .hostile import GARBAGE_BODIES, HOSTILE, PWNED  # noqa: E402
from .router import Router  # noqa: E402
from .seen import Answer, Call, LogLine, decrypt, encrypt  # noqa: E402

__all__ = ["Answer", "Call", "GARBAGE_BODIES", "HOSTILE", "LogLine", "PWNED", "Router", "decrypt", "encrypt",
           "fastcgi", "long_lists", "uci_text"]
