// Building of JSON texts; json-c does the quoting.
#include "answer/json_text.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <json-c/json.h>

#include "platform/text.h"

namespace json {
namespace {

struct Put {
  void operator()(json_object* value) const noexcept { json_object_put(value); }
};
using JsonPtr = std::unique_ptr<json_object, Put>;

// json-c writes the text as it stands.
bool is_plain(std::string_view text) {
  return std::ranges::all_of(text, [](char character) {
    return character >= ' ' && character <= '~' && character != '"' && character != '\\' && character != '/';
  });
}

// Wraps what was collected from `begin` on in place, so that a long text is never copied.
std::string enclose(std::string text, std::size_t begin, char open, std::string_view close) {
  if (text.size() == begin) {
    text += open;
  } else {
    text[begin] = open;
  }
  platform::append_sparingly(text, close);
  return text;
}

// The position behind the string that begins at `at`.
std::size_t end_of_string(std::string_view text, std::size_t at) {
  while (++at < text.size() && text[at] != '"') {
    if (text[at] == '\\') ++at;
  }
  return std::min(at + 1, text.size());
}

// Gives `put` the pieces of the text in json-c's pretty form.
template <class Put>
void print_pretty(std::string_view text, const Put& put) {
  std::size_t level = 0;
  bool begins_line = false;
  for (std::size_t at = 0; at < text.size();) {
    const char token = text[at];
    const std::size_t end = token == '"' ? end_of_string(text, at) : at + 1;
    if (token != ' ') {
      const bool closes = token == '}' || token == ']';
      if (closes) --level;
      if (closes || begins_line) put("\n" + std::string(2 * level, ' '));
      put(text.substr(at, end - at));
      const bool opens = token == '{' || token == '[';
      if (opens) ++level;
      begins_line = opens || token == ',';
    }
    at = end;
  }
}

}  // namespace

std::string quoted(std::string_view text) {
  if (is_plain(text)) return std::string(1, '"').append(text).append(1, '"');
  const std::string valid = platform::valid_utf8(text);
  const JsonPtr value(json_object_new_string_len(valid.data(), static_cast<int>(valid.size())));
  return json_object_to_json_string(value.get());
}

ObjectText& ObjectText::add(const char* key, const char* value) {
  return value == nullptr ? add_raw(key, "null") : add(key, std::string_view(value));
}

// A long list becomes the object's text where it stands, behind what was added before it.
ObjectText& ObjectText::add(const char* key, ListText value) {
  std::string list = std::move(value).text();
  add_raw(key, {});
  if (list.capacity() - list.size() >= members_.size()) {
    list.insert(0, members_);
    members_ = std::move(list);
  } else {
    platform::append_sparingly(members_, list);
  }
  return *this;
}

// Each member begins with the ',' before it; the first one's place becomes the brace.
ObjectText& ObjectText::add_raw(const char* key, std::string_view value) {
  platform::append_sparingly(members_, std::string(", ").append(quoted(key)).append(": "));
  platform::append_sparingly(members_, value);
  return *this;
}

ObjectText& ObjectText::add_list(const char* key, const std::function<void(ListText&)>& fill) {
  add_raw(key, {});
  ListText list(std::move(members_));
  fill(list);
  members_ = list.take();
  return *this;
}

std::string ObjectText::take() { return enclose(std::move(members_), 0, '{', " }"); }

ListText& ListText::add_raw(std::string_view value) {
  platform::append_sparingly(elements_, ", ");
  platform::append_sparingly(elements_, value);
  return *this;
}

std::string ListText::take() { return enclose(std::move(elements_), begin_, '[', " ]"); }

std::string pretty(std::string_view text) {
  std::string pretty;
  print_pretty(text, [&pretty](std::string_view piece) { pretty += piece; });
  return pretty;
}

std::size_t pretty_size(std::string_view text) {
  std::size_t size = 0;
  print_pretty(text, [&size](std::string_view piece) { size += piece.size(); });
  return size;
}

}  // namespace json
