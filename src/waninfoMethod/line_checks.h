// Probes of the Internet line through the platform's tools.
#pragma once

// Runs the PPPoE probe script, waits for it, and gives the number it left; -1 when it left none. 0 and -1 say that no
// PPPoE server answers.
int GetPPPoeChkResult();

// The state of the live PPPoE session, by `ifstatus wan`: 0 connected (or down without an error code), 1 authentication
// refused, 2 another PPPoE error, 3 up, but not by PPPoE. Returns 0, or 1 with `connect_result` untouched: the tool
// cannot be asked, or there is nothing to tell.
int get_pppoe_result(int& connect_result);

// What the reachability test says: bits 0 to 3 for IPv4, bits 4 to 7 for IPv6, 1 for a test that passed. 1 when the
// shell cannot be started.
int get_ipvalue_address();
