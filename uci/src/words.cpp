// Cutting of statement lines into words.
#include "words.h"

#include <algorithm>
#include <array>
#include <utility>

namespace uci {
namespace {

bool is_space(char character) { return character == ' ' || (character >= '\t' && character <= '\r'); }

// Bytes that mean something in a word outside quotes; all others are the word's own.
constexpr std::array<bool, 256> kSpecial = [] {
  std::array<bool, 256> table{};
  for (const char character : std::string_view(" \t\n\v\f\r#;'\"\\"))
    table[static_cast<unsigned char>(character)] = true;
  return table;
}();

}  // namespace

// The source's line lives until the next one is read: a text that is to grow moves away first.
void WordReader::own_text() {
  if (text_.data() != joined_.data()) joined_.assign(text_);
}

bool WordReader::append_line() {
  const bool is_first = text_.empty();
  if (!is_first) own_text();
  const std::string_view line = lines_.next();
  // Padding behind the last line end, as of a text in a C buffer, is no line.
  if (line.find_first_not_of('\0') == std::string_view::npos) return false;
  if (line.back() == '\n') ++line_;
  text_ = is_first ? line : joined_.append(line);
  if (line.find('\0') != std::string_view::npos) throw WordError{"invalid command"};
  return true;
}

bool WordReader::next_line() {
  text_ = {};
  position_ = keyword_position_ = 0;
  statement_ended_ = behind_semicolon_ = may_end_line_ = false;
  return append_line();
}

void WordReader::skip_line() {
  position_ = text_.size();
  statement_ended_ = true;
}

bool WordReader::at_statement() { return !at_end(); }

void WordReader::skip_space() {
  while (!at_end() && is_space(text_[position_])) ++position_;
}

std::string_view WordReader::keyword() {
  statement_ended_ = false;
  const bool may_end_line = std::exchange(may_end_line_, false);
  const bool behind_semicolon = std::exchange(behind_semicolon_, false);
  keyword_position_ = position_;
  skip_space();
  if (at_end()) return behind_semicolon && !may_end_line ? ";" : "";
  if (!behind_semicolon) keyword_position_ = position_;
  if (text_[position_] == '#') {
    skip_line();
    return "";
  }
  const std::size_t begin = position_;
  while (!at_end() && text_[position_] != ' ' && text_[position_] != '\t') ++position_;
  const std::string_view keyword = text_.substr(begin, position_ - begin);
  keyword_ended_file_ = at_end();
  if (!at_end()) ++position_;
  return keyword;
}

bool WordReader::is_line_end(std::size_t at) const {
  return at < text_.size() &&
         (text_[at] == '\n' || (text_[at] == '\r' && at + 1 < text_.size() && text_[at + 1] == '\n'));
}

void WordReader::end_statement(bool plain_word_before) {
  statement_ended_ = true;
  behind_semicolon_ = true;
  // The platform's own files never hold a semicolon; what stands behind one that touches a plain word is dropped, as
  // every version of the format does.
  if (plain_word_before) skip_line();
}

void WordReader::read_escaped(std::string& word) {
  if (is_line_end(position_ + 1)) {
    // The backslash stays in the count of bytes, its line end does not.
    own_text();
    joined_.resize(position_ + 1);
    text_ = joined_;
    ++position_;
    append_line();
    return;
  }
  ++position_;
  if (!at_end()) word += text_[position_++];
}

void WordReader::read_single_quoted(std::string& word) {
  ++position_;
  std::size_t end = text_.find('\'', position_);
  while (end == std::string_view::npos) {
    const std::size_t size = text_.size();
    if (!append_line()) throw WordError{"EOF with unterminated '"};
    end = text_.find('\'', size);
  }
  word.append(text_, position_, end - position_);
  position_ = end + 1;
}

void WordReader::read_double_quoted(std::string& word) {
  ++position_;
  while (true) {
    if (at_end() && !append_line()) throw WordError{"EOF with unterminated \""};
    const std::size_t end = std::min(text_.find_first_of("\\\"", position_), text_.size());
    word.append(text_, position_, end - position_);
    position_ = end;
    if (at_end()) continue;
    if (text_[position_] == '\\') {
      read_escaped(word);
      continue;
    }
    ++position_;
    return;
  }
}

void WordReader::read_plain(std::string& word) {
  std::size_t end = position_;
  while (end < text_.size() && !kSpecial[static_cast<unsigned char>(text_[end])]) ++end;
  word.append(text_, position_, end - position_);
  position_ = end;
}

bool WordReader::read_optional_word(std::string& word) {
  const bool found = read_word(word);
  if (!found) may_end_line_ = behind_semicolon_;
  return found;
}

bool WordReader::read_word(std::string& word) {
  word.clear();
  if (statement_ended_) return false;
  skip_space();
  bool begun = false;
  bool plain = true;
  while (!at_end()) {
    const char character = text_[position_];
    if (is_space(character)) {
      ++position_;
      return true;
    }
    if (character == '#') {
      skip_line();
      return begun;
    }
    if (character == ';') {
      ++position_;
      end_statement(begun && plain);
      return begun;
    }
    begun = true;
    if (character == '\'') {
      plain = false;
      read_single_quoted(word);
    } else if (character == '"') {
      plain = false;
      read_double_quoted(word);
    } else if (character == '\\') {
      plain = false;
      read_escaped(word);
    } else {
      read_plain(word);
    }
  }
  statement_ended_ = !begun;
  return begun;
}

}  // namespace uci
