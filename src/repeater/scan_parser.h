// The text of `iw scan`, read line by line into what the repeater's settings page shows of each access point.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "answer/json_text.h"
#include "repeater/ordered_members.h"

// Bands are counted from 0 here: 2.4, 5, 6 GHz.
inline constexpr std::size_t kScanBandCount = 3;

// What an access point tells of its security.
struct ScanSecurity {
  bool encrypted = false;
  bool rsn = false;
  bool wpa = false;
  bool sae = false;
  bool psk = false;
  bool tkip = false;
  bool ccmp = false;
};

// Codes of the site survey.
inline constexpr int kScanUnclassified = 0;
inline constexpr int kScanOpen = 1;
inline constexpr int kScanWpaCcmp = 2;
inline constexpr int kScanTkip = 3;
inline constexpr int kScanWpa2Ccmp = 4;
inline constexpr int kScanMixed = 5;  // TKIP and CCMP
inline constexpr int kScanSae = 7;
inline constexpr int kScanTransition = 8;  // WPA2 and WPA3

int classify_security(std::size_t band, const ScanSecurity& security);
// -90 dBm and less are 0, -30 dBm and more 100.
int scale_rssi(float dbm);
// Channel number of a frequency; 1 outside the bands.
int channel_of_frequency(float freq_mhz);
// Whether the repeater can join an access point of this frequency on the band.
bool is_in_band(std::size_t band, float freq_mhz);
// Turns "\x20" and the like into bytes; other text stays. `text` is what `iw` prints for an SSID: any 32 octets.
std::string unescape_ssid(std::string_view text);

// Reads the output of one scan, in pieces as they come, and appends an entry for each access point that tells its
// SSID, its signal and a frequency of the band. Takes any bytes, in time linear in their number; what it holds beside
// the list is one line and one entry.
class ScanParser {
 public:
  // `list` is a loan.
  ScanParser(std::size_t band, json::ListText& list) : band_(band), list_(list) {}

  void feed(std::string_view piece);
  // Ends the last line and the last block.
  void finish();
  // Whether any block has begun.
  [[nodiscard]] bool seen_block() const { return seen_block_; }

 private:
  // What the lines of one block have told so far.
  struct State {
    bool ssid_seen = false;
    bool signal_seen = false;
    bool in_band = false;
    bool out_of_band = false;
    ScanSecurity security;
    float freq_mhz = 0;
  };

  void end_line();
  void read_line(std::string_view line);
  void start_block(std::string_view line);
  void finish_block();
  void read_attribute(std::string_view line);
  void read_signal(std::string_view value);
  void read_frequency(std::string_view value);
  void read_ssid(std::string_view value);
  void read_product(std::string_view line);

  std::size_t band_;
  json::ListText& list_;
  std::string line_;
  std::optional<OrderedMembers> entry_;  // of the block that is read
  State state_;
  bool seen_block_ = false;
};
