"""The router's /dev/log, owned by its test."""

from __future__ import annotations

import os
import re
import select
import socket
import threading
from pathlib import Path

from .seen import LogLine


class _EndedText(str):
    """What the C library has ended with a line end unless the program had: equal to both."""

    def __eq__(self, other) -> bool:
        return isinstance(other, str) and self.removesuffix("\n") == other.removesuffix("\n")

    def __ne__(self, other) -> bool:
        return not self == other

    def __hash__(self) -> int:
        return hash(self.removesuffix("\n"))


def is_of_musl() -> bool:
    """Whether musl is the C library of the program under test."""
    program = os.environ.get("ROUTER_API_BIN")
    return bool(program) and b"/ld-musl-" in Path(program).read_bytes()[:4096]


class Log:
    """Owns /dev/log. A socket holds ten messages at most, so a thread takes them as they come."""

    _LINE = re.compile(r"<(\d+)>(?:\w{3} [ \d]\d \d\d:\d\d:\d\d )?([^:\[]*)(?:\[\d+\])?: ?(.*)", re.S)
    _OURS = re.compile(r"\[FcgiApp\]\[([^\]]*)\]:\[(\d+)\] (.*)", re.S)

    def __init__(self, path: Path):
        self._socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self._socket.bind(str(path))
        os.chmod(path, 0o666)
        self._socket.setblocking(False)
        self._text = _EndedText if is_of_musl() else str  # musl ends messages, glibc does not
        self._lock = threading.Lock()
        self._lines: list[LogLine] = []
        self.ended = threading.Event()
        self._closing, self._wake = socket.socketpair()
        self._thread = threading.Thread(target=self._run, daemon=True)
        self._thread.start()

    def _run(self) -> None:
        while True:
            ready, _, _ = select.select([self._socket, self._closing], [], [])
            if self._closing in ready:
                return
            self._drain()

    def _drain(self) -> None:
        with self._lock:
            while True:
                try:
                    message = self._socket.recv(1 << 20)
                except BlockingIOError:
                    return
                self._lines.append(self._parse(message.decode("utf-8", "surrogateescape").rstrip("\0")))

    def _parse(self, raw: str) -> LogLine:
        match = self._LINE.fullmatch(raw)
        if match is None:
            return LogLine(-1, raw, raw)
        priority, text = int(match[1]) & 7, match[3]
        ours = self._OURS.fullmatch(text)
        if ours:
            return LogLine(priority, self._text(ours[3]), raw, ours[1], int(ours[2]))
        return LogLine(priority, self._text(text), raw)

    def lines(self) -> list[LogLine]:
        self._drain()
        with self._lock:
            return list(self._lines)

    def close(self) -> None:
        self._wake.send(b"x")
        self._thread.join()
        for s in (self._socket, self._closing, self._wake):
            s.close()
