// Deleting of rules by their position.
#include "access/rule_list.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <limits>
#include <string_view>

#include "platform/log.h"
#include "uci_access.h"

namespace {

bool delete_section(const char* confdir, const char* package, const std::string& section,
                    platform::LogPlace place = platform::LogPlace::here()) {
  if (UciDelSection(confdir, package, section.c_str()) == 0) return true;
  log_error_at(place, "Failed to delete section: %s.%s\n", package, section.c_str());
  return false;
}

// A position by its whole number, or else by the digits that its text begins with. No section has the highest number,
// which stands for all that lies beyond it.
std::optional<int> read_id(const json::Object& element, std::string_view text) {
  if (text.empty() || text.front() < '0' || text.front() > '9') return std::nullopt;
  std::optional<int> id = element.number("id");
  if (!id) {
    id = std::numeric_limits<int>::max();
    std::from_chars(text.data(), text.data() + text.size(), *id);
  }
  return *id < std::numeric_limits<int>::max() ? id : std::nullopt;
}

}  // namespace

std::string position_of(const char* type, int index) {
  return std::string("@") + type + "[" + std::to_string(index) + "]";
}

std::optional<std::vector<int>> read_ids(const json::List& elements, std::size_t most, platform::LogPlace place) {
  if (elements.size() > most) return std::nullopt;
  std::vector<int> ids;
  for (const json::Object element : elements) {
    const std::optional<std::string> text = element.text("id");
    if (text) log_error_at(place, "id: %s\n", text->c_str());
    const std::optional<int> id = read_id(element, text.value_or(""));
    if (!id) return std::nullopt;
    ids.push_back(*id);
  }
  return ids;
}

bool delete_positions(const char* package, const char* type, std::vector<int> ids) {
  std::ranges::sort(ids, std::greater<>());
  const auto repeated = std::ranges::unique(ids);
  ids.erase(repeated.begin(), repeated.end());
  const platform::LogPlace place = platform::LogPlace::here();
  return std::ranges::all_of(
      ids, [&](int id) { return delete_section("/etc/config/", package, position_of(type, id), place); });
}

bool delete_all(const char* confdir, const char* package, const char* type) {
  const int count = uci_count_sections(package, type);
  for (int index = 0; index < count; ++index) {
    if (!delete_section(confdir, package, position_of(type, 0))) return false;
  }
  return count >= 0;
}
