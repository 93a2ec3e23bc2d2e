// The description of the uplink that GET /repeater/connect answers: the configuration and the state of its links.
#include "repeater/status_report.h"

#include <array>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "platform/log.h"
#include "repeater/bands.h"
#include "repeater/ordered_members.h"
#include "repeater/uci_commands.h"
#include "repeater/uplink_monitor.h"
#include "system_helpers.h"
#include "uci_section.h"
#include "unit/mesh.h"
#include "wireless.h"

namespace {

// The messages of this file are known by the name of their route's handler.
constexpr const char* kHandler = "handle_get_repeaterconnect_json";

constexpr const char* kNoMac = "000000000000";
constexpr const char* kMainMld = "mld0";
constexpr std::size_t kCodeSize = 4;
constexpr std::size_t kSsidSize = 40;
constexpr std::size_t kKeySize = 100;
constexpr std::size_t kEncryptionSize = 16;

// encryptType of this report; 1 stands for WPA2-PSK.
constexpr int kReportOpen = 0;
constexpr int kReportWpa2 = 1;
constexpr int kReportSae = 2;

using BandTexts = std::array<std::string, kBandCount>;
using BandKeys = std::array<const char*, kBandCount>;
constexpr BandKeys kMacKeys{"24gMacAddr", "5gMacAddr", "6gMacAddr"};
constexpr BandKeys kLinkKeys{"bssidmlo24g", "bssidmlo5g", "bssidmlo6g"};
constexpr BandKeys kLinks{"link0", "link1", "link2"};

struct Report {
  OrderedMembers members;
  bool failed = false;  // the error mark
  std::string easymesh_enable;
  std::string mlo;
  std::string onboarding_done;

