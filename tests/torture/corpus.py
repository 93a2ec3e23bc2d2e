"""What hostile clients put in the place of a value: JSON fragments, with the text that each stands for.

Texts begin with MARK, so that whatever became of one is found again wherever it went. CANARY is a tool of the routers under
torture that nothing calls, and the name of files that nothing makes: text that was parsed by anybody calls or makes it.
"""

from __future__ import annotations

import functools
import json
from dataclasses import dataclass

MARK = "zq7x"
CANARY = "pwned"


@dataclass(frozen=True)
class Payload:
    name: str
    json: bytes  # as it stands in a document
    text: str | None = None  # what it says when it is a text; lone surrogates stand for bytes that are not UTF-8

    @property
    def raw(self) -> bytes:
        """As a body, a URI or a header of its own."""
        return self.json if self.text is None else self.text.encode("utf-8", "surrogateescape")


def _escaped(text: str) -> bytes:
    """Every character as \\uXXXX: harmless to who looks for characters, the same to who reads JSON."""
    units = text.encode("utf-16-be", "surrogatepass")
    return b'"' + b"".join(b"\\u%04x" % int.from_bytes(units[i:i + 2], "big") for i in range(0, len(units), 2)) + b'"'


def _plain(text: str) -> bytes:
    """As few escapes as JSON allows; bytes that are not UTF-8 stand raw."""
    return json.dumps(text, ensure_ascii=False).encode("utf-8", "surrogateescape")


def _shell() -> list[str]:
    """A command behind each way out of a quoting context."""
    command = f"{CANARY} /tmp/{CANARY}; touch /tmp/{CANARY}"
    ways_out = ["", "'", '"', "`", "\\'", '\\"', "'\\''", "\"'", "'\"", "\\\\", ")", "}", "' ", '" ', "%27", "\\x27"]
    joints = [";", "|", "||", "&", "&&", "\n", "\r\n", ";;"]
    texts = [f"{out}{joint}{command}{joint}{out}" for out in ways_out for joint in joints]
    texts += [form.format(command) for form in (
        "$({})", "`{}`", "'$({})'", '"$({})"', '"`{}`"', "'`{}`'", "${{IFS}};{}", "$'\\n'{}", "<({})", ">({})", "$(({}))",
        "${{x:-$({})}}", "\\$({})", "\\`{}\\`", "'\"$({})\"'", "\t$({})\t", "a[$({})]", "() {{ :; }}; {}", "eval {}",
        "\\;{}", "{{ {}; }}", "! {}", "#\n{}", "$({})#", "\"; {} #", "'; {} #", "\n{}\n", "\r{}\r", "\x0b{}", "\x0c{}")]
    texts += [f"> /tmp/{CANARY}", f">> /tmp/{CANARY}", f"< /tmp/{CANARY}", f"2>&1 > /tmp/{CANARY}", f"| tee /tmp/{CANARY}",
              f"<<< $({CANARY})", f"<<X\n$({CANARY})\nX", "$HOME ${IFS} $0 $$ $@ $* $? $!", "~root/x ~+ ~-", "* ? [a-z] {a,b}",
              f"-rf /tmp -- --{CANARY}", "--help", "-", "--", "-c", f"-exec {CANARY} ;", "@/etc/passwd", "one two  three",
              "\\", "\\\\", "'", '"', "`", "''", '""', "'''", "\\n\\t\\0\\x41\\101", "!!", "!x", "&", ";", "|", "#", "# x"]
    return texts


def _formats() -> list[str]:
    return ["%s", "%n", "%s%s%s%s%s%s%s%s", "%n%n%n%n", "%x %p %lx", "%99999d", "%.99999f", "%*d", "%-99999s", "%1$s", "%1$n",
            "%99$s", "%hhn", "%c%c", "%%", "%", "%m", "100%", "%5$*7$s", "{0}", "{}", "${x}", "%{x}", "#{x}", "\\u0025s"]


