// Whether WPS is on.
#pragma once

// WPS on (1) or off (0), from radios, SSIDs and push-button options of 2.4 and 5 GHz. 0, or -1 (logged).
int getWpsStatus(int& out);
