"""Groups: which files of a catalogue are laid out alike and have the same columns, and which differ from most.

The rules are those of `vltext groups`, which docs/catalog.md describes."""
from __future__ import annotations

import dataclasses
from collections import Counter
from collections.abc import Iterable, Mapping
from typing import Any

Row = Mapping[str, Any]

#: What columns of a kind have in common however their cells happen to be.
_FAMILIES = {
    **dict.fromkeys(("integer", "decimal", "scientific", "epoch-seconds", "epoch-milliseconds"), "number"),
    **dict.fromkeys(("category", "identifier", "uuid", "url", "email", "ip"), "text"),
}
_DELIMITER_NAMES = {",": "comma", ";": "semicolon", "\t": "tab", " ": "blank", "|": "bar", ":": "colon"}
_LINE_ENDING_NAMES = {"\n": "LF", "\r\n": "CRLF", "\r": "CR", "": "no"}
_DECIMAL_NAMES = {",": "decimal comma", ".": "decimal point"}

_LARGEST_SHARE = 10
_MOST_NAMES = 3
_MOST_COLUMN_REMARKS = 3
_MOST_COMPARED = 200
_MOST_SHOWN = 20
_LEAST_CONFIDENCE = 0.5


@dataclasses.dataclass(frozen=True)
class OddFile:
    """A file that differs from its group."""

    path: str
    #: In words: "semicolon", "a column less (level)".
    differences: tuple[str, ...]


@dataclasses.dataclass(frozen=True)
class Group:
    """Files with the same layout and the same columns, and those that nearly have them."""

    layout_fingerprint: str
    schema_fingerprint: str
    #: The row of the first file.
    example: Row
    files: tuple[str, ...]
    odd: tuple[OddFile, ...]


@dataclasses.dataclass(frozen=True)
class Groups:
    """The groups of a catalogue, the largest first."""

    num_files: int
    groups: tuple[Group, ...]
    #: Files that are less than 50 % sure, with their confidence; they are in a group as well.
    doubtful: dict[str, float]
    #: Files without a table, and what they are.
    no_table: dict[str, str]
    #: Files that could not be read, and why.
    errors: dict[str, str]

    @property
    def odd(self) -> tuple[OddFile, ...]:
        """The odd files of all groups."""
        return tuple(file for group in self.groups for file in group.odd)

    def __str__(self) -> str:
        counts = [_counted(self.num_files, "file"), _counted(len(self.groups), "group")]
        if self.odd:
            counts.append(_counted(len(self.odd), "odd one"))
        if self.no_table:
            counts.append(f"{len(self.no_table)} without a table")
        if self.errors:
            counts.append(f"{len(self.errors)} not read")
        lines = [", ".join(counts)]
        for group in self.groups[:_MOST_SHOWN]:
            row = group.example
            lines.append(f"{_counted(len(group.files), 'file')}: {separator_words(row)}, {row['encoding']}, "
                         f"{_counted(len(row['columns']), 'column')}")
            lines += [f"  {file.path}: {', '.join(file.differences)}" for file in group.odd[:_MOST_SHOWN]]
        return "\n".join(_printable(line) for line in lines)


def groups(catalog: Iterable[Row]) -> Groups:
    """Groups the files of a catalogue by layout and columns, and says how the odd ones differ.

    >>> import vltext, pathlib, tempfile
    >>> folder = pathlib.Path(tempfile.mkdtemp())
    >>> for name, separator in ("1", ","), ("2", ","), ("3", ";"):
    ...     _ = (folder / name).write_text(f"day{separator}level\\n2024-01-02{separator}3\\n2024-01-03{separator}4\\n")
    >>> found = vltext.groups(vltext.catalog(folder))
    >>> [(pathlib.Path(odd.path).name, odd.differences) for odd in found.odd]
    [('3', ('semicolon',))]
    """
    num_files = 0
    doubtful: dict[str, float] = {}
    no_table: dict[str, str] = {}
    errors: dict[str, str] = {}
    classes: dict[tuple[str, str], _FileClass] = {}
    for place, row in enumerate(catalog):
        num_files += 1
        path = row["path"]
        if row["status"] == "error":
            errors[path] = row["error"]
            continue
        if row["status"] == "no table":
            no_table[path] = row["no_table"]
            continue
        confidence = row.get("confidence")
        if confidence is not None and confidence < _LEAST_CONFIDENCE:
            doubtful[path] = confidence
        key = (row["layout_fingerprint"], row["schema_fingerprint"])
        classes.setdefault(key, _FileClass(row, [])).files.append((place, path))
    found = _groups_of(sorted(classes.values(), key=lambda each: -len(each.files)))
    return Groups(num_files, found, doubtful, no_table, errors)


