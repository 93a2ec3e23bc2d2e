"""POST /api/v1/system/config/backup and /api/v1/system/config/restore."""

import hashlib

import pytest

BACKUP = "/api/v1/system/config/backup"
RESTORE = "/api/v1/system/config/restore"
UNUSABLE = b'{"result": 1}'
ARCHIVE = "the archive\0 with any bytes \u00ff" * 100
LEFT_BEHIND = ("/tmp/config_file.tar.gz", "/tmp/backup.tmp", "/tmp/backup.tar.gz")


def backup_of(archive: bytes, device: str = "0221") -> bytes:
    return archive + hashlib.md5(archive).hexdigest().encode() + device.encode()


ARCHIVE_BYTES = ARCHIVE.encode()
GOOD = backup_of(ARCHIVE_BYTES)


def restore(router, data: bytes, claim: int | None = None):
    return router.fcgi({"REQUEST_METHOD": "POST", "REQUEST_URI": RESTORE,
                        "CONTENT_LENGTH": str(len(data) if claim is None else claim)}, data)


def assert_refused(router, answer):
    assert not answer.encrypted and answer.body == UNUSABLE
    assert router.calls("/sbin/sysupgrade") == [] and router.calls("/sbin/reboot") == []
    assert [path for path in LEFT_BEHIND if router.exists(path)] == []


# Backup.

@pytest.mark.parametrize("brand, device, name", [("orvane", "0221", "MX-9P300KLD-config.bin"),
                                                 ("tesmir", "0121", "VR-EH700QTS-config.bin"),
                                                 ("0999", "", "response_field.bin")])
def test_a_backup_is_the_archive_its_md5_and_the_device_id(router, brand, device, name):
    router.brand(brand)
    router.tool("/sbin/sysupgrade", "--create-backup", "/tmp/config_file.tar.gz", write={"/tmp/config_file.tar.gz": ARCHIVE})
    a = router.post(BACKUP, None)
    assert a.header_lines == ["Status: 200 OK", "Content-Type: application/octet-stream",
                              f'Content-Disposition: attachment; filename="{name}"']
    assert a.body == backup_of(ARCHIVE_BYTES, device)
    assert router.commands("/sbin/sysupgrade") == ["/sbin/sysupgrade --create-backup /tmp/config_file.tar.gz"]
    assert not router.exists("/tmp/config_file.tar.gz")


def test_the_body_of_a_backup_request_is_ignored(router):
    router.tool("/sbin/sysupgrade", write={"/tmp/config_file.tar.gz": ARCHIVE})
    assert router.post(BACKUP, b"\0\xffanything", plain=True).body == GOOD


@pytest.mark.parametrize("kind", ["missing", "failed", "silent", "empty"])
def test_without_an_archive_the_answer_is_result_1_and_no_file_of_a_trailer(router, kind):
    router.write("/tmp/config_file.tar.gz", "left by an earlier run")
    written = {"failed": {"/tmp/config_file.tar.gz": "half"}, "empty": {"/tmp/config_file.tar.gz": ""}}.get(kind)
    router.tool("/sbin/sysupgrade", missing=kind == "missing", exit=int(kind == "failed"), write=written)
    a = router.post(BACKUP, None)
    assert (a.headers["content-type"], a.body) == ("application/json", UNUSABLE)
    assert not router.exists("/tmp/config_file.tar.gz")


@pytest.mark.parametrize("way", ["> $2", "> /tmp/new; mv /tmp/new $2"], ids=["written", "replaced"])
def test_a_backup_is_nobody_elses_to_read(router, way):
    """The archive holds every password. What the tool finds, and what the trailer is made of, is its owner's alone."""
    script(router, "/usr/sbin/sysupgrade", f"ls -l $2 >> /tmp/seen; umask 022; printf archive {way}")
    script(router, "/router/bin/md5sum", "ls -l $1 >> /tmp/seen; exec /usr/bin/md5sum $1")
    router.write("/tmp/config_file.tar.gz", "left by an earlier run", 0o644)
    assert router.post(BACKUP, None).body == backup_of(b"archive")
    assert [line.split()[0] for line in router.read("/tmp/seen").splitlines()] == ["-rw-------"] * 2


def script(router, path, text):
    router.remove(path)
    router.write(path, f"#!/bin/sh\n{text}\n", 0o755)


# Restore.

def test_a_backup_of_this_brand_is_restored_and_the_router_restarts(router):
    script(router, "/usr/sbin/sysupgrade", "cp $2 /tmp/restored; ls -l $2 > /tmp/seen")
    a = restore(router, GOOD)
    assert not a.encrypted and a.text == '{"result": 0, "version": 1, "waitTime": 300}'
    router.wait_for_call("/sbin/reboot")
    assert router.read("/tmp/restored") == ARCHIVE and router.read("/tmp/seen").startswith("-rw------- ")
    assert [path for path in LEFT_BEHIND if router.exists(path)] == []


