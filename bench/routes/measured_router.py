"""Simulated routers to measure: the program of a build, the platform's tools as script/run has them, the real jose."""

import json
import os
import statistics
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tests"), str(ROOT / "simulator")]
sys.dont_write_bytecode = True

QUIET_S = 5.0  # what a background job of a request may take before the next request is asked


def use(build: Path):
    """The kit, on what `build` has built."""
    for line in (build / "tests/environment").read_text().splitlines():
        name, _, value = line.partition("=")
        os.environ[name] = value
    import kit  # noqa: PLC0415  the environment tells it what was built
    return kit


def about_machine() -> str:
    model = next((line.partition(":")[2].strip() for line in Path("/proc/cpuinfo").read_text().splitlines()
                  if line.startswith("model name")), "unknown processor")
    return (f"{time.strftime('%Y-%m-%d %H:%M UTC', time.gmtime())}, {model}, {len(os.sched_getaffinity(0))} processors, "
            f"Linux {os.uname().release}, load {os.getloadavg()[0]:.1f}")


def own_cpu(pid: int) -> float:
    """Seconds of processor time of a process: its threads, those that ended too, without its children."""
    return time.clock_gettime((~pid << 3) | 2)  # the kernel's name for the clock of another process


class Measured:
    """One simulated router. `program` is the binary; what it waits for passes at once, and so does a tool's sleep."""

    def __init__(self, program: Path, shims: list[Path] = (), count_uci: bool = False):
        import client  # noqa: PLC0415
        import kit  # noqa: PLC0415
        import simulator  # noqa: PLC0415
        self.client = client
        self.router = kit.Router()
        for tool in simulator.simulated_tools():
            if tool != "sleep":
                self.router.tool(tool, simulated=True)
        self.router.remove("/router/answers/jose.json")  # the kit's own jose
        self.router.root.setup.append("/router/simulated/tools/etc/init.d/network start")
        for module in simulator.scenarios():
            module.apply(self.router.root, simulator.options_parser().parse_args([]))
        self.router.config("portmapping", "\n")
        self.router.config("mia", "config basic\n\toption enable '1'\n")
        self.router.preload += shims
        self.router.count_uci = count_uci
        self._program = program
        self._floor = None

    def start(self) -> int:
        """The program's process id; the first call starts it."""
        os.environ["ROUTER_API_BIN"] = str(self._program)
        pid = self.router.pid()
        self.router.forget_uci_calls()  # those of the root's own start
        return pid

    def ask(self, method: str, uri: str, body: bytes = b""):
        """`body` as it is sent."""
        params = {"REQUEST_METHOD": method, "REQUEST_URI": uri}
        if method == "POST":
            params["CONTENT_LENGTH"] = str(len(body))
        return self.router.fcgi(params, body)

    def ask_quietly(self, *request) -> float:
        """Asks, waits until nothing of the request runs any more, and gives the milliseconds of the answer."""
        begin = time.perf_counter()
        self.ask(*request)
        taken = (time.perf_counter() - begin) * 1e3
        self.wait_until_quiet()
        return taken

    def wait_until_quiet(self) -> None:
        pid, end = self.router.pid(), time.monotonic() + QUIET_S
        while time.monotonic() < end:
            tasks = os.listdir(f"/proc/{pid}/task")
            if len(tasks) == 1 and not Path(f"/proc/{pid}/task/{pid}/children").read_text() and \
                    len(self.router.processes()) == 1:
                return
            time.sleep(0.005)

    def decrypted(self, answer) -> bytes:
        return self.client.decrypt(answer.body) if self.client.is_encrypted(answer.body) else answer.body

    def json_of(self, uri: str):
        return json.loads(self.decrypted(self.ask("GET", uri)))

    def start_floor(self, bare_children: Path, records: str) -> None:
        self.router.root.mount(bare_children, "/router/bare_children")
        self.router.write("/router/children.list", records)
        command = self.router.root.command(["/router/bare_children", "/router/children.list"])
        self._floor = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def floor(self) -> tuple[float, float, float]:
        """Milliseconds of the children of one request started bare: wall, their processor time, their parent's."""
        self._floor.stdin.write("\n")
        self._floor.stdin.flush()
        wall, theirs, parents = map(int, self._floor.stdout.readline().split())
        return wall / 1e6, theirs / 1e3, parents / 1e3

    def finish(self) -> None:
        if self._floor is not None:
            self._floor.communicate()
        self.router.finish()


def median(values: list[float]) -> float:
    return statistics.median(values) if values else 0.0
