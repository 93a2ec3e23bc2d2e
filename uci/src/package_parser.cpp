// The statements "package", "config", "option" and "list".
#include "package_parser.h"

#include <algorithm>
#include <array>

#include "context.h"
#include "edit.h"

namespace uci {
namespace {

bool is_alnum(char character) {
  return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
         (character >= 'A' && character <= 'Z');
}

class StatementParser {
 public:
  StatementParser(uci_context& context, std::FILE* stream, StatementSink& sink)
      : context_(context), words_(stream), sink_(sink) {}

  void parse_all() {
    while (true) {
      try {
        if (!words_.next_line()) return;
        while (words_.at_statement()) parse_statement();
      } catch (const WordError& error) {
        report(error.reason, words_.length());
      }
    }
  }

 private:
  struct Skipped {};  // a statement that was reported; the line's rest goes with it

  using Parse = void (StatementParser::*)();
  struct Keyword {
    const char* text;
    const char* unfinished;  // what is wrong when the file ends behind it
    Parse parse;
  };
  static const std::array<Keyword, 8> kKeywords;

  bool strict() const { return (context_.flags & UCI_FLAG_STRICT) != 0; }

  // Throws when strict; otherwise the rest of the statement line is skipped.
  void report(const std::string& reason, std::size_t byte) {
    if (strict()) fail_parse(context_, reason, words_.line(), byte);
    try {
      fail_parse(context_, reason, words_.line(), byte);
    } catch (const Failure&) {
      words_.skip_line();
    }
  }
  [[noreturn]] void reject(const std::string& reason, std::size_t byte) {
    report(reason, byte);
    throw Skipped{};
  }
  [[noreturn]] void reject_word(const char* reason) { reject(reason, words_.position()); }

  void parse_statement() {
    const std::string text = words_.keyword();
    if (text.empty()) return;
    try {
      for (const Keyword& keyword : kKeywords) {
        if (text != keyword.text) continue;
        if (words_.keyword_ended_file()) reject(keyword.unfinished, words_.keyword_position());
        (this->*keyword.parse)();
        return;
      }
      reject("invalid command", words_.keyword_position());
    } catch (const Skipped&) {
    }
  }

  std::string required_word() {
    std::string word = words_.word().value_or("");
    if (word.empty()) reject_word("insufficient arguments");
    return word;
  }
  std::string required_name(bool (*is_valid)(std::string_view)) {
    std::string name = required_word();
    if (!is_valid(name)) reject_word("invalid character in name field");
    return name;
  }
  void expect_end() {
    if (!words_.word().value_or("").empty() && strict()) reject_word("too many arguments");
  }

  void parse_package_line() {
    const std::string name = required_name(is_package_name);
    expect_end();
    sink_.package(name);
  }

  void parse_config() {
    const std::size_t keyword = words_.keyword_position();
    if (!sink_.has_package()) reject("attempting to import a file without a package name", keyword);
    const std::string type = required_word();
    if (!is_type(type)) reject_word("invalid character in type field");
    const std::string name = words_.optional_word().value_or("");
    if (!name.empty() && !is_name(name)) reject_word("invalid character in name field");
    expect_end();
    if (!sink_.section(type, name, strict())) {
      reject_word("section of different type overwrites prior section with same name");
    }
  }

  void parse_value(void (StatementSink::*put)(const std::string&, const std::string&)) {
    if (!sink_.has_section()) {
      reject("option/list command found before the first section", words_.keyword_position());
    }
    const std::string name = required_name(is_name);
    const std::string value = words_.optional_word().value_or("");
    expect_end();
    (sink_.*put)(name, value);
  }
  void parse_option() { parse_value(&StatementSink::option); }
  void parse_list() { parse_value(&StatementSink::list); }

  uci_context& context_;
  WordReader words_;
  StatementSink& sink_;
};

const std::array<StatementParser::Keyword, 8> StatementParser::kKeywords{{
    {"package", "package without name", &StatementParser::parse_package_line},
    {"p", "package without name", &StatementParser::parse_package_line},
    {"config", "config without name", &StatementParser::parse_config},
    {"c", "config without name", &StatementParser::parse_config},
    {"option", "option without name", &StatementParser::parse_option},
    {"o", "option without name", &StatementParser::parse_option},
    {"list", "option without name", &StatementParser::parse_list},
    {"l", "option without name", &StatementParser::parse_list},
}};

// Fills one package; "package" lines were checked and change nothing.
class PackageSink final : public FillSink {
 public:
  explicit PackageSink(uci_package& package) { fill(&package); }
  void package(const std::string&) override {}
  bool has_package() const override { return true; }
};

}  // namespace

bool is_package_name(std::string_view name) {
  return !name.empty() && std::ranges::all_of(name, [](char c) { return is_alnum(c) || c == '_' || c == '-'; });
}

bool is_name(std::string_view name) {
  return !name.empty() && std::ranges::all_of(name, [](char c) { return is_alnum(c) || c == '_'; });
}

bool is_type(std::string_view type) {
  return !type.empty() && std::ranges::all_of(type, [](char c) { return c >= 33 && c <= 126; });
}

void FillSink::fill(uci_package* package) {
  package_ = package;
  section_ = nullptr;
  sections_.clear();
}

bool FillSink::section(const std::string& type, const std::string& name, bool strict) {
  const auto existing = name.empty() ? sections_.end() : sections_.find(name);
  if (existing == sections_.end()) {
    section_ = new_section(*package_, type, name.empty() ? nullptr : name.c_str());
    sections_.emplace(section_->e.name, section_);
    return true;
  }
  uci_section& reopened = *existing->second;
  if (type != reopened.type) {
    if (strict) return false;
    replace_text(reopened.type, type);
  }
  section_ = &reopened;
  return true;
}

void FillSink::option(const std::string& name, const std::string& value) {
  if (!value.empty()) set_string(*section_, name, value);
}

void FillSink::list(const std::string& name, const std::string& value) { add_item(*section_, name, value); }

void parse_statements(uci_context& context, std::FILE* stream, StatementSink& sink) {
  StatementParser(context, stream, sink).parse_all();
}

void parse_package(uci_context& context, std::FILE* stream, uci_package& package) {
  PackageSink sink(package);
  parse_statements(context, stream, sink);
}

}  // namespace uci
