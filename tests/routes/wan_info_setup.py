"""What the tests of GET /api/v1/router/wan-info share: what the platform says of the line, and the answer."""

from wan_setup import TUNNEL_TOOL, URI, set_wan  # noqa: F401 (fixtures)

LINK = ["lanMacAddress", "wanMacAddress", "wanLinkStatus", "wanAutoSelectStatus", "wanMethod", "wanHb46ppMethod",
        "wanMethodStr"]
ADDRESSES = ["wanIpv4Address", "wanIpv4SubMask", "wanIpv4Gateway", "wanIpv4Dns1", "wanIpv4Dns2", "wanIpv6GlobalAddress",
             "wanIpv6LocalAddress", "wanIpv6CeAddress", "wanIpv6Gateway", "wanIpv6Dns1", "wanIpv6Dns2",
             "wanIpv4AvailablePorts"]
HOST = ["dhcpcHostName", "captivePortalStatus"]
SWITCHES = ["natAccelerationEnable", "uPnPIGD", "previousInternetLineAutoResult"]
LINE = ("addr:203.0.113.10", "Mask:255.255.255.0", "gatewayV4:203.0.113.1", "ipv6Global:2001:db8::10/64",
        "ipv6Link:fe80::2/64", "gatewayV6:fe80::1", "nameserver 203.0.113.53", "nameserver 2001:db8::53",
        "nameserver 203.0.113.54", "nameserver 2001:db8::54")
TUNNEL = ("MAP-E/DS-Lite/IPIP6 mode: MAP-E", "VNE Service: JPNE v6Plus", "CE: 2001:db8:ce::1", "IPv4: 198.51.100.7",
          "WAN global address: 2001:db8::7", "AFTR: 2001:db8::a", "Port: 5136-5151")


def info(router):
    """The object wanConfig of an answer."""
    answer = router.get(URI)
    assert answer.encrypted
    assert (answer.json["result"], answer.json["version"]) == (0, 1)
    return answer.json["wanConfig"]


def tunnel(router, *lines, mode="MAP-E"):
    """A tunnel mode, and what the tunnel tool prints."""
    set_wan(router, mode=mode)
    router.tool(TUNNEL_TOOL, out="".join(f"{line}\n" for line in lines))
