// Owning JSON values, reading of requests and building of answers on json-c.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <json-c/json.h>

namespace json {

struct Put {
  void operator()(json_object* object) const noexcept { json_object_put(object); }
};
// Owner of one reference. A raw json_object* is a loan and is never freed.
using JsonPtr = std::unique_ptr<json_object, Put>;

// The value that `text` begins with, as json_tokener_parse reads it; null when it is none (or text is nullptr).
JsonPtr parse(const char* text);
// parse(), but null for anything but an object.
JsonPtr parse_object(const char* text);

// The member `key` of `object`; nullptr when missing or when `object` is no object (a JSON null is nullptr, too).
json_object* member(json_object* object, const char* key);
bool has_member(json_object* object, const char* key);

// Members as json-c converts them ("12" reads as 12, 12 as "12"); nullopt when the key is missing.
std::optional<int> int_member(json_object* object, const char* key);
std::optional<std::string> text_member(json_object* object, const char* key);
// The member when it is an array, else nullptr.
json_object* array_member(json_object* object, const char* key);

// Builders. Keys are kept in the order of the calls.
JsonPtr new_object();
JsonPtr new_array();
void add(json_object* object, const char* key, int value);
void add(json_object* object, const char* key, std::int64_t value);
void add(json_object* object, const char* key, std::string_view value);
void add(json_object* object, const char* key, const char* value);  // nullptr adds a JSON null
void add(json_object* object, const char* key, JsonPtr value);
void append(json_object* array, JsonPtr value);
JsonPtr text_value(std::string_view value);
JsonPtr int_value(int value);

// json_object_to_json_string: one line, blanks between the tokens.
std::string to_text(json_object* object);

}  // namespace json
