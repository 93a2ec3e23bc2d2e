// Small files and owning handles.
#include "platform/file.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

namespace {

bool is_somebody_else = false;

}  // namespace

extern "C" {
uid_t __real_geteuid();
uid_t __wrap_geteuid() { return is_somebody_else ? __real_geteuid() + 1 : __real_geteuid(); }
}

namespace {

constexpr const char* kPath = "/tmp/file_test";

TEST(ReadFile, ReadsWholeFilesAndBoundedHeads) {
  const std::string text = std::string("a\0b", 3) + std::string(100000, 'x');
  ASSERT_TRUE(platform::write_file(kPath, text));
  EXPECT_EQ(platform::read_file(kPath), text);
  EXPECT_EQ(platform::read_file(kPath, 3), std::string("a\0b", 3));
  std::remove(kPath);
  EXPECT_EQ(platform::read_file(kPath), std::nullopt);
  EXPECT_EQ(platform::read_file("/tmp"), std::nullopt);
}

TEST(OwnFile, IsARegularFileOfOurs) {
  ASSERT_TRUE(platform::write_file(kPath, "ours"));
  EXPECT_TRUE(platform::is_own_file(kPath));
  EXPECT_EQ(platform::read_own_file(kPath), "ours");
  EXPECT_EQ(platform::read_own_file(kPath, 2), "ou");
  std::remove(kPath);
  EXPECT_FALSE(platform::is_own_file(kPath));
  EXPECT_EQ(platform::read_own_file(kPath), std::nullopt);
  EXPECT_EQ(errno, ENOENT);
}

TEST(OwnFile, IsNotSomebodyElses) {
  ASSERT_TRUE(platform::write_file(kPath, "theirs"));
  is_somebody_else = true;
  EXPECT_FALSE(platform::is_own_file(kPath));
  EXPECT_EQ(platform::read_own_file(kPath), std::nullopt);
  EXPECT_EQ(errno, EPERM);
  is_somebody_else = false;
  std::remove(kPath);
}

TEST(OwnFile, IsNoLinkNoSecondNameNoFolderAndNoFifo) {
  constexpr const char* kOther = "/tmp/file_test_other";
  ASSERT_TRUE(platform::write_file(kOther, "other"));
  const auto is_none = [] { return !platform::is_own_file(kPath) && !platform::read_own_file(kPath); };
  ASSERT_EQ(symlink(kOther, kPath), 0);
  EXPECT_TRUE(is_none());
  std::remove(kPath);
  ASSERT_EQ(link(kOther, kPath), 0);
  EXPECT_TRUE(is_none());
  std::remove(kPath);
  ASSERT_EQ(mkfifo(kPath, 0600), 0);
  EXPECT_TRUE(is_none());
  std::remove(kPath);
  ASSERT_EQ(mkdir(kPath, 0700), 0);
  EXPECT_TRUE(is_none());
  std::remove(kPath);
  std::remove(kOther);
}

TEST(OpenFile, KeepsNobodyWaitingAtAFifo) {
  std::remove(kPath);
  ASSERT_EQ(mkfifo(kPath, 0600), 0);
  for (const char* mode : {"r", "w", "a"}) {
    EXPECT_EQ(platform::open_file(kPath, mode), nullptr) << mode;
    EXPECT_EQ(errno, EINVAL) << mode;
  }
  EXPECT_EQ(platform::read_file(kPath), std::nullopt);
  EXPECT_FALSE(platform::write_file(kPath, "x"));
  std::remove(kPath);
}

TEST(OpenFile, ReadsWritesAndAppends) {
  std::remove(kPath);
  EXPECT_EQ(platform::open_file(kPath, "r"), nullptr);
  EXPECT_GE(std::fputs("first", platform::open_file(kPath, "w").get()), 0);
  EXPECT_GE(std::fputs("+more", platform::open_file(kPath, "a").get()), 0);
  EXPECT_EQ(platform::read_file(kPath), "first+more");
  std::array<char, 8> head{};
  EXPECT_STREQ(std::fgets(head.data(), head.size(), platform::open_file(kPath, "r").get()), "first+m");
  EXPECT_GE(std::fputs("new", platform::open_file(kPath, "w").get()), 0);
  EXPECT_EQ(platform::read_file(kPath), "new");
  std::remove(kPath);
}

TEST(WriteFile, ReplacesAndTellsFailures) {
  ASSERT_TRUE(platform::write_file(kPath, "long content"));
  ASSERT_TRUE(platform::write_file(kPath, "short"));
  EXPECT_EQ(platform::read_file(kPath), "short");
  EXPECT_FALSE(platform::write_file("/tmp/no/such/folder", "x"));
  EXPECT_FALSE(platform::write_file("/dev/full", "x"));
  EXPECT_TRUE(platform::file_exists(kPath));
  std::remove(kPath);
  EXPECT_FALSE(platform::file_exists(kPath));
}

unsigned int mode_of(const char* path) {
  struct stat status {};
  return lstat(path, &status) == 0 ? status.st_mode : 0;
}

// A folder of its own, so that a temporary file that stays is seen.
class ReplacedFile : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(std::filesystem::create_directory(kFolder)); }
  void TearDown() override { std::filesystem::remove_all(kFolder); }
  static std::vector<std::string> names() {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(kFolder)) found.push_back(entry.path().filename());
    return found;
  }

  static constexpr const char* kFolder = "/tmp/replaced_file";
  static constexpr const char* kFile = "/tmp/replaced_file/state";
};

