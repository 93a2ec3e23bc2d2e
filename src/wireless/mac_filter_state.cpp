// The MAC filter's switch, for builds without the MAC filter's own area: its definition replaces this one.
#include "uci_access.h"
#include "wireless.h"

[[gnu::weak]] int get_mac_filter_enable(int& out) {
  const auto enable = uci_read("macfilter", "macfilter", "enable", 4);
  if (!enable) return 1;
  out = *enable == "1" ? 1 : 0;
  return 0;
}
