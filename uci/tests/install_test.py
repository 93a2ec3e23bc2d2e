#!/usr/bin/python3
"""install_test.py PROJECT PROGRAM: the library by itself, and the project on a machine that has a libuci installed.

Builds and installs uci/ alone, uses what was installed from a program in C, and configures the whole project with that
library for the system's: the program links it, and the command `uci` and its library are built all the same. PROGRAM
is the program of this build, linked to the shared library.
"""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

DEADLINE_S = 1500
USER = """#include <stdio.h>
#include <uci.h>
int main(void) {
  struct uci_context* context = uci_alloc_context();
  const int code = uci_load(context, "/none", NULL);
  uci_free_context(context);
  return code == UCI_ERR_NOTFOUND ? 0 : 1;
}
"""
USER_CMAKE = """cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES C)
find_package(uci 1.0 REQUIRED)
add_executable(user user.c)
target_link_libraries(user PRIVATE uci::uci)
"""


def run(*command: str | Path, **settings) -> str:
    """What the command prints; what it said goes to the screen when it fails."""
    environment = dict(os.environ) | settings
    environment.pop("LD_PRELOAD", None)
    done = subprocess.run([str(word) for word in command], env=environment, text=True, timeout=DEADLINE_S, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode != 0:
        raise SystemExit(f"{command}: {done.returncode}\n{done.stdout}")
    return done.stdout


def check(condition: bool, what: str) -> None:
    if not condition:
        raise SystemExit(what)


def configure(source: Path, build: Path, *options: str) -> str:
    return run("cmake", "-G", "Ninja", "-S", source, "-B", build, "-DCMAKE_BUILD_TYPE=Debug",
               f"-DCMAKE_CXX_COMPILER_LAUNCHER={os.environ.get('CXX_LAUNCHER', '')}", *options)


def check_installed(prefix: Path) -> None:
    names = {str(path.relative_to(prefix)) for path in prefix.rglob("*") if not path.is_dir()}
    wanted = {"bin/uci", "include/uci.h", "share/man/man1/uci.1", "lib/libuci.so", "lib/pkgconfig/uci.pc",
              "lib/cmake/uci/uci-config.cmake", "lib/cmake/uci/uci-config-version.cmake"}
    check(wanted <= names, f"not installed: {wanted - names}")
    check(not any(name.endswith(".a") for name in names), f"installed, too: {names - wanted}")
    check("Usage: " in run(prefix / "bin/uci", "help"), "the installed command does not run")


def check_tests(library: Path, build: Path) -> None:
    """The folder brings its own tests."""
    configure(library, build, "-DBUILD_TESTING=ON", "-DCMAKE_CXX_FLAGS=-O0 -g0")
    run("ninja", "-C", build, "uci_probe_c")
    check("tests passed" in run("ctest", "--test-dir", build, "-R", "uci_probe_c$"), "the probe did not run")
    known = run("ctest", "--test-dir", build, "-N")
    for name in ("uci_vectors", "uci_units", "uci_memory", "uci_faults", "uci_parallel_writers"):
        check(name in known, f"no test {name}")


def check_users(prefix: Path, top: Path) -> None:
    """A program in C finds the library through pkg-config and through CMake."""
    folder = top / "user"
    folder.mkdir()
    (folder / "user.c").write_text(USER)
    (folder / "CMakeLists.txt").write_text(USER_CMAKE)
    flags = run("pkg-config", "--cflags", "--libs", "uci", PKG_CONFIG_PATH=str(prefix / "lib/pkgconfig")).split()
    run("cc", folder / "user.c", "-o", folder / "user", *flags)
    run(folder / "user", LD_LIBRARY_PATH=str(prefix / "lib"))
    configure(folder, folder / "build", f"-DCMAKE_PREFIX_PATH={prefix}")
    run("ninja", "-C", folder / "build")
    run(folder / "build/user")


def check_project(project: Path, prefix: Path, build: Path) -> None:
    """The two commands of the README, script/run and script/test, find all that they build."""
    said = configure(project, build, f"-DCMAKE_PREFIX_PATH={prefix}")
    library = f"{prefix}/lib/libuci.so"
    check(f"UCI library: {library}" in said, f"the system's library was not taken:\n{said}")
    run("ninja", "-C", build, "-t", "commands", "router-api", "stand-in", "uci", "uci_units")  # an unknown one fails

    def link_of(target: str) -> str:
        return run("ninja", "-C", build, "-t", "commands", target).splitlines()[-1]

    check(library in link_of("router-api") and "uci_static" not in link_of("router-api"), link_of("router-api"))
    check(library not in link_of("uci") and "uci_static" in link_of("uci"), link_of("uci"))
    check("UCI_BIN=" in (build / "tests/environment").read_text(), "the tests do not know of the command")
    run("ninja", "-C", build, "CMakeFiles/router_api_core.dir/src/platform/uci_access.cpp.o",
        "uci/CMakeFiles/uci_objects.dir/src/tuple.cpp.o")


def check_choice(project: Path, prefix: Path, build: Path) -> None:
    """The router's build has neither simulator nor tests, and builds no library."""
    lean = ("-DBUILD_TESTING=OFF", "-DROUTER_API_SIMULATOR=OFF", f"-DCMAKE_PREFIX_PATH={prefix}")
    configure(project, build, "-DROUTER_API_UCI=system", *lean)
    check("uci_static" not in run("ninja", "-C", build, "-t", "targets", "all"), "the router builds the library")
    configure(project, build, "-DROUTER_API_UCI=bundled", *lean)
    check("uci_static" in run("ninja", "-C", build, "-t", "commands", "router-api"), "not the bundled library")


def check_program(program: Path) -> None:
    """Every function that the program needs of the library is one that a shared library gives."""
    said = run("ldd", "-r", program)
    check("libuci.so =>" in said and "undefined symbol" not in said, said)


def main() -> int:
    project, program = (Path(word).resolve() for word in sys.argv[1:3])
    with tempfile.TemporaryDirectory(prefix="uci-install-") as folder:
        top = Path(folder)
        configure(project / "uci", top / "library", f"-DCMAKE_INSTALL_PREFIX={top}/prefix", "-DBUILD_TESTING=OFF",
                  "-DCMAKE_INSTALL_LIBDIR=lib", "-DCMAKE_CXX_FLAGS=-O0 -g0")
        run("ninja", "-C", top / "library", "install")
        check_installed(top / "prefix")
        check_tests(project / "uci", top / "library")
        check_users(top / "prefix", top)
        check_project(project, top / "prefix", top / "project")
        check_choice(project, top / "prefix", top / "lean")
    check_program(program)
    return 0


if __name__ == "__main__":
    sys.exit(main())
