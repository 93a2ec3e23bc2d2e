"""Under which name a message stands in the log: that of the function that the helper works for, not the helper's own."""

import pytest

CASES = [
    ("/api/v1/lan", {}, "lanIpv4Address is not found.", "read_settings"),
    ("/api/v1/dhcp", {"enable": 1}, "leaseTime is not found.", "read_settings"),
    ("/api/v1/wireless/mac-filter", {"macFilterTable": [{}]}, "Failed to get description", None),
    ("/api/v1/delete-port", {"portOpenSettings": [{"id": "0"}]}, "id: 0", "port_mapping_delete_from_json"),
    ("/api/v1/parental-control/delete", {"parentalControls": [{"id": "0"}]}, "id: 0",
     "parental_control_delete_from_json"),
]
HELPERS = {"fail", "take", "set", "read", "fails", "read_member", "read_number", "read_text", "read_ids", "set_lan_option",
           "delete_lan_option", "read_pbc", "delete_section"}


@pytest.mark.parametrize("uri,body,text,function", CASES, ids=[case[0] for case in CASES])
def test_a_helper_logs_for_its_caller(router, uri, body, text, function):
    router.post(uri, body)
    lines = [line for line in router.log() if text in line.text]
    assert lines, router.report()
    assert not HELPERS & {line.function for line in lines}
    if function is not None:
        assert {line.function for line in lines} == {function}
