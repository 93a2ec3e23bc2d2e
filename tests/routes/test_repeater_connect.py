"""POST /repeater/connect, the try-connect call: which commands configure the uplink, and in which order."""

import itertools

import pytest

from repeater_setup import (APS, CONNECT, MLD_MAC, MLO, MULTI_RU_OFF, OK, STATIONS, UNUSABLE, finished_commands,
                            follow, ifconfig, request, storing_unit, unit)  # noqa: F401 (fixtures)

FLAG_SETS = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1), (1, 1, 1)]
SAE = ["encryption=ccmp", "sae=1", "force_invalid_group=1", "sae_confirm_immediate=1", "ieee80211w=2"]
SAE_DELETES = ["sae=1", "sae_confirm_immediate=1", "force_invalid_group=1", "ieee80211w=2"]
DISABLE_APS = [f"uci set wireless.{ap}.disabled=1" for ap in ("ath02", "ath12", "ath22", "ath05", "ath15", "ath25")]
RESTART = [*DISABLE_APS, "uci set wireless.ath1.cactimeout=0", "uci commit wireless",
           "/sbin/wifi down", "/etc/init.d/network restart", "/sbin/wifi up"]
NETWORK = ["ifconfig br-lan", "uci set network.lan.ipaddr=192.168.10.1", "uci set network.lan.netmask=255.255.255.0",
           "uci set network.lan.proto=static", "uci set dhcp.lan.ignore=0", "uci set dhcp.lan.start=192.168.10.204",
           "/etc/init.d/dnsmasq restart"]
COMMITS = ["uci commit repeater", "uci commit wireless", "uci commit network", "uci commit dhcp"]


def security(interface, encrypt_type, sae_on=False):
    """What gives an interface its security."""
    result = [f"uci set wireless.{interface}=wifi-iface", f"uci set wireless.{interface}.disabled=0"]
    deletes = [f"uci delete wireless.{interface}.{option}" for option in SAE_DELETES] if sae_on else []
    sae = [f"uci set wireless.{interface}.{option}" for option in SAE]
    if encrypt_type == 1:
        result += [f"uci set wireless.{interface}.encryption=psk2+ccmp", *deletes, *(sae if interface == "ath22" else [])]
    elif encrypt_type == 2:
        result += [*sae, f"uci delete wireless.{interface}.owe=1"]
    elif interface in ("ath22", "ath23"):
        result += [f"uci set wireless.{interface}.encryption=ccmp", f"uci set wireless.{interface}.owe=1", *deletes]
    else:
        result += [f"uci set wireless.{interface}.encryption=none", *deletes]
    return result


def basics(interface, flags, ssid="Upstream", key="secret-key", bridging="wds"):
    """What gives an interface its SSID, its key and its mode."""
    result = []
    for ap, mld, flag in zip(APS, ("mld4", "mld5", "mld6"), flags):
        if interface == ap and flag:
            result += [f"uci set wireless.{ap}.ssid={ssid}", f"uci set wireless.{mld}.mld_ssid={ssid}"]
    for ap, station, flag in zip(APS, STATIONS, flags):
        if flag:
            result.append(f"uci set wireless.{ap}.key={key}")
            if interface == station:
                result.append(f"uci set wireless.{station}.key={key}")
    if interface in STATIONS:
        return result + [f"uci set wireless.{interface}.ssid={ssid}", f"uci set wireless.{interface}.{bridging}=1",
                         f"uci set wireless.{interface}.mode=sta"]
    return result + [f"uci set wireless.{interface}.mode=ap"]


def followers(flags):
    return [ap for ap, flag in zip(APS, flags) if flag]


def band(index, encrypt_type, flags, bridging="wds", sae_on=()):
    """The configuration of one band; 0, 1, 2 are 2.4, 5 and 6 GHz."""
    radio, ap, station = f"wifi{index}", APS[index], STATIONS[index]
    result = [f"uci set wireless.{radio}.disabled=0", f"uci set wireless.{radio}.channel=0"]
    if index == 1:
        result.append("uci set wireless.ath1.cactimeout=0")
    for interface in (*followers(flags), station):
        result += security(interface, encrypt_type, interface in sae_on)
    for interface in (*APS, station):
        result += basics(interface, flags, bridging=bridging)
    result += [f"uci set wireless.{ap}.mode=ap", f"uci set wireless.{ap}.device={radio}",
               f"uci set wireless.{station}.device={radio}", f"uci set wireless.{station}.ifname={station}",
               f"uci set wireless.{station}.network=lan"]
    if index == 2:
        result.append("uci set wireless.ath23.en_6g_sec_comp=0")
    return result + ["uci set repeater.repeater_band.repeater_select_band=" + ("2.4GHz", "5GHz", "6GHz")[index]]