def test_the_commands_of_a_restore(router):
    assert restore(router, GOOD).json["result"] == 0
    router.wait_for_call("/sbin/reboot")
    assert router.commands()[-2:] == ["/sbin/sysupgrade --restore-backup /tmp/backup.tar.gz", "/sbin/reboot"]


@pytest.mark.parametrize("data", [GOOD, b"x", backup_of(ARCHIVE_BYTES, "0121"), GOOD[:-40] + b"altered" + GOOD[-40:]],
                         ids=["good", "short", "another-brand", "altered"])
def test_a_restore_that_runs_is_left_alone(router, data):
    router.tool("/sbin/sysupgrade", hang=True)
    assert restore(router, GOOD).json["result"] == 0
    router.wait_for_call("/sbin/sysupgrade")
    a = restore(router, data)
    assert not a.encrypted and a.body == UNUSABLE
    assert router.read("/tmp/backup.tar.gz") == ARCHIVE and not router.exists("/tmp/backup.tmp")
    assert len(router.calls("/sbin/sysupgrade")) == 1


def test_after_a_restore_there_can_be_another(router):
    assert restore(router, GOOD).json["result"] == 0
    router.wait_for_call("/sbin/reboot")
    router.wait_until(lambda: restore(router, GOOD).json["result"] == 0)
    router.wait_for_call("/sbin/reboot", times=2)


def test_a_restore_that_cannot_be_begun_is_refused(router):
    router.write("/router/no-threads", "")
    assert_refused(router, restore(router, GOOD))
    assert router.logged("create pthread fail", priority=3, by="handle_config_restore")
    router.remove("/router/no-threads")
    assert restore(router, GOOD).json["result"] == 0


def test_a_backup_of_the_other_brand_is_refused(router):
    router.brand("tesmir")
    assert_refused(router, restore(router, GOOD))
    assert router.logged("id is not equal", priority=7)


def test_an_unknown_brand_restores_nothing(router):
    router.brand("0999")
    assert_refused(router, restore(router, backup_of(ARCHIVE_BYTES, "0999")))


@pytest.mark.parametrize("part", ["archive", "md5", "id"])
def test_a_backup_altered_in_any_one_byte_is_refused(router, part):
    """Every byte of the trailer, and bytes all over the archive, on one router."""
    end = len(GOOD)
    places = {"archive": range(0, end - 36, 97), "md5": range(end - 36, end - 4), "id": range(end - 4, end)}[part]
    for place in places:
        altered = bytearray(GOOD)
        altered[place] ^= 0x01
        assert_refused(router, restore(router, bytes(altered)))


@pytest.mark.parametrize("length", [1, 4, 35, 36, 37, len(GOOD) - 1])
def test_a_backup_cut_short_is_refused(router, length):
    assert_refused(router, restore(router, GOOD[:length]))


def test_a_trailer_alone_is_refused(router):
    assert_refused(router, restore(router, backup_of(b"")))


def test_a_backup_with_more_behind_it_is_refused(router):
    assert_refused(router, restore(router, GOOD + b"x"))


@pytest.mark.parametrize("claim", [len(GOOD) + 1, 2147483647])
def test_an_upload_that_breaks_off_is_refused(router, claim):
    assert_refused(router, restore(router, GOOD, claim))
    assert router.logged("write to file failed", priority=3, by="handle_config_restore")


@pytest.mark.parametrize("length", [1, 3])
def test_an_upload_without_room_for_an_id_has_another(router, length):
    assert_refused(router, restore(router, GOOD[-length:]))
    assert [line.text for line in router.log()] == ["id is not equal\n"]


def test_a_backup_without_an_archive_has_no_checksum_that_counts(router):
    assert_refused(router, restore(router, GOOD[-20:]))
    assert [line.text for line in router.log()] == ["id is equal\n", "md5sum is not equal\n"]


def test_a_file_that_cannot_be_made_is_told(router):
    router.write("/tmp/backup.tmp/a-folder-in-its-place", "")
    assert restore(router, GOOD).body == UNUSABLE
    assert [line.text for line in router.log()] == ["open file failed\n"]


@pytest.mark.parametrize("left_by_earlier", [{}, {"backup.tmp": "before"}], ids=["new", "replaced"])
def test_a_full_disk_is_told(router, left_by_earlier):
    router.full_disk("/tmp", {"deviceid": "0221", **left_by_earlier, "room": ""})
    assert restore(router, GOOD * 3).body == UNUSABLE
    assert [line.text for line in router.log()] == ["write to file failed\n"]
    assert router.read_running("/tmp/backup.tmp") is None and router.calls("/sbin/sysupgrade") == []


def test_an_empty_upload_is_refused(router):
    assert_refused(router, restore(router, b""))


def test_a_dead_md5sum_is_refused(router):
    router.tool("md5sum", missing=True)
    assert_refused(router, restore(router, GOOD))
