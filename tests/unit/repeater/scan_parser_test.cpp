#include "repeater/scan_parser.h"

#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

#include <gtest/gtest.h>
#include <json-c/json.h>

#include "answer/json_reading.h"
#include "platform/file.h"

namespace {

// A scan that the build has written. Where another build's program is run, it is not there.
std::string fixture(const std::string& name) {
  const std::string path = UNIT_SCANS "/" + name;
  const std::optional<std::string> content = platform::read_file(path.c_str());
  if (!content) throw std::runtime_error(path + " is missing: the build of unit_repeater makes it");
  return *content;
}

// The list as it is answered.
std::string survey(std::size_t band, std::string_view text, std::size_t piece_size = 65536) {
  json::ListText list;
  ScanParser parser(band, list);
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, piece_size);
    parser.feed(piece);
    text.remove_prefix(piece.size());
  }
  parser.finish();
  return std::move(list).text();
}

json::Document as_document(const std::string& list) { return json::Document(("{\"list\":" + list + "}").c_str()); }

json::Document scan(std::size_t band, std::string_view text) { return as_document(survey(band, text)); }

// One access point on 2.4 GHz that is shown, with more lines of its own.
std::string with_lines(std::string_view lines) {
  return "BSS 00:11:22:33:44:55(on mld1)\n\tTSF: 1 usec\n\tfreq: 2412\n\tsignal: -60.00 dBm\n\tSSID: net\n" +
         std::string(lines);
}

std::string shown_with(std::string_view changes) {
  return R"([ { "bssid": "00:11:22:33:44:55", "band": 1, "wirelessProduct": 4, "channel": 1, "rssi": 50, "essid": "net", )" +
         std::string(changes) + " } ]";
}

std::string essid_of(std::string_view ssid_text) {
  const json::Document shown = scan(
      0, "BSS 00:11:22:33:44:55(on mld1)\n\tfreq: 2412\n\tsignal: -60 dBm\n\tSSID:" + std::string(ssid_text) + "\n");
  return shown->list("list").at(0).text("essid").value_or("<not shown>");
}

// Of two JSON texts, whatever the order of the keys.
bool are_equal(const std::string& left, const std::string& right) {
  json_object* const values[] = {json_tokener_parse(left.c_str()), json_tokener_parse(right.c_str())};
  const bool equal = json_object_equal(values[0], values[1]) != 0;
  for (json_object* value : values) json_object_put(value);
  return equal;
}

struct Fixture {
  const char* name;
  std::size_t band;
  std::size_t shown;
};
constexpr Fixture kFixtures[] = {{"2g", 0, 100}, {"5g", 1, 100}, {"6g", 2, 80}};

TEST(ScanParser, ReadsFullScansOfEachBand) {
  for (const Fixture& row : kFixtures) {
    const std::string expected = fixture(std::string("scan_") + row.name + ".json");
    ASSERT_GT(as_document(expected)->list("list").size(), row.shown);
    const std::string list = survey(row.band, fixture(std::string("scan_") + row.name + ".txt"));
    EXPECT_TRUE(are_equal(list, expected)) << row.name;
  }
}

TEST(ScanParser, DoesNotDependOnHowTheTextComes) {
  for (const Fixture& row : kFixtures) {
    const std::string text = fixture(std::string("scan_") + row.name + ".txt").substr(0, 60000);
    const std::string whole = survey(row.band, text, text.size());
    for (const std::size_t piece_size : {1U, 7U, 1022U, 1023U, 1024U, 4096U}) {
      EXPECT_EQ(survey(row.band, text, piece_size), whole) << piece_size;
    }
  }
}

TEST(ScanParser, TakesCarriageReturnsAndALastLineWithoutEnd) {
  std::string text;
  for (const char character : with_lines("\tRSN:\t * Version: 1\n\t\t * Authentication suites: SAE")) {
    if (character == '\n') text += '\r';
    text += character;
  }
  EXPECT_EQ(survey(0, text), shown_with(R"("security": 7)"));
}

