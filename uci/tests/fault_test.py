#!/usr/bin/python3
"""fault_test.py UCI FAULTY_IO: breaks every writing call of a set, a commit, a revert and an import in turn.

Whatever breaks, the package file is the old one or the new one, whole and with its mode. An error that is reported
leaves the changes staged, and the next commit, with a disk that works again, brings them in.
"""

import os
import resource
import stat
import subprocess
import sys
import tempfile
from pathlib import Path

DEADLINE_S = 600
SECTIONS = 40
VALUE, NEW_VALUE = "x" * 4000, "y" * 4000  # so that a package is written in several pieces
OLD = "".join(f"\nconfig thing 's{i}'\n\toption value '{VALUE}'\n" for i in range(SECTIONS)) + "\n"
NEW = OLD.replace(VALUE, NEW_VALUE, 1)
KINDS = ("error", "short", "kill")


class Bench:
    """A package folder, a staging folder, and `uci` commands on them, sound or broken."""

    def __init__(self, uci: str, shim: str, top: str):
        self.uci, self.shim = uci, shim
        self.top = Path(top)
        self.conf, self.save, self.log = self.top / "watched/conf", self.top / "watched/save", self.top / "log"

    def reset(self) -> None:
        for folder in (self.conf, self.save):
            folder.mkdir(parents=True, exist_ok=True)
            for path in folder.iterdir():
                path.unlink()
        (self.conf / "pkg").write_text(OLD)
        os.chmod(self.conf / "pkg", 0o640)

    def run(self, *words: str, at: int | None = None, kind: str = "error",
            text: str = "") -> subprocess.CompletedProcess:
        environment = dict(os.environ)
        if at is not None:
            options = environment.get("ASAN_OPTIONS", "")
            environment |= {"LD_PRELOAD": self.shim, "FAULT_AT": str(at), "FAULT_KIND": kind,
                            "FAULT_BELOW": str(self.top / "watched"), "FAULT_LOG": str(self.log),
                            "ASAN_OPTIONS": f"{options}:verify_asan_link_order=0:detect_leaks=0"}
        self.log.write_text("")
        return subprocess.run([self.uci, "-c", str(self.conf), "-t", str(self.save), *words], env=environment,
                              input=text, capture_output=True, text=True, timeout=DEADLINE_S, check=False)

    def calls(self) -> list[str]:
        """The writing calls of the last run that could be broken."""
        return self.log.read_text().splitlines()

    def package(self) -> str:
        return (self.conf / "pkg").read_text()

    def staged(self) -> str:
        return self.run("changes", "pkg").stdout


def check(condition: bool, what: str) -> None:
    if not condition:
        raise AssertionError(what)


def check_sound_again(bench: Bench, where: str) -> None:
    """With a disk that works, what was asked for can be had."""
    check(bench.run("set", f"pkg.s0.value={NEW_VALUE}").returncode == 0, f"{where}: cannot set again")
    done = bench.run("commit", "pkg")
    check(done.returncode == 0 and bench.package() == NEW, f"{where}: cannot commit again: {done.stderr}")


def break_commit(bench: Bench, at: int, kind: str, *packages: str) -> bool:
    """One broken commit, of all packages when none is named; False when there is no call number `at`."""
    where = f"commit {packages}, {kind} at call {at}"
    bench.reset()
    check(bench.run("set", f"pkg.s0.value={NEW_VALUE}").returncode == 0, f"{where}: cannot set")
    done = bench.run("commit", *packages, at=at, kind=kind)
    if len(bench.calls()) < at:
        check(done.returncode == 0 and bench.package() == NEW, f"{where}: a sound commit failed: {done.stderr}")
        return False
    check(bench.package() in (OLD, NEW), f"{where}: the package is neither the old nor the new one")
    check(stat.S_IMODE((bench.conf / "pkg").stat().st_mode) == 0o640, f"{where}: the mode changed")
    check(done.returncode != 0, f"{where}: reported as success")
    is_staged = "pkg.s0.value=" in bench.staged()
    if kind != "kill":
        check("I/O error" in done.stderr, f"{where}: told as {done.stderr!r}")
        check(os.listdir(bench.conf) == ["pkg"], f"{where}: left {os.listdir(bench.conf)}")
        check(is_staged, f"{where}: failed, but what was staged is gone")
    check(bench.package() == NEW or is_staged, f"{where}: the staged change is lost")
    check_sound_again(bench, where)
    return True


def break_commit_of_one(bench: Bench, at: int, kind: str) -> bool:
    return break_commit(bench, at, kind, "pkg")


