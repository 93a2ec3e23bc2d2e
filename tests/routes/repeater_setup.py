"""What the repeater's route tests share: a unit's packages, requests, and the commands as the platform knows them."""

import pytest

CONNECT = "/api/v1/repeater/connect"
RESULT = "/api/v1/repeater/wifiresult"
SURVEY = "/api/v1/wireless/sitesurvey"
OK = '{"result": 0, "version": 1, \t"waitTime": 80}'
UNUSABLE = '{"result": 1, "version": 1,    "waitTime": 20}'
APS = ("ath02", "ath12", "ath22")
STATIONS = ("ath03", "ath13", "ath23")
BRIDGE_MAC = "08:90:FE:12:34:50"
MLD_MAC = "10:90:FE:12:34:50"
WIRELESS = """
config wifi-device 'wifi0'
config wifi-device 'wifi1'
	option dfs_puncture_en '0'
config wifi-device 'wifi2'
config wifi-iface 'ath1'
config wifi-iface 'ath02'
	option ssid_change '0'
config wifi-iface 'ath12'
	option ssid_change '0'
config wifi-iface 'ath22'
	option ssid_change '0'
config wifi-iface 'ath05'
config wifi-iface 'ath15'
config wifi-iface 'ath25'
config wifi-mld 'mld4'
config wifi-mld 'mld5'
config wifi-mld 'mld6'
"""
PACKAGES = {
    "wireless": WIRELESS,
    "repeater": "config repeater 'compatiMode'\n\toption value '0'\n"
                "config repeater 'repeater_band'\n\toption mlo '0'\n\toption repeater_select_band '5GHz'\n\toption status 'success'\n",
    "bandsteering": "config repeater 'repeater_band'\n\toption repeater_select_band '9'\n",
    "network": "config interface 'lan'\n\toption ipaddr '192.168.1.1'\n\toption netmask '255.255.255.0'\n\toption ip6assign '60'\n"
               "\toption proto 'static'\n",
    "dhcp": "config dhcp 'lan'\n\toption ignore '1'\n",
    "system": "config system\n\toption op_mode 're'\n",
    "button_mesh": "config easymesh 'easymesh'\n\toption enable '0'\n\toption mode '0'\n\toption compatiWiFi6Mode '1'\n",
    "repacd": "config MAPConfig 'MAPConfig'\n\toption OnboardingDone '1'\n",
}


def ifconfig(address="192.168.10.1", mac=BRIDGE_MAC):
    return (f"br-lan    Link encap:Ethernet  HWaddr {mac}  \n"
            f"          inet addr:{address}  Bcast:192.168.10.255  Mask:255.255.255.0\n"
            "          inet6 addr: fe80::a90:feff:fe12:3450/64 Scope:Link\n"
            "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n")


def prepare(router, real_uci=False):
    """A unit with packages of its own. Its `uci` only keeps its calls, unless the test wants to see what is stored."""
    for package, text in PACKAGES.items():
        router.config(package, text)
    router.tool("ifconfig", "br-lan", out=ifconfig())
    if not real_uci:
        router.tool("uci")
    return router


@pytest.fixture
def unit(bare_router):
    return prepare(bare_router)


@pytest.fixture
def storing_unit(bare_router):
    return prepare(bare_router, real_uci=True)


def request(**changes):
    return {"ssid": "Upstream", "bssid": "00:11:22:33:44:55", "frequency": 2, "encryptType": 1, "encryptKey": "secret-key",
            "multiRuEnable": 0, "multiLinkOperationEnable": 0, "tryConnectOrSettingRepeater": 0} | changes


def follow(router, flags):
    for ap, flag in zip(APS, flags):
        router.set(f"wireless.{ap}.ssid_change", flag)


def commands(router):
    """The commands, without the waits of the uplink monitor."""
    return [command for command in router.commands() if not command.startswith("wait ")]


def finished_commands(router, tool="/sbin/wifi", *args):
    """The commands once the background job that ends with this one has ended; the waits of a monitor left out."""
    router.wait_for_call(tool, *args)
    return commands(router)


# Per variant: the station that is deleted first, the stations, the stale links in their order, the keys in their order.
MLO = {
    1: (["ath23"], ["ath03", "ath13"], ["ath03", "ath13"], ["ath03.key", "ath13.key"]),
    2: (["ath03"], ["ath13", "ath23"], ["ath23", "ath13"], ["ath13.key", "ath23.key"]),
    3: ([], ["ath03", "ath13", "ath23"], ["ath03", "ath23", "ath13"],
        ["ath13.key", "ath13.sae_password", "ath23.key", "ath23.sae_password", "ath03.sae_password", "ath03.key"]),
}
MULTI_RU_OFF = "uci set wireless.wifi1.dfs_puncture_en=0"
