// What a client gets, byte by byte, over a FastCGI connection.
#include "answer/answer.h"

#include <cstdio>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "asked_request.h"
#include "captured_log.h"
#include "fake_tools.h"
#include "platform/uci_session.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kJsonHead = "Content-Type: application/json\r\nStatus: 200 OK\r\n\r\n";
constexpr std::string_view kText = R"({"ssid": "Bob's %s%n \"日本\""})";

class Answers : public ::testing::Test {
 protected:
  void SetUp() override { tools_.provide("jose", "printf jwe.; cat"); }
  FakeTools tools_;
  AskedRequest request_;
};

TEST_F(Answers, AreEncryptedBehindTheirHeaders) {
  EXPECT_EQ(answer(request_, kText), 0);
  EXPECT_EQ(request_.raw_answer(), kJsonHead + "jwe." + std::string(kText));
  EXPECT_THAT(tools_.calls(), ElementsAre("jose jwe enc -i /etc/lighttpd/jwe-protected.json -I- -p -c"));
}

TEST_F(Answers, OfADocumentAreItsText) {
  EXPECT_EQ(answer(request_, json::result_text(3)), 0);
  EXPECT_EQ(request_.answer(), "jwe." + json::result_text(3).text());
}

TEST_F(Answers, ThatCannotBeEncryptedTellNothingOfTheirText) {
  tools_.provide("jose", "cat >/dev/null; exit 1");
  EXPECT_EQ(answer(request_, kText), 0);
  EXPECT_EQ(request_.raw_answer(), kJsonHead + R"({"result": 1})");
}

TEST_F(Answers, ThatArePlainNeedNoTool) {
  EXPECT_EQ(answer_plain(request_, kText), 0);
  EXPECT_EQ(request_.raw_answer(), kJsonHead + std::string(kText));
  AskedRequest other;
  EXPECT_EQ(answer_plain(other, json::result_text(0)), 0);
  EXPECT_EQ(other.answer(), json::result_text(0).text());
  EXPECT_THAT(tools_.calls(), IsEmpty());
}

TEST_F(Answers, AreWrittenOnceTheChangesStandInTheirFiles) {
  router_state::config("answers", package_text::section("thing", "s", {{"o", "before"}}));
  {
    const platform::UciSession session;
    ASSERT_EQ(UciSetOption(nullptr, "answers", "s", "o", "after"), 0U);
    EXPECT_NE(platform::read_file("/etc/config/answers").value_or("").find("before"), std::string::npos);
    write_json_headers(request_);
    EXPECT_NE(platform::read_file("/etc/config/answers").value_or("").find("after"), std::string::npos);
  }
  router_state::no_config("answers");
}

TEST_F(Answers, AreOutBeforeTheWorkBehindThemBegins) {
  bool began = false;
  EXPECT_EQ(answer_then(request_, "text",
                        [&] {
                          began = true;
                          EXPECT_EQ(static_cast<FCGX_Request*>(request_)->out, nullptr) << "the request is not ended";
                        }),
            0);
  EXPECT_TRUE(began);
  EXPECT_EQ(request_.answer(), "jwe.text");
}

TEST_F(Answers, StandWhateverTheWorkBehindThemThrows) {
  CapturedLog log;
  EXPECT_EQ(answer_then(request_, "text", [] { throw std::runtime_error("100%s"); }), 0);
  EXPECT_EQ(request_.answer(), "jwe.text");
  EXPECT_THAT(log.texts(), ElementsAre("background work ended: 100%s\n"));
}

TEST_F(Answers, CarryAFileFromItsPositionOnWhateverItHolds) {
  std::string content(5000, '\0');
  for (std::size_t at = 0; at < content.size(); ++at) content[at] = static_cast<char>(at % 251);
  router_state::write("/tmp/answer_test", content);
  std::FILE* file = std::fopen("/tmp/answer_test", "rb");
  ASSERT_NE(file, nullptr);
  std::fseek(file, 10, SEEK_SET);
  EXPECT_EQ(answer_file(request_, "a b.bin", file), 0);
  std::fclose(file);
  EXPECT_EQ(request_.raw_answer(),
            "Status: 200 OK\r\nContent-Type: application/octet-stream\r\n"
            "Content-Disposition: attachment; filename=\"a b.bin\"\r\n\r\n" +
                content.substr(10));
  std::filesystem::remove("/tmp/answer_test");
}

TEST_F(Answers, OfTheRouterItselfHaveNoStatusLine) {
  answer_router_error(request_, "Not %s Found");
  EXPECT_EQ(request_.raw_answer(), "Content-Type: text/plain\r\n\r\nNot %s Found");
}

}  // namespace
