// What other areas use of the wireless area.
#pragma once

#include <optional>
#include <string>

// SSID and passphrase of a mesh agent's backhaul, from the hostapd run files. 0, or 1 (logged).
int get_agent_backhul_info(std::string& ssid, std::string& passphrase);

// Restarts the wireless stack the way the mesh state requires, in the background of a shell job. Always 0.
int wifi_reload();

namespace wps {

// How WPS is switched. A MAC filter that is on has an off of its own.
enum class Change { kOn, kOff, kOffBesideFilter };

// Switches WPS of an access point in package `wireless` and, where it is mirrored, in the copy for the mesh. nullopt,
// or the address that could not be written ("wireless.ath0.wps_state"), behind which nothing more was.
std::optional<std::string> write(const char* ifname, Change change, bool is_mirrored = false);

}  // namespace wps
