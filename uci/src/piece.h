// The memory of an element: one piece together with the texts that it was made with.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

namespace uci {

// An element and, behind it, the texts that it was made with. A text that it was given later is a piece of its own.
template <class Object>
struct Piece {
  Object object;
  std::size_t text_size;
};

template <class Object>
char* texts_of(Object* object) {
  return reinterpret_cast<char*>(reinterpret_cast<Piece<Object>*>(object) + 1);
}

template <class Object>
Object* new_piece(std::size_t text_size) {
  void* memory = std::malloc(sizeof(Piece<Object>) + text_size);
  if (memory == nullptr) throw std::bad_alloc();
  auto* piece = ::new (memory) Piece<Object>{};
  piece->text_size = text_size;
  return &piece->object;
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
  if (offset >= reinterpret_cast<Piece<Object>*>(object)->text_size) std::free(text);
}

template <class Object>
void replace_text_of(Object& object, char*& text, std::string_view value) {
  char* copy = copy_text(value);
  free_text(&object, text);
  text = copy;
}

}  // namespace uci
