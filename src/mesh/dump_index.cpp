// The one pass over a dump.
#include "mesh/dump_index.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>
#include <utility>

#include "platform/text.h"

namespace {

constexpr std::array<std::string_view, 4> kMediums{"ETHER", "WLAN2G", "WLAN5G", "WLAN6G"};

bool ends_interface_table(std::string_view line) {
  const std::size_t bridged = line.find("Bridged addresses:");
  return bridged != std::string_view::npos && std::ranges::any_of(line.substr(0, bridged), platform::is_digit);
}

// Without every "(...)".
std::string without_brackets(std::string_view line) {
  std::string text;
  while (true) {
    const std::size_t open = line.find('(');
    const std::size_t close = open == std::string_view::npos ? open : line.find(')', open);
    text += line.substr(0, close == std::string_view::npos ? close : open);
    if (close == std::string_view::npos) return text;
    line.remove_prefix(close + 1);
  }
}

}  // namespace

std::optional<std::string_view> text_behind(std::string_view line, std::string_view mark, std::string_view ends) {
  const std::optional<std::string_view> rest = platform::behind(line, mark);
  return rest ? std::optional(rest->substr(0, rest->find_first_of(ends))) : std::nullopt;
}

bool is_device_header(std::string_view line) {
  return (platform::holds(line, "QCA IEEE 1905.1 device:") && platform::holds(line, "IPv4 address:")) ||
         (platform::holds(line, "IEEE 1905.1 device:") && platform::holds(line, "MAP Agent"));
}

std::string header_mac(std::string_view line) {
  const std::size_t mark = line.find("device: ");
  if (mark == std::string_view::npos) return {};
  line.remove_prefix(mark + std::string_view("device: ").size());
  const std::size_t comma = line.find(',');
  return comma > kMacLength ? std::string() : std::string(line.substr(0, comma));  // none at all is npos
}

std::optional<std::size_t> LineNumbers::after(std::size_t line) const {
  const auto next = std::ranges::upper_bound(lines_, line);
  return next == lines_.end() ? std::nullopt : std::optional(*next);
}

DumpIndex::DumpIndex(DumpLines lines) : lines_(std::move(lines)) {
  for (std::size_t number = 0; number < lines_.size(); ++number) add_line(number, lines_[number]);
  find_radios();
}

void DumpIndex::add_line(std::size_t number, std::string_view line) {
  if (platform::holds(line, "QCA IEEE 1905.1 device:")) headers_.emplace(header_mac(line), number);
  if (platform::holds(line, "Upstream Device: None")) upstream_none_.add(number);
  if (platform::holds(line, "Index") && platform::holds(line, "Medium Type")) interface_headings_.add(number);
  if (ends_interface_table(line)) interface_ends_.add(number);
  if (platform::holds(line, "Remote connections (Directly connected to self)")) direct_remotes_.add(number);
  if (platform::holds(line, "Remote connections (Not directly connected to self)")) other_remotes_.add(number);
  if (platform::holds(line, "Interface name   Medium Type  MAC Address") && platform::holds(line, "MID"))
    remote_headings_.add(number);
  if (platform::holds(line, "Bridged addresses:")) bridged_.add(number);
  if (platform::holds(line, "Address") && platform::holds(line, "Interface Type")) bridge_headings_.add(number);
  add_interface_row(number, line);
}

void DumpIndex::add_interface_row(std::size_t number, std::string_view line) {
  const std::string_view row_text = platform::trim_start(line);
  if (row_text.empty() || !platform::is_digit(row_text.front())) return;
  InterfaceRow row;
  row.line = number;
  std::array<char, 32> medium{};
  std::array<char, kMacLength + 1> mac{};
  if (std::sscanf(without_brackets(line).c_str(), "%9d %31s %17s", &row.index, medium.data(), mac.data()) != 3) return;
  if (std::ranges::find(kMediums, std::string_view(medium.data())) == kMediums.end()) return;
  row.medium = medium.data();
  row.mac = mac.data();
  rows_of_index_[row.index].push_back(interfaces_.size());
  interfaces_.push_back(row);
}

std::optional<std::size_t> DumpIndex::header_of(std::string_view mac) const {
  const auto found = headers_.find(mac);
  return found == headers_.end() || mac.empty() || mac.size() > kMacLength ? std::nullopt
                                                                           : std::optional(found->second);
}

std::optional<DumpIndex::Range> DumpIndex::interface_table(std::string_view mac) const {
  const std::optional<std::size_t> header = header_of(mac);
  if (!header) return std::nullopt;
  const std::optional<std::size_t> heading = interface_headings_.after(*header);
  if (!heading) return std::nullopt;
  const std::size_t end = interface_ends_.after(*heading).value_or(lines_.size());
  const std::optional<std::size_t> none = upstream_none_.after(*header);
  if (none && *none < end) return std::nullopt;
  return Range{*heading, end};
}

const InterfaceRow* DumpIndex::interface_row(const Range& range, int index) const {
  const auto rows = rows_of_index_.find(index);
  if (rows == rows_of_index_.end()) return nullptr;
  const auto first = std::ranges::upper_bound(rows->second, range.begin, {},
                                              [this](std::size_t position) { return interfaces_[position].line; });
  return first == rows->second.end() || interfaces_[*first].line >= range.end ? nullptr : &interfaces_[*first];
}

const InterfaceRow* DumpIndex::radio_24ghz(const Range& range) const {
  const auto found = radios_24ghz_.find(range.begin);
  if (found == radios_24ghz_.end() || interfaces_[found->second].line >= range.end) return nullptr;
  return &interfaces_[found->second];
}

// From the last line to the first, so that tables that share their rows cost no more than others: the rows that count
// behind a line are those that are the first of their index.
void DumpIndex::find_radios() {
  std::unordered_map<int, std::size_t> first_of_index;
  std::set<std::size_t> radios;
  std::size_t row = interfaces_.size();
  const std::vector<std::size_t>& headings = interface_headings_.all();
  for (auto heading = headings.rbegin(); heading != headings.rend(); ++heading) {
    for (; row > 0 && interfaces_[row - 1].line > *heading; --row) {
      const InterfaceRow& interface = interfaces_[row - 1];
      const auto [first, is_new] = first_of_index.try_emplace(interface.index, row - 1);
      if (!is_new) radios.erase(std::exchange(first->second, row - 1));
      if (interface.medium == "WLAN2G") radios.insert(row - 1);
    }
    if (!radios.empty()) radios_24ghz_.emplace(*heading, *radios.begin());
  }
}

std::optional<std::size_t> DumpIndex::remote_table(std::size_t header) const {
  const std::optional<std::size_t> direct = direct_remotes_.after(header);
  if (!direct) return std::nullopt;
  const std::optional<std::size_t> heading = remote_headings_.after(*direct);
  const std::optional<std::size_t> stop = other_remotes_.after(header);
  if (!heading || (stop && *stop < *heading)) return std::nullopt;
  return heading;
}

std::optional<std::size_t> DumpIndex::bridge_table(std::size_t header) const {
  const std::optional<std::size_t> bridged = bridged_.after(header);
  return bridged ? bridge_headings_.after(*bridged) : std::nullopt;
}
