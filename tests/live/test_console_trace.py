"""What the console is told of a router, beside the API: the tools it ran, the packages it changed, and nobody else."""

import json
import socket
import time
import urllib.error
import urllib.request

import history
from waits import wait_until

PASS_THROUGH = "/api/v1/security/passthrough"


def ask(router, path, method="GET", **headers):
    """Status and answer, which is text where it is no JSON."""
    request = urllib.request.Request(router.base + path, method=method, headers=headers)
    try:
        with urllib.request.urlopen(request) as response:
            return response.status, json.loads(response.read())
    except urllib.error.HTTPError as error:
        return error.code, error.read().decode()


def trace(router, since=None):
    status, answer = ask(router, "/console/trace" + ("" if since is None else f"?since={since}"))
    assert status == 200
    return answer


def commands(answer):
    return [" ".join(call["argv"]) for call in answer["calls"]]


def test_it_tells_the_tools_that_ran_and_the_packages_that_changed(live):
    router = live()
    moment = trace(router)
    assert moment.keys() == {"next"}

    assert router.post(PASS_THROUGH, {"pptpEnable": 1, "ipsecEnable": 0}).json["result"] == 0
    wait_until(lambda: any("/etc/init.d/firewall" in call for call in router.calls()), "the firewall")
    wait_until(lambda: "security reload." in (router.root.read("/var/log/messages.log") or ""), "the last line of the log")
    answer = trace(router, moment["next"])
    assert commands(answer)[0] == "jose jwe dec -i- -p"
    assert any("/etc/init.d/firewall" in command for command in commands(answer))
    assert all(0.0 <= time.time() - call["time"] < 3600.0 for call in answer["calls"])
    assert answer["packages"].keys() == {"security"}
    lines = answer["packages"]["security"].splitlines()
    assert lines[:2] == ["--- security", "+++ security"]
    assert [line for line in lines[2:] if line[0] in "+-" and line[1:]] == ["-\toption ipsec '1'", "+\toption ipsec '0'"]

    nothing = trace(router, answer["next"])
    assert nothing == {"next": answer["next"], "calls": [], "packages": {}, "log": []}
    assert trace(router, 0)["packages"] == answer["packages"]  # since the start
    again = trace(router, moment["next"])  # asked twice, answered twice
    assert (again["calls"], again["packages"]) == (answer["calls"], answer["packages"])


def test_a_package_that_comes_or_goes_and_text_that_is_not_utf_8(live):
    router = live()
    router.root.write("/etc/config/extra", b"config extra\n\toption a 'b\xff'\n")
    router.root.remove("/etc/config/mia")
    packages = trace(router, 0)["packages"]
    assert packages.keys() == {"extra", "mia"}
    assert packages["extra"].splitlines()[:2] == ["--- /dev/null", "+++ extra"]
    assert "b\ufffd" in packages["extra"]
    assert packages["mia"].splitlines()[1] == "+++ /dev/null"


def test_it_is_bounded(live):
    router = live()
    moment = trace(router)["next"]
    line = json.dumps({"tool": "logger", "args": ["y" * (history.MOST_WORD + 1)], "time": 1.0}) + "\n"
    with open(router.root.path("/router/calls.jsonl"), "a", encoding="utf-8") as calls:
        calls.write(line * (history.MOST_CALLS + 1))
        calls.write('{"tool": "half a li')
    answer = trace(router, moment)
    assert len(answer["calls"]) == history.MOST_CALLS and answer["dropped"]
    assert answer["calls"][-1]["argv"] == ["logger", "y" * history.MOST_WORD + "…"]

    router.root.write("/etc/config/extra", "x\n" * 5000)
    assert "more lines" in trace(router, moment)["packages"]["extra"]
    for number in range(history.MOST_MOMENTS + 1):  # then the first of them is forgotten, and the start is not
        router.root.write("/etc/config/extra", f"{number}\n")
        trace(router)
    assert trace(router, moment)["packages"] == trace(router, 0)["packages"]


def test_only_the_consoles_own_page_is_answered(live):
    router = live()
    port = router.port
    for host in (f"127.0.0.1:{port}", f"localhost:{port}", "localhost", f"[::1]:{port}", "LOCALHOST"):
        assert ask(router, "/console/trace", Host=host)[0] == 200, host
    for host in ("router.example", f"router.example:{port}", "127.0.0.1.example", "192.168.0.1", "127.0.0.2"):
        for path in ("/console/trace", "/console/router.json", "/console/openapi.json"):
            status, text = ask(router, path, Host=host)
            assert (status, "next" in text, "key" in text) == (403, False, False), (host, path)
    assert ask(router, "/console/trace", **{"Sec-Fetch-Site": "same-origin"})[0] == 200
    for site in ("cross-site", "same-site", "x"):
        assert ask(router, "/console/trace", **{"Sec-Fetch-Site": site})[0] == 403


def test_it_is_read_only_and_says_what_it_has(live):
    router = live()
    for method in ("POST", "PUT", "DELETE"):
        assert ask(router, "/console/trace", method, **{"Content-Length": "0"})[0] in (403, 405, 501), method
    for query in ("since=", "since=-1", "since=1&since=2", "since=9999999999", "x", "since=0x1"):
        assert ask(router, f"/console/trace?{query}")[0] == 400, query
    assert ask(router, "/console/other")[0] == 404
    about = ask(router, "/console/router.json")[1]
    assert (about["brand"], about["mode"], about["port"]) == ("orvane", "router", router.port)
    assert "/api/v1/lan" in ask(router, "/console/openapi.json")[1]["paths"]


def test_who_does_not_finish_asking_does_not_hold_the_others_up(live):
    router = live()
    connections = [socket.socket(socket.AF_UNIX) for _ in range(8)]
    for connection in connections:
        connection.connect(str(router.directory / "console.sock"))
        connection.sendall(b"GET /console/trace HTTP/1.1\r\nHost: ")
    assert trace(router).keys() == {"next"}
    for connection in connections:
        connection.close()


def test_it_tells_how_the_router_works_now(live):
    router = live(mode="controller", agents=0)

    def mode():
        return ask(router, "/console/router.json")[1]["mode"]

    assert mode() == "controller"
    router.root.set_options({"button_mesh.easymesh.role": "agent"})
    assert mode() == "agent"
    router.root.set_options({"button_mesh.easymesh.enable": "0"})
    assert mode() == "router"
    for other in ("ap", "re"):
        router.root.set_options({"system.@system[0].op_mode": other})
        assert mode() == other


def test_each_mode_is_told_as_it_was_started(live):
    for mode in ("router", "ap", "re", "controller", "agent"):
        assert live(mode=mode).mode() == mode
