// Reading of what clients and tools send: one rule for the types of members, for every route.
//
// - A document that is no object is no document.
// - A member that is null is missing, and so is one of another kind than the one that is asked for.
// - A number may be an integer, a whole fraction (1.0), a boolean (0, 1), or a text that is wholly a decimal integer.
//   What lies beyond `int` counts as its nearest bound.
// - A text may be a text or a number, whose text it then is. It ends at its first NUL.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

struct json_object;

namespace json {

class List;

// A loan of an object inside a document, valid as long as the document; cheap to copy. One that is none has no members.
class Object {
 public:
  Object() = default;
  explicit Object(json_object* value);

  // It is an object, however empty.
  explicit operator bool() const { return value_ != nullptr; }

  [[nodiscard]] std::optional<int> number(const char* key) const;
  [[nodiscard]] std::optional<std::string> text(const char* key) const;
  // The member as a truth value: a boolean, or the number 0 or 1. nullopt for anything else.
  [[nodiscard]] std::optional<bool> flag(const char* key) const;
  // The member when it is an object, else none.
  [[nodiscard]] Object object(const char* key) const;
  // The member when it is an array, else none.
  [[nodiscard]] List list(const char* key) const;

  // There is a member that is a number, a text or a boolean.
  [[nodiscard]] bool has(const char* key) const;
  // There is a member of any kind but null.
  [[nodiscard]] bool has_any(const char* key) const;

 private:
  json_object* value_ = nullptr;
};

// A loan of an array inside a document; one that is none has no elements.
class List {
 public:
  List() = default;
  explicit List(json_object* value);

  // It is an array, however empty.
  explicit operator bool() const { return array_ != nullptr; }

  [[nodiscard]] std::size_t size() const;
  // The element when it is an object, else none.
  [[nodiscard]] Object at(std::size_t index) const;
  // Every element is an object: what any list of this interface must be.
  [[nodiscard]] bool holds_objects_alone() const;

  class Iterator {
   public:
    Iterator(json_object* list, std::size_t index) : list_(list), index_(index) {}
    Object operator*() const { return List(list_).at(index_); }
    Iterator& operator++() {
      ++index_;
      return *this;
    }
    bool operator!=(const Iterator& other) const { return index_ != other.index_; }

   private:
    json_object* list_;
    std::size_t index_;
  };
  [[nodiscard]] Iterator begin() const { return {array_, 0}; }
  [[nodiscard]] Iterator end() const { return {array_, size()}; }

 private:
  json_object* array_ = nullptr;
};

// Owner of a parsed text.
class Document {
 public:
  // The value that `text` begins with, as json_tokener_parse reads it; none when it is no object, or `text` is nullptr.
  // Throws std::bad_alloc where memory ends: json-c goes on without the members that it finds none for, so that a text
  // of up to 64 KiB is read twice, and counts only when both readings are the same.
  explicit Document(const char* text);

  explicit operator bool() const { return static_cast<bool>(root()); }
  // The text is a JSON value other than null, of any kind: a caller that tells what a document lacks goes on with one
  // that has no members.
  [[nodiscard]] bool is_json() const { return value_ != nullptr; }
  [[nodiscard]] Object root() const { return Object(value_.get()); }
  const Object* operator->() const { return &root_; }

 private:
  struct Put {
    void operator()(json_object* value) const noexcept;
  };
  using Value = std::unique_ptr<json_object, Put>;
  Value value_;
  Object root_;
};

}  // namespace json
