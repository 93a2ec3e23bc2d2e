// Parsing of a topology dump: devices first, then the tree and the stations.
#include "mesh/topology.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <numeric>
#include <unordered_map>
#include <unordered_set>

#include "mesh/backhaul.h"
#include "mesh/dump_index.h"
#include "platform/text.h"

namespace {

using Mac = platform::ShortText<kMacLength>;

struct Header {
  std::string mac;
  std::string ip;
};

struct HeaderLine {
  std::size_t line;
  std::size_t device;
};

// "if a colon occurs and more than 10 characters follow it": the MAC without its first octet.
std::string_view mac_tail(std::string_view mac) {
  constexpr std::size_t kShortestTail = 10;
  const std::size_t colon = mac.find(':');
  if (colon != std::string_view::npos && mac.size() - colon - 1 > kShortestTail) return mac.substr(colon + 1);
  return mac.substr(0, kMacLength);
}

// The MAC with its last octet decreased by one, as the platform numbers an agent's wired port below its 2.4 GHz radio.
std::string mac_below(std::string_view mac) {
  const std::size_t colon = mac.rfind(':');
  const std::size_t begin = colon == std::string_view::npos ? 0 : colon + 1;
  unsigned int octet = 0;
  std::from_chars(mac.data() + begin, mac.data() + mac.size(), octet, 16);
  std::array<char, 3> digits{};
  std::snprintf(digits.data(), digits.size(), "%02X", (octet + 255U) & 255U);
  return std::string(mac.substr(0, begin)) + digits.data();
}

// Which devices hang together, so that none becomes its own ancestor.
class Ancestry {
 public:
  explicit Ancestry(std::size_t count) : top_(count) { std::iota(top_.begin(), top_.end(), std::size_t{0}); }
  // False when `child` is at the top of what `parent` hangs below.
  bool link(std::size_t child, std::size_t parent) {
    const std::size_t above = find(parent);
    if (above == child) return false;
    top_[child] = above;
    return true;
  }

 private:
  std::size_t find(std::size_t device) {
    while (top_[device] != device) device = top_[device] = top_[top_[device]];
    return device;
  }
  std::vector<std::size_t> top_;
};

class TopologyParser {
 public:
  TopologyParser(DumpLines dump, const TopologySources& sources)
      : index_(std::move(dump)), sources_(sources), backhaul_(index_, sources.mesh_mode) {}

  TopologyInfo parse() {
    for (std::size_t number = 0; number < index_.lines().size(); ++number) collect_device(number);
    ancestry_.emplace(info_.devices.size());
    for (std::size_t number = 0; number < index_.lines().size(); ++number) read_line(number);
    if (info_.root) info_.hasAgent = info_.devices[*info_.root].hasLinks;
    return std::move(info_);
  }

 private:
  std::optional<Header> read_header(std::string_view line) {
    if (!is_device_header(line)) return std::nullopt;
    Header header{.mac = header_mac(line), .ip = {}};
    if (header.mac.empty()) return std::nullopt;
    if (const auto ip = text_behind(line, "IPv4 address: ", " \r")) {
      if (ip->size() <= kIpv4Length) header.ip = *ip;
    } else {
      header.ip = sources_.ip_of_mac(header.mac).value_or("").substr(0, kIpv4Length);
    }
    return header.ip.empty() ? std::nullopt : std::optional(header);
  }

  void collect_device(std::size_t number) {
    std::optional<Header> header = read_header(index_.lines()[number]);
    if (!header) return;
    const auto [known, is_new] = positions_.try_emplace(header->mac, info_.devices.size());
    if (is_new) {
      TopologyDevice& device = info_.devices.emplace_back();
      device.mac = header->mac;
      device.ip = header->ip;
    }
    headers_.push_back({number, known->second});
  }

  // `mac` has kMacLength bytes at most.
  std::optional<std::size_t> position_of(std::string_view mac) const {
    const auto found = positions_.find(mac);
    return found == positions_.end() ? std::nullopt : std::optional(found->second);
  }

  // The first rule that applies to the line.
  void read_line(std::size_t number) {
    const std::string_view line = index_.lines()[number];
    if (next_header_ < headers_.size() && headers_[next_header_].line == number) {
      return begin_block(headers_[next_header_++].device);
    }
    if (!root_seen_ && platform::holds(line, "Upstream Device: None")) {
      root_mac_ = current_mac_;
      root_seen_ = true;
      return;
    }
    if (block_accepted_ && platform::holds(line, "Upstream Device:")) return link_to_parent(line);
    const bool is_root = !current_mac_.empty() && current_mac_ == root_mac_;
    if (is_root && platform::holds(line, "Legacy Devices:")) {
      in_legacy_ = true;
      interface_is_eth1_ = false;
      return;
    }
    if (in_legacy_ && read_legacy(line)) return;
    if (block_accepted_ && !is_root && platform::holds(line, "Bridged addresses:")) {
      in_bridged_ = true;
      return;
    }
    if (in_bridged_) read_bridged(line);
  }

  void begin_block(std::size_t device) {
    current_mac_ = info_.devices[device].mac.view();
    if (root_mac_.empty()) {
      root_mac_ = current_mac_;
      info_.root = device;
      block_accepted_ = false;
    } else if (root_seen_) {
      block_accepted_ = true;
    }
  }