def _paths() -> list[str]:
    up = "../" * 8
    return [f"{up}etc/config/{CANARY}", f"{up}tmp/{CANARY}", f"/{up}etc/passwd", f"/etc/config/{CANARY}", "/etc/shadow", "..",
            ".", "/", "//", "../.uci/network", f"..\\..\\{CANARY}", f"....//....//tmp/{CANARY}", f"%2e%2e%2ftmp%2f{CANARY}",
            f"..%c0%af..%c0%aftmp/{CANARY}", f"/tmp/{CANARY}\0.txt", f"file:///tmp/{CANARY}", "/proc/self/mem", "/dev/zero",
            "/proc/self/fd/0", f"/tmp/./{CANARY}", f"a/../../tmp/{CANARY}", "~/.ssh", "CON", "/dev/stdin", f"./{CANARY}"]


def _uci() -> list[str]:
    return ["network.lan.ipaddr=6.6.6.6", ".ipaddr=6.6.6.6", f"={CANARY}", f"x=y\nconfig {CANARY} '{CANARY}'",
            f"'\nconfig {CANARY} '{CANARY}'\n\toption {CANARY} 'x", f"'\n\toption {CANARY} 'x", f"'\n\tlist {CANARY} 'x",
            f"' '{CANARY}", f"'; option {CANARY} '", f"\\'\n\toption {CANARY} \\'x", f"'\"'\"'\n\toption {CANARY} 'x",
            f'"\n\toption {CANARY} "x', f"\n\npackage {CANARY}\n", "@host[0]", "@host[-1].ip", "@system[99999999999]", "@[0]",
            "@host[", "cfg012345", "lan.ipaddr", "network.@interface[-1]=interface", "# comment", "-network.lan", "+x", "^x",
            "|network", "a.b.c.d.e", "network..ipaddr", f"wireless.{CANARY}=wifi-iface", "\\\n", "x\\", "'", "'x", "x'y'z",
            "\toption x y", "firewall.@rule[0].target=ACCEPT", "rpcd.root.password=x", "delete network", f"batch\nset {CANARY}"]


def _controls() -> list[str]:
    return [f"a{chr(code)}b" for code in (0, 1, 2, 7, 8, 9, 10, 11, 12, 13, 26, 27, 28, 31, 127, 0x80, 0x85, 0x9F)] + [
        "\0", "\0\0\0", "x\0", f"x\0; {CANARY}", "\r\nSet-Cookie: x=y", "\r\n\r\n<html>", "\x1b[31m\x1b]0;x\x07", "a\nb\nc",
        "\n", "\r", "\t", " ", "  x  ", "\u2028\u2029", "\ufeffx", "\u202ex", "a\u0300" * 40, "\u00a0"]


def _characters() -> list[str]:
    bad = ["\udcff", "\udcfe\udcff", "\udcc3(", "\udce2(\udca1", "\udcc0\udcaf", "\udce0\udc80\udcaf", "\udcf0\udc80\udc80\udcaf",
           "\udced\udca0\udc80", "\udcf4\udc90\udc80\udc80", "\udcf8\udc88\udc80\udc80\udc80", "x\udcc3", "\udc80", "\udcbf" * 33,
           "\udcf0\udc9f", "a\udcc3" * 20]
    good = ["日本語 ワイファイ", "é" * 16, "🛜" * 8, "é" * 100, "x" + "🛜" * 40, "ｆｕｌｌ　ｗｉｄｔｈ", "ﷺ", "\U0010ffff", "¥100", "İi", "ß"]
    return bad + good


def _lengths() -> list[str]:
    return ["A" * size for size in (15, 16, 28, 29, 31 - 4, 33 - 4, 59, 60, 61, 62, 124, 250, 251, 252, 508, 1020, 4092, 10_000,
                                    100_000, 1_000_000)] + ["é" * 5000, "'" * 3000, "\\" * 3000, '"' * 3000, "\n" * 3000, "." * 300]


def _markup() -> list[str]:
    return ["<script>alert(1)</script>", "</script>", "<!--", "&lt;", "<?xml version='1.0'?>", "' OR 1=1 --", "*)(uid=*",
            "{{7*7}}", "javascript:x", '{"result": 0}', '"}', '", "result": 0, "x": "', "]]>", "\\u0000", "/*", "//"]


