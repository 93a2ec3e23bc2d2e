// Sections by the wrappers of the UCI access layer.
#include "uci_section.h"

#include <cstdlib>

#include "platform/uci_session.h"
#include "uci_access.h"

namespace uci {

std::string position(const char* type, int index) {
  return std::string("@") + type + "[" + std::to_string(index) + "]";
}

bool Section::exists() const { return UciCheckSection(nullptr, package_, name_.c_str()) == 0; }

bool Section::create(const char* type) const { return UciCreatSection(nullptr, package_, type, name_.c_str()) == 0; }

bool Section::remove() const { return UciDelSection(nullptr, package_, name_.c_str()) == 0; }

std::optional<std::string> Section::read(const char* option, std::size_t size) const {
  return uci_read(package_, name_.c_str(), option, size);
}

std::string Section::read_or(const char* option, std::size_t size, const char* fallback) const {
  return uci_read_or(package_, name_.c_str(), option, size, fallback);
}

std::optional<int> Section::read_number(const char* option, std::size_t size) const {
  const std::optional<std::string> text = read(option, size);
  return text ? std::optional(std::atoi(text->c_str())) : std::nullopt;
}

std::optional<std::vector<std::string>> Section::read_list(const char* option, std::size_t element_size,
                                                           std::size_t max_count) const {
  return uci_read_list(package_, name_.c_str(), option, element_size, max_count);
}

bool Section::set(const char* option, const std::string& value) const {
  return UciSetOption(nullptr, package_, name_.c_str(), option, value.c_str()) == 0;
}

bool Section::remove(const char* option) const { return UciDelOption(nullptr, package_, name_.c_str(), option) == 0; }

bool Section::add_to_list(const char* option, const std::string& value) const {
  return UciAddList(nullptr, package_, name_.c_str(), option, value.c_str()) == 0;
}

bool Section::remove_from_list(const char* option, const std::string& value) const {
  return UciDelList(nullptr, package_, name_.c_str(), option, value.c_str()) == 0;
}

bool append(const char* package, const char* type) { return UciCreateAnonymousSection(nullptr, package, type) == 0; }

std::optional<int> count(const char* package, const char* type) { return uci_count_sections(package, type); }

void release() { platform::release_uci(); }

}  // namespace uci
