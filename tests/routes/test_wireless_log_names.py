"""Under which names the messages of the wireless routes stand in the log: their readers' and writers', never a helper's."""

import pytest
from routes.test_agent_wifi_client import AGENT, SAME
from routes.test_detail_setting import DETAIL, SETTINGS
from routes.test_wireless_channel import REPEATER, WIRELESS
from routes.wireless_state import SETTING, element, mesh, request

GET, POST, AGENT_POST = "handle_get_wireless_setting", "handle_wireless_setting", "handle_agent_wifi_client_info"
UPLINK, DETAIL_POST = "handle_get_channel_setting_info", "handle_set_wireless_detail_setting"
READER, WRITER = "get_wlan_detail_info", "set_wlan_detail_info"
NO_STATUS = "get repeater result error(if not repeater mode, ignore this error)"
KNOWN = {
    GET, POST, AGENT_POST, UPLINK, DETAIL_POST, READER, WRITER, "handle_get_wireless_channel", "get_wireless_info",
    "get_wireless_bssid", "get_mld_link_mac", "get_mesh_mld_by_ifname", "get_mesh_role_value", "get_mlo_value",
    "get_mlo_info", "get_mesh_info", "get_channel_value", "get_channel_info", "get_channel_by_iw_cmd",
    "get_flash_channel_width_info", "get_band_info", "get_repeater_connect_band", "get_encryption_mode_value",
    "get_hidden_value", "getWpsStatus", "get_mac_filter_enable", "set_channel_Value", "set_wireless_info",
    "set_wireless_encryption", "change_wpsStatus", "LedForWifi", "set_repacd_info", "set_mlo_info",
    "set_mlo_encryption", "set_wlan_beacon_interval", "set_wlan_dtim_period", "set_wps_enable",
    "set_band_steering_Info", "wifi_reload"}


def told(router):
    """(function, text) of each message, but for those of the UCI layer and of the commands."""
    lines = {(line.function, line.text.rstrip("\n")) for line in router.log()}
    return {line for line in lines if not line[0].startswith("Uci") and line[0] not in ("os_system", "os_exec")}


def check(router, ask, options, *expected):
    """Asks with these options (None: missing), which are put back, and looks for (function, text) in the log."""
    before = {address: router.option(address) for address in options}
    for address, value in options.items():
        router.set(address, value)
    ask()
    lines = told(router)
    assert set(expected) <= lines, (sorted(set(expected) - lines), sorted(lines))
    assert {function for function, _ in lines} <= KNOWN, sorted(lines)
    for address, value in before.items():
        router.set(address, value)


# Reading.

def test_what_the_settings_page_cannot_read(router):
    def ask():
        router.get(SETTING)

    check(router, ask, {"button_mesh.easymesh.enable": None}, ("get_mlo_value", "Failed to get meshRole"),
          (GET, "Failed to get MLO"), (GET, "Failed to get mesh"))
    check(router, ask, {"lbd.config.Enable": None}, (GET, "Failed to get bandSteering"))
    check(router, ask, {"button_mesh.easymesh.ieee80211r": None}, (GET, "Failed to get 80211r"))
    check(router, ask, {"wireless.wifi0.disabled": None},
          ("get_channel_info", "Failed to get disabled status for interface wifi0"),
          ("get_channel_value", "Failed to get channel info for index 0"), (GET, "Failed to get channel"))
    check(router, ask, {"wireless.wifi1.channel": None}, ("get_channel_info", "Failed to get channel for interface wifi1"))
    check(router, ask, {"repacd.MAPConfig.OnboardingDone": None}, ("get_channel_info", "get OnboardingDone failed"))
    check(router, ask, {"repeater.repeater_band.status": None}, ("get_channel_info", NO_STATUS), ("get_channel_value", NO_STATUS))
    check(router, ask, {"button_mesh.easymesh.role": None}, ("get_channel_info", "Failed to get meshRole"))
    check(router, ask, {"system.@system[0].op_mode": None}, (GET, "Failed to get opmode"))


def test_what_a_slot_cannot_tell(router):
    router.tool("iw", "dev", "mld1", "info", out="Interface mld1\n")
    missing = {f"wireless.ath0.{option}": None for option in ("ssid", "disabled", "key", "hidden", "wpa_group_rekey")}
    texts = [f"Failed to get {what} for interface ath0, return default value"
             for what in ("SSID", "disabled status", "password", "hidden status", "WPA rekey interval")]
    check(router, lambda: router.get(SETTING),
          {**missing, "wireless.ath0.encryption": "wep", "wireless.wifi0.macaddr": None},
          *(("get_wireless_info", text) for text in texts),
          ("get_wireless_info", "Failed to get wifi security for interface ath0"),
          ("get_encryption_mode_value", "Unknown encryption mode: wep"),
          ("get_mld_link_mac", "get_mld_link_mac: No MAC found - mld=mld1 link=0"),
          ("get_wireless_bssid", "Failed to get MAC address for radio wifi0, return default value"))


