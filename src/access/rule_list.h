// What parental control and port forwarding share: lists of sections that are addressed by their position.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fcgiapp.h>

#include "answer/json_reading.h"
#include "answer/read_object.h"
#include "platform/log.h"

// Of a request that names no rules.
inline constexpr BodyMessages kNoRules{
    .no_content = "data is NULL\n", .no_json = "jsonObj is NULL\n", .no_object = "jsonObj is NULL\n"};

struct RuleList {
  const char* key;  // the list's in a request
  const char* package;
  const char* type;  // of its sections
  std::size_t most_ids;
};

// The list that a request holds. None when there is none, which is logged, and when the request is none.
json::List list_of(const json::Document& request, const RuleList& rules,
                   platform::LogPlace place = platform::LogPlace::here());

// The `id` of every element: a number from 0, or the digits that its text begins with. nullopt when an element has
// none, or there are more than `most` elements.
std::optional<std::vector<int>> read_ids(const json::List& elements, std::size_t most,
                                         platform::LogPlace place = platform::LogPlace::here());

// Deletes the sections of these positions, each once and the last one first, so that no deletion moves one that is
// still to come. False at the first failure (logged for the caller).
bool delete_positions(const RuleList& rules, std::vector<int> ids,
                      platform::LogPlace place = platform::LogPlace::here());

// Deletes the rules whose positions `body` lists. False on failure; what was deleted until then is gone.
bool delete_listed(const char* body, const RuleList& rules, platform::LogPlace place = platform::LogPlace::here());

// Deletes the first section of that type, as often as there are some. False at the first failure (logged for the
// caller), or when the package cannot be read.
bool delete_all(const RuleList& rules, platform::LogPlace place = platform::LogPlace::here());

// Answers with `done`, or that the request could not be used; then the firewall is restarted, after a failure, too: the
// list may be half written. 0, or 1 for a failure.
int answer_change(FCGX_Request* request, bool is_done, std::string_view done);
