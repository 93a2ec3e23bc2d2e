"""What the tests of /api/v1/lan share: the live bridge, a settings request, the reload chain."""

URI = "/api/v1/lan"
OK = '{"result": 0, "version": 1, "waitTime": 60}'
UNUSABLE = '{"result": 1}'
FAILED = '{"result": 2}'

IFCONFIG = """\
br-lan    Link encap:Ethernet  HWaddr 00:90:FE:12:34:50  
          inet addr:192.168.0.1  Bcast:192.168.0.255  Mask:255.255.255.0
          inet6 addr: fe80::290:feff:fe12:3450/64 Scope:Link
          inet6 addr: 2001:db8:10e7:10::1/60 Scope:Global
          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1
"""

CHAIN = ["sleep 2", "/etc/init.d/globalip start", "/etc/init.d/dnsmasq restart", "ubus call network reload", "sleep 1",
         "ubus call network.interface.lan up", "logger -t LAN_INFO lan reload completely finished",
         "msg_tool -r easymesh_over"]

# Logged before the answer goes out, and only by a request that started the reload.
RELOAD_LOG = "Network reload task pushed to daemon safely.\n"


def settings(**changes):
    """A request for 192.168.5.1/24; a change to None leaves the key out."""
    body = {"globalIpProtectionEnable": 0, "dhcpv4Enable": 0, "lanIpv4Address": "192.168.5.1",
            "lanIpv4SubMask": "255.255.255.0", **changes}
    return {key: value for key, value in body.items() if value is not None}


def set_mode(router, mode, dhcp_server=False, **lan):
    """Works as `mode` with a static LAN; further keywords are options of network.lan."""
    router.set("system.@system[0].op_mode", mode)
    router.set("dhcp.lan.ignore", "0" if dhcp_server else "1")
    for option, value in lan.items():
        router.set(f"network.lan.{option}", value)


def messages(router, priority=3):
    """The texts that were logged at one priority, in their order."""
    return [line.text for line in router.log() if line.priority == priority]


def reloads(router):
    """Whether the last request started a reload: it would have said so before it answered."""
    return RELOAD_LOG in messages(router, priority=7)


def wait_for_chain(router):
    """The calls of the reload chain; what ran before it is not in them."""
    commands = [str(call) for call in router.wait_for_call("msg_tool", "-r", "easymesh_over")]
    return commands[commands.index("sleep 2"):] if "sleep 2" in commands else commands
