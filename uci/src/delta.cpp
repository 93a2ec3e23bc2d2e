// Reading, writing and applying of change records.
#include "delta.h"

#include <cstdlib>
#include <cstring>
#include <optional>

#include "edit.h"
#include "package_parser.h"
#include "section_index.h"
#include "text.h"
#include "tuple.h"
#include "words.h"

namespace uci {
namespace {

std::optional<uci_command> command_of_letter(char letter) {
  for (int command = 0; command < __UCI_CMD_MAX; ++command) {
    if (letter != '\0' && uci_command_char[command] == letter) return static_cast<uci_command>(command);
  }
  return std::nullopt;
}

bool is_valid_record(uci_command command, const uci_ptr& ptr, std::string_view package) {
  if (package != ptr.package || ptr.section == nullptr || (ptr.flags & uci_ptr::UCI_LOOKUP_EXTENDED) != 0) return false;
  if (command == UCI_CMD_REMOVE) return true;
  if (ptr.value == nullptr) return false;
  switch (command) {
    case UCI_CMD_REORDER:
      return ptr.option == nullptr;
    case UCI_CMD_RENAME:
      return is_name(ptr.value);
    case UCI_CMD_LIST_ADD:
    case UCI_CMD_LIST_DEL:
      return ptr.option != nullptr;
    default:
      return true;
  }
}

// A line of one word: an optional letter and a tuple. `text` keeps what the record points into.
std::optional<Record> parse_record(std::string& text, std::string_view package) {
  if (text.empty()) return std::nullopt;
  const std::optional<uci_command> letter = command_of_letter(text[0]);
  const uci_command command = letter.value_or(UCI_CMD_CHANGE);
  uci_ptr ptr{};
  try {
    split_tuple(ptr, text.data() + (letter ? 1 : 0));
  } catch (const Failure&) {
    return std::nullopt;
  }
  if (!is_valid_record(command, ptr, package)) return std::nullopt;
  return Record{command, ptr.section, ptr.option, ptr.value};
}

// The functions below apply a record; false when what it names is gone.

bool remove_from_section(uci_section& section, const Record& record) {
  uci_option* option = find_option(section, record.option);
  if (option == nullptr) return false;
  const bool is_item = option->type == UCI_TYPE_LIST && record.value != nullptr && *record.value != '\0';
  if (is_item) {
    uci_element* item = item_at(*option, std::atoi(record.value));
    if (item != nullptr) free_element(item);
  } else {
    free_option(option);
  }
  return true;
}

bool rename_option(uci_section& section, const Record& record) {
  uci_option* option = find_option(section, record.option);
  if (option != nullptr) rename(*option, record.value);
  return option != nullptr;
}

bool remove_from_list(uci_section& section, const Record& record) {
  uci_option* option = find_option(section, record.option);
  if (option == nullptr || option->type != UCI_TYPE_LIST) return false;
  remove_items(*option, record.value);
  return true;
}

bool apply_to_option(uci_section& section, const Record& record) {
  switch (record.command) {
    case UCI_CMD_REMOVE:
      return remove_from_section(section, record);
    case UCI_CMD_RENAME:
      return rename_option(section, record);
    case UCI_CMD_LIST_DEL:
      return remove_from_list(section, record);
    case UCI_CMD_LIST_ADD:
      add_item(section, record.option, record.value);
      return true;
    default:
      set_string(section, record.option, record.value);
      return true;
  }
}

class Application {
 public:
  explicit Application(uci_package& package) : package_(package), sections_(package) {}

  bool apply(const Record& record) {
    const bool sets = record.command == UCI_CMD_CHANGE || record.command == UCI_CMD_ADD;
    if (sets && *record.value == '\0') return apply({UCI_CMD_REMOVE, record.section, record.option, nullptr});
    if (sets && record.option == nullptr) return set_section(record);
    uci_section* section = sections_.find(record.section);
    if (section == nullptr) return false;
    return record.option != nullptr ? apply_to_option(*section, record) : apply_to_section(*section, record);
  }

 private:
  bool set_section(const Record& record) {
    if (!is_type(record.value)) return false;
    uci_section* section = sections_.find(record.section);
    if (section == nullptr) {
      section = new_section(package_, record.value, record.section);
      sections_.add(*section);
    } else {
      set_type(*section, record.value);
    }
    if (record.command == UCI_CMD_ADD) section->anonymous = true;
    return true;
  }

  // A removal, a new name or a new place.
  bool apply_to_section(uci_section& section, const Record& record) {
    if (record.command == UCI_CMD_RENAME) return rename_section(section, record.value);
    if (record.command == UCI_CMD_REORDER) {
      move_section(section, std::atoi(record.value));
      sections_.forget();
      return true;
    }
    sections_.remove(section);
    free_section(&section);
    return true;
  }

  bool rename_section(uci_section& section, const char* name) {
    const uci_section* namesake = sections_.find(name);
    if (!may_share_name(section, namesake)) return false;
    sections_.remove(section);
    rename(section, name);
    section.anonymous = false;
    if (namesake == nullptr) {
      sections_.add(section);
    } else {
      sections_.forget();
    }
    return true;
  }

  uci_package& package_;
  SectionIndex sections_;
};

}  // namespace

std::string format_record(std::string_view package, const Record& record) {
  std::string line;
  if (const char letter = uci_command_char[record.command]; letter != '\0') line += letter;
  ((line += package) += '.') += record.section;
  if (record.option != nullptr) (line += '.') += record.option;
  if (record.value != nullptr) append_quoted(line += '=', record.value);
  return line += '\n';
}

Record record_of(const uci_delta& delta) { return {delta.cmd, delta.section, delta.e.name, delta.value}; }

void read_records(LineSource& lines, std::string_view package, const std::function<void(const Record&)>& use) {
  WordReader words(lines);
  std::string word;
  std::string extra;
  while (true) {
    try {
      if (!words.next_line()) return;
      words.read_word(word);
      words.read_word(extra);
      if (!extra.empty()) continue;
      if (const std::optional<Record> record = parse_record(word, package)) use(*record);
    } catch (const WordError&) {
      continue;  // no record either
    }
  }
}

int apply_records(LineSource& lines, uci_package& package) {
  const bool note = (package.ctx->flags & UCI_FLAG_SAVED_DELTA) != 0;
  Application application(package);
  int applied = 0;
  read_records(lines, package.e.name, [&](const Record& record) {
    if (note) append(package.saved_delta, make_delta(record.command, record.section, record.option, record.value));
    if (application.apply(record)) ++applied;
  });
  return applied;
}

}  // namespace uci

extern "C" char const uci_command_char[] = {'+', '-', '\0', '@', '^', '|', '~'};
