"""Which MLD carries which access point in a mesh, as the platform's scripts leave the wireless packages behind."""

from __future__ import annotations

_GUESTS = {"ath01": "Guest-2.4G", "ath11": "Guest-5G", "ath21": "Guest-6G"}
_COPIES = {"ath04": "Copy-2.4G", "ath14": "Copy-5G", "ath24": "Copy-6G"}
_NAMES = {"ath0": "2.4G", "ath1": "5G", "ath2": "6G", **_GUESTS, **_COPIES}
_BACKHAUL = "Router-Backhaul-1234"

# Controllers in the factory's mesh mode, 2.4 + 5 GHz. A copy that a brand's mesh lacks keeps its own MLD.
_CONTROLLER_MLDS = {
    "orvane": {"ath0": 1, "ath01": 4, "ath04": 7, "ath1": 1, "ath11": 5, "ath14": 8, "ath2": 2, "ath21": 6, "ath24": 9},
    "tesmir": {"ath0": 3, "ath01": 6, "ath04": 7, "ath1": 1, "ath11": 8, "ath14": 9, "ath2": 4, "ath21": 10, "ath24": 11},
}
_AGENT_MLDS = {"orvane": {"ath0": 2, "ath1": 2, "ath2": 4}, "tesmir": {"ath0": 3, "ath1": 2, "ath2": 6}}
_FRONTHAUL = {  # access point: band, type of the SSID's authentication
    "ath0": ("2G", "1"), "ath1": ("5G", "1"), "ath2": ("6G", "12")}


def _mld(number: int, name: str) -> dict[str, str]:
    section = f"wireless.mld{number}"
    return {section: "wifi-mld", f"{section}.mld_ssid": name}


def _controller(brand: str) -> dict[str, str]:
    options: dict[str, str] = {}
    for ifname, number in _CONTROLLER_MLDS[brand].items():
        options |= {f"wireless.{ifname}.mld": f"mld{number}", **_mld(number, f"Router-{_NAMES[ifname]}-1234")}
    if brand == "tesmir":
        options |= {f"wireless.{ifname}.mld": "mld2" for ifname in ("ath05", "ath15", "ath25")}
        options |= {**_mld(2, "Router-MLO-1234"), "repacd.MAPConfig.FronthaulSSID": "Router-5G-1234"}
    for ifname, (band, auth) in _FRONTHAUL.items():
        options |= {f"repacd.MAPConfig.FHOverrideSSID{band}": f"Router-{_NAMES[ifname]}-1234",
                    f"repacd.MAPConfig.FHOverrideKey{band}": "factory-key-1234",
                    f"repacd.MAPConfig.FHOverrideAuthType{band}": auth}
    return options


def _second_ssids() -> dict[str, str]:
    options: dict[str, str] = {}
    for ifname, number in (("ath02", 4), ("ath12", 5), ("ath22", 6)):
        options |= {f"wireless.{ifname}.mld": f"mld{number}", **_mld(number, _BACKHAUL)}
    return options


def wiring(brand: str, mode: str) -> dict[str, str]:
    """Options over the factory's packages for a brand and a working mode of variants.MODES."""
    if mode == "controller":
        return _controller(brand)
    if mode == "re":
        return _second_ssids()
    if mode == "agent":
        joined = {f"wireless.{ifname}.mld": f"mld{number}" for ifname, number in _AGENT_MLDS[brand].items()}
        return {**_second_ssids(), **joined}
    return {}
