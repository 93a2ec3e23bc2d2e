"""What a simulated router did: the tools it ran, and how its packages changed, since a moment that somebody asked at."""

from __future__ import annotations

import collections
import difflib
import json
import threading

CALLS = "/router/calls.jsonl"
LOG = "/var/log/messages.log"
PACKAGES = "/etc/config"

# What is longer is cut: an answer stays one that a page can show.
MOST_CALLS = 400
MOST_CALL_BYTES = 1 << 20
MOST_LOG_BYTES = 64 << 10
MOST_WORD = 2000
MOST_PACKAGE_BYTES = 256 << 10
MOST_DIFF_LINES = 1000
MOST_MOMENTS = 64


class History:
    """Moments are numbers. 0 is the start; of the others the newest are remembered, and an older one counts as 0."""

    def __init__(self, root):
        self._root = root
        self._lock = threading.Lock()
        self._newest = 0
        self._moments = collections.OrderedDict({0: (0, 0, self._packages())})  # number: lengths of calls and log, packages

    def now(self) -> dict:
        """{"next": N}: to be asked with since(N) later."""
        with self._lock:
            return {"next": self._remember(self._complete_length(), self._log_length(), self._packages())}

    def since(self, moment: int) -> dict:
        """{"next": N, "calls": [{"argv", "time", "stdin"?}], "packages": {name: unified diff}, "log": [line]}. With more
        calls than fit the newest are there, and "dropped" tells that some are not."""
        with self._lock:
            start, log_start, before = self._moments.get(moment, self._moments[0])
            end, log_end, after = self._complete_length(), self._log_length(), self._packages()
            changed = sorted(name for name in before.keys() | after.keys() if before.get(name) != after.get(name))
            return {
                "next": self._remember(end, log_end, after),
                **self._calls(start if start <= end else 0, end),
                "packages": {name: _difference(name, before.get(name), after.get(name)) for name in changed},
                "log": self._log(log_start if log_start <= log_end else 0, log_end),
            }

    def _remember(self, *state) -> int:
        if self._moments[self._newest] != state:
            self._newest += 1
            self._moments[self._newest] = state
            if len(self._moments) > MOST_MOMENTS:
                del self._moments[next(number for number in self._moments if number != 0)]
        return self._newest

    def _packages(self) -> dict[str, str]:
        """The packages' texts; one that is what it was before is kept once, however many moments have it."""
        known = self._moments[self._newest][-1] if hasattr(self, "_moments") else {}
        found = {}
        for path in sorted(self._root.path(PACKAGES).glob("[a-z]*")):
            try:
                with open(path, "rb") as file:
                    text = file.read(MOST_PACKAGE_BYTES).decode("utf-8", "replace")
            except OSError:
                continue  # it has just gone
            found[path.name] = known[path.name] if known.get(path.name) == text else text
        return found

    def _read(self, path: str, start: int, end: int) -> bytes:
        try:
            with open(self._root.path(path), "rb") as file:
                file.seek(start)
                return file.read(end - start)
        except FileNotFoundError:
            return b""

    def _complete_length(self) -> int:
        """Where the last whole line of the calls ends."""
        try:
            end = self._root.path(CALLS).stat().st_size
        except FileNotFoundError:
            return 0
        start = max(0, end - MOST_CALL_BYTES)
        return start + self._read(CALLS, start, end).rfind(b"\n") + 1

    def _log_length(self) -> int:
        try:
            return self._root.path(LOG).stat().st_size
        except FileNotFoundError:
            return 0

    def _log(self, start: int, end: int) -> list[str]:
        text = self._read(LOG, max(start, end - MOST_LOG_BYTES), end).decode("utf-8", "replace")
        return [_short(line) for line in text.splitlines()]

    def _calls(self, start: int, end: int) -> dict:
        first = max(start, end - MOST_CALL_BYTES)
        lines = self._read(CALLS, first, end).split(b"\n")[:-1]
        if first > start:
            lines = lines[1:]  # the first is cut
        calls = [_call(json.loads(line)) for line in lines[-MOST_CALLS:]]
        return {"calls": calls, **({"dropped": True} if first > start or len(lines) > MOST_CALLS else {})}


def _short(text: str) -> str:
    return text if len(text) <= MOST_WORD else text[:MOST_WORD] + "…"


def _call(line: dict) -> dict:
    call = {"argv": [_short(word) for word in (line["tool"], *line["args"])], "time": line.get("time")}
    return {**call, "stdin": _short(line["stdin"])} if "stdin" in line else call


def _difference(name: str, before: str | None, after: str | None) -> str:
    """A unified diff; a package that came or went is all plus or all minus. Empty lines at the end say nothing."""
    lines = list(difflib.unified_diff((before or "").rstrip("\n").splitlines(), (after or "").rstrip("\n").splitlines(),
                                      name if before is not None else "/dev/null",
                                      name if after is not None else "/dev/null", lineterm=""))
    if len(lines) > MOST_DIFF_LINES:
        lines = [*lines[:MOST_DIFF_LINES], f"… {len(lines) - MOST_DIFF_LINES} more lines"]
    return "".join(line + "\n" for line in lines)
