"""Documents that succeed, route by route, and the places in them: the examples of docs/openapi.yaml, and more.

A route that is described there is here.
"""

import copy
from dataclasses import dataclass
from pathlib import Path

import yaml

API = "/api/v1/"
OPENAPI = yaml.safe_load((Path(__file__).resolve().parents[2] / "docs/openapi.yaml").read_text(encoding="utf-8"))

RULE = {"settingName": "web", "ipAddress": "192.168.0.60", "protocol": 1, "lanPortNum": 80, "wanPortNum": 8080}
CONTROL = {"explain": "phone", "macAddress": "AA:BB:CC:DD:EE:01", "startTime": "06:00", "endTime": "21:00"}
# What a router is given before it is asked, so that there is something to lose.
GIVEN = {
    "port-open": ("port-open", {"portOpenSettings": [RULE]}),
    "delete-port": ("port-open", {"portOpenSettings": [RULE, RULE]}),
    "parental-control": ("parental-control", {"enable": 0, "parentalControls": [CONTROL]}),
    "parental-control/delete": ("parental-control", {"enable": 1, "parentalControls": [CONTROL, CONTROL]}),
    "dhcp": ("dhcp", {"enable": 1, "leaseTime": 24, "startAddress": "192.168.0.40", "endAddress": "192.168.0.98",
                      "fixedIpCount": 1, "fixedIpAllocation": [{"ipAddress": "192.168.0.70",
                                                                "macAddress": "AA:BB:CC:DD:EE:09"}]}),
}

# Members that the examples of the description lack, or that only another value shows, as documents of their own.
MORE = {
    "wireless/setting": [
        {"mlo": 0, "mesh": 0, "bandSteering": 0, "ieee802dot11r": 1, "set2GChannel": 1, "set5GChannel": 36,
         "set6GChannel": 1, "wirelessConfig": [{"ssidName": "SSID2", "wifiStealth": 1}]}],
    "router/wan-info": [
        {"wanConfig": {"wanMethod": 2, "pppoeUserName": "user", "pppoePassword": "secret", "pppoeMtu": 1400}},
        {"wanConfig": {"wanMethod": 1, "wanIpv4Address": "203.0.113.20", "wanIpv4subMask": "255.255.255.0",
                       "wanIpv4Gateway": "203.0.113.1", "wanIpv4Dns1": "203.0.113.53", "wanIpv4Dns2": "203.0.113.54"}},
        {"wanConfig": {"wanMethod": 4, "aftrAddress": "aftr.example"}},
        {"wanConfig": {"wanMethod": 5, "ipipService": 1, "ipipV4Address": "192.0.2.1", "ipipBrAddress": "2001:db8::1",
                       "ipipInterfaceId": "::1", "ipipResettingUrl": "http://example/", "ipipUserId": "id",
                       "ipipPassword": "secret"}}],
    "fwupdatechkandrun": [{"checkAndUpdate": 1}],
    "router/info": [{"routerInfo": {"model": "attic router"}}],
    "lan": [{"globalIpProtectionEnable": 1, "dhcpv4Enable": 1, "lanIpv4Address": "192.168.5.1",
             "lanIpv4SubMask": "255.255.255.0"}],
}


@dataclass(frozen=True)
class Member:
    """A place in a document that works: ("wirelessConfig", 0, "band")."""

    route: str
    document: dict
    path: tuple

    @property
    def value(self):
        return _at(self.document, self.path)

    def without(self):
        """The document without the member."""
        document = copy.deepcopy(self.document)
        del _at(document, self.path[:-1])[self.path[-1]]
        return document

    def holding(self, value):
        """The document with another value of the member."""
        document = copy.deepcopy(self.document)
        _at(document, self.path[:-1])[self.path[-1]] = value
        return document

    def __str__(self):
        return f"{self.route}:{'.'.join(key for key in self.path if key != 0)}" + "[]" * (self.path[-1] == 0)


def _at(value, path):
    for key in path:
        value = value[key]
    return value


def _paths(value, path=()):
    """The places below a value; of a list, those of its first element."""
    children = value.items() if isinstance(value, dict) else [*enumerate(value)][:1] if isinstance(value, list) else ()
    for key, child in children:
        yield (*path, key)
        yield from _paths(child, (*path, key))


def documents():
    """Each route's documents that succeed, and its own of this file first."""
    for uri, operations in OPENAPI["paths"].items():
        route = uri.removeprefix(API)
        content = operations.get("post", {}).get("requestBody", {}).get("content", {}).get("application/json", {})
        answers = operations["post"]["responses"]["200"]["content"]["application/json"]["examples"] if content else {}
        examples = content.get("examples", {})
        yield from ((route, document) for document in MORE.get(route, []))
        yield from ((route, example["value"]) for name, example in examples.items()
                    if "x-router" not in example and answers[name]["value"].get("result") == 0)


def members():
    known = {}
    for route, document in documents():
        for path in _paths(document):
            known.setdefault((route, path), Member(route, document, path))
    return list(known.values())