@dataclasses.dataclass
class _FileClass:
    example: Row
    files: list[tuple[int, str]]


@dataclasses.dataclass
class _Home:
    files: _FileClass
    odd: list[tuple[int, OddFile]]


def _groups_of(classes: list[_FileClass]) -> tuple[Group, ...]:
    homes: list[_Home] = []
    for each in classes:
        best: tuple[_Home, list[str]] | None = None
        for home in homes[:_MOST_COMPARED]:
            if not _is_small_beside(len(each.files), len(home.files.files)):
                break
            if not _share_half_of_their_columns(each.example, home.files.example):
                continue
            words = differences_between(each.example, home.files.example)
            if best is None or len(words) < len(best[1]):
                best = home, words
        if best is None:
            homes.append(_Home(each, []))
        else:
            best[0].odd += [(place, OddFile(path, tuple(best[1]))) for place, path in each.files]
    return tuple(
        Group(home.files.example["layout_fingerprint"], home.files.example["schema_fingerprint"],
              home.files.example, tuple(path for _, path in home.files.files),
              tuple(file for _, file in sorted(home.odd, key=lambda entry: entry[0])))
        for home in homes)


def _is_small_beside(size: int, usual: int) -> bool:
    return size < usual and size <= max(1, usual // _LARGEST_SHARE)


# --- columns ----------------------------------------------------------------------------------------------


def family_of(kind: str) -> str:
    """The family of a kind: "number" of integers and decimals."""
    return _FAMILIES.get(kind, kind)


def _names(row: Row) -> list[str]:
    return [column["name"] or "" for column in row["columns"]]


def _have_names(*rows: Row) -> bool:
    return all(any(_names(row)) for row in rows)


def _columns_in_common(a: Row, b: Row) -> int:
    if _have_names(a, b):
        shared = Counter(_names(a)) & Counter(_names(b))
        return sum(count for name, count in shared.items() if name)
    return sum(family_of(x["kind"]) == family_of(y["kind"]) for x, y in zip(a["columns"], b["columns"]))


def _share_half_of_their_columns(a: Row, b: Row) -> bool:
    return 2 * _columns_in_common(a, b) >= max(len(a["columns"]), len(b["columns"]))


def _names_only_in(row: Row, other: Row) -> list[str]:
    left = Counter(_names(other))
    names = []
    for name in _names(row):
        if left[name] > 0:
            left[name] -= 1
        elif name:
            names.append(name)
    return names


def _number_of_columns(odd: Row, usual: Row) -> list[str]:
    difference = len(odd["columns"]) - len(usual["columns"])
    if difference == 0:
        return []
    count = abs(difference)
    words = ("a column" if count == 1 else f"{count} columns") + (" less" if difference < 0 else " more")
    if _have_names(odd, usual):
        names = _names_only_in(usual, odd) if difference < 0 else _names_only_in(odd, usual)
        if names:
            more = ", ..." if len(names) > _MOST_NAMES else ""
            words += f" ({', '.join(names[:_MOST_NAMES])}{more})"
    return [words]


def _column(name: str, odd: Mapping[str, Any], usual: Mapping[str, Any]) -> list[str]:
    words = []
    if (odd["unit"] or "") != (usual["unit"] or ""):
        words.append(f"unit of {name}: {odd['unit'] or 'none'}, not {usual['unit'] or 'none'}")
    has, wants = family_of(odd["kind"]), family_of(usual["kind"])
    if has != wants:
        words.append(f"{name}: {has}, not {wants}")
    return words


def _other_names(odd: Row, usual: Row) -> list[str]:
    has, wants = _names(odd), _names(usual)
    if len(has) != len(wants) or has == wants:
        return []
    if Counter(has) == Counter(wants):
        return ["columns in another order"]
    return [f"column {place} is named {here or 'none'}, not {there or 'none'}"
            for place, (here, there) in enumerate(zip(has, wants), 1) if here != there]


def _single_columns(odd: Row, usual: Row) -> list[str]:
    words: list[str] = []
    if _have_names(odd, usual):
        words += _other_names(odd, usual)
        places: dict[str, Mapping[str, Any]] = {}
        for column in odd["columns"]:
            places.setdefault(column["name"] or "", column)
        for column in usual["columns"]:
            if column["name"] and column["name"] in places:
                words += _column(column["name"], places[column["name"]], column)
    else:
        for place, (here, there) in enumerate(zip(odd["columns"], usual["columns"]), 1):
            words += _column(f"column {place}", here, there)
    if len(words) > _MOST_COLUMN_REMARKS:
        words[_MOST_COLUMN_REMARKS:] = [f"{len(words) - _MOST_COLUMN_REMARKS} more about its columns"]
    return words


# --- layouts ----------------------------------------------------------------------------------------------


def separator_words(row: Row) -> str:
    """How the fields are separated: "comma", "fixed width"."""
    if row["mode"] == "space-aligned":
        return "aligned by blanks"
    if row["mode"] == "fixed-width":
        return "fixed width"
    names = [_DELIMITER_NAMES.get(each, f"'{each}'") for each in row["delimiters"]]
    return " and ".join(names) or "one column"


def _header(odd: Row, usual: Row) -> list[str]:
    words = []
    if odd["header_lines"] != usual["header_lines"]:
        count = odd["header_lines"]
        words.append(f"{count} header line{'' if count == 1 else 's'} instead of {usual['header_lines']}")
    for member, name in ("names_line", "names"), ("units_line", "units"):
        if (odd[member] is None) != (usual[member] is None):
            words.append(f"{'no' if odd[member] is None else 'a'} line of {name}")
    return words


def _layout(odd: Row, usual: Row) -> list[str]:
    words = []
    if odd["encoding"] != usual["encoding"]:
        words.append(odd["encoding"] or "none")
    if odd["byte_order_mark"] != usual["byte_order_mark"]:
        words.append(f"{'a' if odd['byte_order_mark'] else 'no'} byte order mark")
    if (odd["mode"], odd["delimiters"]) != (usual["mode"], usual["delimiters"]):
        words.append(separator_words(odd))
    elif odd["widths"] != usual["widths"]:
        words.append("other column widths")
    if (odd["quote"] or '"') != (usual["quote"] or '"'):
        words.append("quote " + (odd["quote"] or '"'))
    decimal = odd["decimal"] or "."
    if decimal != (usual["decimal"] or "."):
        words.append(_DECIMAL_NAMES.get(decimal, "decimal mark " + decimal))
    if odd["line_ending"] != usual["line_ending"]:
        words.append(_LINE_ENDING_NAMES.get(odd["line_ending"] or "", "other") + " line endings")
    return words + _header(odd, usual)


def differences_between(odd: Row, usual: Row) -> list[str]:
    """How one table differs from another, in words."""
    words = _layout(odd, usual) + _number_of_columns(odd, usual) + _single_columns(odd, usual)
    return words or ["other columns"]


def _counted(count: int, noun: str) -> str:
    return f"{count} {noun}{'' if count == 1 else 's'}"


def _printable(text: str) -> str:
    return "".join(c if c.isprintable() else "\N{REPLACEMENT CHARACTER}" for c in text)
