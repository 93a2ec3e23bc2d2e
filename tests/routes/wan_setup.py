"""What the WAN's route tests share: a unit's packages, requests, the platform's files, and the end of a reload."""

import pytest

URI = "/api/v1/router/wan-info"
INIT = "/api/v1/system/config/waninit"
LONG_WAIT = '{"result": 0, "version": 1, "waitTime": 300}'
SHORT_WAIT = '{"result": 0, "version": 1, "waitTime": 90}'
UNUSABLE = '{"result": 1}'
FAILED = '{"result": 2}'

# network.wan.mode in the order of its codes.
MODES = ("DHCP", "STATIC", "PPPOE", "MAP-E", "DS-Lite", "IPIP6", "STDPROV", "AP")
TUNNELS = MODES[3:7]
ADDRESS_SCRIPT = "/etc/getIpAddr.sh"
ADDRESS_FILE = "/tmp/ipAddrResult"
TUNNEL_TOOL = "/usr/sbin/ip4ov6jp_info"

# jose's arguments for an answer.
ENCRYPT = ("jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c")
FLUSH = "ip addr flush dev eth1"
RELOAD = ["sleep 2", "/etc/init.d/network reload", "logger -t LAN_INFO lan reload completely finished"]
UPNP_RELOAD = ["sleep 2", "/etc/init.d/miniupnpd reload"]
ECM = "/sys/kernel/debug/ecm"
ECM_NODES = (f"{ECM}/front_end_ipv4_stop", f"{ECM}/front_end_ipv6_stop", f"{ECM}/ecm_db/defunct_all")
PACKAGES = {
    "network": """
config device
	option name 'br-lan'
	list ports 'eth0'
	list ports 'eth2'
config interface 'lan'
	option device 'br-lan'
	option proto 'static'
	option ipaddr '192.168.0.1'
	option netmask '255.255.255.0'
	option ip6assign '60'
	option globalIp '0'
config interface 'wan'
	option device 'eth1'
	option proto 'dhcp'
	option mode 'DHCP'
	option autoflag '0'
	option dhcpv6pd '0'
	option slaac '0'
config interface 'backwan'
	option change '0'
	option waninfobak '00'
config interface 'backlan'
	option ipaddr1 '192.168.7.1'
""",
    "system": "config system\n\toption hostname 'unit'\n\toption op_mode 'router'\n\toption button_mode 'router_mode'\n"
              "config easysetup 'easysetup'\n\toption http_redirect_enable '0'\n",
    "dhcp": "config dhcp 'lan'\n\toption interface 'lan'\n\toption limit '100'\n",
    "ecm": "config ecm 'global'\n\toption acceleration '1'\n",
    "upnpd": "config upnpd 'config'\n\toption enabled '1'\n",
    "button_mesh": "config easymesh 'easymesh'\n\toption enable '0'\n\toption role 'none'\n",
}

# What each mode keeps in network.wan; a unit that holds all of it shows what else a change took away.
MODE_OPTIONS = {
    "hostname": "old-host",
    "ipaddr": "203.0.113.10", "netmask": "255.255.255.0", "gateway": "203.0.113.1", "dns": ["203.0.113.53", "203.0.113.54"],
    "username": "old-user", "password": "old-password", "mtu": "1454", "keepalive": "5 60",
    "aftr": "old.aftr.example",
    "v6service": "manual", "ip4addr": "192.0.2.1", "braddr": "2001:db8::1", "interfaceid": "::1", "url": "http://old.example/",
    "ipipusername": "old-id", "ipippasswd": "old-secret",
    "qvmapeboottime": "17", "qvmapebootflag": "1",
}

# What a change away from a mode takes out of network.wan.
DELETED = {
    "STATIC": ("ipaddr", "netmask", "gateway", "dns"),
    "PPPOE": ("mtu", "keepalive"),
    "MAP-E": ("qvmapeboottime", "qvmapebootflag"),
    "DS-Lite": ("aftr",),
    "IPIP6": ("v6service", "ip4addr", "braddr", "interfaceid", "url", "ipipusername", "ipippasswd"),
}


