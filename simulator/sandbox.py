#!/usr/bin/python3
"""The root of a router: a directory that bubblewrap mounts as / for the program, in the simulator and in tests alike.

The machine lends its libraries and a list of small tools, read-only. Everything that a router writes to is the root's
own: /etc, /tmp, /var, /sys, /usr/sbin and /router, where the stand-ins for the platform's tools keep their records.
"""

from __future__ import annotations

import functools
import json
import os
import shlex
import shutil
import signal
import subprocess
from pathlib import Path

import uci_text
from mesh_wiring import wiring
from variants import BRANDS, DEVICE_IDS, MODES

HERE = Path(__file__).resolve().parent
FACTORY = HERE / "factory"
TOOLS = HERE / "tools"


PATH = "/router/bin:/usr/bin:/bin:/usr/sbin:/sbin"

# What the machine lends: the small tools that a router's shell has. A tool that is not here is not on the router.
LENT_TOOLS = """
    sh dash sleep basename cat chmod chown cmp comm cp cut date dd df diff dirname du echo env expr false find flock fold
    grep egrep fgrep head hexdump hostname id install kill ln ls md5sum mkdir mkfifo mktemp mv nice nl nohup od paste
    printf pwd readlink realpath rm rmdir sed seq sha1sum sha256sum sort split stat stty sync tac tail tar tee test
    touch tr true truncate tty uname uniq wc xargs yes [ awk mawk gzip gunzip zcat base64 cksum timeout which pgrep
    python3
""".split()

# Tools whose every call is answered by a stand-in.
STAND_INS = """
    arp arp-scan arping brctl cfg80211tool conntrack crontab emt ethtool fact firstboot fw_printenv fw_setenv hostapd_cli
    ifconfig ifdown ifstatus ifup inetchk ip ip4ov6jp_info iptables ip6tables iw iwconfig iwlist iwpriv jose killall
    logger logread lua msg_tool nslookup ntpd opkg orvanehota passwd ping ping6 pidof poweroff ps reboot route service sleep
    sysctl sysupgrade tesmirhota traceroute ubus uci udhcpc wifi wlanconfig wpa_cli
""".split()

# Programs that are called by their path.
STAND_IN_PATHS = """
    /etc/getIpAddr.sh /etc/qvpppoe_chk_cmd.sh /etc/wireClient.sh
    /etc/init.d/boot /etc/init.d/cron /etc/init.d/dnsmasq /etc/init.d/firewall /etc/init.d/globalip
    /etc/init.d/miniupnpd /etc/init.d/network /etc/init.d/nwm_package /etc/init.d/odhcpd /etc/init.d/repacd
    /etc/init.d/sysntpd /etc/init.d/system /etc/init.d/wsplcd
    /opt/sense/bin/sense_init.sh
    /sbin/firstboot /sbin/reboot /sbin/sysupgrade /sbin/wifi
    /usr/sbin/IDM_from_qv/idm_start /usr/sbin/IDM_from_qv/idm_stop
    /usr/sbin/easymesh_agent.sh /usr/sbin/easymesh_close_for_agent.sh /usr/sbin/easymesh_close_for_controller.sh
    /usr/sbin/easymesh_controller.sh /usr/sbin/hotacron /usr/sbin/ip4ov6jp_info /usr/sbin/iptables_guest_isolate.sh
    /usr/sbin/ledtest /usr/sbin/orvanehota /usr/sbin/refreshPasswd.sh /usr/sbin/resetdbnum /usr/sbin/tesmirhota
    /usr/sbin/tesmirupg.sh /usr/sbin/testinfo /usr/sbin/wps_web.sh
""".split()

# In the simulated router, the machine's own stand behind the stand-ins.
REAL_TOOLS = ("crontab", "logger", "passwd", "sleep")

STAND_IN_SCRIPT = '#!/bin/sh\nSTAND_IN_FOR="$0" exec /router/stand-in "$@"\n'

LINKS = {"bin": "usr/bin", "sbin": "usr/sbin", "lib": "usr/lib", "lib64": "usr/lib64", "var/log": "../tmp/log",
         "var/run": "../tmp/run", "var/lock": "../tmp/lock"}
