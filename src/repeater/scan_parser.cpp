// The text of `iw scan`, read line by line.
#include "repeater/scan_parser.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "platform/text.h"

namespace {

constexpr std::size_t kLineMax = 1023;  // a longer line counts as several
constexpr std::size_t kBssidMax = 19;
constexpr std::size_t kSsidMax = 127;

struct FrequencyRange {
  float first_mhz;
  float last_mhz;
  int first_channel;
};

// The frequencies that a repeater joins, by band.
constexpr std::array<FrequencyRange, kScanBandCount> kWindows{{
    {2412, 2472, 1},
    {5180, 5720, 36},
    {5955, 6415, 1},
}};
// The frequencies that have channel numbers, in steps of 5 MHz.
constexpr std::array<FrequencyRange, kScanBandCount> kChannelRanges{{
    {2412, 2484, 1},
    {5180, 5825, 36},
    {5955, 7115, 1},
}};

bool contains(const FrequencyRange& range, float freq_mhz) {
  return freq_mhz >= range.first_mhz && freq_mhz <= range.last_mhz;
}

// The Wi-Fi generation that a line announces. A later name holds an earlier one's text, so the order counts.
struct Product {
  std::string_view mark;
  int generation;
};
constexpr std::array<Product, 4> kProducts{{
    {"EHT Operation:", 7},
    {"HE Operation:", 6},
    {"VHT Operation:", 5},
    {"HT Operation:", 4},
}};

std::optional<float> parse_number(std::string_view text) {
  const std::string number(text);
  char* end = nullptr;
  const float value = std::strtof(number.c_str(), &end);
  if (end == number.c_str()) return std::nullopt;
  return value;
}

// The byte of an escape at the start of the text.
std::optional<char> parse_escape(std::string_view text) {
  if (text.size() < 4 || text[0] != '\\' || text[1] != 'x') return std::nullopt;
  const auto high = platform::hex_value(text[2]);
  const auto low = platform::hex_value(text[3]);
  if (!high || !low) return std::nullopt;
  return static_cast<char>(*high * 16 + *low);
}

int classify_wpa(const ScanSecurity& security) {
  if (!security.wpa) return kScanUnclassified;
  if (security.tkip && security.ccmp) return kScanMixed;
  return security.tkip ? kScanTkip : kScanWpaCcmp;
}

int classify_rsn(const ScanSecurity& security) {
  if (security.sae) return security.psk ? kScanTransition : kScanSae;
  if (!security.psk) return kScanUnclassified;
  if (security.tkip && security.ccmp) return kScanMixed;
  return security.tkip ? kScanTkip : kScanWpa2Ccmp;
}

}  // namespace

int classify_security(std::size_t band, const ScanSecurity& security) {
  constexpr std::size_t kBand6g = 2;
  if (!security.encrypted) return kScanOpen;
  if (band == kBand6g) return security.rsn && security.sae ? kScanSae : kScanOpen;
  return security.rsn ? classify_rsn(security) : classify_wpa(security);
}

int scale_rssi(float dbm) {
  constexpr float kWeakestDbm = -90;
  constexpr float kRangeDb = 60;
  const float percent = (dbm - kWeakestDbm) * 100 / kRangeDb;
  if (!(percent > 0)) return 0;  // not a number counts as nothing heard
  return static_cast<int>(std::min(percent, 100.0F));
}

int channel_of_frequency(float freq_mhz) {
  constexpr float kStepMhz = 5;
  for (const FrequencyRange& range : kChannelRanges) {
    if (contains(range, freq_mhz)) {
      return static_cast<int>((freq_mhz - range.first_mhz) / kStepMhz) + range.first_channel;
    }
  }
  return 1;
}

bool is_in_band(std::size_t band, float freq_mhz) { return contains(kWindows.at(band), freq_mhz); }

std::string unescape_ssid(std::string_view text) {
  constexpr std::size_t kEscapeLength = 4;
  std::string ssid;
  while (!text.empty()) {
    const std::optional<char> escaped = parse_escape(text);
    ssid += escaped.value_or(text.front());
    text.remove_prefix(escaped ? kEscapeLength : 1);
  }
  return ssid;
}