def test_what_the_slots_of_a_mesh_cannot_tell(router):
    def ask():
        router.get(SETTING)

    mesh(router, 1, brand=0)
    check(router, ask, {"button_mesh.easymesh.mode": None}, ("get_mlo_value", "Failed to get mesh_mode"),
          ("get_mesh_mld_by_ifname", "Failed to get mesh_mode"), ("get_mesh_info", "Failed to get meshMode"),
          (GET, "Failed to handle MLO SSID, continue next"), (GET, "Failed to get mesh info, continue next"))
    for option in ("BackhaulSSID", "BackhaulKey"):
        check(router, ask, {f"repacd.MAPConfig.{option}": None}, ("get_mesh_info", f"Failed to get {option}"))
    check(router, ask, {"repacd.repacd.Enable": None}, ("get_mesh_info", "Failed to get ssidStatusValue"))
    check(router, ask, {"repacd.MAPConfig.mld_mac_addr": None}, ("get_mesh_info", "Failed to get bssid, return default value"))
    check(router, ask, {"button_mesh.easymesh.mode": "7"}, ("get_mesh_mld_by_ifname", "Unknown mesh_mode: 7"),
          ("get_mesh_mld_by_ifname", "No mld found for ifname: ath04"))


def test_the_channels_of_an_agent(router):
    mesh(router, 2, onboarded=1)
    router.tool("iw", out="\tchannel 1234 (5180 MHz), width: 30 MHz, center1: 5250 MHz\n")
    check(router, lambda: router.get(WIRELESS), {"wireless.wifi0.htmode": None, "wireless.wifi1.htmode": "HE80"},
          ("get_channel_by_iw_cmd", "Channel length invalid: 4 (interface=wifi0)"),
          ("get_channel_by_iw_cmd", "Failed to parse channel from iw output (interface=wifi0)"),
          ("get_channel_info", "Failed to get channel via iw cmd for interface wifi0"),
          ("get_flash_channel_width_info", "width value 30 not found!"), ("get_band_info", "current not found!"),
          ("handle_get_wireless_channel", "get flashchannel info error!"),
          ("handle_get_wireless_channel", "get band info error!"))
    check(router, lambda: router.get(WIRELESS), {"wireless.wifi0.disabled": None},
          ("handle_get_wireless_channel", "get channel info error!"))
    check(router, lambda: router.get(REPEATER), {},
          (UPLINK, "Failed to get flash channel and width info for interface 0"))
    router.tool("iw", out="")
    check(router, lambda: router.get(REPEATER), {},
          ("get_flash_channel_width_info", "Failed to get channel width via iw cmd for interface wifi0"))
    check(router, lambda: router.get(REPEATER), {"repeater.repeater_band.mlo": None},
          ("get_repeater_connect_band", "Failed to get the connectBand_str option for repeater.repeater_band.mlo"),
          (UPLINK, "Failed to get the connectBand option for repeater.repeater_band.mlo "))
    check(router, lambda: router.get(REPEATER), {"repeater.repeater_band.repeater_select_band": None},
          ("get_repeater_connect_band", "get repeater_select_band failed"))
    check(router, lambda: router.get(REPEATER), {"repacd.MAPConfig.OnboardingDone": None}, (UPLINK, "get OnboardingDone failed"))
    check(router, lambda: router.get(REPEATER), {"button_mesh.easymesh.role": None}, (UPLINK, "Failed to get meshRole"))


