// Building of JSON texts, member by member: no tree stands in memory beside the text, however long a list is.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace json {

class ListText;

// A value as it stands in a document: spaced as json_object_to_json_string does, bytes that are no UTF-8 shown as
// U+FFFD.
std::string quoted(std::string_view text);

// An object: members in the order of the calls.
class ObjectText {
 public:
  ObjectText& add(const char* key, int value) { return add_raw(key, std::to_string(value)); }
  ObjectText& add(const char* key, std::int64_t value) { return add_raw(key, std::to_string(value)); }
  ObjectText& add(const char* key, std::string_view value) { return add_raw(key, json::quoted(value)); }
  ObjectText& add(const char* key, const std::string& value) { return add_raw(key, json::quoted(value)); }
  // nullptr adds a JSON null.
  ObjectText& add(const char* key, const char* value);
  ObjectText& add(const char* key, ObjectText value) { return add_raw(key, std::move(value).text()); }
  ObjectText& add(const char* key, ListText value);
  // A list whose elements `fill` adds: they are written where they stay.
  ObjectText& add_list(const char* key, const std::function<void(ListText&)>& fill);

  // Makes room for so many bytes at once: a long text that grows stands in memory twice at times.
  void reserve(std::size_t bytes) { members_.reserve(bytes); }

  // "{ "a": 1, "b": [ 1, "two" ] }", "{ }"
  [[nodiscard]] std::string text() const& { return ObjectText(*this).take(); }
  [[nodiscard]] std::string text() && { return take(); }

 private:
  std::string take();
  ObjectText& add_raw(const char* key, std::string_view value);
  std::string members_;
};

// An array.
class ListText {
 public:
  ListText() = default;
  ListText& add(int value) { return add_raw(std::to_string(value)); }
  ListText& add(std::string_view value) { return add_raw(quoted(value)); }
  ListText& add(ObjectText value) { return add_raw(std::move(value).text()); }

  void reserve(std::size_t bytes) { elements_.reserve(bytes); }

  [[nodiscard]] std::string text() const& { return ListText(*this).take(); }
  [[nodiscard]] std::string text() && { return take(); }

 private:
  friend class ObjectText;
  explicit ListText(std::string before) : elements_(std::move(before)), begin_(elements_.size()) {}
  std::string take();
  ListText& add_raw(std::string_view value);
  std::string elements_;
  std::size_t begin_ = 0;  // what stands before it is an object's
};

// {"result": N}: all that an answer tells of a reading that failed.
inline ObjectText result_text(int result) {
  ObjectText document;
  document.add("result", result);
  return document;
}

// {"result": 0, "version": 1}: what an answer to a reading begins with.
inline ObjectText success_text() {
  ObjectText document = result_text(0);
  document.add("version", 1);
  return document;
}

// What one of the builders above made, as json-c's JSON_C_TO_STRING_PRETTY would write it: for logs.
std::string pretty(std::string_view text);
// The length of that.
std::size_t pretty_size(std::string_view text);

}  // namespace json
