#!/usr/bin/python3
"""A simulated router: its root, its tools, its programs, and its web server on a loopback port."""

from __future__ import annotations

import argparse
import importlib.util
import json
import os
import re
import select
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

sys.dont_write_bytecode = True
HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

import client  # noqa: E402
import console_server  # noqa: E402
import sandbox  # noqa: E402
import uci_text  # noqa: E402
import web_server  # noqa: E402

PORT = 8080
READY_DEADLINE_S = 120.0
END_DEADLINE_S = 5.0
RESTART_PAUSE_S = 1.0  # how long a restart takes, and the least time between two starts of a program that ends
WAN_CARRIER = "/sys/class/net/eth1/carrier"


def scenarios() -> list:
    """The modules of simulator/scenarios, each with add_options(parser) and apply(root, args)."""
    modules = []
    for path in sorted((HERE / "scenarios").glob("*.py")):
        spec = importlib.util.spec_from_file_location(f"scenario_{path.stem}", path)
        module = importlib.util.module_from_spec(spec)
        spec.loader.exec_module(module)
        modules.append(module)
    return modules


def options_parser(**keywords) -> argparse.ArgumentParser:
    """The options that say what router it is."""
    parser = argparse.ArgumentParser(**keywords)
    parser.add_argument("--brand", choices=sorted(sandbox.DEVICE_IDS), default="orvane", help="default: orvane")
    parser.add_argument("--mode", choices=list(sandbox.MODES), default="router",
                        help="router, access point, repeater, mesh controller or mesh agent; default: router")
    parser.add_argument("--web-server", choices=web_server.NAMES, default=web_server.NAMES[0],
                        help="default: lighttpd; nginx serves the API alone, without the console")
    for module in scenarios():
        module.add_options(parser)
    return parser


def simulated_tools() -> list[str]:
    tools = HERE / "tools"
    names = [str(path.relative_to(tools)) for path in tools.rglob("*") if not path.is_dir()]
    return [("/" + name if "/" in name else name) for name in sorted(names)] + list(sandbox.REAL_TOOLS)


