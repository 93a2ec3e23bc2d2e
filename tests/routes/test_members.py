"""Every member of every POST route's documents, as something else than it should be: it does what a missing one does.

The rows are those of route_documents: a route that is described there is asked here. What a request
answers, stores and runs is compared with what the same document does without the member, or with the member as it is.
"""

import json
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parent))

from request_effects import bench_of
from route_documents import API, GIVEN, OPENAPI, documents, members

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

MEMBERS = members()
ROUTES = list(dict.fromkeys(route for route, _ in documents()))


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
