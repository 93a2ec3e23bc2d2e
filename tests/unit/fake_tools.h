// Tools of a test's own in the places of the platform's. Each tells how it is called before it does what it is to do.
#pragma once

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/file.h"

// They are found from provide() to this object's end, before any other of their names. One object at a time. A test
// that lets a tool start in the background waits for its call: it could be another test's otherwise.
class FakeTools {
 public:
  FakeTools() {
    // Open for writing, too: no tool waits for a reader, and no reader sees an end.
    if (mkfifo(path_.c_str(), 0600) == 0) pipe_ = open(path_.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  }
  FakeTools(const FakeTools&) = delete;
  FakeTools& operator=(const FakeTools&) = delete;
  ~FakeTools() {
    close(pipe_);
    for (const std::string& place : places_) std::filesystem::remove(place);
    std::filesystem::remove(path_);
  }

  // `tool`: a name, or the path that the tool is called by. `script`: of the shell.
  void provide(const std::string& tool, const std::string& script = "") {
    const std::string place = tool.starts_with('/') ? tool : "/router/bin/" + tool;
    std::filesystem::create_directories(std::filesystem::path(place).parent_path());
    const std::string tell = "printf '%s\\n' \"" + tool + "${*:+ $*}\" >" + path_;
    ASSERT_TRUE(platform::write_file(place.c_str(), "#!/bin/sh\n" + tell + "\n" + script + "\n"));
    std::filesystem::permissions(place, std::filesystem::perms::owner_all);
    places_.push_back(place);
  }
  // One that prints these lines.
  void answer(const std::string& tool, const std::string& lines) {
    provide(tool, "cat <<'END_OF_ANSWER'\n" + lines + (lines.ends_with('\n') ? "" : "\n") + "END_OF_ANSWER");
  }

  // "tool argument argument" of each call since the last look, in their order.
  std::vector<std::string> calls() {
    std::array<char, 4096> piece{};
    for (ssize_t got = read(pipe_, piece.data(), piece.size()); got > 0; got = read(pipe_, piece.data(), piece.size()))
      unread_.append(piece.data(), static_cast<std::size_t>(got));
    std::vector<std::string> lines;
    for (std::size_t end = unread_.find('\n'); end != std::string::npos; end = unread_.find('\n')) {
      lines.push_back(unread_.substr(0, end));
      unread_.erase(0, end + 1);
    }
    return lines;
  }
  // At least as many calls since the last look, of a thread or a daemon that may not have come to them yet. Fewer only
  // after two minutes in which there was none.
  std::vector<std::string> awaited_calls(std::size_t count = 1) {
    constexpr int kDeadlineMs = 120'000;
    std::vector<std::string> all = calls();
    while (all.size() < count) {
      pollfd readable{.fd = pipe_, .events = POLLIN, .revents = 0};
      if (poll(&readable, 1, kDeadlineMs) <= 0) break;
      for (std::string& call : calls()) all.push_back(std::move(call));
    }
    return all;
  }

 private:
  static std::string new_path() {
    static int made = 0;
    return "/tmp/fake_tools.calls." + std::to_string(++made);
  }
  std::string path_ = new_path();  // of this object alone: what another one's tool tells late does not come here
  int pipe_ = -1;
  std::string unread_;
  std::vector<std::string> places_;
};