TEST(ScanParser, AddsTheKeysAsTheirLinesCome) {
  EXPECT_EQ(survey(0, with_lines("")), shown_with(R"("security": 1)"));
  EXPECT_EQ(
      survey(0, "BSS 00:11:22:33:44:55(on mld1)\n\tSSID: net\n\tsignal: -60 dBm\n\tfreq: 2412.0\n"),
      R"([ { "bssid": "00:11:22:33:44:55", "band": 1, "essid": "net", "wirelessProduct": 4, "rssi": 50, "channel": 1, "security": 1 } ])");
}

TEST(ScanParser, ShowsOnlyWhoTellsSsidSignalAndFrequency) {
  EXPECT_EQ(survey(0, ""), "[ ]");
  EXPECT_EQ(survey(0, "\tSSID: nobody's\n\tfreq: 2412\n\tsignal: -60 dBm\n"), "[ ]");
  EXPECT_EQ(survey(0, "BSS 1(on mld1)\n\tfreq: 2412\n\tsignal: -60 dBm\n"), "[ ]");
  EXPECT_EQ(survey(0, "BSS 1(on mld1)\n\tfreq: 2412\n\tSSID: a\n"), "[ ]");
  EXPECT_EQ(survey(0, "BSS 1(on mld1)\n\tsignal: -60 dBm\n\tSSID: a\n"), "[ ]");
  EXPECT_EQ(survey(0, "BSS 1(on mld1)\n\tfreq: 2412\n\tsignal: loud\n\tSSID: a\n"), "[ ]");
  EXPECT_EQ(survey(0, "command failed: Device or resource busy (-16)\n"), "[ ]");
}

TEST(ScanParser, NeverListsAHiddenNetwork) {
  for (const char* ssid : {"", " ", "   ", " \\x00", " \\x00\\x00\\x00\\x00\\x00"})
    EXPECT_EQ(essid_of(ssid), "<not shown>");
}

TEST(ScanParser, DropsAnAccessPointHeardOutsideTheBandEntirely) {
  EXPECT_EQ(survey(0, "BSS 1(on mld1)\n\tfreq: 5180\n\tsignal: -60 dBm\n\tSSID: a\n"), "[ ]");
  // What follows in its block does not bring it back.
  EXPECT_EQ(survey(0, "BSS 1(on mld1)\n\tfreq: 5180\n\tfreq: 2412\n\tsignal: -60 dBm\n\tSSID: a\n"), "[ ]");
  EXPECT_EQ(survey(0, "BSS 1(on mld1)\n\tfreq: 2412\n\tfreq: 5180\n\tsignal: -60 dBm\n\tSSID: a\n"), "[ ]");
  EXPECT_EQ(survey(0, "BSS 1(on mld1)\n\tfreq: high\n\tsignal: -60 dBm\n\tSSID: a\n"), "[ ]");
  // The next block starts anew.
  EXPECT_EQ(survey(0, "BSS 1(on mld1)\n\tfreq: 5180\n" + with_lines("")), shown_with(R"("security": 1)"));
}

TEST(ScanParser, StartsEachBlockWithoutWhatTheLastOneTold) {
  const std::string first = with_lines("\tRSN:\t * Version: 1\n\t\t * Authentication suites: PSK SAE\n");
  const std::string text = first + "BSS 66:55:44:33:22:11(on mld1)\n\tfreq: 2437\n\tsignal: -90 dBm\n\tSSID: b\n";
  EXPECT_EQ(
      survey(0, text),
      R"([ { "bssid": "00:11:22:33:44:55", "band": 1, "wirelessProduct": 4, "channel": 1, "rssi": 50, "essid": "net", "security": 8 }, { "bssid": "66:55:44:33:22:11", "band": 1, "channel": 6, "wirelessProduct": 4, "rssi": 0, "essid": "b", "security": 1 } ])");
}

struct BlockStart {
  const char* line;
  const char* bssid;  // nullptr: none
};