DIRECTORIES = """
    dev proc sys etc/config etc/init.d etc/lighttpd tmp/run tmp/lock tmp/log tmp/dnsmasq.d tmp/state var root usr/bin
    usr/sbin usr/lib usr/lib64 usr/share machine/usr router/bin router/tools router/answers router/uses
    router/record-stdin router/state router/lent router/hanging
""".split()

# Kept where the program runs as the machine's root; a router's program needs no more, and the machine fears the rest.
CAPABILITIES = """
    CAP_CHOWN CAP_DAC_OVERRIDE CAP_FOWNER CAP_FSETID CAP_KILL CAP_SETGID CAP_SETUID CAP_NET_ADMIN CAP_NET_RAW
    CAP_NET_BIND_SERVICE
""".split()


class SandboxError(Exception):
    """No root can be mounted on this machine; the message says what is missing."""


class Root:
    """One router's file system, below `directory`/fs on the machine."""

    def __init__(self, directory: os.PathLike | str, stand_in: os.PathLike | str | None = None):
        """An empty root; with `stand_in`, the program that stands for the platform's tools, they are in their places."""
        self.directory = Path(directory)
        self.fs = self.directory / "fs"
        self.setup: list[str] = []  # shell lines that run in the root before each command
        self._mounts: list[tuple[str, str, str]] = []
        for name in DIRECTORIES:
            os.makedirs(self.fs / name, exist_ok=True)
        for name, target in LINKS.items():
            os.symlink(target, self.fs / name)
        for name, target in lent_tools().items():
            os.symlink(target, self.fs / "usr/bin" / name)
        os.chmod(self.fs / "tmp", 0o1777)
        if stand_in is None:
            return
        self.mount(stand_in, "/router/stand-in")
        for name in STAND_INS:
            os.symlink("/router/stand-in", self.fs / "router/bin" / name)
        for name in STAND_IN_PATHS:
            self.stand_in(name)

    def prepare(self, brand: str, mode: str = "router", packages: bool = True) -> None:
        """Fills the root as the router leaves the factory; without `packages`, /etc/config stays empty."""
        self.copy_tree(FACTORY / "files", "/")
        self.write("/tmp/deviceid", DEVICE_IDS[brand] + "\n")
        if not packages:
            return
        self.copy_tree(FACTORY / "config", "/etc/config")
        self.copy_tree(FACTORY / brand / "config", "/etc/config")
        self.set_options({**BRANDS[brand], **MODES[mode], **wiring(brand, mode)})

    def set_options(self, options: dict[str, str | list[str] | None]) -> None:
        """Sets options of packages by address: {"dhcp.lan.ignore": "1", "wireless.ath13": "wifi-iface"}; None deletes."""
        changed: dict[str, list[uci_text.Section]] = {}
        for address, value in options.items():
            package = address.split(".", 1)[0]
            if package not in changed:
                changed[package] = uci_text.parse(self.read(f"/etc/config/{package}") or "")
            uci_text.assign(changed[package], address, value)
        for package, sections in changed.items():
            self.write(f"/etc/config/{package}", uci_text.render(sections))

    # Files. A path is the router's own and absolute.

    def path(self, path: str) -> Path:
        """Where the machine keeps the router's `path`."""
        return self.fs / path.lstrip("/")

    def write(self, path: str, content: str | bytes, mode: int = 0o644) -> None:
        place = self.path(path)
        place.parent.mkdir(parents=True, exist_ok=True)
        place.write_bytes(to_bytes(content))
        place.chmod(mode)

    def read(self, path: str) -> str | None:
        try:
            return self.path(path).read_bytes().decode("utf-8", "surrogateescape")
        except (FileNotFoundError, NotADirectoryError):
            return None

    def exists(self, path: str) -> bool:
        return os.path.lexists(self.path(path))

    def remove(self, path: str) -> None:
        place = self.path(path)
        if place.is_dir() and not place.is_symlink():
            shutil.rmtree(place)
        elif self.exists(path):
            place.unlink()

    def copy_tree(self, source: Path, path: str) -> None:
        """Copies the files below `source` over those below `path`, with their modes and times."""
        target = str(self.path(path))
        os.makedirs(target, exist_ok=True)
        for name, content, status in _factory_tree(source) if source.is_relative_to(FACTORY) else _tree(source):
            place = f"{target}/{name}"
            if content is None:
                os.makedirs(place, exist_ok=True)
            elif isinstance(content, str):
                os.symlink(content, place)
            else:
                with open(place, "wb", buffering=0) as file:
                    file.write(content)
                os.chmod(place, status.st_mode)
                os.utime(place, ns=(status.st_atime_ns, status.st_mtime_ns))

    # Tools. A name is a tool's name ("ifconfig") or the path it is called by ("/etc/init.d/dnsmasq").

    def stand_in(self, name: str) -> None:
        """Puts the stand-in in the place of a tool."""
        place = self._place_of(name)
        place.parent.mkdir(parents=True, exist_ok=True)
        if os.path.lexists(place):
            place.unlink()
        if name.startswith("/"):
            place.write_text(STAND_IN_SCRIPT)  # some are run as "sh /usr/sbin/..."
            place.chmod(0o755)
        else:
            os.symlink("/router/stand-in", place)

    def take_away(self, name: str) -> None:
        """Leaves the router without a tool: calling it fails as a command that is not found."""
        for place in {self._place_of(name), self.fs / "usr/bin" / name.lstrip("/")}:
            if os.path.lexists(place):
                place.unlink()

    def real_tool(self, name: str, program: os.PathLike | str) -> None:
        """Lets the stand-in become `program`, a file of the machine, once it has kept the call."""
        self.stand_in(name)
        self.mount(program, "/router/tools/" + name.lstrip("/"))

    def simulate(self, name: str) -> None:
        """Lets a tool answer as the simulated router's does: by simulator/tools/<name>, or a real one of the machine."""
        self.stand_in(name)
        if not self.exists("/router/simulated"):
            for folder in ("tools", "lib"):
                self.mount(HERE / folder, f"/router/simulated/{folder}")
            for tool, program in machine_programs("ip", "jose", "ps").items():
                self.link(f"/router/lent/{tool}", program)
            self.path("/router/simulated").mkdir()
        if name in REAL_TOOLS:
            self.link(f"/router/tools/{name}", machine_programs(name)[name])
        elif (TOOLS / name.lstrip("/")).exists():
            self.link(f"/router/tools/{name.lstrip('/')}", f"/router/simulated/tools/{name.lstrip('/')}")
        else:
            raise SandboxError(f"the simulated router has no {name}: {TOOLS / name.lstrip('/')} would be one")

    def add_device(self, name: str, kind: str = "bridge", mac: str | None = None, address: str | None = None) -> None:
        """Gives the root's own network a device, up, with an address such as "192.168.0.1/24"."""
        if not has_own_network():
            raise SandboxError("this machine gives the root no network of its own")
        ip = machine_programs("ip").get("ip")
        if ip is None:
            raise SandboxError("ip is missing: script/setup installs it (package iproute2)")
        lower = shlex.join(["address", mac]) if mac else ""
        self.setup.append(f"{ip} link add {shlex.quote(name)} {lower} type {shlex.quote(kind)}")
        if address:
            self.setup.append(shlex.join([ip, "addr", "add", address, "dev", name]))
        self.setup.append(shlex.join([ip, "link", "set", name, "up"]))

    def add_neighbour(self, address: str, mac: str, device: str = "br-lan", state: str = "permanent") -> None:
        """A row of /proc/net/arp; the device must have been added. State "none" makes an incomplete one."""
        ip = machine_programs("ip")["ip"]
        self.setup.append(shlex.join([ip, "neigh", "add", address, "lladdr", mac, "nud", state, "dev", device]))

    def link(self, path: str, target: str) -> None:
        place = self.path(path)
        place.parent.mkdir(parents=True, exist_ok=True)
        if os.path.lexists(place):
            place.unlink()
        os.symlink(target, place)

    def answers(self, name: str, rules: list[dict]) -> None:
        """What the stand-in answers; stand_in.cpp says what a rule is."""
        text = json.dumps({"rules": rules}, ensure_ascii=False)
        self.write("/router/answers/" + name.lstrip("/") + ".json", text)

    def unless_told(self, tools: dict[str, dict]) -> None:
        """The same of many tools by their names, where neither a rule of answers() nor a real or simulated tool speaks."""
        self.write("/router/unless-told.json", json.dumps(tools, ensure_ascii=False))

    def record_stdin(self, name: str) -> None:
        self.write("/router/record-stdin/" + name.lstrip("/"), "")

    def _place_of(self, name: str) -> Path:
        # /bin, /sbin and /lib are links of the router's; the machine must not follow its own.
        if not name.startswith("/"):
            return self.fs / "router/bin" / name
        for link in ("/bin/", "/sbin/"):
            if name.startswith(link):
                name = "/usr" + name
        return self.path(name)

    # The machine's side of the mount.

    def mount(self, source: os.PathLike | str, path: str, writable: bool = False) -> None:
        """Shows a file or directory of the machine at the router's `path`; said again, it is still one mount."""
        mount = ("--bind" if writable else "--ro-bind", os.path.abspath(source), path)
        if mount not in self._mounts:
            self._mounts.append(mount)

    def full_disk(self, path: str, files: dict[str, str]) -> None:
        """A file system at the router's `path` with these files, of less than a page each, and room for nothing more.
        The machine does not see it under path()."""
        self._mounts.append(("--size", str(len(files) * os.sysconf("SC_PAGE_SIZE")), "--tmpfs", path))
        for name, content in files.items():
            place = shlex.quote(f"{path}/{name}")
            self.setup.append(f"mkdir -p $(dirname {place}); printf %s {shlex.quote(content)} > {place}")

    def command(self, argv: list[str], environment: dict[str, str] | None = None,
                setup: bool = True) -> list[str]:
        """The command line that runs `argv` in this root. It ends with its parent, and everything in it with it.

        `setup`: devices and neighbours first."""
        if self.setup and setup:
            argv = ["/bin/sh", "-c", "\n".join([*self.setup, 'exec "$@"']), "sh", *argv]
        return [
            "bwrap", *isolation(), "--die-with-parent", "--bind", str(self.fs), "/", *_machine_mounts(),
            "--proc", "/proc", "--dev", "/dev", *(word for mount in self._mounts for word in mount),
            "--chdir", "/", "--clearenv", "--setenv", "PATH", PATH, "--setenv", "HOME", "/root",
            *(word for name, value in (environment or {}).items() for word in ("--setenv", name, value)),
            "--", *argv,
        ]


