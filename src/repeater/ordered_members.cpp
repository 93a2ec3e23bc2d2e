// The members of an answer's object while they are collected.
#include "repeater/ordered_members.h"

#include <algorithm>

OrderedMembers::Members::const_iterator OrderedMembers::find(std::string_view key) const {
  return std::find_if(members_.begin(), members_.end(), [key](const auto& member) { return member.first == key; });
}

void OrderedMembers::set(const char* key, Value value) {
  const auto known = find(key);
  if (known == members_.end()) {
    members_.emplace_back(key, std::move(value));
  } else {
    members_[static_cast<std::size_t>(known - members_.begin())].second = std::move(value);
  }
}

json::ObjectText OrderedMembers::text() const {
  json::ObjectText object;
  for (const auto& [key, value] : members_) {
    std::visit([&object, name = key](const auto& shown) { object.add(name, shown); }, value);
  }
  return object;
}
