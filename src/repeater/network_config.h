// The LAN of a repeater: a DHCP server while it connects, a DHCP client behind the upstream network afterwards.
#pragma once

#include <string>

// All int results: 0, or 1 at the first failure, which is logged; what was written before stays.

// The address of br-lan, at most 15 characters.
int GetLanIpaddr(std::string& address);
// What stands before the third dot of `address`.
int GetLanIpaddrPrefix(const std::string& address, std::string& prefix);

// Keeps the LAN at its address, with a DHCP server, so that the client can follow the connection.
int SetNetworkParamInfoToConnect();

// Turns the LAN into a DHCP client, attaches the stations to it and commits.
int StartDhcpServerAfterConnectedSucc();
