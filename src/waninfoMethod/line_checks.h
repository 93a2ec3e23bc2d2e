// Probes of the Internet line through the platform's tools.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// The number in the last line of what the PPPoE probe left; 0 for nothing. Lines are taken in pieces of 7 bytes.
int parse_probe_result(std::string_view content);

// What `ifstatus wan` tells of the PPPoE session, as get_pppoe_result() gives it; nullopt when there is nothing to
// tell. Only the first 4085 bytes count: a longer report is none.
std::optional<int> parse_session_report(std::string_view report);

// The last line of what is fed, in pieces of 31 bytes.
class LastPiece {
 public:
  void feed(std::string_view text);
  // The number that it begins with; 0 for none.
  int number() const;

 private:
  std::string last_;
  bool is_whole_ = true;  // what comes next begins a new piece
};

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
