"""POST /api/v1/system/firmware and POST /api/v1/fwupdatechkandrun."""

import pytest

from kit import GARBAGE_BODIES

UPLOAD = "/api/v1/system/firmware"
AUTOMATIC = "/api/v1/fwupdatechkandrun"
IMAGE = b"\0\x01image " * 5000
FILE = "/tmp/firmware.bin"
VERDICT = "/tmp/Download_Verify_Result"
BUSY = "  812 root      1200 S    /usr/sbin/orvanehota -d\n"


def tool_of(brand):
    return f"/usr/sbin/{brand}hota"


def upload(router, data=IMAGE, claim=None):
    return router.fcgi({"REQUEST_METHOD": "POST", "REQUEST_URI": UPLOAD,
                        "CONTENT_LENGTH": str(len(data) if claim is None else claim)}, data)


def hota_commands(router):
    return [c for c in router.commands() if "hota -" in c or "tesmirupg" in c or c.startswith("sleep")]


def verifies(router, brand="orvane", verdict="Verify Success\n"):
    router.tool(tool_of(brand), "-v", write={VERDICT: verdict})


# Upload.

@pytest.mark.parametrize("brand", ["orvane", "tesmir"])
def test_an_image_that_verifies_is_installed_after_the_answer(router, brand):
    router.brand(brand)
    verifies(router, brand)
    a = upload(router)
    assert not a.encrypted and a.text == '{"result": 0, "version": 1, "waitTime": 300, "Massage": ""}'
    router.wait_for_call(tool_of(brand), "-u")
    assert hota_commands(router) == ["/usr/sbin/tesmirupg.sh", f"{tool_of(brand)} -v", f"{tool_of(brand)} -u"]
    assert router.root.path(FILE).read_bytes() == IMAGE


@pytest.mark.parametrize("verdict", ["Verify Failed\n", "", "verify success\n", "Verify Success but not quite\n"])
def test_an_image_that_does_not_verify_is_refused(router, verdict):
    verifies(router, verdict=verdict)
    a = upload(router)
    assert a.body == b'{"result": 3}'
    assert hota_commands(router) == ["/usr/sbin/tesmirupg.sh", "/usr/sbin/orvanehota -v"]
    assert not router.exists(FILE)
    assert router.logged("verification failed", priority=3, by="handle_system_firmware")


def test_an_earlier_verdict_does_not_count(router):
    router.write(VERDICT, "Verify Success\n")
    router.tool("/usr/sbin/orvanehota", missing=True)
    assert upload(router).body == b'{"result": 3}'


def test_a_verdict_behind_a_planted_link_does_not_count(router):
    """Put there while the tool works: what the link points to is anybody's to write."""
    router.write("/tmp/planted", "Verify Success\n")
    router.remove(tool_of("orvane"))
    router.write("/usr/sbin/orvanehota", f"#!/bin/sh\nln -sf /tmp/planted {VERDICT}\n", 0o755)
    assert upload(router).body == b'{"result": 3}'
    assert not router.exists(FILE)


def test_an_unknown_brand_installs_nothing(router):
    router.brand("0999")
    verifies(router, "tesmir")
    assert upload(router).body == b'{"result": 3}'
    assert router.logged("unknown device id", priority=3, by="handle_system_firmware")
    assert not router.exists(FILE) and not any("-u" in c for c in router.commands())


def test_an_upload_while_a_tool_runs_is_result_2_and_writes_nothing(router):
    router.tool("ps", out=BUSY)
    assert upload(router).body == b'{"result": 2}'
    assert not router.exists(FILE)


@pytest.mark.parametrize("data, claim", [(IMAGE, len(IMAGE) + 1), (IMAGE[:100], len(IMAGE)), (b"", 0), (b"", 1000),
                                         (b"", None)])
def test_an_upload_that_is_cut_short_or_empty_is_refused_and_leaves_nothing(router, data, claim):
    verifies(router)
    assert upload(router, data, claim).body == b'{"result": 1}'
    assert not router.exists(FILE) and hota_commands(router) == []


def test_an_image_that_cannot_be_stored_tells_why(router):
    router.write(FILE + "/a-folder-in-its-place", "")
    assert upload(router).body == b'{"result": 1}'
    assert [line.text for line in router.log() if line.priority == 3] == [f"Failed to open: {FILE}\n"]
    assert hota_commands(router) == []


def test_an_image_that_the_disk_has_no_room_for_is_refused(router):
    router.full_disk("/tmp", {"deviceid": "0221", "firmware.bin": "before", "room": ""})
    assert upload(router, IMAGE * 2).body == b'{"result": 1}'
    assert [line.text for line in router.log() if line.priority == 3] == [f"Failed to write to: {FILE}\n"]
    assert router.read_running(FILE) is None and hota_commands(router) == []


