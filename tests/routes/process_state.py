"""What the program and its children hold, looked at from outside through /proc."""

import os
import re
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Resources:
    descriptors: tuple[str, ...]  # what each stands for, without the numbers of sockets and pipes
    threads: int
    children: tuple[int, ...]  # zombies among them


def descriptors(pid: int) -> list[str]:
    """What the descriptors of a process are open on."""
    links = []
    for fd in os.listdir(f"/proc/{pid}/fd"):
        try:
            links.append(os.readlink(f"/proc/{pid}/fd/{fd}"))
        except FileNotFoundError:
            continue  # closed meanwhile
    return links


def sockets(pid: int) -> list[str]:
    return [link for link in descriptors(pid) if link.startswith("socket:")]


def sockets_that_children_keep(pid: int) -> list[str]:
    """The sockets that are not close-on-exec."""
    kept = []
    for entry in Path(f"/proc/{pid}/fd").iterdir():
        try:
            link = os.readlink(entry)
            flags = re.search(r"^flags:\s*(\d+)$", Path(f"/proc/{pid}/fdinfo/{entry.name}").read_text(), re.M)[1]
        except FileNotFoundError:
            continue  # closed meanwhile
        if link.startswith("socket:") and not int(flags, 8) & os.O_CLOEXEC:
            kept.append(link)
    return kept


def children(pid: int) -> list[int]:
    found = []
    for task in Path(f"/proc/{pid}/task").glob("*/children"):
        try:
            found += [int(child) for child in task.read_text().split()]
        except OSError:
            continue  # ended meanwhile
    return found


def resources(pid: int) -> Resources:
    kinds = sorted(link.split("[")[0] for link in descriptors(pid))
    return Resources(tuple(kinds), len(os.listdir(f"/proc/{pid}/task")), tuple(children(pid)))


def resident_kib(pid: int) -> int:
    pages = int(Path(f"/proc/{pid}/statm").read_text().split()[1])
    return pages * os.sysconf("SC_PAGE_SIZE") // 1024


def below(pid: int) -> set[int]:
    """A process's children, their children and so on."""
    found = children(pid)
    return set(found).union(*(below(child) for child in found))


def daemons(router) -> list[int]:
    """The copies of the program that outlive a request."""
    program = router.pid()
    exe = os.readlink(f"/proc/{program}/exe")
    return [pid for pid in below(os.getpid()) if pid != program and _exe(pid) == exe]


def _exe(pid: int) -> str | None:
    try:
        return os.readlink(f"/proc/{pid}/exe")
    except OSError:
        return None
