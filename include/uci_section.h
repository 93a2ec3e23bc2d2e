// A section of a UCI package, addressed once and used often.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace uci {

// "@type[index]": the address of the index-th section of a type, named or not; -1 is the last one.
std::string position(const char* type, int index);

// Works on the system's packages through the wrappers of uci_access.h, which log what fails and hold each address with
// its value to kUciAddressMax bytes. It need not exist.
class Section {
 public:
  static constexpr std::size_t kNumberSize = 16;

  // `package`: a literal, or as long-lived. `name`: the section's name or position.
  Section(const char* package, std::string name) : package_(package), name_(std::move(name)) {}

  [[nodiscard]] const char* package() const { return package_; }
  [[nodiscard]] const std::string& name() const { return name_; }

  [[nodiscard]] bool exists() const;
  // Creates it with this type, or gives it the type. False on failure.
  bool create(const char* type) const;
  // False when there is none.
  bool remove() const;

  // A plain option, cut to size - 1 bytes; nullopt when it is missing or a list.
  [[nodiscard]] std::optional<std::string> read(const char* option, std::size_t size) const;
  [[nodiscard]] std::string read_or(const char* option, std::size_t size, const char* fallback) const;
  // The option's leading integer as atoi reads it, of its first size - 1 bytes; nullopt when it is missing or a list.
  [[nodiscard]] std::optional<int> read_number(const char* option, std::size_t size = kNumberSize) const;
  // At most `max_count` elements of at most element_size bytes; nullopt when it is missing or no list.
  [[nodiscard]] std::optional<std::vector<std::string>> read_list(const char* option, std::size_t element_size,
                                                                  std::size_t max_count) const;

  // Creates or replaces; an empty value deletes the option. False on failure.
  bool set(const char* option, const std::string& value) const;
  // False when there is none.
  bool remove(const char* option) const;
  bool add_to_list(const char* option, const std::string& value) const;
  // Removes every element equal to `value`.
  bool remove_from_list(const char* option, const std::string& value) const;

 private:
  const char* package_;
  std::string name_;
};

// Appends an unnamed section, from then on reachable as position(type, -1). False on failure.
bool append(const char* package, const char* type);

// The number of sections of a type, named or not; nullopt when the package cannot be read.
std::optional<int> count(const char* package, const char* type);

// Gives the packages that were read back, after a commit of what was changed: for whoever is done with a long one.
void release();

}  // namespace uci
