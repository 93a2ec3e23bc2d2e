// Every combination that decides whether WPS may be switched.
#include "wireless/wps/wps_enable.h"

#include <string>

#include <gtest/gtest.h>

#include "domain/mesh_codes.h"
#include "domain/security_codes.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using package_text::Options;
using package_text::section;
using package_text::stored;

struct State {
  bool radio_off[2] = {false, false};
  bool ssid_off[2] = {false, false};
  int security[2] = {kSecurityMixed, kSecurityMixed};
  bool hidden[2] = {false, false};
  bool filter = false;
};

Options security_options(int code) {
  if (code == kSecurityOpen) return {{"encryption", "none"}};
  if (code == kSecurityWpa2) return {{"encryption", "psk2"}};
  if (code == kSecurityWpa3) return {{"encryption", "ccmp"}};
  return {{"encryption", "psk2+ccmp"}, {"sae", "1"}};
}

void write(const State& state) {
  std::string text;
  for (const int band : {0, 1}) {
    text += section("wifi-device", "wifi" + std::to_string(band), {{"disabled", state.radio_off[band] ? "1" : "0"}});
    Options options = security_options(state.security[band]);
    options.insert(options.end(), {{"disabled", state.ssid_off[band] ? "1" : "0"},
                                   {"hidden", state.hidden[band] ? "1" : "0"},
                                   {"wps_state", "old"},
                                   {"wps_pbc", "old"}});
    text += section("wifi-iface", "ath" + std::to_string(band), options);
  }
  router_state::config("wireless", text);
  router_state::config("wireless_for_easymesh", text);
  router_state::config("macfilter", section("macfilter", "macfilter", {{"enable", state.filter ? "1" : "0"}}));
}

bool has_wpa2(int code) { return code == kSecurityWpa2 || code == kSecurityMixed; }

// What the options of one band say afterwards: "state/pbc".
std::string wps(const char* package, int band) {
  const std::string ifname = "ath" + std::to_string(band);
  return stored(package, ifname.c_str(), "wps_state") + "/" + stored(package, ifname.c_str(), "wps_pbc");
}

constexpr const char* kOn = "2/1";
constexpr const char* kOff = "1/0";
constexpr const char* kUntouched = "old/old";

struct Expected {
  int result = 1;
  std::string bands[2] = {kUntouched, kUntouched};
};

Expected expected(const State& state, int status) {
  if (status == 0) return {0, {kOff, kOff}};
  Expected refused;
  if (status != 1) return refused;
  if ((state.radio_off[0] || state.ssid_off[0]) && (state.radio_off[1] || state.ssid_off[1])) return refused;
  if (!has_wpa2(state.security[0]) && !has_wpa2(state.security[1])) return refused;
  if (state.hidden[0] && state.hidden[1]) return refused;
  Expected done{0, {kUntouched, kUntouched}};
  for (const int band : {0, 1})
    if (has_wpa2(state.security[band]) && !state.hidden[band]) done.bands[band] = kOn;
  return done;
}

void check(const State& state, int status, int role) {
  write(state);
  const Expected want = expected(state, status);
  EXPECT_EQ(can_set_wps_enable(status), status != 1 || want.result == 0);
  EXPECT_EQ(set_wps_enable(status, role), want.result);
  for (const int band : {0, 1}) {
    EXPECT_EQ(wps("wireless", band), want.bands[band]) << "status " << status << " band " << band;
    EXPECT_EQ(wps("wireless_for_easymesh", band), role == kMeshRoleController ? want.bands[band] : kUntouched);
  }
}

TEST(SetWpsEnable, EveryRadioAndSsid) {
  for (int bits = 0; bits < 16; ++bits)
    for (const int status : {0, 1, 2, -1}) {
      State state;
      state.radio_off[0] = (bits & 1) != 0;
      state.radio_off[1] = (bits & 2) != 0;
      state.ssid_off[0] = (bits & 4) != 0;
      state.ssid_off[1] = (bits & 8) != 0;
      SCOPED_TRACE(bits);
      check(state, status, bits % 3);
    }
}

TEST(SetWpsEnable, EverySecurityAndHiddenSsidAndMacFilter) {
  for (const int first : {1, 2, 3, 4})
    for (const int second : {1, 2, 3, 4})
      for (int bits = 0; bits < 8; ++bits)
        for (const int status : {0, 1}) {
          State state;
          state.security[0] = first;
          state.security[1] = second;
          state.hidden[0] = (bits & 1) != 0;
          state.hidden[1] = (bits & 2) != 0;
          state.filter = (bits & 4) != 0;
          if (status == 0 && first != second) continue;  // switching off does not look at them
          SCOPED_TRACE(std::to_string(first) + std::to_string(second) + std::to_string(bits));
          check(state, status, (bits & 4) != 0 ? kMeshRoleController : kMeshRoleNone);
        }
}

void take_away(const std::string& line) {
  std::string text = platform::read_file("/etc/config/wireless").value_or("");
  const std::size_t begin = text.find(line);
  ASSERT_NE(begin, std::string::npos) << line;
  router_state::config("wireless", text.erase(begin, line.size()));
}

// Switching off needs no radio, but it reads security; with the MAC filter on it reads nothing at all.
TEST(SetWpsEnable, UnreadableOptions) {
  write({});
  take_away("\toption disabled '0'\n");
  EXPECT_TRUE(can_set_wps_enable(1));  // what cannot be read is left to the writer
  EXPECT_EQ(set_wps_enable(1, kMeshRoleNone), 1);
  EXPECT_EQ(wps("wireless", 0), kUntouched);
  EXPECT_EQ(set_wps_enable(0, kMeshRoleNone), 0);
  EXPECT_EQ(wps("wireless", 0), kOff);

  write({});
  take_away("\toption encryption 'psk2+ccmp'\n");
  EXPECT_EQ(set_wps_enable(1, kMeshRoleNone), 1);
  EXPECT_EQ(set_wps_enable(0, kMeshRoleNone), 1);
  EXPECT_EQ(wps("wireless", 1), kUntouched);
  router_state::config("macfilter", section("macfilter", "macfilter", {{"enable", "1"}}));
  EXPECT_EQ(set_wps_enable(0, kMeshRoleNone), 0);
  EXPECT_EQ(wps("wireless", 1), kOff);
}

TEST(SetWpsEnable, WithoutAMacFilterPackageItIsOff) {
  write({});
  router_state::no_config("macfilter");
  EXPECT_EQ(set_wps_enable(1, kMeshRoleNone), 0);
  EXPECT_EQ(wps("wireless", 0), kOn);
}

TEST(SetWpsEnable, AMissingMirrorFails) {
  write({});
  router_state::no_config("wireless_for_easymesh");
  EXPECT_EQ(set_wps_enable(0, kMeshRoleController), 1);
}

TEST(GetHiddenValue, OneIsHidden) {
  for (const auto& [text, value] : std::initializer_list<std::pair<const char*, int>>{
           {"1", 1}, {"0", 0}, {"2", 0}, {"", 0}, {"yes", 0}, {"1234567", 0}}) {
    router_state::config("wireless", section("wifi-iface", "ath0", {{"hidden", text}}));
    int out = -1;
    EXPECT_EQ(get_hidden_value("ath0", out), 0);
    EXPECT_EQ(out, value) << text;
  }
  int out = -1;
  EXPECT_EQ(get_hidden_value("ath7", out), 0);
  EXPECT_EQ(out, 0);
  EXPECT_EQ(get_hidden_value(nullptr, out), 1);
}

}  // namespace
