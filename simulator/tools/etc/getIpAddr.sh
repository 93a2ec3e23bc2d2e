#!/bin/sh
# The addresses of the WAN side, for who reads /tmp/ipAddrResult.
cat >/tmp/ipAddrResult <<END
addr:203.0.113.10
Mask:255.255.255.0
gatewayV4:203.0.113.1
ipv6Global:2001:db8:10e7::10/64
ipv6Link:fe80::290:feff:fe12:3451/64
gatewayV6:fe80::1
nameserver 203.0.113.53
nameserver 203.0.113.54
nameserver 2001:db8::53
END
