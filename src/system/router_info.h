// The router's identity and status.
#pragma once

#include <cstddef>
#include <string>

// Built per request. Texts hold what their size allows, less one byte; a value that cannot be read stays empty or 0.
struct RouterInfo {
  int notification = 0;  // 0 online, 1 offline or unknown, 2 the connectivity check says 100, 3 update available
  int location = 0;
  int led_status = 0;
  std::string cert_db_number = "1";
  int mode_switch_status = 0;  // -1, 0, 1 or 2; 2 on a mesh agent
  int current_mode = 0;        // 0 router, 1 access point, 2 repeater or mesh agent
  std::string product_id;
  std::string model;
  std::string mac_address;
  std::string fw_version;
  std::string location_custom;
  std::string current_date_time;
  std::string fw_update_url;
  std::string bootcode_version = "U-Boot 2023.04";
  std::string image_area_a = "Ready";
  std::string image_area_b = "Ready";
};

void get_routerInfo_list(RouterInfo& info);

// 0 online, 2 when the connectivity check says 100, else 1.
int get_internet_status();
// Starts the brand's update check in the background and answers what the last one found: 1 for a newer firmware.
int get_hota_status();

// Each changes one setting; failures are logged only.
void set_routerInfo_model(const std::string& model);
void set_routerInfo_location(int location);
void set_routerInfo_locationCustom(const std::string& text);
void set_routerInfo_ledStatus(int status);