void ScanParser::feed(std::string_view piece) {
  while (!piece.empty()) {
    const std::size_t room = kLineMax - line_.size();
    const std::size_t line_feed = piece.substr(0, room).find('\n');
    const std::size_t taken = std::min({line_feed == std::string_view::npos ? room : line_feed + 1, piece.size()});
    line_.append(piece.substr(0, taken));
    piece.remove_prefix(taken);
    if (line_feed != std::string_view::npos || line_.size() == kLineMax) end_line();
  }
}

void ScanParser::finish() {
  if (!line_.empty()) end_line();
  finish_block();
}

void ScanParser::end_line() {
  constexpr std::string_view kEnds{"\r\n\0", 3};
  read_line(std::string_view(line_).substr(0, line_.find_first_of(kEnds)));
  line_.clear();
}

void ScanParser::read_line(std::string_view line) {
  if (line.starts_with("BSS")) {
    finish_block();
    start_block(line);
  } else if (entry_ && !state_.out_of_band) {
    read_attribute(line);
  }
}

void ScanParser::start_block(std::string_view line) {
  seen_block_ = true;
  state_ = {};
  entry_.emplace();
  if (const auto rest = platform::behind(line, " ")) {
    const std::size_t parenthesis = rest->find('(');
    const std::string_view bssid = rest->substr(0, parenthesis == std::string_view::npos ? kBssidMax : parenthesis);
    if (bssid.size() <= kBssidMax) entry_->set("bssid", std::string(bssid));
  }
  entry_->set("band", static_cast<int>(band_) + 1);
}

void ScanParser::finish_block() {
  if (entry_ && state_.ssid_seen && state_.signal_seen && state_.in_band && !state_.out_of_band) {
    entry_->set("security", classify_security(band_, state_.security));
    list_.add(entry_->text());
  }
  entry_.reset();
}

void ScanParser::read_attribute(std::string_view line) {
  ScanSecurity& security = state_.security;
  if (const auto signal = platform::behind(line, "signal:")) {
    read_signal(*signal);
  } else if (const auto frequency = platform::behind(line, "freq:")) {
    read_frequency(*frequency);
  } else if (const auto ssid = platform::behind(line, "SSID:")) {
    read_ssid(*ssid);
  } else if (platform::holds(line, "RSN:")) {
    security.rsn = security.encrypted = true;
  } else if (platform::holds(line, "WPA:")) {
    security.wpa = security.encrypted = true;
  } else if (platform::holds(line, "Authentication suites:")) {
    security.psk = security.psk || platform::holds(line, "PSK");
    security.sae = security.sae || platform::holds(line, "SAE");
  } else if (platform::holds(line, "Group cipher:") || platform::holds(line, "Pairwise ciphers:")) {
    security.tkip = security.tkip || platform::holds(line, "TKIP");
    security.ccmp = security.ccmp || platform::holds(line, "CCMP");
  }
  read_product(line);
}

void ScanParser::read_signal(std::string_view value) {
  const std::optional<float> dbm = parse_number(value);
  if (!dbm) return;
  entry_->set("rssi", scale_rssi(*dbm));
  state_.signal_seen = true;
}

void ScanParser::read_frequency(std::string_view value) {
  state_.freq_mhz = parse_number(value).value_or(state_.freq_mhz);
  if (is_in_band(band_, state_.freq_mhz)) {
    entry_->set("channel", channel_of_frequency(state_.freq_mhz));
    state_.in_band = true;
  } else {
    state_.out_of_band = true;
  }
}

// A hidden network has no SSID, or one of zero bytes.
void ScanParser::read_ssid(std::string_view value) {
  std::string ssid = unescape_ssid(platform::trim_start(value, " "));
  ssid.resize(std::min(ssid.find('\0'), ssid.size()));
  ssid.resize(platform::cut_utf8(ssid, kSsidMax).size());
  if (ssid.empty()) return;
  entry_->set("essid", std::move(ssid));
  state_.ssid_seen = true;
}

// The first attribute line of a block decides.
void ScanParser::read_product(std::string_view line) {
  if (entry_->has("wirelessProduct")) return;
  const auto is_announced = [line](const Product& product) { return platform::holds(line, product.mark); };
  const auto product = std::find_if(kProducts.begin(), kProducts.end(), is_announced);
  int generation = 4;
  if (product != kProducts.end()) {
    generation = product->generation;
  } else if (state_.freq_mhz >= kWindows[2].first_mhz) {
    generation = 6;
  } else if (state_.freq_mhz >= kWindows[1].first_mhz) {
    generation = 5;
  }
  entry_->set("wirelessProduct", generation);
}
