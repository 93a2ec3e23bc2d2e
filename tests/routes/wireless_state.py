"""States of the wireless packages that the wireless route tests start from, and documents they send."""

import copy

SETTING = "/api/v1/wireless/setting"
BRANDS = {0: "orvane", 1: "tesmir", 2: "0999"}
ROLES = {0: "none", 1: "controller", 2: "agent"}
BANDS_OF_MODE = {0: "2.4GHz,5GHz,6GHz", 1: "2.4GHz,5GHz", 2: "5GHz,6GHz"}
CLOSE_MESH = "/usr/sbin/easymesh_close_for_controller.sh"
OPEN_MESH = "/usr/sbin/easymesh_controller.sh"
ISOLATE = "/usr/sbin/iptables_guest_isolate.sh"
CHAIN = ["/etc/init.d/repacd update_bss_config", "/etc/init.d/wsplcd restart_after_config_change", "sleep 30"]


def mesh(router, role, mode=1, brand=None, onboarded=0, enable=None):
    """Role 0 (none), 1 (controller), 2 (agent) in a mesh mode."""
    if brand is not None:
        router.brand(BRANDS[brand])
    router.set("button_mesh.easymesh.enable", enable if enable is not None else int(role != 0))
    router.set("button_mesh.easymesh.role", ROLES[role])
    router.set("button_mesh.easymesh.mode", mode)
    router.set("repacd.repacd.Enable", int(role != 0))
    router.set("repacd.MAPConfig.OnboardingDone", onboarded)


def slot(document, name):
    return next(s for s in document["wirelessConfig"] if s["ssidName"] == name)


def element(name, **members):
    return {"ssidName": name, "band": "2.4GHz", "ssidValue": "Name", "ssidStatus": 1, "ssidPassword": "password",
            "wifiSecurity": 4, "wifiStealth": 0, "wpaRekeyInterval": 3600, **members}


def request(*elements, **members):
    """A request with these slots alone."""
    return copy.deepcopy({"wirelessConfig": list(elements), "bandSteering": 0, "ieee802dot11r": 0, "set2GChannel": 0,
                          "set5GChannel": 0, "set6GChannel": 0, "mlo": 0, "mesh": 0, **members})


def packages(router):
    """Every option of every package, to compare before and after."""
    state = {}
    for package in ("wireless", "wireless_for_easymesh", "button_mesh", "repacd", "repacd_org", "lbd", "bandsteering",
                    "repeater", "system", "macfilter"):
        for index, section in enumerate(router.package(package)):
            for option, value in section.options.items():
                state[f"{package}.{section.name or index}.{option}"] = value
    return state


def changes(before, after):
    return {key: (before.get(key), after.get(key)) for key in sorted({*before, *after})
            if before.get(key) != after.get(key)}


def wait(seconds):
    return '{"result":0, "version":1, "waitTime": %d}' % seconds


def background(router, *commands):
    """The commands in the order they were started, after the last one that runs in the background was seen."""
    for command in commands:
        router.wait_for_call(*command.split())
    return router.commands()