def break_set(bench: Bench, at: int, kind: str) -> bool:
    where = f"set, {kind} at call {at}"
    bench.reset()
    check(bench.run("set", "pkg.s1.value=kept").returncode == 0, f"{where}: cannot set")
    done = bench.run("set", f"pkg.s0.value={NEW_VALUE}", at=at, kind=kind)
    if len(bench.calls()) < at:
        return False
    check(bench.package() == OLD, f"{where}: the package changed")
    check(done.returncode != 0, f"{where}: reported as success")
    check("pkg.s1.value='kept'" in bench.staged(), f"{where}: an earlier change is lost")
    check("pkg.s0.value" not in bench.staged() or kind == "kill", f"{where}: half a change is staged")
    return True


def break_revert(bench: Bench, at: int, kind: str) -> bool:
    where = f"revert, {kind} at call {at}"
    bench.reset()
    for change in ("pkg.s0.value=dropped", "pkg.s1.value=kept"):
        check(bench.run("set", change).returncode == 0, f"{where}: cannot set")
    before = (bench.save / "pkg").read_text()
    done = bench.run("revert", "pkg.s0", at=at, kind=kind)
    staged = (bench.save / "pkg").read_text()
    if len(bench.calls()) < at:
        check(staged == "pkg.s1.value='kept'\n", f"{where}: a sound revert left {staged!r}")
        return False
    check(staged in (before, "pkg.s1.value='kept'\n"), f"{where}: left {staged!r}")
    check(done.returncode != 0, f"{where}: reported as success")
    check(kind == "kill" or "I/O error" in done.stderr, f"{where}: told as {done.stderr!r}")
    return True


def break_import(bench: Bench, at: int, kind: str, name: str) -> bool:
    """Of a package that is not there yet ("new") or is replaced ("pkg")."""
    where = f"import of {name}, {kind} at call {at}"
    bench.reset()
    file = bench.conf / name
    old = file.read_text() if file.exists() else None
    done = bench.run("import", name, at=at, kind=kind, text=NEW)
    stands = file.read_text() if file.exists() else None
    if len(bench.calls()) < at:
        check(done.returncode == 0 and stands == NEW, f"{where}: a sound import failed: {done.stderr}")
        return False
    check(stands in (old, NEW), f"{where}: neither the old nor the new package")
    check(done.returncode != 0, f"{where}: reported as success")
    if kind != "kill":
        check("I/O error" in done.stderr, f"{where}: told as {done.stderr!r}")
        check(set(os.listdir(bench.conf)) <= {"pkg", name}, f"{where}: left {os.listdir(bench.conf)}")
    return True


def break_import_of_new(bench: Bench, at: int, kind: str) -> bool:
    return break_import(bench, at, kind, "new")


def break_import_of_known(bench: Bench, at: int, kind: str) -> bool:
    return break_import(bench, at, kind, "pkg")


ACTIONS = (break_commit_of_one, break_commit, break_set, break_revert, break_import_of_new, break_import_of_known)


def check_order(bench: Bench) -> None:
    """A power cut asks in which order things reach the disk: one sync of the file, the rename, one of the folder."""
    bench.reset()
    check(bench.run("set", f"pkg.s0.value={NEW_VALUE}").returncode == 0, "order: cannot set")
    bench.run("commit", "pkg", at=0)
    order = [call for call in bench.calls() if call not in ("mkostemp", "fchmod")]
    check(order == ["write"] * 3 + ["fsync", "rename", "fsync folder", "ftruncate"], f"order: {order}")


def check_size_limit(bench: Bench) -> None:
    """A file system that takes no more, by the kernel and not by the shim."""
    bench.reset()
    check(bench.run("set", f"pkg.s0.value={NEW_VALUE}").returncode == 0, "size limit: cannot set")
    done = subprocess.run(
        [bench.uci, "-c", str(bench.conf), "-t", str(bench.save), "commit", "pkg"],
        preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (len(OLD) // 2, len(OLD) // 2)),
        restore_signals=False, capture_output=True, text=True, timeout=DEADLINE_S, check=False)
    check(done.returncode == 1 and "I/O error" in done.stderr, f"size limit: {done.returncode}, {done.stderr!r}")
    check(bench.package() == OLD and "pkg.s0.value=" in bench.staged(), "size limit: something is lost")
    check_sound_again(bench, "size limit")


def main() -> int:
    broken = 0
    with tempfile.TemporaryDirectory(prefix="uci-faults-") as top:
        bench = Bench(sys.argv[1], sys.argv[2], top)
        for kind in KINDS:
            for action in ACTIONS:
                at = 1
                while action(bench, at, kind):
                    at += 1
                check(at > 1, f"{action.__name__}: no call was broken")
                broken += at - 1
        check_order(bench)
        check_size_limit(bench)
    print(f"{broken} broken calls, none lost anything")
    return 0


if __name__ == "__main__":
    sys.exit(main())
