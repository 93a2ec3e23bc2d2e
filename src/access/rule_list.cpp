// Lists of rules: reading of requests, deleting, and what ends a change.
#include "access/rule_list.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <limits>

#include "access/firewall.h"
#include "answer/answer.h"
#include "platform/log.h"
#include "platform/text.h"
#include "uci_section.h"

namespace {

bool delete_section(const uci::Section& section, platform::LogPlace place) {
  if (section.remove()) return true;
  log_error_at(place, "Failed to delete section: %s.%s\n", section.package(), section.name().c_str());
  return false;
}

// A position by its whole number, or else by the digits that its text begins with. No section has the highest number,
// which stands for all that lies beyond it.
std::optional<int> read_id(const json::Object& element, std::string_view text) {
  if (text.empty() || !platform::is_digit(text.front())) return std::nullopt;
  std::optional<int> id = element.number("id");
  if (!id) {
    id = std::numeric_limits<int>::max();
    std::from_chars(text.data(), text.data() + text.size(), *id);
  }
  return *id < std::numeric_limits<int>::max() ? id : std::nullopt;
}

}  // namespace

json::List list_of(const json::Document& request, const RuleList& rules, platform::LogPlace place) {
  const json::List list = request->list(rules.key);
  if (request && !list) log_error_at(place, "%s is NULL\n", rules.key);
  return list;
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

bool delete_positions(const RuleList& rules, std::vector<int> ids, platform::LogPlace place) {
  std::ranges::sort(ids, std::greater<>());
  const auto repeated = std::unique(ids.begin(), ids.end());
  ids.erase(repeated, ids.end());
  return std::ranges::all_of(ids, [&](int id) {
    return delete_section({rules.package, uci::position(rules.type, id)}, place);
  });
}

bool delete_listed(const char* body, const RuleList& rules, platform::LogPlace place) {
  const json::Document request = parse_object(body, kNoRules, place);
  const json::List list = list_of(request, rules, place);
  const std::optional<std::vector<int>> ids = list ? read_ids(list, rules.most_ids, place) : std::nullopt;
  return ids && delete_positions(rules, *ids, place);
}

bool delete_all(const RuleList& rules, platform::LogPlace place) {
  const std::optional<int> count = uci::count(rules.package, rules.type);
  for (int index = 0; index < count.value_or(0); ++index) {
    if (!delete_section({rules.package, uci::position(rules.type, 0)}, place)) return false;
  }
  return count.has_value();
}

int answer_change(FCGX_Request* request, bool is_done, std::string_view done) {
  answer(request, is_done ? done : answers::kUnusable);
  restart_firewall();
  return is_done ? 0 : 1;
}
