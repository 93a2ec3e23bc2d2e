// Any bytes in place of a macfilter package: the parser must take them, and read back what UCI would have written.
//
//   mac_filter_fuzzer CORPUS tests/fuzz/access/seeds -dict=tests/fuzz/access/macfilter.dict
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "access/mac_filter.h"
#include "access/mac_filter_lists.h"

namespace {

std::string quoted(const std::string& value) {
  std::string text = "'";
  for (const char c : value) c == '\'' ? text += "'\\''" : text += c;
  return text + "'";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const mac_filter::Lists lists = mac_filter::parse_lists(text);
  if (std::max(lists.names.size(), lists.macs.size()) > mac_filter::kTableMax) std::abort();

  const mac_filter::Lists written =
      mac_filter::parse_lists("config wifi-iface 'ath0'\n\tlist namelist " + quoted(text) +
                              "\n\tlist maclist 'end'\n\nconfig wifi-iface 'ath1'\n");
  if (written.names.size() != 1 || written.names[0] != text) std::abort();
  if (written.macs.size() != 1 || written.macs[0] != "end") std::abort();
  return 0;
}
