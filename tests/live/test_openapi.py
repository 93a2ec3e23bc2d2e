"""docs/openapi.yaml against the program: its routes are the route table's, and its examples are what the routers answer."""

import copy
import json
import re
from pathlib import Path

import jsonschema
import pytest
import yaml

TOP = Path(__file__).resolve().parents[2]
DOCUMENT = yaml.safe_load((TOP / "docs" / "openapi.yaml").read_text(encoding="utf-8"))
RAW = "application/octet-stream"
BINARY_TRAILER = b"0221"


def route_table():
    """(method, URI, handler) in the order of the tables."""
    text = (TOP / "src/request/route_table.cpp").read_text()
    found = []
    for method, kind in (("post", "PostRoute"), ("get", "GetRoute")):
        body = text.partition(f"to_array<{kind}>({{")[2].partition("\n});")[0]
        found += [(method, *row) for row in re.findall(r'\{"([^"]+)",\s*(\w+)\}', body)]
    return found


ROUTES = [(method, uri) for method, uri, _ in route_table()]


def operation(method, uri):
    return DOCUMENT["paths"][uri][method]


def request_contents(method, uri):
    return operation(method, uri).get("requestBody", {}).get("content", {})


def answer_contents(method, uri):
    return operation(method, uri)["responses"]["200"]["content"]


def examples(contents):
    return {name: (media, example) for media, content in contents.items()
            for name, example in content.get("examples", {}).items()}


def validate(value, schema):
    resolver = jsonschema.RefResolver.from_schema(DOCUMENT)
    jsonschema.Draft202012Validator(schema, resolver=resolver).validate(value)


def test_the_routes_are_those_of_the_route_table():
    documented = {(method, uri, entry["operationId"]) for uri, methods in DOCUMENT["paths"].items()
                  for method, entry in methods.items()}
    assert documented == set(route_table()) and len(ROUTES) == len(set(ROUTES)) >= 63


def test_the_index_lists_the_routes_in_the_order_of_the_route_table():
    index = (TOP / "docs" / "api.md").read_text(encoding="utf-8")
    rows = re.findall(r"^\| \d+ \| (POST|GET) \| `([^`]+)` \|", index, re.M)
    assert [(method.lower(), uri) for method, uri in rows] == ROUTES
    for target in re.findall(r"\]\(([\w./-]+\.(?:md|yaml))", index):
        assert (TOP / "docs" / target).is_file(), target


def test_the_schemas_are_schemas():
    schemas = list(DOCUMENT["components"]["schemas"].values())
    for method, uri in ROUTES:
        schemas += [c["schema"] for c in (request_contents(method, uri) | answer_contents(method, uri)).values()]
    for schema in schemas:
        jsonschema.Draft202012Validator.check_schema(schema)
    references = set(re.findall(r"#/components/schemas/(\w+)", json.dumps(DOCUMENT)))
    assert references == set(DOCUMENT["components"]["schemas"])


@pytest.mark.parametrize("method, uri", ROUTES)
def test_an_operation_tells_what_it_does_and_shows_it(method, uri):
    entry = operation(method, uri)
    assert entry["summary"].endswith(".") and entry["tags"][0] in [tag["name"] for tag in DOCUMENT["tags"]]
    answers, requests = examples(answer_contents(method, uri)), examples(request_contents(method, uri))
    assert answers and set(requests) <= set(answers)
    for name, (media, example) in answers.items():
        if media == RAW:
            continue
        validate(example["value"], answer_contents(method, uri)[media]["schema"])
        if name in requests and example["value"].get("result") == 0:
            request_media, request = requests[name]
            validate(request["value"], request_contents(method, uri)[request_media]["schema"])


