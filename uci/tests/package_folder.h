// Folders of packages and staged changes for one test, and a context on them.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <uci.h>

struct FreeContext {
  void operator()(uci_context* context) const noexcept { uci_free_context(context); }
};

class PackageFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string folder = (std::filesystem::temp_directory_path() / "uci-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    folder_ = folder;
    std::filesystem::create_directories(folder_ / "conf");
    std::filesystem::create_directories(folder_ / "conf2");
    put("conf/pkg", "config thing 's'\n\toption a '1'\n");
    open();
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  // A fresh context, as another process would have.
  void open() {
    context_.reset(uci_alloc_context());
    uci_set_confdir(context_.get(), path("conf").c_str());
    uci_set_savedir(context_.get(), path("save").c_str());
    uci_set_conf2dir(context_.get(), path("conf2").c_str());
  }

  // Paths are below the test's folder.
  [[nodiscard]] std::string path(const std::string& name) const { return (folder_ / name).string(); }
  void put(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories((folder_ / name).parent_path());
    std::ofstream(folder_ / name) << text;
  }
  [[nodiscard]] std::string get(const std::string& name) const {
    std::stringstream text;
    text << std::ifstream(folder_ / name).rdbuf();
    return text.str();
  }
  [[nodiscard]] bool exists(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

  // Looks a tuple up; the texts live until the next one.
  uci_ptr look_up(std::string tuple) {
    tuple_ = std::move(tuple);
    uci_ptr ptr{};
    EXPECT_EQ(uci_lookup_ptr(context_.get(), &ptr, tuple_.data(), true), UCI_OK) << tuple_;
    return ptr;
  }
  // Sets something in memory; the package that it is in.
  uci_package* set(const std::string& tuple) {
    uci_ptr ptr = look_up(tuple);
    EXPECT_EQ(uci_set(context_.get(), &ptr), UCI_OK);
    return ptr.p;
  }
  int commit(uci_package* package) { return uci_commit(context_.get(), &package, false); }
  // The value of an option; "(none)" when there is no such string.
  std::string value(const std::string& tuple) {
    const uci_ptr ptr = look_up(tuple);
    return ptr.o != nullptr && ptr.o->type == UCI_TYPE_STRING ? ptr.o->v.string : "(none)";
  }

  std::filesystem::path folder_;
  std::unique_ptr<uci_context, FreeContext> context_;
  std::string tuple_;
};
