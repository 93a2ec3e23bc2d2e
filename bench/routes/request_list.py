"""The requests that are measured: every GET, and a set of POSTs."""

import json

from measured_router import ROOT

MAC = "00:11:22:33:44:{:02x}"

POSTS = {
    "/api/v1/lan": {"lanIpv4Address": "192.168.0.1", "lanIpv4SubMask": "255.255.255.0"},
    "/api/v1/ntp": {"enable": 1, "server": "ntp.example"},
    "/api/v1/dhcp": {"enable": 1, "leaseTime": 24, "startAddress": "192.168.0.50", "endAddress": "192.168.0.99",
                     "fixedIpCount": 3, "fixedIpAllocation": [
                         {"ipAddress": f"192.168.0.{n + 10}", "macAddress": "AABBCCDDEE01"} for n in range(3)]},
    "/api/v1/port-open": {"portOpenSettings": [
        {"settingName": f"rule {n}", "ipAddress": "192.168.0.9", "protocol": 1, "lanPortNum": n, "wanPortNum": n}
        for n in range(10)]},
    "/api/v1/parental-control": {"enable": "1", "parentalControls": [
        {"explain": f"child {n}", "macAddress": MAC.format(n), "startTime": "07:00", "endTime": "20:00"}
        for n in range(10)]},
    "/api/v1/wireless/mac-filter": {"macFilterStatus": 0, "macFilterTable": [
        {"description": f"device {n}", "macAddress": MAC.format(n)} for n in range(5)]},
    "/api/v1/security/passthrough": {"pptpEnable": 1, "ipsecEnable": 1},
    "/api/v1/wireless/wps-status": {"status": 0},
}
SENT_BACK = ("/api/v1/wireless/setting", "/api/v1/wireless/detail-setting")  # what GET tells, as it was told


def get_routes() -> list[str]:
    text = (ROOT / "src/request/route_table.cpp").read_text().partition("to_array<GetRoute>({")[2]
    return [line.split('"')[1] for line in text.splitlines() if '"/api/' in line]


def all_requests(router) -> list[tuple[str, str, bytes]]:
    """Method, URI and body as it is sent, of each; `router` tells what is sent back to it."""
    requests = [("GET", uri, b"") for uri in get_routes()]
    documents = {**POSTS, **{uri: router.json_of(uri) for uri in SENT_BACK}}
    for uri, document in documents.items():
        text = json.dumps(document, ensure_ascii=False).encode()
        requests.append(("POST", uri, router.client.encrypt(text)))
    return requests
