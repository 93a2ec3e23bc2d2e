// Bodies that are objects, and what the log is told of others. Their answers are asked over FastCGI.
#include "answer/read_object.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr BodyMessages kMessages{.no_content = "nothing", .no_json = "no JSON %s", .no_object = "no object"};

TEST(ParseObject, GivesTheObjectAndLogsNothing) {
  CapturedLog log;
  const json::Document document = parse_object(R"({"a": 1})", kMessages);
  ASSERT_TRUE(document);
  EXPECT_EQ(document->number("a"), 1);
  EXPECT_TRUE(parse_object("{}", kMessages));
  EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(ParseObject, TellsWhatABodyIsInsteadOfAnObject) {
  CapturedLog log;
  for (const char* body : {static_cast<const char*>(nullptr), ""}) EXPECT_FALSE(parse_object(body, kMessages));
  EXPECT_THAT(log.entries(), ElementsAre(LogEntry{LOG_ERR, "nothing"}, LogEntry{LOG_ERR, "nothing"}));
  for (const char* body : {"{", "x", "null"}) EXPECT_FALSE(parse_object(body, kMessages)) << body;
  EXPECT_THAT(log.texts(), ElementsAre("no JSON %s", "no JSON %s", "no JSON %s"));
  for (const char* body : {"[]", "1", "\"text\"", "true"}) EXPECT_FALSE(parse_object(body, kMessages)) << body;
  EXPECT_THAT(log.texts(), ElementsAre("no object", "no object", "no object", "no object"));
}

TEST(ParseObject, IsSilentWhereThereIsNoMessage) {
  CapturedLog log;
  for (const char* body : {"", "{", "[]"}) EXPECT_FALSE(parse_object(body, {})) << body;
  EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(ParseObject, LogsAtTheGivenPriority) {
  CapturedLog log;
  EXPECT_FALSE(parse_object("x", {.no_json = "no JSON", .priority = LOG_DEBUG}));
  EXPECT_THAT(log.entries(), ElementsAre(LogEntry{LOG_DEBUG, "no JSON"}));
}

}  // namespace