def to_bytes(content: str | bytes) -> bytes:
    """A text as the router keeps it; lone surrogates stand for the bytes that are not UTF-8."""
    return content if isinstance(content, bytes) else content.encode("utf-8", "surrogateescape")


def _tree(source: Path) -> list[tuple[str, bytes | str | None, os.stat_result]]:
    """All that stands below a folder, folders first: name, content (None of a folder, of a link its target), status."""
    entries = []
    for folder, folders, files in os.walk(source):
        for name in (*folders, *files):
            place = os.path.join(folder, name)
            content = os.readlink(place) if os.path.islink(place) else None if name in folders else Path(place).read_bytes()
            entries.append((os.path.relpath(place, source), content, os.lstat(place)))
    return entries


# What the router leaves the factory with is read once: tests make it by the thousand.
_factory_tree = functools.cache(_tree)


def _machine_mounts() -> list[str]:
    mounts = ["--ro-bind", "/usr", "/machine/usr", "--ro-bind", "/usr/lib", "/usr/lib", "--ro-bind", "/usr/share", "/usr/share"]
    if os.path.isdir("/usr/lib64"):
        mounts += ["--ro-bind", "/usr/lib64", "/usr/lib64"]
    return mounts


def machine_programs(*names: str) -> dict[str, str]:
    """Where the root sees programs of the machine; those that the machine lacks are left out."""
    found = {name: shutil.which(name, path="/usr/bin:/bin:/usr/sbin:/sbin") for name in names}
    return {name: "/machine" + os.path.realpath(program) for name, program in found.items() if program}