def by_band(frequency, encrypt_type, flags, **how):
    bands = (0, 1, 2) if frequency == 0 else (frequency - 1,)
    return ["uci set repeater.repeater_band.mlo=0",
            f"uci set bandsteering.repeater_band.repeater_select_band={frequency}", "uci commit bandsteering",
            *itertools.chain(*(band(index, encrypt_type, flags, **how) for index in bands)), *NETWORK,
            "uci set repeater.repeater_band.status=success", *COMMITS]


def by_mlo(variant, encrypt_type, flags, previous="0", key="secret-key", mac=MLD_MAC):
    deleted, stations, stale, keys = MLO[variant]
    result = ["ifconfig br-lan", *(f"uci delete wireless.{station}" for station in deleted)]
    for ap in followers(flags):
        result += security(ap, encrypt_type)
    for ap in APS:
        result += basics(ap, flags, key=key)
    for station in stations:
        result += security(station, encrypt_type)
    if previous == "0":
        result += ["uci delete wireless.mld7", *(f"uci delete wireless.{station}.mld" for station in stale)]
    result += [f"uci set repeater.repeater_band.mlo={variant}", "uci set wireless.mld7=wifi-mld",
               "uci set wireless.mld7.mld_ssid=Upstream", f"uci set wireless.mld7.mld_macaddr={mac}",
               *(f"uci set wireless.{station}.ssid=Upstream" for station in stations)]
    if key:
        result += [f"uci set wireless.{option}={key}" for option in keys]
    return result + ["uci commit wireless", "uci commit repeater", *NETWORK, "uci set repeater.repeater_band.status=success",
                     "uci set repeater.repeater_band.repeater_select_band=MLO", *COMMITS]


def test_the_24g_band_with_wpa2_and_all_following_is_configured_by_these_commands(unit):
    follow(unit, (1, 1, 1))
    assert unit.post(CONNECT, request(frequency=1, multiRuEnable=1)).text == OK
    assert finished_commands(unit, "/sbin/wifi", "up") == """\
uci set wireless.wifi1.dfs_puncture_en=1
uci set repeater.repeater_band.mlo=0
uci set bandsteering.repeater_band.repeater_select_band=1
uci commit bandsteering
uci set wireless.wifi0.disabled=0
uci set wireless.wifi0.channel=0
uci set wireless.ath02=wifi-iface
uci set wireless.ath02.disabled=0
uci set wireless.ath02.encryption=psk2+ccmp
uci set wireless.ath12=wifi-iface
uci set wireless.ath12.disabled=0
uci set wireless.ath12.encryption=psk2+ccmp
uci set wireless.ath22=wifi-iface
uci set wireless.ath22.disabled=0
uci set wireless.ath22.encryption=psk2+ccmp
uci set wireless.ath22.encryption=ccmp
uci set wireless.ath22.sae=1
uci set wireless.ath22.force_invalid_group=1
uci set wireless.ath22.sae_confirm_immediate=1
uci set wireless.ath22.ieee80211w=2
uci set wireless.ath03=wifi-iface
uci set wireless.ath03.disabled=0
uci set wireless.ath03.encryption=psk2+ccmp
uci set wireless.ath02.ssid=Upstream
uci set wireless.mld4.mld_ssid=Upstream
uci set wireless.ath02.key=secret-key
uci set wireless.ath12.key=secret-key
uci set wireless.ath22.key=secret-key
uci set wireless.ath02.mode=ap
uci set wireless.ath12.ssid=Upstream
uci set wireless.mld5.mld_ssid=Upstream
uci set wireless.ath02.key=secret-key
uci set wireless.ath12.key=secret-key
uci set wireless.ath22.key=secret-key
uci set wireless.ath12.mode=ap
uci set wireless.ath22.ssid=Upstream
uci set wireless.mld6.mld_ssid=Upstream
uci set wireless.ath02.key=secret-key
uci set wireless.ath12.key=secret-key
uci set wireless.ath22.key=secret-key
uci set wireless.ath22.mode=ap
uci set wireless.ath02.key=secret-key
uci set wireless.ath03.key=secret-key
uci set wireless.ath12.key=secret-key
uci set wireless.ath22.key=secret-key
uci set wireless.ath03.ssid=Upstream
uci set wireless.ath03.wds=1
uci set wireless.ath03.mode=sta
uci set wireless.ath02.mode=ap
uci set wireless.ath02.device=wifi0
uci set wireless.ath03.device=wifi0
uci set wireless.ath03.ifname=ath03
uci set wireless.ath03.network=lan
uci set repeater.repeater_band.repeater_select_band=2.4GHz
ifconfig br-lan
uci set network.lan.ipaddr=192.168.10.1
uci set network.lan.netmask=255.255.255.0
uci set network.lan.proto=static
uci set dhcp.lan.ignore=0
uci set dhcp.lan.start=192.168.10.204
/etc/init.d/dnsmasq restart
uci set repeater.repeater_band.status=success
uci commit repeater
uci commit wireless
uci commit network
uci commit dhcp
uci set wireless.ath02.disabled=1
uci set wireless.ath12.disabled=1
uci set wireless.ath22.disabled=1
uci set wireless.ath05.disabled=1
uci set wireless.ath15.disabled=1
uci set wireless.ath25.disabled=1
uci set wireless.ath1.cactimeout=0
uci commit wireless
/sbin/wifi down
/etc/init.d/network restart
/sbin/wifi up""".splitlines()


