"""A router with what `cmake --install` puts in place, and with its own lighttpd inside."""

import http.client
import os
import re
import socket
import subprocess
import time
from pathlib import Path

import client
import sandbox
import simulator

SOURCES = Path(__file__).resolve().parents[2]
FILES = SOURCES / "packaging" / "openwrt" / "files"
DEADLINE_S = 120.0

# As a router's main configuration, but for the address: the router's network is its own.
LIGHTTPD_CONF = """\
server.modules = ( "mod_access" )
server.document-root = "/www"
server.bind = "/tmp/www.sock"
server.upload-dirs = ( "/tmp" )
server.errorlog = "/tmp/lighttpd.log"
include "/etc/lighttpd/conf.d/*.conf"
"""


def install(destination: Path, prefix: str = "/usr") -> None:
    subprocess.run(["cmake", "--install", os.environ["ROUTER_API_BUILD"], "--prefix", prefix], check=True,
                   env={**os.environ, "DESTDIR": str(destination)}, stdout=subprocess.DEVNULL)


class _Connection(http.client.HTTPConnection):
    def __init__(self, path: Path):
        super().__init__("router", timeout=DEADLINE_S)
        self._path = str(path)

    def connect(self):
        self.sock = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.sock.settimeout(self.timeout)
        self.sock.connect(self._path)


def listens(path: Path) -> bool:
    """A socket's file is there a moment before somebody listens."""
    with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as asking:
        try:
            asking.connect(str(path))
        except (FileNotFoundError, ConnectionRefusedError):
            return False
    return True


class InstalledRouter:
    """`destination` is the DESTDIR of install(). Its files stand in the router's root under their own names."""

    def __init__(self, destination: Path):
        args = simulator.options_parser().parse_args([])
        self._simulator = simulator.Simulator(Path(os.environ["ROUTER_API_BUILD"]), args, 0)  # its root; never started
        self.root = self._simulator.root
        self.root.mount(destination / "usr/sbin/router-api", "/usr/sbin/router-api")
        self.root.copy_tree(destination / "etc", "/etc")
        for tool in self.root.path("/router/bin").iterdir():  # where a router's PATH finds them
            self.root.link(f"/usr/bin/{tool.name}", f"/router/bin/{tool.name}")
        self.root.write("/etc/lighttpd/lighttpd.conf", LIGHTTPD_CONF)
        self.root.path("/www").mkdir()
        (self._simulator.directory / "log.sock").touch()
        self._processes: list[subprocess.Popen] = []

    def start(self, *argv: str) -> subprocess.Popen:
        """Starts a program of the router, in the same root but in namespaces of its own."""
        with open(self._simulator.directory / "output", "ab") as output:
            process = subprocess.Popen(self.root.command(list(argv)), stdin=subprocess.DEVNULL, stdout=output, stderr=output)
        self._processes.append(process)
        return process

    def start_lighttpd(self) -> subprocess.Popen:
        return self.start(sandbox.machine_programs("lighttpd")["lighttpd"], "-D", "-f", "/etc/lighttpd/lighttpd.conf")

    def wait_until(self, condition, what: str) -> None:
        end = time.monotonic() + DEADLINE_S
        while not condition():
            assert time.monotonic() < end, f"{what}: not in time\n{self.report()}"
            time.sleep(0.05)

    def wait_for_socket(self, path: str) -> None:
        self.wait_until(lambda: listens(self.root.path(path)), path)

    def request(self, method: str, uri: str, body: bytes | None = None) -> client.Answer:
        connection = _Connection(self.root.path("/tmp/www.sock"))
        try:
            connection.request(method, uri, body)
            response = connection.getresponse()
            return client.Answer(response.status, {k.lower(): v for k, v in response.headers.items()}, response.read())
        finally:
            connection.close()

    def report(self) -> str:
        output = (self._simulator.directory / "output").read_text(errors="replace")
        return f"{output}\n{self.root.read('/tmp/lighttpd.log')}"

    def stop(self) -> None:
        for process in self._processes:
            if process.poll() is None:
                sandbox.kill_all(process.pid)
            process.wait(DEADLINE_S)
        self._simulator.stop()


def procd_instance(root: sandbox.Root) -> dict[str, list[str]]:
    """What the init script tells procd: parameter's name to its words. It runs in `root`, with procd's functions."""
    root.write("/tmp/rc.common", """\
procd_open_instance() { :; }
procd_close_instance() { :; }
procd_set_param() { for word; do printf '%s\\n' "$word"; done; echo; }
. "$1"
[ "$USE_PROCD" = 1 ] || exit 1
start_service
""")
    script = (FILES / "router-api.init").read_text()
    root.write("/etc/init.d/router-api", script, 0o755)
    done = subprocess.run(root.command(["/bin/sh", "/tmp/rc.common", "/etc/init.d/router-api"]), capture_output=True, text=True)
    assert (done.returncode, done.stderr) == (0, ""), done
    blocks = [block.split("\n") for block in re.split(r"\n\n", done.stdout.strip("\n"))]
    return {block[0]: block[1:] for block in blocks}
