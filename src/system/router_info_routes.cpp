// GET and POST /api/v1/router/info, GET /api/v1/router/device-info.
#include <optional>
#include <string>

#include "answer/answer.h"
#include "answer/json_reading.h"
#include "domain/brands.h"
#include "handlers.h"
#include "platform/log.h"
#include "platform/text.h"
#include "system/router_info.h"
#include "uci_section.h"
#include "unit/brand.h"

namespace {

constexpr std::size_t kModelMax = 31;
constexpr std::size_t kLocationTextMax = 63;

json::ObjectText build_info(const RouterInfo& info) {
  json::ObjectText object;
  object.add("notification", info.notification);
  object.add("location", info.location);
  object.add("ledStatus", info.led_status);
  object.add("certDBNumber", info.cert_db_number);
  object.add("modeSwitchStatus", info.mode_switch_status);
  object.add("currentMode", info.current_mode);
  object.add("productId", info.product_id);
  object.add("model", info.model);
  object.add("macAddress", info.mac_address);
  object.add("fwVersion", info.fw_version);
  object.add("locationCustom", info.location_custom);
  object.add("currentDateTime", info.current_date_time);
  object.add("fwUpdateUrl", info.fw_update_url);
  object.add("bootcodeVersion", info.bootcode_version);
  object.add("dualImageAreaAStatus", info.image_area_a);
  object.add("dualImageAreaBStatus", info.image_area_b);
  return object;
}

}  // namespace

int handle_routerInfo_get(FCGX_Request* request) {
  RouterInfo info;
  get_routerInfo_list(info);
  return answer(request, json::success_text().add("routerInfo", build_info(info)));
}

// Every key is optional. A router without a host name could not tell its model any more.
int handle_routerInfo_post(FCGX_Request* request, const char* body) {
  const json::Document document(body);
  const json::Object info = document->object("routerInfo");
  if (!info) {
    log_debug("解析 JSON 失败\n");
    return answer(request, answers::kUnusable);
  }
  const std::optional<std::string> model = info.text("model");
  const std::optional<std::string> place = info.text("locationCustom");
  if (model && (model->empty() || !platform::is_one_line(*model))) return answer(request, answers::kUnusable);
  if (place && !platform::is_storable(*place)) return answer(request, answers::kUnusable);

  if (model) set_routerInfo_model(std::string(platform::cut_utf8(*model, kModelMax)));
  if (const auto location = info.number("location")) set_routerInfo_location(*location);
  if (place) set_routerInfo_locationCustom(std::string(platform::cut_utf8(*place, kLocationTextMax)));
  if (const auto status = info.number("ledStatus")) set_routerInfo_ledStatus(*status);
  return answer(request, answers::wait(20));
}

// Plain: clients ask it to recognise the device before they can decrypt.
int handle_get_device_info(FCGX_Request* request) {
  constexpr std::size_t kTextSize = 16;
  const std::string model = uci::Section("system", "@system[0]").read_or("hostname", kTextSize, "");
  const std::string id = unit::device_id_line();
  const brands::Brand& brand = brands::of_whole_id(id);
  if (!brands::is_known(brand) || model != brand.product) return answer_plain(request, json::result_text(1));
  return answer_plain(request, json::success_text().add("productId", id).add("model", model));
}
