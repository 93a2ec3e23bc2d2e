"""The OpenWrt package as far as a workstation can check it: its Makefile against stand-ins of the build's macros, its
scripts against shellcheck, its manual against mandoc."""

import re
import subprocess
from pathlib import Path

import pytest
from installed import FILES, SOURCES

PACKAGE = SOURCES / "packaging" / "openwrt"
STUB = Path(__file__).parent / "openwrt-stub"
VERSION = re.search(r"^project\(router-api VERSION (\S+)", (SOURCES / "CMakeLists.txt").read_text(), re.M)[1]
PACKAGES = re.findall(r"^\$\(eval \$\(call BuildPackage,(\S+)\)\)$", (PACKAGE / "Makefile").read_text(), re.M)


def make(*arguments):
    done = subprocess.run(["make", "--no-print-directory", "--warn-undefined-variables", "-C", PACKAGE, f"TOPDIR={STUB}",
                           *arguments], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    return done.stdout


def fields(package):
    return dict(line.split(": ", 1) for line in make("-s", f"describe-{package}").splitlines())


def test_the_build_prepares_configures_compiles_and_installs_each_package(tmp_path):
    commands = make("-n", f"BUILD_DIR={tmp_path}").splitlines()
    steps = [word for command in commands for word in ("cmake -S", "cmake --build", "cmake --install") if word in command]
    assert steps == ["cmake -S", "cmake --build", "cmake --install"]
    assert not list(tmp_path.iterdir())

    places = re.findall(r"^install -m(\d+) (\S+) \S+?/packages/(\S+)$", "\n".join(commands), re.M)
    assert [(mode, place) for mode, _, place in places] == [
        ("0755", "router-api/usr/sbin/"),
        ("0644", "router-api/lib/upgrade/keep.d/router-api"),
        ("0644", "router-api-lighttpd/etc/lighttpd/conf.d/50-router-api.conf"),
        ("0755", "router-api-service/etc/init.d/router-api"),
        ("0644", "router-api-lighttpd-socket/etc/lighttpd/conf.d/50-router-api.conf"),
        ("0644", "router-api-nginx/etc/nginx/conf.d/router-api.locations"),
    ]
    for _, source, _ in places[1:]:
        assert (PACKAGE / source).is_file(), source


def test_what_the_source_needs_is_taken_along(tmp_path):
    make("prepare", f"BUILD_DIR={tmp_path}")
    root = tmp_path / f"router-api-{VERSION}"
    configure = subprocess.run(["cmake", "-S", root, "-B", tmp_path / "build", "-DBUILD_TESTING=OFF", "-DROUTER_API_SIMULATOR=OFF",
                                "-DROUTER_API_UCI=bundled"], capture_output=True, text=True)
    assert configure.returncode == 0, configure.stderr


@pytest.mark.parametrize("package", PACKAGES)
def test_a_package_tells_what_it_is(package):
    told = fields(package)
    assert (told["VERSION"], told["LICENSE"]) == (f"{VERSION}-1", "MIT")
    assert told["SECTION"] == "net" and told["CATEGORY"] == "Network"
    assert told["TITLE"] and len(told["TITLE"]) <= 60
    assert all(word.startswith("+") for word in told["DEPENDS"].split())
    ours = {word[1:] for word in told["DEPENDS"].split() if word.startswith("+router-api")}
    assert ours <= set(PACKAGES)


def test_the_program_depends_on_its_libraries_and_on_jose():
    assert set(fields("router-api")["DEPENDS"].split()) == {"+libuci", "+libjson-c", "+libfcgi", "+libstdcpp", "+jose"}


def test_an_upgrade_keeps_what_only_the_router_knows():
    assert (FILES / "router-api.keep").read_text().split() == [
        "/etc/apfpasswd", "/etc/crontabs/root", "/etc/lighttpd/jwe-key.json", "/etc/lighttpd/jwe-protected.json"]


def test_the_two_lighttpd_snippets_differ_in_who_starts_the_program():
    def rules(name):
        lines = [line.strip() for line in (FILES / name).read_text().splitlines()]
        return [line for line in lines if line and not line.startswith("#")]

    starting = [line for line in rules("lighttpd.conf") if line not in rules("lighttpd-socket.conf")]
    assert [line.split('"')[1] for line in starting] == ["bin-path", "max-procs", "bin-environment", "listen-backlog"]
    assert [line for line in rules("lighttpd.conf") if line not in starting] == rules("lighttpd-socket.conf")


def test_shellcheck_has_nothing_to_say_of_the_init_script():
    done = subprocess.run(["shellcheck", FILES / "router-api.init"], capture_output=True, text=True)
    assert (done.returncode, done.stdout) == (0, "")


@pytest.mark.parametrize("page", sorted((SOURCES / "docs" / "man").iterdir()), ids=lambda page: page.name)
def test_mandoc_has_nothing_to_say_of_a_manual_page(page):
    done = subprocess.run(["mandoc", "-T", "lint", "-W", "style", page], capture_output=True, text=True)
    said = [line for line in done.stdout.splitlines() if "referenced manual not found" not in line]
    assert said == []


def test_the_manual_tells_the_options_of_the_help():
    text = (SOURCES / "docs" / "man" / "router-api.8").read_text()
    for option in ("help", "version"):
        assert f".It Fl \\-{option}" in text
