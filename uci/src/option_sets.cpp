// Options of a section by a list of their names, and a hash over them.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "elements.h"

namespace uci {
namespace {

// MurmurHash2's mixing, byte after byte, as the platform's tools compare option sets with it.
class OptionHash {
 public:
  void add(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (; size >= 4; size -= 4, bytes += 4) {
      std::uint32_t word =
          bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 | std::uint32_t{bytes[3]} << 24;
      word *= kMultiplier;
      word ^= word >> kShift;
      word *= kMultiplier;
      hash_ = hash_ * kMultiplier ^ word;
    }
    if (size > 2) hash_ ^= std::uint32_t{bytes[2]} << 16;
    if (size > 1) hash_ ^= std::uint32_t{bytes[1]} << 8;
    if (size > 0) hash_ = (hash_ ^ bytes[0]) * kMultiplier;
    hash_ ^= hash_ >> 13;
    hash_ *= kMultiplier;
    hash_ ^= hash_ >> 15;
  }
  void add_text(const char* text) { add(text, std::strlen(text) + 1); }
  [[nodiscard]] std::uint32_t value() const { return hash_; }

 private:
  static constexpr std::uint32_t kMultiplier = 0x5bd1e995;
  static constexpr int kShift = 24;
  std::uint32_t hash_ = 0xdeadc0de;
};

}  // namespace
}  // namespace uci

extern "C" {

void uci_parse_section(uci_section* s, const uci_parse_option* opts, int n_opts, uci_option** tb) {
  std::fill(tb, tb + n_opts, nullptr);
  uci_element* element = nullptr;
  uci_foreach_element(&s->options, element) {
    uci_option* option = uci_to_option(element);
    for (int index = 0; index < n_opts; ++index) {
      const bool fits = tb[index] == nullptr && option->type == opts[index].type &&
                        std::strcmp(opts[index].name, option->e.name) == 0;
      if (!fits) continue;
      tb[index] = option;
      break;
    }
  }
}

uint32_t uci_hash_options(uci_option** tb, int n_opts) {
  uci::OptionHash hash;
  for (int index = 0; index < n_opts; ++index) {
    uci_option* option = tb[index];
    if (option == nullptr) continue;
    hash.add_text(option->e.name);
    hash.add(&option->type, sizeof(option->type));
    if (option->type == UCI_TYPE_STRING) {
      hash.add_text(option->v.string);
      continue;
    }
    uci_element* item = nullptr;
    uci_foreach_element(&option->v.list, item) hash.add_text(item->name);
  }
  return hash.value();
}

}  // extern "C"
