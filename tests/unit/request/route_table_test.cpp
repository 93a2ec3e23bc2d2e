// Walks both route tables row by row.
#include "request/route_table.h"

#include <array>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr std::array<const char*, kPostRouteCount> kPostUris{
    "/api/v1/router/wan-info",
    "/api/v1/pppoe/start",
    "/api/v1/wireless/setting",
    "/api/v1/wireless/wps-status",
    "/api/v1/wireless/wps",
    "/api/v1/router/info",
    "/api/v1/dhcp",
    "/api/v1/ntp",
    "/api/v1/system/log/clear",
    "/api/v1/wireless/mac-filter",
    "/api/v1/wireless/detail-setting",
    "/api/v1/fwupdatechkandrun",
    "/api/v1/reboot",
    "/api/v1/wireless/rebootschedule",
    "/api/v1/accounts",
    "/api/v1/system/config/initialize",
    "/api/v1/system/config/waninit",
    "/api/v1/parental-control",
    "/api/v1/parental-control/delete",
    "/api/v1/remote-maintenance",
    "/api/v1/security/passthrough",
    "/api/v1/security/protect",
    "/api/v1/fsecure_sense",
    "/api/v1/test/led",
    "/api/v1/test/switch",
    "/api/v1/test/cert-db-reset",
    "/api/v1/repeater/connect",
    "/api/v1/system/firmware",
    "/api/v1/port-open",
    "/api/v1/delete-port",
    "/api/v1/lan",
    "/api/v1/system/config/restore",
    "/api/v1/system/config/backup",
    "/api/v1/mesh/agent-wificlient-info",
};

constexpr std::array<const char*, kGetRouteCount> kGetUris{
    "/api/v1/router/wan-info",
    "/api/v1/pppoe/response",
    "/api/v1/pppoe/result",
    "/api/v1/wireless/setting",
    "/api/v1/wireless/wps-status",
    "/api/v1/router/info",
    "/api/v1/router/inetchk",
    "/api/v1/dhcp",
    "/api/v1/dhcp/client-list",
    "/api/v1/ntp",
    "/api/v1/system/log/message",
    "/api/v1/mesh/agent-info",
    "/api/v1/router/client-list",
    "/api/v1/wireless/mac-filter",
    "/api/v1/wireless/sitesurvey",
    "/api/v1/wireless/channel",
    "/api/v1/wireless/rebootschedule",
    "/api/v1/wireless/detail-setting",
    "/api/v1/repeater/connect",
    "/api/v1/repeater/wifiresult",
    "/api/v1/router/device-info",
    "/api/v1/remote-maintenance",
    "/api/v1/security/passthrough",
    "/api/v1/security/protect",
    "/api/v1/fsecure_sense",
    "/api/v1/repeater/channel",
    "/api/v1/parental-control",
    "/api/v1/port-open",
    "/api/v1/lan",
};

TEST(RouteTable, PostRowsStandInTheirOrder) {
  for (std::size_t row = 0; row < kPostUris.size(); ++row) EXPECT_EQ(post_routes[row].uri, kPostUris[row]) << row;
}

TEST(RouteTable, GetRowsStandInTheirOrder) {
  for (std::size_t row = 0; row < kGetUris.size(); ++row) EXPECT_EQ(get_routes[row].uri, kGetUris[row]) << row;
}

TEST(RouteTable, EveryUriIsUniqueWithinItsTable) {
  std::set<std::string_view> posts;
  for (const PostRoute& route : post_routes) EXPECT_TRUE(posts.insert(route.uri).second) << route.uri;
  std::set<std::string_view> gets;
  for (const GetRoute& route : get_routes) EXPECT_TRUE(gets.insert(route.uri).second) << route.uri;
}

TEST(RouteTable, EveryRowHasAHandlerOfItsOwn) {
  std::set<PostHandler> posts;
  for (const PostRoute& route : post_routes) {
    ASSERT_TRUE(std::visit([](auto handler) { return handler != nullptr; }, route.handler)) << route.uri;
    EXPECT_TRUE(posts.insert(route.handler).second) << route.uri;
  }
  std::set<GetHandler> gets;
  for (const GetRoute& route : get_routes) {
    ASSERT_NE(route.handler, nullptr) << route.uri;
    EXPECT_TRUE(gets.insert(route.handler).second) << route.uri;
  }
}

TEST(RouteTable, ThreeRowsTakeUploads) {
  std::set<std::string_view> uploads;
  for (const PostRoute& route : post_routes) {
    if (std::holds_alternative<UploadHandler>(route.handler)) uploads.insert(route.uri);
  }
  EXPECT_EQ(uploads, (std::set<std::string_view>{"/api/v1/system/firmware", "/api/v1/system/config/restore",
                                                 "/api/v1/system/config/backup"}));
}

}  // namespace
