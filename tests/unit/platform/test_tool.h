// A tool that a test puts before the system's.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "platform/file.h"

// A tool of the test's own, found before any other of its name.
class TestTool : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { setenv("PATH", path_.c_str(), 1); }
  void provide(const std::string& name, const std::string& script) {
    const std::string path = folder_ + "/" + name;
    ASSERT_TRUE(platform::write_file(path.c_str(), "#!/bin/sh\n" + script));
    chmod(path.c_str(), 0755);
    setenv("PATH", (folder_ + ":" + path_).c_str(), 1);
  }
  std::string folder_ = "/tmp/test_tools";
  std::string path_ = getenv("PATH");
};
