// The word rules of package files.
#include "words.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Words = std::vector<std::string>;

struct CloseStream {
  void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
};

// The words of the first statement line; {"(error)"} for an unterminated quote.
Words words_of(std::string text) {
  const std::unique_ptr<std::FILE, CloseStream> stream(fmemopen(text.data(), text.size(), "r"));
  uci::StreamLines lines(stream.get());
  uci::WordReader reader(lines);
  Words words;
  std::string word;
  try {
    if (!reader.next_line()) return words;
    while (reader.read_word(word)) words.push_back(word);
  } catch (const uci::WordError&) {
    return {"(error)"};
  }
  return words;
}

TEST(WordReader, CutsALineIntoWords) {
  struct Row {
    const char* text;
    Words words;
  };
  const std::vector<Row> rows{
      {"one two\tthree\n", {"one", "two", "three"}},
      {"last line without a line feed", {"last", "line", "without", "a", "line", "feed"}},
      {"'a b' \"c d\" e\\ f\n", {"a b", "c d", "e f"}},
      {"a'b c'\"d\"\n", {"ab cd"}},
      {"'it'\\''s'\n", {"it's"}},
      {R"("say \"x\" \n \\")"
       "\n",
       {R"(say "x" n \)"}},
      {"'no \\ escape'\n", {"no \\ escape"}},
      {"''\n", {""}},
      {"a#comment\n", {"a"}},
      {"# comment\n", {}},
      {"'a#b'\n", {"a#b"}},
      {"a;b\n", {"a"}},
      {"'two\nlines' x\n", {"two\nlines", "x"}},
      {"abc\\\ndef\n", {"abcdef"}},
      {"abc\\\n  def\n", {"abc", "def"}},
      {"abc\\\r\ndef\n", {"abcdef"}},
      {"\"abc\\\ndef\"\n", {"abcdef"}},
      {"crlf word\r\n", {"crlf", "word"}},
      {"end\\", {"end"}},
      {"\n", {}},
      {"'open\n", {"(error)"}},
      {"\"open\n", {"(error)"}},
  };
  for (const Row& row : rows) EXPECT_EQ(words_of(row.text), row.words) << row.text;
}

TEST(WordReader, RefusesANulByteButNotPadding) {
  EXPECT_EQ(words_of(std::string("a\0b\n", 4)), Words{"(error)"});
  EXPECT_EQ(words_of(std::string("\0", 1)), Words{});
}

TEST(WordReader, ReadsWordsOfAnyLength) {
  const std::string word(1 << 20, 'w');
  EXPECT_EQ(words_of(word + " '" + word + "'\n"), (Words{word, word}));
}

}  // namespace
