// The LAN's DHCP server: settings and fixed leases, in this system's own encoding.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

inline constexpr std::size_t kMostFixedHosts = 32;

struct FixedHost {
  std::string ip;  // at most 31 bytes, as the MAC
  std::string mac;
};

struct DhcpSettings {
  int enable = 0;
  int lease_time = 0;  // hours
  std::string start_address;
  std::string end_address;
  std::vector<FixedHost> hosts;  // at most kMostFixedHosts
};

// 0 on success, 1 on failure.
int cmd_get_dhcp(DhcpSettings& settings);
// What was written before a failure stays committed.
int cmd_set_dhcp(const DhcpSettings& settings);

// The number of host sections; 1 when the command cannot be started.
int get_num_fix_ip();

// The number behind the last dot (three characters of it, 0 for none), -1 for an empty address. `head` gets what stands
// before that dot; it may be nullptr.
int GetLastDigitOfIP(const std::string& ip, std::string* head);

// Puts a colon behind every second character but the last ones; a text of 17 characters stays as it is.
void AddColonOfMac(std::string& mac);

// "2d" for 48 hours and more, the rest of a day dropped; "5h" below a day.
std::string lease_text(int hours);
// Hours of "2d" or "5h"; 0 for any other text.
int lease_hours(const std::string& text);
