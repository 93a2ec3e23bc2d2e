// The rules of port forwarding: what is read, what is stored, what is refused before anything is.
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

constexpr const char* kDone = R"({"result": 0, "version": 1, "waitTime": 5})";
constexpr const char* kUnusable = R"({"result": 1})";

class PortForwarding : public ::testing::Test {
 protected:
  void SetUp() override {
    tools_.provide("jose", "cat");
    tools_.provide("/etc/init.d/firewall");
    // As `uci get` answers for the package below.
    tools_.provide("uci",
                   "case \"$2\" in\n"
                   "*.@redirect\\[0\\].name) echo Game ;;\n"
                   "*.@redirect\\[0\\].dest_ip) echo 192.168.0.7 ;;\n"
                   "*.@redirect\\[0\\].proto) echo tcp ;;\n"
                   "*.@redirect\\[0\\].dest_port) echo 80 ;;\n"
                   "*.@redirect\\[0\\].src_dport) echo 8080 ;;\n"
                   "*.@redirect\\[1\\].proto) echo udp ;;\n"
                   "*.@redirect\\[2\\].proto) echo both ;;\n"
                   "*) exit 1 ;;\nesac");
    router_state::config("portmapping",
                         "config redirect\n\toption name 'Game'\n\toption dest_ip '192.168.0.7'\n\toption proto 'tcp'\n"
                         "\toption dest_port '80'\n\toption src_dport '8080'\n\n"
                         "config redirect\n\toption proto 'udp'\n\nconfig redirect\n\toption proto 'both'\n\n"
                         "config redirect\n");
  }
  void TearDown() override { router_state::no_config("portmapping"); }

  template <class Handler>
  std::string change(Handler handler, const char* body) {
    std::string text = answer_of(handler, body);
    for (;;) {
      const auto calls = tools_.awaited_calls();
      if (calls.empty()) return "the firewall was not restarted";
      if (std::ranges::find(calls, "/etc/init.d/firewall restart") != calls.end()) return text;
    }
  }
  std::string set(const std::string& body) { return change(handle_set_portopen, body.c_str()); }
  std::string remove(const std::string& body) { return change(handle_delete_portopen, body.c_str()); }
  // "option=value " of each option of a rule that is there.
  static std::string stored(int index) {
    std::string text;
    for (const char* option : {"dest_port", "src", "name", "src_dport", "target", "dest_ip", "dest", "proto"}) {
      const auto value = uci::Section("portmapping", uci::position("redirect", index)).read(option, 128);
      if (value) text += std::string(option) + "=" + *value + " ";
    }
    return text;
  }
  static int count() { return uci::count("portmapping", "redirect").value_or(-1); }
  FakeTools tools_;
};

TEST_F(PortForwarding, IsReadRuleByRule) {
  const json::Document document(answer_of(handle_get_portopen_json).c_str());
  EXPECT_EQ(document->number("result"), 0);
  EXPECT_EQ(document->number("version"), 1);
  std::vector<std::string> protocols;
  int id = 0;
  for (const json::Object rule : document->list("portOpenSettings")) {
    EXPECT_EQ(rule.number("id"), id);
    EXPECT_EQ(rule.text("settingName"), id == 0 ? "Game" : "");
    EXPECT_EQ(rule.text("ipAddress"), id == 0 ? "192.168.0.7" : "");
    EXPECT_EQ(rule.number("lanPortNum").value_or(-1), id == 0 ? 80 : -1);
    EXPECT_EQ(rule.number("wanPortNum").value_or(-1), id == 0 ? 8080 : -1);
    protocols.push_back(rule.text("protocol").value_or("none"));
    ++id;
  }
  EXPECT_EQ(protocols, (std::vector<std::string>{"1", "2", "none", "0"}));
}

TEST_F(PortForwarding, CannotBeReadWithoutItsPackage) {
  router_state::no_config("portmapping");
  EXPECT_EQ(json::Document(answer_of(handle_get_portopen_json).c_str())->number("result"), 1);
}

TEST_F(PortForwarding, IsReplacedByWhatIsSet) {
  EXPECT_EQ(set(R"({"portOpenSettings":[)"
                R"({"settingName":"It's","ipAddress":"10.0.0.1","protocol":1,"lanPortNum":80,"wanPortNum":"8080"},)"
                R"({"ipAddress":"10.0.0.2","protocol":2,"lanPortNum":-12345678},{"ipAddress":"x"}]})"),
            kDone);
  EXPECT_EQ(count(), 3);
  EXPECT_EQ(stored(0),
            "dest_port=80 src=wan name=It's src_dport=8080 target=DNAT dest_ip=10.0.0.1 dest=lan proto=tcp ");
  EXPECT_EQ(stored(1), "dest_port=-123456 src=wan src_dport=0 target=DNAT dest_ip=10.0.0.2 dest=lan proto=udp ");
  EXPECT_EQ(stored(2), "dest_port=0 src=wan src_dport=0 target=DNAT dest_ip=x dest=lan ");
}

TEST_F(PortForwarding, IsLeftAsItIsByWhatIsRefused) {
  for (const char* body :
       {"", "{", R"({"portOpenSettings":7})", R"({"portOpenSettings":[7]})", R"({"portOpenSettings":[{}]})",
        R"({"portOpenSettings":[{"ipAddress":""}]})", R"({"portOpenSettings":[{"ipAddress":"a\nb"}]})",
        R"({"portOpenSettings":[{"ipAddress":"10.0.0.1"},{"settingName":"no address"}]})"}) {
    EXPECT_EQ(set(body), kUnusable) << body;
    EXPECT_EQ(count(), 4) << body;
  }
  EXPECT_EQ(change(handle_set_portopen, nullptr), kUnusable);
  EXPECT_EQ(count(), 4);
}

TEST_F(PortForwarding, IsEmptyAfterARequestWithoutAList) {
  EXPECT_EQ(set("{}"), kUnusable);
  EXPECT_EQ(count(), 0);
}

TEST_F(PortForwarding, LosesTheRulesThatAreNamed) {
  EXPECT_EQ(remove(R"({"portOpenSettings":[{"id":3},{"id":0},{"id":3}]})"), kDone);
  EXPECT_EQ(count(), 2);
  EXPECT_EQ(stored(0), "proto=udp ");
  for (const char* body : {"", "{}", R"({"portOpenSettings":[{}]})", R"({"portOpenSettings":[{"id":2}]})"}) {
    EXPECT_EQ(remove(body), kUnusable) << body;
    EXPECT_EQ(count(), 2) << body;
  }
}

}  // namespace
