"""An answer's body as whoever has the key reads it."""

from __future__ import annotations

import json


class Body:
    """What answers have in common."""

    body: bytes  # as sent
    encrypted: bool  # whether it is

    @staticmethod
    def decrypt(text: bytes) -> bytes:
        raise NotImplementedError

    @property
    def data(self) -> bytes:
        """The body, decrypted when it was encrypted."""
        return self.decrypt(self.body) if self.encrypted else self.body

    @property
    def text(self) -> str:
        return self.data.decode("utf-8", "surrogateescape")

    @property
    def json(self):
        """What the text says; an empty one says nothing, which is an error."""
        return json.loads(self.text)
