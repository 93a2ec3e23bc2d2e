"""The simulated router's root: what a program finds in it."""

import re
from pathlib import Path

import pytest
import sandbox
from waits import wait_until

PACKAGES = """
    bandsteering button_mesh dhcp ecm firewall fsecure hota lbd macfilter mia network portmapping repacd repeater rpcd
    security system upnpd wireless wireless_for_easymesh
""".split()
NODES = """
    /sys/class/net/br-lan/address /sys/class/net/eth0/carrier /sys/class/net/wifi0/address /sys/class/net/wifi1/address
    /sys/class/net/wifi2/address /sys/devices/platform/soc@0/soc@0:leds/leds/led_2g/brightness
    /sys/kernel/debug/ecm/ecm_db/defunct_all /sys/kernel/debug/ecm/front_end_ipv4_stop /sys/kernel/debug/gpio
""".split()


@pytest.mark.parametrize("brand, device_id", [("orvane", "0221"), ("tesmir", "0121")])
def test_the_root_is_a_routers(live, brand, device_id):
    router = live(brand=brand)
    assert router.root.read("/tmp/deviceid") == device_id + "\n"
    for path in [*NODES, *(f"/etc/config/{package}" for package in PACKAGES)]:
        assert router.root.exists(path), path


def test_the_bridge_is_one_that_the_kernel_knows(live):
    if not sandbox.has_own_network():
        pytest.skip("this machine gives a sandbox no network of its own")
    router = live()
    devices = Path(f"/proc/{router.program_pid()}/net/dev").read_text()
    assert sorted(re.findall(r"^ *([\w-]+):", devices, re.M)) == ["br-lan", "lo"]  # nothing of the machine's


def test_what_the_program_logs_lands_in_the_routers_log(live):
    router = live()
    router.post("/api/v1/lan", "no json")
    line = re.compile(r"\[FcgiApp\]\[handle_set_lan_network\]:\[\d+\] can't parse data to json format\.\n")
    wait_until(lambda: line.search(router.root.read("/tmp/log/messages.log") or ""))


def test_the_platforms_tools_answer_and_keep_their_calls(live):
    router = live()
    assert b"inet addr:192.168.0.1" in router.run("ifconfig", "br-lan")
    assert router.calls()[-1] == "ifconfig br-lan"
    assert router.run("uci", "get", "network.lan.ipaddr") == b"192.168.0.1\n"
