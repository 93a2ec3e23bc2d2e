// What a commit guarantees: mode, links, other writers, errors that keep what is staged.
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <uci.h>

namespace {

namespace fs = std::filesystem;

struct FreeContext {
  void operator()(uci_context* context) const noexcept { uci_free_context(context); }
};

class Commit : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string folder = (fs::temp_directory_path() / "uci-commit-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    folder_ = folder;
    fs::create_directories(folder_ / "conf");
    put(folder_ / "conf/pkg", "config thing 's'\n\toption a '1'\n");
    context_.reset(uci_alloc_context());
    uci_set_confdir(context_.get(), (folder_ / "conf").c_str());
    uci_set_savedir(context_.get(), (folder_ / "save").c_str());
  }
  void TearDown() override { fs::remove_all(folder_); }

  static void put(const fs::path& path, const std::string& text) { std::ofstream(path) << text; }
  static std::string get(const fs::path& path) {
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
  }
  // Sets one option in memory; the package that it is in.
  uci_package* set(std::string tuple) {
    tuple_ = std::move(tuple);
    uci_ptr ptr{};
    EXPECT_EQ(uci_lookup_ptr(context_.get(), &ptr, tuple_.data(), true), UCI_OK);
    EXPECT_EQ(uci_set(context_.get(), &ptr), UCI_OK);
    return ptr.p;
  }
  int commit(uci_package* package) { return uci_commit(context_.get(), &package, false); }

  fs::path folder_;
  std::unique_ptr<uci_context, FreeContext> context_;
  std::string tuple_;
  const std::string new_text_ = "\nconfig thing 's'\n\toption a '2'\n\n";
};

TEST_F(Commit, KeepsTheMode) {
  chmod((folder_ / "conf/pkg").c_str(), 0604);
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_OK);
  struct stat status {};
  stat((folder_ / "conf/pkg").c_str(), &status);
  EXPECT_EQ(status.st_mode & 07777U, 0604U);
  EXPECT_EQ(get(folder_ / "conf/pkg"), new_text_);
}

TEST_F(Commit, KeepsASymbolicLinkAndReplacesItsTarget) {
  fs::create_directories(folder_ / "elsewhere");
  fs::rename(folder_ / "conf/pkg", folder_ / "elsewhere/real");
  fs::create_symlink(folder_ / "elsewhere/real", folder_ / "conf/pkg");
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_OK);
  EXPECT_TRUE(fs::is_symlink(folder_ / "conf/pkg"));
  EXPECT_EQ(get(folder_ / "elsewhere/real"), new_text_);
}

TEST_F(Commit, LeavesNothingButThePackage) {
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_OK);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "conf"), fs::directory_iterator()), 1);
}

TEST_F(Commit, OfAPackageThatBrokeMeanwhileKeepsWhatIsStaged) {
  uci_package* package = set("pkg.s.a=2");
  put(folder_ / "conf/pkg", "bogus\n");
  EXPECT_EQ(uci_commit(context_.get(), &package, false), UCI_ERR_PARSE);
  EXPECT_STREQ(package->e.name, "pkg");  // still a package that can be used
  EXPECT_EQ(get(folder_ / "conf/pkg"), "bogus\n");
  EXPECT_EQ(get(folder_ / "save/pkg"), "pkg.s.a='2'\n");
}

TEST_F(Commit, BringsInWhatAnotherWriterStaged) {
  uci_package* package = set("pkg.s.a=2");
  fs::create_directories(folder_ / "save");
  put(folder_ / "save/pkg", "pkg.s.b='3'\n");
  EXPECT_EQ(commit(package), UCI_OK);
  EXPECT_EQ(get(folder_ / "conf/pkg"), "\nconfig thing 's'\n\toption a '2'\n\toption b '3'\n\n");
}

TEST_F(Commit, OfNothingLeavesTheFileAsItIs) {
  uci_package* package = nullptr;
  ASSERT_EQ(uci_load(context_.get(), "pkg", &package), UCI_OK);
  EXPECT_EQ(commit(package), UCI_OK);
  EXPECT_EQ(get(folder_ / "conf/pkg"), "config thing 's'\n\toption a '1'\n");
}

TEST_F(Commit, ToAFolderThatIsGoneIsReported) {
  uci_package* package = set("pkg.s.a=2");
  fs::remove_all(folder_ / "conf");
  EXPECT_EQ(commit(package), UCI_ERR_IO);
}

TEST_F(Commit, MissingArgumentsAreRefused) {
  EXPECT_EQ(uci_load(context_.get(), nullptr, nullptr), UCI_ERR_INVAL);
  EXPECT_EQ(uci_reorder_section(context_.get(), nullptr, 0), UCI_ERR_INVAL);
  EXPECT_EQ(uci_import(context_.get(), nullptr, "x", nullptr, true), UCI_ERR_INVAL);
  uci_ptr empty{};
  EXPECT_EQ(uci_lookup_ptr(context_.get(), &empty, nullptr, true), UCI_ERR_INVAL);
  EXPECT_EQ(uci_set(context_.get(), &empty), UCI_ERR_INVAL);
  EXPECT_FALSE(uci_validate_text(nullptr));
}

}  // namespace
