"""GET and POST /api/v1/security/passthrough and /api/v1/security/protect."""

import pytest

from kit import GARBAGE_BODIES

PASS = "/api/v1/security/passthrough"
PROTECT = "/api/v1/security/protect"
OK = {"result": 0, "version": 1, "waitTime": 20}
UNUSABLE = {"result": 1}
KEYS = {PASS: {"pptpEnable": "pptp", "ipsecEnable": "ipsec"}, PROTECT: {"dosEnable": "dos", "spiEnable": "spi"}}
ROUTES = pytest.mark.parametrize("uri", [PASS, PROTECT])


@pytest.fixture
def security(router):
    router.config("security", "config security 'security'\n\toption pptp '0'\n\toption ipsec '1'\n\toption dos '1'\n"
                  "\toption spi '0'\n")
    return router


@ROUTES
def test_the_switches_are_reported_in_order(security, uri):
    a = security.get(uri)
    assert a.encrypted
    assert list(a.json) == ["result", "version", *KEYS[uri]]
    assert [a.json[key] for key in KEYS[uri]] == [int(security.option(f"security.security.{o}")) for o in KEYS[uri].values()]


@ROUTES
@pytest.mark.parametrize("value", ["2", "-1", None])
@pytest.mark.parametrize("which", [0, 1])
def test_a_stored_value_other_than_0_and_1_is_result_1(security, uri, value, which):
    security.set(f"security.security.{list(KEYS[uri].values())[which]}", value)
    a = security.get(uri)
    assert a.encrypted and a.text == '{"result": 1}'


@ROUTES
@pytest.mark.parametrize("first", [0, 1])
@pytest.mark.parametrize("second", [0, 1])
def test_switches_are_stored_and_the_firewall_restarted(security, uri, first, second):
    one, two = KEYS[uri]
    a = security.post(uri, {one: first, two: second})
    assert a.encrypted and a.json == OK
    assert [security.option(f"security.security.{o}") for o in KEYS[uri].values()] == [str(first), str(second)]
    security.wait_for_call("/etc/init.d/firewall", "restart")
    assert security.logged("security reload.", priority=7)


@ROUTES
@pytest.mark.parametrize("value", [2, -1, None])
def test_a_wrong_second_switch_is_result_1_and_the_first_stays_written(security, uri, value):
    one, two = KEYS[uri]
    body = {one: 1} if value is None else {one: 1, two: value}
    assert security.post(uri, body).json == UNUSABLE
    assert security.option(f"security.security.{KEYS[uri][one]}") == "1"
    assert security.calls("/etc/init.d/firewall") == []


@ROUTES
@pytest.mark.parametrize("body", [None, *GARBAGE_BODIES.values()], ids=["none", *GARBAGE_BODIES])
def test_an_unusable_body_is_result_1_and_changes_nothing(security, uri, body):
    before = security.read("/etc/config/security")
    assert security.post(uri, body).json == UNUSABLE
    assert security.read("/etc/config/security") == before


@ROUTES
def test_without_the_package_both_are_result_1(router, uri):
    router.no_config("security")
    assert router.get(uri).json == UNUSABLE
    assert router.post(uri, {key: 1 for key in KEYS[uri]}).json == UNUSABLE


@pytest.mark.parametrize("new, marked", [(0, None), (1, "1")])
def test_a_changed_inspection_sets_the_marker_an_unchanged_one_does_not(security, new, marked):
    assert security.post(PROTECT, {"dosEnable": 1, "spiEnable": new}).json == OK
    assert security.option("security.security.autoflag") == marked
