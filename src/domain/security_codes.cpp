// Look-up in the tables of options behind a wifiSecurity code.
#include "domain/security_codes.h"

#include <algorithm>

namespace security {

const Writing* find_writing(std::span<const Writing> table, int code) {
  const auto found = std::ranges::find(table, code, &Writing::code);
  return found == table.end() ? nullptr : &*found;
}

}  // namespace security
