// The handlers of all routes: what the request loop calls, each defined in its area below src/.
#pragma once

#include <fcgiapp.h>

#include "request_body.h"

// A handler writes the whole answer to `request->out`. Its result is for its own tests; the router ignores it.
// `body` of a POST handler is the decrypted JSON text, NUL-terminated, or nullptr when the request had no content; of
// the three upload routes it is what arrived, as it arrived. It stays the router's and dies when the handler returns.

// POST handlers, in route order.
int handle_set_wanInfo_json(FCGX_Request* request, const char* body);
int handle_pppoe_config(FCGX_Request* request, const char* body);
int handle_wireless_setting(FCGX_Request* request, const char* body);
int handle_set_wpsstatus(FCGX_Request* request, const char* body);
int handle_post_wps(FCGX_Request* request, const char* body);
int handle_routerInfo_post(FCGX_Request* request, const char* body);
int handle_set_dhcp_config(FCGX_Request* request, const char* body);
int handle_set_ntp_config(FCGX_Request* request, const char* body);
int handle_clear_system_log(FCGX_Request* request, const char* body);
int handle_set_mac_filter(FCGX_Request* request, const char* body);
int handle_set_wireless_detail_setting(FCGX_Request* request, const char* body);
int handle_automatic_upgrade(FCGX_Request* request, const char* body);
int handle_reboot(FCGX_Request* request, const char* body);
int handle_set_reboot_schedule(FCGX_Request* request, const char* body);
int handle_set_accounts(FCGX_Request* request, const char* body);
int handle_initialize(FCGX_Request* request, const char* body);
int handle_initWanConfig(FCGX_Request* request, const char* body);
int handle_set_parental_control(FCGX_Request* request, const char* body);
int handle_delete_parental_control(FCGX_Request* request, const char* body);
int handle_set_remote_maintenance(FCGX_Request* request, const char* body);
int handle_set_security_passthrough(FCGX_Request* request, const char* body);
int handle_set_security_protect(FCGX_Request* request, const char* body);
int handle_set_fsecure_sense(FCGX_Request* request, const char* body);
int handle_test_led(FCGX_Request* request, const char* body);
int handle_test_switch(FCGX_Request* request, const char* body);
int handle_test_cert_db_reset(FCGX_Request* request, const char* body);
int handle_repeater_connect(FCGX_Request* request, const char* body);
int handle_system_firmware(FCGX_Request* request, const RawBody& body);
int handle_set_portopen(FCGX_Request* request, const char* body);
int handle_delete_portopen(FCGX_Request* request, const char* body);
int handle_set_lan_network(FCGX_Request* request, const char* body);
int handle_config_restore(FCGX_Request* request, const RawBody& body);
int handle_config_backup(FCGX_Request* request, const RawBody& body);
int handle_agent_wifi_client_info(FCGX_Request* request, const char* body);

// GET handlers, in route order.
int handle_get_wanInfo_json(FCGX_Request* request);
int handle_get_pppoe_response(FCGX_Request* request);
int handle_get_pppoe_result(FCGX_Request* request);
int handle_get_wireless_setting(FCGX_Request* request);
int handle_get_wpsstatus(FCGX_Request* request);
int handle_routerInfo_get(FCGX_Request* request);
int handle_get_inetchk(FCGX_Request* request);
int handle_get_dhcp_config(FCGX_Request* request);
int handle_get_dhcp_client(FCGX_Request* request);
int handle_get_ntp_server(FCGX_Request* request);
int handle_get_system_log(FCGX_Request* request);
int handle_get_mesh_agent_info(FCGX_Request* request);
int handle_get_client_list(FCGX_Request* request);
int handle_get_mac_filter(FCGX_Request* request);
int handle_get_sitesurvey(FCGX_Request* request);
int handle_get_wireless_channel(FCGX_Request* request);
int handle_get_reboot_schedule(FCGX_Request* request);
int handle_get_wireless_detail_setting(FCGX_Request* request);
int handle_get_repeaterconnect_json(FCGX_Request* request);
int handle_get_repeaterwifiresult_json(FCGX_Request* request);
int handle_get_device_info(FCGX_Request* request);
int handle_get_remote_maintenance(FCGX_Request* request);
int handle_get_security_passthrough(FCGX_Request* request);
int handle_get_security_protect(FCGX_Request* request);
int handle_get_fsecure_sense(FCGX_Request* request);
int handle_get_channel_setting_info(FCGX_Request* request);
int handle_get_parental_control_info(FCGX_Request* request);
int handle_get_portopen_json(FCGX_Request* request);
int handle_get_lan_network(FCGX_Request* request);
