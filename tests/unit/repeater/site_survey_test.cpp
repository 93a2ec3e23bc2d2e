// Scans of the air: which are tried again, and which end the search.
#include "repeater/site_survey.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "asked_request.h"
#include "captured_log.h"
#include "fake_tools.h"
#include "handlers.h"
#include "waits.h"

namespace {

using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr const char* kScan = "BSS 00:11:22:33:44:55(on mld1)\n\tfreq: 2437\n\tsignal: -40.00 dBm\n\tSSID: net\n";

class SiteSurvey : public ::testing::Test {
 protected:
  void SetUp() override { waits::taken(); }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(SiteSurvey, EndsWithTheFirstScanThatTellsOfAny) {
  tools_.answer("iw", kScan);
  json::ListText list;
  EXPECT_EQ(scan_single_interface(0, list), 0);
  EXPECT_THAT(list.text(), HasSubstr("net"));
  EXPECT_THAT(tools_.awaited_calls(), ElementsAre("iw dev mld1 scan flush"));
  EXPECT_THAT(waits::taken(), IsEmpty());
}

TEST_F(SiteSurvey, ScansEachBandOnItsInterface) {
  tools_.answer("iw", kScan);
  for (std::size_t band = 0; band < 3; ++band) {
    json::ListText list;
    scan_single_interface(band, list);
    EXPECT_THAT(tools_.awaited_calls(), ElementsAre("iw dev mld" + std::to_string(band + 1) + " scan flush"));
  }
}

TEST_F(SiteSurvey, TriesFifteenTimesTwoSecondsApart) {
  tools_.answer("iw", "command failed: Device or resource busy (-16)");
  json::ListText list;
  EXPECT_EQ(scan_single_interface(2, list), 0);
  EXPECT_EQ(list.text(), "[ ]");
  EXPECT_THAT(tools_.calls(), AllOf(SizeIs(15), Each("iw dev mld3 scan flush")));
  EXPECT_THAT(waits::taken(), AllOf(SizeIs(15), Each(2U)));
  const std::vector<std::string> texts = log_.texts();
  ASSERT_EQ(texts.size(), 16U);
  EXPECT_EQ(texts[14], "No BSS blocks found in command output: iw dev mld3 scan flush & (attempt 15/15)");
  EXPECT_THAT(texts[15], StartsWith("Failed to get BSS information after 15 attempts"));
}

TEST_F(SiteSurvey, TellsWhatALaterTryFinds) {
  tools_.provide("iw",
                 std::string("[ -e /tmp/scanned ] || { : >/tmp/scanned; exit 1; }\ncat <<'END'\n") + kScan + "END");
  json::ListText list;
  EXPECT_EQ(scan_single_interface(0, list), 0);
  EXPECT_THAT(list.text(), HasSubstr("net"));
  EXPECT_THAT(waits::taken(), ElementsAre(2U));
  std::filesystem::remove("/tmp/scanned");
}

TEST_F(SiteSurvey, AnswersTheListOfAllBands) {
  tools_.provide("iw",
                 "case $2 in mld1) channel=2437 ;; mld2) channel=5180 ;; mld3) channel=5955 ;; esac\n"
                 "printf 'BSS 00:11:22:33:44:55(on %s)\\n\\tfreq: %s\\n\\tsignal: -40.00 dBm\\n\\tSSID: net of %s\\n' "
                 "$2 $channel $2");
  tools_.provide("jose", "cat");
  const std::string answer = answer_of(handle_get_sitesurvey);
  EXPECT_THAT(answer, StartsWith(R"({ "result": 0, "version": 1, "waitTime": 0, "wifiApList": [ {)"));
  for (const char* network : {"net of mld1", "net of mld2", "net of mld3"}) EXPECT_THAT(answer, HasSubstr(network));
}

}  // namespace
