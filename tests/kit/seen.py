"""What a test sees of the router: calls of its tools, lines of its log, answers; and the texts that are a fake jose's."""

from __future__ import annotations

import base64
from dataclasses import dataclass

from body import Body

from . import fastcgi

_JWE_MARK = b"jwe."


@dataclass(frozen=True)
class Call:
    """One call of a tool, or one wait of the program ("sleep 2")."""

    tool: str
    args: tuple[str, ...]
    stdin: str | None = None

    def __str__(self) -> str:
        return " ".join((self.tool, *self.args))


@dataclass(frozen=True)
class LogLine:
    """One syslog message. `text` lacks the "[FcgiApp][function]:[line] " that `function` and `line` were taken from."""

    priority: int
    text: str
    raw: str
    function: str | None = None
    line: int | None = None

    def __str__(self) -> str:
        return self.text


class Answer(Body):
    """What came back for one request."""

    def __init__(self, response: fastcgi.Response):
        self.fcgi = response
        self.raw = response.stdout
        head, _, self.body = response.stdout.partition(b"\r\n\r\n")
        self.empty = response.stdout == b""
        self.header_lines = [line.decode("latin-1") for line in head.split(b"\r\n")] if head else []
        self.headers = {name.lower(): value for name, _, value in (line.partition(": ") for line in self.header_lines)}
        self.status = int(self.headers.get("status", "200").split()[0]) if head else None
        self.encrypted = self.body.startswith(_JWE_MARK)

    @staticmethod
    def decrypt(text: bytes) -> bytes:
        return decrypt(text)

    @property
    def json(self):
        assert not self.empty, "nothing was answered"
        return super().json

    def __repr__(self) -> str:
        kind = "encrypted" if self.encrypted else "plain"
        return f"<Answer {'nothing' if self.empty else f'{kind} {self.text!r}'}>"


def encrypt(text: bytes) -> bytes:
    return _JWE_MARK + base64.urlsafe_b64encode(text).rstrip(b"=")


def decrypt(text: bytes) -> bytes:
    encoded = text[len(_JWE_MARK):].strip()
    return base64.urlsafe_b64decode(encoded + b"=" * (-len(encoded) % 4))
