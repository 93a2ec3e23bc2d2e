"""What the router answers to requests that no area serves; also an example of how a route test looks."""

import pytest


@pytest.mark.parametrize("method", ["PUT", "HEAD", "DELETE", "post", "get", ""])
def test_another_method_is_not_found(router, method):
    a = router.fcgi({"REQUEST_METHOD": method, "REQUEST_URI": "/api/v1/lan"})
    assert a.header_lines == ["Content-Type: text/plain"]
    assert a.body == b"Not Found"


@pytest.mark.parametrize("uri", ["/", "/api/v1/nothing", "/api/v1/LAN", "/api/v1/lan/", "/api/v1/lan?x=1", ""])
def test_an_unknown_uri_is_answered_with_nothing(router, uri):
    assert router.get(uri).empty
    assert router.post(uri, {"a": 1}).empty
    assert [call.stdin for call in router.calls("jose")] == ['jwe.eyJhIjogMX0']  # decrypted first, then dropped


def test_a_body_that_does_not_decrypt_is_refused_as_text(router):
    a = router.post("/api/v1/lan", "{}", plain=True)
    assert (a.header_lines, a.body) == (["Content-Type: text/plain"], b"decrypt error")
    assert router.logged("Failed to allocate memory for plaintext_str.", priority=3)