TEST(ScanParser, ReadsTheBssidUpToTheParenthesis) {
  const BlockStart rows[] = {
      {"BSS 00:11:22:33:44:55(on mld1)", "00:11:22:33:44:55"},
      {"BSS 00:11:22:33:44:55(on mld1) -- associated", "00:11:22:33:44:55"},
      {"BSS 0123456789012345678(on mld1)", "0123456789012345678"},
      {"BSS 01234567890123456789(on mld1)", nullptr},
      {"BSS (on mld1)", ""},
      {"BSS 00:11:22:33:44:55", "00:11:22:33:44:55"},
      {"BSS 0123456789012345678901234", "0123456789012345678"},
      {"BSS", nullptr},
      {"BSSID", nullptr},
      {"BSS ", ""},
  };
  for (const BlockStart& row : rows) {
    const json::Document shown = scan(0, std::string(row.line) + "\n\tfreq: 2412\n\tsignal: -60 dBm\n\tSSID: net\n");
    ASSERT_EQ(shown->list("list").size(), 1U) << row.line;
    const auto bssid = shown->list("list").at(0).text("bssid");
    EXPECT_EQ(bssid.has_value(), row.bssid != nullptr) << row.line;
    if (row.bssid != nullptr) {
      EXPECT_EQ(bssid.value_or("?"), row.bssid);
    }
  }
}

TEST(ScanParser, ReadsTheSsidAsIwPrintsIt) {
  EXPECT_EQ(essid_of(" net"), "net");
  EXPECT_EQ(essid_of("net"), "net");
  EXPECT_EQ(essid_of("    net  "), "net  ");
  EXPECT_EQ(essid_of(" a\\x20b"), "a b");
  EXPECT_EQ(essid_of(" \\x20a\\x20"), " a ");
  EXPECT_EQ(essid_of(" \\x5cx41"), "\\x41");
  EXPECT_EQ(essid_of(" \\xe6\\x97\\xa5"), "\xe6\x97\xa5");
  EXPECT_EQ(essid_of(" RSN: signal"), "RSN: signal");
  EXPECT_EQ(essid_of(" freq: 1"), "<not shown>");  // the earlier rule takes the line, and the frequency with it
  EXPECT_EQ(essid_of(" " + std::string(200, 'a')), std::string(127, 'a'));
  EXPECT_EQ(essid_of(" " + std::string(126, 'a') + "\\x41"), std::string(126, 'a') + "A");
}

TEST(ScanParser, CutsALineThatIsTooLong) {
  const std::string filler(1018, ' ');  // with the tab and "SSID:" one line of 1024 bytes and its end
  EXPECT_EQ(essid_of(filler), "<not shown>");
  // What is behind the bound counts as a line of its own.
  EXPECT_EQ(survey(0, with_lines("\t" + std::string(1022, 'x') + "RSN: * Authentication suites: SAE\n")),
            shown_with(R"("security": 0)"));
}

// Quadratic work would run into the time limit of the test program.
TEST(ScanParser, TakesLongTextsInTheTimeTheyTake) {
  constexpr std::size_t kLong = 4 << 20;
  EXPECT_EQ(survey(0, std::string(kLong, 'x')), "[ ]");
  EXPECT_EQ(essid_of(" " + std::string(kLong, 'a')), std::string(127, 'a'));
  constexpr std::size_t kBlocks = 10000;
  std::string text;
  for (std::size_t i = 0; i < kBlocks; ++i) text += with_lines("");
  EXPECT_EQ(scan(0, text)->list("list").size(), kBlocks);
}

TEST(ScanParser, EndsALineAtAZeroByte) {
  using std::string_literals::operator""s;
  EXPECT_EQ(
      survey(0, with_lines("\tSSID: a\0RSN:\n"s)),
      R"([ { "bssid": "00:11:22:33:44:55", "band": 1, "wirelessProduct": 4, "channel": 1, "rssi": 50, "essid": "a", "security": 1 } ])");
}

struct ProductCase {
  const char* first_line;
  int product;
};

