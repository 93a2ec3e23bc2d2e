// Names from outside: which are refused, and that none reaches another record, section or file.
#include <string>
#include <vector>

#include "package_folder.h"

namespace {

using Names = PackageFolder;

TEST_F(Names, OfPackagesStayInTheirFolder) {
  put("outside", "config thing 's'\n");
  put("conf/sub/deep", "config thing 's'\n");
  struct Row {
    const char* name;
    int code;
  };
  const std::vector<Row> rows{
      {"", UCI_ERR_INVAL},
      {"two words", UCI_ERR_INVAL},
      {"tab\t", UCI_ERR_INVAL},
      {"line\nfeed", UCI_ERR_INVAL},
      {"caf\xc3\xa9", UCI_ERR_INVAL},
      {"\x7f", UCI_ERR_INVAL},
      {".", UCI_ERR_NOTFOUND},
      {"..", UCI_ERR_NOTFOUND},
      {".hidden", UCI_ERR_NOTFOUND},
      {"../outside", UCI_ERR_NOTFOUND},
      {"sub/../../outside", UCI_ERR_NOTFOUND},
      {"sub/..", UCI_ERR_NOTFOUND},
      {"sub", UCI_ERR_NOTFOUND},  // a folder
      {"none", UCI_ERR_NOTFOUND},
      {"sub/deep", UCI_OK},
  };
  for (const Row& row : rows) EXPECT_EQ(uci_load(context_.get(), row.name, nullptr), row.code) << row.name;
  EXPECT_EQ(uci_load(context_.get(), path("outside").c_str(), nullptr), UCI_OK);  // said openly
}

TEST_F(Names, FilledInByHandCannotWriteOtherRecords) {
  uci_package* package = nullptr;
  ASSERT_EQ(uci_load(context_.get(), "pkg", &package), UCI_OK);
  for (const char* name : {"", "a='9'\n-pkg.s", "a\"", "a'", "a\\", "a#", "a;", "a=b", "a.b", "\x01", "a\tb"}) {
    uci_ptr ptr{};
    ptr.p = package;
    ptr.section = "s";
    ptr.option = name;
    ptr.value = "x";
    EXPECT_EQ(uci_set(context_.get(), &ptr), UCI_ERR_INVAL) << name;
    ptr = uci_ptr{};
    ptr.p = package;
    ptr.section = name;
    ptr.value = "thing";
    EXPECT_EQ(uci_set(context_.get(), &ptr), UCI_ERR_INVAL) << name;
  }
  EXPECT_EQ(uci_save(context_.get(), package), UCI_OK);
  EXPECT_FALSE(exists("save/pkg"));
}

TEST_F(Names, OfAPackageThatIsWrittenAtOnceAreCheckedFirst) {
  put("other", "config thing 's'\n\toption a '1'\n");
  const std::string before = get("other");
  uci_package* package = nullptr;
  ASSERT_EQ(uci_load(context_.get(), path("other").c_str(), &package), UCI_OK);
  uci_section* section = nullptr;
  EXPECT_EQ(uci_add_section(context_.get(), package, "two words", &section), UCI_ERR_INVAL);
  uci_ptr ptr{};
  ptr.p = package;
  ptr.section = "s";
  ptr.option = "two words";
  ptr.value = "x";
  EXPECT_EQ(uci_set(context_.get(), &ptr), UCI_ERR_INVAL);
  ptr = uci_ptr{};
  ptr.p = package;
  ptr.section = "s";
  ptr.value = "two words";
  EXPECT_EQ(uci_rename(context_.get(), &ptr), UCI_ERR_INVAL);
  EXPECT_EQ(uci_save(context_.get(), package), UCI_OK);
  EXPECT_EQ(get("other"), "\n" + before + "\n");
}

TEST_F(Names, OfASectionOfAnotherTypeCannotBeTaken) {
  put("conf/pkg", "config thing 's'\nconfig other 'o'\n");
  uci_ptr ptr = look_up("pkg.s=o");
  EXPECT_EQ(uci_rename(context_.get(), &ptr), UCI_ERR_DUPLICATE);
  put("save/pkg", "@pkg.s='o'\npkg.o.a='1'\n");
  open();
  uci_package* package = nullptr;
  ASSERT_EQ(uci_load(context_.get(), "pkg", &package), UCI_OK);
  EXPECT_EQ(commit(package), UCI_OK);
  EXPECT_EQ(get("conf/pkg"), "\nconfig thing 's'\n\nconfig other 'o'\n\toption a '1'\n\n");
}

TEST_F(Names, WithANulByteMakeAFileUnreadable) {
  put("conf/pkg", std::string("config thing 's'\n\toption a 'x\0y'\n", 33));
  EXPECT_EQ(uci_load(context_.get(), "pkg", nullptr), UCI_ERR_PARSE);
}

TEST_F(Names, OfTypesWithQuotesAreReadBackAsTheyWere) {
  put("conf/pkg", "config \"a'#;\\\\\\\"b\" 's'\n");
  const std::string type = look_up("pkg.s").s->type;
  EXPECT_EQ(type, "a'#;\\\"b");
  EXPECT_EQ(commit(set("pkg.s.a=2")), UCI_OK);
  open();
  EXPECT_EQ(look_up("pkg.s").s->type, type);
}

// Each would be read back as something else: another package, another kind of record, a comment.
TEST_F(Names, OfPackagesThatNoRecordCanHoldAreRefused) {
  for (const char* name :
       {"a.b", "a=b", "a#b", "a;b", "a'b", "a\"b", "a\\b", "-pkg", "+pkg", "@pkg", "^pkg", "|pkg", "~pkg"}) {
    put(std::string("conf/") + name, "config thing 's'\n\toption a '1'\n");
    uci_package* package = nullptr;
    ASSERT_EQ(uci_load(context_.get(), name, &package), UCI_OK) << name;
    uci_ptr ptr{};
    ptr.p = package;
    ptr.section = "s";
    ptr.option = "a";
    ptr.value = "2";
    EXPECT_EQ(uci_set(context_.get(), &ptr), UCI_ERR_INVAL) << name;
    uci_section* added = nullptr;
    EXPECT_EQ(uci_add_section(context_.get(), package, "thing", &added), UCI_ERR_INVAL) << name;
    EXPECT_EQ(added, nullptr) << name;
    EXPECT_EQ(uci_save(context_.get(), package), UCI_OK) << name;
  }
  EXPECT_FALSE(exists("save"));
}

TEST_F(Names, ThatCouldNotBeReadAgainAreNotWritten) {
  struct Row {
    const char* section;
    const char* option;
    const char* value;
  };
  const std::string before = get("conf/pkg");
  for (const Row& row : {Row{"bad-section", nullptr, "thing"}, Row{"s", "bad-option", "x"}}) {
    open();
    uci_package* package = look_up("pkg").p;
    uci_ptr ptr{};
    ptr.p = package;
    ptr.section = row.section;
    ptr.option = row.option;
    ptr.value = row.value;
    EXPECT_EQ(uci_set(context_.get(), &ptr), UCI_OK);
    EXPECT_EQ(uci_commit(context_.get(), &package, true), UCI_ERR_INVAL) << row.section;
    EXPECT_EQ(get("conf/pkg"), before);
  }
  open();
  uci_package* package = look_up("pkg").p;
  uci_section* section = nullptr;
  EXPECT_EQ(uci_add_section(context_.get(), package, "bad type", &section), UCI_OK);
  put("save/pkg", "pkg.s.a='2'\n");
  EXPECT_EQ(uci_commit(context_.get(), &package, true), UCI_ERR_INVAL);
  EXPECT_EQ(get("conf/pkg"), before);
}

}  // namespace