class Simulator:
    """One router that runs. `build` is a build directory; `args` come from options_parser(); `port` 0 is a free one."""

    def __init__(self, build: Path, args: argparse.Namespace, port: int = 0):
        self.build = Path(build)
        self.args = args
        self._held_port = None if port else held_port()
        self.port = port or self._held_port.getsockname()[1]
        self.base = f"http://127.0.0.1:{self.port}"
        sandbox.isolation()  # says what the machine lacks, before anything is made
        self._stopping = threading.Event()
        self._program: subprocess.Popen | None = None
        self._server: subprocess.Popen | None = None
        self._console: console_server.ConsoleServer | None = None
        self._log_socket: socket.socket | None = None
        self._threads: list[threading.Thread] = []
        self.directory = Path(tempfile.mkdtemp(prefix="router-"))
        try:
            self.root = self._build_root()
        except BaseException:
            shutil.rmtree(self.directory)
            raise

    def _build_root(self) -> sandbox.Root:
        root = sandbox.Root(self.directory, self._built("simulator/stand-in"))
        root.mount(self._built("router-api"), "/usr/sbin/router-api")
        root.mount(self.directory / "log.sock", "/dev/log")
        root.write("/router/console", "")
        root.mount(root.path("/router/console"), "/dev/console", writable=True)
        for name in simulated_tools():
            root.simulate(name)
        root.unless_told({name: {"rules": [{"answers": [{}]}]} for name in sandbox.STAND_INS + sandbox.STAND_IN_PATHS})
        root.real_tool("uci", self._built("uci"))
        root.prepare(self.args.brand, self.args.mode)
        if sandbox.has_own_network():
            root.add_device("br-lan", mac="00:90:fe:12:34:50")
        root.setup.append("/router/simulated/tools/etc/init.d/network start")
        for module in scenarios():
            module.apply(root, self.args)
        return root

    def _built(self, name: str) -> Path:
        """A program of the build, wherever in it the build keeps it."""
        candidates = [self.build / name, *sorted(self.build.glob(f"*/{name}"))]
        for path in candidates:
            if path.is_file() and os.access(path, os.X_OK):
                return path
        raise sandbox.SandboxError(f"{self.build}/{name} is not built: cmake --build {self.build}")

    def _about(self) -> dict:
        """What the console has to know; the key is the one that every simulated router shares with its clients."""
        return {"brand": self.args.brand, "mode": self.mode(), "port": self.port, "defaultPort": PORT,
                "key": client.key()}

    # Start and stop.

    def start(self) -> None:
        self._log_socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self._log_socket.bind(str(self.directory / "log.sock"))
        self._listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._listener.bind(str(self.directory / "fcgi.sock"))
        self._listener.listen(128)
        self._console = console_server.ConsoleServer(self.directory / "console.sock", self.root, self._about)
        self._start_program()
        for work in (self._keep_log, self._keep_running):
            thread = threading.Thread(target=work, daemon=True)
            thread.start()
            self._threads.append(thread)
        self._start_server()
        self._wait_until_ready()

    def _start_program(self) -> None:
        with open(self.directory / "stderr", "ab") as stderr:
            command = self.root.command(["/usr/sbin/router-api"])
            self._program = subprocess.Popen(command, stdin=self._listener, stdout=stderr, stderr=stderr)

    def _keep_running(self) -> None:
        """Starts the program again when it ends, and the whole router when a tool asked for that."""
        started = time.monotonic()
        while not self._stopping.wait(0.1):
            wish = self.root.read("/router/reboot")
            if wish is not None:
                sandbox.kill_all(self._program.pid)
                self._program.wait()
                self._restart_root(wish.strip())
            elif self._program.poll() is not None:
                self._note(f"router-api ended with {self._program.returncode}; it is started again")
            else:
                continue
            if self._stopping.wait(max(0.0, started + RESTART_PAUSE_S - time.monotonic())):
                return
            started = time.monotonic()
            self._start_program()

    def _restart_root(self, wish: str) -> None:
        """What a restart leaves of the root: /etc, or with "factory" the factory's; /tmp is new."""
        self.root.remove("/router/reboot")
        self._note("the router restarts" + (" with factory settings" if wish == "factory" else ""))
        for entry in list(self.root.path("/tmp").iterdir()):
            if entry.name not in ("log", "run", "lock", "state", "dnsmasq.d"):
                self.root.remove(f"/tmp/{entry.name}")
        if wish == "factory":
            for package in list(self.root.path("/etc/config").iterdir()):
                package.unlink()
            cable = self.root.read(WAN_CARRIER)
            self.root.prepare(self.args.brand, "router")
            self.root.write(WAN_CARRIER, cable or "")  # which a reset does not plug in
        else:
            self.root.copy_tree(sandbox.FACTORY / "files" / "tmp", "/tmp")
            self.root.write("/tmp/deviceid", sandbox.DEVICE_IDS[self.args.brand] + "\n")

    def _keep_log(self) -> None:
        """Takes what goes to /dev/log and appends it to /var/log/messages.log."""
        form = re.compile(r"<\d+>(?:\w{3} [ \d]\d \d\d:\d\d:\d\d )?([^:\[]*)(?:\[\d+\])?: ?(.*)", re.S)
        while not self._stopping.is_set():
            ready, _, _ = select.select([self._log_socket], [], [], 0.2)
            if not ready:
                continue
            raw = self._log_socket.recv(1 << 20).decode("utf-8", "replace").rstrip("\0\n")
            match = form.fullmatch(raw)
            self._note(match[2].rstrip("\n"), match[1].strip()) if match else self._note(raw)

    def _note(self, text: str, tag: str = "system") -> None:
        with open(self.root.path("/var/log/messages.log"), "a", encoding="utf-8", errors="surrogateescape") as log:
            log.write(f"{time.strftime('%Y-%m-%d %H:%M:%S')} [{tag}] {text}\n")

    def _start_server(self) -> None:
        self._server = web_server.start(self.args.web_server, self.directory, self.port)

    def _wait_until_ready(self) -> None:
        end = time.monotonic() + READY_DEADLINE_S
        reason = "no answer"
        while time.monotonic() < end:
            if self._server.poll() is not None:
                raise sandbox.SandboxError(f"{self.args.web_server} does not start: {self._text(f'{self.args.web_server}.log')}")
            try:
                if client.request(self.base, "PUT", "/api/v1/", timeout_s=READY_DEADLINE_S).body == b"Not Found":
                    return
            except client.ClientError as error:
                reason = str(error)
            time.sleep(0.05)
        raise sandbox.SandboxError(f"the router does not answer: {reason}\n{self._text('stderr')}{self._text(f'{self.args.web_server}.log')}")

    def _text(self, name: str) -> str:
        path = self.directory / name
        return path.read_text(errors="replace") if path.exists() else ""

    def stop(self) -> None:
        self._stopping.set()
        for thread in self._threads:
            thread.join()
        for process in (self._server, self._program):
            if process is not None and process.poll() is None:
                process.terminate()
        for process in (self._server, self._program):
            if process is None:
                continue
            try:
                process.wait(END_DEADLINE_S)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        if self._console is not None:
            self._console.stop()
        for held in (self._log_socket, getattr(self, "_listener", None), self._held_port):
            if held is not None:
                held.close()
        shutil.rmtree(self.directory, ignore_errors=True)

    # Look.

    def get(self, uri: str) -> client.Answer:
        return client.request(self.base, "GET", uri)

    def post(self, uri: str, body=None, plain: bool = False) -> client.Answer:
        """`body`: an object becomes JSON; a text or bytes are sent as they are. Encrypted, but for plain=True."""
        if body is not None and not isinstance(body, (str, bytes)):
            body = json.dumps(body, ensure_ascii=False)
        return client.request(self.base, "POST", uri, None if body is None else sandbox.to_bytes(body), plain)

    def run(self, *argv: str, input: bytes = b"") -> bytes:
        """Runs a command of the router to its end and gives what it printed. Not in the program's own namespaces."""
        return subprocess.run(self.root.command(list(argv), setup=False), input=input, stdout=subprocess.PIPE).stdout

    def option(self, address: str):
        """An option's value, as in the tests' kit."""
        package, section_name, *option = address.split(".", 2)
        section = uci_text.find(uci_text.parse(self.root.read(f"/etc/config/{package}") or ""), section_name)
        return None if section is None else section.options.get(option[0]) if option else section.type

    def mode(self) -> str:
        """How the router works now, as --mode says it; a client or a reset may have changed that."""
        if self.option("button_mesh.easymesh.enable") == "1":
            return "agent" if self.option("button_mesh.easymesh.role") == "agent" else "controller"
        working = self.option("system.@system[0].op_mode")
        return working if working in ("ap", "re") else "router"

    def program_pid(self) -> int:
        """The program's process id on the machine."""
        pid = sandbox.find_program(self._program.pid, "router-api")
        assert pid is not None, "the program does not run"
        return pid

    def calls(self) -> list[str]:
        """The tools that were called so far, with their arguments."""
        lines = (self.root.read("/router/calls.jsonl") or "").split("\n")[:-1]
        return [" ".join([call["tool"], *call["args"]]) for call in map(json.loads, lines)]


