// Finding of a package's sections by name, many times in a row.
#include "section_index.h"

namespace uci {

uci_section* SectionIndex::find(const char* name) {
  if (!is_built_ && walks_++ < kWalks) return find_section(package_, name);
  if (!is_built_) build();
  const auto found = first_.find(name);
  return found != first_.end() ? found->second : nullptr;
}

void SectionIndex::add(uci_section& section) {
  if (is_built_ && !first_.try_emplace(section.e.name, &section).second) has_namesakes_ = true;
}

void SectionIndex::remove(const uci_section& section) {
  if (has_namesakes_) return forget();
  first_.erase(section.e.name);
}

void SectionIndex::forget() {
  first_.clear();
  is_built_ = false;
  has_namesakes_ = false;
}

void SectionIndex::build() {
  is_built_ = true;
  uci_element* element = nullptr;
  uci_foreach_element(&package_.sections, element) add(*uci_to_section(element));
}

}  // namespace uci
