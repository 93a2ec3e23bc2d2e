// What a change of the WAN's method does to the LAN: an access point's LAN is a DHCP client with all ports in its
// bridge.
#pragma once

// Deletes the LAN's static address and lets it ask another router for one, with all three ports in the bridge and the
// DHCP server off.
void turn_lan_into_client();

// Gives the LAN its own address back when the unit leaves AP mode, and takes the WAN port out of the LAN bridge.
void SetDhcpMode();
