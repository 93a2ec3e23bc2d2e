// Look-ups in the table of brands.
#include "domain/brands.h"

#include <gtest/gtest.h>

namespace {

TEST(Brands, EachRowKnowsItsIndex) {
  for (int index : {kBrandOrvane, kBrandTesmir, kBrandOther}) {
    EXPECT_EQ(brands::index_of(brands::of_index(index)), index);
    EXPECT_EQ(brands::is_known(brands::of_index(index)), index != kBrandOther);
  }
}

TEST(Brands, AnIdIsFoundWholeOrByItsBeginning) {
  struct Row {
    std::string_view id;
    int by_beginning;
    int by_whole;
  };
  for (const Row& row : {Row{"0221", kBrandOrvane, kBrandOrvane}, Row{"0121", kBrandTesmir, kBrandTesmir},
                         Row{"0221\n", kBrandOrvane, kBrandOther}, Row{"0121-x", kBrandTesmir, kBrandOther},
                         Row{"", kBrandOther, kBrandOther}, Row{"022", kBrandOther, kBrandOther},
                         Row{"0321", kBrandOther, kBrandOther}, Row{" 0221", kBrandOther, kBrandOther}}) {
    EXPECT_EQ(brands::index_of(brands::of_id(row.id)), row.by_beginning) << row.id;
    EXPECT_EQ(brands::index_of(brands::of_whole_id(row.id)), row.by_whole) << row.id;
  }
}

TEST(Brands, AnUnknownUnitHasNoUpdateToolButTheOneThatVerifies) {
  const brands::UpdateTool& tool = brands::of_index(kBrandOther).update_tool;
  EXPECT_EQ(tool.check, nullptr);
  EXPECT_EQ(tool.install, nullptr);
  EXPECT_STREQ(tool.verify, brands::of_index(kBrandTesmir).update_tool.verify);
}

}  // namespace
