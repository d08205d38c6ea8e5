"""Tables, read as a whole or batch after batch, as Arrow data."""
from __future__ import annotations

import contextlib
import datetime
import decimal
from collections.abc import Callable, Iterator
from typing import TYPE_CHECKING, Any

from . import _core
from ._account import Account
from ._errors import ReadError
from ._inputs import Source, input_of, kept, refuse_unrepeatable
from ._layout import Layout
from ._options import READ_NAMES, arguments_of, read_settings
from ._progress import ByteProgress

if TYPE_CHECKING:
    import pandas
    import polars
    import pyarrow
    from typing_extensions import Unpack

    from ._options import ReadOptions

_DAY = datetime.date(1970, 1, 1)
_MOMENT = datetime.datetime(1970, 1, 1)
_MOMENT_UTC = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)


def _span(microseconds: int) -> datetime.timedelta:
    return datetime.timedelta(microseconds=microseconds)


_CONVERSIONS: dict[tuple[str, bool], Callable[[Any], object]] = {
    ("decimal", False): decimal.Decimal,
    ("date", False): lambda days: _DAY + datetime.timedelta(days=days),
    ("time", False): lambda value: (_MOMENT + _span(value)).time(),
    ("date-time", False): lambda value: _MOMENT + _span(value),
    ("date-time", True): lambda value: _MOMENT_UTC + _span(value),
    ("duration", False): _span,
}


def _converted(values: list[Any], kind: str, is_utc: bool) -> list[Any]:
    convert = _CONVERSIONS.get((kind, is_utc))
    if convert is None:
        return values
    return [None if value is None else convert(value) for value in values]


class Batch:
    """Some consecutive rows of a table. pyarrow.record_batch(batch), polars.DataFrame(batch) and the like take it."""

    __slots__ = ("_core",)

    def __init__(self, core: _core.Batch) -> None:
        self._core = core

    @property
    def num_rows(self) -> int:
        """The number of rows, at least one."""
        return self._core.num_rows

    @property
    def names(self) -> list[str]:
        """The names of the columns, all different."""
        return [name for name, _, _ in self._core.fields]

    @property
    def types(self) -> dict[str, str]:
        """By name: "integer", "real", "decimal", "boolean", "date", "time", "date-time", "duration" or "text"."""
        return {name: kind for name, kind, _ in self._core.fields}

    @property
    def first_line(self) -> int:
        """The line of the file where the first row begins."""
        return self._core.first_line

    def to_pydict(self) -> dict[str, list[Any]]:
        """The values of each column, None for a missing one."""
        return {name: _converted(self._core.values(i), kind, is_utc)
                for i, (name, kind, is_utc) in enumerate(self._core.fields)}

    def __len__(self) -> int:
        return self.num_rows

    def __repr__(self) -> str:
        return f"<vltext.Batch: {self.num_rows} rows from line {self.first_line} on>"

    def __arrow_c_schema__(self) -> object:
        return self._core.schema()

    def __arrow_c_array__(self, requested_schema: object = None) -> tuple[object, object]:
        return self._core.array()


class Table:
    """A whole table. Whatever takes Arrow data takes it as it is, without a copy: it has __arrow_c_stream__.

    >>> import vltext
    >>> table = vltext.read(b"day;level\\n2024-01-02;3,5\\n2024-01-03;3,9\\n")
    >>> table.num_rows, table.names
    (2, ['day', 'level'])
    >>> table["level"]
    [3.5, 3.9]
    """

    __slots__ = ("_core", "_layout", "_account")

    def __init__(self, core: _core.Table, layout: Layout, account: Account | None = None) -> None:
        self._core = core
        self._layout = layout
        self._account = account

    @property
    def layout(self) -> Layout:
        """The layout by which it was read."""
        return self._layout

    @property
    def account(self) -> Account:
        """What became of every line."""
        if self._account is None:
            self._account = Account._of(self._core.account)
        return self._account

    @property
    def num_rows(self) -> int:
        """The number of rows."""
        return self._core.num_rows

    @property
    def num_columns(self) -> int:
        """The number of columns."""
        return len(self._core.fields)

    @property
    def names(self) -> list[str]:
        """The names of the columns, all different."""
        return [name for name, _, _ in self._core.fields]

    @property
    def types(self) -> dict[str, str]:
        """By name: "integer", "real", "decimal", "boolean", "date", "time", "date-time", "duration" or "text"."""
        return {name: kind for name, kind, _ in self._core.fields}

    @property
    def batches(self) -> list[Batch]:
        """The batches that it was read in."""
        return [Batch(core) for core in self._core.batches()]

    def __getitem__(self, name: str) -> list[Any]:
        """The values of a column, None for a missing one."""
        for i, (other, kind, is_utc) in enumerate(self._core.fields):
            if other == name:
                return _converted(self._core.values(i), kind, is_utc)
        raise KeyError(name)

    def to_pydict(self) -> dict[str, list[Any]]:
        """The values of each column, None for a missing one."""
        return {name: self[name] for name in self.names}

    def to_arrow(self) -> pyarrow.Table:
        """As a table of pyarrow, without a copy."""
        import pyarrow as pa

        return pa.table(self)

    def to_polars(self) -> polars.DataFrame:
        """As a frame of polars, without a copy."""
        import polars as pl

        return pl.DataFrame(self)

    def to_pandas(self) -> pandas.DataFrame:
        """As a frame of pandas, by way of pyarrow: integers as Int64, texts as string, dates as datetime64."""
        return pandas_frame_of(self.to_arrow())

    def __len__(self) -> int:
        return self.num_rows

    def __repr__(self) -> str:
        columns = ", ".join(f"{name} ({kind})" for name, kind, _ in self._core.fields[:8])
        more = self.num_columns - 8
        return (f"<vltext.Table: {self.num_rows} rows of {columns}"
                f"{f' and {more} more columns' if more > 0 else ''}>")

    def __arrow_c_schema__(self) -> object:
        return self._core.schema()

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        return self._core.stream()


