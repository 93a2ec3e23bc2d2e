// Finding of a package's sections by name, many times in a row.
#pragma once

#include <string_view>
#include <unordered_map>

#include "elements.h"

namespace uci {

// As find_section, the first section of a name, without a walk through the package for each. Whoever adds, renames,
// moves or frees a section of the package meanwhile says so.
class SectionIndex {
 public:
  explicit SectionIndex(uci_package& package) : package_(package) {}

  // The section, or nullptr.
  uci_section* find(const char* name);
  // The section stands at the package's end, or has its name from now on.
  void add(uci_section& section);
  // The section is about to be freed or renamed.
  void remove(const uci_section& section);
  // Which section is the first of its name may have changed.
  void forget();

 private:
  // A few walks cost less than making the index.
  static constexpr int kWalks = 16;

  void build();

  uci_package& package_;
  std::unordered_map<std::string_view, uci_section*> first_;
  bool is_built_ = false;
  bool has_namesakes_ = false;
  int walks_ = 0;
};

}  // namespace uci