def held_port() -> socket.socket:
    """Bound to a free loopback port, which nobody else is given meanwhile; a server that sets SO_REUSEADDR can listen there."""
    holder = socket.socket()
    holder.bind(("127.0.0.1", 0))
    holder.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    return holder


def show_exchange(simulator: Simulator) -> None:
    """One exchange in full: what is asked, what travels, and what it says."""
    settings = simulator.get("/api/v1/lan").json
    known = {key: settings[key] for key in ("lanIpv4Address", "lanIpv4SubMask", "globalIpProtectionEnable") if key in settings}
    text = json.dumps(known)
    answer = simulator.post("/api/v1/lan", text)
    print(f"\nOne exchange, which sets the LAN address to what it is:\n\nPOST {simulator.base}/api/v1/lan\n{text}\n"
          f"\nwhich travels as\n\n{answer.sent.decode()}\n\nis answered with status {answer.status} and\n\n"
          f"{answer.body.decode()}\n\nwhich says\n\n{answer.text}\n")


def main() -> int:
    parser = options_parser(prog="simulator.py", description=__doc__)
    parser.add_argument("--build", type=Path, required=True, help="the build directory whose programs run")
    parser.add_argument("--port", type=int, default=PORT, help=f"loopback port of the web server; default: {PORT}, 0: a free one")
    parser.add_argument("--once", action="store_true", help="stop after the first exchange")
    args = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(128 + signal.SIGTERM))
    try:
        simulator = Simulator(args.build, args, args.port)
    except sandbox.SandboxError as error:
        print(f"simulator: {error}", file=sys.stderr)
        return 1
    try:
        simulator.start()
        print(f"A simulated router ({args.brand}, {args.mode}) answers on {simulator.base}/api/v1/")
        show_exchange(simulator)
        if args.once:
            return 0
        print(f"Its files:         {simulator.root.fs}\n"
              f"Its log:           {simulator.root.path('/tmp/log/messages.log')}\n"
              f"Its tools' calls:  {simulator.root.path('/router/calls.jsonl')}\n\n"
              f"Look at it: {simulator.base}/\n"
              f"Ask it: script/request{'' if simulator.port == PORT else f' --port {simulator.port}'} GET /api/v1/lan\n"
              "Ctrl-C ends it.", flush=True)
        while True:
            signal.pause()
    except KeyboardInterrupt:
        print()
        return 0
    except (sandbox.SandboxError, client.ClientError) as error:
        print(f"simulator: {error}", file=sys.stderr)
        return 1
    finally:
        simulator.stop()


if __name__ == "__main__":
    sys.exit(main())