def prepare(router):
    for package, text in PACKAGES.items():
        router.config(package, text)
    addresses(router)
    return router


@pytest.fixture
def wan(bare_router):
    """A router on a line with DHCP; NAT acceleration and UPnP are on."""
    return prepare(bare_router)


def addresses(router, *lines, text=None):
    """What the address script finds on the WAN side."""
    router.tool(ADDRESS_SCRIPT, write={ADDRESS_FILE: "".join(f"{line}\n" for line in lines) if text is None else text})


def set_wan(router, **options):
    for option, value in options.items():
        router.set(f"network.wan.{option}", value)


def static_unit(router, **options):
    """A line with a static address."""
    set_wan(router, **{"mode": "STATIC", "proto": "static", "ipaddr": "203.0.113.10", "netmask": "255.255.255.0",
                       "gateway": "203.0.113.1"} | options)


def stored(router):
    """All that UCI holds, by address; an empty list is none. A section stands by its type."""
    content = {}
    for package in PACKAGES:
        counts = {}
        for section in router.package(package):
            place = counts.setdefault(section.type, 0)
            counts[section.type] += 1
            name = f"{package}.{section.name or f'@{section.type}[{place}]'}"
            content[name] = section.type
            content |= {f"{name}.{option}": value for option, value in section.options.items() if value != []}
    return content


def packages(router):
    """The packages' texts, to be put back with restore()."""
    return {package: router.read(f"/etc/config/{package}") for package in PACKAGES}


def restore(router, texts):
    for package, text in texts.items():
        router.config(package, text)


def request(**fields):
    """A request that changes neither NAT acceleration nor UPnP; None leaves a field out."""
    config = {"wanAutoSelectStatus": 0, "wanMethod": 0, "wanIPv6Method": 0, "vneAutoChangeStatus": 0, "captivePortalStatus": 0,
              "natAccelerationEnable": 1, "uPnPIGD": 1} | fields
    return {"wanConfig": {key: value for key, value in config.items() if value is not None}}


def apply(router, body=None, **fields):
    """Posts a change and waits until its reload has ended: the calls, the log and the nodes are complete then."""
    router.forget_calls()
    answer = router.post(URI, request(**fields) if body is None else body)
    wait_for_reload(router)
    return answer


def wait_for_reload(router):
    router.wait_for_call("logger", "-t", "LAN_INFO")
    router.wait_until(lambda: len(router.processes()) == 1, "the end of the reload")


def cut(text, size):
    """What a buffer of `size` bytes keeps of a text: whole characters."""
    data = text.encode("utf-8", "surrogateescape")
    end = size - 1
    for begin in range(max(0, end - 3), end if len(data) > end else 0):
        if any(is_character(data[begin:behind]) for behind in range(end + 1, begin + 5)):
            end = begin
            break
    return data[:end].decode("utf-8", "surrogateescape")


def is_character(data):
    try:
        return len(data.decode()) == 1
    except UnicodeDecodeError:
        return False


def shown(text):
    """How an answer shows a text: what is no UTF-8 as U+FFFD."""
    return text.encode("utf-8", "surrogateescape").decode("utf-8", "replace")


def told(router, text):
    """Whether a trace says so, in the log or on standard error."""
    return router.logged(text) or text in router.stderr()


KEYS = ("wanAutoSelectStatus", "wanMethod", "wanIPv6Method", "vneAutoChangeStatus", "pppoeMtu", "captivePortalStatus",
        "natAccelerationEnable", "uPnPIGD", "pppoeUserName", "pppoePassword", "dhcpcHostName", "wanIpv4Address",
        "wanIpv4subMask", "wanIpv4Gateway", "wanIpv4Dns1", "wanIpv4Dns2", "aftrAddress", "ipipService", "ipipV4Address",
        "ipipBrAddress", "ipipInterfaceId", "ipipResettingUrl", "ipipUserId", "ipipPassword")
