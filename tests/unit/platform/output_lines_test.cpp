// The lines of an output that comes in pieces.
#include "platform/output_lines.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/process.h"

namespace {

using ::testing::ElementsAre;

std::vector<std::string> lines_of(std::string_view text, std::size_t piece_size, std::size_t max_bytes = 100) {
  std::vector<std::string> found;
  platform::OutputLines lines(max_bytes, [&found](const std::string& line) { found.push_back(line); });
  for (; !text.empty(); text.remove_prefix(std::min(piece_size, text.size()))) {
    EXPECT_TRUE(lines.add(text.substr(0, piece_size)));
  }
  lines.finish();
  return found;
}

TEST(OutputLines, AreTheSameHoweverTheyCome) {
  for (const std::size_t piece_size : {1U, 2U, 3U, 7U, 100U}) {
    EXPECT_THAT(lines_of("one\n\ntwo\n", piece_size), ElementsAre("one", "", "two")) << piece_size;
    EXPECT_THAT(lines_of("\none", piece_size), ElementsAre("", "one")) << piece_size;
    EXPECT_THAT(lines_of("a longer one\nb", piece_size, 5), ElementsAre("a lon", "b")) << piece_size;
  }
  EXPECT_TRUE(lines_of("", 1).empty());
}

TEST(OutputLines, OfAToolThatDoesNotStopEnd) {
  constexpr std::size_t kPiece = std::size_t{1} << 20;
  const std::string piece(kPiece - 1, 'x');
  std::size_t visited = 0;
  platform::OutputLines lines(10, [&visited](const std::string&) { ++visited; });
  std::size_t pieces = 0;
  while (lines.add(piece + '\n') && pieces < 1000) ++pieces;
  EXPECT_EQ(visited, platform::kOutputMax / kPiece);
  EXPECT_EQ(pieces, platform::kMostRead / kPiece);
}

}  // namespace
