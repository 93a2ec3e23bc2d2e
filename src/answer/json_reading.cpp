// Reading of JSON on json-c, whose own conversions turn null, "abc", [] and {} into 0.
#include "answer/json_reading.h"

#include <cmath>
#include <cstring>
#include <new>

#include <json-c/json.h>

#include "platform/text.h"

namespace json {
namespace {

json_object* member_of(json_object* object, const char* key) {
  json_object* value = nullptr;
  if (object != nullptr) json_object_object_get_ex(object, key, &value);
  return value;
}

std::optional<int> number_of(json_object* value) {
  switch (json_object_get_type(value)) {
    case json_type_boolean:
    case json_type_int:
      return json_object_get_int(value);
    case json_type_double: {
      const double number = json_object_get_double(value);
      if (!std::isfinite(number) || number != std::trunc(number)) return std::nullopt;
      return json_object_get_int(value);
    }
    case json_type_string: {
      int number = 0;
      const std::string_view text(json_object_get_string(value),
                                  static_cast<std::size_t>(json_object_get_string_len(value)));
      return platform::parse_decimal(text, number) ? std::optional(number) : std::nullopt;
    }
    default:
      return std::nullopt;
  }
}

bool is_scalar(json_object* value) {
  const json_type type = json_object_get_type(value);
  return type == json_type_boolean || type == json_type_int || type == json_type_double || type == json_type_string;
}

// Of two readings of one text. Not a number is not equal to itself: then their texts tell.
bool is_same(json_object* first, json_object* second) {
  if (json_object_equal(first, second) != 0) return true;
  const char* const first_text = json_object_to_json_string(first);
  const char* const second_text = json_object_to_json_string(second);
  return first_text != nullptr && second_text != nullptr && std::strcmp(first_text, second_text) == 0;
}

}  // namespace

Object::Object(json_object* value) : value_(json_object_is_type(value, json_type_object) != 0 ? value : nullptr) {}

std::optional<int> Object::number(const char* key) const { return number_of(member_of(value_, key)); }

std::optional<std::string> Object::text(const char* key) const {
  json_object* value = member_of(value_, key);
  if (!is_scalar(value) || json_object_is_type(value, json_type_boolean) != 0) return std::nullopt;
  return json_object_get_string(value);
}

std::optional<bool> Object::flag(const char* key) const {
  const std::optional<int> value = number(key);
  return value && (*value == 0 || *value == 1) ? std::optional(*value == 1) : std::nullopt;
}

Object Object::object(const char* key) const { return Object(member_of(value_, key)); }

List Object::list(const char* key) const { return List(member_of(value_, key)); }

bool Object::has(const char* key) const { return is_scalar(member_of(value_, key)); }

bool Object::has_any(const char* key) const { return member_of(value_, key) != nullptr; }

List::List(json_object* value) : array_(json_object_is_type(value, json_type_array) != 0 ? value : nullptr) {}

std::size_t List::size() const { return array_ == nullptr ? 0 : json_object_array_length(array_); }

Object List::at(std::size_t index) const {
  return index < size() ? Object(json_object_array_get_idx(array_, index)) : Object();
}

bool List::holds_objects_alone() const {
  for (const Object element : *this) {
    if (!element) return false;
  }
  return true;
}

void Document::Put::operator()(json_object* value) const noexcept { json_object_put(value); }

Document::Document(const char* text) : value_(text == nullptr ? nullptr : json_tokener_parse(text)) {
  constexpr std::size_t kReadTwice = 65536;  // the second takes as much memory as the first: more would be much
  if (value_ && std::strlen(text) <= kReadTwice) {
    const Value again(json_tokener_parse(text));
    if (!is_same(value_.get(), again.get())) throw std::bad_alloc();
  }
  root_ = Object(value_.get());
}

}  // namespace json
