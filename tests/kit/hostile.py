"""Texts that clients send to break things; each must arrive whole, or be refused, and do nothing else."""

# A command that runs leaves this file.
PWNED = "/tmp/pwned"

# Lone surrogates ("\udcff") are bytes that are not UTF-8.
HOSTILE = {
    "empty": "",
    "blank": " ",
    "single-quote": "Bob's",
    "quote-and-command": f"';touch {PWNED};'",
    "double-quote-and-command": f'";touch {PWNED};"',
    "substitution": f"$(touch {PWNED})",
    "back-quotes": f"`touch {PWNED}`",
    "semicolon": f"; touch {PWNED} ;",
    "pipe": f"| touch {PWNED}",
    "ampersands": f"x && touch {PWNED} & touch {PWNED}",
    "redirection": f"> {PWNED}",
    "variable": "$HOME ${IFS} $0 $$",
    "newline": f"first\ntouch {PWNED}\nthird",
    "carriage-return": "first\r\nsecond",
    "backslashes": "a\\b\\\\c\\n\\x41\\",
    "format": "%s%n%x%99999d%",
    "glob": "* ? [a-z] {a,b} ~",
    "leading-dash": "-rf",
    "double-dash": "--help",
    "equals-and-dots": "network.lan.ipaddr=1.2.3.4",
    "utf8": "日本語 ワイファイ émoji 🛜",
    "invalid-utf8": "\udcff\udcfe\udcc3(\udce2(\udca1",
    "control": "\x01\x02\x1b[31m\x7f\t",
    "long": "A" * 10000,
    "long-quotes": "'" * 3000,
}

# Bodies that decrypt well and are no request.
GARBAGE_BODIES = {
    "not-json": b"hello",
    "word": b"nul",
    "number": b"42",
    "negative": b"-1",
    "string": b'"text"',
    "null": b"null",
    "true": b"true",
    "array": b"[1, 2, 3]",
    "empty-array": b"[]",
    "empty-object": b"{}",
    "deep": b"[" * 5000 + b"]" * 5000,
    "deep-object": b'{"a":' * 5000 + b"1" + b"}" * 5000,
    "truncated": b'{"lanIpv4Address": "192.168.1',
    "truncated-key": b'{"lanIpv4',
    "invalid-utf8": b'{"a": "\xff\xfe"}',
    "binary": bytes(range(1, 256)),
    "huge-number": b'{"a": 99999999999999999999999999999999}',
    "wrong-types": b'{"result": {}, "enable": [], "ssid": {"a": [1]}}',
}
