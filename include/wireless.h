// What other areas use of the wireless area.
#pragma once

#include <string>

// SSID and passphrase of a mesh agent's backhaul, from the hostapd run files. 0, or 1 (logged).
int get_agent_backhul_info(std::string& ssid, std::string& passphrase);

// Restarts the wireless stack the way the mesh state requires, in the background of a shell job. Always 0.
int wifi_reload();