@pytest.mark.parametrize("encrypt_type", [0, 1, 2])
@pytest.mark.parametrize("frequency", [0, 1, 2, 3])
def test_each_band_is_configured_with_each_security_and_each_following(unit, frequency, encrypt_type):
    for flags in FLAG_SETS:
        follow(unit, flags)
        unit.forget_calls()
        assert unit.post(CONNECT, request(frequency=frequency, encryptType=encrypt_type)).text == OK
        assert finished_commands(unit, "/sbin/wifi", "up") == [
            MULTI_RU_OFF, *by_band(frequency, encrypt_type, flags), *RESTART], flags


@pytest.mark.parametrize("encrypt_type", [0, 1, 2])
@pytest.mark.parametrize("variant", [1, 2, 3])
def test_each_multi_link_variant_is_configured_with_each_security_and_each_following(unit, variant, encrypt_type):
    for flags in FLAG_SETS:
        follow(unit, flags)
        unit.forget_calls()
        assert unit.post(CONNECT, request(multiLinkOperationEnable=variant, encryptType=encrypt_type)).text == OK
        assert finished_commands(unit, "/sbin/wifi", "up") == [
            MULTI_RU_OFF, *by_mlo(variant, encrypt_type, flags), *RESTART], flags


@pytest.mark.parametrize("encrypt_type", [-1, 3, 99])
def test_another_encrypt_type_means_an_open_network(unit, encrypt_type):
    follow(unit, (1, 0, 1))
    assert unit.post(CONNECT, request(frequency=3, encryptType=encrypt_type)).text == OK
    assert finished_commands(unit, "/sbin/wifi", "up") == [MULTI_RU_OFF, *by_band(3, 0, (1, 0, 1)), *RESTART]


@pytest.mark.parametrize("flags", [("1", "-1", "7"), ("12x", " 1", "0"), ("x", "", "00")])
def test_a_follow_flag_is_any_number_but_zero(unit, flags):
    follow(unit, flags)
    assert unit.post(CONNECT, request()).text == (OK if "" not in flags else UNUSABLE)
    wanted = {("1", "-1", "7"): (1, 1, 1), ("12x", " 1", "0"): (1, 1, 0)}.get(flags)
    if wanted:
        assert finished_commands(unit, "/sbin/wifi", "up") == [MULTI_RU_OFF, *by_band(2, 1, wanted), *RESTART]


@pytest.mark.parametrize("interface", [*APS, "ath03"])
@pytest.mark.parametrize("encrypt_type", [0, 1, 2])
def test_security_of_before_is_deleted_where_sae_was_on(unit, interface, encrypt_type):
    follow(unit, (1, 1, 1))
    unit.set("wireless.ath03", "wifi-iface")
    unit.set(f"wireless.{interface}.sae", "1")
    unit.post(CONNECT, request(frequency=1, encryptType=encrypt_type))
    # The station's section is cleared before it is configured, and its security with it.
    sae_on = (interface,) if interface in APS else ()
    assert finished_commands(unit, "/sbin/wifi", "up") == [
        MULTI_RU_OFF, *by_band(1, encrypt_type, (1, 1, 1), sae_on=sae_on), *RESTART]


