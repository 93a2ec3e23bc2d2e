"""What reads the protections of a program sees each that is missing."""

import subprocess
from pathlib import Path

import pytest

CHECK = Path(__file__).resolve().parents[1] / "check-hardening"
# A large frame, a buffer on the stack and a copy whose size is known: something to probe, to guard and to check.
SOURCE = """
#include <cstdio>
#include <cstring>
int main(int argc, char** argv) {
  char text[70000];
  std::strcpy(text, argv[argc - 1]);
  return std::puts(text) < 0;
}
"""
FLAGS = {"a position-independent program (PIE)": ["-fPIE", "-pie"], "read-only relocations (RELRO)": ["-Wl,-z,relro"],
         "bound before main (BIND_NOW)": ["-Wl,-z,now"], "a stack that is not executed": ["-Wl,-z,noexecstack"],
         "guarded stacks (stack protector)": ["-fstack-protector-strong"], "checked bounds (_FORTIFY_SOURCE)": ["-D_FORTIFY_SOURCE=2"],
         "probed stacks (stack-clash protection)": ["-fstack-clash-protection"]}
WITHOUT = {"a position-independent program (PIE)": ["-fno-pie", "-no-pie"], "read-only relocations (RELRO)": ["-Wl,-z,norelro"],
           "bound before main (BIND_NOW)": ["-Wl,-z,lazy"], "a stack that is not executed": ["-Wl,-z,execstack"],
           "guarded stacks (stack protector)": ["-fno-stack-protector"], "checked bounds (_FORTIFY_SOURCE)": ["-U_FORTIFY_SOURCE"],
           "probed stacks (stack-clash protection)": ["-fno-stack-clash-protection"]}


def complaints(tmp_path, missing):
    flags = [flag for name in FLAGS for flag in (WITHOUT if name == missing else FLAGS)[name]]
    program = tmp_path / "program"
    subprocess.run(["g++", "-x", "c++", "-O2", "-U_FORTIFY_SOURCE", *flags, "-o", program, "-"], input=SOURCE, text=True, check=True)
    done = subprocess.run([CHECK, program, "--optimised"], capture_output=True, text=True)
    assert done.returncode == (1 if done.stdout else 0)
    return done.stdout.splitlines()


def test_a_hardened_program_lacks_nothing(tmp_path):
    assert complaints(tmp_path, None) == []


@pytest.mark.parametrize("protection", FLAGS)
def test_a_protection_that_is_missing_is_named(tmp_path, protection):
    assert complaints(tmp_path, protection) == [f"{tmp_path / 'program'} lacks {protection}"]
