"""What became of every line of a file."""
from __future__ import annotations

import dataclasses
from typing import Any, NamedTuple

_MOST_RUNS = 10_000
_MOST_PLACES = 100


class Run(NamedTuple):
    """Consecutive lines with the same fate."""

    fate: str
    first_line: int
    num_lines: int
    num_bytes: int


class Place(NamedTuple):
    """Where a record or a cell is odd. The column is 0 if the whole record is."""

    oddity: str
    line: int
    column: int
    text: str


@dataclasses.dataclass(frozen=True)
class Account:
    """What became of every line of a file: each has exactly one fate.

    >>> import vltext
    >>> account = vltext.read(b"# levels\\nday,level\\n2024-01-02,3\\n2024-01-03,5\\n").account
    >>> account.num_lines, account.num_rows, account.lines["comment"]
    (4, 2, 1)

    Accounts of consecutive parts of a file add up, in the order of the file.
    """

    #: Lines as an editor shows them, bytes after decompression.
    num_lines: int = 0
    num_bytes: int = 0
    num_rows: int = 0
    #: By fate: preamble, names, units, descriptions, data, blank, comment, rule, footer, omitted, failed.
    lines: dict[str, int] = dataclasses.field(default_factory=dict)
    bytes: dict[str, int] = dataclasses.field(default_factory=dict)
    #: How many there are of each: misfit, short-row, long-row, ill-formed, widened.
    oddities: dict[str, int] = dataclasses.field(default_factory=dict)
    #: In the order of the file, the first 10,000.
    runs: tuple[Run, ...] = ()
    has_more_runs: bool = False
    #: The first 100 of each oddity.
    places: tuple[Place, ...] = ()

    @classmethod
    def _of(cls, account: dict[str, Any]) -> Account:
        members = dict(account)
        members["runs"] = tuple(Run(*run) for run in account["runs"])
        members["places"] = tuple(Place(*place) for place in account["places"])
        return cls(**members)

    def _with_widened(self, places: tuple[Place, ...]) -> Account:
        """Besides, the cells that widened columns, in a reading that knew the types from the start."""
        oddities = {**self.oddities, "widened": self.oddities["widened"] + len(places)}
        both = tuple(sorted([*self.places, *places], key=lambda place: place.line))
        return dataclasses.replace(self, oddities=oddities, places=both)

    def __add__(self, later: Account) -> Account:
        if not isinstance(later, Account):
            return NotImplemented
        runs, is_cut = _joined_runs(self, later)
        return Account(self.num_lines + later.num_lines, self.num_bytes + later.num_bytes,
                       self.num_rows + later.num_rows, _sums(self.lines, later.lines),
                       _sums(self.bytes, later.bytes), _sums(self.oddities, later.oddities), runs,
                       self.has_more_runs or later.has_more_runs or is_cut,
                       _joined_places(self, later))


def _sums(a: dict[str, int], b: dict[str, int]) -> dict[str, int]:
    return {name: a.get(name, 0) + b.get(name, 0) for name in {**a, **b}}


def _joined_runs(a: Account, b: Account) -> tuple[tuple[Run, ...], bool]:
    runs = list(a.runs)
    if a.has_more_runs:
        return tuple(runs), False
    for run in b.runs:
        run = run._replace(first_line=run.first_line + a.num_lines)
        if runs and runs[-1].fate == run.fate:
            last = runs[-1]
            runs[-1] = last._replace(num_lines=last.num_lines + run.num_lines,
                                     num_bytes=last.num_bytes + run.num_bytes)
        else:
            runs.append(run)
    return tuple(runs[:_MOST_RUNS]), len(runs) > _MOST_RUNS


def _joined_places(a: Account, b: Account) -> tuple[Place, ...]:
    places = list(a.places)
    counts: dict[str, int] = {}
    for place in places:
        counts[place.oddity] = counts.get(place.oddity, 0) + 1
    for place in b.places:
        if counts.get(place.oddity, 0) < _MOST_PLACES:
            counts[place.oddity] = counts.get(place.oddity, 0) + 1
            places.append(place._replace(line=place.line + a.num_lines))
    return tuple(places)
