# The LAN side of the simulated network: what netifd would make of the network package. Sourced by the tools.
# br-lan's address and mask stand in /router/state/br-lan; where the root has a network of its own, on the bridge too.

state=/router/state/br-lan

option() { /router/tools/uci -q get "$1"; }

prefix_length() {
  IFS=. read -r a b c d <<END
$1
END
  bits=0
  for field in "$a" "$b" "$c" "$d"; do
    while [ "${field:-0}" -gt 0 ]; do bits=$((bits + field % 2)) field=$((field / 2)); done
  done
  echo "$bits"
}

apply_network() {
  if [ "$(option network.lan.proto)" = dhcp ]; then
    address=192.168.99.20 mask=255.255.255.0 gateway=192.168.99.1
  else
    address=$(option network.lan.ipaddr) mask=$(option network.lan.netmask) gateway=$(option network.lan.gateway)
  fi
  echo "${address:-0.0.0.0} ${mask:-0.0.0.0} $gateway" >"$state"
  [ -e /proc/sys/net/ipv4/conf/br-lan ] || return 0
  /router/lent/ip -4 addr flush dev br-lan
  /router/lent/ip addr add "$address/$(prefix_length "$mask")" dev br-lan
}
