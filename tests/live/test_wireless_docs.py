"""Every example of docs/api/wireless-*.md, asked of a simulated router through the web server with the real jose."""

import json
import re
from pathlib import Path

import pytest

DOCS = Path(__file__).resolve().parents[2] / "docs" / "api"


def examples():
    """(file, kind, mode, route, document) of each block headed "json request|answer|excerpt [mode] METHOD ROUTE", in
    order. Without a mode it is of a router."""
    for page in sorted(DOCS.glob("wireless-*.md")):
        blocks = re.findall(r"```json (request|answer|excerpt)(?: (re|controller|agent))? (GET|POST) (\S+)\n(.*?)```", page.read_text(), re.S)
        for kind, mode, method, route, text in blocks:
            yield page.name, kind, mode or "router", f"{method} {route}", json.loads(text)


def exchanges():
    """(kind, mode, route, request, answer): a request's answer is the block behind it."""
    request = None
    for page, kind, mode, route, document in examples():
        if kind == "request":
            assert request is None, f"{page}: {route} has no answer"
            request = document
        else:
            yield pytest.param(kind, mode, route, request, document, id=f"{route.replace('/api/v1/', '')} {mode}")
            request = None


def test_every_block_is_an_example():
    for page in DOCS.glob("wireless-*.md"):
        headed = sum(1 for name, *_ in examples() if name == page.name)
        assert headed == len(re.findall(r"^```json", page.read_text(), re.M)), page.name


def test_every_route_has_an_example():
    text = "".join(page.read_text() for page in DOCS.glob("wireless-*.md"))
    listed = set(re.findall(r"^    (GET|POST) +(/\S+)", text, re.M))
    assert len(listed) == 12
    assert listed == {tuple(route.replace("/api/v1", "").split()) for _, kind, _, route, _ in examples() if kind != "request"}


@pytest.mark.parametrize("kind,mode,route,request_document,answer", exchanges())
def test_an_example_holds(live, kind, mode, route, request_document, answer):
    router = live(mode=mode)
    method, uri = route.split()
    a = router.get(uri) if method == "GET" else router.post(uri, request_document)
    assert a.encrypted
    assert a.json == (answer if kind == "answer" else whole(answer, a.json))


def whole(excerpt, answer):
    """The answer that an excerpt is of: its list has some of the entries."""
    shown = [entry for entry in answer["wirelessConfig"] if entry in excerpt["wirelessConfig"]]
    assert shown == excerpt["wirelessConfig"]
    return {**excerpt, "wirelessConfig": answer["wirelessConfig"]}
