// Which handler a request comes to, with which body, and what is answered where it comes to none.
#include "request/dispatch.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "asked_request.h"
#include "fake_tools.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* kRead = "/api/v1/security/passthrough";     // one of both methods
constexpr const char* kUpload = "/api/v1/system/config/restore";  // whose body is no text
constexpr const char* kPlainHead = "Content-Type: text/plain\r\n\r\n";

class Dispatch : public ::testing::Test {
 protected:
  void SetUp() override {
    tools_.provide("jose", "case $2 in enc) printf 'encrypted:' ;; esac; cat");
    tools_.provide("/etc/init.d/firewall");
  }
  // The result, and what was written, as "0 encrypted:...".
  static std::string ask(const AskedRequest::Parameters& parameters, std::string_view body = "") {
    AskedRequest request(parameters, body);
    const int result = dispatch_request(request);
    return std::to_string(result) + ' ' + request.raw_answer();
  }
  static std::string get(const std::string& uri) { return ask({{"REQUEST_METHOD", "GET"}, {"REQUEST_URI", uri}}); }
  static std::string post(const std::string& uri, const std::string& body) {
    return ask({{"REQUEST_METHOD", "POST"}, {"REQUEST_URI", uri}, {"CONTENT_LENGTH", std::to_string(body.size())}},
               body);
  }
  FakeTools tools_;
};

TEST_F(Dispatch, CallsTheHandlerOfTheMethod) {
  EXPECT_THAT(get(kRead), StartsWith("0 Content-Type: application/json\r\nStatus: 200 OK\r\n\r\nencrypted:{"));
  EXPECT_THAT(post(kRead, "{}"), StartsWith("0 Content-Type: application/json\r\nStatus: 200 OK\r\n\r\nencrypted:{"));
}

TEST_F(Dispatch, TakesAUriByteForByte) {
  for (const std::string& uri :
       {std::string(kRead) + "/", std::string(kRead) + "?x=1", std::string("/API/v1/security/passthrough"),
        std::string("/api/v1/security/passthroug"), std::string(""), std::string("/")}) {
    EXPECT_EQ(get(uri), "1 ") << uri;
    EXPECT_EQ(post(uri, "{}"), "1 ") << uri;
  }
}

TEST_F(Dispatch, KnowsTwoMethods) {
  for (const char* method : {"PUT", "HEAD", "get", "DELETE", ""}) {
    EXPECT_EQ(ask({{"REQUEST_METHOD", method}, {"REQUEST_URI", kRead}}), std::string("1 ") + kPlainHead + "Not Found");
  }
}

TEST_F(Dispatch, AnswersNothingWithoutAMethodOrAUri) {
  EXPECT_EQ(dispatch_request(nullptr), 1);
  EXPECT_EQ(ask({}), "1 ");
  EXPECT_EQ(ask({{"REQUEST_METHOD", "GET"}}), "1 ");
  EXPECT_EQ(ask({{"REQUEST_URI", kRead}}), "1 ");
}

TEST_F(Dispatch, SparesAReadWhoseClientHasLeft) {
  AskedRequest request(AskedRequest::Parameters{{"REQUEST_METHOD", "GET"}, {"REQUEST_URI", kRead}});
  request.leave();
  EXPECT_EQ(dispatch_request(request), 1);
  EXPECT_THAT(tools_.calls(), IsEmpty());
}

TEST_F(Dispatch, AsksForALength) {
  EXPECT_EQ(ask({{"REQUEST_METHOD", "POST"}, {"REQUEST_URI", kRead}}, "{}"),
            std::string("1 ") + kPlainHead + "No content received");
}

TEST_F(Dispatch, DecryptsATextBeforeItLooksForItsRoute) {
  tools_.provide("jose", "exit 1");
  EXPECT_EQ(post(kRead, "text"), std::string("1 ") + kPlainHead + "decrypt error");
  EXPECT_EQ(post("/nosuch", "text"), std::string("1 ") + kPlainHead + "decrypt error");
}

TEST_F(Dispatch, GivesAHandlerNothingWhereNothingIsClaimed) {
  EXPECT_THAT(post(kRead, ""), StartsWith("0 Content-Type: application/json"));
  EXPECT_THAT(tools_.calls(), ::testing::Each(StartsWith("jose jwe enc"))) << "nothing was decrypted";
}

TEST_F(Dispatch, DecryptsNoUpload) {
  tools_.provide("jose", "case $2 in dec) exit 1 ;; esac; cat");
  EXPECT_THAT(post(kUpload, "no archive"), StartsWith("0 "));
  EXPECT_THAT(tools_.calls(), ::testing::Not(Contains(StartsWith("jose jwe dec"))));
  EXPECT_THAT(ask({{"REQUEST_METHOD", "POST"}, {"REQUEST_URI", kUpload}, {"CONTENT_LENGTH", "0"}}), StartsWith("0 "));
}

}  // namespace
