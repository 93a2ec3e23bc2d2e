"""What the torture is made with sees what it looks for."""

from types import SimpleNamespace

import pytest

from torture import answers, corpus, injection
from torture.figures import Figures

PACKAGE = "/etc/config/network"
LAN = "config interface 'lan'\n\toption ipaddr '{}'\n"
ADDRESSES, SHAPES = {"network.lan.ipaddr"}, {("network", "interface", "ipaddr")}


def complaints(content, text):
    return list(injection._package_complaints({PACKAGE: content.encode()}, text, ADDRESSES, SHAPES))


def test_the_corpus_is_large_and_each_of_it_is_one():
    payloads = corpus.payloads()
    assert len({payload.json for payload in payloads}) > 800
    assert len({payload.name for payload in payloads}) == len(payloads)


def test_a_text_that_is_stored_whole_or_cut_is_no_loss():
    text = corpus.MARK + "x" * 40
    assert complaints(LAN.format(text), text) == [] == complaints(LAN.format(text[:20]), text)


@pytest.mark.parametrize("content", [
    LAN.format(corpus.MARK + "y"), LAN.format("1.2.3.4") + "\toption pwned 'x'\n", LAN.format("1.2.3.4") + "config pwned\n\toption x 'y'\n",
    "config interface 'wan'\n\toption ipaddr 'zq7xx'\n", "config interface 'lan\n", "option x y\n"],
    ids=["another text", "new option", "new section", "another place", "open quote", "no section"])
def test_a_package_that_says_something_else_is_a_loss(content):
    assert complaints(content, corpus.MARK + "x") != []


def watch_over(calls=(), files=()):
    router = SimpleNamespace(calls=lambda tool=None: [call for call in calls if tool in (None, call.tool)])
    watch = injection.Watch.__new__(injection.Watch)
    watch.unit, watch.addresses, watch.shapes = SimpleNamespace(router=router), set(), set()
    figures = Figures()
    watch._look(figures, "a try", dict.fromkeys(files, b""), corpus.Payload("x", b"", corpus.MARK + "; pwned"))
    return figures.losses


def test_what_ran_or_was_made_or_split_is_a_loss():
    call = SimpleNamespace(tool="uci", args=("set", f"a.b.c={corpus.MARK}; pwned"))
    assert watch_over([call]) == []
    assert len(watch_over([SimpleNamespace(tool=corpus.CANARY, args=())])) == 1
    assert len(watch_over([SimpleNamespace(tool="uci", args=("set", f"a.b.c={corpus.MARK};x"))])) == 1
    assert len(watch_over(files=[f"/tmp/{corpus.CANARY}"])) == 1


@pytest.mark.parametrize("body, fits", [
    (b'{"result": 0, "version": 1, "waitTime": 60}', True), (b'{"result": 1}', True), (b"decrypt error", True),
    (b'{"result": 7}', False), (b"{", False), (b"\xff", False), (b'{"result": 0, "version": "x"}', False)])
def test_an_answer_is_a_documented_one_or_a_loss(body, fits):
    answer = SimpleNamespace(empty=False, status=200, body=body, data=body, headers={}, text=body.decode(errors="replace"))
    assert (answers.complaint("POST", "lan", answer) is None) == fits
