// GET and POST /api/v1/router/info, GET /api/v1/router/device-info.
#include <array>

#include "answer/answer.h"
#include "handlers.h"
#include "platform/log.h"
#include "system/device.h"
#include "system/router_info.h"
#include "uci_access.h"

namespace {

constexpr std::size_t kModelMax = 31;
constexpr std::size_t kLocationTextMax = 63;

struct Product {
  const char* id;
  const char* model;
};
constexpr std::array<Product, 2> kProducts{{{"0221", "MX-9P300KLD"}, {"0121", "VR-EH700QTS"}}};

json::JsonPtr build_info(const RouterInfo& info) {
  json::JsonPtr object = json::new_object();
  json_object* root = object.get();
  json::add(root, "notification", info.notification);
  json::add(root, "location", info.location);
  json::add(root, "ledStatus", info.led_status);
  json::add(root, "certDBNumber", info.cert_db_number);
  json::add(root, "modeSwitchStatus", info.mode_switch_status);
  json::add(root, "currentMode", info.current_mode);
  json::add(root, "productId", info.product_id);
  json::add(root, "model", info.model);
  json::add(root, "macAddress", info.mac_address);
  json::add(root, "fwVersion", info.fw_version);
  json::add(root, "locationCustom", info.location_custom);
  json::add(root, "currentDateTime", info.current_date_time);
  json::add(root, "fwUpdateUrl", info.fw_update_url);
  json::add(root, "bootcodeVersion", info.bootcode_version);
  json::add(root, "dualImageAreaAStatus", info.image_area_a);
  json::add(root, "dualImageAreaBStatus", info.image_area_b);
  return object;
}

json::JsonPtr success_document() {
  json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", 0);
  json::add(document.get(), "version", 1);
  return document;
}

}  // namespace

int handle_routerInfo_get(FCGX_Request* request) {
  RouterInfo info;
  get_routerInfo_list(info);
  const json::JsonPtr document = success_document();
  json::add(document.get(), "routerInfo", build_info(info));
  return answer(request, document);
}

// Every key is optional and applied at once.
int handle_routerInfo_post(FCGX_Request* request, const char* body) {
  const json::JsonPtr json = json::parse(body);
  json_object* info = json::member(json.get(), "routerInfo");
  if (!json_object_is_type(info, json_type_object)) {
    log_debug("解析 JSON 失败\n");
    return answer(request, kResultUnusable);
  }
  if (const auto model = json::text_member(info, "model")) set_routerInfo_model(model->substr(0, kModelMax));
  if (const auto location = json::int_member(info, "location")) set_routerInfo_location(*location);
  if (const auto text = json::text_member(info, "locationCustom")) {
    set_routerInfo_locationCustom(text->substr(0, kLocationTextMax));
  }
  if (const auto status = json::int_member(info, "ledStatus")) set_routerInfo_ledStatus(*status);
  return answer(request, kResultOkWait20);
}

// Plain: clients ask it to recognise the device before they can decrypt.
int handle_get_device_info(FCGX_Request* request) {
  constexpr std::size_t kTextSize = 16;
  const std::string model = uci_read_or("system", "@system[0]", "hostname", kTextSize, "");
  std::string id;
  getFileInfo("/tmp/deviceid", &id, kTextSize);
  for (const Product& product : kProducts) {
    if (id != product.id || model != product.model) continue;
    const json::JsonPtr document = success_document();
    json::add(document.get(), "productId", id);
    json::add(document.get(), "model", model);
    return answer_plain(request, document);
  }
  const json::JsonPtr document = json::new_object();
  json::add(document.get(), "result", 1);
  return answer_plain(request, document);
}
