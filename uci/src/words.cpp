// Cutting of statement lines into words.
#include "words.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <sys/types.h>
#include <utility>

#include "elements.h"

namespace uci {
namespace {

bool is_space(char character) { return character == ' ' || (character >= '\t' && character <= '\r'); }

struct FreeText {
  void operator()(char* text) const noexcept { std::free(text); }
};

}  // namespace

bool WordReader::append_line() {
  char* raw = nullptr;
  std::size_t capacity = 0;
  errno = 0;
  const ssize_t length = getline(&raw, &capacity, stream_);
  const std::unique_ptr<char, FreeText> owned(raw);
  if (length <= 0) {
    // A text that broke off must not pass for a short one: a commit would write what was read of it.
    if (errno == ENOMEM) throw std::bad_alloc();
    if (std::ferror(stream_) != 0) throw Failure{UCI_ERR_IO};
    return false;
  }
  const std::size_t size = static_cast<std::size_t>(length);
  // Padding behind the last line end, as of a text in a C buffer, is no line.
  if (std::string_view(raw, size).find_first_not_of('\0') == std::string_view::npos) return false;
  if (raw[size - 1] == '\n') ++line_;
  text_.append(raw, size);
  if (std::memchr(raw, '\0', size) != nullptr) throw WordError{"invalid command"};
  return true;
}

bool WordReader::next_line() {
  text_.clear();
  position_ = keyword_position_ = 0;
  statement_ended_ = behind_semicolon_ = may_end_line_ = false;
  return stream_ != nullptr && append_line();
}

void WordReader::skip_line() {
  position_ = text_.size();
  statement_ended_ = true;
}

bool WordReader::at_statement() { return !at_end(); }

std::string WordReader::keyword() {
  statement_ended_ = false;
  const bool may_end_line = std::exchange(may_end_line_, false);
  keyword_position_ = position_;
  while (!at_end() && is_space(text_[position_])) ++position_;
  if (at_end()) {
    const bool lonely_semicolon = behind_semicolon_ && !may_end_line;
    behind_semicolon_ = false;
    return lonely_semicolon ? ";" : "";
  }
  if (!behind_semicolon_) keyword_position_ = position_;
  behind_semicolon_ = false;
  if (text_[position_] == '#') {
    skip_line();
    return "";
  }
  const std::size_t begin = position_;
  position_ = std::min(text_.find_first_of(" \t", begin), text_.size());
  std::string keyword = text_.substr(begin, position_ - begin);
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
    text_.resize(position_ + 1);  // the backslash stays in the count of bytes, its line end does not
    ++position_;
    append_line();
    return;
  }
  ++position_;
  if (!at_end()) word += text_[position_++];
}

void WordReader::read_single_quoted(std::string& word) {
  ++position_;
  while (true) {
    if (at_end() && !append_line()) throw WordError{"EOF with unterminated '"};
    const char character = text_[position_++];
    if (character == '\'') return;
    word += character;
  }
}

void WordReader::read_double_quoted(std::string& word) {
  ++position_;
  while (true) {
    if (at_end() && !append_line()) throw WordError{"EOF with unterminated \""};
    const char character = text_[position_];
    if (character == '\\') {
      read_escaped(word);
      continue;
    }
    ++position_;
    if (character == '"') return;
    word += character;
  }
}

std::optional<std::string> WordReader::optional_word() {
  std::optional<std::string> found = word();
  if (!found) may_end_line_ = behind_semicolon_;
  return found;
}

std::optional<std::string> WordReader::word() {
  if (statement_ended_) return std::nullopt;
  while (!at_end() && is_space(text_[position_])) ++position_;
  std::string word;
  bool begun = false;
  bool plain = true;
  while (!at_end()) {
    const char character = text_[position_];
    if (is_space(character)) {
      ++position_;
      return word;
    }
    if (character == '#') {
      skip_line();
      return begun ? std::optional(word) : std::nullopt;
    }
    if (character == ';') {
      ++position_;
      end_statement(begun && plain);
      return begun ? std::optional(word) : std::nullopt;
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
      word += character;
      ++position_;
    }
  }
  if (!begun) {
    statement_ended_ = true;
    return std::nullopt;
  }
  return word;
}

}  // namespace uci
