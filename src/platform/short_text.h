// Texts of a small bound, kept where they stand: tables of many rows take no piece of memory for each.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

namespace platform {

// A text of at most N bytes; a longer one is cut.
template <std::size_t N>
class ShortText {
 public:
  static_assert(N < 256);

  ShortText() = default;
  ShortText(std::string_view text) { assign(text); }    // NOLINT(google-explicit-constructor): stands for a text
  ShortText(const std::string& text) { assign(text); }  // NOLINT(google-explicit-constructor)
  ShortText(const char* text) { assign(text); }         // NOLINT(google-explicit-constructor)
  operator std::string_view() const { return {bytes_.data(), size_}; }  // NOLINT(google-explicit-constructor)

  [[nodiscard]] std::string_view view() const { return *this; }
  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] const char* c_str() const { return bytes_.data(); }

  friend bool operator==(const ShortText& left, const ShortText& right) { return left.view() == right.view(); }
  friend bool operator==(const ShortText& left, std::string_view right) { return left.view() == right; }
  friend bool operator==(const ShortText& left, const char* right) { return left.view() == right; }
  friend bool operator==(const ShortText& left, const std::string& right) { return left.view() == right; }
  friend std::ostream& operator<<(std::ostream& out, const ShortText& text) { return out << text.view(); }

 private:
  void assign(std::string_view text) {
    text = text.substr(0, N);
    size_ = static_cast<unsigned char>(text.size());
    text.copy(bytes_.data(), text.size());
  }

  std::array<char, N + 1> bytes_{};
  unsigned char size_ = 0;
};

}  // namespace platform

template <std::size_t N>
struct std::hash<platform::ShortText<N>> {
  std::size_t operator()(const platform::ShortText<N>& text) const noexcept {
    return std::hash<std::string_view>()(text);
  }
};