@pytest.mark.parametrize("value", ["0", "2", "11", ""])
def test_sae_was_on_only_with_the_value_1(unit, value):
    follow(unit, (1, 0, 0))
    unit.set("wireless.ath02.sae", value)
    unit.post(CONNECT, request(frequency=1))
    assert "uci delete wireless.ath02.sae=1" not in finished_commands(unit, "/sbin/wifi", "up")


@pytest.mark.parametrize("variant", [1, 2, 3])
def test_a_station_of_a_multi_link_before_loses_its_sae(unit, variant):
    station = MLO[variant][1][-1]
    unit.set(f"wireless.{station}", "wifi-iface")
    unit.set(f"wireless.{station}.sae", "1")
    unit.post(CONNECT, request(multiLinkOperationEnable=variant, encryptType=1))
    assert "\n".join(security(station, 1, True)) in "\n".join(finished_commands(unit, "/sbin/wifi", "up"))


@pytest.mark.parametrize("mode, bridging", [("0", "wds"), ("1", "extap"), ("2", "wds"), ("x", "wds"), (None, "wds")])
def test_the_compatibility_mode_chooses_the_bridging_and_not_the_answer(unit, mode, bridging):
    unit.set("repeater.compatiMode.value", mode)
    a = unit.post(CONNECT, request(frequency=0))
    assert (a.text, a.encrypted) == (OK, True)
    assert finished_commands(unit, "/sbin/wifi", "up") == [
        MULTI_RU_OFF, *by_band(0, 1, (0, 0, 0), bridging=bridging), *RESTART]
    assert unit.logged("get compatiModevalue error", priority=3) == (mode is None)


@pytest.mark.parametrize("mode, bridging, other", [("0", "wds", "extap"), ("1", "extap", "wds"), (None, "wds", "extap")])
@pytest.mark.parametrize("variant", [1, 2, 3])
def test_a_multi_link_uplink_is_stored(storing_unit, variant, mode, bridging, other):
    unit, (_, stations, _, keys) = storing_unit, MLO[variant]
    unit.set("repeater.compatiMode.value", mode)
    for station in STATIONS:
        unit.set(f"wireless.{station}", "wifi-iface")
        for option in ("extap", "wds", "ifname", "mld"):
            unit.set(f"wireless.{station}.{option}", "old")
    assert unit.post(CONNECT, request(multiLinkOperationEnable=variant)).text == OK
    unit.wait_for_call("/sbin/wifi", "up")

    for index, station in enumerate(STATIONS):
        options = {name: unit.option(f"wireless.{station}.{name}")
                   for name in ("mld", "disabled", "device", "mode", "network", "ssid", bridging, other, "ifname")}
        if station in stations:
            assert options == {"mld": "mld7", "disabled": "0", "device": f"wifi{index}", "mode": "sta", "network": "lan",
                               "ssid": "Upstream", bridging: "1", other: None, "ifname": None}
        elif station in MLO[variant][0]:
            assert unit.option(f"wireless.{station}") is None
    assert unit.option("wireless.mld7") == "wifi-mld"
    assert unit.option("wireless.mld7.mld_ssid") == "Upstream"
    assert unit.option("wireless.mld7.mld_macaddr") == MLD_MAC
    assert [unit.option(f"wireless.{option}") for option in keys] == ["secret-key"] * len(keys)
    assert unit.option("wireless.ath23.en_6g_sec_comp") == (None if variant == 1 else "0")
    assert unit.option("repeater.repeater_band.mlo") == str(variant)
    assert unit.option("repeater.repeater_band.repeater_select_band") == "MLO"
    assert unit.option("repeater.repeater_band.status") == "success"
    assert unit.option("dhcp.lan.start") == "192.168.10.204"
    assert [unit.option(f"wireless.{ap}.disabled") for ap in APS] == ["1", "1", "1"]  # until the setting call


@pytest.mark.parametrize("variant, disabled", [(1, ["0", "0", "1"]), (2, ["1", "0", "0"]), (3, ["0", "0", "0"])])
def test_a_variant_serves_on_its_bands_until_the_end_of_the_call(unit, variant, disabled):
    # The stand-in for `uci` stores nothing, so what the variant itself stored is left.
    unit.post(CONNECT, request(multiLinkOperationEnable=variant))
    assert [unit.option(f"wireless.{ap}.disabled") for ap in APS] == disabled