def emulator() -> list[str]:
    """What runs the program in a root in place of the processor: ROUTER_API_EMULATOR names the machine's qemu, with its
    options. Else nothing."""
    words = shlex.split(os.environ.get("ROUTER_API_EMULATOR", ""))
    return ["/machine" + os.path.realpath(words[0]), *words[1:]] if words else []


@functools.cache
def lent_tools() -> dict[str, str]:
    """Name and target of the links in the router's /usr/bin."""
    return machine_programs(*LENT_TOOLS)


# Best first: what a kernel or a container does not allow is left out.
_ISOLATIONS = (
    ["--unshare-pid", "--unshare-ipc", "--unshare-uts", "--unshare-net"],
    ["--unshare-pid", "--unshare-ipc", "--unshare-uts"],
)


@functools.cache
def isolation() -> tuple[str, ...]:
    """bubblewrap's options for the namespaces that this machine allows. Raises SandboxError when it allows none."""
    if shutil.which("bwrap") is None:
        raise SandboxError("bubblewrap is missing: script/setup installs it (package bubblewrap)")
    identity = ["--cap-drop", "ALL"] if os.geteuid() == 0 else ["--unshare-user", "--uid", "0", "--gid", "0"]
    identity += [word for name in CAPABILITIES for word in ("--cap-add", name)]
    reason = ""
    for namespaces in _ISOLATIONS:
        options = tuple(identity + namespaces)
        trial = subprocess.run(["bwrap", *options, "--ro-bind", "/", "/", "--proc", "/proc", "--dev", "/dev", "true"],
                               stdin=subprocess.DEVNULL, capture_output=True, text=True)
        if trial.returncode == 0:
            return options
        reason = trial.stderr.strip()
    advice = ("run it in a container that may mount (privileged, or with CAP_SYS_ADMIN)" if os.geteuid() == 0 else
              "allow user namespaces (sysctl kernel.unprivileged_userns_clone=1, or an AppArmor rule for bwrap), or run it as root")
    raise SandboxError(f"bubblewrap cannot mount a router's root here: {reason}\nTo help it: {advice}")


