"""What anybody may put below /tmp in place of a file that the program reads: a FIFO, which would hold its reader for ever."""

import os

import pytest

READ = {
    "/tmp/deviceid": "/api/v1/router/device-info",
    "/tmp/inetchkresult.txt": "/api/v1/router/info",
    "/tmp/HotaVersionStatus": "/api/v1/router/info",
    "/tmp/pppoechkresult.txt": "/api/v1/pppoe/response",
    "/tmp/resolv.conf.auto": "/api/v1/lan",
}


@pytest.mark.parametrize("path", READ)
def test_a_planted_fifo_is_no_file(router, path):
    if os.path.lexists(router.root.path(path)):
        os.remove(router.root.path(path))
    os.mkfifo(router.root.path(path))
    router.write("/sys/class/net/eth1/carrier", "1\n")
    router.write("/tmp/inetchkresult.txt", "1\n") if path == "/tmp/HotaVersionStatus" else None
    assert "result" in router.get(READ[path]).json
