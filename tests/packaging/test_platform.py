"""script/platform: what it finds in the sources is what the route tests see run, and a table that is not of now fails."""

import re
import shutil
import subprocess

import pytest
from installed import SOURCES

PAGE = SOURCES / "docs" / "platform.md"


def rows():
    found = {}
    for route, *cells in re.findall(r"^\| ((?:GET|POST) /\S+) \| (.*) \| (.*) \| (.*) \|$", PAGE.read_text(), re.M):
        found[route] = [set(re.findall(r"`([^`]+)`", cell)) for cell in cells]
    return found


def test_each_route_has_a_row():
    assert len(rows()) == 63


@pytest.mark.parametrize("route, packages, files, tools", [
    ("GET /lan", {"network", "dhcp"}, {"/tmp/resolv.conf.auto"}, {"ifconfig"}),
    ("POST /lan", {"network", "dhcp"}, set(), {"/etc/init.d/dnsmasq", "/etc/init.d/globalip", "ubus", "msg_tool"}),
    ("POST /accounts", {"rpcd"}, {"/etc/apfpasswd"}, {"passwd", "/usr/sbin/refreshPasswd.sh"}),
    ("GET /wireless/sitesurvey", set(), set(), {"iw"}),
    ("POST /system/firmware", set(), {"/tmp/firmware.bin"}, {"/usr/sbin/orvanehota", "/usr/sbin/tesmirhota"}),
    ("POST /security/passthrough", {"security"}, set(), {"/etc/init.d/firewall"}),
])
def test_a_row_names_what_the_route_tests_see(route, packages, files, tools):
    assert all(expected <= told for expected, told in zip((packages, files, tools), rows()[route]))


def test_a_route_that_runs_no_tool_names_none():
    assert rows()["GET /wireless/mac-filter"] == [{"macfilter"}, set(), set()]


def test_a_new_tool_in_the_sources_fails_the_check(tmp_path):
    for part in ("src", "include", "script", "docs", "simulator"):
        shutil.copytree(SOURCES / part, tmp_path / part, ignore=shutil.ignore_patterns("__pycache__"))
    check = [tmp_path / "script" / "platform", "--check"]
    assert subprocess.run(check, capture_output=True).returncode == 0
    source = tmp_path / "src" / "system" / "accounts.cpp"
    source.write_text(source.read_text().replace("refreshPasswd.sh", "anotherTool.sh"))
    done = subprocess.run(check, capture_output=True, text=True)
    assert done.returncode == 1 and "script/platform --update" in done.stderr
