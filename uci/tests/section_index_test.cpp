// Applying of many records: the sections that they name are found as a walk through the package would find them,
// without the walk.
#include "section_index.h"

#include <string>

#include "elements.h"
#include "package_folder.h"

namespace {

constexpr int kMany = 40;  // records, more than are applied without an index

class ManyRecords : public PackageFolder {
 protected:
  // Stages records that change nothing that is looked at, and these.
  void stage(const std::string& records) {
    std::string many;
    for (int at = 0; at < kMany; ++at) many += "pkg.s.b='" + std::to_string(at) + "'\n";
    put("save/pkg", many + records);
  }
  // The committed package, of which the last section was `config thing 's'` with its two options.
  std::string committed() {
    uci_package* package = nullptr;
    EXPECT_EQ(uci_load(context_.get(), "pkg", &package), UCI_OK);
    EXPECT_EQ(commit(package), UCI_OK);
    return get("conf/pkg");
  }
  static std::string s() { return "\nconfig thing 's'\n\toption a '1'\n\toption b '39'\n"; }
};

TEST_F(ManyRecords, GoToSectionsThatWereStagedBefore) {
  stage("+pkg.n='thing'\npkg.n.a='2'\npkg.m='other'\npkg.m.a='3'\npkg.none.a='4'\n");
  EXPECT_EQ(committed(), s() + "\nconfig thing\n\toption a '2'\n\nconfig other 'm'\n\toption a '3'\n\n");
}

TEST_F(ManyRecords, DoNotReachARemovedSection) {
  stage("pkg.n='thing'\n-pkg.n\npkg.n.a='2'\n-pkg.n\npkg.m='thing'\n");
  EXPECT_EQ(committed(), s() + "\nconfig thing 'm'\n\n");
}

TEST_F(ManyRecords, ReachARenamedSectionByItsNewName) {
  stage("@pkg.s='n'\npkg.s.a='2'\npkg.n.a='3'\n");
  EXPECT_EQ(committed(), "\nconfig thing 'n'\n\toption a '3'\n\toption b '39'\n\n");
}

TEST_F(ManyRecords, ReachTheFirstOfTwoNamesakes) {
  stage("pkg.n='thing'\n@pkg.s='n'\npkg.n.a='2'\n");
  EXPECT_EQ(committed(), "\nconfig thing 'n'\n\toption a '2'\n\toption b '39'\n\nconfig thing 'n'\n\n");
}

TEST_F(ManyRecords, ReachTheOtherOfTwoNamesakesWhenTheFirstIsGone) {
  stage("pkg.n='thing'\n@pkg.n='s'\n-pkg.s\npkg.s.a='2'\n");
  EXPECT_EQ(committed(), "\nconfig thing 's'\n\toption a '2'\n\n");
}

TEST_F(ManyRecords, ReachTheOtherOfTwoNamesakesWhenTheFirstWasMovedBehindIt) {
  stage("pkg.n='thing'\n@pkg.n='s'\npkg.s.c='2'\n^pkg.s='1'\npkg.s.a='3'\n");
  EXPECT_EQ(committed(), "\nconfig thing 's'\n\toption a '3'\n" + s() + "\toption c '2'\n\n");
}

TEST_F(ManyRecords, AreAppliedWithoutAWalkForEach) {
  uci_package* package = look_up("pkg").p;
  uci::SectionIndex index(*package);
  uci_section* section = look_up("pkg.s").s;
  for (int at = 0; at < kMany; ++at) EXPECT_EQ(index.find("s"), section);
  uci::list_remove(section->e.list);  // a walk would not meet it
  EXPECT_EQ(index.find("s"), section);
  uci::list_add_tail(package->sections, section->e.list);
}

}  // namespace