  void link_to_parent(std::string_view line) {
    std::string parent_mac = root_mac_;
    if (!platform::holds(line, "None")) {
      parent_mac = text_behind(line, "Upstream Device: ", "").value_or("").substr(0, kMacLength);
    }
    const std::optional<std::size_t> child = position_of(current_mac_);
    const std::optional<std::size_t> parent = position_of(parent_mac);
    if (!child || !parent || child == info_.root || info_.devices[*child].parent) return;
    if (!ancestry_->link(*child, *parent)) return;
    TopologyDevice& device = info_.devices[*child];
    TopologyDevice& above = info_.devices[*parent];
    device.parent = parent;
    device.level = above.level + 1;
    above.children.push_back(*child);
    above.hasLinks = true;
    device.connectionType = parent_mac == root_mac_ ? backhaul_.get_backhaul_type_from_remote(device.mac)
                                                    : backhaul_.get_backhaul_type_via_bridge(above.mac, device.mac);
  }

  // True when the line belongs to the root's legacy table.
  bool read_legacy(std::string_view line) {
    if (platform::holds(line, "Radios:")) {
      in_legacy_ = false;
      interface_.clear();
      return true;
    }
    if (const auto name = text_behind(line, "Interface ", ":")) {
      interface_ = *name;
      interface_is_eth1_ = interface_ == "eth1";
      return true;
    }
    if (interface_.empty() || interface_is_eth1_ || !platform::holds(line, ":")) return false;
    line = platform::trim_start(line);
    if (line.size() < kMacLength || !info_.root) return true;
    add_station(*info_.root, line.substr(0, kMacLength), platform::holds(interface_, "eth") ? "ETHER" : "Wireless");
    return true;
  }

  void read_bridged(std::string_view line) {
    if (platform::holds(line, "Radios:")) {
      in_bridged_ = false;
      return;
    }
    const bool is_heading = platform::holds(line, "Address") && platform::holds(line, "Interface Type");
    if (is_heading || !platform::holds(line, "Remote")) return;
    std::array<char, kMacLength + 1> mac{};
    int index = 0;
    if (std::sscanf(std::string(line).c_str(), "%17s%*[ \t]%9d", mac.data(), &index) < 2) return;
    const std::optional<std::size_t> owner = position_of(current_mac_);
    if (owner) add_bridged_station(*owner, mac.data());
  }

  void add_bridged_station(std::size_t owner, std::string_view mac) {
    if (position_of(mac) || stations_[owner].contains(mac)) return;
    std::string interface_mac;
    const std::string type = backhaul_.get_backhaul_type_via_bridge(current_mac_, mac, &interface_mac);
    if (type == "ETHER" && !is_wired_port_of_agent(owner, interface_mac)) return;
    add_station(owner, mac, type);
  }

  // A wired station counts only on the port whose MAC stands one below the agent's 2.4 GHz radio.
  bool is_wired_port_of_agent(std::size_t agent, std::string_view interface_mac) const {
    const std::optional<DumpIndex::Range> table = index_.interface_table(info_.devices[agent].mac);
    const InterfaceRow* radio = table ? index_.radio_24ghz(*table) : nullptr;
    return radio != nullptr && mac_tail(interface_mac) == mac_tail(mac_below(radio->mac));
  }

  void add_station(std::size_t owner, std::string_view mac, std::string_view type) {
    TopologyDevice& device = info_.devices[owner];
    device.stations.push_back({mac, type, device.level + 1});
    device.hasLinks = true;
    stations_[owner].insert(mac);
  }

  DumpIndex index_;
  const TopologySources& sources_;
  BackhaulReader backhaul_;
  TopologyInfo info_;
  std::unordered_map<Mac, std::size_t> positions_;  // of devices
  std::vector<HeaderLine> headers_;
  std::size_t next_header_ = 0;
  std::optional<Ancestry> ancestry_;
  std::unordered_map<std::size_t, std::unordered_set<Mac>> stations_;  // of each device that has some

  std::string current_mac_;
  std::string root_mac_;
  std::string interface_;
  bool root_seen_ = false;
  bool block_accepted_ = false;
  bool in_legacy_ = false;
  bool interface_is_eth1_ = false;
  bool in_bridged_ = false;
};

// The devices of the tree, children before their parents, as often as they stand in it: once.
std::vector<std::size_t> children_first(const TopologyInfo& info) {
  std::vector<std::size_t> order;
  if (!info.root) return order;
  struct Step {
    std::size_t device;
    std::size_t next_child;
  };
  std::vector<Step> path{{*info.root, 0}};
  while (!path.empty()) {
    Step& step = path.back();
    const std::vector<std::size_t>& children = info.devices[step.device].children;
    if (step.next_child < children.size()) {
      const std::size_t child = children[step.next_child++];
      path.push_back({child, 0});
    } else {
      order.push_back(step.device);
      path.pop_back();
    }
  }
  return order;
}

// A client seen behind several devices is kept behind the deepest one; of equals, behind the first one met.
void remove_duplicate_stations(TopologyInfo& info) {
  struct Best {
    int level = -1;
    std::size_t owner = 0;
  };
  std::unordered_map<Mac, Best> best;
  const std::vector<std::size_t> order = children_first(info);
  for (const std::size_t owner : order) {
    for (const TopologyStation& station : info.devices[owner].stations) {
      Best& known = best[station.mac];
      if (station.level > known.level) known = {station.level, owner};
    }
  }
  for (const std::size_t owner : order) {
    std::erase_if(info.devices[owner].stations, [&](const TopologyStation& station) {
      const Best& kept = best[station.mac];
      return kept.level != station.level || kept.owner != owner;
    });
  }
}

}  // namespace

TopologyInfo parse_topology(DumpLines dump, const TopologySources& sources) {
  TopologyInfo info = TopologyParser(std::move(dump), sources).parse();
  remove_duplicate_stations(info);  // the dump is gone by now: both at a time would be much memory
  return info;
}

TopologyInfo parse_topology(std::string_view dump, const TopologySources& sources) {
  return parse_topology(DumpLines(dump), sources);
}
