// Any bytes as what the probes of the Internet line print: they give a verdict, the same however they come.
#include "require.h"
#include "waninfoMethod/line_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text = fuzzing::text_of(data, size);
  parse_probe_result(text);
  const std::optional<int> session = parse_session_report(text);
  fuzzing::require(!session || (*session >= 0 && *session <= 3), "a session's state");

  LastPiece whole;
  whole.feed(text);
  LastPiece in_pieces;
  for (std::size_t piece = 1; !text.empty(); piece = piece * 2 + 1) {
    const std::string_view next = text.substr(0, piece);
    in_pieces.feed(next);
    text.remove_prefix(next.size());
  }
  fuzzing::require(whole.number() == in_pieces.number(), "the last line depends on how it comes");
  return 0;
}