@pytest.mark.parametrize("previous", ["1", "2", "3", "x"])
def test_links_of_a_multi_link_before_stay(unit, previous):
    unit.set("repeater.repeater_band.mlo", previous)
    unit.post(CONNECT, request(multiLinkOperationEnable=3))
    assert finished_commands(unit, "/sbin/wifi", "up") == [MULTI_RU_OFF, *by_mlo(3, 1, (0, 0, 0), previous), *RESTART]


@pytest.mark.parametrize("variant", [1, 2, 3])
def test_an_empty_key_is_not_written_to_multi_link_stations(unit, variant):
    unit.post(CONNECT, request(multiLinkOperationEnable=variant, encryptKey="", encryptType=0))
    assert finished_commands(unit, "/sbin/wifi", "up") == [
        MULTI_RU_OFF, *by_mlo(variant, 0, (0, 0, 0), key=""), *RESTART]


def test_an_empty_key_replaces_the_key_of_an_access_point_that_follows(unit):
    follow(unit, (0, 1, 0))
    unit.post(CONNECT, request(encryptKey="", encryptType=0))
    assert finished_commands(unit, "/sbin/wifi", "up").count("uci set wireless.ath13.key=") == 1


@pytest.mark.parametrize("mac, mld_mac", [
    ("00:90:FE:12:34:50", "02:90:FE:12:34:50"), ("08:90:FE:12:34:50", "10:90:FE:12:34:50"),
    ("0E:90:FE:12:34:50", "00:90:FE:12:34:50"), ("F8:90:FE:12:34:50", "")])
def test_the_address_of_the_multi_link_station_comes_from_the_bridge(unit, mac, mld_mac):
    unit.tool("ifconfig", "br-lan", out=ifconfig(mac=mac))
    unit.post(CONNECT, request(multiLinkOperationEnable=1))
    assert f"uci set wireless.mld7.mld_macaddr={mld_mac}" in finished_commands(unit, "/sbin/wifi", "up")


@pytest.mark.parametrize("number", [4, -1, 99])
def test_an_unknown_variant_configures_no_station_but_the_lan_and_the_status(unit, number):
    assert unit.post(CONNECT, request(multiLinkOperationEnable=number)).text == OK
    assert finished_commands(unit, "/sbin/wifi", "up") == [
        MULTI_RU_OFF, "ifconfig br-lan", *NETWORK, "uci set repeater.repeater_band.status=success",
        "uci set repeater.repeater_band.repeater_select_band=MLO", *COMMITS, *RESTART]


@pytest.mark.parametrize("address, start", [
    ("192.168.10.1", "192.168.10.204"), ("10.0.0.254", "10.0.0.204"), ("255.255.255.255", "255.255.255.204")])
def test_the_dhcp_range_starts_at_an_address_of_the_lan(unit, address, start):
    unit.tool("ifconfig", "br-lan", out=ifconfig(address))
    unit.post(CONNECT, request())
    calls = finished_commands(unit, "/sbin/wifi", "up")
    assert f"uci set network.lan.ipaddr={address}" in calls
    assert f"uci set dhcp.lan.start={start}" in calls


def test_a_single_band_takes_away_the_stations_of_before(storing_unit):
    for section in (*STATIONS, "mld7"):
        storing_unit.set(f"wireless.{section}", "wifi-iface")
        storing_unit.set(f"wireless.{section}.old", "1")
    storing_unit.post(CONNECT, request(frequency=2))
    storing_unit.wait_for_call("/sbin/wifi", "up")
    assert [storing_unit.option(f"wireless.{section}") for section in (*STATIONS, "mld7")] == [None, "wifi-iface", None, None]
    assert storing_unit.option("wireless.ath13.old") is None


def test_an_upstream_with_wpa2_leaves_the_6g_access_point_with_sae(storing_unit):
    follow(storing_unit, (0, 0, 1))
    storing_unit.post(CONNECT, request(frequency=3, encryptType=1))
    storing_unit.wait_for_call("/sbin/wifi", "up")
    options = [storing_unit.option(f"wireless.ath22.{name}") for name in ("encryption", "sae", "ieee80211w", "key", "ssid")]
    assert options == ["ccmp", "1", "2", "secret-key", "Upstream"]


def test_an_open_upstream_leaves_6g_with_enhanced_open(storing_unit):
    follow(storing_unit, (0, 0, 1))
    storing_unit.post(CONNECT, request(frequency=3, encryptType=0))
    storing_unit.wait_for_call("/sbin/wifi", "up")
    for interface in ("ath22", "ath23"):
        assert [storing_unit.option(f"wireless.{interface}.{name}") for name in ("encryption", "owe", "sae")] == ["ccmp", "1", None]
