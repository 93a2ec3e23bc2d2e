// Security, SSID and key of the repeater's access points and stations.
#pragma once

#include <array>
#include <optional>

#include "repeater/bands.h"
#include "repeater/connect_request.h"

// Whether the local access point of a band takes over the upstream SSID, key and security (non-zero), by band.
using FollowFlags = std::array<int, kBandCount>;

// Makes `ifname` (ath02 ... ath23) a wifi-iface with the security of `encrypt_type`. 0, or 1 without an interface.
int SetWifiParaByEncrypt(const char* ifname, int encrypt_type);

// Writes SSID, key and mode of `ifname`: a station gets the SSID and its bridging, an access point what it follows.
// `key` may be nullptr. 0, or 1 for a missing or unknown interface, or a missing SSID.
int SetWifiBasicPara(const char* ifname, const char* ssid, const char* key, const FollowFlags& flags);

// What follows logs a failure under `caller`, the function that the messages are known by.

// Reads the three flags from wireless.<ap>.ssid_change; nullopt when one cannot be read.
std::optional<FollowFlags> read_follow_flags(const char* caller);

// SetWifiParaByEncrypt of every access point that follows, up to one that fails.
bool set_security_of_following_aps(int encrypt_type, const FollowFlags& flags, const char* caller);
// SetWifiParaByEncrypt and SetWifiBasicPara of one interface.
bool set_security(const char* ifname, int encrypt_type, const char* caller);
bool set_ssid_and_key(const char* ifname, const RepeaterConnectInfo& info, const FollowFlags& flags,
                      const char* caller);
// set_ssid_and_key of the three access points, up to one that fails.
bool set_ssid_and_key_of_aps(const RepeaterConnectInfo& info, const FollowFlags& flags, const char* caller);
