"""Layout: how the table in a text is laid out."""
from __future__ import annotations

import dataclasses
import json
import os
from typing import TYPE_CHECKING, Any

from . import _core, _readers
from ._inputs import MOST_BYTES, Source, input_of
from ._options import DETECT_NAMES, Arguments, arguments_of, detect_settings

if TYPE_CHECKING:
    from typing_extensions import Unpack

    from ._options import DetectOptions


@dataclasses.dataclass(frozen=True)
class Column:
    """What a column holds, as far as the sampled lines show it."""

    #: None without a line of names; `unique_name` is a name in any case, and no other column has it.
    name: str | None
    unique_name: str
    unit: str | None
    #: "integer", "decimal", "money", "date", "text" and others.
    kind: str
    num_cells: int
    num_empty: int
    num_missing: int
    #: Words for a missing value.
    missing: tuple[str, ...]
    decimal: str | None
    grouping: str | None
    #: A pattern of strptime, of dates and times that have one.
    date_format: str | None
    #: The first five different cells.
    examples: tuple[str, ...]


@dataclasses.dataclass(frozen=True)
class Rival:
    """Another layout that the text may have, and the evidence that decides between it and the answer."""

    mode: str
    delimiters: tuple[str, ...]
    widths: tuple[int, ...]
    quote: str | None
    num_columns: int
    probability: float
    reason: str


@dataclasses.dataclass(frozen=True)
class LineRun:
    """Consecutive lines of the text with the same role: header, names, units, blank, comment, data or footer."""

    role: str
    first_line: int
    last_line: int


def _column_of(member: dict[str, Any]) -> Column:
    date = member.get("date") or {}
    return Column(member["name"], member["unique_name"], member["unit"], member["kind"],
                  member["num_cells"], member["num_empty"], member["num_missing"],
                  tuple(each["word"] for each in member["missing"]), member["decimal"],
                  member["grouping"], date.get("strptime"), tuple(member["examples"]))


def _rival_of(member: dict[str, Any]) -> Rival:
    return Rival(member["mode"], tuple(member["delimiters"]), tuple(member["widths"]),
                 member["quote"], member["num_variables"], member["probability"], member["reason"])


