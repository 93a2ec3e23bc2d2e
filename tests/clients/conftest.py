"""Routers for clients that are not the project's own: the live set's."""

import importlib.util
from pathlib import Path

_spec = importlib.util.spec_from_file_location("live_conftest", Path(__file__).resolve().parents[1] / "live" / "conftest.py")
_module = importlib.util.module_from_spec(_spec)
_spec.loader.exec_module(_module)

live = _module.live
pytest_sessionfinish = _module.pytest_sessionfinish
