// Readers of the device id.
#include "unit/brand.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

#include "platform/file.h"
#include "platform/log.h"
#include "system_helpers.h"

namespace {

constexpr const char* kDeviceIdPath = "/tmp/deviceid";

}  // namespace

int getDeviceId(char* out, std::size_t size) {
  constexpr std::size_t kPieceBuffer = 8;
  if (out == nullptr || size < kPieceBuffer) return 1;
  const platform::FilePtr file = platform::open_file(kDeviceIdPath, "r");
  if (!file) {
    trace_stderr("open /tmp/deviceid failed.");
    return 1;
  }
  std::memset(out, 0, kPieceBuffer);
  while (std::fgets(out, kPieceBuffer, file.get()) != nullptr) continue;
  trace_stderr("get deviceId,devIdBuf = %s.", out);
  return 0;
}

int get_brand_index() {
  constexpr std::size_t kIdLength = 4;
  const std::optional<std::string> id = platform::read_file(kDeviceIdPath, kIdLength);
  if (!id) {
    std::perror("Error opening file");
    return kBrandTesmir;
  }
  return brands::index_of(brands::of_id(*id));
}

namespace unit {

const brands::Brand& brand() { return brands::of_index(get_brand_index()); }

const brands::Brand* brand_of_device_id() {
  std::array<char, 16> id{};
  return getDeviceId(id.data(), id.size()) == 0 ? &brands::of_id(id.data()) : nullptr;
}

std::string device_id_line() {
  constexpr std::size_t kLineMax = 15;
  const std::string content = platform::read_file(kDeviceIdPath, kLineMax).value_or("");
  if (content.empty()) std::perror("info get fail.\n");
  return content.substr(0, content.find('\n'));
}

const brands::Brand& brand_of_device_id_line() { return brands::of_whole_id(without_line_end(device_id_line())); }

}  // namespace unit
