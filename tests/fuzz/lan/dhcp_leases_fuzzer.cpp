// Any bytes as the lines of the lease file: what is visited are leases, on loan from the text.
#include "lan/dhcp_leases.h"
#include "require.h"

namespace {

constexpr std::size_t kTextMax = 31;
constexpr long kNow = 1000;

bool is_loan(std::string_view text, std::string_view from) {
  return text.data() >= from.data() && text.data() + text.size() <= from.data() + from.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzzing::text_of(data, size);
  for_each_lease(text, kNow, [&](const Lease& lease) {
    for (const std::string_view field : {lease.ip, lease.mac}) {
      fuzzing::require(field.size() <= kTextMax && is_loan(field, text), "a field's bound");
      fuzzing::require(field.find_first_of(",\r\n") == std::string_view::npos, "a field beyond its end");
    }
    fuzzing::require(lease.remain_time > 0, "a lease that is over");
  });
  return 0;
}
