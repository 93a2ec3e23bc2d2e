// The WAN port and the interfaces' hardware addresses, as the kernel shows them.
#pragma once

#include <string>

inline constexpr const char* kWanInterface = "eth1";

// The hardware address of an interface of ours, up to its line end; at most 63 bytes. 0, or 1 with `mac` untouched:
// "open file failed." or, for an empty file, "get macaddr fail!".
int get_macAddr(const char* ifname, std::string& mac);

// The number of the WAN port's carrier file (1: a cable with a link). `status` stays as it is when the file cannot be
// read, which is so while the interface is down.
void get_wan_link_status(int& status);
