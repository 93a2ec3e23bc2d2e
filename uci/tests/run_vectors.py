#!/usr/bin/python3
"""run_vectors.py UCI [-k TEXT]: runs the recorded command lines against a `uci` command.

Each vector gets a folder of its own with conf/, save/ and extra/; every command runs as
`uci -c conf -t save ARGV...` unless the vector brings its own options. What differs on purpose from the recording is
in deviations.json, with what we do instead: those vectors are checked against that. own_vectors.json holds, in the same
form, what no recording tells.
"""

import concurrent.futures
import json
import os
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
DEADLINE_S = 600


def encode(text: str) -> bytes:
    return text.encode("utf-8", "surrogateescape")


def decode(data: bytes) -> str:
    return data.decode("utf-8", "surrogateescape")


def content(path: Path) -> str | None:
    return decode(path.read_bytes()) if path.exists() else None


class Folder:
    """The scratch folder of one vector, and its placeholders."""

    def __init__(self, top: Path, vector: dict):
        self.places = {"@CONF@": top / "conf", "@SAVE@": top / "save", "@EXTRA@": top / "extra"}
        for place, key in zip(self.places.values(), ("configs", "deltas", "extra")):
            place.mkdir()
            for name, text in (vector.get(key) or {}).items():
                path = place / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_bytes(encode(text))

    def fill_in(self, text: str) -> str:
        for placeholder, place in self.places.items():
            text = text.replace(placeholder, str(place))
        return text

    def take_out(self, text: str) -> str:
        for placeholder, place in self.places.items():
            text = text.replace(str(place), placeholder)
        return text


def run_command(binary: str, folder: Folder, base: list[str], command) -> dict:
    argv, stdin = (command["argv"], command.get("stdin", "")) if isinstance(command, dict) else (command, "")
    words = [encode(folder.fill_in(word)) for word in ["uci", *base, *argv]]
    environment = {"PATH": os.environ.get("PATH", ""), "LC_ALL": "C"}
    environment |= {key: value for key, value in os.environ.items() if key.endswith("SAN_OPTIONS")}
    done = subprocess.run(words, executable=binary, input=encode(stdin), capture_output=True, env=environment,
                          cwd=folder.places["@CONF@"].parent, timeout=DEADLINE_S, check=False)
    return {"rc": done.returncode, "stdout": folder.take_out(decode(done.stdout)),
            "stderr": folder.take_out(decode(done.stderr))}


def equal(key: str, wanted, got) -> bool:
    if key == "stderr" and wanted == "@USAGE@":
        return got.startswith("Usage: uci ")
    return wanted == got


def differences(binary: str, vector: dict) -> list[str]:
    found = []
    with tempfile.TemporaryDirectory(prefix="uci-vector-") as top:
        folder = Folder(Path(top), vector)
        base = vector.get("base", ["-c", "@CONF@", "-t", "@SAVE@"])
        assert len(vector["expect"]) == len(vector["commands"]), vector["name"]
        for command, wanted in zip(vector["commands"], vector["expect"]):
            got = run_command(binary, folder, base, command)
            found += [f"{command}: {key}: wanted {wanted[key]!r}, got {got[key]!r}"
                      for key in ("rc", "stdout", "stderr") if key in wanted and not equal(key, wanted[key], got[key])]
        for key, place in (("files_after", "@CONF@"), ("deltas_after", "@SAVE@")):
            for name, wanted in (vector.get(key) or {}).items():
                got = content(folder.places[place] / name)
                if got != wanted:
                    found.append(f"{place}/{name}: wanted {wanted!r}, got {got!r}")
        if "conf_listing" in vector:
            listing = sorted(os.listdir(folder.places["@CONF@"]))
            if listing != vector["conf_listing"]:
                found.append(f"names: wanted {vector['conf_listing']!r}, got {listing!r}")
    return found


def main() -> int:
    if len(sys.argv) < 2:
        print(__doc__.strip())
        return 2
    binary = os.path.abspath(sys.argv[1])
    only = sys.argv[3] if sys.argv[2:3] == ["-k"] else ""
    vectors = json.loads((HERE / "vectors.json").read_text(encoding="utf-8"))
    deviations = json.loads((HERE / "deviations.json").read_text(encoding="utf-8"))
    unknown = deviations.keys() - {vector["name"] for vector in vectors}
    assert not unknown, f"no such vector: {unknown}"
    not_quirks = [vector["name"] for vector in vectors if vector["name"] in deviations and not vector.get("quirk")]
    assert not not_quirks, f"behaviour that others rely on: {not_quirks}"
    documented = (HERE.parent / "DEVIATIONS.md").read_text(encoding="utf-8")
    undocumented = [name for name in deviations if f"`{name}`" not in documented]
    assert not undocumented, f"not in DEVIATIONS.md: {undocumented}"
    for vector in vectors:
        vector |= deviations.get(vector["name"], {}).get("instead", {})
    vectors += json.loads((HERE / "own_vectors.json").read_text(encoding="utf-8"))
    chosen = [vector for vector in vectors if only in vector["name"]]
    with concurrent.futures.ThreadPoolExecutor(max_workers=4) as pool:
        results = list(pool.map(lambda vector: differences(binary, vector), chosen))
    for vector, found in zip(chosen, results):
        if found:
            print("\n  ".join([f"FAIL {vector['name']}", *found]))
    failed = sum(1 for found in results if found)
    print(f"{len(chosen) - failed} passed ({sum(v['name'] in deviations for v in chosen)} of them deviate on purpose), "
          f"{failed} failed")
    return 1 if failed or not chosen else 0


if __name__ == "__main__":
    sys.exit(main())
