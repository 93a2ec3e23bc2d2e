// The list of parental control: what is read, what is stored, what is refused before anything is.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "answer/json_reading.h"
#include "asked_request.h"
#include "fake_tools.h"
#include "handlers.h"
#include "uci_section.h"
#include "wireless/router_state.h"

namespace {

using ::testing::Contains;

constexpr const char* kDone = R"({"result": 0, "version": 1, "waitTime": 10})";
constexpr const char* kUnusable = R"({"result": 1})";

std::string rule(const std::string& mac, const std::string& options = "") {
  return "config macbind\n\toption macaddr '" + mac + "'\n\toption timeon '08:00'\n\toption timeoff '21:00'\n" +
         options + "\n";
}
std::string basic(const char* enable) { return std::string("config basic\n\toption enable '") + enable + "'\n\n"; }

class ParentalControl : public ::testing::Test {
 protected:
  void SetUp() override {
    tools_.provide("jose", "cat");
    tools_.provide("/etc/init.d/firewall");
    router_state::config("mia", basic("1") + rule("m0", "\toption enable 'Bob'\n") + rule("m1") + rule("m2"));
  }
  void TearDown() override { router_state::no_config("mia"); }

  // The answer to a change, once the firewall was restarted behind it.
  template <class Handler>
  std::string change(Handler handler, const char* body) {
    std::string text = answer_of(handler, body);
    while (!restarted_) {
      const auto calls = tools_.awaited_calls();
      if (calls.empty()) return "the firewall was not restarted";
      restarted_ = std::ranges::find(calls, "/etc/init.d/firewall restart") != calls.end();
    }
    restarted_ = false;
    return text;
  }
  std::string set(const std::string& body) { return change(handle_set_parental_control, body.c_str()); }
  std::string remove(const std::string& body) { return change(handle_delete_parental_control, body.c_str()); }
  static std::string macs() {
    std::string all = uci::Section("mia", "@basic[0]").read_or("enable", 8, "-") + ":";
    for (int index = 0; index < uci::count("mia", "macbind").value_or(0); ++index)
      all += " " + uci::Section("mia", uci::position("macbind", index)).read_or("macaddr", 64, "-");
    return all;
  }
  FakeTools tools_;
  bool restarted_ = false;
};

TEST_F(ParentalControl, IsReadInItsOrder) {
  const std::string text = answer_of(handle_get_parental_control_info);
  const json::Document document(text.c_str());
  EXPECT_EQ(document->number("result"), 0);
  EXPECT_EQ(document->number("enable"), 1);
  int id = 0;
  for (const json::Object entry : document->list("parentalControls")) {
    EXPECT_EQ(entry.number("id"), id);
    EXPECT_EQ(entry.text("macAddress"), "m" + std::to_string(id));
    EXPECT_EQ(entry.text("startTime"), "08:00");
    EXPECT_EQ(entry.text("endTime"), "21:00");
    EXPECT_EQ(entry.text("explain"), id == 0 ? "Bob" : "") << "an option that is absent is an empty text";
    ++id;
  }
  EXPECT_EQ(id, 3);
}

TEST_F(ParentalControl, ShowsNoListWhileItIsOff) {
  router_state::config("mia", basic("0") + rule("m0"));
  const json::Document document(answer_of(handle_get_parental_control_info).c_str());
  EXPECT_EQ(document->number("enable"), 0);
  EXPECT_FALSE(document->list("parentalControls").begin() != document->list("parentalControls").end());
}

TEST_F(ParentalControl, TellsWhatCannotBeRead) {
  const auto result = [] {
    return json::Document(answer_of(handle_get_parental_control_info).c_str())->number("result").value_or(-1);
  };
  for (const std::string& broken :
       {std::string("config macbind\n\toption timeon '1'\n\toption timeoff '2'\n\n") + rule("last"),
        rule("m0", "\tlist enable 'a list'\n"),
        std::string("config macbind\n\toption macaddr 'm0'\n\toption timeon '1'\n\n")}) {
    router_state::config("mia", basic("1") + broken);
    EXPECT_EQ(result(), 2) << broken;
  }
  router_state::config("mia", rule("m0"));
  EXPECT_EQ(result(), 1) << "no switch";
  router_state::no_config("mia");
  EXPECT_EQ(result(), 1);
}

TEST_F(ParentalControl, ShowsNoneWhereTheLastAddressCannotBeRead) {
  router_state::config("mia", basic("1") + rule("m0") + "config macbind\n\toption timeon '1'\n");
  const json::Document document(answer_of(handle_get_parental_control_info).c_str());
  EXPECT_EQ(document->number("result"), 0);
  EXPECT_FALSE(document->list("parentalControls").begin() != document->list("parentalControls").end());
}

TEST_F(ParentalControl, IsReplacedByWhatIsSet) {
  EXPECT_EQ(set(R"({"enable":"0","parentalControls":[)"
                R"({"explain":"It's $x %s","macAddress":"n0","startTime":"1","endTime":"2"},)"
                R"({"explain":"","macAddress":"n1","startTime":"3","endTime":"4"}]})"),
            kDone);
  EXPECT_EQ(macs(), "0: n0 n1");
  const uci::Section first("mia", "@macbind[0]");
  EXPECT_EQ(first.read_or("enable", 64, "-"), "It's $x %s");
  EXPECT_EQ(first.read_or("timeon", 64, "-"), "1");
  EXPECT_EQ(first.read_or("timeoff", 64, "-"), "2");
  EXPECT_EQ(set(R"({"enable":"1","parentalControls":[]})"), kDone);
  EXPECT_EQ(macs(), "1:");
}

TEST_F(ParentalControl, IsLeftAsItIsByWhatIsRefused) {
  for (const char* body :
       {"", "[]", "{}", R"({"enable":"1"})", R"({"parentalControls":[]})", R"({"enable":"","parentalControls":[]})",
        R"({"enable":"1","parentalControls":{}})", R"({"enable":"1","parentalControls":[7]})",
        R"({"enable":"1","parentalControls":[{"explain":"","macAddress":"","startTime":"1","endTime":"2"}]})",
        R"({"enable":"1","parentalControls":[{"explain":"","macAddress":"a\nb","startTime":"1","endTime":"2"}]})",
        R"({"enable":"1","parentalControls":[{"explain":"","macAddress":"a","startTime":"","endTime":"2"}]})",
        R"({"enable":"1","parentalControls":[{"explain":"","macAddress":"a","startTime":"1","endTime":"\n"}]})"}) {
    EXPECT_EQ(set(body), kUnusable) << body;
    EXPECT_EQ(macs(), "1: m0 m1 m2") << body;
  }
  EXPECT_EQ(change(handle_set_parental_control, nullptr), kUnusable);
  EXPECT_EQ(macs(), "1: m0 m1 m2");
}

TEST_F(ParentalControl, KeepsWhatWasWrittenBeforeAnEntryThatLacksAField) {
  EXPECT_EQ(set(R"({"enable":"0","parentalControls":[)"
                R"({"explain":"","macAddress":"n0","startTime":"1","endTime":"2"},{"explain":"","macAddress":"n1"}]})"),
            kUnusable);
  EXPECT_EQ(macs(), "0: n0");
}

TEST_F(ParentalControl, LosesTheEntriesThatAreNamed) {
  EXPECT_EQ(remove(R"({"parentalControls":[{"id":0},{"id":"2"}]})"), kDone);
  EXPECT_EQ(macs(), "1: m1");
  for (const char* body : {"", "{}", R"({"parentalControls":[{"id":-1}]})", R"({"parentalControls":[{}]})",
                           R"({"parentalControls":[{"id":0},{"id":"x"}]})", R"({"parentalControls":[{"id":7}]})"}) {
    EXPECT_EQ(remove(body), kUnusable) << body;
    EXPECT_EQ(macs(), "1: m1") << body;
  }
}

}  // namespace
