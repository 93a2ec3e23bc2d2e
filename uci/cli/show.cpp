// What `uci` prints of elements.
#include <cstring>
#include <map>
#include <string>

#include "../src/text.h"
#include "session.h"

namespace {

void print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

std::string plain_item(const char* item) {
  return std::strpbrk(item, " \t\r\n") != nullptr ? uci::quoted(item) : std::string(item);
}

template <class Format>
std::string join(const std::string& separator, uci_option& option, Format format) {
  std::string text;
  bool first = true;
  uci_element* item = nullptr;
  uci_foreach_element(&option.v.list, item) {
    if (!first) text += separator;
    text += format(item->name);
    first = false;
  }
  return text;
}

std::string address(const char* package, const char* section, const char* option) {
  std::string text = std::string(package) + "." + section;
  return option == nullptr ? text : text + "." + option;
}

std::string change_line(const char* package, const uci_delta& delta) {
  const std::string name = address(package, delta.section, delta.e.name);
  switch (delta.cmd) {
    case UCI_CMD_REMOVE:
      return "-" + name + "\n";
    case UCI_CMD_LIST_ADD:
      return name + "+=" + uci::quoted(delta.value) + "\n";
    case UCI_CMD_LIST_DEL:
      return name + "-=" + uci::quoted(delta.value) + "\n";
    default:
      return name + "=" + uci::quoted(delta.value == nullptr ? "" : delta.value) + "\n";
  }
}

}  // namespace

void print_value(const Session& session, uci_option& option) {
  print((option.type == UCI_TYPE_STRING ? std::string(option.v.string) : join(session.separator, option, plain_item)) +
        "\n");
}

void show_option(const Session& session, const char* package, const char* section, uci_option& option) {
  const std::string value = option.type == UCI_TYPE_STRING
                                ? uci::quoted(option.v.string)
                                : join(session.separator, option, [](const char* item) { return uci::quoted(item); });
  print(address(package, section, option.e.name) + "=" + value + "\n");
}

void show_section(const Session& session, const char* package, uci_section& section, const char* name) {
  print(address(package, name, nullptr) + "=" + section.type + "\n");
  uci_element* element = nullptr;
  uci_foreach_element(&section.options, element) show_option(session, package, name, *uci_to_option(element));
}

void show_package(const Session& session, uci_package& package) {
  std::map<std::string, int> counts;
  uci_element* element = nullptr;
  uci_foreach_element(&package.sections, element) {
    uci_section& section = *uci_to_section(element);
    std::string position = "@";
    position.append(section.type).append("[").append(std::to_string(counts[section.type]++)).append("]");
    const bool by_position = section.anonymous && !session.generated_names;
    show_section(session, package.e.name, section, by_position ? position.c_str() : section.e.name);
  }
}

void show_changes(uci_package& package) {
  uci_element* element = nullptr;
  uci_foreach_element(&package.saved_delta, element) print(change_line(package.e.name, *uci_to_delta(element)));
}
