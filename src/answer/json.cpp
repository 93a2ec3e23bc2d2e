// Thin owners over json-c.
#include "answer/json.h"

namespace json {

JsonPtr parse(const char* text) { return JsonPtr(text == nullptr ? nullptr : json_tokener_parse(text)); }

JsonPtr parse_object(const char* text) {
  JsonPtr value = parse(text);
  if (!json_object_is_type(value.get(), json_type_object)) return nullptr;
  return value;
}

bool has_member(json_object* object, const char* key) {
  return json_object_is_type(object, json_type_object) && json_object_object_get_ex(object, key, nullptr) != 0;
}

json_object* member(json_object* object, const char* key) {
  json_object* value = nullptr;
  if (json_object_is_type(object, json_type_object)) json_object_object_get_ex(object, key, &value);
  return value;
}

std::optional<int> int_member(json_object* object, const char* key) {
  if (!has_member(object, key)) return std::nullopt;
  return json_object_get_int(member(object, key));
}

std::optional<std::string> text_member(json_object* object, const char* key) {
  if (!has_member(object, key)) return std::nullopt;
  const char* text = json_object_get_string(member(object, key));
  return std::string(text == nullptr ? "" : text);
}

json_object* array_member(json_object* object, const char* key) {
  json_object* value = member(object, key);
  return json_object_is_type(value, json_type_array) ? value : nullptr;
}

JsonPtr new_object() { return JsonPtr(json_object_new_object()); }
JsonPtr new_array() { return JsonPtr(json_object_new_array()); }
JsonPtr int_value(int value) { return JsonPtr(json_object_new_int(value)); }
JsonPtr text_value(std::string_view value) {
  return JsonPtr(json_object_new_string_len(value.data(), static_cast<int>(value.size())));
}

void add(json_object* object, const char* key, JsonPtr value) { json_object_object_add(object, key, value.release()); }
void add(json_object* object, const char* key, int value) { add(object, key, int_value(value)); }
void add(json_object* object, const char* key, std::int64_t value) {
  add(object, key, JsonPtr(json_object_new_int64(value)));
}
void add(json_object* object, const char* key, std::string_view value) { add(object, key, text_value(value)); }
void add(json_object* object, const char* key, const char* value) {
  add(object, key, value == nullptr ? JsonPtr() : text_value(value));
}

void append(json_object* array, JsonPtr value) { json_object_array_add(array, value.release()); }

std::string to_text(json_object* object) { return json_object_to_json_string(object); }

}  // namespace json
