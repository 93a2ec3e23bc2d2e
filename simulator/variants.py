"""What brands and working modes differ in from the factory's packages: options by address, written over them."""

# The text of /tmp/deviceid.
DEVICE_IDS = {"orvane": "0221", "tesmir": "0121"}

# A list makes a list option, None takes an option away.
Options = dict[str, "str | list[str] | None"]

BRANDS: dict[str, Options] = {
    "orvane": {},
    "tesmir": {
        "system.@system[0].hostname": "VR-EH700QTS",
        "network.lan.ipaddr": "192.168.2.1",
        "network.backlan.ipaddr1": "192.168.2.1",
        "network.backlan.start": "192.168.2.2",
        "dhcp.lan.start": "192.168.2.2",
    },
}

_BRIDGED: Options = {
    "dhcp.lan.ignore": "1",
    "network.lan.proto": "dhcp",
    "network.lan.ipaddr": None,
    "network.lan.netmask": None,
    "network.lan.force_link": None,
    "network.lan.ip6assign": None,
}

MODES: dict[str, Options] = {
    "router": {},
    # An access point: the WAN port is one of the LAN bridge's.
    "ap": {
        **_BRIDGED,
        "system.@system[0].op_mode": "ap",
        "system.@system[0].button_mode": "ap_mode",
        "network.wan.proto": "none",
        "network.wan.mode": "AP",
        "network.@device[0].ports": ["eth0", "eth1", "eth2"],
    },
    # A repeater that joined an upstream network on 5 GHz.
    "re": {
        **_BRIDGED,
        "system.@system[0].op_mode": "re",
        "system.@system[0].button_mode": "wb_mode",
        "repeater.repeater_band.status": "success",
        "wireless.ath02.disabled": "0",
        "wireless.ath12.disabled": "0",
        "wireless.ath22.disabled": "0",
        "wireless.ath13": "wifi-iface",
        "wireless.ath13.device": "wifi1",
        "wireless.ath13.ifname": "ath13",
        "wireless.ath13.network": "lan",
        "wireless.ath13.mode": "sta",
        "wireless.ath13.ssid": "Upstream-5G",
        "wireless.ath13.key": "upstream-key-1234",
        "wireless.ath13.encryption": "psk2+ccmp",
        "wireless.ath13.sae": "1",
        "wireless.ath13.wds": "1",
        "wireless.ath13.disabled": "0",
    },
    # The root of a mesh.
    "controller": {
        "button_mesh.easymesh.enable": "1",
        "button_mesh.easymesh.role": "controller",
        "repacd.repacd.Enable": "1",
        "repacd.repacd.Role": "CAP",
    },
    # A satellite that has joined a mesh.
    "agent": {
        **_BRIDGED,
        "system.@system[0].op_mode": "re",
        "system.@system[0].button_mode": "wb_mode",
        "button_mesh.easymesh.enable": "1",
        "button_mesh.easymesh.role": "agent",
        "repacd.repacd.Enable": "1",
        "repacd.MAPConfig.OnboardingDone": "1",
    },
}
