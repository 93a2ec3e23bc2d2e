"""What many requests leave behind in the program: nothing.

A test run asks some hundreds of them; ENDURANCE_REQUESTS=10000 asks as many as that.
"""

import itertools
import os

import pytest
from lan_setup import IFCONFIG
from process_state import resident_kib, resources, sockets

from kit import encrypt, fastcgi
from kit.router import SANITIZER_OPTIONS

LAN = "/api/v1/lan"
REQUESTS = int(os.environ.get("ENDURANCE_REQUESTS", "400"))
WARM_UP = 100
GROWTH_KIB = 2048  # the C library's own buffers; one leaked answer of each request would be more


@pytest.fixture
def lan(router):
    # A freed block stays resident in AddressSanitizer's quarantine.
    router.environment = {"ASAN_OPTIONS": SANITIZER_OPTIONS["ASAN_OPTIONS"] + ":quarantine_size_mb=1"}
    router.tool("ifconfig", "br-lan", out=IFCONFIG)
    return router


def hang_up(router):
    router.raw(fastcgi.request({"REQUEST_METHOD": "GET", "REQUEST_URI": LAN})[:-9], close=True)


def post(router, body, length=None):
    return router.fcgi({"REQUEST_METHOD": "POST", "REQUEST_URI": LAN,
                        "CONTENT_LENGTH": str(len(body) if length is None else length)}, body)


# Each gives what the answer has to be.
KINDS = [
    lambda router: (router.get(LAN).json["result"], 0),
    lambda router: (router.get("/api/v1/nothing").empty, True),
    lambda router: (post(router, encrypt(b'{"lanIpv4Address": "192.168.5.0", "lanIpv4SubMask": "255.255.255.0"}')).json,
                    {"result": 1}),
    lambda router: (post(router, b"no ciphertext").body, b"decrypt error"),
    lambda router: (post(router, b"", length=0).json, {"result": 1}),
    lambda router: (post(router, b"x", length=100_000_000).body, b"decrypt error"),
    lambda router: (post(router, encrypt(b"no json")).empty, True),
    lambda router: (router.fcgi({"REQUEST_METHOD": "PUT", "REQUEST_URI": LAN}).body, b"Not Found"),
    lambda router: (hang_up(router), None),
    lambda router: (router.get("/api/v1/dhcp").json["result"], 0),
]


def ask(router, count):
    for kind in itertools.islice(itertools.cycle(KINDS), count):
        answered, expected = kind(router)
        assert answered == expected


def test_many_requests_leave_nothing_behind(lan):
    ask(lan, WARM_UP)
    program = lan.pid()
    lan.wait_until(lambda: len(sockets(program)) == 2, "the end of the last request")  # listening, logging
    before, memory = resources(program), resident_kib(program)
    ask(lan, REQUESTS)
    lan.wait_until(lambda: resources(program) == before, "what the program began with")
    assert resident_kib(program) - memory < GROWTH_KIB
