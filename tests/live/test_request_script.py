"""script/request beside asking: what the router did, why it refused, and completing routes."""

import json
import os
import pty
import re
import shutil
import subprocess
from pathlib import Path

import pytest

SCRIPT = Path(__file__).resolve().parents[2] / "script" / "request"
NTP = "/api/v1/ntp"
PASS_THROUGH = "/api/v1/security/passthrough"


def request(*arguments):
    return subprocess.run([SCRIPT, *map(str, arguments)], capture_output=True, text=True, timeout=300, stdin=subprocess.DEVNULL)


def test_a_trace_tells_the_tools_and_the_packages_once_the_router_is_quiet(live):
    port = live().port
    done = request("--port", port, "--trace", "POST", PASS_THROUGH, '{"pptpEnable": 1, "ipsecEnable": 0}')
    assert done.returncode == 0 and json.loads(done.stdout)["result"] == 0
    told = done.stderr.splitlines()
    assert told[0] == "tools:" and told[1] == "  jose jwe dec -i- -p"
    assert "  /etc/init.d/firewall restart" in told
    packages = told[told.index("packages:") + 1:]
    assert packages[:2] == ["--- security", "+++ security"] and "+\toption ipsec '0'" in packages


def test_a_trace_of_a_look_tells_that_no_package_changed(live):
    done = request("--port", live().port, "--trace", "GET", NTP)
    assert done.returncode == 0 and json.loads(done.stdout)["result"] == 0
    assert done.stderr.splitlines()[-1] == "packages: none changed"


def test_a_refused_request_shows_the_member_that_the_log_names(live):
    done = request("--port", live().port, "POST", "/api/v1/lan", '{"lanIpv4Address": "192.168.5.1"}')
    assert (done.returncode, json.loads(done.stdout)) == (1, {"result": 1})
    assert "lanIpv4SubMask is not found." in done.stderr
    assert all(re.match(r"script/request: the log says: \[\w+\] ", line) for line in done.stderr.splitlines())


def test_a_router_that_does_not_tell_is_asked_all_the_same_but_not_traced(live):
    port = live(web_server="nginx").port  # without the console
    assert request("--port", port, "POST", PASS_THROUGH, '{"pptpEnable": 1, "ipsecEnable": 1}').returncode == 0
    done = request("--port", port, "--trace", "GET", NTP)
    assert done.returncode == 2 and "only a simulated router tells" in done.stderr


completions = pytest.mark.parametrize("words, completed", [
    (["PO"], ["POST"]),
    (["POST", "/api/v1/la"], ["/api/v1/lan"]),
    (["GET", "/api/v1/reb"], []),
    (["--trace", "POST", "/api/v1/reb"], ["/api/v1/reboot"]),
    (["--tr"], ["--trace"]),
])


@completions
def test_bash_completes_methods_options_and_the_methods_routes(words, completed):
    line = " ".join(["script/request", *words])
    done = subprocess.run(["bash", "--norc", "-c", f'eval "$({SCRIPT} --completion bash)"\nCOMP_WORDS=({line}); '
                           f'COMP_CWORD={len(words)}; _router_api_request; printf "%s\\n" "${{COMPREPLY[@]}}"'],
                          capture_output=True, text=True, env={**os.environ, "LC_ALL": "C"})
    assert (done.returncode, done.stderr) == (0, "")
    assert done.stdout.split() == completed


# A key tells the line as it stands, and ends the shell.
ZSHRC = f"""
PS1= PS2= PROMPT_EOL_MARK=
autoload -Uz compinit && compinit -D -u
eval "$({SCRIPT} --completion zsh)"
told() {{ print -r -- "<$BUFFER>"; exit }}
zle -N told && bindkey '^T' told
"""


def zsh_line(folder: Path, typed: str) -> str:
    """What stands in the line of a zsh in a terminal after `typed` and the tab key."""
    (folder / ".zshrc").write_text(ZSHRC)
    child, terminal = pty.fork()
    if child == 0:
        environment = {**os.environ, "ZDOTDIR": str(folder), "TERM": "dumb", "LC_ALL": "C"}
        os.execvpe("timeout", ["timeout", "--foreground", "120", "zsh", "-d", "-i"], environment)
    os.write(terminal, f"{typed}\t\x14".encode())
    shown = b""
    try:
        while more := os.read(terminal, 4096):
            shown += more
    except OSError:
        pass  # the shell closed its side
    os.close(terminal)
    assert os.waitpid(child, 0)[1] == 0
    return re.findall(r"<(.*)>", shown.decode())[-1]


@pytest.mark.skipif(shutil.which("zsh") is None and os.environ.get("CONSOLE_TESTS") != "needed",
                    reason="no zsh: script/setup --console installs it")
@completions
def test_zsh_completes_the_same_in_a_terminal(words, completed, tmp_path):
    whole = ["script/request", *words[:-1], *(completed or words[-1:])]
    assert zsh_line(tmp_path, " ".join(["script/request", *words])).rstrip() == " ".join(whole)


def test_zsh_gets_the_same_routes():
    script = request("--completion", "zsh").stdout
    assert "compdef _router_api_request" in script
    assert set(re.findall(r"/api/v1/[\w/-]+", script)) == set(re.findall(r"/api/v1/[\w/-]+", request("--completion", "bash").stdout))
