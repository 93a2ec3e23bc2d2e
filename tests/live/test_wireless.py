"""The wireless settings and channels of a simulated router, through the web server with the real jose."""


import pytest

from waits import wait_until

SETTING = "/api/v1/wireless/setting"


def slot(document, name):
    return next(s for s in document["wirelessConfig"] if s["ssidName"] == name)


@pytest.mark.parametrize("mode", ["router", "re", "controller", "agent"])
@pytest.mark.parametrize("brand", ["orvane", "tesmir"])
def test_settings_are_read_and_posted_back(live, brand, mode):
    router = live(brand=brand, mode=mode)
    before = router.get(SETTING).json
    assert before["result"] == 0 and before["mesh"] == (1 if mode in ("controller", "agent") else 0)
    assert len(before["wirelessConfig"]) == (8 if mode in ("re", "agent") else 11)
    for entry in before["wirelessConfig"]:
        if entry["ssidStatus"] and entry["ssidName"].startswith("SSID"):
            assert entry["bssid"].startswith("02:90:fe:"), entry  # its link's own
    a = router.post(SETTING, before)
    wait = {"router": 70, "re": 20, "controller": 100, "agent": 20}[mode]
    assert a.text == '{"result":0, "version":1, "waitTime": %d}' % wait
    assert router.get(SETTING).json == before


def test_a_change_shows_once_wifi_has_reloaded(live):
    router = live(brand="orvane", mode="router")
    document = router.get(SETTING).json
    document["set5GChannel"] = 100
    document["mlo"] = 4
    slot(document, "SSID1")["ssidValue"] = "Bob's \"café\" $(reboot) 日本"
    slot(document, "SSID2")["ssidStatus"] = 1
    slot(document, "MLO SSID")["ssidValue"] = "All bands"
    slot(document, "MLO SSID")["ssidPassword"] = "all the keys"
    assert router.post(SETTING, document).json["waitTime"] == 70
    wait_until(lambda: router.get("/api/v1/wireless/channel").json["wirelessChannel"][1]["currentChannel"] == 100)
    after = router.get(SETTING).json
    assert (after["set5GChannel"], after["mlo"]) == (100, 4)
    assert slot(after, "SSID1")["ssidValue"] == "Bob's \"café\" $(reboot) 日本"
    assert (slot(after, "SSID2")["ssidStatus"], slot(after, "SSID2")["guestSsid"]) == (1, 1)
    assert [slot(after, "MLO SSID")[key] for key in ("ssidValue", "ssidPassword", "band", "ssidStatus")] == [
        "All bands", "all the keys", "2.4GHz,5GHz,6GHz", 1]
    assert slot(after, "MLO SSID")["bssid"].startswith("02:90:fe:")
    assert slot(after, "SSID2")["bssid"].startswith("02:90:fe:")


def test_a_radio_that_is_switched_off(live):
    router = live(brand="tesmir", mode="router")
    document = router.get(SETTING).json
    document["set6GChannel"] = -1
    router.post(SETTING, document)
    wait_until(lambda: slot(router.get(SETTING).json, "SSID7")["bssid"] == "00:90:FE:12:34:62")  # the radio's: no link
    band = router.get("/api/v1/wireless/channel").json["wirelessChannel"][2]
    assert (band["setChannel"], band["currentChannel"]) == (-1, -1)
    assert router.root.read("/sys/devices/platform/soc@0/soc@0:leds/leds/led_6g/brightness") == "0".ljust(8, "\0")


@pytest.mark.parametrize("brand,wait", [("orvane", 150), ("tesmir", 220)])
def test_the_mesh_is_switched_on_changed_and_off(live, brand, wait):
    router = live(brand=brand, mode="router")
    document = router.get(SETTING).json
    document["mesh"] = 1
    assert router.post(SETTING, document).json["waitTime"] == wait
    wait_until(lambda: router.get(SETTING).json["mesh"] == 1)
    document = router.get(SETTING).json
    slot(document, "Mesh SSID")["band"] = "5GHz,6GHz"
    assert router.post(SETTING, document).json["waitTime"] == 230
    wait_until(lambda: slot(router.get(SETTING).json, "Mesh SSID")["band"] == "5GHz,6GHz")
    wait_until(lambda: router.option("button_mesh.easymesh.mode_change") == "0")
    document = router.get(SETTING).json
    document["mesh"] = 0
    assert router.post(SETTING, document).json["waitTime"] == 180
    wait_until(lambda: router.get(SETTING).json["mesh"] == 0)


@pytest.mark.parametrize("mode", ["router", "re", "controller", "agent"])
@pytest.mark.parametrize("brand", ["orvane", "tesmir"])
def test_the_channels_of_every_router(live, brand, mode):
    router = live(brand=brand, mode=mode)
    bands = router.get("/api/v1/wireless/channel").json["wirelessChannel"]
    assert [band["band"] for band in bands] == [1, 2, 3]
    assert [band["currentChannel"] for band in bands] == [6, 36, 37]
    operates_as_told = mode in ("re", "agent")  # an uplink decides the channels
    assert [band["setChannel"] for band in bands] == ([6, 36, 37] if operates_as_told else [0, 0, 0])
    uplink = router.get("/api/v1/repeater/channel").json
    assert uplink["result"] == 0
    assert [uplink[f"current{band}gChannel"] for band in (2, 5, 6)] == [6, 36, 37]
    assert [uplink[f"current{band}gChannelWidth"] for band in (2, 5, 6)] == [
        band["currentChannelWidth"] for band in bands]


def test_the_channels_of_a_repeater_and_of_an_agent(live):
    repeater = live(brand="orvane", mode="re").get("/api/v1/repeater/channel").json
    assert repeater == {"result": 0, "version": 1, "connectBand": 2, "current2gChannel": 6, "current5gChannel": 36,
                        "current6gChannel": 37, "current2gChannelWidth": 1, "current5gChannelWidth": 5,
                        "current6gChannelWidth": 6}
    agent = live(brand="tesmir", mode="agent")
    assert agent.get("/api/v1/repeater/channel").json["current5gChannel"] == 36
    agent.run("uci", "set", "repacd.MAPConfig.OnboardingDone=0")
    agent.run("uci", "commit", "repacd")
    assert agent.get("/api/v1/repeater/channel").json["current5gChannel"] == "---"


def test_a_refused_request_changes_nothing(live):
    router = live(brand="orvane", mode="router")
    before = router.get(SETTING).json
    assert router.post(SETTING, {**before, "set5GChannel": 68}).text == '{"result": 1}'
    assert router.post(SETTING, {"wirelessConfig": {}}).text == '{"result": 1}'
    assert router.post(SETTING, {**before, "wirelessConfig": [{"ssidName": "SSID1", "ssidPassword": "short"}]}).text == \
        '{"result": 2}'
    slots = [{"ssidName": "SSID2", "ssidValue": "New", "ssidPassword": "new password"}, {"ssidName": "SSID10"}]
    assert router.post(SETTING, {**before, "set2GChannel": 11, "wirelessConfig": slots}).text == '{"result": 2}'
    assert router.post(SETTING, {**before, "set2GChannel": 11, "mesh": []}).text == '{"result": 1}'
    assert router.get(SETTING).json == before