def test_what_the_detail_page_cannot_read(router):
    def ask():
        router.get(DETAIL)

    for address, name in (
            ("ath0.bintval", "bintval"), ("ath0.dtim_period", "dtim_period"), ("ath0.mcastenhance", "mcastenhance"),
            ("ath1.set_eht_mu_bfmr", "5G set_eht_mu_bfmr"), ("ath2.set_eht_mu_bfmr", "6G set_eht_mu_bfmr"),
            ("ath0.set_eht_ulmumimo", "set_eht_ulmumimo"), ("ath0.set_eht_ulofdma", "set_eht_ulofdma"),
            ("ath0.txpower", "2.4G txpower"), ("ath1.txpower", "5G txpower"), ("ath2.txpower", "6G txpower"),
            ("wifi0.htmode", "2.4G htmode"), ("wifi1.htmode", "5G htmode"), ("wifi2.htmode", "6G htmode")):
        check(router, ask, {f"wireless.{address}": None}, (READER, f"Failed to get {name} value"))
    check(router, ask, {"wireless.wifi1.htmode": "HE80"}, (READER, "Failed to match 5G htmode bandwidth"))
    check(router, ask, {"lbd.config.Enable": None}, (READER, "Failed to get band steering status"))
    check(router, ask, {"button_mesh.easymesh.role": None}, (READER, "Failed to get mesh mode"))
    for section, option, name in (
            ("ath0", "wps_pbc", "ath0_wps"), ("ath1", "wps_pbc", "ath1_wps"), ("ath0", "disabled", "ath0_disabled"),
            ("ath1", "disabled", "ath1_disabled"), ("wifi0", "disabled", "wifi0_disabled"),
            ("wifi1", "disabled", "wifi1_disabled")):
        check(router, ask, {f"wireless.{section}.{option}": None}, ("getWpsStatus", f"Failed to get {name}_state"),
              (READER, "Failed to get WPS status, return default value"))


# Writing.

def test_what_a_request_for_the_settings_lacks(router):
    def check_body(body, *expected, **options):
        check(router, lambda: router.post(SETTING, body), options, *expected)

    check_body(b"hello", (POST, "Can't parse request_body to json format."))
    check_body({}, (POST, "Failed to parse wirelessConfig"))
    for key, name in (("bandSteering", "bandSteering"), ("ieee802dot11r", "ieee802dot11r"), ("set2GChannel", "channel2G"),
                      ("set5GChannel", "channel5G"), ("set6GChannel", "channel6G"), ("mesh", "mesh"), ("mlo", "mlo")):
        body = request(element("SSID10"))
        del body[key]
        check_body(body, (POST, f"Failed to parse {name}"))
    check_body(request(set5GChannel=68), ("set_channel_Value", "Invalid channel 68 for wifi1 (band: 1)"),
               (POST, "Failed to set channel2G, channel5G, channel6G"))
    check_body(request(), ("set_channel_Value", "get_mesh_role_value failed"), **{"button_mesh.easymesh.role": None})
    check_body(request(), (POST, "Failed to get opmode"), **{"system.@system[0].op_mode": None})
    check_body(request(element("SSID1", ssidValue="\x01")), (POST, "ssidValue or ssidPassword holds control characters"))


def test_what_a_slot_is_refused_for(router):
    def check_slots(*expected, slots, **members):
        check(router, lambda: router.post(SETTING, request(*slots, **members)), {}, *expected)

    check_slots(("set_wireless_info", "Find_wireless_config: ssidName SSID10 not found"),
                (POST, "Failed to set wireless info"), slots=[element("SSID10")])
    check_slots(("set_wireless_encryption", "Password check failed"),
                ("set_wireless_info", "set_wireless_encryption failed"), slots=[element("SSID1", ssidPassword="short")])
    check_slots(("set_mlo_info", "Failed to escape password (buffer too small or invalid input)"),
                (POST, "Failed to set Wifimlo"), slots=[element("MLO SSID", ssidPassword="'" * 60)], mlo=4)
    check_slots(("set_mlo_info", "mlo value 2 is not supported."), slots=[element("MLO SSID")], mlo=2)
    check_slots(("change_wpsStatus", "Should not to change wps status"), slots=[element("SSID1")])


def test_what_a_slot_of_a_mesh_is_refused_for(router):
    mesh(router, 1, brand=1)
    for name, writer in (("SSID4", "set_wireless_info"), ("MLO SSID", "set_mlo_info")):
        body = request(element(name, wifiSecurity=7), mesh=1, mlo=4)
        check(router, lambda: router.post(SETTING, body), {}, (writer, "set_repacd_info failed"),
              ("set_repacd_info", "set_repacd_info: unknown wifiSecurity 7"))
    body = request(element("SSID2"), mesh=1)
    check(router, lambda: router.post(SETTING, body), {"button_mesh.easymesh.mode": 7},
          ("set_repacd_info", "set_repacd_info: repacd_config_sync is NULL, no need to set"),
          (POST, "Not supported meshMode(7) for TESMIR device"))
    check(router, lambda: router.post(SETTING, body), {"button_mesh.easymesh.mode": None}, (POST, "Failed to get mesh_mode"))
    router.brand("orvane")
    check(router, lambda: router.post(SETTING, request(element("MLO SSID"), mesh=1, mlo=4)), {},
          ("set_mlo_info", "ORVANE device does not support MLO with mesh enabled"))


