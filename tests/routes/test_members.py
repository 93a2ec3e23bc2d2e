"""Every member of every POST route's documents, as something else than it should be: it does what a missing one does.

The rows come from the examples of docs/openapi.yaml: a route that is described there is asked here. What a request
answers, stores and runs is compared with what the same document does without the member, or with the member as it is.
"""

import copy
import json
import sys
from dataclasses import dataclass
from pathlib import Path

import pytest
import yaml

sys.path.insert(0, str(Path(__file__).resolve().parent))

from request_effects import API, bench_of

OPENAPI = yaml.safe_load((Path(__file__).resolve().parents[2] / "docs/openapi.yaml").read_text(encoding="utf-8"))

# What is in the place of a member, by what belongs there.
NO_NUMBER = [None, [], {}, "", "abc", "1 ", 1.5]
NO_TEXT = [None, [], {}, True, False]
NO_LIST = [None, {}, "1", 1, True]
NO_OBJECT = [None, [], "{}", 1, True]
NO_DOCUMENT = ["[]", "[{}]", "1", '"x"', "true", "null"]

# Lists that would be emptied by what is no list, were it taken for a missing one: it refuses the request instead.
KEPT_LISTS = {"wireless/mac-filter:macFilterTable", "dhcp:fixedIpAllocation", "port-open:portOpenSettings"}
# Members with a rule of their own: the values that are not what a missing one is.
EXCEPTIONS = {
    **{member: NO_LIST[1:] for member in KEPT_LISTS},
    # It must be there; its value is the detail settings' affair.
    "wireless/setting:bandSteering": ["", "abc", "1 ", 1.5],
    # The digits that a text begins with are a position, and so are those of a number's text.
    "parental-control/delete:parentalControls.id": ["1 ", 1.5],
    "delete-port:portOpenSettings.id": ["1 ", 1.5],
}
# Members that are shown as numbers and asked for as texts: any number counts, as its text.
TEXTS = {"parental-control:enable", "delete-port:portOpenSettings.id", "parental-control/delete:parentalControls.id"}
# Routes that answer nothing to a body that is no document.
SILENT = {"lan"}

# Members that these documents can do without: they are not looked at, or not on this router.
UNUSED = {
    "accounts:oldPassword", "lan:dhcpv4Enable", "wireless/setting:wirelessConfig.band",
    "wireless/mac-filter:macFilterTable.enableTime", "wireless/mac-filter:macFilterTable.remainTime",
}

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


def _documents():
    """Each route's documents that succeed, and its own of this file first."""
    for uri, operations in OPENAPI["paths"].items():
        route = uri.removeprefix(API)
        content = operations.get("post", {}).get("requestBody", {}).get("content", {}).get("application/json", {})
        answers = operations["post"]["responses"]["200"]["content"]["application/json"]["examples"] if content else {}
        examples = content.get("examples", {})
        yield from ((route, document) for document in MORE.get(route, []))
        yield from ((route, example["value"]) for name, example in examples.items()
                    if "x-router" not in example and answers[name]["value"].get("result") == 0)


def _members():
    known = {}
    for route, document in _documents():
        for path in _paths(document):
            known.setdefault((route, path), Member(route, document, path))
    return list(known.values())


MEMBERS = _members()
ROUTES = list(dict.fromkeys(route for route, _ in _documents()))


@pytest.fixture
def bench(request):
    route = request.node.callspec.params.get("route") or request.node.callspec.params["member"].route
    bench = bench_of(route, GIVEN.get(route))
    yield bench
    bench.finish()


# The rules.


def none_of(member):
    """What is no member of this one's kind."""
    kinds = {int: NO_NUMBER, str: NO_TEXT, list: NO_LIST, dict: NO_OBJECT}
    values = NO_TEXT if str(member) == "parental-control:enable" else kinds[type(member.value)]
    exceptions = [repr(value) for value in EXCEPTIONS.get(str(member), [])]  # True is another value than 1
    return [value for value in values if repr(value) not in exceptions]


def forms_of(number):
    """How else a number may come."""
    return [float(number), str(number)] + [bool(number)] * (number in (0, 1))


def test_the_rows_are_those_of_the_description():
    """No exception is for a member that does not exist, and no route of encrypted documents is left out."""
    assert {*EXCEPTIONS, *TEXTS, *UNUSED} <= {str(member) for member in MEMBERS}
    described = {uri.removeprefix(API) for uri, operations in OPENAPI["paths"].items()
                 if "application/json" in operations.get("post", {}).get("requestBody", {}).get("content", {})}
    assert {*ROUTES} == described and {m.route for m in MEMBERS} == described - {"test/led"}  # any JSON will do for it


# A list's elements have a test of their own: an element cannot be left out.
@pytest.mark.parametrize("member", [m for m in MEMBERS if m.path[-1] != 0], ids=str)
def test_a_member_counts_as_what_it_is_or_not_at_all(bench, member):
    plain = bench.ask(member.document)  # first: a reload repeats what the last request that was applied left for it
    without = bench.ask(member.without())
    assert json.loads(plain.answer)["result"] == 0 and (plain == without) == (str(member) in UNUSED)
    for value in none_of(member):
        assert bench.ask(member.holding(value)) == without, value
    if type(member.value) is int and str(member) not in TEXTS:
        for value in forms_of(member.value):
            assert bench.ask(member.holding(value)) == plain, value
    if type(member.value) is str:
        assert bench.ask(member.holding(192)) == bench.ask(member.holding("192"))


@pytest.mark.parametrize("member", [m for m in MEMBERS if str(m) in KEPT_LISTS], ids=str)
def test_what_is_no_list_empties_nothing(bench, member):
    for value in EXCEPTIONS[str(member)]:
        seen = bench.ask(member.holding(value))
        assert json.loads(seen.answer)["result"] == 1 and seen.files == {}, value
        assert not any(call.startswith("uci") for call in seen.calls), value


@pytest.mark.parametrize("member", [m for m in MEMBERS if m.path[-1] == 0], ids=str)
def test_an_element_that_is_no_object_refuses_the_request(bench, member):
    first, *others = (bench.ask(member.holding(value)) for value in NO_OBJECT)
    assert json.loads(first.answer)["result"] == 1 and first.files == {}
    for value, seen in zip(NO_OBJECT[1:], others):
        assert seen == first, value


@pytest.mark.parametrize("route", ROUTES)
def test_a_document_that_is_no_object_is_none(bench, route):
    first, *others = (bench.ask(text) for text in NO_DOCUMENT)
    assert first.files == {} and (first.answer == "" if route in SILENT else json.loads(first.answer)["result"] == 1)
    for text, seen in zip(NO_DOCUMENT[1:], others):
        assert seen == first, text
