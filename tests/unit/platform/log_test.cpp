// Where messages come from, and that they come.
#include "platform/log.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "captured_log.h"

namespace {

std::size_t largest_block = SIZE_MAX;  // what is asked for beyond it is not given

}  // namespace

// The symbols' names hold the type of size_t; link.cmake wraps them.
#if SIZE_MAX > UINT32_MAX
#define SIZE_TYPE "m"
#else
#define SIZE_TYPE "j"
#endif

extern "C" {
void* real_new(std::size_t size) __asm__("__real__Znw" SIZE_TYPE);
void* wrap_new(std::size_t size) __asm__("__wrap__Znw" SIZE_TYPE);
void* real_new_array(std::size_t size, const std::nothrow_t& tag) __asm__("__real__Zna" SIZE_TYPE "RKSt9nothrow_t");
void* wrap_new_array(std::size_t size, const std::nothrow_t& tag) __asm__("__wrap__Zna" SIZE_TYPE "RKSt9nothrow_t");

void* wrap_new(std::size_t size) {
  if (size > largest_block) throw std::bad_alloc();
  return real_new(size);
}
void* wrap_new_array(std::size_t size, const std::nothrow_t& tag) {
  return size > largest_block ? nullptr : real_new_array(size, tag);
}
}

namespace {

using ::testing::ElementsAre;

TEST(WriteLog, WritesTextsOfAnyLengthWhole) {
  CapturedLog log;
  for (const std::size_t length : {0U, 1U, 1022U, 1023U, 1024U, 1025U, 3000U}) {
    const std::string text(length, 'x');
    log_error("%s", text.c_str());
    EXPECT_THAT(log.texts(), ElementsAre(text));
  }
}

TEST(WriteLog, WritesTheBeginningAndThrowsNothingWhereMemoryHasEnded) {
  const std::string text(3000, 'x');
  CapturedLog log;
  largest_block = 2000;
  EXPECT_NO_THROW(log_error("%s", text.c_str()));
  largest_block = SIZE_MAX;
  EXPECT_THAT(log.texts(), ElementsAre(text.substr(0, 1023)));
}

platform::LogPlace helper(platform::LogPlace place = platform::LogPlace::here()) { return place; }

platform::LogPlace second_helper(platform::LogPlace place = platform::LogPlace::here()) { return helper(place); }

platform::LogPlace caller() { return helper(); }

TEST(LogPlace, OfAHelperIsItsCallers) {
  EXPECT_STREQ(caller().function, "caller");
  EXPECT_EQ(helper().line, __LINE__);
}

TEST(LogPlace, IsHandedOn) {
  EXPECT_STREQ(second_helper().function, "TestBody");
  EXPECT_EQ(second_helper().line, __LINE__);
}

}  // namespace
