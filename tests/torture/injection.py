"""Hostile text in every member of every route, in bodies, URIs and headers: nothing runs it, nothing loses its bounds, and
what is stored is read back as it was sent."""

from __future__ import annotations

import json
import random

import kit
from kit import uci_text
from route_documents import API, Member, members
from texts import shown

from . import answers
from .corpus import CANARY, MARK, Payload, payloads
from .figures import Bounds, Figures
from .units import LASTING, RAW, Unit, get_routes, post_routes

NAME = "injection"
HELP = "hostile text × every member of every route, raw bodies, URIs, headers"
SHORT = {"count": 250}

_HOLE = "@@hole@@"
_BENIGN = MARK + "plain"
_BENIGN_MAC = _BENIGN.ljust(17, "0")  # a MAC address is told by its length alone
_HEADERS = ("CONTENT_TYPE", "HTTP_COOKIE", "HTTP_HOST", "QUERY_STRING", "REMOTE_ADDR", "HTTP_PROXY", "PATH_INFO", "SCRIPT_NAME")


def parts(bounds: Bounds) -> list[tuple]:
    """(function, arguments) of each part, which all can run beside each other."""
    places = members()
    by_route: dict[str, list[Member]] = {}
    for member in places:
        by_route.setdefault(member.route, []).append(member)
    corpus = payloads()
    whole = len(corpus) * (len(places) + 3 * len(post_routes()))
    share = 1.0 if bounds.count is None else min(1.0, bounds.count / whole)
    work = [(members_of, (route, found, share, bounds)) for route, found in by_route.items()]
    work += [(bodies_of, (route, share, bounds)) for route in post_routes()]
    return work + [(uris_and_headers, (share, bounds))]


def _chosen(name: str, share: float, bounds: Bounds) -> list[Payload]:
    """A part's payloads: all, or as many as its share, those that the seed draws, one at least."""
    corpus = payloads()
    draw = random.Random(f"{bounds.seed} {name}")
    return corpus if share >= 1 else draw.sample(corpus, max(1, round(len(corpus) * share)))


def members_of(route: str, found: list[Member], share: float, bounds: Bounds) -> Figures:
    figures, watch = Figures(), Watch(route)
    try:
        watch.learn(found)
        for member in found:
            watch.benign(member)
            for payload in _chosen(str(member), share, bounds):
                if bounds.over():
                    return figures
                watch.ask(figures, f"{member} = {payload.name}", _filled(member, payload), payload)
    finally:
        watch.finish(figures)
    return figures


def bodies_of(route: str, share: float, bounds: Bounds) -> Figures:
    """The payloads as documents, and as bodies that nobody encrypted."""
    figures, watch = Figures(), Watch(route)
    try:
        for payload in _chosen(f"{route} bodies", share, bounds):
            if bounds.over():
                return figures
            watch.ask(figures, f"{route} body {payload.name}", payload.raw)
            if route not in RAW:
                watch.ask(figures, f"{route} ciphertext {payload.name}", payload.raw, plain=True)
    finally:
        watch.finish(figures)
    return figures


def uris_and_headers(share: float, bounds: Bounds) -> Figures:
    figures, watch = Figures(), Watch("lan")
    try:
        for payload in _chosen("uris", min(1.0, 5 * share), bounds):
            if bounds.over():
                return figures
            text = payload.raw[:60_000]
            for base in (b"/api/v1/lan", b"/api/v1/", b"/", b""):
                watch.get(figures, f"uri {base.decode()}{payload.name}", {"REQUEST_URI": base + text}, silent=base + text != b"/api/v1/lan")
            for name in _HEADERS:
                watch.get(figures, f"{name} {payload.name}", {"REQUEST_URI": b"/api/v1/lan", name: text})
            watch.get(figures, f"method {payload.name}", {"REQUEST_URI": b"/api/v1/lan", "REQUEST_METHOD": text}, silent=True)
            watch.length(figures, f"length {payload.name}", text)
    finally:
        watch.finish(figures)
    return figures


def _filled(member: Member, payload: Payload) -> bytes:
    return json.dumps(member.holding(_HOLE)).encode().replace(json.dumps(_HOLE).encode(), payload.json)