def pandas_frame_of(table: pyarrow.Table) -> pandas.DataFrame:
    import pandas as pd
    import pyarrow as pa

    types = {pa.int64(): pd.Int64Dtype(), pa.bool_(): pd.BooleanDtype(),
             pa.large_string(): pd.StringDtype()}
    return table.to_pandas(types_mapper=types.get, date_as_object=False)


def read(source: Source, *, layout: Layout | None = None, progress: bool | None = None,
         **options: Unpack[ReadOptions]) -> Table:
    """The whole table in `source`, which is as in detect(); a file object is read to its end.

    With a layout, the table is read by it. All batches have columns of the same types: if a cell further down needs a
    wider type, the file is read once more.

    `progress` shows how far the reading is with tqdm; None: of 50 MB and more, on a terminal and in notebooks.

    >>> import vltext
    >>> table = vltext.read(b"a,b\\n1,x\\n2,y\\n3,z\\n")
    >>> table.types
    {'a': 'integer', 'b': 'text'}
    >>> table.account.lines["data"]
    3

    OptionError, FileError, and ReadError for a text without a table and for a record or cell that a rule refuses.
    """
    core, name = input_of(source)
    arguments = arguments_of(options, READ_NAMES)
    core = kept(core)
    try:
        with contextlib.closing(ByteProgress(core, progress)) as bar:
            table = _core.read(core, read_settings(arguments), layout._found if layout else None, bar.reached)
    except ReadError as error:
        error.file = name
        raise
    return Table(table, layout if layout is not None else Layout._of(table.layout, name, ()))


class Scan(Iterator[Batch]):
    """A table that is read batch after batch, in constant memory.

    >>> import vltext
    >>> for batch in vltext.scan(b"a,b\\n1,x\\n2,y\\n"):
    ...     print(batch.to_pydict())
    {'a': [1, 2], 'b': ['x', 'y']}

    A batch may have a wider type for a column than those before it. As a stream of Arrow, all batches have the same:
    then the input is read twice, the first time for the types.
    """

    def __init__(self, source: Source, layout: Layout | None, progress: bool | None,
                 options: dict[str, object]) -> None:
        self._input, self._name = input_of(source)
        self._arguments = arguments_of(options, READ_NAMES)
        self._settings = read_settings(self._arguments)
        self._given = layout
        self._core = _core.Scan(self._input, self._settings, layout._found if layout else None,
                                False)
        self._bar = ByteProgress(self._input, progress)

    @property
    def layout(self) -> Layout:
        """The layout by which it is read."""
        if self._given is not None:
            return self._given
        return Layout._of(self._core.layout, self._name, ())

    @property
    def account(self) -> Account:
        """What became of the lines so far."""
        return Account._of(self._core.account)

    @property
    def names(self) -> list[str]:
        """The names of the columns so far; longer records may add some."""
        return self._core.names

    def __iter__(self) -> Scan:
        return self

    def __next__(self) -> Batch:
        try:
            batch = self._core.next()
        except BaseException as error:
            self._bar.close()
            if isinstance(error, ReadError):
                error.file = self._name
            raise
        if batch is None:
            self._bar.close()
            raise StopIteration
        if self._bar.reached is not None:
            self._bar.reach(self._core.num_bytes)
        return Batch(batch)

    def __repr__(self) -> str:
        return f"<vltext.Scan of {self._name or 'bytes'}>"

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        refuse_unrepeatable(self._input, self._name)
        learned = _core.learn(self._input, self._settings, self._core.layout)
        fields = learned.fields
        order: list[int | None] = list(range(len(fields)))
        item = (self._input, learned.layout, fields, order)
        return _core.stream_of([item], self._settings, fields)


def scan(source: Source, *, layout: Layout | None = None, progress: bool | None = None,
         **options: Unpack[ReadOptions]) -> Scan:
    """The table in `source`, batch after batch. See Scan; the arguments are those of read()."""
    return Scan(source, layout, progress, dict(options))
