// The list of the packages that there are.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "context.h"
#include "package_parser.h"

namespace uci {
namespace {

bool is_config_name(const char* name) { return is_type(name) && std::strchr(name, '.') == nullptr; }

bool is_folder(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

struct CloseFolder {
  void operator()(DIR* folder) const noexcept { closedir(folder); }
};

std::vector<std::string> config_names(const uci_context& context) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, CloseFolder> folder(opendir(context.confdir));
  if (!folder && errno == ENOMEM) throw std::bad_alloc();
  while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
    const std::string path = std::string(context.confdir) + "/" + entry->d_name;
    if (is_config_name(entry->d_name) && !is_folder(path)) names.emplace_back(entry->d_name);
  }
  std::ranges::sort(names);
  return names;
}

// One allocation: the pointers, then the texts that they point at.
char** one_allocation(const std::vector<std::string>& names) {
  std::size_t size = (names.size() + 1) * sizeof(char*);
  for (const std::string& name : names) size += name.size() + 1;
  char** list = static_cast<char**>(std::malloc(size));
  if (list == nullptr) throw std::bad_alloc();
  char* text = reinterpret_cast<char*>(list + names.size() + 1);
  for (std::size_t index = 0; index < names.size(); ++index) {
    list[index] = text;
    std::memcpy(text, names[index].c_str(), names[index].size() + 1);
    text += names[index].size() + 1;
  }
  list[names.size()] = nullptr;
  return list;
}

}  // namespace
}  // namespace uci

extern "C" int uci_list_configs(uci_context* ctx, char*** list) {
  return uci::guarded(ctx, [&](uci_context& context) {
    if (list == nullptr) throw uci::Failure{UCI_ERR_INVAL};
    const std::vector<std::string> names = uci::config_names(context);
    if (names.empty()) throw uci::Failure{UCI_ERR_NOTFOUND};
    *list = uci::one_allocation(names);
  });
}