def has_own_network() -> bool:
    return "--unshare-net" in isolation()


def kill_all(bwrap_pid: int) -> None:
    """Kills everything in the root of a bubblewrap process, which then ends after the last of them.

    Killed itself, it would end first, and what runs in its root would serve a moment longer."""
    children = _children(bwrap_pid)
    os.kill(children[0] if children else bwrap_pid, signal.SIGKILL)  # the root's process 1: the kernel ends all others


def find_program(bwrap_pid: int, name: str) -> int | None:
    """The process id, on the machine, of a program that runs below a bubblewrap process."""
    return next(iter(find_programs(bwrap_pid, name)), None)


def find_programs(bwrap_pid: int, name: str) -> list[int]:
    """All processes that run this program below a bubblewrap process: first the one it started, then its daemons."""
    return [pid for pid in _descendants(bwrap_pid) if _runs(pid, name)]


def _runs(pid: int, name: str) -> bool:
    """By the program's name in its root; under an emulator, by what that was told to run. A build that replaced the file
    meanwhile changes nothing."""
    try:
        if os.path.basename(os.readlink(f"/proc/{pid}/exe")).removesuffix(" (deleted)") == name:
            return True
        words = Path(f"/proc/{pid}/cmdline").read_bytes().decode(errors="replace").rstrip("\0").split("\0")
    except OSError:
        return False
    return words[:1] == emulator()[:1] and os.path.basename(words[-1]) == name


def _children(pid: int) -> list[int]:
    try:
        tasks = os.listdir(f"/proc/{pid}/task")
    except OSError:
        return []  # it has ended
    children = []
    for task in tasks:
        try:
            children += [int(child) for child in Path(f"/proc/{pid}/task/{task}/children").read_text().split()]
        except OSError:
            continue  # this thread has
    return children


def _descendants(pid: int) -> list[int]:
    children = _children(pid)
    return children + [grandchild for child in children for grandchild in _descendants(child)]
