// Media to connection types.
#include "mesh/backhaul.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "domain/mesh_codes.h"
#include "mesh/topology.h"
#include "platform/text.h"

namespace {

enum Medium : unsigned char { kEthernet = 1, k24GHz = 2, k5GHz = 4, k6GHz = 8 };
constexpr std::size_t kMostIndices = 8;
constexpr const char* kDefaultType = "WLAN_MLO_5G";

struct MediumName {
  std::string_view name;
  Medium medium;
};
constexpr std::array<MediumName, 4> kMediumNames{{
    {"ETHER", kEthernet},
    {"WLAN2G", k24GHz},
    {"WLAN5G", k5GHz},
    {"WLAN6G", k6GHz},
}};

struct ConnectionType {
  unsigned int media;
  const char* text;
};
// Ethernet counts only where no band was seen.
constexpr std::array<ConnectionType, 7> kConnectionTypes{{
    {kEthernet, "ETHER"},
    {k24GHz | k5GHz | k6GHz, "WLAN_MLO_24G_5G_6G"},
    {k24GHz | k5GHz, "WLAN_MLO_24G_5G"},
    {k5GHz | k6GHz, "WLAN_MLO_5G_6G"},
    {k24GHz, "WLAN_MLO_24G"},
    {k5GHz, "WLAN_MLO_5G"},
    {k6GHz, "WLAN_MLO_6G"},
}};

struct TypeCode {
  std::string_view text;
  int code;
};
constexpr int kOtherTypeCode = 5;
constexpr std::array<TypeCode, 8> kTypeCodes{{
    {"ETHER", 0},
    {"WLAN_MLO_24G", 1},
    {"WLAN_MLO_5G", 2},
    {"WLAN_MLO_6G", 3},
    {"WLAN_MLO_24G_5G", 4},
    {"WLAN_MLO_5G_6G", 5},
    {"WLAN_MLO_24G_5G_6G", 6},
    {"WLAN_MLO_24G_6G", 7},
}};

// nullptr for a combination that has no type of its own (2.4 + 6 GHz, nothing).
const char* type_of(unsigned int media) {
  if (media != kEthernet) media &= ~static_cast<unsigned int>(kEthernet);
  const auto* row = std::ranges::find(kConnectionTypes, media, &ConnectionType::media);
  return row == kConnectionTypes.end() ? nullptr : row->text;
}

bool ends_remote_table(std::string_view line) {
  return line.empty() || platform::holds(line, "Bridged addresses:") || platform::holds(line, "Radios:") ||
         platform::holds(line, "Remote connections (Not directly connected to self)");
}

// The media of a remote table from `line` on, given those of the lines behind it.
unsigned char media_from(std::string_view line, unsigned char behind) {
  if (ends_remote_table(line)) return 0;
  if (platform::holds(line, "eth")) return kEthernet;
  for (const MediumName& name : kMediumNames) {
    if (name.medium != kEthernet && platform::holds(line, name.name))
      behind = static_cast<unsigned char>(behind | name.medium);
  }
  return behind;
}

std::vector<std::string> words_of(std::string_view line) {
  std::vector<std::string> words;
  for (std::size_t begin = line.find_first_not_of(" \t\r"); begin != std::string_view::npos;
       begin = line.find_first_not_of(" \t\r")) {
    line.remove_prefix(begin);
    words.emplace_back(line.substr(0, line.find_first_of(" \t\r")));
    line.remove_prefix(words.back().size());
  }
  return words;
}

}  // namespace

int connection_type_code(std::string_view connection_type) {
  const auto* row = std::ranges::find(kTypeCodes, connection_type, &TypeCode::text);
  return row == kTypeCodes.end() ? kOtherTypeCode : row->code;
}

BackhaulReader::BackhaulReader(const DumpIndex& index, std::function<int()> mesh_mode)
    : index_(index), mesh_mode_(std::move(mesh_mode)) {}

std::string BackhaulReader::get_backhaul_type_from_remote(const std::string& device_mac) {
  unsigned int media = 0;
  const std::optional<std::size_t> header = index_.header_of(device_mac);
  const std::optional<std::size_t> heading = header ? index_.remote_table(*header) : std::nullopt;
  if (heading) media = remote_media(*heading + 1);
  const char* type = type_of(media);
  return type != nullptr ? type : type_of_mesh_mode();
}

unsigned int BackhaulReader::remote_media(std::size_t line) {
  if (remote_media_.empty()) {
    remote_media_.resize(index_.lines().size() + 1);
    for (std::size_t number = index_.lines().size(); number-- > 0;) {
      remote_media_[number] = media_from(index_.lines()[number], remote_media_[number + 1]);
    }
  }
  return remote_media_[line];
}

const char* BackhaulReader::type_of_mesh_mode() {
  if (!known_mesh_mode_) known_mesh_mode_ = mesh_mode_();
  if (*known_mesh_mode_ == kMeshMode245And6) return "WLAN_MLO_5G";
  return *known_mesh_mode_ == kMeshMode24And5 ? "WLAN_MLO_24G_5G" : "WLAN_MLO_5G_6G";
}

const BackhaulReader::IndicesOfMac& BackhaulReader::bridge_rows(std::size_t heading) {
  const auto [known, is_new] = bridge_rows_.try_emplace(heading);
  if (!is_new) return known->second;
  const std::vector<std::string_view>& lines = index_.lines();
  for (std::size_t number = heading + 1; number < lines.size(); ++number) {
    const std::string line(lines[number]);
    if (line.empty() || platform::holds(line, "Address")) break;
    if (!platform::holds(line, "Remote")) continue;
    std::array<char, kMacLength + 1> mac{};
    std::array<char, 16> type{};
    int index = 0;
    if (std::sscanf(line.c_str(), "%17s %9d %15s", mac.data(), &index, type.data()) < 2) continue;
    for (const std::string& word : words_of(line)) {
      std::vector<int>& indices = known->second[word.substr(0, kMacLength)];
      if (indices.size() < kMostIndices) indices.push_back(index);
    }
  }
  return known->second;
}

std::string BackhaulReader::get_backhaul_type_via_bridge(const std::string& owner_mac, const std::string& target_mac,
                                                         std::string* interface_mac) {
  const std::optional<std::size_t> header = index_.header_of(owner_mac);
  const std::optional<std::size_t> heading = header ? index_.bridge_table(*header) : std::nullopt;
  const std::vector<int>* indices = nullptr;
  if (heading) {
    const IndicesOfMac& rows = bridge_rows(*heading);
    if (const auto found = rows.find(target_mac); found != rows.end()) indices = &found->second;
  }
  if (indices == nullptr) return get_backhaul_type_from_remote(target_mac);

  unsigned int media = 0;
  const std::optional<DumpIndex::Range> table = index_.interface_table(owner_mac);
  for (const int index : *indices) {
    const InterfaceRow* row = table ? index_.interface_row(*table, index) : nullptr;
    if (row == nullptr) continue;
    media |= std::ranges::find(kMediumNames, row->medium, &MediumName::name)->medium;
    if (interface_mac != nullptr && interface_mac->empty()) *interface_mac = row->mac;
  }
  const char* type = type_of(media);
  return type != nullptr ? type : kDefaultType;
}
