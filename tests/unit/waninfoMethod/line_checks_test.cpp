// What the probes of the Internet line leave.
#include "waninfoMethod/line_checks.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "platform/file.h"

namespace {

TEST(ProbeResult, IsTheNumberOfTheLastLine) {
  EXPECT_EQ(parse_probe_result("1\n"), 1);
  EXPECT_EQ(parse_probe_result("1\n0\n"), 0);
  EXPECT_EQ(parse_probe_result("noise\n-1"), -1);
  EXPECT_EQ(parse_probe_result("2\r\n"), 2);
}

TEST(ProbeResult, OfNothingIsZero) {
  for (const char* text : {"", "\n", "x\n", "1\n\n", "%n", "\xff"}) EXPECT_EQ(parse_probe_result(text), 0) << text;
}

TEST(ProbeResult, TakesALongLineInPieces) { EXPECT_EQ(parse_probe_result("12345678\n"), 8); }

TEST(GetPPPoeChkResult, ReadsTheFileOfTheProbe) {
  std::filesystem::remove("/tmp/pppoechkresult.txt");
  EXPECT_EQ(GetPPPoeChkResult(), -1);
  ASSERT_TRUE(platform::write_file("/tmp/pppoechkresult.txt", "1\n"));
  EXPECT_EQ(GetPPPoeChkResult(), 1);
  std::filesystem::remove("/tmp/pppoechkresult.txt");
}

TEST(SessionReport, TellsASessionThatIsUpByItsProtocol) {
  EXPECT_EQ(parse_session_report(R"({"up": true, "proto": "pppoe"})"), 0);
  EXPECT_EQ(parse_session_report(R"({"up": true, "proto": "dhcp"})"), 3);
  EXPECT_EQ(parse_session_report(R"({"up": true})"), 3);
  EXPECT_EQ(parse_session_report(R"({"up": true, "proto": "pppoe6rd"})"), 3);
}

TEST(SessionReport, TellsASessionThatIsDownByItsFirstError) {
  const auto down = [](const std::string& errors) {
    return parse_session_report(R"({"up": false, "proto": "pppoe", "errors": )" + errors + "}");
  };
  EXPECT_EQ(down(R"([{"code": "AUTH_TOPEER_FAILED"}])"), 1);
  EXPECT_EQ(down(R"([{"code": "OTHER"}, {"code": "AUTH_TOPEER_FAILED"}])"), 2);
  EXPECT_EQ(down(R"([{"code": ""}])"), 2);
  EXPECT_EQ(down(R"([{}])"), 0);
  EXPECT_EQ(down(R"(["x"])"), 0);
  EXPECT_EQ(down("[]"), std::nullopt);
  EXPECT_EQ(down("null"), std::nullopt);
}

TEST(SessionReport, IsNothingOfAnotherProtocolThatIsDown) {
  EXPECT_EQ(parse_session_report(R"({"proto": "dhcp", "errors": [{"code": "AUTH_TOPEER_FAILED"}]})"), std::nullopt);
}

TEST(SessionReport, IsNothingThatIsNoJson) {
  for (const char* text : {"", "x", "{", R"({"up": true, "proto": )", "Command failed: Not found\n", "\xff{}"}) {
    EXPECT_EQ(parse_session_report(text), std::nullopt) << text;
  }
}

TEST(SessionReport, IsReadUpToItsBound) {
  constexpr std::size_t kLongest = 4085;
  const std::string report = R"({"up": true, "proto": "pppoe"})";
  EXPECT_EQ(parse_session_report(std::string(kLongest - report.size(), ' ') + report), 0);
  EXPECT_EQ(parse_session_report(std::string(kLongest - report.size() + 1, ' ') + report), std::nullopt);
}

TEST(LastPiece, IsTheLastLineHoweverItComes) {
  for (const std::size_t size : {1U, 2U, 5U, 100U}) {
    LastPiece last;
    const std::string text = "noise 1\n16\n17\n";
    for (std::size_t at = 0; at < text.size(); at += size) last.feed(text.substr(at, size));
    EXPECT_EQ(last.number(), 17) << size;
  }
}

TEST(LastPiece, OfNothingIsZero) {
  LastPiece last;
  EXPECT_EQ(last.number(), 0);
  last.feed("");
  EXPECT_EQ(last.number(), 0);
  last.feed("\n");
  EXPECT_EQ(last.number(), 0);
}

TEST(LastPiece, TakesALongLineInPieces) {
  LastPiece last;
  last.feed(std::string(31, '1') + "42");
  EXPECT_EQ(last.number(), 42);
}

}  // namespace
