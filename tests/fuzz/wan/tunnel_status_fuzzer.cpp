// Any bytes as the tunnel-status tool's report: every field keeps its bound.
#include "require.h"
#include "waninfoMethod/tunnel_status.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Ip4orip6Info info = parse_tunnel_status(fuzzing::text_of(data, size));
  struct Bound {
    const std::string& field;
    std::size_t size;
  };
  for (const auto& [field, bound] :
       {Bound{info.mode, 32}, Bound{info.vne_service, 128}, Bound{info.CE, 64}, Bound{info.ipv4, 16},
        Bound{info.port, 1024}, Bound{info.wan_global_addr, 64}, Bound{info.aftr, 256}}) {
    fuzzing::require(field.size() < bound, "a field's bound");
    fuzzing::require(field.find('\n') == std::string::npos, "a field beyond its line");
  }
  return 0;
}
