#include "answer/answers.h"

#include <set>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "domain/brands.h"

namespace {

using answers::Result;

TEST(FixedAnswers, EachWaitStandsInItsTextOnce) {
  std::set<std::string_view> texts;
  for (const answers::Wait& row : answers::kWaits) {
    EXPECT_EQ(row.text, R"({"result": 0, "version": 1, "waitTime": )" + std::to_string(row.seconds) + "}");
    EXPECT_TRUE(texts.insert(row.text).second) << row.text;
  }
  for (const answers::Wait& row : answers::kWirelessWaits) {
    EXPECT_EQ(row.text, R"({"result":0, "version":1, "waitTime": )" + std::to_string(row.seconds) + "}");
    EXPECT_TRUE(texts.insert(row.text).second) << row.text;
  }
}

TEST(FixedAnswers, AWaitWithoutATextIsNoAnswer) {
  EXPECT_THROW(answers::text_of(answers::kWaits, 21), std::out_of_range);
  EXPECT_THROW(answers::text_of(answers::kWirelessWaits, 90), std::out_of_range);
}

TEST(FixedAnswers, HaveATextForEachBrandsWaits) {
  for (const brands::Brand& brand : brands::kBrands) {
    for (const int seconds : {brand.waits_s.factory_reset, brand.waits_s.first_reboot}) {
      EXPECT_NO_THROW(answers::text_of(answers::kWaits, seconds)) << brand.log_name << " " << seconds;
    }
    for (const int seconds : {brand.waits_s.mesh_start, brand.waits_s.mesh_join}) {
      EXPECT_NO_THROW(answers::text_of(answers::kWirelessWaits, seconds)) << brand.log_name << " " << seconds;
    }
  }
}

TEST(FixedAnswers, ARefusalTellsItsResult) {
  for (const Result result : {Result::kUnusable, Result::kFailed, Result::kNotVerified}) {
    EXPECT_EQ(answers::refusal(result), R"({"result": )" + std::to_string(static_cast<int>(result)) + "}");
    EXPECT_EQ(answers::refused(result).text, answers::refusal(result));
    EXPECT_EQ(answers::refused(result).result, result);
    EXPECT_EQ(answers::refused(result).afterwards, nullptr);
  }
}

}  // namespace
