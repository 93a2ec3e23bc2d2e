// Walking through the sections of a package, from where the last walk ended.
#include "platform/section_cursor.h"

#include <algorithm>
#include <charconv>

#include <uci.h>

namespace platform {
namespace {

bool is_plain(char character) {
  return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9') || character == '-' ||
         character == '_';
}

// The first section of the type at or behind `node`; nullptr when there is none.
uci_section* next_of_type(uci_package& package, uci_list* node, std::string_view type) {
  for (; node != &package.sections; node = node->next) {
    uci_section* section = uci_to_section(list_to_element(node));
    if (section->type == type) return section;
  }
  return nullptr;
}

}  // namespace

std::optional<SectionPosition> SectionPosition::parse(std::string_view text) {
  const std::size_t open = text.find('[');
  if (!text.starts_with('@') || open == std::string_view::npos || !text.ends_with(']')) return std::nullopt;
  SectionPosition position{.type = text.substr(1, open - 1)};
  const std::string_view digits = text.substr(open + 1, text.size() - open - 2);
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), position.index);
  const bool is_index = error == std::errc() && end == digits.data() + digits.size() && position.index >= 0;
  if (!is_index || position.type.empty() || !std::ranges::all_of(position.type, is_plain)) return std::nullopt;
  return position;
}

uci_section* SectionCursor::find(uci_package& package, const SectionPosition& position) {
  if (package_ != &package || type_ != position.type || position.index < index_) {
    package_ = &package;
    type_ = position.type;
    index_ = 0;
    section_ = next_of_type(package, package.sections.next, type_);
  }
  while (section_ != nullptr && index_ < position.index) {
    section_ = next_of_type(package, section_->e.list.next, type_);
    ++index_;
  }
  return section_;
}

}  // namespace platform
