// The memory of an element: one piece together with the texts that it was made with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

namespace uci {

// An element and, before it, the size of the texts that it was made with, and those. A text that it was given later is
// a piece of its own. A walk that compares names meets the end of the texts beside the element, in the same cache line.

template <class Object>
std::size_t& size_of_texts(Object* object) {
  return reinterpret_cast<std::size_t*>(object)[-1];
}

template <class Object>
char* texts_of(Object* object) {
  return reinterpret_cast<char*>(object) - sizeof(std::size_t) - size_of_texts(object);
}

// What stands before an element, so that it is aligned.
constexpr std::size_t room_before(std::size_t text_size) {
  constexpr std::size_t kAlignment = alignof(std::max_align_t);
  return (text_size + sizeof(std::size_t) + kAlignment - 1) / kAlignment * kAlignment;
}

template <class Object>
Object* new_piece(std::size_t text_size) {
  const std::size_t room = room_before(text_size);
  auto* memory = static_cast<char*>(std::malloc(room + sizeof(Object)));
  if (memory == nullptr) throw std::bad_alloc();
  auto* object = ::new (memory + room) Object{};
  size_of_texts(object) = text_size;
  return object;
}

template <class Object>
void free_piece(Object* object) {
  std::free(reinterpret_cast<char*>(object) - room_before(size_of_texts(object)));
}

// Puts a text into a piece; what follows it.
inline char* put(char* place, std::string_view text) {
  if (!text.empty()) std::memcpy(place, text.data(), text.size());
  place[text.size()] = '\0';
  return place + text.size() + 1;
}

inline char* copy_text(std::string_view text) {
  char* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy == nullptr) throw std::bad_alloc();
  put(copy, text);
  return copy;
}

template <class Object>
void free_text(Object* object, char* text) {
  const auto offset = reinterpret_cast<std::uintptr_t>(text) - reinterpret_cast<std::uintptr_t>(texts_of(object));
  if (offset >= size_of_texts(object)) std::free(text);
}

template <class Object>
void replace_text_of(Object& object, char*& text, std::string_view value) {
  char* copy = copy_text(value);
  free_text(&object, text);
  text = copy;
}

}  // namespace uci
