"""The checks of the torture's own means."""

import sys
from pathlib import Path

for folder in ("", "routes"):
    sys.path.insert(0, str(Path(__file__).resolve().parents[1] / folder))
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "simulator"))
