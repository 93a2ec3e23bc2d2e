// The document of the LAN's devices: without a mesh, on the controller, on a satellite.
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "answer/json_reading.h"
#include "asked_request.h"
#include "captured_log.h"
#include "fake_tools.h"
#include "handlers.h"
#include "mesh/dumps.h"
#include "waits.h"
#include "wireless/package_text.h"
#include "wireless/router_state.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

constexpr const char* kWifiList = "/tmp/clientList.txt";

class ClientList : public ::testing::Test {
 protected:
  void SetUp() override {
    router_state::config("system", "config system\n\toption op_mode 'router'\n");
    for (const char* tool : {"sleep", "ip", "arp", "brctl", "/etc/wireClient.sh"}) tools_.provide(tool);
    tools_.provide("jose", "cat");
    mesh("0", "controller");
    router_state::write(kWifiList,
                        "mac_rssi:02:00:00:0C:00:0A -45\noperating_band:5GHz\n"
                        "mac_rssi:02:00:00:0C:00:99 30\noperating_band:2.4GHz\n");
  }
  void TearDown() override {
    for (const char* package : {"system", "button_mesh"}) router_state::no_config(package);
    std::filesystem::remove(kWifiList);
  }
  static void mesh(const char* enable, const char* role) {
    router_state::config("button_mesh", package_text::section("easymesh", "easymesh",
                                                              {{"enable", enable}, {"role", role}, {"mode", "2"}}));
  }
  void dump(const std::string& text) { tools_.provide("emt", "cat >/dev/null; cat <<'END'\n" + text + "END"); }
  static std::vector<std::string> macs(const json::List& list) {
    std::vector<std::string> all;
    for (const json::Object entry : list) all.push_back(entry.text("macAddress").value_or("-"));
    return all;
  }
  FakeTools tools_;
  CapturedLog log_;
};

TEST_F(ClientList, WithoutAMeshIsTheDriversAndTheKernels) {
  EXPECT_EQ(answer_of(handle_get_client_list),
            R"({ "result": 0, "numOfClient": 2, "clientList": [ )"
            R"({ "macAddress": "02:00:00:0C:00:0A", "connectionType": 2, "rssi": -45 }, )"
            R"({ "macAddress": "02:00:00:0C:00:99", "connectionType": 1, "rssi": 30 } ] })");
}

TEST_F(ClientList, OfAControllerTellsTheClientsOfEachSatelliteApart) {
  mesh("1", "controller");
  dump(dumps::fixture("one_agent"));
  const json::Document document(answer_of(handle_get_client_list).c_str());
  EXPECT_THAT(macs(document->list("clientList")), ::testing::Not(Contains("02:00:00:0C:00:0A")));
  EXPECT_THAT(macs(document->list("clientList")), Contains("02:00:00:0C:00:99"));
  const json::List satellite = document->list("easyMesh01");
  EXPECT_THAT(macs(satellite), Contains("02:00:00:0C:00:0A"));
  for (const json::Object entry : satellite) {
    const bool is_seen = entry.text("macAddress") == "02:00:00:0C:00:0A";
    EXPECT_EQ(entry.text("rssi"), is_seen ? "-45" : "0") << "a signal is a text here";
  }
  EXPECT_FALSE(document->has_any("easyMesh02"));
}

TEST_F(ClientList, OfASatelliteHasNoSatellites) {
  mesh("1", "agent");
  dump(dumps::fixture("one_agent"));
  const json::Document document(answer_of(handle_get_client_list).c_str());
  EXPECT_EQ(document->number("result"), 0);
  EXPECT_FALSE(document->has_any("easyMesh01"));
}

TEST_F(ClientList, IsNotAnsweredWhereTheMeshCannotBeAsked) {
  tools_.provide("emt", "cat >/dev/null");
  for (const char* role : {"controller", "agent"}) {
    mesh("1", role);
    AskedRequest request;
    EXPECT_EQ(handle_get_client_list(request), std::string_view(role) == "agent" ? 1 : -1);
    EXPECT_EQ(request.raw_answer(), "");
  }
  EXPECT_THAT(log_.texts(), Contains("Failed to get agent topology data"));
}

}  // namespace
