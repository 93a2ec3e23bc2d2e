// Lines and pieces of lines.
#include "platform/line_reader.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr const char* kPath = "/tmp/line_reader_test";

std::vector<std::string> lines_of(const std::string& content, std::size_t max_bytes = 8) {
  EXPECT_TRUE(platform::write_file(kPath, content));
  platform::LineReader reader(platform::open_file(kPath, "r"), max_bytes);
  EXPECT_TRUE(reader.is_open());
  std::vector<std::string> lines;
  for (std::string line; reader.next(line);) lines.push_back(line);
  EXPECT_FALSE(reader.failed());
  return lines;
}

using Lines = std::vector<std::string>;

TEST(LineReader, GivesLinesWithoutTheirLineFeeds) {
  EXPECT_EQ(lines_of(""), Lines());
  EXPECT_EQ(lines_of("a"), Lines({"a"}));
  EXPECT_EQ(lines_of("a\n"), Lines({"a"}));
  EXPECT_EQ(lines_of("\n\na\r\n\n"), Lines({"", "", "a\r", ""}));
  EXPECT_EQ(lines_of(std::string("a\0b\nc", 5)), Lines({std::string("a\0b", 3), "c"}));
}

TEST(LineReader, GivesALongLineInPieces) {
  EXPECT_EQ(lines_of("12345678\n1"), Lines({"12345678", "1"}));
  EXPECT_EQ(lines_of("123456789\n1"), Lines({"12345678", "9", "1"}));
  EXPECT_EQ(lines_of("123456781234567812\n\n"), Lines({"12345678", "12345678", "12", ""}));
  EXPECT_EQ(lines_of("123456781234"), Lines({"12345678", "1234"}));
  EXPECT_EQ(lines_of("1234567812345"), Lines({"12345678", "12345"}));
}

TEST(LineReader, NeverEndsAPieceInsideACharacter) {
  EXPECT_EQ(lines_of("1234567é9\n"), Lines({"1234567", "é9"}));
  EXPECT_EQ(lines_of("12345日本\n"), Lines({"12345日", "本"}));
  EXPECT_EQ(lines_of("123456日本"), Lines({"123456", "日本"}));
  EXPECT_EQ(lines_of("12345🛜🛜"), Lines({"12345", "🛜🛜"}));
  EXPECT_EQ(lines_of("1234\xFF\xFF\xFF\xFF\xFF\n"), Lines({"1234\xFF\xFF\xFF\xFF", "\xFF"}));
  EXPECT_EQ(lines_of("🛜🛜🛜", 4), Lines({"🛜", "🛜", "🛜"}));
}

TEST(LineReader, HasNoLinesOfAFileThatCannotBeRead) {
  std::string line = "before";
  platform::LineReader missing(platform::open_file("/tmp/no_such_file", "r"), 8);
  EXPECT_FALSE(missing.is_open());
  EXPECT_FALSE(missing.next(line));
  EXPECT_FALSE(missing.failed());
  platform::LineReader folder(platform::open_file("/tmp", "r"), 8);
  EXPECT_TRUE(folder.is_open());
  EXPECT_FALSE(folder.next(line));
  EXPECT_TRUE(folder.failed());
}

}  // namespace
