"""Whether an answer is one that docs/openapi.yaml describes."""

from __future__ import annotations

import functools
import json

import jsonschema
from route_documents import API, OPENAPI

# Answers of any encrypted route, in plain text: no body, no key, or no way to encrypt.
PLAIN = {b"decrypt error", b"No content received", b"Memory allocation error", b'{"result": 1}'}
SILENT = {"lan"}  # answers nothing to a body that is no document


@functools.cache
def _validators(method: str, route: str) -> tuple:
    resolver = jsonschema.RefResolver.from_schema(OPENAPI)
    contents = OPENAPI["paths"][API + route][method.lower()]["responses"]["200"]["content"]
    return tuple(jsonschema.Draft202012Validator(content["schema"], resolver=resolver)
                 for media, content in contents.items() if "json" in media)


def complaint(method: str, route: str, answer) -> str | None:
    """What is wrong with an answer; None when it is a documented one."""
    if answer.empty:
        return None if route in SILENT and method == "POST" else "no answer"
    if answer.status not in (None, 200):
        return f"status {answer.status}"
    if answer.body in PLAIN or answer.headers.get("content-type") == "application/octet-stream":
        return None
    try:
        value = json.loads(answer.data.decode("utf-8"))
    except ValueError as error:
        return f"no JSON: {error}: {answer.data[:80]!r}"
    validators = _validators(method, route)
    if any(validator.is_valid(value) for validator in validators):
        return None
    reason = next(validators[0].iter_errors(value)).message[:200] if validators else "no JSON is documented"
    return f"not documented: {answer.text[:120]}: {reason}"


def result(answer) -> int | None:
    """The answer's result; None without one."""
    try:
        value = json.loads(answer.text)
        return value.get("result") if isinstance(value, dict) else None
    except ValueError:
        return None
