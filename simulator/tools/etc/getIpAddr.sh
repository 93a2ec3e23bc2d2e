#!/bin/sh
# The addresses of the WAN side, for who reads /tmp/ipAddrResult. What there is not has no line.
. /router/simulated/lib/wan.sh

name_servers() { for server; do echo "nameserver $server"; done; }

own_ipv4() {
  read -r address mask gateway || return 0
  echo "addr:$address"
  echo "Mask:$mask"
  [ -z "$gateway" ] || echo "gatewayV4:$gateway"
}

own_name_servers() {
  set -f
  # shellcheck disable=SC2046  # one argument for each server
  if [ "$wan_mode" = STATIC ]; then name_servers $(wan_option dns); else name_servers 203.0.113.53 203.0.113.54; fi
}

{
  wan_ipv4 | own_ipv4
  ! wan_has_ipv6 || echo "ipv6Global:2001:db8:10e7::10/64"
  ! wan_has_carrier || echo "ipv6Link:fe80::290:feff:fe12:3451/64"
  ! wan_has_ipv6 || echo "gatewayV6:fe80::1"
  [ -z "$(wan_ipv4)" ] || own_name_servers
  ! wan_has_ipv6 || name_servers 2001:db8::53 2001:db8::54
} >/tmp/ipAddrResult
