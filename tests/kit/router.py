"""A router for one test: a fresh root, the program in it, stand-ins for its tools, and a client for it.

README of the kit: the docstrings of Router, in the order in which a test uses them.
"""

from __future__ import annotations

import contextlib
import errno
import json
import os
import select
import shutil
import socket
import struct
import subprocess
import tempfile
import time
from pathlib import Path

import pytest
import sandbox
import uci_text

from . import fastcgi, tools
from .hostile import PWNED
from .log import Log, is_of_musl
from .seen import Answer, Call, LogLine, decrypt, encrypt  # noqa: F401 (the kit's face)

# For an answer, or for a call that is waited for: how long the slowest machine may take. Nobody waits for its end.
DEADLINE_S = 120.0
_END_DEADLINE_S = 120.0
_POLL_S = 0.005
_PROGRAM = Path("/usr/sbin/router-api")  # in the root, whatever it is called on the machine

# Reports go to files: a daemonised child has no standard error left.
SANITIZER_OPTIONS = {
    "ASAN_OPTIONS": "verify_asan_link_order=0:detect_stack_use_after_return=1:log_path=/router/sanitizer",
    "UBSAN_OPTIONS": "print_stacktrace=1:log_path=/router/sanitizer",
    "TSAN_OPTIONS": "log_path=/router/sanitizer",
    "LSAN_OPTIONS": "log_path=/router/sanitizer",
}


def program(variable: str) -> Path | None:
    """A built file that the build names in the environment."""
    value = os.environ.get(variable)
    if not value:
        return None
    path = Path(value)
    if not path.exists():
        raise FileNotFoundError(f"{variable}={value} does not exist: build first")
    return path