  void add(const char* key, OrderedMembers::Value value) { members.set(key, std::move(value)); }
  void add(const BandKeys& keys, const BandTexts& texts) {
    for (std::size_t band = 0; band < kBandCount; ++band) add(keys[band], texts[band]);
  }
  // The value of a read, or an empty text, a message and the error mark for a failed one.
  std::string expect(const std::optional<std::string>& value, const std::string& message) {
    if (!value) {
      log_error_as(kHandler, "%s", message.c_str());
      failed = true;
    }
    return value.value_or("");
  }
};

std::optional<std::string> read_easymesh(const char* option) { return unit::easymesh().read(option, kCodeSize); }

std::optional<std::string> read_station(const char* station, const char* option, std::size_t size) {
  return uci::Section("wireless", station).read(option, size);
}

void read_modes(Report& report) {
  report.easymesh_enable = report.expect(read_easymesh("enable"), "get repacd enable failed.\n");
  report.mlo = report.expect(read_mlo_variant(), "get mlo staus failed.\n");
  report.onboarding_done = report.expect(uci::Section("repacd", "MAPConfig").read("OnboardingDone", kCodeSize),
                                         "get OnboardingDone failed\n");
}

// What the log says of a station. The texts of one band tell of another: kept as they are.
struct StationMessages {
  const char* mac_failed;
  const char* named_by_encryption;
};
constexpr std::array<StationMessages, kBandCount> kStationMessages{{
    {"get  24gMacAddr error\n", "ath03"},
    {"get  24gMacAddr error\n", "ath03"},
    {"get 24gMacAddr error\n", "ath23"},
}};

std::string read_station_mac(std::size_t band) {
  std::array<char, 18> mac{};
  if (get_interface_macaddr(kBands[band].station, mac.data()) != 0)
    log_error_as(kHandler, "%s", kStationMessages[band].mac_failed);
  return mac.data();
}

// The addresses of the links of an MLD; bands that have none get `other`.
BandTexts read_links(Report& report, const char* mld, std::span<const std::size_t> bands, const char* other) {
  BandTexts texts;
  texts.fill(other);
  for (const std::size_t band : bands) {
    std::array<char, 18> mac{};
    if (get_mld_link_macaddr(kLinks[band], mac.data(), mld) != 0) {
      log_error_as(kHandler, band == k24g ? "get link0macaddr failed\n" : "get link1macaddr failed\n");
      report.failed = true;
    }
    texts[band] = mac.data();
  }
  return texts;
}

void add_ssid(Report& report, const char* station) {
  report.add("ssid", report.expect(read_station(station, "ssid", kSsidSize), "get ssid failed\n"));
}

void add_key(Report& report, const char* station) {
  const std::string message = std::string("get ") + station + " encryptKey failed.\n";
  report.add("encryptKey", report.expect(read_station(station, "key", kKeySize), message));
}

// An absent `sae` or `owe` is a normal state and no failure.
std::optional<int> find_encrypt_type(std::size_t band, const std::string& encryption) {
  const char* station = kBands[band].station;
  if (band != k6g) {
    if (read_station(station, "sae", kCodeSize)) return kReportSae;
    return encryption == "psk2+ccmp" ? kReportWpa2 : kReportOpen;
  }
  if (encryption != "ccmp") return std::nullopt;
  return read_station(station, "owe", kCodeSize) == "1" ? kReportOpen : kReportSae;
}

void add_encrypt_type(Report& report, std::size_t band) {
  const std::string message = std::string("get ") + kStationMessages[band].named_by_encryption + " encryption failed\n";
  const std::string encryption =
      report.expect(read_station(kBands[band].station, "encryption", kEncryptionSize), message);
  if (const std::optional<int> type = find_encrypt_type(band, encryption)) report.add("encryptType", *type);
}

void add_single_band(Report& report, std::size_t band) {
  const char* station = kBands[band].station;
  add_ssid(report, station);
  report.add("bssid", get_link_bssid(station));
  BandTexts macs{kNoMac, kNoMac, kNoMac};
  macs[band] = read_station_mac(band);
  report.add(kMacKeys, macs);
  report.add(kLinkKeys, BandTexts{});
  report.add("frequency", static_cast<int>(band) + 1);
  add_key(report, station);
  add_encrypt_type(report, band);
  report.add("multiLinkOperationEnable", 0);
}

void add_no_station(Report& report) {
  report.add("ssid", "");
  report.add("bssid", kNoMac);
  report.add(kLinkKeys, BandTexts{});
  report.add(kMacKeys, BandTexts{});
  report.add("frequency", 0);
  report.add("encryptType", kReportSae);
  report.add("encryptKey", "");
  const std::string mode = report.expect(read_easymesh("mode"), "get meshMode failed\n");
  report.add("multiLinkOperationEnable", mode == "2" ? 2 : mode == "1" ? 1 : 0);
}

// Several stations without a multi-link one are described by nobody.
void add_stations(Report& report) {
  switch (GetStaInterfaceMask()) {
    case 0:
      return add_no_station(report);
    case kMask24g:
      return add_single_band(report, k24g);
    case kMask5g:
      return add_single_band(report, k5g);
    case kMask6g:
      return add_single_band(report, k6g);
    default:
      return;
  }
}

// SSID, key and security are those of the first station.
void add_mlo(Report& report, const MloVariant& variant) {
  const std::size_t first = variant.bands.front();
  const char* station = kBands[first].station;
  add_ssid(report, station);
  report.add("bssid", get_link_bssid(kStationMld));
  const BandTexts links = read_links(report, kStationMld, variant.bands, kNoMac);
  report.add(kLinkKeys, links);
  report.add(kMacKeys, links);
  report.add("frequency", 0);
  add_key(report, station);
  add_encrypt_type(report, first);
  report.add("multiLinkOperationEnable", variant.code);
}

struct EasyMeshReport {
  std::span<const std::size_t> bands;
  int frequency;
  int multi_link;
};

EasyMeshReport find_easymesh_report(const std::string& mode) {
  if (mode == "1") return {kBands24And5, 0, 1};
  if (mode == "2") return {kBands5And6, 0, 2};
  return {kBands5And6.first(1), 2, 0};
}

void add_easymesh(Report& report) {
  std::string ssid;
  std::string key;
  if (get_agent_backhul_info(ssid, key) != 0) {
    log_error_as(kHandler, "get agent backhaul info failed\n");
    report.failed = true;
  }
  const bool onboarded = report.onboarding_done != "0";
  report.add("ssid", onboarded ? ssid : "");
  report.add("encryptKey", onboarded ? key : "");
  report.add("bssid", get_link_bssid(kMainMld));
  report.add(kLinkKeys, BandTexts{});
  const EasyMeshReport row = find_easymesh_report(report.expect(read_easymesh("mode"), "get meshMode failed\n"));
  report.add(kMacKeys, read_links(report, kMainMld, row.bands, ""));
  report.add("frequency", row.frequency);
  report.add("multiLinkOperationEnable", row.multi_link);
  report.add("encryptType", kReportSae);
}

// Replaces what the stations told where a multi-link or a mesh uplink is in use.
void add_uplink(Report& report) {
  if (report.easymesh_enable == "0") {
    if (const MloVariant* variant = find_mlo_variant(report.mlo)) add_mlo(report, *variant);
  }
  if (report.easymesh_enable == "1") add_easymesh(report);
}

// A value that older configurations lack: told only where it is there, and no failure.
void add_optional(Report& report, const char* key, const std::optional<std::string>& value, const char* message) {
  if (value) {
    report.add(key, std::atoi(value->c_str()));
  } else {
    log_error_as(kHandler, "%s", message);
  }
}

void add_settings(Report& report) {
  const std::string multi_ru = report.expect(uci::Section("wireless", "wifi1").read("dfs_puncture_en", kCodeSize),
                                             "get dfs_puncture_en failed.\n");
  report.add("multiRuEnable", std::atoi(multi_ru.c_str()));
  const std::string mode = report.expect(read_easymesh("mode"), "get repacd enable failed.\n");
  report.add("easyMeshBackHaulFrequency", mode == "2" ? 5 : mode == "1" ? 4 : 0);
  add_optional(report, "compatiMode", uci::Section("repeater", "compatiMode").read("value", kCodeSize),
               "get compatiMode value failed.\n");
  add_optional(report, "compatiWiFi6Mode", read_easymesh("compatiWiFi6Mode"), "get compatiWiFi6Mode value failed.\n");
}

}  // namespace

json::ObjectText build_connect_report() {
  Report report;
  report.add("version", 1);
  read_modes(report);
  add_stations(report);
  add_uplink(report);
  add_settings(report);
  report.add("result", report.failed ? 2 : 0);
  return report.members.text();
}
