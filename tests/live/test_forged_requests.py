"""Requests that somebody without the key has made of captured ones, against the real jose."""

import base64
import json
import subprocess

import client

WPS = "/api/v1/wireless/wps-status"
NTP = "/api/v1/ntp"


def unpacked(part):
    return bytearray(base64.urlsafe_b64decode(part + "=" * (-len(part) % 4)))


def packed(data):
    return base64.urlsafe_b64encode(data).rstrip(b"=").decode()


def captured(text, encryption):
    """The five parts of a body as the web interface sends it."""
    header = json.dumps({"protected": {"alg": "PBES2-HS256+A128KW", "enc": encryption}})
    body = subprocess.run(["jose", "jwe", "enc", "-i", header, "-I-", "-k", str(client._KEY), "-c"], input=text,
                          capture_output=True, check=True).stdout
    return body.decode().split(".")


def send(router, uri, parts):
    return router.post(uri, ".".join(parts), plain=True).body


def test_a_flipped_bit_of_a_captured_body_changes_no_setting(live):
    router = live()
    captured_text = b'{"status": 0}'
    assert router.post(WPS, captured_text).json["result"] == 0
    parts = captured(captured_text, "A256GCM")
    ciphertext = unpacked(parts[3])
    ciphertext[captured_text.index(b"0")] ^= 1
    before = router.get(WPS).json
    assert send(router, WPS, [*parts[:3], packed(ciphertext), parts[4]]) == b"decrypt error"
    assert router.get(WPS).json == before


def test_a_captured_body_with_another_iv_is_no_other_routes_request(live):
    router = live()
    assert router.post(WPS, {"status": 0}).json["result"] == 0
    was, becomes = b'{"enable": 0}', b'{"status": 1}'
    parts = captured(was, "A128CBC-HS256")
    iv = unpacked(parts[2])
    for i, (old, new) in enumerate(zip(was, becomes, strict=True)):
        iv[i] ^= old ^ new
    before = router.get(WPS).json
    assert send(router, WPS, [*parts[:2], packed(iv), *parts[3:]]) == b"decrypt error"
    assert router.get(WPS).json == before


def test_a_body_sent_from_a_file_with_its_line_end_works(live):
    router = live()
    body = client.encrypt(b'{"status": 0}') + b"\r\n"
    assert router.post(WPS, body, plain=True).json["result"] == 0