def _numbers() -> list[str]:
    powers = [2**bits + delta for bits in (7, 8, 15, 16, 31, 32, 53, 63, 64) for delta in (-1, 0, 1)]
    plain = [0, -1, -2, 1, 2, 3, 5, 7, 9, 10, 12, 13, 14, 15, 23, 24, 25, 59, 60, 61, 99, 100, 128 * 128, 1454, 1500, 86400]
    return [str(n) for n in plain + powers] + [str(-2**31), str(-2**31 - 1), str(-2**63), str(-2**63 - 1), "-0", "0.0", "1.0",
            "0.5", "-0.5", "1.5", "1e0", "1e3", "1E-3", "1e308", "1e309", "-1e309", "1e-400", "1" * 30, "1" * 5000,
            "0." + "0" * 500 + "1", "9" * 19 + ".0"]


def _number_texts() -> list[str]:
    return ["0", "1", "-1", "+1", " 1", "1 ", "01", "0x1", "1e1", "1.0", "1,0", "1_0", "", "abc", "true", "null", "NaN", "inf",
            "2147483647", "2147483648", "4294967296", "99999999999999999999", "-2147483649", "１", "٣", "1\0", "1;", "1'", "0b1"]


def _values() -> dict[str, bytes]:
    """What is no number and no text."""
    deep = 30, 31, 32, 33, 1000, 100_000
    return {
        "null": b"null", "true": b"true", "false": b"false", "array": b"[]", "object": b"{}", "nan": b"NaN", "infinity": b"Infinity",
        "minus-infinity": b"-Infinity", "hexadecimal": b"0x10", "octal": b"010", "plus": b"+1", "point": b".5", "word": b"word",
        "single-quoted": b"'x'", "comment": b"1/*x*/", "nothing": b"", "open-array": b"[", "open-object": b"{", "open-text": b'"x',
        "half-escape": b'"\\u12"', "bad-escape": b'"\\q"', "raw-newline": b'"a\nb"', "raw-nul": b'"a\0b"',
        "high-surrogate": b'"\\ud800"', "low-surrogate": b'"\\udc00"', "swapped-surrogates": b'"\\udc00\\ud800"',
        "nul-escape": b'"\\u0000"', "two-values": b"1, 2", "second-member": b'1, "result": 0', "list-of-null": b"[null]",
        "list-of-lists": b"[[], [[]]]", "mixed-list": b'[1, "x", null, {}, []]', "object-of-null": b'{"": null}',
        "empty-name": b'{"": ""}', "same-names": b'{"a": 1, "a": 2, "a": [3]}', "wide-list": b"[" + b"0," * 99_999 + b"0]",
        "wide-objects": b"[" + b"{}," * 99_999 + b"{}]",
        "wide-object": b"{" + b",".join(b'"k%d":0' % n for n in range(100_000)) + b"}",
        "list-of-texts": b'["' + MARK.encode() + b'", "' + MARK.encode() + b'"]',
        **{f"deep-list-{n}": b"[" * n + b"]" * n for n in deep},
        **{f"deep-object-{n}": b'{"a":' * n + b"0" + b"}" * n for n in deep},
    }


@functools.cache
def payloads() -> list[Payload]:
    """All of them, each once."""
    found = []
    groups = {"shell": _shell(), "format": _formats(), "path": _paths(), "uci": _uci(), "control": _controls(),
              "characters": _characters(), "length": _lengths(), "markup": _markup()}
    for group, texts in groups.items():
        for i, text in enumerate(texts):
            found.append(Payload(f"{group}-{i}", _plain(MARK + text), MARK + text))
            if group not in ("length", "characters"):
                found.append(Payload(f"{group}-{i}-escaped", _escaped(MARK + text), MARK + text))
    found += [Payload(f"leading-{i}", _plain(text), text) for i, text in enumerate(
        ["-" + MARK, "--" + MARK, " " + MARK, "." + MARK, "/" + MARK, "=" + MARK, "@" + MARK, "#" + MARK, "'" + MARK, '"' + MARK])]
    found += [Payload(f"number-{i}", text.encode()) for i, text in enumerate(_numbers())]
    found += [Payload(f"number-text-{i}", _plain(text), text) for i, text in enumerate(_number_texts())]
    found += [Payload(name, value) for name, value in _values().items()]
    return list({payload.json: payload for payload in reversed(found)}.values())[::-1]
