// What the brands of this firmware differ in: one row a brand.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

// Brand indices; kBrandOther has neither brand's special rules.
inline constexpr int kBrandOrvane = 0;
inline constexpr int kBrandTesmir = 1;
inline constexpr int kBrandOther = 2;

namespace brands {

// Command lines of the firmware update tool; nullptr where the brand has none.
struct UpdateTool {
  const char* start_check;  // returns at once
  const char* check;
  const char* download;
  const char* verify;  // never nullptr: the image of an unknown unit is verified, too, before it is refused
  const char* install;
};

// What becomes of the MLO SSID while the mesh is on.
enum class MloInMesh {
  kNone,      // there is none: its slot shows the backhaul
  kMirrored,  // the mesh carries it: what is written to it is mirrored to the mesh's settings
  kUnaware,   // it is written as if there were no mesh
};

// How long the client of a unit waits before it asks again, in seconds.
struct Waits {
  int factory_reset;
  int first_reboot;  // of a unit whose line is provisioned anew
  int mesh_start;    // of a unit that becomes a controller
  int mesh_join;     // of a unit that becomes an agent
};

struct Brand {
  // --- Who it is.
  std::string_view device_id;  // what /tmp/deviceid begins with; empty in the row of the others
  const char* log_name;
  std::string_view product;  // the host name that it leaves the factory with; empty in the row of the others
  // --- Firmware and backup.
  const char* backup_file;        // what a browser stores a backup as
  const char* update_url_option;  // of hota.info; nullptr where there is none
  UpdateTool update_tool;
  // --- The LAN.
  const char* lan_address;
  const char* lan_first_client;
  // --- Services.
  bool has_security_service;
  bool has_maintenance_agents;
  bool shows_maintenance_details;
  // --- Wireless.
  MloInMesh mlo_in_mesh;
  std::string_view fronthaul_slot;  // the SSID that mesh agents take over; empty where there is none
  bool has_copies_in_mesh;          // a controller keeps the copy SSIDs
  bool has_second_aps;              // a connected repeater turns its second SSIDs on
  // The file that hostapd runs an agent's backhaul with, by mesh mode; modes beyond use the last.
  std::array<const char*, 3> backhaul_files;
  // --- Answers.
  Waits waits_s;
};

inline constexpr const char* kMld31 = "/tmp/run/hostapd-mld31.conf";
inline constexpr const char* kMld41 = "/tmp/run/hostapd-mld41.conf";

// By brand index. The last row is that of units whose id is unknown.
inline constexpr std::array<Brand, 3> kBrands{{
    {
        .device_id = "0221",
        .log_name = "ORVANE",
        .product = "MX-9P300KLD",
        .backup_file = "MX-9P300KLD-config.bin",
        .update_url_option = "orvanepathV4",
        .update_tool = {.start_check = "orvanehota -c &",
                        .check = "/usr/sbin/orvanehota -c",
                        .download = "/usr/sbin/orvanehota -d",
                        .verify = "/usr/sbin/orvanehota -v",
                        .install = "/usr/sbin/orvanehota -u"},
        .lan_address = "192.168.0.1",
        .lan_first_client = "192.168.0.2",
        .has_security_service = false,
        .has_maintenance_agents = true,
        .shows_maintenance_details = true,
        .mlo_in_mesh = MloInMesh::kNone,
        .fronthaul_slot = "SSID1",
        .has_copies_in_mesh = false,
        .has_second_aps = false,
        .backhaul_files = {kMld41, kMld31, kMld31},
        .waits_s = {.factory_reset = 420, .first_reboot = 360, .mesh_start = 150, .mesh_join = 130},
    },
    {
        .device_id = "0121",
        .log_name = "TESMIR",
        .product = "VR-EH700QTS",
        .backup_file = "VR-EH700QTS-config.bin",
        .update_url_option = "tesmirpath",
        .update_tool = {.start_check = "tesmirhota -c &",
                        .check = "/usr/sbin/tesmirhota -c",
                        .download = "/usr/sbin/tesmirhota -d",
                        .verify = "/usr/sbin/tesmirhota -v",
                        .install = "/usr/sbin/tesmirhota -u"},
        .lan_address = "192.168.2.1",
        .lan_first_client = "192.168.2.2",
        .has_security_service = true,
        .has_maintenance_agents = false,
        .shows_maintenance_details = false,
        .mlo_in_mesh = MloInMesh::kMirrored,
        .fronthaul_slot = "SSID4",
        .has_copies_in_mesh = true,
        .has_second_aps = true,
        .backhaul_files = {kMld41, kMld41, kMld31},
        .waits_s = {.factory_reset = 480, .first_reboot = 500, .mesh_start = 220, .mesh_join = 150},
    },
    {
        .device_id = "",
        .log_name = "",
        .product = "",
        .backup_file = "response_field.bin",
        .update_url_option = nullptr,
        .update_tool = {.start_check = nullptr,
                        .check = nullptr,
                        .download = nullptr,
                        .verify = "/usr/sbin/tesmirhota -v",
                        .install = nullptr},
        .lan_address = "192.168.0.1",
        .lan_first_client = "192.168.0.2",
        .has_security_service = false,
        .has_maintenance_agents = true,
        .shows_maintenance_details = false,
        .mlo_in_mesh = MloInMesh::kUnaware,
        .fronthaul_slot = "",
        .has_copies_in_mesh = true,
        .has_second_aps = true,
        .backhaul_files = {kMld41, kMld31, kMld31},
        .waits_s = {.factory_reset = 420, .first_reboot = 360, .mesh_start = 220, .mesh_join = 150},
    },
}};

constexpr bool is_known(const Brand& brand) { return !brand.device_id.empty(); }

// The index of a row of kBrands.
constexpr int index_of(const Brand& brand) {
  const auto* row = std::ranges::find(kBrands, brand.device_id, &Brand::device_id);
  return static_cast<int>(row - kBrands.begin());
}

// The row of a brand index.
constexpr const Brand& of_index(int index) { return kBrands.at(static_cast<std::size_t>(index)); }

// The row whose id is all of `id`, or what it begins with; the last row where none is.
constexpr const Brand& of_whole_id(std::string_view id) {
  const auto is_it = [id](const Brand& row) { return is_known(row) && id == row.device_id; };
  const auto* row = std::ranges::find_if(kBrands, is_it);
  return row == kBrands.end() ? kBrands.back() : *row;
}
constexpr const Brand& of_id(std::string_view id) {
  const auto is_it = [id](const Brand& row) { return is_known(row) && id.starts_with(row.device_id); };
  const auto* row = std::ranges::find_if(kBrands, is_it);
  return row == kBrands.end() ? kBrands.back() : *row;
}

}  // namespace brands
