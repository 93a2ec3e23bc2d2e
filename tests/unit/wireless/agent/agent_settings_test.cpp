// The request of a mesh agent's set-up screens, and every combination that decides what it comes to.
#include "wireless/agent/agent_settings.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "answer/json_reading.h"

namespace {

constexpr const char* kKeys[] = {"mesh",          "frequency",       "multiLinkOperationEnable", "ieee802dot11r",
                                 "multiRuEnable", "location",        "locationCustom",           "ledStatus",
                                 "compatiMode",   "compatiWiFi6Mode"};

// A whole request, but for one member.
std::string request_without(std::string_view missing) {
  std::string text = "{";
  int number = 0;
  for (const std::string_view key : kKeys) {
    const std::string value = key == "locationCustom" ? R"("attic")" : std::to_string(++number);
    if (key == missing) continue;
    text.append(text.size() > 1 ? "," : "").append("\"").append(key).append("\":").append(value);
  }
  return text + "}";
}

TEST(ParseAgentSettings, TakesEveryKey) {
  const json::Document document(request_without("").c_str());
  const auto settings = parse_agent_settings(document.root());
  ASSERT_TRUE(settings);
  EXPECT_EQ(settings->mesh, 1);
  EXPECT_EQ(settings->frequency, 2);
  EXPECT_EQ(settings->multi_link_operation_enable, 3);
  EXPECT_EQ(settings->ieee802dot11r, 4);
  EXPECT_EQ(settings->multi_ru_enable, 5);
  EXPECT_EQ(settings->location, 6);
  EXPECT_EQ(settings->location_custom, "attic");
  EXPECT_EQ(settings->led_status, 7);
  EXPECT_EQ(settings->compati_mode, 8);
  EXPECT_EQ(settings->compati_wifi6_mode, 9);
}

TEST(ParseAgentSettings, NeedsEveryKey) {
  for (const char* key : kKeys) {
    const json::Document document(request_without(key).c_str());
    ASSERT_TRUE(document);
    EXPECT_FALSE(parse_agent_settings(document.root())) << key;
  }
  EXPECT_FALSE(parse_agent_settings(json::Object()));
}

std::string stored_location(const std::string& text) {
  std::string request = request_without("locationCustom");
  request.back() = ',';
  const json::Document document((request + R"("locationCustom": ")" + text + "\"}").c_str());
  const auto settings = parse_agent_settings(document.root());
  return settings ? settings->location_custom : "refused";
}

TEST(ParseAgentSettings, CutsTheLocationAtSeventeenBytesAndNeverInsideACharacter) {
  EXPECT_EQ(stored_location(""), "");
  EXPECT_EQ(stored_location("12345678901234567"), "12345678901234567");
  EXPECT_EQ(stored_location("12345678901234567890"), "12345678901234567");
  EXPECT_EQ(stored_location("日本語日本"), "日本語日本");                 // 15 bytes
  EXPECT_EQ(stored_location("日本語日本語"), "日本語日本");               // 18
  EXPECT_EQ(stored_location("ab日本語日本語"), "ab日本語日本");           // 17 and 3
  EXPECT_EQ(stored_location("1234567890123456é"), "1234567890123456");    // 16 and 2
  EXPECT_EQ(stored_location("12345678901234🛜"), "12345678901234");     // 14 and 4
  EXPECT_EQ(stored_location("1234567890123🛜x"), "1234567890123🛜");  // 17 and 1
  EXPECT_EQ(stored_location(std::string(100000, 'x')).size(), 17U);
}

TEST(ParseAgentSettings, RefusesALocationThatUciCannotHold) {
  for (const char* text : {R"(\u0001)", R"(a\u001bb)"}) EXPECT_EQ(stored_location(text), "refused") << text;
  EXPECT_EQ(stored_location(R"(tab\tline\n)"), "tab\tline\n");
}

AgentAction expected(int mesh, int enable, int mode, int old_mode, int compati, int old_compati, int ru, int old_ru) {
  if (mesh == 0 && enable == 1) return AgentAction::kMeshOff;
  if (mesh == 1 && enable == 0) return AgentAction::kMeshOn;
  // Compatible with Wi-Fi 6 before and after, the unit works in mode 1 whatever is asked for.
  const bool is_other_mode = mode >= 0 && mode <= 2 && mode != old_mode && !(compati == 1 && old_compati == 1);
  const bool is_changed = is_other_mode || compati != old_compati;
  if (mesh == 1 && is_changed) return AgentAction::kMeshChange;
  return ru == old_ru ? AgentAction::kNothing : AgentAction::kReload;
}

TEST(ChooseAgentAction, EveryCombination) {
  for (const int mesh : {0, 1, 2, -1})
    for (const int enable : {0, 1})
      for (const int mode : {0, 1, 2, 3, -1})
        for (const int old_mode : {0, 1, 2, 5})
          for (int bits = 0; bits < 16; ++bits) {
            const int compati = bits & 1;
            const int old_compati = bits >> 1 & 1;
            const int ru = bits >> 2 & 1;
            const int old_ru = bits >> 3 & 1;
            AgentSettings settings;
            settings.mesh = mesh;
            settings.multi_link_operation_enable = mode;
            settings.compati_wifi6_mode = compati;
            settings.multi_ru_enable = ru;
            const AgentState before{enable, old_mode, old_ru, old_compati};
            EXPECT_EQ(choose_agent_action(settings, before),
                      expected(mesh, enable, mode, old_mode, compati, old_compati, ru, old_ru))
                << mesh << enable << mode << old_mode << ' ' << bits;
          }
}

}  // namespace
