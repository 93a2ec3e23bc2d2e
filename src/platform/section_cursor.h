// Finding of the sections of a loaded package by position, one after another.
#pragma once

#include <optional>
#include <string>
#include <string_view>

struct uci_package;
struct uci_section;

namespace platform {

// "@type[index]" with a plain type and an index from 0.
struct SectionPosition {
  std::string_view type;
  int index = 0;

  // nullopt for any other text, which may name a section all the same.
  static std::optional<SectionPosition> parse(std::string_view text);
};

// libuci walks through the package for each position; a list that is read to its end costs one walk here.
class SectionCursor {
 public:
  // The section of that position, counted as libuci does; nullptr when there is none.
  uci_section* find(uci_package& package, const SectionPosition& position);
  // To be told when a package was changed or given back.
  void forget() { package_ = nullptr; }

 private:
  // Where the last search ended.
  const uci_package* package_ = nullptr;
  std::string type_;
  int index_ = 0;
  uci_section* section_ = nullptr;
};

}  // namespace platform
