"""Detail settings, WPS, agent settings and MAC filter of a simulated router, through the web server with the real jose."""

import itertools

import pytest

from waits import wait_until

DETAIL = "/api/v1/wireless/detail-setting"
STATUS = "/api/v1/wireless/wps-status"
PUSH = "/api/v1/wireless/wps"
FILTER = "/api/v1/wireless/mac-filter"
AGENT = "/api/v1/mesh/agent-wificlient-info"
SETTING = "/api/v1/wireless/setting"

BRANDS = ["orvane", "tesmir"]
IN_A_MESH = ("controller", "agent")
EVERY_ROUTER = pytest.mark.parametrize(
    "brand,mode", list(itertools.product(BRANDS, ("router", "re", *IN_A_MESH))))


@EVERY_ROUTER
def test_detail_settings_are_read_and_posted_back(live, brand, mode):
    router = live(brand=brand, mode=mode)
    before = router.get(DETAIL).json
    assert before["result"] == 0 and len(before) == 20
    assert router.post(DETAIL, {**before, "bandSteeringEnable": 0}).text == \
        '{"result": 0, "version": 1, "waitTime": %d}' % (100 if mode in IN_A_MESH else 50)
    assert router.get(DETAIL).json == before
    assert router.post(DETAIL, {**before, "power2G": 80}).text == '{"result": 1}'


def test_a_changed_width_and_power_show_once_wifi_has_reloaded(live):
    router = live(brand="tesmir", mode="router")
    document = {**router.get(DETAIL).json, "bandWidth5G": 2, "power5G": 50, "beaconInterval": 40}
    assert router.post(DETAIL, document).json["waitTime"] == 50
    wait_until(lambda: router.get("/api/v1/wireless/channel").json["wirelessChannel"][1]["currentChannelWidth"] == 4)
    assert router.get(DETAIL).json == {**document, "beaconInterval": 100}
    assert router.post(DETAIL, {**document, "power5G": 80}).text == '{"result": 1}'


def test_band_steering_gives_all_bands_one_name_and_back(live):
    router = live(brand="orvane", mode="router")
    settings = router.get(SETTING).json
    document = router.get(DETAIL).json
    assert router.post(DETAIL, {**document, "bandSteeringEnable": 1}).json["result"] == 0
    steered = router.get(SETTING).json
    assert steered["bandSteering"] == 1
    names = [slot["ssidValue"] for slot in steered["wirelessConfig"]]
    assert names[0] == names[3] == names[6] == "Router-2.4G-1234"
    assert router.post(DETAIL, document).json["result"] == 0
    assert [slot["ssidValue"] for slot in router.get(SETTING).json["wirelessConfig"]] == [
        slot["ssidValue"] for slot in settings["wirelessConfig"]]


@EVERY_ROUTER
def test_wps_is_switched_and_pushed(live, brand, mode):
    router = live(brand=brand, mode=mode)
    assert router.get(STATUS).json == {"result": 0, "version": 1, "status": 1}
    assert router.post(PUSH, None).json["waitTime"] == 20
    wait_until(lambda: "/usr/sbin/wps_web.sh" in router.calls())
    assert router.post(STATUS, {"status": 0}).json["waitTime"] == 20
    assert router.get(STATUS).json["status"] == 0
    assert router.get(DETAIL).json["wpsEnable"] == (1 if mode == "agent" else 0)  # an agent shows its controller's
    assert router.post(PUSH, None).text == '{"result": 1}'
    assert router.post(STATUS, None).text == '{"result": 1}'


@EVERY_ROUTER
def test_the_mac_filter_is_filled_and_switched(live, brand, mode):
    router = live(brand=brand, mode=mode)
    table = [{"description": text, "macAddress": f"00:00:00:00:00:{i:02}", "enableTime": 0, "remainTime": 0}
             for i, text in enumerate(("Bob's phone", "日本語 \"quoted\"\nlines", "$(reboot); `reboot`"))]
    assert router.post(FILTER, {"macFilterStatus": 1, "macFilterTable": table}).json["waitTime"] == 100
    shown = router.get(FILTER).json
    assert shown == {"result": 0, "version": 1, "macFilterStatus": 1, "numOfmacFilterTable": 3, "max": 60,
                     "macFilterTable": table}
    assert router.option("macfilter.ath0.macfilter") == ("deny" if mode in IN_A_MESH else "allow")
    assert router.get(STATUS).json["status"] == 0
    assert router.post(FILTER, {**shown, "macFilterStatus": 0}).json["result"] == 0
    assert router.get(FILTER).json == {**shown, "macFilterStatus": 0}
    assert router.get(STATUS).json["status"] == 1
    assert router.post(FILTER, {"macFilterTable": "none"}).text == '{"result": 1}'