TEST_F(ReplacedFile, HasTheNewContentAndTheModeAskedForWhateverTheUmask) {
  const mode_t before = umask(077);
  EXPECT_TRUE(platform::replace_file(kFile, "first"));
  EXPECT_EQ(mode_of(kFile), S_IFREG | 0644U);
  EXPECT_TRUE(platform::replace_file(kFile, std::string("sec\0nd", 6), 0600));
  umask(before);
  EXPECT_EQ(mode_of(kFile), S_IFREG | 0600U);
  EXPECT_EQ(platform::read_file(kFile), std::string("sec\0nd", 6));
  EXPECT_EQ(names(), std::vector<std::string>{"state"});
}

TEST_F(ReplacedFile, IsAnotherFileSoThatWhoReadsTheOldOneReadsItToItsEnd) {
  ASSERT_TRUE(platform::replace_file(kFile, "old"));
  const platform::FilePtr reader = platform::open_file(kFile, "r");
  ASSERT_TRUE(platform::replace_file(kFile, "new"));
  std::array<char, 8> text{};
  EXPECT_EQ(std::fread(text.data(), 1, text.size(), reader.get()), 3U);
  EXPECT_STREQ(text.data(), "old");
}

TEST_F(ReplacedFile, IsAsItWasWhenTheDiskIsFull) {
  ASSERT_TRUE(platform::replace_file(kFile, "old"));
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{.rlim_cur = 4096, .rlim_max = limit.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const bool replaced = platform::replace_file(kFile, std::string(10000, 'x'));
  const int failure = errno;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  std::signal(SIGXFSZ, handler);
  EXPECT_FALSE(replaced);
  EXPECT_EQ(failure, EFBIG);
  EXPECT_EQ(platform::read_file(kFile), "old");
  EXPECT_EQ(names(), std::vector<std::string>{"state"});
}

TEST_F(ReplacedFile, TellsWhatStandsInItsWayAndLeavesNothing) {
  EXPECT_FALSE(platform::replace_file("/tmp/replaced_file/none/state", "x"));
  EXPECT_EQ(errno, ENOENT);
  ASSERT_TRUE(std::filesystem::create_directory(kFile));
  EXPECT_FALSE(platform::replace_file(kFile, "x"));
  EXPECT_EQ(errno, EISDIR);
  EXPECT_EQ(names(), std::vector<std::string>{"state"});
}

TEST_F(ReplacedFile, NeverWritesThroughALink) {
  ASSERT_TRUE(platform::write_file("/tmp/replaced_file/victim", "kept"));
  std::filesystem::create_symlink("victim", kFile);
  ASSERT_TRUE(platform::replace_file(kFile, "new"));
  EXPECT_EQ(platform::read_file("/tmp/replaced_file/victim"), "kept");
  EXPECT_TRUE(S_ISREG(mode_of(kFile)));
}

using PrivateFile = ReplacedFile;

TEST_F(PrivateFile, IsMadeAnewWhateverWasPlantedThere) {
  const auto expect_new = [](const char* planted) {
    platform::UniqueFd file = platform::create_private_file(kFile);
    ASSERT_TRUE(file.valid()) << planted;
    EXPECT_TRUE(platform::write_whole(file.get(), "secret"));
    EXPECT_EQ(mode_of(kFile), S_IFREG | 0600U) << planted;
    EXPECT_EQ(platform::read_file(kFile), "secret") << planted;
    EXPECT_NE(fcntl(file.get(), F_GETFD) & FD_CLOEXEC, 0);
    std::remove(kFile);
  };
  expect_new("nothing");
  ASSERT_TRUE(platform::write_file("/tmp/replaced_file/victim", "kept"));
  std::filesystem::create_symlink("victim", kFile);
  expect_new("a link");
  EXPECT_EQ(platform::read_file("/tmp/replaced_file/victim"), "kept");
  std::filesystem::create_symlink("nowhere", kFile);
  expect_new("a link to nothing");
  ASSERT_EQ(mkfifo(kFile, 0666), 0);
  expect_new("a FIFO");
  ASSERT_TRUE(platform::write_file(kFile, "longer than what follows", 0666));
  const platform::FilePtr spy = platform::open_file(kFile, "r");
  expect_new("a file that somebody has open");
  EXPECT_NE(std::fgetc(spy.get()), 's');
}

TEST_F(PrivateFile, IsRefusedWhereAFolderStands) {
  ASSERT_TRUE(std::filesystem::create_directory(kFile));
  EXPECT_FALSE(platform::create_private_file(kFile).valid());
}

TEST(UniqueFd, ClosesWhatItOwnsOnce) {
  const int raw = open("/dev/null", O_RDONLY);
  {
    platform::UniqueFd first(raw);
    platform::UniqueFd second(std::move(first));
    EXPECT_FALSE(first.valid());  // NOLINT(bugprone-use-after-move): that is the point
    EXPECT_EQ(second.get(), raw);
  }
  EXPECT_EQ(fcntl(raw, F_GETFD), -1);
}

TEST(OpenFile, IsCloseOnExec) {
  const platform::FilePtr file = platform::open_file("/dev/null", "r");
  ASSERT_TRUE(file);
  EXPECT_NE(fcntl(fileno(file.get()), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(AFifo, IsNoFileToRead) {
  const std::string path = "/tmp/planted_fifo_test";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(platform::read_file(path.c_str()), std::nullopt);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(platform::open_file(path.c_str(), "r"), nullptr);
  platform::remove_file(path.c_str());
}

TEST(FileFacts, AreToldOfWhatExists) {
  const std::string path = "/tmp/file_facts_test";
  ASSERT_TRUE(platform::write_file(path.c_str(), "12345"));
  EXPECT_EQ(platform::file_size(path.c_str()), 5U);
  EXPECT_TRUE(platform::set_file_mode(path.c_str(), 0640));
  struct stat status {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);
  EXPECT_TRUE(platform::remove_file(path.c_str()));
  EXPECT_EQ(platform::file_size(path.c_str()), std::nullopt);
  EXPECT_FALSE(platform::set_file_mode(path.c_str(), 0640));
  EXPECT_FALSE(platform::remove_file(path.c_str()));
}

TEST(OpenExistingForWriting, KeepsWhatIsBehindAndMakesNothing) {
  const std::string path = "/tmp/open_existing_test";
  EXPECT_FALSE(platform::open_existing_for_writing(path.c_str()).valid());
  EXPECT_FALSE(platform::file_exists(path.c_str()));
  ASSERT_TRUE(platform::write_file(path.c_str(), "12345"));
  platform::UniqueFd file = platform::open_existing_for_writing(path.c_str());
  ASSERT_TRUE(file.valid());
  EXPECT_TRUE(platform::write_whole(file.get(), "ab"));
  EXPECT_TRUE(platform::close_file(std::move(file)));
  EXPECT_EQ(platform::read_file(path.c_str()), "ab345");
  platform::remove_file(path.c_str());
}

}  // namespace
