// Deleting of rules by their position.
#include "access/rule_list.h"

#include <algorithm>
#include <cstdlib>
#include <functional>

#include "platform/log.h"
#include "uci_access.h"

namespace {

bool delete_section(const char* confdir, const char* package, const std::string& section) {
  if (UciDelSection(confdir, package, section.c_str()) == 0) return true;
  log_error("Failed to delete section: %s.%s\n", package, section.c_str());
  return false;
}

}  // namespace

std::string position_of(const char* type, int index) {
  return std::string("@") + type + "[" + std::to_string(index) + "]";
}

std::optional<std::vector<int>> read_ids(json_object* array, std::size_t most) {
  const std::size_t count = json_object_array_length(array);
  if (count > most) return std::nullopt;
  std::vector<int> ids;
  for (std::size_t index = 0; index < count; ++index) {
    json_object* element = json_object_array_get_idx(array, index);
    if (json::member(element, "id") == nullptr) return std::nullopt;  // a null is no position, not position 0
    const std::string id = json::text_member(element, "id").value_or("");
    log_error("id: %s\n", id.c_str());
    ids.push_back(std::atoi(id.c_str()));
  }
  return ids;
}

bool delete_positions(const char* package, const char* type, std::vector<int> ids) {
  std::ranges::sort(ids, std::greater<>());
  return std::ranges::all_of(ids,
                             [&](int id) { return delete_section("/etc/config/", package, position_of(type, id)); });
}

bool delete_all(const char* confdir, const char* package, const char* type) {
  const int count = uci_count_sections(package, type);
  for (int index = 0; index < count; ++index) {
    if (!delete_section(confdir, package, position_of(type, 0))) return false;
  }
  return count >= 0;
}
