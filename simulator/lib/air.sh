# The air around the router, and the stations that join an upstream in it. Sourced by the tools.
#
# /router/state/uplink says how the upstream is: good (it takes who knows its key), wrong-key (it takes nobody) or lost
# (it is out of range). Change it while the router runs, and the uplink changes.

uci_option() { /router/tools/uci -q get "$1"; }

uplink() { cat /router/state/uplink 2>/dev/null || echo good; }

UPSTREAM_KEY=upstream-key-1234

# Access points of the upstream: band, BSSID, MHz, dBm, SSID, how to log in. The SSIDs of the last row are one multi-link
# network's.
UPSTREAM='0 00:11:22:33:44:50 2437 -48.00 Upstream-2G PSK
1 00:11:22:33:44:51 5180 -52.00 Upstream-5G PSK,SAE
2 00:11:22:33:44:52 6135 -60.00 Upstream-6G SAE
0 00:11:22:33:55:50 2437 -49.00 Upstream-MLO PSK,SAE
1 00:11:22:33:55:51 5180 -53.00 Upstream-MLO PSK,SAE
2 00:11:22:33:55:52 6135 -61.00 Upstream-MLO SAE'

# Others in range; a SSID as iw prints it, "-" for a hidden one, "none" for an open network. The lines of
# /router/state/neighbours, where there are any, are in range, too.
NEIGHBOURS='0 00:aa:bb:cc:dd:01 2462 -71.00 Cafe-Free-Wifi none
0 00:aa:bb:cc:dd:11 2412 -88.00 - PSK
1 00:aa:bb:cc:dd:02 5500 -80.00 \x4eeighbour PSK
1 00:aa:bb:cc:dd:12 5745 -66.00 Beyond-the-band PSK
2 00:aa:bb:cc:dd:03 6215 -75.00 OWE-Cafe OWE'

bss() { # DEVICE BSSID MHz dBm SSID SUITES
  printf 'BSS %s(on %s)\n\tlast seen: 1034.227s [boottime]\n\tTSF: 103422700000 usec (1d, 04:43:42)\n' "$2" "$1"
  printf '\tfreq: %s.0\n\tbeacon interval: 100 TUs\n\tsignal: %s dBm\n\tlast seen: 120 ms ago\n' "$3" "$4"
  if [ "$5" = - ]; then printf '\tSSID: \n'; else printf '\tSSID: %s\n' "$5"; fi
  if [ "$6" != none ]; then
    printf '\tRSN:\t * Version: 1\n\t\t * Group cipher: CCMP\n\t\t * Pairwise ciphers: CCMP\n'
    printf '\t\t * Authentication suites: %s\n' "$(echo "$6" | tr ',' ' ')"
  fi
  printf '\tHT operation:\n\t\t * primary channel: 1\n'
}

# What a scan of a band hears.
scan_air() { # DEVICE BAND
  { [ "$(uplink)" = lost ] || echo "$UPSTREAM"; printf '%s\n' "$NEIGHBOURS"; cat /router/state/neighbours 2>/dev/null; } |
    while read -r band bssid freq signal ssid suites; do
      [ "$band" != "$2" ] || bss "$1" "$bssid" "$freq" "$signal" "$ssid" "$suites"
    done
}

# The upstream's access point with a SSID, on a band or (band "*") on any; nothing when it is out of range.
find_bssid() { # SSID BAND
  [ "$(uplink)" != lost ] || return 0
  echo "$UPSTREAM" | while read -r band bssid freq signal ssid suites; do
    if [ "$ssid" = "$1" ] && { [ "$2" = '*' ] || [ "$2" = "$band" ]; }; then echo "$bssid"; break; fi
  done
}

# The SSID that a station interface wants to join, and the key that it knows.
station_ssid() { case $1 in mld7) uci_option wireless.mld7.mld_ssid ;; *) uci_option "wireless.$1.ssid" ;; esac; }
station_key() {
  case $1 in
    mld7) for station in ath03 ath13 ath23; do uci_option "wireless.$station.key" && return; done ;;
    *) uci_option "wireless.$1.key" ;;
  esac
}
station_band() { case $1 in ath03) echo 0 ;; ath13) echo 1 ;; ath23) echo 2 ;; *) echo '*' ;; esac; }
station_exists() { uci_option "wireless.$1" >/dev/null; }
station_bssid() { find_bssid "$(station_ssid "$1")" "$(station_band "$1")"; }

# What wpa_supplicant says of a station.
wpa_state() {
  if [ -z "$(station_bssid "$1")" ]; then echo SCANNING
  elif [ "$(uplink)" = wrong-key ] || [ "$(station_key "$1")" != "$UPSTREAM_KEY" ]; then echo 4WAY_HANDSHAKE
  else echo COMPLETED
  fi
}

# Makes the interfaces of the configured stations, and the links of a multi-link one, in /sys; at the end
# /router/state/stations names them.
apply_stations() {
  made=
  for band in 0 1 2; do
    station=ath${band}3 address=/sys/class/net/mld7/link$band/address_link$band
    if ! station_exists "$station" || [ "$(uci_option "wireless.$station.disabled")" = 1 ]; then
      rm -rf "/sys/class/net/$station" "${address%/*}"
      continue
    fi
    made="$made $station"
    mkdir -p "/sys/class/net/$station"
    echo "00:90:fe:12:34:${band}3" >"/sys/class/net/$station/address"
    if [ "$(uci_option "wireless.$station.mld")" = mld7 ]; then
      mkdir -p "${address%/*}"
      echo "00:90:fe:12:34:7$band" >"$address"
    else
      rm -rf "${address%/*}"
    fi
  done
  echo "$made" >/router/state/stations
}
