// The word rules of package files, delta files and batch input: quotes, backslashes, comments, semicolons.
#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>

namespace uci {

// A quote that the file does not close, or a NUL byte, which no value can hold.
struct WordError {
  std::string reason;
};

// Reads statement lines from a stream and cuts them into words. A statement line grows while a quote or a backslash
// carries it over a line end.
class WordReader {
 public:
  WordReader() = default;
  explicit WordReader(std::FILE* stream) : stream_(stream) {}

  // Begins a new statement line; false at the end of the stream. A NUL byte throws WordError, a read error
  // Failure{UCI_ERR_IO}.
  bool next_line();
  // True when the statement line holds another statement (behind a semicolon).
  bool at_statement();
  // The keyword of a statement, as it stands; empty for a line that holds none or a comment. A semicolon without a
  // statement behind it gives a keyword that no statement has.
  std::string keyword();
  // The next word of the statement; nullopt at its end.
  std::optional<std::string> word();

  // The same where the statement may end without the word: a semicolon in its place may also end the line.
  std::optional<std::string> optional_word();

  // Leaves the rest of the statement line.
  void skip_line();

  [[nodiscard]] int line() const { return line_; }                  // line feeds read so far
  [[nodiscard]] std::size_t position() const { return position_; }  // in the statement line
  [[nodiscard]] std::size_t keyword_position() const { return keyword_position_; }
  [[nodiscard]] std::size_t length() const { return text_.size(); }
  [[nodiscard]] bool keyword_ended_file() const { return keyword_ended_file_; }
  void use(std::FILE* stream) { stream_ = stream; }

 private:
  bool append_line();
  bool at_end() const { return position_ >= text_.size(); }
  void read_single_quoted(std::string& word);
  void read_double_quoted(std::string& word);
  void read_escaped(std::string& word);
  bool is_line_end(std::size_t at) const;
  void end_statement(bool plain_word_before);

  std::FILE* stream_ = nullptr;
  std::string text_;
  std::size_t position_ = 0;
  std::size_t keyword_position_ = 0;
  int line_ = 0;
  bool statement_ended_ = false;
  bool behind_semicolon_ = false;
  bool may_end_line_ = false;
  bool keyword_ended_file_ = false;
};

}  // namespace uci
