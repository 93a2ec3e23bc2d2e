// Any bytes in place of a scan: the parser must take them, and tell the same however they come.
//
//   scan_parser_fuzzer CORPUS tests/fuzz/repeater/seeds -dict=tests/fuzz/repeater/scan.dict
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "repeater/scan_parser.h"

namespace {

std::string parse_in_pieces(std::size_t band, std::string_view text, std::size_t piece_size) {
  json::ListText list;
  ScanParser parser(band, list);
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, piece_size);
    parser.feed(piece);
    text.remove_prefix(piece.size());
  }
  parser.finish();
  return std::move(list).text();
}

}  // namespace

// The first byte chooses the band and the size of the pieces.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t band = data[0] % kScanBandCount;
  const std::size_t piece_size = data[0] / kScanBandCount + 1;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (parse_in_pieces(band, text, size) != parse_in_pieces(band, text, piece_size)) std::abort();
  return 0;
}
