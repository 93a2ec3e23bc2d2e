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
@pytest.mark.parametrize("value", ["2", "-1", "x", "on", None])
@pytest.mark.parametrize("which", [0, 1])
def test_a_stored_value_other_than_0_and_1_is_result_1(security, uri, value, which):
    security.set(f"security.security.{list(KEYS[uri].values())[which]}", value)
    a = security.get(uri)
    assert a.encrypted and a.text == '{"result": 1}'


@ROUTES
def test_the_second_switch_is_read_first(security, uri):
    one, two = KEYS[uri].values()
    security.set(f"security.security.{one}", None)
    security.set(f"security.security.{two}", None)
    assert security.get(uri).json == UNUSABLE
    assert security.logged(f"find tuple security.security.{two} failed.", priority=3)
    assert not security.logged(f"find tuple security.security.{one} failed.")


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
def test_switches_may_come_as_texts_or_truth_values(security, uri):
    one, two = KEYS[uri]
    assert security.post(uri, {one: "0", two: True}).json == OK
    assert [security.option(f"security.security.{o}") for o in KEYS[uri].values()] == ["0", "1"]


@ROUTES
@pytest.mark.parametrize("value", [2, -1, 0.5, "on", [], {}, None])
def test_a_wrong_first_switch_is_result_1_and_changes_nothing(security, uri, value):
    one, two = KEYS[uri]
    before = security.read("/etc/config/security")
    assert security.post(uri, {one: value, two: 1}).json == UNUSABLE
    assert security.post(uri, {two: 1}).json == UNUSABLE
    assert security.read("/etc/config/security") == before and security.commands() == []


@ROUTES
@pytest.mark.parametrize("tool", [{"exit": 1}, {"missing": True}, {"hang": True}], ids=["fails", "missing", "hangs"])
def test_a_firewall_that_does_not_restart_changes_no_answer(security, uri, tool):
    security.tool("/etc/init.d/firewall", **tool)
    assert security.post(uri, {key: 0 for key in KEYS[uri]}).json == OK
    security.wait_until(lambda: security.logged("security reload.", priority=7))
    assert security.alive()


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
def test_without_the_package_reading_is_result_1_and_storing_result_2(router, uri):
    router.no_config("security")
    assert router.get(uri).json == UNUSABLE
    a = router.post(uri, {key: 1 for key in KEYS[uri]})
    assert a.encrypted and a.text == '{"result": 2}'
    assert router.calls("/etc/init.d/firewall") == []


@pytest.mark.parametrize("new, marked", [(0, None), (1, "1")])
def test_a_changed_inspection_sets_the_marker_an_unchanged_one_does_not(security, new, marked):
    assert security.post(PROTECT, {"dosEnable": 1, "spiEnable": new}).json == OK
    assert security.option("security.security.autoflag") == marked


@pytest.mark.parametrize("old", ["2", None])
def test_an_inspection_that_could_not_be_read_counts_as_changed(security, old):
    security.set("security.security.spi", old)
    assert security.post(PROTECT, {"dosEnable": 1, "spiEnable": 0}).json == OK
    assert security.option("security.security.autoflag") == "1"


def test_a_changed_attack_protection_sets_no_marker(security):
    assert security.post(PROTECT, {"dosEnable": 0, "spiEnable": 0}).json == OK
    assert security.option("security.security.autoflag") is None
