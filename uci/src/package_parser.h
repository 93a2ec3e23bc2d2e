// Reading of package texts into elements.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "elements.h"
#include "words.h"

namespace uci {

// Where the statements of a text go. What it throws ends the parsing.
class StatementSink {
 public:
  StatementSink() = default;
  StatementSink(const StatementSink&) = delete;
  StatementSink& operator=(const StatementSink&) = delete;
  virtual ~StatementSink() = default;
  virtual void package(const std::string& name) = 0;
  // False when there is no package to put a section into.
  virtual bool has_package() const = 0;
  virtual bool has_section() const = 0;
  // False when a section of that name and of another type exists and `strict` forbids to retype it.
  virtual bool section(const std::string& type, const std::string& name, bool strict) = 0;
  virtual void option(const std::string& name, const std::string& value) = 0;
  virtual void list(const std::string& name, const std::string& value) = 0;
};

// Fills packages: sections are reopened or made, options replaced in their place, items appended.
class FillSink : public StatementSink {
 public:
  bool has_section() const override { return section_ != nullptr; }
  bool section(const std::string& type, const std::string& name, bool strict) override;
  void option(const std::string& name, const std::string& value) override;
  void list(const std::string& name, const std::string& value) override;

 protected:
  // The package that sections go to from now on; it has none yet.
  void fill(uci_package* package);
  [[nodiscard]] uci_package* filled() const { return package_; }

 private:
  uci_package* package_ = nullptr;
  uci_section* section_ = nullptr;
  // The first section of each name, so that reading a long package takes no search per section.
  std::unordered_map<std::string_view, uci_section*> sections_;
};

// Parses all of a text. Strict: throws Failure{UCI_ERR_PARSE} at the first error. Otherwise skips what is wrong.
void parse_statements(uci_context& context, WordReader& words, StatementSink& sink);

// Puts the statements into `package`, which owns what was read even when this throws.
void parse_package(uci_context& context, WordReader& words, uci_package& package);
// Puts only the sections there, without their options: throws where parse_package would, for much less memory.
void parse_sections(uci_context& context, WordReader& words, uci_package& package);

bool is_package_name(std::string_view name);  // letters, digits, '_', '-'
bool is_name(std::string_view name);          // letters, digits, '_'; not empty
bool is_type(std::string_view type);          // bytes 33 to 126; not empty

}  // namespace uci
