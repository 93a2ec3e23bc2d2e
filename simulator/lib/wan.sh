# The WAN side of the simulated network: what the configured method makes of the line. Sourced by the tools.
# /router/state/wan-line says what the line carries, /router/state/pppoe-login whom its PPPoE server lets in (user name,
# password); the cable is in while the kernel has a carrier on eth1.

wan_option() { /router/tools/uci -q get "network.wan.$1"; }

wan_mode=$(wan_option mode)
wan_line=$(cat /router/state/wan-line 2>/dev/null)
wan_line=${wan_line:-dhcp}

wan_has_carrier() { [ "$(cat /sys/class/net/eth1/carrier 2>/dev/null)" = 1 ]; }

wan_login_is_right() {
  [ "$(wan_option username)" = "$(sed -n 1p /router/state/pppoe-login)" ] &&
    [ "$(wan_option password)" = "$(sed -n 2p /router/state/pppoe-login)" ]
}

wan_is_tunnel() {
  case $wan_mode in MAP-E | DS-Lite | IPIP6 | STDPROV) return 0 ;; esac
  return 1
}

# The line gives the method what it needs.
wan_is_connected() {
  wan_has_carrier || return 1
  case $wan_mode:$wan_line in
    DHCP:dhcp | STATIC:dhcp | STATIC:static | AP:*) ;;
    PPPOE:pppoe) wan_login_is_right ;;
    MAP-E:map-e | DS-Lite:ds-lite | IPIP6:ipip6 | STDPROV:map-e | STDPROV:ds-lite | STDPROV:ipip6) ;;
    *) return 1 ;;
  esac
}

is_ipv4() {
  case $1 in *[!0-9.]* | "") return 1 ;; *.*.*.*) return 0 ;; esac
  return 1
}

# "address mask gateway" of the router's own IPv4 on the WAN side; nothing while it has none. One of its own choice needs
# nobody's consent.
wan_ipv4() {
  wan_has_carrier || return 0
  case $wan_mode in
    DHCP) ! wan_is_connected || echo 203.0.113.10 255.255.255.0 203.0.113.1 ;;
    PPPOE) ! wan_is_connected || echo 198.51.100.23 255.255.255.255 198.51.100.1 ;;
    STATIC)
      for field in ipaddr netmask; do is_ipv4 "$(wan_option "$field")" || return 0; done
      echo "$(wan_option ipaddr) $(wan_option netmask) $(wan_option gateway)" ;;
  esac
}

# The line has IPv6, and the router asks for it; a tunnel always does.
wan_has_ipv6() {
  wan_is_connected || return 1
  wan_is_tunnel || [ "$wan_mode" = AP ] || [ "$(wan_option slaac)" = 1 ] || [ "$(wan_option dhcpv6pd)" = 1 ]
}

# IPv4 reaches the Internet: an address of one's own choice only through the line's gateway.
wan_reaches_ipv4() {
  wan_is_connected || return 1
  [ "$wan_mode" != STATIC ] || [ "$(wan_ipv4 | cut -d ' ' -f 3)" = 203.0.113.1 ]
}
