// What the lists of parental control and port forwarding share: sections that are addressed by their position.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "answer/json_reading.h"
#include "answer/read_object.h"
#include "platform/log.h"

// Of a request that names no rules.
inline constexpr BodyMessages kNoRules{
    .no_content = "data is NULL\n", .no_json = "jsonObj is NULL\n", .no_object = "jsonObj is NULL\n"};

// The `id` of every element: a number from 0, or the digits that its text begins with. nullopt when an element has
// none, or there are more than `most` elements.
std::optional<std::vector<int>> read_ids(const json::List& elements, std::size_t most,
                                         platform::LogPlace place = platform::LogPlace::here());

// Deletes the sections of these positions, each once and the last one first, so that no deletion moves one that is
// still to come. False at the first failure (logged for the caller).
bool delete_positions(const char* package, const char* type, std::vector<int> ids,
                      platform::LogPlace place = platform::LogPlace::here());

// Deletes the first section of that type, as often as there are some. False at the first failure (logged for the
// caller), or when the package cannot be read.
bool delete_all(const char* package, const char* type, platform::LogPlace place = platform::LogPlace::here());
