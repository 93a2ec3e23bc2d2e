// Watches the uplink of a repeater and takes the local access points down while it is lost.
#pragma once

#include <optional>

// Bits of GetStaInterfaceMask.
inline constexpr int kMask24g = 1;
inline constexpr int kMask5g = 2;
inline constexpr int kMask6g = 4;

// Starts the monitor, stopping one that runs, where the operating mode is "re". 0, or 1 (logged) for an unreadable mode
// or a thread that could not be made.
int CheckWifiConnectStatus();

// Stops the monitor and waits for its end: at most for the command that it is at. False when none ran.
bool stop_uplink_monitor();

// The monitor's thread: after a minute decides every 20 seconds, until it is stopped.
void CheckWifiConnection();

// 0 when wpa_supplicant tells that the station is connected, 1 otherwise.
int GetStaInterfaceConnectStatus(const char* ifname);

// The same; nullopt when the status could not be asked for. `ifname` is one of the fixed station names.
std::optional<bool> read_station_connected(const char* ifname);

// Which station interfaces exist.
int GetStaInterfaceMask();

// Whether the uplink is down; `previous` where several stations exist without a multi-link one.
bool is_uplink_down(bool previous);

// Takes the local access points down (1) or up (0), unless they were put into that state last time.
void SetRepeaterApState(int down);