def test_a_repeater_leaves_the_reload_to_the_detail_page(router):
    text = "opmode is repaeter,no need to wifi reload ,just return success. because detail_setting will handle it."
    check(router, lambda: router.post(SETTING, request()), {"system.@system[0].op_mode": "re"}, (POST, text))


def test_what_detail_settings_are_refused_for(router):
    def check_body(*expected, options=(), **members):
        check(router, lambda: router.post(DETAIL, {**SETTINGS, **members}), dict(options), *expected)

    check_body((DETAIL_POST, "Get wlanDetailSetting.wpsEnable error"), wpsEnable=2)
    check_body((DETAIL_POST, "Get wlanDetailSetting.bandSteeringEnable error"), bandSteeringEnable=3)
    for states, text in (
            ({"ath0.hidden": 1, "ath1.hidden": 1}, "2G and 5G hidden_value  not match"),
            ({"ath0.encryption": "none", "ath1.encryption": "ccmp"}, "2G and 5G encryption modes do not match"),
            ({"wifi0.disabled": 1, "ath1.disabled": 1}, "2G and 5G band is disabled, cannot set WPS status"),
            ({"wifi0.disabled": None}, "Failed to get 2G radio disable status"),
            ({"ath1.disabled": None}, "Failed to get 5G band disable status"),
            ({"ath0.encryption": "wep"}, "Failed to get 2G encryption value")):
        check_body(("set_wps_enable", text), (WRITER, "Failed to set wpsEnable"),
                   options={f"wireless.{option}": value for option, value in states.items()})
    check_body(("set_band_steering_Info", "bandSteering data is error"), bandSteeringEnable=2)
    check_body((WRITER, "Failed to get mesh role"), options={"button_mesh.easymesh.role": None})
    check_body((WRITER, "Failed to get opmode"), options={"system.@system[0].op_mode": None})


def test_what_cannot_be_copied_for_the_mesh(router):
    mesh(router, 1, mode=7, brand=0)
    for section, *expected in (
            ("ath0", ("set_wlan_beacon_interval", "Failed to set wireless.ath0.bintval"), (WRITER, "Failed to set beacon interval")),
            ("wifi2", (WRITER, "Failed to set wireless_for_easymesh.wifi2.htmode"))):
        router.set(f"wireless_for_easymesh.{section}", None)
        check(router, lambda: router.post(DETAIL, SETTINGS), {}, *expected)
        router.set(f"wireless_for_easymesh.{section}", "wifi-iface")
    check(router, lambda: router.post(DETAIL, SETTINGS), {}, ("wifi_reload", "Not supported meshMode(7) for ORVANE device"))


def test_what_band_steering_does_not_find(router):
    def ask():
        router.post(DETAIL, {**SETTINGS, "bandSteeringEnable": 1})

    check(router, ask, {"wireless.ath1.owe": None, "wireless.ath0.key": None, "lbd.config.Enable": 0},
          ("set_band_steering_Info", "ath1 doesn't have value: owe !"),
          ("set_band_steering_Info", "ath0 doesn't have value: key !"))
    router.set("lbd.config.Enable", 1)
    check(router, lambda: router.post(DETAIL, SETTINGS), {},
          ("set_band_steering_Info", "ath1 doesn't have value: owe !"))
    router.no_config("lbd")
    check(router, ask, {}, ("set_band_steering_Info", "Failed to create lbd.config"))


@pytest.mark.parametrize("package", ["button_mesh", "devicecustom", "repeater"])
def test_what_the_set_up_of_an_agent_cannot_write(router, package):
    text = {"button_mesh": "set ieee80211r error", "devicecustom": "set location error", "repeater": "set compatiMode value error"}
    router.no_config(package)
    check(router, lambda: router.post(AGENT, SAME), {}, (AGENT_POST, text[package]))


def test_what_the_set_up_of_an_agent_lacks(router):
    def check_body(body, *expected, **options):
        check(router, lambda: router.post(AGENT, body), options, *expected)

    check_body(b"hello", (AGENT_POST, "can't parse data to json format."))
    for key in SAME:
        name = "Location" if key == "location" else key
        check_body({k: v for k, v in SAME.items() if k != key}, (AGENT_POST, f"parse {name} error"))
    check_body(SAME, (AGENT_POST, "get multiRuEnable value error"), **{"wireless.wifi1.dfs_puncture_en": None})
    check_body(SAME, (AGENT_POST, "get compatiWiFi6Mode value error"), **{"button_mesh.easymesh.compatiWiFi6Mode": None})
    check_body(SAME, (AGENT_POST, "get mesh mode value error"), **{"button_mesh.easymesh.mode": None})
    router.set("wireless.ath25", None)
    check_body({**SAME, "mesh": 1}, (AGENT_POST, "set 6GHz disabled error"))