def test_a_large_image_arrives_whole(router):
    verifies(router)
    data = bytes(range(256)) * 4096 * 16  # 16 MiB
    assert upload(router, data).body.startswith(b'{"result": 0')
    assert router.root.path(FILE).read_bytes() == data


# From the server.

def downloads(router, brand="orvane", verdict="Verify Success\n"):
    router.write("/tmp/HotaVersionStatus", "1\n")
    router.tool(tool_of(brand), "-d", write={FILE: "image"})
    verifies(router, brand, verdict)


@pytest.mark.parametrize("brand", ["orvane", "tesmir"])
def test_a_newer_image_is_downloaded_verified_and_installed(router, brand):
    router.brand(brand)
    downloads(router, brand)
    a = router.post(AUTOMATIC, {"checkAndUpdate": 0})
    assert a.encrypted and a.text == '{ "result": 0, "version": 1, "waitTime": 300 }'
    router.wait_for_call(tool_of(brand), "-u")
    tool = tool_of(brand)
    assert hota_commands(router) == [f"{tool} -c", f"{tool} -d", f"{tool} -v", "sleep 1", f"{tool} -u"]


def test_1_relies_on_an_earlier_check(router):
    downloads(router)
    assert router.post(AUTOMATIC, {"checkAndUpdate": 1}).json["result"] == 0
    assert "/usr/sbin/orvanehota -c" not in router.commands()


def test_an_image_from_before_is_not_taken_for_the_downloaded_one(router):
    downloads(router)
    router.write(FILE, "from before")
    assert router.post(AUTOMATIC, {"checkAndUpdate": 1}).json["result"] == 0
    tool = tool_of("orvane")
    router.wait_for_call(tool, "-u")
    assert hota_commands(router) == [f"{tool} -d", f"{tool} -v", "sleep 1", f"{tool} -u"]
    assert router.read(FILE) == "image"


@pytest.mark.parametrize("status", ["0\n", "2\n", "", "x\n", None])
def test_without_a_newer_version_the_answer_is_result_1(router, status):
    router.remove("/tmp/HotaVersionStatus")
    if status is not None:
        router.write("/tmp/HotaVersionStatus", status)
    assert router.post(AUTOMATIC, {"checkAndUpdate": 0}).json == {"result": 1}
    assert hota_commands(router) == ["/usr/sbin/orvanehota -c"]


def test_the_download_is_tried_three_times(router):
    router.write("/tmp/HotaVersionStatus", "1\n")
    verifies(router, verdict="Verify Failed\n")
    router.tool("/usr/sbin/orvanehota", "-d")
    assert router.post(AUTOMATIC, {"checkAndUpdate": 1}).json == {"result": 3}
    assert hota_commands(router) == ["/usr/sbin/orvanehota -d", "/usr/sbin/orvanehota -v", "sleep 1"] * 3


def test_an_image_that_does_not_verify_is_result_3(router):
    downloads(router, verdict="Verify Failed\n")
    assert router.post(AUTOMATIC, {"checkAndUpdate": 0}).json == {"result": 3}
    assert not router.exists(FILE)
    assert "/usr/sbin/orvanehota -u" not in router.commands()


def test_without_a_verdict_the_answer_is_result_1(router):
    downloads(router)
    router.tool("/usr/sbin/orvanehota", "-v")
    router.write(VERDICT, "Verify Success\n")
    assert router.post(AUTOMATIC, {"checkAndUpdate": 0}).json == {"result": 1}
    assert not router.exists(FILE)


def test_a_tool_under_way_is_result_2(router):
    router.tool("ps", out=BUSY)
    assert router.post(AUTOMATIC, {"checkAndUpdate": 0}).json == {"result": 2}


@pytest.mark.parametrize("value", [2, -1, 100])
def test_another_request_is_result_1(router, value):
    downloads(router)
    assert router.post(AUTOMATIC, {"checkAndUpdate": value}).json == {"result": 1}
    assert hota_commands(router) == []


def test_an_unknown_brand_is_result_1(router):
    router.brand("0999")
    assert router.post(AUTOMATIC, {"checkAndUpdate": 0}).json == {"result": 1}


@pytest.mark.parametrize("body", [None, *GARBAGE_BODIES.values()], ids=["none", *GARBAGE_BODIES])
def test_an_unusable_body_is_result_1(router, body):
    assert router.post(AUTOMATIC, body).json == {"result": 1}


@pytest.mark.parametrize("uri", [UPLOAD, AUTOMATIC])
def test_an_installation_that_cannot_be_started_is_no_success(router, uri):
    verifies(router)
    router.tool("/usr/sbin/orvanehota", "-d", write={FILE: "image"})
    router.write("/tmp/HotaVersionStatus", "1\n")
    router.write("/router/no-threads", "")
    a = upload(router) if uri == UPLOAD else router.post(AUTOMATIC, {"checkAndUpdate": 1})
    assert a.json == {"result": 1}
    assert f"{tool_of('orvane')} -u" not in router.commands()
    assert not router.exists(FILE)
