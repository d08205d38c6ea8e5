"""Drift: when the layout or the columns of files change along the dates in their names."""
from __future__ import annotations

import dataclasses
import re
from collections.abc import Iterable

from ._groups import Row, differences_between

# Of a year, and of a month and a day that follow it with the same separator or none. No digit is beside them. A
# folder such as "year=2024/month=03" counts as well.
_YEAR = r"(?P<year>(?:19|20)\d\d)"
_MONTH = r"(?P<month>0[1-9]|1[0-2])"
_DAY = r"(?P<day>0[1-9]|[12]\d|3[01])"
_PATTERNS = tuple(re.compile(rf"(?<!\d){pattern}(?!\d)") for pattern in (
    rf"{_YEAR}(?P<separator>[-_./]?){_MONTH}(?P=separator){_DAY}",
    rf"{_YEAR}(?P<separator>/?)(?:month|m)={_MONTH}/(?:day|d)={_DAY}",
    rf"{_YEAR}[-_./]?{_MONTH}",
    rf"{_YEAR}/(?:month|m)={_MONTH}",
    rf"{_YEAR}",
))


@dataclasses.dataclass(frozen=True)
class Change:
    """A file that is laid out or has columns other than the file before it."""

    #: "2024-03-01", "2024-03" or "2024", as the name has it.
    date: str
    path: str
    before: str
    #: How it differs from the file before, in words.
    differences: tuple[str, ...]


@dataclasses.dataclass(frozen=True)
class Series:
    """Files whose names differ in a date alone, in the order of their dates."""

    #: A name with {date} in place of the date.
    name: str
    files: tuple[str, ...]
    changes: tuple[Change, ...]


@dataclasses.dataclass(frozen=True)
class Drift:
    """What changed in the series of a catalogue."""

    series: tuple[Series, ...]
    #: Tables without a date in their names.
    undated: tuple[str, ...]

    @property
    def changes(self) -> tuple[Change, ...]:
        """The changes of all series."""
        return tuple(change for each in self.series for change in each.changes)

    def __str__(self) -> str:
        lines = []
        for each in self.series:
            changes = len(each.changes)
            lines.append(f"{each.name}: {len(each.files)} files, {changes} change{'' if changes == 1 else 's'}")
            lines += [f"  {change.date}: {', '.join(change.differences)}" for change in each.changes]
        if self.undated:
            lines.append(f"{len(self.undated)} tables without a date in their names")
        return "\n".join("".join(c if c.isprintable() else "\N{REPLACEMENT CHARACTER}" for c in line)
                         for line in lines)


def date_in(path: str) -> tuple[str, str] | None:
    """The date in a path, and the path with {date} in its place. The most complete date counts, of several the last.

    >>> date_in("gauges/2024-03-01.csv")
    ('2024-03-01', 'gauges/{date}.csv')
    >>> date_in("station12345.csv") is None
    True
    """
    for pattern in _PATTERNS:
        matches = list(pattern.finditer(path))
        if matches:
            found = matches[-1]
            parts = found.groupdict()
            date = "-".join(parts[part] for part in ("year", "month", "day") if parts.get(part))
            return date, path[:found.start()] + "{date}" + path[found.end():]
    return None


def drift(catalog: Iterable[Row]) -> Drift:
    """Says when the layout or the columns of files change along the dates in their names.

    >>> import vltext, pathlib, tempfile
    >>> folder = pathlib.Path(tempfile.mkdtemp())
    >>> for month, name in ("01", "level"), ("02", "level"), ("03", "depth"):
    ...     _ = (folder / f"2024-{month}.csv").write_text(f"day,{name}\\n2024-{month}-02,3\\n2024-{month}-03,4\\n")
    >>> [(change.date, change.differences) for change in vltext.drift(vltext.catalog(folder)).changes]
    [('2024-03', ('column 2 is named depth, not level',))]
    """
    series: dict[str, list[tuple[str, str, Row]]] = {}
    undated = []
    for row in catalog:
        if row["status"] != "table":
            continue
        found = date_in(row["path"])
        if found is None:
            undated.append(row["path"])
        else:
            series.setdefault(found[1], []).append((found[0], row["path"], row))
    return Drift(tuple(_series_of(name, series[name]) for name in sorted(series)), tuple(undated))


def _series_of(name: str, files: list[tuple[str, str, Row]]) -> Series:
    files.sort(key=lambda each: each[:2])
    changes = []
    for (_, before, old), (date, path, new) in zip(files, files[1:]):
        keys = [(row["layout_fingerprint"], row["schema_fingerprint"]) for row in (old, new)]
        if keys[0] != keys[1]:
            changes.append(Change(date, path, before, tuple(differences_between(new, old))))
    return Series(name, tuple(path for _, path, _ in files), tuple(changes))
