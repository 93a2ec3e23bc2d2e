// An index over the lines of a topology dump, made in one pass, so that every later question is a search in it.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mesh/dump_lines.h"
#include "platform/short_text.h"

// Positions of lines, ascending.
class LineNumbers {
 public:
  [[nodiscard]] const std::vector<std::size_t>& all() const { return lines_; }
  void add(std::size_t line) { lines_.push_back(line); }
  // The first position behind `line`.
  [[nodiscard]] std::optional<std::size_t> after(std::size_t line) const;

 private:
  std::vector<std::size_t> lines_;
};

// An interface row of a device: "INDEX MEDIUM MAC".
struct InterfaceRow {
  std::size_t line = 0;
  int index = 0;
  platform::ShortText<6> medium;  // "ETHER", "WLAN2G", "WLAN5G" or "WLAN6G"
  platform::ShortText<kMacLength> mac;
};

class DumpIndex {
 public:
  explicit DumpIndex(DumpLines lines);

  [[nodiscard]] const DumpLines& lines() const { return lines_; }

  // The line of the device's own header ("QCA IEEE 1905.1 device:").
  [[nodiscard]] std::optional<std::size_t> header_of(std::string_view mac) const;

  // The lines between which the device's interface rows stand; nullopt for the controller and where there is no table.
  struct Range {
    std::size_t begin = 0;  // the heading
    std::size_t end = 0;    // the line that ends the table
  };
  [[nodiscard]] std::optional<Range> interface_table(std::string_view mac) const;
  // The first row of that index in the range, which is the one that counts.
  [[nodiscard]] const InterfaceRow* interface_row(const Range& range, int index) const;
  // The first 2.4 GHz row that counts.
  [[nodiscard]] const InterfaceRow* radio_24ghz(const Range& range) const;

  // The heading of the table of direct remote connections behind a device's header.
  [[nodiscard]] std::optional<std::size_t> remote_table(std::size_t header) const;
  // The heading of the table of bridged addresses behind a device's header.
  [[nodiscard]] std::optional<std::size_t> bridge_table(std::size_t header) const;

 private:
  void add_line(std::size_t number, std::string_view line);
  void add_interface_row(std::size_t number, std::string_view line);
  void find_radios();

  DumpLines lines_;
  std::unordered_map<platform::ShortText<kMacLength>, std::size_t> headers_;
  LineNumbers upstream_none_;
  LineNumbers interface_headings_;
  LineNumbers interface_ends_;
  LineNumbers direct_remotes_;
  LineNumbers other_remotes_;
  LineNumbers remote_headings_;
  LineNumbers bridged_;
  LineNumbers bridge_headings_;
  std::vector<InterfaceRow> interfaces_;
  std::unordered_map<int, std::vector<std::size_t>> rows_of_index_;  // positions in interfaces_
  std::unordered_map<std::size_t, std::size_t> radios_24ghz_;        // positions in interfaces_, by the heading's line
};

// The text behind `mark`, up to the first of `ends` or the line's end; nullopt without `mark`.
std::optional<std::string_view> text_behind(std::string_view line, std::string_view mark, std::string_view ends);

// The line begins a device's block: a header of the daemon's own device, or of a mesh agent's.
bool is_device_header(std::string_view line);

// The MAC of a device header line ("... device: MAC, ..."); empty when it has none.
std::string header_mac(std::string_view line);
