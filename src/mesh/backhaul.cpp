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

constexpr std::string_view kWordEnds = " \t\r";

std::string_view first_word(std::string_view line) {
  return platform::take_word(line, kWordEnds).substr(0, kMacLength);
}

// The index of a row of bridged addresses; nullopt for a line that is none.
std::optional<int> bridge_index(std::string_view line) {
  if (!platform::holds(line, "Remote")) return std::nullopt;
  std::array<char, kMacLength + 1> mac{};
  int index = 0;
  if (std::sscanf(std::string(line).c_str(), "%17s %9d", mac.data(), &index) < 2) return std::nullopt;
  return index;
}

}  // namespace

int connection_type_code(std::string_view connection_type) {
  const auto* row = std::ranges::find(kTypeCodes, connection_type, &TypeCode::text);
  return row == kTypeCodes.end() ? kOtherTypeCode : row->code;
}

BackhaulReader::BackhaulReader(const DumpIndex& index, std::function<int()> mesh_mode)
    : index_(index), mesh_mode_(std::move(mesh_mode)) {}

std::string BackhaulReader::get_backhaul_type_from_remote(std::string_view device_mac) {
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

const BackhaulReader::BridgeTable& BackhaulReader::bridge_table(std::size_t heading) {
  const auto known = bridge_tables_.find(heading);
  if (known != bridge_tables_.end()) return known->second;
  return bridge_tables_.emplace(heading, read_bridge_table(heading)).first->second;
}

BackhaulReader::BridgeTable BackhaulReader::read_bridge_table(std::size_t heading) const {
  const DumpLines& lines = index_.lines();
  BridgeTable table;
  for (std::size_t number = heading + 1; number < lines.size(); ++number) {
    const std::string_view line = lines[number];
    if (line.empty() || platform::holds(line, "Address")) break;
    const std::optional<int> index = bridge_index(line);
    if (!index) continue;
    table.lines.push_back(static_cast<std::uint32_t>(number));
    const std::vector<std::string_view> words = platform::pieces(line, kWordEnds);
    for (std::size_t word = 1; word < words.size(); ++word) {
      std::vector<BridgeRow>& rows = table.by_other_word[std::string(words[word].substr(0, kMacLength))];
      if (rows.size() < kMostIndices) rows.push_back({number, *index});
    }
  }
  sort_by_first_word(table.lines);
  return table;
}

void BackhaulReader::sort_by_first_word(std::vector<std::uint32_t>& numbers) const {
  std::vector<std::pair<std::string_view, std::uint32_t>> rows;
  rows.reserve(numbers.size());
  for (const std::uint32_t number : numbers) rows.emplace_back(first_word(index_.lines()[number]), number);
  std::ranges::sort(rows);  // numbers of the same word stay in their order
  std::ranges::transform(rows, numbers.begin(), [](const auto& row) { return row.second; });
}

std::vector<int> BackhaulReader::indices_of(const BridgeTable& table, std::string_view text) const {
  const auto word = [this](std::uint32_t line) { return first_word(index_.lines()[line]); };
  std::vector<BridgeRow> rows;
  for (auto at = std::ranges::lower_bound(table.lines, text, {}, word);
       at != table.lines.end() && word(*at) == text && rows.size() < kMostIndices; ++at) {
    rows.push_back({*at, bridge_index(index_.lines()[*at]).value_or(0)});
  }
  if (const auto others = table.by_other_word.find(std::string(text)); others != table.by_other_word.end()) {
    rows.insert(rows.end(), others->second.begin(), others->second.end());
    std::ranges::stable_sort(rows, {}, &BridgeRow::line);
  }
  std::vector<int> indices;
  for (std::size_t row = 0; row < std::min(rows.size(), kMostIndices); ++row) indices.push_back(rows[row].index);
  return indices;
}

std::string BackhaulReader::get_backhaul_type_via_bridge(std::string_view owner_mac, std::string_view target_mac,
                                                         std::string* interface_mac) {
  const std::optional<std::size_t> header = index_.header_of(owner_mac);
  const std::optional<std::size_t> heading = header ? index_.bridge_table(*header) : std::nullopt;
  const std::vector<int> indices = heading ? indices_of(bridge_table(*heading), target_mac) : std::vector<int>();
  if (indices.empty()) return get_backhaul_type_from_remote(target_mac);

  unsigned int media = 0;
  const std::optional<DumpIndex::Range> table = index_.interface_table(owner_mac);
  for (const int index : indices) {
    const InterfaceRow* row = table ? index_.interface_row(*table, index) : nullptr;
    if (row == nullptr) continue;
    media |= std::ranges::find(kMediumNames, row->medium.view(), &MediumName::name)->medium;
    if (interface_mac != nullptr && interface_mac->empty()) *interface_mac = row->mac.view();
  }
  const char* type = type_of(media);
  return type != nullptr ? type : kDefaultType;
}
