"""A client of the API as the web interface is one: encrypts, sends, decrypts, with the machine's jose."""

from __future__ import annotations

import json
import subprocess
import urllib.error
import urllib.request
from dataclasses import dataclass
from pathlib import Path

from body import Body

_LIGHTTPD = Path(__file__).resolve().parent / "factory" / "files" / "etc" / "lighttpd"
_PROTECTED = _LIGHTTPD / "jwe-protected.json"
_KEY = _LIGHTTPD / "jwe-key.json"

TIMEOUT_S = 120.0


class ClientError(Exception):
    pass


def _jose(*arguments: str, text: bytes) -> bytes:
    try:
        result = subprocess.run(["jose", "jwe", *arguments], input=text, capture_output=True)
    except FileNotFoundError:
        raise ClientError("jose is missing: script/setup installs it (package jose)") from None
    if result.returncode != 0:
        raise ClientError(f"jose jwe {arguments[0]} failed: {result.stderr.decode(errors='replace').strip()}")
    return result.stdout


def encrypt(text: bytes) -> bytes:
    return _jose("enc", "-i", str(_PROTECTED), "-I-", "-k", str(_KEY), "-c", text=text)


def decrypt(text: bytes) -> bytes:
    return _jose("dec", "-i-", "-k", str(_KEY), text=text)


def key() -> dict:
    """The key that router and clients share, as a JWK."""
    return json.loads(_KEY.read_text())


def is_encrypted(body: bytes) -> bool:
    """Whether a body is a JWE compact text: five base64url fields, the first a JSON header."""
    return body.startswith(b"eyJ") and body.count(b".") == 4


@dataclass
class Answer(Body):
    status: int
    headers: dict[str, str]  # names in lower case
    body: bytes  # as sent
    sent: bytes = b""  # the request's body as sent

    @property
    def encrypted(self) -> bool:
        return is_encrypted(self.body)

    @staticmethod
    def decrypt(text: bytes) -> bytes:
        return decrypt(text)


def request(base: str, method: str, uri: str, body: bytes | None = None, plain: bool = False,
            timeout_s: float = TIMEOUT_S) -> Answer:
    """Asks `base` ("http://127.0.0.1:8080"). `body` is sent encrypted, but for plain=True."""
    sent = b"" if body is None else body if plain else encrypt(body)
    ask = urllib.request.Request(base + uri, data=sent if method == "POST" else None, method=method,
                                 headers={"Content-Type": "application/json"} if sent else {})
    try:
        with urllib.request.urlopen(ask, timeout=timeout_s) as response:
            return Answer(response.status, {k.lower(): v for k, v in response.headers.items()}, response.read(), sent)
    except urllib.error.HTTPError as error:
        return Answer(error.code, {k.lower(): v for k, v in error.headers.items()}, error.read(), sent)
    except (urllib.error.URLError, OSError) as error:
        raise ClientError(f"{method} {base}{uri}: {getattr(error, 'reason', error)}") from None
