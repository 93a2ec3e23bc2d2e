// The lines of a topology dump: what they tell, without the blanks of its long tables.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::size_t kMacLength = 17;
inline constexpr std::size_t kDumpLineMax = 1023;  // longer lines are cut

class DumpLines {
 public:
  DumpLines() = default;
  // All lines of a dump.
  explicit DumpLines(std::string_view dump);

  // Without its line feed. The row of a bridged address is kept with single blanks: there are two or more of them for
  // each station, and nobody who reads one counts its blanks.
  void add(std::string_view line);

  [[nodiscard]] std::size_t size() const { return ends_.size(); }
  [[nodiscard]] bool empty() const { return ends_.empty(); }
  // Valid until a line is added.
  std::string_view operator[](std::size_t number) const;

 private:
  std::string text_;                 // of all lines, one behind the other
  std::vector<std::uint32_t> ends_;  // of each line
};