class Layout:
    """How the table in a text is laid out. detect() makes it; it never changes.

    >>> import vltext
    >>> layout = vltext.detect(b"time;level [m]\\n1:02:00;3.5\\n1:07:30;3.9\\n")
    >>> layout.delimiter
    ';'
    >>> layout.columns[1].name, layout.columns[1].kind, layout.columns[1].unit
    ('level [m]', 'decimal', 'm')

    Layouts are equal if they say the same, of whatever file. They can be pickled, and read by processes with the same
    version of the package. A notebook shows the first lines of a file that has not changed since; those of bytes are
    kept, and both travel with a pickled layout.
    """

    __slots__ = ("_found", "_source", "_arguments", "_members", "_state")

    _found: _core.Layout
    _source: str | None
    _arguments: Arguments
    _members: dict[str, Any] | None
    _state: bytes | None

    def __init__(self) -> None:
        raise TypeError("a layout is made by vltext.detect()")

    @classmethod
    def _of(cls, core: _core.Layout, source: str | None, arguments: Arguments) -> Layout:
        layout = object.__new__(cls)
        for name, value in (("_found", core), ("_source", source), ("_arguments", arguments),
                            ("_members", None), ("_state", None)):
            object.__setattr__(layout, name, value)
        return layout

    def __setattr__(self, name: str, value: object) -> None:
        raise AttributeError(f"a layout does not change: {name}")

    def __delattr__(self, name: str) -> None:
        raise AttributeError(f"a layout does not change: {name}")

    # --- what was found -----------------------------------------------------------------------------

    @property
    def source(self) -> str | None:
        """The path of the file; None of bytes and of a file object without a name."""
        return self._source

    @property
    def mode(self) -> str:
        """ "delimited", "space-aligned", "fixed-width" or "line-reader"."""
        return self._found.mode

    @property
    def delimiter(self) -> str | None:
        """What separates the cells, the first if there are several; None unless they are delimited."""
        delimiters = self._found.delimiters
        return delimiters[0] if delimiters and self.mode == "delimited" else None

    @property
    def delimiters(self) -> tuple[str, ...]:
        """All delimiters; a space and a tab for aligned columns."""
        return tuple(self._found.delimiters)

    @property
    def widths(self) -> tuple[int, ...]:
        """The widths of fixed columns, in characters."""
        return tuple(self._found.widths)

    @property
    def quote(self) -> str | None:
        """What quotes cells."""
        return self._found.quote

    @property
    def encoding(self) -> str:
        """The encoding, such as "UTF-8" or "windows-1252"."""
        return self._found.encoding

    @property
    def confidence(self) -> float | None:
        """How probable mode, delimiters and number of columns are; None if they were given."""
        return self._found.confidence

    @property
    def num_columns(self) -> int:
        """The number of columns."""
        return self._found.num_columns

    @property
    def header_lines(self) -> int:
        """The sampled lines before the data."""
        return self._found.header_lines

    @property
    def no_table(self) -> str | None:
        """What the text is if it is not a table: "running text", "source code", "empty" and others."""
        return self._found.no_table or None

    @property
    def names_line(self) -> int | None:
        """The line that holds the names, from 1."""
        found: int | None = self._dict()["names_line"]
        return found

    @property
    def units_line(self) -> int | None:
        """The line that holds the units, from 1."""
        found: int | None = self._dict()["units_line"]
        return found

    @property
    def columns(self) -> tuple[Column, ...]:
        """What each column holds; none of a text without a table."""
        return tuple(_column_of(member) for member in self._dict()["columns"])

    @property
    def rivals(self) -> tuple[Rival, ...]:
        """What else the text may be, the most probable first."""
        return tuple(_rival_of(member) for member in self._dict().get("rivals", ()))

    @property
    def evidence(self) -> tuple[str, ...]:
        """What speaks for the answer and against it, in sentences, the weightiest first."""
        return tuple(each["sentence"] for each in self._dict().get("evidence", ()))

    @property
    def lines(self) -> tuple[LineRun, ...]:
        """What each sampled line is for, in the order of the text."""
        return tuple(LineRun(each["role"], each["first_line"], each["last_line"])
                     for each in self._dict()["lines"])

    def to_dict(self) -> dict[str, Any]:
        """The member of this file in the JSON of the tool, which docs/json.md describes. A copy."""
        members: dict[str, Any] = json.loads(self._json())
        return members

    def _json(self) -> str:
        return self._found.json(os.fsencode(self._source if self._source is not None else "-"))

    def _dict(self) -> dict[str, Any]:
        if self._members is None:
            object.__setattr__(self, "_members", self.to_dict())
        assert self._members is not None
        return self._members

    # --- for other readers ----------------------------------------------------------------------------

    def to_pandas_kwargs(self, path: str | os.PathLike[str] | None = None) -> dict[str, Any]:
        """The arguments with which pandas.read_csv reads the file rightly.

        The file is read to its end, so that the types hold for every cell. `path` is that of the layout if it is not
        given. UnsupportedError if pandas cannot read the file by itself; vltext.read(path).to_pandas() can.
        """
        return _readers.pandas_kwargs(self._path(path), self._arguments)

    def to_polars_kwargs(self, path: str | os.PathLike[str] | None = None) -> dict[str, Any]:
        """The arguments with which polars.read_csv reads the file rightly; dates and booleans as texts.

        As to_pandas_kwargs. It needs polars, for its types.
        """
        return _readers.polars_kwargs(self._path(path), self._arguments)

    def to_arrow_options(self, path: str | os.PathLike[str] | None = None) -> dict[str, Any]:
        """The arguments with which pyarrow.csv.read_csv reads the file rightly.

        As to_pandas_kwargs. It needs pyarrow, for its options.
        """
        return _readers.arrow_options(self._path(path), self._arguments)

    def to_duckdb_sql(self, path: str | os.PathLike[str] | None = None) -> str:
        """A query with which DuckDB reads the file rightly: duckdb.sql(layout.to_duckdb_sql()).

        As to_pandas_kwargs.
        """
        return _readers.duckdb_sql(self._path(path), self._arguments)

    def _path(self, path: str | os.PathLike[str] | None) -> str:
        if path is None and self._source is None:
            raise TypeError("this is not the layout of a file on disk: give the path of one")
        return self._source or "" if path is None else os.fspath(path)

    # --- as a value -------------------------------------------------------------------------------------

    def _bytes(self) -> bytes:
        if self._state is None:
            object.__setattr__(self, "_state", self._found.state())
        assert self._state is not None
        return self._state

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Layout):
            return NotImplemented
        return self._bytes() == other._bytes()

    def __hash__(self) -> int:
        return hash(self._bytes())

    def __reduce__(self) -> tuple[Any, ...]:
        return _layout_of_state, (self._bytes(), self._source, self._arguments, self._found.picture())

    def __repr__(self) -> str:
        if self.no_table is not None:
            return f"<vltext.Layout: {self.no_table}, no table>"
        parts = [self._dialect_words(), f"{self.num_columns} columns", self.encoding]
        if self.confidence is not None:
            parts.append(f"{_percent(self.confidence)} % sure")
        return f"<vltext.Layout: {', '.join(parts)}>"

    def _dialect_words(self) -> str:
        if self.mode == "delimited":
            return "delimited by " + " or ".join(repr(each) for each in self.delimiters)
        if self.mode == "fixed-width":
            return "columns of the widths " + ", ".join(map(str, self.widths))
        return "aligned by blanks" if self.mode == "space-aligned" else "whole lines"

    def __str__(self) -> str:
        """What the tool prints about the file."""
        return self._found.report(os.fsencode(self._source or "-")).rstrip("\n")

    def _repr_html_(self) -> str:
        """The answer, the first lines as the tool shows them, and the columns."""
        return self._found.html(os.fsencode(self._source or ""))


def _percent(probability: float) -> int:
    """100 only if there is no doubt."""
    return min(round(probability * 100), 99) if probability < 1 else 100


def _layout_of_state(state: bytes, source: str | None, arguments: Arguments, picture: bytes = b"") -> Layout:
    return Layout._of(_core.Layout.of_state(state, picture), source, arguments)


# --- making one ------------------------------------------------------------------------------------------

def detect(source: Source, **options: Unpack[DetectOptions]) -> Layout:
    """How the table in `source` is laid out.

    `source` is a path, bytes with the content of a file, or a binary file object. Of a file object, at most
    67,108,864 bytes are read from its position; if it can seek, it is put back there. What is compressed with gzip or
    zstd is unpacked. The options are the flags of the tool, with underscores.

    >>> import vltext
    >>> vltext.detect(b"a|b|c\\n1|2|3\\n4|5|6\\n").delimiter
    '|'
    >>> vltext.detect(b"a|b|c\\n1|2|3\\n4|5|6\\n", delimiter=",").num_columns
    1

    OptionError for an option that is unknown or refused, FileError for a file that cannot be read.
    """
    core, name = input_of(source, MOST_BYTES)
    if not options:
        return Layout._of(_core.detect(core, detect_settings(())), name, ())
    arguments = arguments_of(options, DETECT_NAMES)
    return Layout._of(_core.detect(core, detect_settings(arguments)), name, arguments)
