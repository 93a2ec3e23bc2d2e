#!/usr/bin/python3
"""page.py NAME: puts standard input into docs/performance.md, between the marks of the table NAME."""

import sys
from pathlib import Path

PAGE = Path(__file__).resolve().parents[1] / "docs/performance.md"


def main() -> int:
    text, table = PAGE.read_text(), sys.stdin.read().strip()
    begin, end = f"<!-- {sys.argv[1]} -->\n", "<!-- end -->"
    before, mark, rest = text.partition(begin)
    if not mark or not table:
        print(f"page.py: {'no table' if mark else f'no place for {sys.argv[1]}'}", file=sys.stderr)
        return 1
    PAGE.write_text(f"{before}{begin}\n{table}\n\n{end}{rest.partition(end)[2]}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
