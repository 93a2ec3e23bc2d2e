// Walks both route tables row by row. script/routes --check compares them with docs/openapi.yaml.
#include "request/route_table.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

namespace {

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
