// The C interface: what programs in C and in C++ rely on beyond single functions.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "package_folder.h"

extern "C" int count_options(uci_package* package, const char* name);

namespace {

using Interface = PackageFolder;

std::string error_text(uci_context* context) {
  char* text = nullptr;
  uci_get_errorstr(context, &text, nullptr);
  std::string result = text;
  std::free(text);
  return result;
}

TEST_F(Interface, WalksElementsFromC) {
  put("conf/pkg", "config t\n\toption a 1\nconfig t\n\toption a 1\n\tlist b x\n");
  uci_package* package = look_up("pkg").p;
  EXPECT_EQ(count_options(package, "a"), 2);
  EXPECT_EQ(count_options(package, "none"), 0);
}

TEST_F(Interface, TellsAPositionOnlyOfTheFileThatFailed) {
  put("conf/bad", "config t s\n\toption a-b 1\n");
  EXPECT_EQ(uci_load(context_.get(), "bad", nullptr), UCI_ERR_PARSE);
  EXPECT_EQ(error_text(context_.get()), "Parse error (invalid character in name field) at line 2, byte 12");
  std::string tuple = "a.b.c.d";
  uci_ptr ptr{};
  EXPECT_EQ(uci_lookup_ptr(context_.get(), &ptr, tuple.data(), true), UCI_ERR_PARSE);
  EXPECT_EQ(error_text(context_.get()), "Parse error");
}

TEST_F(Interface, SetsABitBeyondTheFirstWord) {
  unsigned long bits[2] = {0, 0};
  uci_bitfield_set(bits, static_cast<int>(BITS_PER_LONG) + 3);
  EXPECT_EQ(bits[0], 0UL);
  EXPECT_EQ(bits[1], 8UL);
}

TEST_F(Interface, DeletesTheCurrentElementOfASafeLoop) {
  put("conf/pkg", "config t\nconfig t\nconfig u\n");
  uci_package* package = look_up("pkg").p;
  uci_element* next = nullptr;
  uci_element* element = nullptr;
  uci_foreach_element_safe(&package->sections, next, element) {
    uci_ptr ptr{};
    ptr.p = package;
    ptr.s = uci_to_section(element);
    EXPECT_EQ(uci_delete(context_.get(), &ptr), UCI_OK);
  }
  EXPECT_TRUE(uci_list_empty(&package->sections));
}

TEST_F(Interface, RefusesMissingArguments) {
  EXPECT_EQ(uci_load(context_.get(), nullptr, nullptr), UCI_ERR_INVAL);
  EXPECT_EQ(uci_reorder_section(context_.get(), nullptr, 0), UCI_ERR_INVAL);
  EXPECT_EQ(uci_import(context_.get(), nullptr, "x", nullptr, true), UCI_ERR_INVAL);
  uci_ptr empty{};
  EXPECT_EQ(uci_lookup_ptr(context_.get(), &empty, nullptr, true), UCI_ERR_INVAL);
  EXPECT_EQ(uci_set(context_.get(), &empty), UCI_ERR_INVAL);
  EXPECT_EQ(uci_set(nullptr, &empty), UCI_ERR_INVAL);
  EXPECT_EQ(uci_set_conf2dir(nullptr, "x"), UCI_ERR_INVAL);
  EXPECT_FALSE(uci_validate_text(nullptr));
  uci_free_context(nullptr);
}

TEST_F(Interface, SwitchesTheOverridingFolderOff) {
  put("conf2/pkg", "config thing 's'\n\toption a '7'\n");
  uci_set_conf2dir(context_.get(), "");
  EXPECT_EQ(value("pkg.s.a"), "1");
}

TEST_F(Interface, ReportsAStreamThatCannotBeRead) {
  FILE* stream = std::fopen(path("conf").c_str(), "re");  // a folder: opens, and fails to be read
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(uci_import(context_.get(), stream, "x", nullptr, true), UCI_ERR_IO);
  std::fclose(stream);
}

TEST_F(Interface, ReadsTenThousandSections) {
  std::string text;
  for (int index = 0; index < 10000; ++index) text += "config t 's" + std::to_string(index) + "'\n\toption a '1'\n";
  put("conf/pkg", text);
  EXPECT_EQ(value("pkg.s9999.a"), "1");
  EXPECT_EQ(value("pkg.@t[-1].a"), "1");
  EXPECT_EQ(look_up("pkg").p->n_section, 10000);
}

// The values below are the tree's own texts, which the change frees.
TEST_F(Interface, TakesValuesThatPointIntoTheTree) {
  put("conf/pkg", "config thing 's'\n\toption a 'one'\n\tlist l 'x'\n\tlist l 'y'\n\tlist l 'x'\n");
  uci_ptr ptr = look_up("pkg.s.l");
  ptr.value = list_to_element(ptr.o->v.list.next)->name;
  EXPECT_EQ(uci_del_list(context_.get(), &ptr), UCI_OK);
  ptr = look_up("pkg.s.a");
  ptr.value = ptr.o->v.string;
  EXPECT_EQ(uci_add_list(context_.get(), &ptr), UCI_OK);
  ptr = look_up("pkg.s.a");
  ptr.value = ptr.o->e.name;
  EXPECT_EQ(uci_set(context_.get(), &ptr), UCI_OK);
  ptr.value = ptr.o->v.string;
  EXPECT_EQ(uci_rename(context_.get(), &ptr), UCI_OK);
  ptr = look_up("pkg.s");
  ptr.value = ptr.s->e.name;
  EXPECT_EQ(uci_set(context_.get(), &ptr), UCI_OK);
  EXPECT_EQ(commit(ptr.p), UCI_OK);
  EXPECT_EQ(get("conf/pkg"), "\nconfig s 's'\n\toption a 'a'\n\tlist l 'y'\n\n");
}

}  // namespace
