// The statements "package", "config", "option" and "list".
#include "package_parser.h"

#include <algorithm>
#include <array>

#include "context.h"
#include "edit.h"

namespace uci {
namespace {

constexpr std::array<bool, 256> kNameBytes = [] {
  std::array<bool, 256> table{};
  for (const char character : std::string_view("0123456789_ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"))
    table[static_cast<unsigned char>(character)] = true;
  return table;
}();

bool is_name_byte(char character) { return kNameBytes[static_cast<unsigned char>(character)]; }

class StatementParser {
 public:
  StatementParser(uci_context& context, WordReader& words, StatementSink& sink)
      : context_(context), words_(words), sink_(sink) {}

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
    std::string_view text;
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
    const std::string_view text = words_.keyword();
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

  void read_required(std::string& word) {
    words_.read_word(word);
    if (word.empty()) reject_word("insufficient arguments");
  }
  void read_name(bool (*is_valid)(std::string_view)) {
    read_required(name_);
    if (!is_valid(name_)) reject_word("invalid character in name field");
  }
  void expect_end() {
    words_.read_word(extra_);
    if (!extra_.empty() && strict()) reject_word("too many arguments");
  }

  void parse_package_line() {
    read_name(is_package_name);
    expect_end();
    sink_.package(name_);
  }

  void parse_config() {
    const std::size_t keyword = words_.keyword_position();
    if (!sink_.has_package()) reject("attempting to import a file without a package name", keyword);
    read_required(value_);
    if (!is_type(value_)) reject_word("invalid character in type field");
    words_.read_optional_word(name_);
    if (!name_.empty() && !is_name(name_)) reject_word("invalid character in name field");
    expect_end();
    if (!sink_.section(value_, name_, strict())) {
      reject_word("section of different type overwrites prior section with same name");
    }
  }

  void parse_value(void (StatementSink::*put)(const std::string&, const std::string&)) {
    if (!sink_.has_section()) {
      reject("option/list command found before the first section", words_.keyword_position());
    }
    read_name(is_name);
    words_.read_optional_word(value_);
    expect_end();
    (sink_.*put)(name_, value_);
  }
  void parse_option() { parse_value(&StatementSink::option); }
  void parse_list() { parse_value(&StatementSink::list); }

  uci_context& context_;
  WordReader& words_;
  StatementSink& sink_;
  // The words of the statement that is being read, whose memory the next one uses again.
  std::string name_;
  std::string value_;  // or a section's type
  std::string extra_;
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
class PackageSink : public FillSink {
 public:
  explicit PackageSink(uci_package& package) { fill(&package); }
  void package(const std::string&) override {}
  bool has_package() const override { return true; }
};

class SectionsSink final : public PackageSink {
 public:
  using PackageSink::PackageSink;
  void option(const std::string&, const std::string&) override {}
  void list(const std::string&, const std::string&) override {}
};

}  // namespace

bool is_package_name(std::string_view name) {
  return !name.empty() && std::ranges::all_of(name, [](char c) { return is_name_byte(c) || c == '-'; });
}

bool is_name(std::string_view name) { return !name.empty() && std::ranges::all_of(name, is_name_byte); }

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
    retype(reopened, type);
  }
  section_ = &reopened;
  return true;
}

void FillSink::option(const std::string& name, const std::string& value) {
  if (!value.empty()) set_string(*section_, name.c_str(), value);
}

void FillSink::list(const std::string& name, const std::string& value) { add_item(*section_, name.c_str(), value); }

void parse_statements(uci_context& context, WordReader& words, StatementSink& sink) {
  StatementParser(context, words, sink).parse_all();
}

void parse_package(uci_context& context, WordReader& words, uci_package& package) {
  PackageSink sink(package);
  parse_statements(context, words, sink);
}

void parse_sections(uci_context& context, WordReader& words, uci_package& package) {
  SectionsSink sink(package);
  parse_statements(context, words, sink);
}

}  // namespace uci
