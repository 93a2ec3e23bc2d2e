// The members of an answer's object while they are collected, in the order in which they were first set.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "answer/json_text.h"

class OrderedMembers {
 public:
  using Value = std::variant<int, std::string>;

  // A later value takes the place of an earlier one. `key` is a literal.
  void set(const char* key, Value value);
  [[nodiscard]] bool has(std::string_view key) const { return find(key) != members_.end(); }
  [[nodiscard]] json::ObjectText text() const;

 private:
  using Members = std::vector<std::pair<const char*, Value>>;
  [[nodiscard]] Members::const_iterator find(std::string_view key) const;
  Members members_;
};