def tagged_examples():
    """The examples of docs/api/*.md: (method, URI, request's text or None, answer's text). A request stands before its
    answer."""
    for path in sorted((TOP / "docs" / "api").glob("*.md")):
        waiting = {}
        blocks = re.findall(r"^```json (request|answer) (GET|POST) (\S+)\n(.*?)^```", path.read_text(encoding="utf-8"), re.M | re.S)
        for kind, method, uri, text in blocks:
            if kind == "request":
                waiting[uri] = text
                continue
            request = waiting.pop(uri, None) if method == "POST" else None
            yield pytest.param(method.lower(), uri, request, text, id=f"{path.stem}-{method}-{uri}")


@pytest.mark.parametrize("method, uri, request_text, answer_text", tagged_examples())
def test_the_examples_of_the_pages_fit_the_schemas(method, uri, request_text, answer_text):
    answer = json.loads(answer_text)
    validate(answer, answer_contents(method, uri)["application/json"]["schema"])
    if request_text is not None and answer["result"] == 0:
        validate(json.loads(request_text), request_contents(method, uri)["application/json"]["schema"])


# The replay.


def pairs(name):
    """(method, URI, example's name, request's example or None, answer's media type and example), in the order of asking:
    what a router shows, then what changes it, then what makes it start again."""
    found = []
    for method, uri in sorted(ROUTES, key=lambda route: route[0] != "get"):
        requests = examples(request_contents(method, uri))
        for example_name, (media, example) in examples(answer_contents(method, uri)).items():
            if example.get("x-router", "router") == name:
                found.append((method, uri, example_name, requests.get(example_name, (None, None))[1], media, example))
    return sorted(found, key=lambda pair: pair[-1].get("x-last", False))


def ask(router, method, uri, request, example):
    if method == "get":
        return router.get(uri)
    if "x-body-from" in example:
        return router.post(uri, router.post(example["x-body-from"], b"", plain=True).body, plain=True)
    body = None if request is None else request["value"]
    return router.post(uri, body, plain=RAW in request_contents(method, uri))


def without(value, path):
    """Takes the member that `path` names out of `value`; out of each element where a list stands."""
    key, _, rest = path.partition(".")
    for entry in value if isinstance(value, list) else [value]:
        if rest:
            without(entry[key], rest)
        else:
            del entry[key]


def comparable(value, example):
    value = copy.deepcopy(value)
    for path in example.get("x-varies", []):
        without(value, path)
    for key in example.get("x-unordered", []):
        value[key] = sorted(value[key], key=json.dumps)
    return value


def check_file(answer, operation_entry):
    assert answer.headers["content-type"] == RAW
    for name, header in operation_entry["responses"]["200"]["headers"].items():
        validate(answer.headers[name.lower()], header["schema"])
    assert len(answer.body) > 36 and answer.body.endswith(BINARY_TRAILER)


def check(answer, method, uri, media, example):
    assert answer.status == 200
    assert answer.encrypted != example.get("x-plain", False), "encrypted" if answer.encrypted else "plain"
    if media == RAW:
        return check_file(answer, operation(method, uri))
    assert answer.headers["content-type"] == "application/json"
    validate(answer.json, answer_contents(method, uri)[media]["schema"])
    assert comparable(answer.json, example) == comparable(example["value"], example)


def test_every_route_is_replayed_and_on_no_unknown_router():
    asked = [pair for name in DOCUMENT["x-routers"] for pair in pairs(name)]
    assert {pair[:2] for pair in asked} == set(ROUTES)
    assert len(asked) == sum(len(examples(answer_contents(*route))) for route in ROUTES)
    for name in DOCUMENT["x-routers"]:
        assert sum(pair[-1].get("x-last", False) for pair in pairs(name)) <= 1, "only one can be last"


@pytest.mark.parametrize("name", DOCUMENT["x-routers"])
def test_a_router_answers_as_the_examples_say(live, name):
    router = live(**DOCUMENT["x-routers"][name])
    wrong = []
    for method, uri, example_name, request, media, example in pairs(name):
        try:
            check(ask(router, method, uri, request, example), method, uri, media, example)
        except (AssertionError, ValueError, KeyError, jsonschema.ValidationError) as error:
            wrong.append(f"{method.upper()} {uri}, example {example_name}: {error}")
    assert not wrong, "\n\n".join(wrong)
