"""System and maintenance through the web server with the real jose, passwd, crontab, tar and md5sum."""

import crypt

import pytest

from waits import wait_until

BACKUP = "/api/v1/system/config/backup"
RESTORE = "/api/v1/system/config/restore"


@pytest.mark.parametrize("brand, product", [("orvane", "0221"), ("tesmir", "0121")])
def test_the_router_tells_who_it_is(live, brand, product):
    router = live(brand=brand)
    device = router.get("/api/v1/router/device-info")
    assert not device.encrypted and device.json["productId"] == product
    info = router.get("/api/v1/router/info")
    assert info.encrypted and info.json["routerInfo"]["productId"] == product
    assert router.post("/api/v1/router/info", {"routerInfo": {"locationCustom": "Bob's attic"}}).json["result"] == 0
    assert router.get("/api/v1/router/info").json["routerInfo"]["locationCustom"] == "Bob's attic"


def test_a_backup_restores_the_packages_that_it_was_made_of(live):
    router = live()
    before = router.root.read("/etc/config/network")
    backup = router.post(BACKUP, b"x", plain=True)
    assert backup.headers["content-disposition"] == 'attachment; filename="MX-9P300KLD-config.bin"'
    assert backup.body.endswith(b"0221")
    router.post("/api/v1/lan", {"lanIpv4Address": "192.168.9.1", "lanIpv4SubMask": "255.255.255.0"})
    assert router.root.read("/etc/config/network") != before

    altered = bytearray(backup.body)
    altered[100] ^= 1
    assert router.post(RESTORE, bytes(altered), plain=True).json == {"result": 1}
    assert router.post(RESTORE, backup.body, plain=True).json == {"result": 0, "version": 1, "waitTime": 300}
    wait_until(lambda: router.root.read("/etc/config/network") == before)


@pytest.mark.parametrize("password", ["plain", "it's \"q\" \\n $(x) `y`", "pässwörd 日本"])
def test_any_password_is_exactly_the_one_that_is_set(live, password):
    router = live()
    body = {"newUser": "owner", "newPassword": password, "oldPassword": ""}
    assert router.post("/api/v1/accounts", body).json == {"result": 0, "version": 1, "waitTime": 10}
    entry = next(line.split(":") for line in router.root.read("/etc/shadow").splitlines() if line.startswith("admin:"))
    assert crypt.crypt(password, entry[1]) == entry[1]
    assert router.option("rpcd.log_on.username") == "owner"


def test_a_schedule_stands_in_the_real_cron_table(live):
    router = live()
    body = {"rebootSchduleStatus": 1, "rebootDayOfWeek": 2, "rebootTime": "0415"}
    assert router.post("/api/v1/wireless/rebootschedule", body).json["result"] == 0
    assert b"15 4 * * 1 reboot &" in router.run("crontab", "-l")
    assert router.get("/api/v1/wireless/rebootschedule").json["rebootTime"] == "0415"
    router.post("/api/v1/wireless/rebootschedule", {**body, "rebootSchduleStatus": 0})
    assert b"reboot" not in router.run("crontab", "-l")


def peak_kilobytes(pid):
    status = open(f"/proc/{pid}/status").read()
    return int(status.split("VmHWM:")[1].split()[0])


def test_a_64_megabyte_image_stands_in_memory_once(live):
    router = live()
    image = bytes(range(256)) * (64 * 1024 * 4)
    idle = peak_kilobytes(router.program_pid())
    answer = router.post("/api/v1/system/firmware", image, plain=True)
    assert answer.json == {"result": 0, "version": 1, "waitTime": 300, "Massage": ""}
    assert router.root.path("/tmp/firmware.bin").stat().st_size == len(image)
    assert peak_kilobytes(router.program_pid()) - idle < 1.5 * 64 * 1024


def test_log_switch_and_update_routes_answer(live):
    router = live()
    router.root.write("/var/log/messages.log", "2026-01-02 03:04:05 [system] up\n")
    assert {"time": "2026-01-02 03:04:05", "category": "[system]", "msg": "up"} in \
        router.get("/api/v1/system/log/message").json["systemlogMsg"]
    assert router.post("/api/v1/system/log/clear", {}).json == {"result": 0, "version": 1}
    assert router.post("/api/v1/test/led", {}).json["result"] == 0
    assert router.post("/api/v1/test/switch", {"position": 1}).json["result"] in (0, 1)
    assert router.post("/api/v1/test/cert-db-reset", {}).json["result"] == 0
    assert router.post("/api/v1/fwupdatechkandrun", {"checkAndUpdate": 0}).json == {"result": 1}


def test_a_log_page_that_is_polled_does_not_feed_on_its_own_messages(live):
    """Lines that do not split are told in the log that is read."""
    router = live()
    log = router.root.path("/var/log/messages.log")
    router.root.write("/var/log/messages.log", "wireless line without a mark\nno bracket\nopen [only\n" * 20)
    before = log.stat().st_size
    for _ in range(50):
        assert router.get("/api/v1/system/log/message").json["result"] == 0
        after = log.stat().st_size
        assert after - before < 4 * 1024  # whatever stands in the log already
        before = after


def test_a_reboot_and_a_factory_reset_start_the_router_again(live):
    router = live()
    assert router.post("/api/v1/reboot", {"timeTillReboot": 1}).json["result"] == 0
    wait_until(lambda: any(call.endswith("reboot") for call in router.calls()))
    wait_until(lambda: router.get("/api/v1/router/device-info").status == 200)
    router.post("/api/v1/router/info", {"routerInfo": {"model": "Mine"}})
    assert router.post("/api/v1/system/config/initialize", {}).json["waitTime"] == 420
    wait_until(lambda: router.option("system.@system[0].hostname") != "Mine")
