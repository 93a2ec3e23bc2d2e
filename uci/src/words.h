// The word rules of package files, delta files and batch input: quotes, backslashes, comments, semicolons.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "lines.h"

namespace uci {

// A quote that the file does not close, or a NUL byte, which no value can hold.
struct WordError {
  std::string reason;
};

// Reads statement lines and cuts them into words. A statement line grows while a quote or a
// backslash carries it over a line end.
class WordReader {
 public:
  explicit WordReader(LineSource& lines) : lines_(lines) {}

  // Begins a new statement line; false at the end. A NUL byte throws WordError, a read error Failure{UCI_ERR_IO}.
  bool next_line();
  // True when the statement line holds another statement (behind a semicolon).
  bool at_statement();
  // The keyword of a statement, as it stands; empty for a line that holds none or a comment. A semicolon without a
  // statement behind it gives a keyword that no statement has. Valid until a word is read.
  std::string_view keyword();
  // The next word of the statement; false, and an empty word, at its end.
  bool read_word(std::string& word);
  // The same where the statement may end without the word: a semicolon in its place may also end the line.
  bool read_optional_word(std::string& word);

  // Leaves the rest of the statement line.
  void skip_line();

  [[nodiscard]] int line() const { return line_; }                  // line feeds read so far
  [[nodiscard]] std::size_t position() const { return position_; }  // in the statement line
  [[nodiscard]] std::size_t keyword_position() const { return keyword_position_; }
  [[nodiscard]] std::size_t length() const { return text_.size(); }
  [[nodiscard]] bool keyword_ended_file() const { return keyword_ended_file_; }

 private:
  bool append_line();
  void own_text();
  bool at_end() const { return position_ >= text_.size(); }
  void read_plain(std::string& word);
  void read_single_quoted(std::string& word);
  void read_double_quoted(std::string& word);
  void read_escaped(std::string& word);
  bool is_line_end(std::size_t at) const;
  void skip_space();
  void end_statement(bool plain_word_before);

  LineSource& lines_;
  std::string_view text_;  // the source's line, or, for a statement line of several
  std::string joined_;
  std::size_t position_ = 0;
  std::size_t keyword_position_ = 0;
  int line_ = 0;
  bool statement_ended_ = false;
  bool behind_semicolon_ = false;
  bool may_end_line_ = false;
  bool keyword_ended_file_ = false;
};

}  // namespace uci
