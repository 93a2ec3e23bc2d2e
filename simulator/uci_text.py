"""UCI packages as text: read into sections, changed, written back."""

from __future__ import annotations

import re
from dataclasses import dataclass, field

_TOKEN = re.compile(r"""'[^']*'|"(?:[^"\\]|\\.)*"|\\.|[^\s'"\\#;]+""", re.S)


@dataclass
class Section:
    type: str
    name: str | None = None  # None: anonymous
    options: dict[str, str | list[str]] = field(default_factory=dict)

    def __getitem__(self, option: str) -> str | list[str]:
        return self.options[option]

    def get(self, option: str, default=None):
        return self.options.get(option, default)


def _statements(text: str):
    """The words of each statement; quotes keep blanks, line ends and the other quote."""
    at, words, word = 0, [], None
    while at < len(text):
        c = text[at]
        if c in "\n;" or c.isspace() or c == "#":
            if word is not None:
                words.append(word)
                word = None
            if c == "#":
                at = text.find("\n", at)
                at = len(text) if at < 0 else at
                continue
            if c in "\n;" and words:
                yield words
                words = []
            at += 1
            continue
        token = _TOKEN.match(text, at)
        if token is None:
            raise ValueError(f"unterminated quote at {text[at:at + 40]!r}")
        piece = token.group()
        at = token.end()
        if piece[0] == "'":
            piece = piece[1:-1]
        elif piece[0] == '"':
            piece = re.sub(r"\\(.)", r"\1", piece[1:-1], flags=re.S)
        elif piece[0] == "\\":
            piece = piece[1:].replace("\n", "")
        word = (word or "") + piece
    if word is not None:
        words.append(word)
    if words:
        yield words


def parse(text: str) -> list[Section]:
    sections: list[Section] = []
    for keyword, *words in _statements(text):
        if keyword in ("config", "c"):
            sections.append(Section(words[0], words[1] if len(words) > 1 and words[1] else None))
        elif keyword in ("option", "o"):
            sections[-1].options[words[0]] = words[1]
        elif keyword in ("list", "l"):
            present = sections[-1].options.setdefault(words[0], [])
            if isinstance(present, str):
                present = sections[-1].options[words[0]] = [present]
            present.append(words[1])
        elif keyword not in ("package", "p"):
            raise ValueError(f"not a UCI statement: {keyword!r}")
    return sections


def _quoted(value: str) -> str:
    return "'" + value.replace("'", "'\\''") + "'"


def render(sections: list[Section]) -> str:
    lines = []
    for section in sections:
        lines.append(f"\nconfig {section.type}" + (f" {_quoted(section.name)}" if section.name else ""))
        for option, value in section.options.items():
            if isinstance(value, list):
                lines += [f"\tlist {option} {_quoted(element)}" for element in value]
            else:
                lines.append(f"\toption {option} {_quoted(value)}")
    return "\n".join(lines) + "\n"


def find(sections: list[Section], name: str) -> Section | None:
    """A section by its name, or by its place among those of its type: "@host[0]", "@redirect[-1]"."""
    place = re.fullmatch(r"@([^\[\]]+)\[(-?\d+)\]", name)
    if place is None:
        return next((section for section in sections if section.name == name), None)
    of_type = [section for section in sections if section.type == place[1]]
    try:
        return of_type[int(place[2])]
    except IndexError:
        return None


def assign(sections: list[Section], address: str, value: str | list[str] | None) -> None:
    """Sets "package.section.option", or makes "package.section" a named section of type `value`; None takes it away."""
    _, section_name, *option = address.split(".", 2)
    section = find(sections, section_name)
    if option:
        if section is None:
            raise KeyError(f"{address}: there is no such section; assigning its type to it makes it")
        if value is None:
            section.options.pop(option[0], None)
        else:
            section.options[option[0]] = value
    elif value is None:
        sections[:] = [other for other in sections if other is not section]
    elif section is not None:
        section.type = str(value)
    else:
        sections.append(Section(str(value), section_name))
