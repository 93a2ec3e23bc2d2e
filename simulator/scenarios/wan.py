"""The Internet side: --wan gives the router a method and a line that carries it; --wan down pulls the cable.

What is written to these files while the router runs counts from then on: /router/state/wan-line (what the line
carries), /router/state/pppoe-login (user name and password that its PPPoE server knows), the carrier of eth1."""

import sandbox
import variants

CARRIER = "/sys/class/net/eth1/carrier"
LINE = "/router/state/wan-line"
LOGIN = "/router/state/pppoe-login"
USER_NAME = "user@provider.example"
PASSWORD = "pppoe-key-1234"

# What stands in network.wan once a client has chosen a method.
_TUNNEL = {"proto": "none", "dhcpv6pd": "1"}
METHODS = {
    "dhcp": {"proto": "dhcp", "mode": "DHCP"},
    "static": {"proto": "static", "mode": "STATIC", "ipaddr": "203.0.113.20", "netmask": "255.255.255.0",
               "gateway": "203.0.113.1", "dns": ["203.0.113.53", "203.0.113.54"]},
    "pppoe": {"proto": "pppoe", "mode": "PPPOE", "username": USER_NAME, "password": PASSWORD, "mtu": "1454",
              "keepalive": "5 60"},
    "map-e": {**_TUNNEL, "mode": "MAP-E", "qvmapeboottime": "1763683200", "qvmapebootflag": "1"},
    "ds-lite": {**_TUNNEL, "mode": "DS-Lite", "aftr": "2001:db8:af::1"},
    "ipip6": {**_TUNNEL, "mode": "IPIP6", "v6service": "v6plus", "ip4addr": "198.51.100.9", "braddr": "2001:db8:b::1",
              "interfaceid": "::c6:3364:900:0", "url": "http://update.provider.example/",
              "ipipusername": "ipip-user", "ipippasswd": "ipip-key-1234"},
    "stdprov": {**_TUNNEL, "mode": "STDPROV"},
}
# Method, IPv6 method and IPIP6 service of the last choice; a change of it may take the line longer.
KEYS = {"dhcp": "00", "static": "10", "pppoe": "20", "map-e": "32", "ds-lite": "42", "ipip6": "521", "stdprov": "62"}
LINES = {"stdprov": "map-e"}  # the provider tells the router what it has; the others carry what they are called
ROUTERS = ("router", "controller")


def add_options(parser):
    parser.add_argument("--wan", choices=[*METHODS, "ap", "down"], default=None,
                        help="how a router reaches the Internet; ap is an access point, down a router without a WAN cable; "
                             "default: dhcp, but for --mode ap")


def apply(root, args):
    wan = args.wan or ("ap" if args.mode == "ap" else "dhcp")
    if wan in METHODS:
        if args.wan and args.mode not in ROUTERS:
            raise sandbox.SandboxError(f"--wan {wan} is a router's, not that of --mode {args.mode}")
        if args.wan:
            _configure(root, wan)
    elif wan == "ap" and args.mode not in ("router", "ap"):
        raise sandbox.SandboxError(f"--wan ap is an access point's, not that of --mode {args.mode}")
    elif wan == "ap":
        root.set_options(variants.MODES["ap"])
    else:
        root.write(CARRIER, "0\n")
    root.write(LINE, ("dhcp" if wan == "down" else LINES.get(wan, wan)) + "\n")
    root.write(LOGIN, f"{USER_NAME}\n{PASSWORD}\n")


def _configure(root, method):
    options = {f"network.wan.{name}": value for name, value in METHODS[method].items()}
    options["network.backwan.waninfobak"] = KEYS[method]
    if method == "map-e":
        options["network.wan_mape"] = "interface"
        options["network.wan_mape.proto"] = "map"
    root.set_options(options)
