#!/usr/bin/python3
"""make_seeds.py package|delta VECTORS FOLDER: writes the texts of the recorded vectors as a seed corpus.

The first byte of a package seed chooses what the fuzz target does with the text; each text is written for all of them.
"""

import hashlib
import json
import sys
from pathlib import Path

KEYS = {"package": ("configs", "files_after"), "delta": ("deltas", "deltas_after")}
CHOICES = {"package": [bytes([choice]) for choice in range(8)], "delta": [b""]}


def texts(vectors: list[dict], keys: tuple[str, ...]) -> set[bytes]:
    found = {text for vector in vectors for key in keys for text in (vector.get(key) or {}).values() if text}
    return {text.encode("utf-8", "surrogateescape") for text in found}


def main() -> int:
    kind, vectors, folder = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])
    folder.mkdir(parents=True, exist_ok=True)
    for text in texts(json.loads(vectors.read_text(encoding="utf-8")), KEYS[kind]):
        for choice in CHOICES[kind]:
            seed = choice + text
            (folder / hashlib.sha1(seed).hexdigest()).write_bytes(seed)
    return 0


if __name__ == "__main__":
    sys.exit(main())
