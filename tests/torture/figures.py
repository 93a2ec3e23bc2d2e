"""What a section counted, and what it lost: the rows of the table at the end."""

from __future__ import annotations

import random
import time
from collections import Counter
from dataclasses import dataclass, field


@dataclass
class Figures:
    """Counts by name ("tries", "kept", ...), and a text for each loss that says how to see it again."""

    counts: Counter = field(default_factory=Counter)
    losses: list[str] = field(default_factory=list)
    notes: set[str] = field(default_factory=set)

    def count(self, name: str, by: int = 1) -> None:
        self.counts[name] += by

    def lose(self, what: str) -> None:
        self.losses.append(what)

    def add(self, other: Figures) -> None:
        self.counts.update(other.counts)
        self.losses += other.losses
        self.notes |= other.notes


@dataclass(frozen=True)
class Bounds:
    """How far a section goes. Each of its parts gets its share of `count`; after `until` nothing new is begun."""

    seed: int = 1
    count: int | None = None  # tries of a section
    until: float = float("inf")  # as time.monotonic() tells it
    targets: int = 0  # seconds of each fuzz target
    threads: bool = False  # under ThreadSanitizer, too
    clients: int = 64  # at once, through the web server
    routes: int | None = None  # so many routes at most, where a section looks at them one by one

    def some(self, section: str, routes: list) -> list:
        """All routes, or as many as there may be: those that the seed draws."""
        if self.routes is None or self.routes >= len(routes):
            return routes
        return sorted(random.Random(f"{self.seed} {section} routes").sample(routes, self.routes))

    def over(self) -> bool:
        return time.monotonic() > self.until


def table(sections: dict[str, Figures], seconds: dict[str, float]) -> str:
    rows = ["| section | tries | of these | losses | time |", "|---|---|---|---|---|"]
    for name, figures in sections.items():
        rest = ", ".join(f"{number:,} {what}" for what, number in sorted(figures.counts.items()) if what != "tries")
        rows.append(f"| {name} | {figures.counts['tries']:,} | {rest} | {len(figures.losses)} | {seconds[name]:.0f} s |")
    notes = [f"{name}: {note}" for name, figures in sections.items() for note in sorted(figures.notes)]
    return "\n".join([*rows, *notes])
