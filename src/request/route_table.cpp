// The two route tables, in the order in which they are searched.
#include "request/route_table.h"

#include <array>

#include "handlers.h"

namespace {

// clang-format off
constexpr auto kPostRoutes = std::to_array<PostRoute>({
    {"/api/v1/router/wan-info",            handle_set_wanInfo_json},
    {"/api/v1/pppoe/start",                handle_pppoe_config},
    {"/api/v1/wireless/setting",           handle_wireless_setting},
    {"/api/v1/wireless/wps-status",        handle_set_wpsstatus},
    {"/api/v1/wireless/wps",               handle_post_wps},
    {"/api/v1/router/info",                handle_routerInfo_post},
    {"/api/v1/dhcp",                       handle_set_dhcp_config},
    {"/api/v1/ntp",                        handle_set_ntp_config},
    {"/api/v1/system/log/clear",           handle_clear_system_log},
    {"/api/v1/wireless/mac-filter",        handle_set_mac_filter},
    {"/api/v1/wireless/detail-setting",    handle_set_wireless_detail_setting},
    {"/api/v1/fwupdatechkandrun",          handle_automatic_upgrade},
    {"/api/v1/reboot",                     handle_reboot},
    {"/api/v1/wireless/rebootschedule",    handle_set_reboot_schedule},
    {"/api/v1/accounts",                   handle_set_accounts},
    {"/api/v1/system/config/initialize",   handle_initialize},
    {"/api/v1/system/config/waninit",      handle_initWanConfig},
    {"/api/v1/parental-control",           handle_set_parental_control},
    {"/api/v1/parental-control/delete",    handle_delete_parental_control},
    {"/api/v1/remote-maintenance",         handle_set_remote_maintenance},
    {"/api/v1/security/passthrough",       handle_set_security_passthrough},
    {"/api/v1/security/protect",           handle_set_security_protect},
    {"/api/v1/fsecure_sense",              handle_set_fsecure_sense},
    {"/api/v1/test/led",                   handle_test_led},
    {"/api/v1/test/switch",                handle_test_switch},
    {"/api/v1/test/cert-db-reset",         handle_test_cert_db_reset},
    {"/api/v1/repeater/connect",           handle_repeater_connect},
    {"/api/v1/system/firmware",            handle_system_firmware},
    {"/api/v1/port-open",                  handle_set_portopen},
    {"/api/v1/delete-port",                handle_delete_portopen},
    {"/api/v1/lan",                        handle_set_lan_network},
    {"/api/v1/system/config/restore",      handle_config_restore},
    {"/api/v1/system/config/backup",       handle_config_backup},
    {"/api/v1/mesh/agent-wificlient-info", handle_agent_wifi_client_info},
});

constexpr auto kGetRoutes = std::to_array<GetRoute>({
    {"/api/v1/router/wan-info",            handle_get_wanInfo_json},
    {"/api/v1/pppoe/response",             handle_get_pppoe_response},
    {"/api/v1/pppoe/result",               handle_get_pppoe_result},
    {"/api/v1/wireless/setting",           handle_get_wireless_setting},
    {"/api/v1/wireless/wps-status",        handle_get_wpsstatus},
    {"/api/v1/router/info",                handle_routerInfo_get},
    {"/api/v1/router/inetchk",             handle_get_inetchk},
    {"/api/v1/dhcp",                       handle_get_dhcp_config},
    {"/api/v1/dhcp/client-list",           handle_get_dhcp_client},
    {"/api/v1/ntp",                        handle_get_ntp_server},
    {"/api/v1/system/log/message",         handle_get_system_log},
    {"/api/v1/mesh/agent-info",            handle_get_mesh_agent_info},
    {"/api/v1/router/client-list",         handle_get_client_list},
    {"/api/v1/wireless/mac-filter",        handle_get_mac_filter},
    {"/api/v1/wireless/sitesurvey",        handle_get_sitesurvey},
    {"/api/v1/wireless/channel",           handle_get_wireless_channel},
    {"/api/v1/wireless/rebootschedule",    handle_get_reboot_schedule},
    {"/api/v1/wireless/detail-setting",    handle_get_wireless_detail_setting},
    {"/api/v1/repeater/connect",           handle_get_repeaterconnect_json},
    {"/api/v1/repeater/wifiresult",        handle_get_repeaterwifiresult_json},
    {"/api/v1/router/device-info",         handle_get_device_info},
    {"/api/v1/remote-maintenance",         handle_get_remote_maintenance},
    {"/api/v1/security/passthrough",       handle_get_security_passthrough},
    {"/api/v1/security/protect",           handle_get_security_protect},
    {"/api/v1/fsecure_sense",              handle_get_fsecure_sense},
    {"/api/v1/repeater/channel",           handle_get_channel_setting_info},
    {"/api/v1/parental-control",           handle_get_parental_control_info},
    {"/api/v1/port-open",                  handle_get_portopen_json},
    {"/api/v1/lan",                        handle_get_lan_network},
});
// clang-format on

}  // namespace

constinit const std::span<const PostRoute> post_routes = kPostRoutes;
constinit const std::span<const GetRoute> get_routes = kGetRoutes;
