"""What one request does, all of it, asked of a router that is as before after every request."""

import json
import os
from dataclasses import dataclass
from pathlib import Path

import kit
import repeater_setup
from process_state import below
from routes import test_firmware as firmware
from wan_setup import addresses

API = "/api/v1/"


@dataclass(frozen=True)
class Seen:
    """What a request did: all that a client, the platform and the next request can tell.

    The calls stand in alphabetical order: what is started in the background comes when it comes."""

    answer: str
    files: dict
    calls: list

    def __str__(self):
        return f"{self.answer} {self.calls}"


class Bench:
    """A router that is as before after every request."""

    def __init__(self, route, given=None):
        """`given`: a route and a document that it is given before it is asked."""
        self.uri = API + route
        self.router = kit.Router(brand="tesmir") if route == "fsecure_sense" else kit.Router()
        self.router.write("/sys/kernel/debug/gpio", " gpio38  in 0 low 8mA\n")
        self.router.write("/sys/devices/platform/soc@0/soc@0:leds/leds/led_router/brightness", "as it was\n")
        addresses(self.router)
        firmware.downloads(self.router)
        if route == "wireless/mac-filter":
            self.router.tool("uci")  # fifty commands, which show what would be stored
        self.router.start()
        assert self.router.alive()
        self.idle = _activity(self.router)
        if given is not None:
            where, document = given
            assert self.router.post(API + where, document).json["result"] == 0
            self._settle()
        self.before = _files(self.router)
        self.router.forget_calls()

    def ask(self, body):
        answer = self.router.post(self.uri, body)
        self._settle()
        seen = Seen(answer.text, _changes(self.before, _files(self.router)), sorted(self.router.commands()))
        for path in seen.files:
            if path in self.before:
                self.router.write(path, self.before[path])
            else:
                self.router.remove(path)
        self.router.forget_calls()
        return seen

    def _settle(self):
        """Waits until nothing goes on behind the answer."""
        assert self.router.alive()  # what the program itself still does is done before the next request
        self.router.wait_until(self._is_idle, "the end of all background work")

    def _is_idle(self):
        try:
            return _activity(self.router) == self.idle
        except OSError:
            return False  # a process ended meanwhile

    def finish(self):
        self.router.finish()


class LastingBench:
    """For a route whose work outlives the request: after a request that was accepted the router is another one.

    Of such a request the commands are looked at, which show what would be stored, and no files: the work goes on."""

    # What tells that the work is under way.
    SIGNS = {"reboot": ("reboot",), "repeater/connect": ("/sbin/wifi", "up")}

    def __init__(self, route, given=None):
        assert given is None
        self.uri, self.sign = API + route, self.SIGNS[route]
        self.router = None

    def ask(self, body):
        if self.router is None:
            self.router = repeater_setup.prepare(kit.Router(factory=False))
            self.before = _files(self.router)
        answer = self.router.post(self.uri, body)
        assert self.router.alive()
        accepted = json.loads(answer.text)["result"] == 0
        calls = self.router.wait_for_call(*self.sign) if accepted else self.router.calls()
        commands = sorted(str(call) for call in calls if call.tool not in ("wait", "sleep"))
        files = {} if accepted else _changes(self.before, _files(self.router))
        seen = Seen(answer.text, files, commands)
        if accepted or seen.files or calls:
            self.finish()
        return seen

    def finish(self):
        if self.router is not None:
            router, self.router = self.router, None
            router.finish()


def _files(router):
    found = {}
    for top in ("etc/config", "etc", "tmp", "sys"):
        for folder, _, names in os.walk(router.root.path(top)):
            for name in names:
                place = Path(folder, name)
                if place.is_file() and not place.is_symlink():
                    found["/" + str(place.relative_to(router.root.fs))] = place.read_bytes()
    return found


def _changes(before, after):
    return {path: after.get(path) for path in before.keys() | after.keys() if before.get(path) != after.get(path)}


def _activity(router):
    """The processes below this one, and the program's threads. OSError where one ends meanwhile."""
    return below(os.getpid()), len(os.listdir(f"/proc/{router.pid()}/task"))


def bench_of(route, given=None):
    return (LastingBench if route in LastingBench.SIGNS else Bench)(route, given)
