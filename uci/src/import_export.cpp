// Packages from and to streams.
#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "context.h"
#include "edit.h"
#include "package_file.h"
#include "package_parser.h"
#include "package_text.h"

namespace uci {
namespace {

// Makes packages of a text. They join the context when all of it was read.
class ImportSink final : public FillSink {
 public:
  ImportSink(uci_context& context, const char* name, bool single) : context_(context), single_(single) {
    if (name != nullptr) begin(name);
  }
  ImportSink(const ImportSink&) = delete;
  ImportSink& operator=(const ImportSink&) = delete;
  ~ImportSink() override {
    for (uci_package* package : packages_) free_package(package);
  }

  void package(const std::string& name) override {
    if (!single_) begin(name);
  }
  bool has_package() const override { return !packages_.empty(); }

  // Hands the packages to the context; the last one, or nullptr.
  uci_package* finish() {
    for (uci_package* package : packages_) list_add_tail(context_.root, package->e.list);
    packages_.clear();
    return filled();
  }

 private:
  void begin(const std::string& name) {
    const auto same = [&name](const uci_package* package) { return name == package->e.name; };
    // A name that was given and then said again in the text is one package.
    if (!packages_.empty() && same(packages_.back()) && !has_section()) return;
    if (find(context_.root, name.c_str()) != nullptr || std::ranges::any_of(packages_, same))
      throw Failure{UCI_ERR_DUPLICATE};
    packages_.reserve(packages_.size() + 1);
    packages_.push_back(new_package(context_, name));
    fill(packages_.back());
  }

  uci_context& context_;
  bool single_;
  std::vector<uci_package*> packages_;
};

// Merges a text into a loaded package, as recorded changes.
class MergeSink final : public StatementSink {
 public:
  explicit MergeSink(uci_package& package) : package_(package) {
    uci_element* section = nullptr;
    uci_foreach_element(&package.sections, section) sections_.try_emplace(section->name, uci_to_section(section));
  }
  void package(const std::string&) override {}
  bool has_package() const override { return true; }
  bool has_section() const override { return section_ != nullptr; }

  bool section(const std::string& type, const std::string& name, bool strict) override {
    if (name.empty()) {
      check(uci_add_section(package_.ctx, &package_, type.c_str(), &section_));
      return true;
    }
    const auto existing = sections_.find(name);
    if (existing == sections_.end()) {
      section_ = add_named_section(package_, name.c_str(), type.c_str());
      sections_.emplace(section_->e.name, section_);
      return true;
    }
    if (type != existing->second->type && strict) return false;
    uci_ptr ptr{};
    ptr.p = &package_;
    ptr.s = existing->second;
    ptr.value = type.c_str();
    check(uci_set(package_.ctx, &ptr));
    section_ = ptr.s;
    return true;
  }
  void option(const std::string& name, const std::string& value) override {
    if (!value.empty()) change(uci_set, name, value);
  }
  void list(const std::string& name, const std::string& value) override { change(uci_add_list, name, value); }

 private:
  static void check(int code) {
    if (code != UCI_OK) throw Failure{code};
  }
  void change(int (*function)(uci_context*, uci_ptr*), const std::string& name, const std::string& value) {
    uci_ptr ptr{};
    ptr.p = &package_;
    ptr.s = section_;
    ptr.option = name.c_str();
    ptr.value = value.c_str();
    check(function(package_.ctx, &ptr));
  }
  uci_package& package_;
  uci_section* section_ = nullptr;
  std::unordered_map<std::string_view, uci_section*> sections_;  // the first of each name
};

void import(uci_context& context, std::FILE* stream, const char* name, uci_package** package, bool single) {
  if (stream == nullptr || (name != nullptr && !is_package_name(name))) throw Failure{UCI_ERR_INVAL};
  StreamLines lines(stream);
  WordReader words(lines);
  if (single && package != nullptr && *package != nullptr) {
    complete_package(context, **package);
    MergeSink sink(**package);
    parse_statements(context, words, sink);
    return;
  }
  ImportSink sink(context, name, single);
  parse_statements(context, words, sink);
  uci_package* last = sink.finish();
  if (package != nullptr && last != nullptr) *package = last;
}

void export_package(uci_context& context, std::FILE* stream, uci_package& package, bool header) {
  complete_package(context, package);
  write_package_text(package, header,
                     [stream](std::string_view text) { std::fwrite(text.data(), 1, text.size(), stream); });
}

}  // namespace
}  // namespace uci

extern "C" {

int uci_import(uci_context* ctx, FILE* stream, const char* name, uci_package** package, bool single) {
  return uci::guarded(ctx, [&](uci_context& context) { uci::import(context, stream, name, package, single); });
}

int uci_export(uci_context* ctx, FILE* stream, uci_package* package, bool header) {
  return uci::guarded(ctx, [&](uci_context& context) {
    if (stream == nullptr) throw uci::Failure{UCI_ERR_INVAL};
    if (package != nullptr) return uci::export_package(context, stream, *package, header);
    uci_element* element = nullptr;
    uci_foreach_element(&context.root, element) uci::export_package(context, stream, *uci_to_package(element), header);
  });
}

}  // extern "C"