TEST(ScanParser, LetsTheFirstAttributeLineDecideTheProduct) {
  const ProductCase rows[] = {
      {"\tEHT Operation:", 7}, {"\tHE Operation:", 6}, {"\tVHT Operation:", 5},
      {"\tHT Operation:", 4},  {"\tTSF: 1 usec", 4},   {"\tlast seen: 1 ms ago", 4},
      {"\tHT operation:", 4},  {"\tfreq: 2412", 4},    {"", 4},
  };
  for (const ProductCase& row : rows) {
    const json::Document shown =
        scan(0, std::string("BSS 1(on mld1)\n") + row.first_line +
                    "\n\tfreq: 2412\n\tsignal: -60 dBm\n\tSSID: net\n\tEHT Operation:\n\tHE Operation:\n");
    EXPECT_EQ(shown->list("list").at(0).number("wirelessProduct"), row.product) << row.first_line;
  }
}

TEST(ScanParser, TellsTheProductByTheFrequencyWhereThatComesFirst) {
  const auto product_at = [](std::size_t band, const char* freq) {
    const json::Document shown =
        scan(band, std::string("BSS 1(on mld1)\n\tfreq: ") + freq + "\n\tsignal: -60 dBm\n\tSSID: net\n");
    return shown->list("list").at(0).number("wirelessProduct");
  };
  EXPECT_EQ(product_at(0, "2412"), 4);
  EXPECT_EQ(product_at(1, "5180.0"), 5);
  EXPECT_EQ(product_at(2, "5955"), 6);
}

struct SecurityCase {
  const char* lines;
  int on_2g;
  int on_6g;
};

TEST(ScanParser, ClassifiesWhatTheElementsTell) {
  const SecurityCase rows[] = {
      {"", 1, 1},
      {"\tRSN:\t * Version: 1\n\t\t * Group cipher: CCMP\n\t\t * Pairwise ciphers: CCMP\n\t\t * Authentication suites: "
       "PSK\n",
       4, 1},
      {"\tRSN:\t * Version: 1\n\t\t * Group cipher: TKIP\n\t\t * Pairwise ciphers: CCMP TKIP\n\t\t * Authentication "
       "suites: PSK\n",
       5, 1},
      {"\tRSN:\t * Version: 1\n\t\t * Pairwise ciphers: TKIP\n\t\t * Authentication suites: PSK\n", 3, 1},
      {"\tRSN:\t * Version: 1\n\t\t * Authentication suites: SAE\n", 7, 7},
      {"\tRSN:\t * Version: 1\n\t\t * Authentication suites: PSK SAE\n", 8, 7},
      {"\tRSN:\t * Version: 1\n\t\t * Authentication suites: IEEE 802.1X\n", 0, 1},
      {"\tRSN:\t * Version: 1\n\t\t * Authentication suites: OWE\n", 0, 1},
      {"\tWPA:\t * Version: 1\n\t\t * Group cipher: CCMP\n\t\t * Authentication suites: PSK\n", 2, 1},
      {"\tWPA:\t * Version: 1\n\t\t * Group cipher: TKIP\n\t\t * Authentication suites: PSK\n", 3, 1},
      {"\tWPA:\t * Version: 1\n\t\t * Group cipher: TKIP\n\t\t * Pairwise ciphers: CCMP\n", 5, 1},
      {"\tcapability: ESS Privacy\n", 1, 1},
  };
  for (const SecurityCase& row : rows) {
    for (const std::size_t band : {0U, 1U, 2U}) {
      const char* freq = band == 0 ? "2412" : band == 1 ? "5180" : "5955";
      const json::Document shown =
          scan(band, std::string("BSS 1(on mld1)\n\tfreq: ") + freq + "\n\tsignal: -60 dBm\n\tSSID: net\n" + row.lines);
      EXPECT_EQ(shown->list("list").at(0).number("security"), band == 2 ? row.on_6g : row.on_2g) << band << row.lines;
    }
  }
}

// The rules once more, in the order in which they are told.
int expected_security(std::size_t band, const ScanSecurity& s) {
  if (!s.encrypted) return 1;
  if (band == 2) return s.rsn && s.sae ? 7 : 1;
  if (!s.rsn) {
    if (!s.wpa) return 0;
    if (s.tkip && s.ccmp) return 5;
    if (!s.tkip) return 2;
    return 3;
  }
  if (s.sae && s.psk) return 8;
  if (s.sae) return 7;
  if (!s.psk) return 0;
  if (s.tkip && s.ccmp) return 5;
  if (!s.tkip) return 4;
  return 3;
}

