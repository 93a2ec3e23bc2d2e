# `iw dev DEVICE info` from `uci show wireless`: radios, access points, and MLDs with the links that carry them.
# Variables: device. Exits with 237 for a device that there is not, as iw does.

function value(line) { sub(/^[^=]*='/, "", line); sub(/'$/, "", line); return line }

/^wireless\.[a-z0-9]+=wifi-device$/ { split($0, a, /[.=]/); radios[a[2]] = 1 }
/^wireless\.[a-z0-9]+=wifi-iface$/ { split($0, a, /[.=]/); order[++count] = a[2] }
/^wireless\.[a-z0-9]+=wifi-mld$/ { split($0, a, /[.=]/); mlds[a[2]] = 1 }
/^wireless\.[a-z0-9]+\.[a-z_]+='.*'$/ { split($0, a, /[.=]/); option[a[2] "." a[3]] = value($0) }

function band_of(radio) { return substr(radio, 5, 1) + 0 }

# "36 (5180 MHz), width: 160 MHz, center1: 5250 MHz" of a radio.
function channel_text(radio,    band, channel, width, base, first, start) {
  band = band_of(radio)
  channel = option[radio ".channel"] + 0
  if (!channel) channel = band == 0 ? 6 : band == 1 ? 36 : 37
  width = option[radio ".htmode"]
  gsub(/[^0-9]/, "", width)
  if (!width) width = 20
  start = band == 0 ? 2407 : band == 1 ? 5000 : 5950
  if (band == 0) return sprintf("%d (%d MHz), width: %d MHz, center1: %d MHz", channel, start + 5 * channel, width, \
                                start + 5 * channel + (width > 20 ? (channel > 6 ? -10 : 10) : 0))
  base = band == 2 ? 1 : channel < 100 ? 36 : 100
  first = base + int((channel - base) / (width / 5)) * (width / 5)
  return sprintf("%d (%d MHz), width: %d MHz, center1: %d MHz", channel, start + 5 * channel, width, \
                 start + 5 * (first + width / 10 - 2))
}

function is_up(ifname) { return option[ifname ".disabled"] != 1 && option[option[ifname ".device"] ".disabled"] != 1 }
function number_of(name) { sub(/^[a-z]+/, "", name); return name + 0 }
function link_addr(radio, carrier) { return sprintf("02:90:fe:12:3%d:%02x", band_of(radio), number_of(carrier)) }

function show_channel(radio, indent) {
  printf "%schannel %s\n%stxpower 24.00 dBm\n", indent, channel_text(radio), indent
}

END {
  if (device in radios) {
    printf "Interface %s\n\tifindex %d\n\twdev 0x%d\n\taddr %s\n\ttype managed\n\twiphy %d\n", device, \
      6 + band_of(device), band_of(device) + 1, tolower(option[device ".macaddr"]), band_of(device)
    if (option[device ".disabled"] != 1) show_channel(device, "\t")
    exit 0
  }
  for (i = 1; i <= count; i++) if (order[i] == device) {
    printf "Interface %s\n\tifindex %d\n\twdev 0x%d\n\taddr %s\n", device, 30 + i, 20 + i, link_addr(option[device ".device"], device)
    if (is_up(device)) printf "\tssid %s\n", option[device ".ssid"]
    printf "\ttype %s\n\twiphy %d\n", option[device ".mode"] == "sta" ? "managed" : "AP", band_of(option[device ".device"])
    if (is_up(device)) show_channel(option[device ".device"], "\t")
    exit 0
  }
  if (!(device in mlds)) exit 237
  printf "Interface %s\n\tifindex %d\n\twdev 0x%d\n\taddr %s\n\tssid %s\n\ttype AP\n\twiphy 3\n", device, \
    60 + number_of(device), 40 + number_of(device), sprintf("02:90:fe:12:34:%02x", number_of(device)), option[device ".mld_ssid"]
  for (band = 0; band < 3; band++) for (i = 1; i <= count; i++) {
    ifname = order[i]
    radio = option[ifname ".device"]
    if (option[ifname ".mld"] != device || band_of(radio) != band || !is_up(ifname)) continue
    printf "\tlink %d:\n\t\taddr %s\n", band, link_addr(radio, device)
    show_channel(radio, "\t\t")
    break
  }
}
