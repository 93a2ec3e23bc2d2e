// What a commit guarantees: mode, links, other writers, errors that keep what is staged.
#include <ctime>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include "package_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kNewText = "\nconfig thing 's'\n\toption a '2'\n\n";

using Commit = PackageFolder;

TEST_F(Commit, KeepsTheMode) {
  chmod(path("conf/pkg").c_str(), 0604);
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_OK);
  struct stat status {};
  stat(path("conf/pkg").c_str(), &status);
  EXPECT_EQ(status.st_mode & 07777U, 0604U);
  EXPECT_EQ(get("conf/pkg"), kNewText);
}

TEST_F(Commit, KeepsASymbolicLinkAndReplacesItsTarget) {
  fs::create_directories(folder_ / "elsewhere");
  fs::rename(folder_ / "conf/pkg", folder_ / "elsewhere/real");
  fs::create_symlink(folder_ / "elsewhere/real", folder_ / "conf/pkg");
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_OK);
  EXPECT_TRUE(fs::is_symlink(folder_ / "conf/pkg"));
  EXPECT_EQ(get("elsewhere/real"), kNewText);
}

TEST_F(Commit, LeavesNothingButThePackage) {
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_OK);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "conf"), fs::directory_iterator()), 1);
}

TEST_F(Commit, OfAPackageThatBrokeMeanwhileKeepsWhatIsStaged) {
  uci_package* package = set("pkg.s.a=2");
  put("conf/pkg", "bogus\n");
  EXPECT_EQ(uci_commit(context_.get(), &package, false), UCI_ERR_PARSE);
  EXPECT_STREQ(package->e.name, "pkg");  // still a package that can be used
  EXPECT_EQ(value("pkg.s.a"), "2");
  EXPECT_EQ(get("conf/pkg"), "bogus\n");
  EXPECT_EQ(get("save/pkg"), "pkg.s.a='2'\n");
}

// An editor that writes in place, and no time tells: what was loaded is gone, but nobody takes the rest for the
// package.
TEST_F(Commit, OfAPackageThatBrokeUnnoticedReadsItAgain) {
  const std::string sound = "config thing 's'\n\toption a '1'\n\toption b '3'\n";
  const auto put_unnoticed = [&](const std::string& text) {
    put("conf/pkg", text);
    const utimbuf same{1000000000, 1000000000};
    utime(path("conf/pkg").c_str(), &same);
  };
  put_unnoticed(sound);
  uci_package* package = set("pkg.s.a=2");
  put_unnoticed(std::string(sound).replace(sound.rfind("option"), 6, "optiom"));
  EXPECT_EQ(commit(package), UCI_ERR_PARSE);
  EXPECT_EQ(uci_commit(context_.get(), &package, true), UCI_ERR_PARSE);
  char tuple[] = "pkg.s.b";
  uci_ptr ptr{};
  EXPECT_EQ(uci_lookup_ptr(context_.get(), &ptr, tuple, true), UCI_ERR_PARSE);
  put_unnoticed(sound);
  EXPECT_EQ(value("pkg.s.a"), "2");
  EXPECT_EQ(value("pkg.s.b"), "3");
  EXPECT_EQ(uci_commit(context_.get(), &package, true), UCI_OK);
  EXPECT_EQ(get("conf/pkg"), "\nconfig thing 's'\n\toption a '2'\n\toption b '3'\n\n");
}

TEST_F(Commit, OfTextsThatAreLongerThanAPieceOfTheFileKeepsThem) {
  const std::string lines = "a line\n" + std::string(200000, 'x') + "\nanother";
  std::string options;
  for (int at = 0; at < 5000; ++at) options.append("\toption n").append(std::to_string(at)).append(" 'a value'\n");
  put("conf/pkg", "\nconfig thing 's'\n\toption a '1'\n\toption lines '" + lines + "'\n" + options + "\n");
  const std::string before = get("conf/pkg");
  EXPECT_EQ(value("pkg.s.lines"), lines);
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_OK);
  EXPECT_EQ(get("conf/pkg"), std::string(before).replace(before.find("'1'"), 3, "'2'"));
  EXPECT_EQ(value("pkg.s.n4999"), "a value");
}

TEST_F(Commit, BringsInWhatAnotherWriterStaged) {
  uci_package* package = set("pkg.s.a=2");
  fs::create_directories(folder_ / "save");
  put("save/pkg", "pkg.s.b='3'\n");
  EXPECT_EQ(commit(package), UCI_OK);
  EXPECT_EQ(get("conf/pkg"), "\nconfig thing 's'\n\toption a '2'\n\toption b '3'\n\n");
}

TEST_F(Commit, OfNothingLeavesTheFileAsItIs) {
  uci_package* package = nullptr;
  ASSERT_EQ(uci_load(context_.get(), "pkg", &package), UCI_OK);
  EXPECT_EQ(commit(package), UCI_OK);
  EXPECT_EQ(get("conf/pkg"), "config thing 's'\n\toption a '1'\n");
}

