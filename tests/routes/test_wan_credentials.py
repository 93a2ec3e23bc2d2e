"""POST /api/v1/router/wan-info: which PPPoE credentials are refused."""

import pytest

from wan_setup import RELOAD, SHORT_WAIT, UNUSABLE, apply, stored, wan  # noqa: F401

FORBIDDEN = ['"', "'", ",", "<", ">", "￥", "\\", "^", "`", "|"]
ALLOWED = [*"!#$%&()*+-./:;=?@[]_{}~ ", "¥", "日", "ﾥ", "￦", "å", "本\u00e5", "\udcef\udcbf", "\udcef", "\udcbf\udca5", "ｅ"]


@pytest.mark.parametrize("character", FORBIDDEN)
def test_a_forbidden_character_in_both_credentials_is_refused(wan, character):
    before = stored(wan)
    for password in FORBIDDEN:
        answer = apply(wan, wanMethod=2, pppoeUserName=f"us{character}er", pppoePassword=password)
        assert (answer.encrypted, answer.text) == (True, UNUSABLE), password
        wan.assert_calls(*RELOAD)
    assert wan.logged("Invalid PPPOE userName and passWord.", priority=3)
    assert stored(wan) == before


@pytest.mark.parametrize("character", FORBIDDEN)
def test_a_forbidden_character_counts_anywhere_in_both(wan, character):
    for place in ("{}x", "x{}", "{}", "{0}{0}"):
        text = place.format(character)
        assert apply(wan, wanMethod=2, pppoeUserName=text, pppoePassword=text).text == UNUSABLE


@pytest.mark.parametrize("character", FORBIDDEN)
def test_one_bad_credential_alone_passes(wan, character):
    for user, password in ((f"us{character}er", "clean"), ("clean", f"se{character}cret")):
        assert apply(wan, wanMethod=2, pppoeUserName=user, pppoePassword=password).text == SHORT_WAIT
        assert (wan.option("network.wan.username"), wan.option("network.wan.password")) == (user, password)


@pytest.mark.parametrize("character", FORBIDDEN)
def test_an_empty_or_missing_credential_never_refuses(wan, character):
    for empty in ("", None):
        assert apply(wan, wanMethod=2, pppoeUserName=empty, pppoePassword=character).text == SHORT_WAIT
        assert apply(wan, wanMethod=2, pppoeUserName=character, pppoePassword=empty).text == SHORT_WAIT


def test_other_characters_in_both_credentials_pass(wan):
    for text in (pattern.format(character) for character in ALLOWED for pattern in ("us{}er", "{}")):
        assert apply(wan, wanMethod=2, pppoeUserName=text, pppoePassword=text).text == SHORT_WAIT, text
        assert wan.option("network.wan.username") == wan.option("network.wan.password") == text


@pytest.mark.parametrize("locale", ["C", "C.UTF-8", "POSIX", "ja_JP.UTF-8", "en_US.ISO-8859-1"])
def test_the_yen_sign_is_one_character_in_any_locale(wan, locale):
    wan.environment["LC_ALL"] = locale
    for text in ("日", "ﾥ", "￦", "\udcef\udcbf"):
        assert apply(wan, wanMethod=2, pppoeUserName=text, pppoePassword=text).text == SHORT_WAIT
    assert apply(wan, wanMethod=2, pppoeUserName="x￥", pppoePassword="￥x").text == UNUSABLE


def test_the_check_counts_in_every_mode(wan):
    for code in range(10):
        assert apply(wan, wanMethod=code, pppoeUserName="a,b", pppoePassword="a|b").text == UNUSABLE
    assert wan.option("network.wan.mode") == "DHCP"


@pytest.mark.parametrize("text, answer", [("x" * 63 + "|", UNUSABLE), ("x" * 64 + "|", SHORT_WAIT), ("x" * 61 + "￥", UNUSABLE),
                                          ("x" * 62 + "￥", SHORT_WAIT)])
def test_what_is_cut_off_a_credential_does_not_count(wan, text, answer):
    assert apply(wan, wanMethod=2, pppoeUserName=text, pppoePassword="|").text == answer


def test_the_credentials_are_traced(wan):
    apply(wan, pppoeUserName="the-user", pppoePassword="the-%s-password")
    assert wan.logged("pppoeUserNameValue = the-user, pppoePasswordValue = the-%s-password", priority=7)
