// Staged changes: which files they come from, what applies, and how they are taken back.
#include <filesystem>
#include <string>

#include "package_folder.h"

namespace {

using Staging = PackageFolder;

TEST_F(Staging, LaterFoldersOfThePathWinAndTheSavedirIsLast) {
  put("extra/pkg", "pkg.s.a='extra'\npkg.s.b='extra'\n");
  put("save/pkg", "pkg.s.a='save'\n");
  EXPECT_EQ(uci_add_delta_path(context_.get(), path("extra").c_str()), UCI_OK);
  EXPECT_EQ(value("pkg.s.a"), "save");
  EXPECT_EQ(value("pkg.s.b"), "extra");
}

TEST_F(Staging, AFormerSavedirIsStillRead) {
  put("save/pkg", "pkg.s.b='2'\n");
  uci_set_savedir(context_.get(), path("other").c_str());
  EXPECT_EQ(value("pkg.s.b"), "2");
}

TEST_F(Staging, MakesTheSavedirWithTheModeOfThePackageFolder) {
  std::filesystem::permissions(folder_ / "conf", std::filesystem::perms(0700));
  EXPECT_EQ(uci_save(context_.get(), set("pkg.s.a=2")), UCI_OK);
  EXPECT_EQ(std::filesystem::status(folder_ / "save").permissions(), std::filesystem::perms(0700));
  EXPECT_EQ(get("save/pkg"), "pkg.s.a='2'\n");
}

TEST_F(Staging, WithoutASavedirIsReportedAndKeptInMemory) {
  put("save", "a file");
  uci_package* package = set("pkg.s.a=2");
  EXPECT_EQ(uci_save(context_.get(), package), UCI_ERR_IO);
  std::filesystem::remove(folder_ / "save");
  EXPECT_EQ(uci_save(context_.get(), package), UCI_OK);
  EXPECT_EQ(get("save/pkg"), "pkg.s.a='2'\n");
}

TEST_F(Staging, PassesOverWhatIsNoFile) {
  std::filesystem::create_directories(folder_ / "save/pkg");
  EXPECT_EQ(value("pkg.s.a"), "1");
}

TEST_F(Staging, OfValuesWithQuotesAndLinesIsReadBack) {
  const std::string text = "it's \"two\"\nlines \\ # ;\ttab";
  EXPECT_EQ(uci_save(context_.get(), set("pkg.s.a=" + text)), UCI_OK);
  open();
  EXPECT_EQ(value("pkg.s.a"), text);
}

class Revert : public PackageFolder {
 protected:
  void SetUp() override {
    PackageFolder::SetUp();
    put("conf/pkg", "config thing\n\toption a '1'\n\toption b '1'\n");
    name_ = look_up("pkg.@thing[0]").s->e.name;
    put("save/pkg", "pkg." + name_ + ".a='2'\npkg." + name_ + ".b='2'\npkg.n='thing'\n");
    open();
  }
  int revert(const std::string& tuple) {
    uci_ptr ptr = look_up(tuple);
    return uci_revert(context_.get(), &ptr);
  }
  std::string name_;
};

TEST_F(Revert, OfAnOptionByPosition) {
  EXPECT_EQ(revert("pkg.@thing[0].a"), UCI_OK);
  EXPECT_EQ(value("pkg.@thing[0].a"), "1");
  EXPECT_EQ(value("pkg.@thing[0].b"), "2");
  EXPECT_EQ(get("save/pkg"), "pkg." + name_ + ".b='2'\npkg.n='thing'\n");
}

TEST_F(Revert, OfASectionTakesItsOptionsAlong) {
  EXPECT_EQ(revert("pkg." + name_), UCI_OK);
  EXPECT_EQ(get("save/pkg"), "pkg.n='thing'\n");
}

TEST_F(Revert, OfAPackageLeavesAnEmptyFile) {
  EXPECT_EQ(revert("pkg"), UCI_OK);
  EXPECT_TRUE(exists("save/pkg"));
  EXPECT_EQ(get("save/pkg"), "");
}

TEST_F(Revert, LeavesNothingButTheDeltaFile) {
  EXPECT_EQ(revert("pkg.n"), UCI_OK);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_ / "save"), {}), 1);
}

TEST_F(Revert, OfWhatIsInMemoryOnly) {
  set("pkg.n.c=3");
  EXPECT_EQ(revert("pkg.n.c"), UCI_OK);
  EXPECT_EQ(value("pkg.n.c"), "(none)");
  EXPECT_EQ(value("pkg.@thing[0].a"), "2");
}

TEST_F(Revert, OfAPackageThatIsWrittenAtOnceIsRefused) {
  put("other", "config thing 's'\n");
  EXPECT_EQ(revert(path("other")), UCI_ERR_INVAL);
}

}  // namespace