class Router:
    """Prepare (brand, config, set, write, tool), ask (get, post, fcgi), look (option, calls, log, read)."""

    def __init__(self, factory: bool = True, brand: str = "orvane", mode: str = "router"):
        stand_in = program("STAND_IN_BIN")
        if stand_in is None:
            raise RuntimeError("STAND_IN_BIN is not set: run the tests through ctest or script/test")
        sandbox.isolation()  # says what the machine lacks, before anything is made
        self.real_time = False  # True: waits take their time and are not kept as calls
        self.time_rate = 1  # how much sooner the program's limits of tools are over
        self.count_uci = False  # True: uci_calls() tells which packages the program loads and commits
        self.count_memory = False  # True: memory() tells what the program holds
        self.preload: list[Path] = []  # further shared objects of the test's own
        self.environment: dict[str, str] = {}
        self._process: subprocess.Popen | None = None
        self._ended = False
        self._rules: dict[str, list[dict]] = {}
        self._uses = 0
        self.directory = Path(tempfile.mkdtemp(prefix="router-"))
        try:
            self._build_root(stand_in, factory, brand, mode)
        except BaseException:
            shutil.rmtree(self.directory)
            raise

    def _build_root(self, stand_in: Path, factory: bool, brand: str, mode: str) -> None:
        self.root = sandbox.Root(self.directory, stand_in)
        self.root.prepare(brand=brand, mode=mode, packages=factory)
        for name in ("jose", "passwd"):
            self.root.record_stdin(name)
        self._write_rules("jose")
        self.root.unless_told(tools.UNLESS_TOLD)
        if (uci := program("UCI_BIN")) is not None:
            self.root.real_tool("uci", uci)
        self.write("/router/console", "")
        self.root.mount(self.root.path("/router/console"), "/dev/console", writable=True)
        self._listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._listener.bind(str(self.directory / "fcgi.sock"))
        self._listener.listen(64)
        self.root.mount(self.directory / "log.sock", "/dev/log")
        self._log = Log(self.directory / "log.sock")

    # Prepare.

    def brand(self, name: str) -> None:
        """Makes the router an "orvane" or a "tesmir"; another text is written to /tmp/deviceid as it is."""
        self.write("/tmp/deviceid", sandbox.DEVICE_IDS.get(name, name) + "\n")

    def config(self, package: str, text: str) -> None:
        """Writes /etc/config/<package>, whole."""
        self.write(f"/etc/config/{package}", text)

    def no_config(self, *packages: str) -> None:
        """Takes packages away."""
        for package in packages:
            self.remove(f"/etc/config/{package}")

    def set(self, address: str, value: str | int | list | None) -> None:
        """set("network.lan.ipaddr", "1.2.3.4"), set("network.lan.dns", ["a", "b"]) for a list, None to take it away;
        set("network.lan", "interface") makes a named section, set("network.lan", None) takes it away."""
        plain = [str(v) for v in value] if isinstance(value, list) else None if value is None else str(value)
        self.root.set_options({address: plain})

    def add(self, package: str, type: str, name: str | None = None, **options: str | int | list) -> None:
        """Appends a section, anonymous without a name: add("dhcp", "host", ip="192.168.1.5", mac="...")."""
        sections = self.package(package)
        sections.append(uci_text.Section(type, name, {
            key: [str(v) for v in value] if isinstance(value, list) else str(value) for key, value in options.items()}))
        self.config(package, uci_text.render(sections))

    def write(self, path: str, content: str | bytes, mode: int = 0o644) -> None:
        self.root.write(path, content, mode)

    def read(self, path: str) -> str | None:
        """A file's text; None when there is none. Bytes that are not UTF-8 come as lone surrogates."""
        return self.root.read(path)

    def exists(self, path: str) -> bool:
        return self.root.exists(path)

    def remove(self, path: str) -> None:
        self.root.remove(path)

    def tool(self, tool: str, *args: str, out: str | bytes = "", err: str | bytes = "", exit: int = 0,
             then: list[dict] | None = None, write: dict[str, str] | None = None, stdin: bool = False,
             exact: bool = False, hang: bool = False, signal: int = 0, missing: bool = False,
             simulated: bool = False) -> None:
        """What a tool answers when its arguments begin with `args` (with exact: are `args`). What it does unless told is
        in tools.py; a call that nobody speaks of fails, and so does its test in the end.

        The longest fitting arguments win, the latest setting among equals. `then` lists the next answers, the last one
        repeating: then=[{"out": "..."}, {"exit": 1}]. `write` are files that the tool leaves ({path: text}). `stdin`
        keeps its standard input in the call. `hang`: it prints and then never ends. `signal`: it dies by one.
        `missing`: the router has no such tool. `simulated`: it answers as in the simulated router.
        A tool that is called by a path is named by it: tool("/etc/init.d/dnsmasq", exit=1)."""
        if missing:
            self.root.take_away(tool)
            return
        self.root.stand_in(tool)
        if simulated:
            self.root.simulate(tool)
            return
        first = {"out": out, "err": err, "exit": exit, "write": write or {}, "hang": hang, "signal": signal}
        answers = [{**answer, **{key: _escaped(answer[key]) for key in ("out", "err") if key in answer}}
                   for answer in [first, *(then or [])]]
        self._uses += 1
        rule = {"args": list(args), "exact": exact, "stdin": stdin, "answers": answers, "id": str(self._uses)}
        rules = [r for r in self._rules.get(tool, []) if (r["args"], r["exact"]) != (rule["args"], exact)]
        rules.append(rule)
        rules.sort(key=lambda r: (-len(r["args"]), not r["exact"]))
        self._rules[tool] = rules
        self._write_rules(tool)

    def network_device(self, name: str, address: str | None = None, mac: str | None = None) -> None:
        """Gives the router a network device that the kernel knows, up, with an address like "192.168.0.1/24". Skips the
        test where the machine gives a sandbox no network of its own."""
        if not sandbox.has_own_network():
            pytest.skip("this machine gives a sandbox no network of its own")
        self.root.add_device(name, mac=mac, address=address)

    def neighbour(self, address: str, mac: str, device: str = "br-lan", state: str = "permanent") -> None:
        """A row of /proc/net/arp, of a device made with network_device()."""
        self.root.add_neighbour(address, mac, device, state)

    def record(self, *tools: str) -> None:
        """Keeps the calls of real tools (rm, cp, mv, tar, ...) too; they still do their work."""
        for tool in tools:
            real = sandbox.lent_tools().get(tool)
            assert real is not None, f"the router has no {tool}"
            self.root.stand_in(tool)
            self.root.link(f"/router/tools/{tool}", real)

    def _write_rules(self, tool: str) -> None:
        self.root.answers(tool, self._rules.get(tool, []) + tools.FAKE_JOSE.get(tool, []))

    def full_disk(self, path: str, files: dict[str, str]) -> None:
        """Puts a file system at `path` that holds these files, small ones, and is full. read() looks below it,
        read_running() into it."""
        self.root.full_disk(path, files)

    # Ask.

    def start(self) -> None:
        """Starts the program. The first request does it, too."""
        if self._process is not None:
            return
        environment = {**SANITIZER_OPTIONS, **self.environment, "FAST_TIME_RATE": str(self.time_rate), **self.install_program()}
        shims = {"FAST_TIME_LIB": not self.real_time, "UCI_CALLS_LIB": self.count_uci, "MEMORY_LIB": self.count_memory}
        loaded = [shim for variable, wanted in shims.items() if wanted and (shim := program(variable)) is not None] + self.preload
        for shim in loaded:
            self.root.mount(shim, f"/router/{shim.name}")
        if loaded:
            environment["LD_PRELOAD"] = ":".join(f"/router/{shim.name}" for shim in loaded)
        with open(self.directory / "stderr", "ab") as stderr:
            self._process = subprocess.Popen(self.root.command(self._program_command(environment), environment),
                                             stdin=self._listener, stdout=stderr, stderr=stderr)

    def install_program(self) -> dict[str, str]:
        """Puts the program in its place, and the libuci that is to be its own; gives the environment that it needs."""
        binary = program("ROUTER_API_BIN")
        if binary is None:
            raise RuntimeError("ROUTER_API_BIN is not set: run the tests through ctest or script/test")
        self.root.mount(binary, str(_PROGRAM))
        if (libuci := program("SYSTEM_UCI_LIB")) is None:
            return {}
        self.root.mount(libuci, f"/router/lib/{libuci.name}")
        return {"LD_LIBRARY_PATH": "/router/lib"}

    def _program_command(self, environment: dict[str, str]) -> list[str]:
        """What is preloaded is the program's alone: not an emulator's, and, of musl, not a shell's of this machine."""
        by = sandbox.emulator() or (["/usr/bin/env"] if is_of_musl() else [])
        if by and (preload := environment.pop("LD_PRELOAD", None)):
            by += ["-E"] * bool(sandbox.emulator()) + [f"LD_PRELOAD={preload}"]
        return [*by, str(_PROGRAM)]

    def run(self, *argv: str, input: str | bytes = "", environment: dict[str, str] | None = None) -> subprocess.CompletedProcess:
        """Runs a command of the router to its end: run("uci", "get", "network.lan.ipaddr").stdout. Output that is not
        UTF-8 comes as lone surrogates."""
        done = subprocess.run(self.root.command(list(argv), environment), input=sandbox.to_bytes(input),
                              capture_output=True, timeout=DEADLINE_S)
        texts = (stream.decode("utf-8", "surrogateescape") for stream in (done.stdout, done.stderr))
        return subprocess.CompletedProcess(done.args, done.returncode, *texts)

    def get(self, uri: str, **params: str) -> Answer:
        return self.fcgi({"REQUEST_METHOD": "GET", "REQUEST_URI": uri, **params})

    def post(self, uri: str, body=None, plain: bool = False, leave: bool = False, **params: str) -> Answer | None:
        """`body`: an object becomes JSON; a text or bytes are sent as they are; None sends no content. Encrypted, but
        for plain=True (the upload routes take plain bodies). With leave=True the client hangs up instead of waiting."""
        data = body_bytes(body)
        if data and not plain:
            data = encrypt(data)
        return self.fcgi({"REQUEST_METHOD": "POST", "REQUEST_URI": uri, "CONTENT_TYPE": "application/json",
                          "CONTENT_LENGTH": str(len(data)), **params}, data, leave)

    def fcgi(self, params: dict[str, str | bytes], body: bytes = b"", leave: bool = False) -> Answer | None:
        """A request with just these parameters and this body, whatever CONTENT_LENGTH says of it."""
        return self.raw(fastcgi.request(params, body), close=leave)

    def raw(self, data: bytes, close: bool = False) -> Answer | None:
        """Sends bytes made with kit.fastcgi and reads the answer; with close=True hangs up instead of reading."""
        self.start()
        with fastcgi.connect(str(self.directory / "fcgi.sock"), DEADLINE_S) as connection:
            try:
                connection.sendall(data)
            except (BrokenPipeError, ConnectionResetError):
                pass  # answered before all was read
            if close:
                return None
            self._wait_for_answer(connection)
            try:
                return Answer(fastcgi.read_response(connection))
            except socket.timeout:
                raise AssertionError(f"no answer within {DEADLINE_S:.0f} s\n{self.report()}") from None

    def _wait_for_answer(self, connection: socket.socket) -> None:
        """Until there is something of it or the program has ended: the listening socket is ours and takes connections for
        a program that is gone, which then end with it."""
        if not self.alive_process():
            return connection.shutdown(socket.SHUT_RDWR)
        program = os.pidfd_open(self._process.pid)
        try:
            ready, _, _ = select.select([connection, program], [], [], DEADLINE_S)
        finally:
            os.close(program)
        if ready == [program]:
            connection.shutdown(socket.SHUT_RDWR)

    # Look.

    def package(self, package: str) -> list[uci_text.Section]:
        """The sections of a package in their order; each has .type, .name (None: anonymous) and .options."""
        return uci_text.parse(self.read(f"/etc/config/{package}") or "")

    def option(self, address: str) -> str | list[str] | None:
        """option("network.lan.ipaddr"), option("dhcp.@host[0].mac"); option("network.lan") is the section's type."""
        package, section_name, *option = address.split(".", 2)
        section = uci_text.find(self.package(package), section_name)
        if section is None:
            return None
        return section.options.get(option[0]) if option else section.type

    def read_running(self, path: str) -> str | None:
        """A file's text as the running program sees it; None when there is none."""
        try:
            return Path(f"/proc/{self.pid()}/root{path}").read_text(errors="surrogateescape")
        except FileNotFoundError:
            return None

    def calls(self, tool: str | None = None) -> list[Call]:
        """The calls of one tool, or of all but jose, and the program's waits, in their order."""
        calls = []
        for line in (self.read("/router/calls.jsonl") or "").split("\n")[:-1]:
            entry = json.loads(line)
            if entry["tool"] == tool or (tool is None and entry["tool"] != "jose"):
                calls.append(Call(entry["tool"], tuple(entry["args"]), entry.get("stdin")))
        return calls

    def commands(self, tool: str | None = None) -> list[str]:
        """The calls as texts: ["sleep 2", "/etc/init.d/dnsmasq restart", ...]."""
        return [str(call) for call in self.calls(tool)]

    def forget_calls(self) -> None:
        self.write("/router/calls.jsonl", "")

    def uci_calls(self) -> list[str]:
        """The program's loads and commits of packages in their order: ["load network", "commit network", ...]. Only
        with count_uci = True before the first request; the `uci` commands that it runs do not count."""
        return (self.read("/router/uci_calls") or "").splitlines()

    def forget_uci_calls(self) -> None:
        self.write("/router/uci_calls", "")

    def memory(self) -> "tuple[int, int] | None":
        """The bytes that the program holds, and the most that it held since forget_memory(). Only with count_memory =
        True before the first request; None where no sanitizer counts them."""
        counts = self.root.path("/router/memory")
        return struct.unpack("qq", counts.read_bytes()) if counts.exists() else None

    def forget_memory(self) -> None:
        with open(self.root.path("/router/memory"), "r+b") as counts:
            held = counts.read(8)
            counts.write(held)

    def wait_for_call(self, tool: str, *args: str, times: int = 1) -> list[Call]:
        """Waits until the tool was called with these first arguments (`times` times); the calls up to that one."""
        end = time.monotonic() + DEADLINE_S
        while True:
            calls, seen = self.calls("jose") if tool == "jose" else self.calls(), 0
            for i, call in enumerate(calls):
                seen += call.tool == tool and call.args[:len(args)] == args
                if seen == times:
                    return calls[:i + 1]
            if time.monotonic() > end:
                raise AssertionError(f"{' '.join((tool, *args))} was not called\n{self.report()}")
            time.sleep(_POLL_S)

    def wait_until(self, condition, what: str = "the condition") -> None:
        """Waits until condition() is true: wait_until(lambda: router.exists("/tmp/x"))."""
        end = time.monotonic() + DEADLINE_S
        while not condition():
            if time.monotonic() > end:
                raise AssertionError(f"{what} did not come true\n{self.report()}")
            time.sleep(_POLL_S)

    def log(self) -> list[LogLine]:
        """What went to syslog so far."""
        return self._log.lines()

    def logged(self, text: str, priority: int | None = None, by: str | None = None) -> bool:
        """Whether a message holds `text` (at this priority: 3 error, 7 debug; under this function's name)."""
        return any(text in line.text and priority in (None, line.priority) and by in (None, line.function)
                   for line in self.log())

    def console(self) -> str:
        """What was written to /dev/console."""
        return self.read("/router/console") or ""

    def stderr(self) -> str:
        try:
            return (self.directory / "stderr").read_bytes().decode("utf-8", "surrogateescape")
        except FileNotFoundError:
            return ""

    def alive(self) -> bool:
        """The program runs and answers."""
        return self.alive_process() and self.fcgi({"REQUEST_METHOD": "PUT", "REQUEST_URI": "/"}).text == "Not Found"

    def alive_process(self) -> bool:
        """The program runs, whether it answers or not."""
        return self._process is not None and self._process.poll() is None

    def pid(self) -> int:
        """The program's process id on the machine (for /proc/<pid>/fd and the like)."""
        self.start()
        end = time.monotonic() + DEADLINE_S
        while time.monotonic() < end:
            pid = sandbox.find_program(self._process.pid, _PROGRAM.name)
            if pid is not None:
                return pid
            time.sleep(_POLL_S)
        raise AssertionError(f"the program does not run\n{self.report()}")

    def processes(self) -> list[int]:
        """The ids, on the machine, of the program and of the children that it forked and that still run."""
        return sandbox.find_programs(self._process.pid, _PROGRAM.name)

    def sanitizer_report(self) -> str:
        """What the sanitizers of the program, its children and the `uci` command have to say so far."""
        reports = sorted(self.root.path("/router").glob("sanitizer.*"))
        return "\n".join(report.read_text(errors="replace") for report in reports)

    def assert_nothing_ran(self) -> None:
        """No hostile text was parsed by a shell."""
        assert not self.exists(PWNED), f"a hostile text ran as a command\n{self.report()}"

    def assert_no_unknown_call(self) -> None:
        """Every tool was called as a test, or tools.py, says what it does."""
        unknown = self.read("/router/unknown-calls") or ""
        assert unknown == "", f"nobody said what these calls do (router.tool(), tests/kit/tools.py):\n{unknown}"

    def assert_calls(self, *commands: str, tool: str | None = None) -> None:
        """The calls, as texts, are just these."""
        assert self.commands(tool) == list(commands)

    def report(self) -> str:
        """What to show when something failed."""
        return "\n".join(["calls:", *(f"  {c}" for c in self.commands()), "log:", *(f"  {line.raw}" for line in self.log()),
                          "stderr:", self.stderr()[-4000:], self.sanitizer_report()[-8000:]])

    # End.

    def stop(self) -> int | None:
        """Ends the program as a web server does that goes away, and gives its exit status. Sanitizers report leaks here."""
        self._ended = True
        self._log.ended.set()
        if self._process is None:
            return None
        self._listener.shutdown(socket.SHUT_RDWR)
        try:
            return self._process.wait(_END_DEADLINE_S)
        except subprocess.TimeoutExpired:
            self.kill()
            raise AssertionError(f"the program did not end when its socket was closed\n{self.report()}") from None

    def kill(self) -> None:
        """Ends the root with everything in it."""
        self._ended = True
        if self._process is not None and self._process.poll() is None:
            with contextlib.suppress(ProcessLookupError):  # it ended meanwhile
                sandbox.kill_all(self._process.pid)
        if self._process is not None:
            self._process.wait()

    def restart(self) -> None:
        """Starts the program once more in the same root, after kill()."""
        self._process, self._ended = None, False
        self.start()

    def finish(self) -> None:
        """What every test ends with: the program lived, ends well, and no sanitizer has anything to say."""
        try:
            if self._process is not None and not self._ended:
                status = self._process.poll()
                assert status is None, f"the program ended with {status} during the test\n{self.report()}"
                status = self.stop()
                assert status == 0, f"the program ended with {status}\n{self.report()}"
            self.assert_no_unknown_call()
            assert self.sanitizer_report() == "", f"a sanitizer reports:\n{self.sanitizer_report()}"
        finally:
            self.discard()

    def discard(self) -> None:
        """Ends the root and removes it, whatever the program did in it."""
        self.kill()
        if self.directory.exists():
            self._listener.close()
            self._log.close()
            _remove(self.directory)


def _remove(directory: Path) -> None:
    """Removes a root. What was still running in it is ended by the kernel a moment after the program, and may have put
    a file into a folder that was being removed."""
    end = time.monotonic() + _END_DEADLINE_S
    while True:
        try:
            return shutil.rmtree(directory)
        except OSError as error:
            if error.errno not in (errno.ENOTEMPTY, errno.ENOENT) or time.monotonic() > end:
                raise
            time.sleep(_POLL_S)


def body_bytes(body) -> bytes:
    if body is None:
        return b""
    if isinstance(body, bytes):
        return body
    text = body if isinstance(body, str) else json.dumps(body, ensure_ascii=False)
    return text.encode("utf-8", "surrogateescape")


def _escaped(content: str | bytes) -> str:
    return content.decode("utf-8", "surrogateescape") if isinstance(content, bytes) else content