def test_a_description_of_255_bytes_goes_through_and_a_longer_one_is_refused(live):
    router = live()
    text = "'\"\\$(reboot)\n日" * 15
    table = [{"description": text.ljust(255 - len(text.encode()) + len(text), "x"), "macAddress": "00:11:22:33:44:55",
              "enableTime": 0, "remainTime": 0}]
    assert router.post(FILTER, {"macFilterTable": table}).json["waitTime"] == 100
    assert router.get(FILTER).json["macFilterTable"] == table
    for longer in ("x", "x" * 1000000):
        refused = [{**table[0], "description": table[0]["description"] + longer}]
        assert router.post(FILTER, {"macFilterTable": refused}).text == '{"result": 1}'
    assert router.get(FILTER).json["macFilterTable"] == table


def agent_request(router, **members):
    """The settings of a set-up that changes nothing, with these members in place."""
    return {"mesh": int(router.option("button_mesh.easymesh.enable")), "frequency": 5,
            "multiLinkOperationEnable": int(router.option("button_mesh.easymesh.mode")), "ieee802dot11r": 0,
            "multiRuEnable": int(router.option("wireless.wifi1.dfs_puncture_en")), "location": 9,
            "locationCustom": "Bob's attic", "ledStatus": 1, "compatiMode": 0,
            "compatiWiFi6Mode": int(router.option("button_mesh.easymesh.compatiWiFi6Mode")), **members}


@EVERY_ROUTER
def test_a_units_set_up_changes_multi_ru_and_the_mesh(live, brand, mode):
    router = live(brand=brand, mode=mode)
    assert router.post(AGENT, agent_request(router)).json["waitTime"] == 20
    assert router.post(AGENT, agent_request(router, multiRuEnable=1)).json["waitTime"] == 120
    assert router.get(DETAIL).json["multiRuEnable"] == 1
    assert router.option("devicecustom.info.locationCustom") == "Bob's attic"
    was_on = mode in IN_A_MESH
    assert router.post(AGENT, agent_request(router, mesh=int(not was_on))).json["waitTime"] == (
        120 if was_on else 130 if brand == "orvane" else 150)
    wait_until(lambda: router.get(SETTING).json["mesh"] == int(not was_on))
    assert router.post(AGENT, {"mesh": 1}).text == '{"result": 1}'


@pytest.mark.parametrize("brand,wait", [("orvane", 130), ("tesmir", 150)])
def test_an_agent_joins_changes_and_leaves_its_mesh(live, brand, wait):
    router = live(brand=brand, mode="router")
    request = {"mesh": 1, "frequency": 5, "multiLinkOperationEnable": 1, "ieee802dot11r": 1, "multiRuEnable": 0,
               "location": 9, "locationCustom": "Bob's attic", "ledStatus": 1, "compatiMode": 0, "compatiWiFi6Mode": 0}
    assert router.post(AGENT, request).json["waitTime"] == wait
    wait_until(lambda: router.get(SETTING).json["mesh"] == 1)
    assert router.option("devicecustom.info.locationCustom") == "Bob's attic"
    assert router.post(AGENT, request).json["waitTime"] == 20
    assert router.post(AGENT, {**request, "multiLinkOperationEnable": 2}).json["waitTime"] == 150
    wait_until(lambda: router.option("button_mesh.easymesh.mode_change") == "0")
    assert router.option("button_mesh.easymesh.mode") == "2"
    assert router.post(AGENT, {**request, "multiLinkOperationEnable": 2, "multiRuEnable": 1}).json["waitTime"] == 120
    assert router.get(DETAIL).json["multiRuEnable"] == 1
    assert router.post(AGENT, {**request, "mesh": 0}).json["waitTime"] == 120
    wait_until(lambda: router.get(SETTING).json["mesh"] == 0)
    assert router.post(AGENT, {"mesh": 1}).text == '{"result": 1}'
