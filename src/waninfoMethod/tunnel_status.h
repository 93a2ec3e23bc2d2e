// The state of the IPv4-over-IPv6 tunnel, as the tunnel-status tool prints it.
#pragma once

#include <string>
#include <string_view>

// Each text holds at most the stated number of bytes, less one.
struct Ip4orip6Info {
  std::string mode;             // 32
  std::string vne_service;      // 128
  std::string CE;               // 64
  std::string ipv4;             // 16
  std::string port;             // 1024: the port ranges, put one behind the other
  std::string wan_global_addr;  // 64
  std::string aftr;             // 256
};

// The last report of the tool, empty until there is one.
extern Ip4orip6Info g_ip4orip6Info;

// Parses what the tool printed. Lines are taken in pieces of 127 bytes. The line that ends the list of ports is lost
// with its value: the tool's output is a pipe, which cannot be stepped back.
Ip4orip6Info parse_tunnel_status(std::string_view output);

// Runs the tool and fills g_ip4orip6Info, which is cleared first. 0, or 1 when the tool cannot be started.
int Ip4ov6jp_InfoCmd();