TEST_F(Commit, LeavesNoChangesListed) {
  put("save/pkg", "pkg.s.a='2'\npkg.none.a='2'\n");
  uci_package* package = look_up("pkg").p;
  EXPECT_FALSE(uci_list_empty(&package->saved_delta));
  EXPECT_EQ(uci_commit(context_.get(), &package, false), UCI_OK);
  EXPECT_TRUE(uci_list_empty(&package->saved_delta));
}

TEST_F(Commit, ToAFolderThatIsGoneIsReported) {
  uci_package* package = set("pkg.s.a=2");
  fs::remove_all(folder_ / "conf");
  EXPECT_EQ(commit(package), UCI_ERR_IO);
}

TEST_F(Commit, RemovesWhatAKilledCommitLeftBehind) {
  put("conf/.pkg.uci-Ab12Cd", "old");
  put("conf/.pkg.uci-Young1", "of a commit that is still going on");
  put("conf/.pkg.uci-keep", "not one of ours");
  const utimbuf long_ago{std::time(nullptr) - 3600, std::time(nullptr) - 3600};
  utime(path("conf/.pkg.uci-Ab12Cd").c_str(), &long_ago);
  utime(path("conf/.pkg.uci-keep").c_str(), &long_ago);
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_OK);
  EXPECT_FALSE(exists("conf/.pkg.uci-Ab12Cd"));
  EXPECT_TRUE(exists("conf/.pkg.uci-Young1"));
  EXPECT_TRUE(exists("conf/.pkg.uci-keep"));
}

TEST_F(Commit, GoesToTheOverridingFolderThatThePackageCameFrom) {
  put("conf2/pkg", "config thing 's'\n\toption a '7'\n");
  EXPECT_EQ(value("pkg.s.a"), "7");
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_OK);
  EXPECT_EQ(get("conf2/pkg"), kNewText);
  EXPECT_EQ(get("conf/pkg"), "config thing 's'\n\toption a '1'\n");
}

TEST_F(Commit, WithAnotherNameOfTheSavedirOnItsPathDoesNotWaitForItself) {
  put("save/pkg", "pkg.s.a='2'\n");
  uci_add_delta_path(context_.get(), (path("save") + "/").c_str());
  uci_package* package = nullptr;
  ASSERT_EQ(uci_load(context_.get(), "pkg", &package), UCI_OK);
  EXPECT_EQ(commit(package), UCI_OK);
  EXPECT_EQ(get("conf/pkg"), kNewText);
}

TEST_F(Commit, WithTheSavedirInThePackageFolderIsRefused) {
  uci_set_savedir(context_.get(), path("conf").c_str());
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_ERR_IO);
  EXPECT_EQ(get("conf/pkg"), "config thing 's'\n\toption a '1'\n");
}

TEST_F(Commit, WithSomethingUnreadableForADeltaFileIsReported) {
  fs::create_directories(folder_ / "save/pkg");
  uci_package* package = nullptr;
  ASSERT_EQ(uci_load(context_.get(), "pkg", &package), UCI_OK);
  EXPECT_EQ(commit(package), UCI_ERR_IO);
}

TEST_F(Commit, OfAnImportedPackageMakesAFileThatOnlyItsOwnerReads) {
  char text[] = "config thing 's'\n\toption a '2'\n";
  FILE* stream = fmemopen(text, sizeof(text) - 1, "r");
  uci_package* package = nullptr;
  EXPECT_EQ(uci_import(context_.get(), stream, "fresh", &package, true), UCI_OK);
  fclose(stream);
  EXPECT_EQ(uci_commit(context_.get(), &package, false), UCI_ERR_INVAL);
  EXPECT_EQ(uci_commit(context_.get(), &package, true), UCI_OK);
  EXPECT_EQ(get("conf/fresh"), kNewText);
  struct stat status {};
  stat(path("conf/fresh").c_str(), &status);
  EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(Commit, OfAnImportedPackageReplacesAFileAndKeepsItsMode) {
  chmod(path("conf/pkg").c_str(), 0604);
  char text[] = "config thing 's'\n\toption a '2'\n";
  FILE* stream = fmemopen(text, sizeof(text) - 1, "r");
  uci_package* package = nullptr;
  EXPECT_EQ(uci_import(context_.get(), stream, "pkg", &package, true), UCI_OK);
  fclose(stream);
  EXPECT_EQ(uci_commit(context_.get(), &package, true), UCI_OK);
  EXPECT_EQ(get("conf/pkg"), kNewText);
  struct stat status {};
  stat(path("conf/pkg").c_str(), &status);
  EXPECT_EQ(status.st_mode & 07777U, 0604U);
}

}  // namespace
