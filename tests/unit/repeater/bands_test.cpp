// The bands of a repeater and of its multi-link variants.
#include "repeater/bands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;

TEST(MloVariants, AreFoundByWhatIsStored) {
  ASSERT_NE(find_mlo_variant("1"), nullptr);
  EXPECT_THAT(find_mlo_variant("1")->bands, ElementsAre(k24g, k5g));
  EXPECT_THAT(find_mlo_variant("2")->bands, ElementsAre(k5g, k6g));
  EXPECT_THAT(find_mlo_variant("3")->bands, ElementsAre(k24g, k5g, k6g));
  for (const char* none : {"0", "", "4", "11", "x"}) EXPECT_EQ(find_mlo_variant(none), nullptr) << none;
}

TEST(MloVariants, AreStoredAsTheNumberThatIsAskedFor) {
  for (const MloVariant& variant : kMloVariants) EXPECT_EQ(std::to_string(variant.code), variant.stored);
}

}  // namespace