class Watch:
    """Asks a unit, and looks at all that a request could have done."""

    def __init__(self, route: str):
        self.route = route
        self.unit = Unit(route)
        self.readable = route in get_routes()
        self.addresses: set[str] = set()  # where a harmless text ended up
        self.shapes: set[tuple] = _shapes(self.unit.before)
        self.places = 0  # how often it was shown

    def learn(self, found: list[Member]) -> None:
        """What the documents leave as they are."""
        documents = {json.dumps(member.document): member.document for member in found}
        for document in documents.values():
            self._harmless(document)

    def benign(self, member: Member) -> None:
        """What becomes of a harmless text in the member's place."""
        after, shown_texts = self._harmless(member.holding(_BENIGN))
        self.addresses, self.places = _addresses(after), len(shown_texts)
        self.addresses |= _addresses(self._harmless(member.holding(_BENIGN_MAC))[0])

    def _harmless(self, document: dict) -> tuple[dict[str, bytes], list[str]]:
        answer = self.unit.send(json.dumps(document).encode())
        accepted = answers.result(answer) == 0
        self.unit.settle(accepted)
        after = self.unit.files()
        self.shapes |= _shapes(after)
        shown_texts = self._shown() if accepted else []
        self._next(after, accepted)
        return after, shown_texts

    def ask(self, figures: Figures, name: str, body: bytes, payload: Payload | None = None, plain: bool = False) -> None:
        answer = self.unit.router.post(API + self.route, body, plain=True) if plain else self.unit.send(body)
        accepted = answers.result(answer) == 0
        self.unit.settle(accepted)
        after = self.unit.files()
        figures.count("tries")
        if wrong := answers.complaint("POST", self.route, answer):
            figures.lose(f"{name}: {wrong}")
        self._look(figures, name, after, payload)
        if payload is not None and payload.text is not None and MARK in payload.text and accepted:
            self._read_back(figures, name, payload.text)
        self._next(after, accepted)

    def get(self, figures: Figures, name: str, params: dict[str, bytes | str], silent: bool = False) -> None:
        answer = self.unit.router.fcgi({"REQUEST_METHOD": "GET", **params})
        figures.count("tries")
        if not (silent and (answer.empty or answer.body == b"Not Found")) and (silent or answers.result(answer) != 0):
            figures.lose(f"{name}: {answer!r}"[:300])
        self._look(figures, name, self.unit.files())

    def length(self, figures: Figures, name: str, text: bytes) -> None:
        body = kit.encrypt(b'{"lanIpv4Address": "192.168.5.0", "lanIpv4SubMask": "255.255.255.0"}')
        answer = self.unit.router.fcgi({"REQUEST_METHOD": "POST", "REQUEST_URI": "/api/v1/lan", "CONTENT_LENGTH": text}, body)
        figures.count("tries")
        if wrong := answers.complaint("POST", "lan", answer):
            figures.lose(f"{name}: {wrong}")
        self._look(figures, name, self.unit.files())

    def _look(self, figures: Figures, name: str, after: dict[str, bytes], payload: Payload | None = None) -> None:
        text = payload.text if payload is not None and payload.text is not None else ""
        for path in after:
            if CANARY in path:
                figures.lose(f"{name}: {path} was made")
        if self.unit.router.calls(CANARY):
            figures.lose(f"{name}: the canary was called")
        for call in self.unit.router.calls():
            for argument in call.args:
                if MARK in argument and not _is_whole(argument, text):
                    figures.lose(f"{name}: an argument of {call.tool} is {argument[:120]!r}")
        for wrong in _package_complaints(after, text, self.addresses, self.shapes):
            figures.lose(f"{name}: {wrong}")

    def _read_back(self, figures: Figures, name: str, text: str) -> None:
        if not self.places:
            return
        found = self._shown()
        if not found:
            figures.lose(f"{name}: accepted, and not shown")
        for value in found:
            if not shown(text).startswith(value.rstrip("\ufffd")):
                figures.lose(f"{name}: shown as {value[:120]!r}")
        figures.count("read back")

    def _shown(self) -> list[str]:
        """The texts with the mark that the route's GET tells."""
        if not self.readable:
            return []
        return [text for text in _texts(self.unit.router.get(API + self.route).json) if MARK in text]

    def _next(self, after: dict[str, bytes], accepted: bool) -> None:
        if accepted and self.route in LASTING:
            self.unit.finish()
            self.unit = Unit(self.route)
        else:
            self.unit.restore(self.unit.files() if self.readable else after)

    def finish(self, figures: Figures) -> None:
        try:
            self.unit.finish()
        except AssertionError as error:
            figures.lose(f"{self.route}: {error}")


def _is_whole(argument: str, text: str) -> bool:
    """The argument ends with the payload, whole or cut at a bound."""
    if text == "":
        return True  # no payload of this request's: what was stored before
    begin = text.index(MARK)
    rest = argument[argument.index(MARK):]
    return text[begin:].startswith(rest.rstrip("\udcc3")) and rest != ""


def _texts(value) -> list[str]:
    if isinstance(value, str):
        return [value]
    children = value.values() if isinstance(value, dict) else value if isinstance(value, list) else ()
    return [text for child in children for text in _texts(child)]


def _packages(files: dict[str, bytes]) -> dict[str, str]:
    return {path.removeprefix("/etc/config/"): text.decode("utf-8", "surrogateescape")
            for path, text in files.items() if path.startswith("/etc/config/") and not path.endswith(".txt")}


def _options(package: str):
    """(address, type, option, texts) of a package's options."""
    for i, section in enumerate(uci_text.parse(package)):
        for option, value in section.options.items():
            yield section.name or f"@{section.type}[{i}]", section.type, option, value if isinstance(value, list) else [value]


def _addresses(files: dict[str, bytes]) -> set[str]:
    return {f"{name}.{section}.{option}" for name, text in _packages(files).items() if MARK in text
            for section, _, option, texts in _options(text) if any(MARK in text for text in texts)}


def _shapes(files: dict[str, bytes]) -> set[tuple]:
    return {(name, type, option) for name, text in _packages(files).items() for _, type, option, _ in _options(text)}


def _package_complaints(files: dict[str, bytes], text: str, addresses: set[str], shapes: set[tuple]):
    for name, content in _packages(files).items():
        try:
            options = list(_options(content))
        except (ValueError, IndexError) as error:
            yield f"{name} is no package any more: {error}"
            continue
        for section, type, option, values in options:
            if any(word in f"{section} {type} {option}" for word in (CANARY, MARK)):
                yield f"{name}.{section}.{option} is named by the text"
            # What else a number or a list in a member's place brings about is the route's affair.
            if MARK in text and (name, type, option) not in shapes:
                yield f"{name}.{section}.{option} is new"
            for value in values:
                if MARK not in value:
                    continue
                if f"{name}.{section}.{option}" not in addresses:
                    yield f"{name}.{section}.{option} holds the text"
                elif not _is_whole(value, text):
                    yield f"{name}.{section}.{option} is {value[:120]!r}"
