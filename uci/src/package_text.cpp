// Writing of elements as the statements that package_parser.cpp reads.
#include "package_text.h"

#include <string>

#include "text.h"

namespace uci {
namespace {

constexpr std::size_t kPieceSize = 65536;

// A type stands bare unless that would not be read back.
void append_type(std::string& text, std::string_view type) {
  if (type.find_first_of("#;'\"\\") == std::string_view::npos) {
    text += type;
  } else {
    append_quoted(text, type);
  }
}

void append_value(std::string& text, const char* keyword, const char* name, const char* value) {
  text += keyword;
  append_escaped(text, name);
  text += ' ';
  append_quoted(text, value);
  text += '\n';
}

void append_option(std::string& text, uci_option& option) {
  if (option.type == UCI_TYPE_STRING) {
    append_value(text, "\toption ", option.e.name, option.v.string);
    return;
  }
  uci_element* item = nullptr;
  uci_foreach_element(&option.v.list, item) append_value(text, "\tlist ", option.e.name, item->name);
}

void append_section(std::string& text, uci_section& section, bool with_generated_name) {
  text += "\nconfig ";
  append_type(text, section.type);
  if (!section.anonymous || with_generated_name) {
    text += ' ';
    append_quoted(text, section.e.name);
  }
  text += '\n';
  uci_element* element = nullptr;
  uci_foreach_element(&section.options, element) append_option(text, *uci_to_option(element));
}

}  // namespace

void write_package_text(const uci_package& package, bool header, const PutText& put) {
  const bool all_names = (package.ctx->flags & UCI_FLAG_EXPORT_NAME) != 0;
  std::string text;
  if (header) {
    text += "package ";
    append_escaped(text, package.e.name);
    text += '\n';
  }
  const uci_element* element = nullptr;
  uci_foreach_element(&package.sections, element) {
    append_section(text, *uci_to_section(const_cast<uci_element*>(element)), all_names);
    if (text.size() < kPieceSize) continue;
    put(text);
    text.clear();
  }
  text += '\n';
  put(text);
}

}  // namespace uci