TEST(ClassifySecurity, FollowsItsRulesForEveryCombination) {
  for (std::size_t band = 0; band < kScanBandCount; ++band) {
    for (unsigned int bits = 0; bits < 128; ++bits) {
      const auto bit = [bits](unsigned int number) { return (bits >> number & 1U) != 0; };
      const ScanSecurity security{.encrypted = bit(0),
                                  .rsn = bit(1),
                                  .wpa = bit(2),
                                  .sae = bit(3),
                                  .psk = bit(4),
                                  .tkip = bit(5),
                                  .ccmp = bit(6)};
      EXPECT_EQ(classify_security(band, security), expected_security(band, security)) << band << ' ' << bits;
    }
  }
}

TEST(ScaleRssi, ScalesAndClamps) {
  EXPECT_EQ(scale_rssi(-90), 0);
  EXPECT_EQ(scale_rssi(-30), 100);
  EXPECT_EQ(scale_rssi(-60), 50);
  EXPECT_EQ(scale_rssi(-61), 48);
  EXPECT_EQ(scale_rssi(-89.5F), 0);
  EXPECT_EQ(scale_rssi(-100), 0);
  EXPECT_EQ(scale_rssi(0), 100);
  constexpr float kInfinite = std::numeric_limits<float>::infinity();
  EXPECT_EQ(scale_rssi(kInfinite), 100);
  EXPECT_EQ(scale_rssi(-kInfinite), 0);
  EXPECT_EQ(scale_rssi(std::nanf("")), 0);
}

TEST(ChannelOfFrequency, CountsInStepsOf5Mhz) {
  const struct {
    float freq_mhz;
    int channel;
  } rows[] = {{2412, 1},  {2437, 6},  {2472, 13},  {2484, 15},  {2411, 1}, {2485, 1},
              {5180, 36}, {5200, 40}, {5720, 144}, {5825, 165}, {5826, 1}, {5179, 1},
              {5955, 1},  {6415, 93}, {7115, 233}, {7116, 1},   {0, 1},    {2414.9F, 1}};
  for (const auto& row : rows) EXPECT_EQ(channel_of_frequency(row.freq_mhz), row.channel) << row.freq_mhz;
}

TEST(IsInBand, IncludesBothEnds) {
  const float edges[3][2] = {{2412, 2472}, {5180, 5720}, {5955, 6415}};
  for (std::size_t band = 0; band < kScanBandCount; ++band) {
    EXPECT_TRUE(is_in_band(band, edges[band][0]));
    EXPECT_TRUE(is_in_band(band, edges[band][1]));
    EXPECT_FALSE(is_in_band(band, edges[band][0] - 1));
    EXPECT_FALSE(is_in_band(band, edges[band][1] + 1));
    EXPECT_FALSE(is_in_band(band, std::nanf("")));
  }
}

TEST(UnescapeSsid, TurnsEscapesIntoBytes) {
  const std::pair<const char*, std::string> rows[] = {{"", ""},
                                                      {"a", "a"},
                                                      {"\\x41", "A"},
                                                      {"\\x4A\\x4b", "JK"},
                                                      {"\\x4", "\\x4"},
                                                      {"\\x", "\\x"},
                                                      {"\\", "\\"},
                                                      {"\\xg0", "\\xg0"},
                                                      {"\\x5cx41", "\\x41"},
                                                      {"a\\x20b", "a b"},
                                                      {"\\\\x41", "\\A"},
                                                      {"\\y41", "\\y41"},
                                                      {"\\x 1", "\\x 1"},
                                                      {"\\xFF", "\xFF"},
                                                      {"\\x00", std::string(1, '\0')}};
  for (const auto& [text, ssid] : rows) EXPECT_EQ(unescape_ssid(text), ssid) << text;
}

TEST(ScanParser, TellsWhetherABlockBegan) {
  json::ListText list;
  ScanParser parser(0, list);
  parser.feed("nothing\n");
  EXPECT_FALSE(parser.seen_block());
  parser.feed("BSS");
  EXPECT_FALSE(parser.seen_block());
  parser.finish();
  EXPECT_TRUE(parser.seen_block());
}

}  // namespace
