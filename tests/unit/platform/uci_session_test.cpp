// One request's view of UCI: what is read once, what is written once, and who sees it when.
#include "platform/uci_session.h"

#include <array>
#include <filesystem>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/background.h"
#include "platform/file.h"
#include "platform/process.h"
#include "uci_access.h"

namespace {

using platform::UciSession;

class Session : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(dir_);
    write("pkg", "\nconfig thing 's'\n\toption a '1'\n\n");
    write("other", "\nconfig thing 's'\n\toption a '1'\n\n");
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }
  void write(const std::string& package, const std::string& text) {
    ASSERT_TRUE(platform::write_file((dir_ + '/' + package).c_str(), text));
  }
  std::string content(const std::string& package = "pkg") {
    return platform::read_file((dir_ + '/' + package).c_str()).value_or("");
  }
  // As another process would: a new file in the old one's place.
  void replace(const std::string& package, const std::string& text) {
    write(package + ".new", text);
    std::filesystem::rename(dir_ + '/' + package + ".new", dir_ + '/' + package);
  }
  unsigned int set(const char* option, const char* value, const char* package = "pkg") {
    return UciSetOption(dir_.c_str(), package, "s", option, value);
  }
  std::string get(const char* option) {
    std::array<char, 64> out{};
    if (UciGetOption(dir_.c_str(), "pkg", "s", option, out.data(), out.size()) != 0) return "(none)";
    return out.data();
  }
  static constexpr const char* kOld = "\nconfig thing 's'\n\toption a '1'\n\n";
  static constexpr const char* kChanged = "\nconfig thing 's'\n\toption a '2'\n\n";
  std::string dir_ = "/tmp/uci_session_test";
};

TEST_F(Session, ShowsItsOwnChangesBeforeTheyAreWritten) {
  const UciSession session;
  EXPECT_EQ(set("a", "2"), 0U);
  EXPECT_EQ(get("a"), "2");
  EXPECT_EQ(content(), kOld);
}

TEST_F(Session, WritesAtItsEnd) {
  {
    const UciSession session;
    set("a", "3");
    set("a", "2");
  }
  EXPECT_EQ(content(), kChanged);
}

TEST_F(Session, DropsWhatWasNotWrittenWhenAnExceptionEndsIt) {
  try {
    const UciSession session;
    set("a", "2");
    platform::settle_uci();
    set("a", "3");
    throw std::runtime_error("in the middle");
  } catch (const std::runtime_error&) {
    const UciSession while_it_is_handled;
    EXPECT_EQ(content(), kChanged);
    EXPECT_EQ(get("a"), "2");
    set("b", "1");
  }
  EXPECT_EQ(get("b"), "1");
}

TEST_F(Session, WritesBeforeAChildStarts) {
  const UciSession session;
  set("a", "2");
  EXPECT_NE(platform::run({"cat", dir_ + "/pkg"}).output.find("'2'"), std::string::npos);
  set("a", "3");
  EXPECT_NE(platform::run_shell("cat " + dir_ + "/pkg").output.find("'3'"), std::string::npos);
}

TEST_F(Session, WritesBeforeADaemonStarts) {
  const UciSession session;
  set("a", "2");
  platform::start_daemon([] {});
  EXPECT_EQ(content(), kChanged);
}

TEST_F(Session, WritesBeforeAThreadStarts) {
  const UciSession session;
  set("a", "2");
  EXPECT_TRUE(platform::start_detached([] {}));
  EXPECT_EQ(content(), kChanged);
}

TEST_F(Session, WritesBeforeAWait) {
  const UciSession session;
  set("a", "2");
  platform::sleep_seconds(0);
  EXPECT_EQ(content(), kChanged);
}

TEST_F(Session, WritesPackagesInTheOrderOfTheirFirstChange) {
  {
    const UciSession session;
    set("a", "2", "pkg");
    set("a", "2", "other");
    set("b", "2", "pkg");
    set("b", "2", "other");
  }
  EXPECT_LE(std::filesystem::last_write_time(dir_ + "/pkg"), std::filesystem::last_write_time(dir_ + "/other"));
  EXPECT_NE(content("other").find("option b '2'"), std::string::npos);
}

TEST_F(Session, KeepsAPackageUntilSomethingIsStarted) {
  const UciSession session;
  EXPECT_EQ(get("a"), "1");
  replace("pkg", kChanged);
  EXPECT_EQ(get("a"), "1");
  platform::run({"true"});
  EXPECT_EQ(get("a"), "2");
}

TEST_F(Session, SeesWhatAChildWrote) {
  const UciSession session;
  EXPECT_EQ(get("a"), "1");
  platform::run_shell("sed -i s/1/7/ " + dir_ + "/pkg");
  EXPECT_EQ(get("a"), "7");
  platform::run_shell("sed -i s/7/8/ " + dir_ + "/pkg");
  EXPECT_EQ(get("a"), "8");
  platform::run_shell("rm " + dir_ + "/pkg");
  EXPECT_EQ(get("a"), "(none)");
}

TEST_F(Session, KeepsWhatOthersWroteBetween) {
  {
    const UciSession session;
    set("b", "2");
    replace("pkg", "\nconfig thing 's'\n\toption a '9'\n\n");
  }
  EXPECT_EQ(content(), "\nconfig thing 's'\n\toption a '9'\n\toption b '2'\n\n");
}

TEST_F(Session, TakesOneSpellingOfTheFolderForAnother) {
  const UciSession session;
  set("a", "2");
  std::string out(8, '\0');
  EXPECT_EQ(UciGetOption((dir_ + "/").c_str(), "pkg", "s", "a", out.data(), out.size()), 0U);
  EXPECT_STREQ(out.c_str(), "2");
}

TEST_F(Session, InsideAnotherIsItsOwn) {
  const UciSession outer;
  set("a", "2");
  {
    const UciSession inner;
    EXPECT_EQ(get("a"), "1");
    set("c", "3");
  }
  EXPECT_NE(content().find("option c '3'"), std::string::npos);
  EXPECT_EQ(UciSession::current(), &outer);
}

TEST_F(Session, OfAnotherThreadIsItsOwn) {
  const UciSession session;
  std::thread([] { EXPECT_EQ(UciSession::current(), nullptr); }).join();
}

TEST_F(Session, ThatEndsWithItsProcessHasChangedNothing) {
  const UciSession session;
  const pid_t child = fork();
  if (child == 0) {
    set("a", "2");
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(content(), kOld);
}

TEST_F(Session, PositionsFollowWhatItDeletedAndAdded) {
  write("pkg", "\nconfig rule\n\toption n '1'\n\nconfig rule\n\toption n '2'\n\n");
  {
    const UciSession session;
    EXPECT_EQ(UciDelSection(dir_.c_str(), "pkg", "@rule[0]"), 0U);
    EXPECT_EQ(UciDelSection(dir_.c_str(), "pkg", "@rule[0]"), 0U);
    EXPECT_EQ(UciDelSection(dir_.c_str(), "pkg", "@rule[0]"), 1U);
    for (const char* number : {"5", "6", "7"}) {
      EXPECT_EQ(UciCreateAnonymousSection(dir_.c_str(), "pkg", "rule"), 0U);
      EXPECT_EQ(UciSetOption(dir_.c_str(), "pkg", "@rule[-1]", "n", number), 0U);
    }
    EXPECT_EQ(UciDelSection(dir_.c_str(), "pkg", "@rule[1]"), 0U);
  }
  EXPECT_EQ(content(), "\nconfig rule\n\toption n '5'\n\nconfig rule\n\toption n '7'\n\n");
}

}  // namespace
