"""Many files as one table, each read by its own layout."""
from __future__ import annotations

import collections
import dataclasses
import glob
import os
from collections.abc import Iterable
from typing import TYPE_CHECKING, Any, Literal, Union

from . import _core
from ._account import Account
from ._catalog import Catalog
from ._errors import Error, MismatchError, ReadError
from ._frames import frame_of
from ._inputs import refuse_unrepeatable
from ._layout import Layout, _layout_of_state, detect
from ._options import DETECT_NAMES, READ_NAMES, Arguments, arguments_of, read_settings
from ._progress import Progress
from ._table import Table, pandas_frame_of

if TYPE_CHECKING:
    import pandas
    import polars
    import pyarrow
    from typing_extensions import Unpack

    from ._options import ReadOptions

Paths = Union[str, "os.PathLike[str]", Iterable[Union[str, "os.PathLike[str]"]]]
Misfits = Literal["error", "skip", "join"]
Field = tuple[str, str, bool]

#: Types that can be read as one that holds both.
_WIDER = {frozenset({"integer", "real"}): "real", frozenset({"text", "category"}): "text"}


def paths_of(paths: Paths) -> list[str]:
    """A path, the files of a folder, those of a pattern such as "levels/*.csv", or several paths; in order."""
    if not isinstance(paths, (str, os.PathLike)):
        return [os.fspath(path) for path in paths]
    path = os.fspath(paths)
    if os.path.isdir(path):
        entries = (os.path.join(path, name) for name in os.listdir(path) if not name.startswith("."))
        return sorted(entry for entry in entries if os.path.isfile(entry))
    if glob.has_magic(path) and not os.path.exists(path):
        return sorted(entry for entry in glob.glob(path, recursive=True) if os.path.isfile(entry))
    return [path]


def _wider(a: Field, b: Field) -> Field | None:
    """A field that holds the values of both."""
    if a[1:] == b[1:]:
        return a
    kind = _WIDER.get(frozenset({a[1], b[1]}))
    return (a[0], kind, False) if kind else None


@dataclasses.dataclass(frozen=True)
class _Learned:
    path: str
    layout: Layout
    fields: tuple[Field, ...]

    @property
    def names(self) -> frozenset[str]:
        return frozenset(name for name, _, _ in self.fields)


@dataclasses.dataclass(frozen=True)
class File:
    """A file that is read as a part of a larger table. It can be pickled: another process may read it."""

    path: str
    #: The columns of the file, and those of the whole table: name, type, whether moments are in UTC.
    own: tuple[Field, ...]
    fields: tuple[Field, ...]
    _state: bytes = dataclasses.field(repr=False)
    _arguments: Arguments = dataclasses.field(repr=False)

    @property
    def layout(self) -> Layout:
        """The layout of the file."""
        return _layout_of_state(self._state, self.path, ())

    @property
    def _order(self) -> list[int | None]:
        places = {name: i for i, (name, _, _) in enumerate(self.own)}
        return [places.get(name) for name, _, _ in self.fields]

    def read(self) -> Table:
        """The rows of the file, with the columns of the whole table; those that it does not have are missing."""
        layout = self.layout
        try:
            table = _core.read_typed(os.fsencode(self.path), layout._found,
                                     read_settings(self._arguments), list(self.own),
                                     list(self.fields), self._order)
        except ReadError as error:
            error.file = self.path
            raise
        return Table(table, layout)


class Many:
    """Many files as one table. Whatever takes Arrow data reads it as a stream, file after file, in constant memory."""

    def __init__(self, files: list[File], fields: list[Field], misfits: dict[str, str],
                 arguments: Arguments, accounts: dict[str, Account]) -> None:
        self._files = files
        self._fields = fields
        self._misfits = misfits
        self._arguments = arguments
        self._accounts = accounts

    @property
    def files(self) -> list[File]:
        """The files that are read, in their order."""
        return list(self._files)

    @property
    def misfits(self) -> dict[str, str]:
        """By path, why a file does not fit the others."""
        return dict(self._misfits)

    @property
    def accounts(self) -> dict[str, Account]:
        """By path, what became of every line."""
        return dict(self._accounts)

    @property
    def names(self) -> list[str]:
        """The names of the columns."""
        return [name for name, _, _ in self._fields]

    @property
    def types(self) -> dict[str, str]:
        """The types of the columns by name, as in Table."""
        return {name: kind for name, kind, _ in self._fields}

    @property
    def num_rows(self) -> int:
        """The number of rows of all files."""
        return sum(account.num_rows for account in self._accounts.values())

    def to_arrow(self) -> pyarrow.Table:
        """As a table of pyarrow."""
        import pyarrow as pa

        return pa.table(self)

    def to_polars(self) -> polars.DataFrame:
        """As a frame of polars."""
        import polars as pl

        return pl.DataFrame(self)

    def to_pandas(self) -> pandas.DataFrame:
        """As a frame of pandas, as Table.to_pandas."""
        return pandas_frame_of(self.to_arrow())

    def to_dask(self) -> Any:
        """As a dask.dataframe.DataFrame with one partition for each file."""
        return frame_of(self._files, self._fields)

    def __len__(self) -> int:
        return self.num_rows

    def __repr__(self) -> str:
        misfits = f", {len(self._misfits)} that do not fit" if self._misfits else ""
        return f"<vltext.Many: {self.num_rows} rows of {len(self._files)} files{misfits}>"

    def __arrow_c_schema__(self) -> object:
        return _core.schema_of(self._fields)

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        items: list[_core.Item] = [
            (os.fsencode(file.path), file.layout._found, list(file.own), file._order)
            for file in self._files]
        return _core.stream_of(items, read_settings(self._arguments), self._fields)


# --- which files fit ----------------------------------------------------------------------------------

def _learn(path: str, arguments: Arguments, options: dict[str, Any]) -> tuple[_Learned, Account]:
    refuse_unrepeatable(os.fsencode(path), path)
    known = {key: value for key, value in options.items() if key in DETECT_NAMES}
    layout = detect(path, **known)
    if layout.no_table is not None:
        raise ReadError(f"no table was found in it: {layout.no_table}")
    learned = _core.learn(os.fsencode(path), read_settings(arguments), layout._found)
    return (_Learned(path, layout, tuple(learned.fields)), Account._of(learned.account))


def _missing_words(names: Iterable[str]) -> str:
    return ", ".join(repr(name) for name in sorted(names))


def _misfit_of_names(names: frozenset[str], usual: frozenset[str]) -> str:
    parts = []
    if lacks := usual - names:
        parts.append(f"lacks {_missing_words(lacks)}")
    if more := names - usual:
        parts.append(f"also has {_missing_words(more)}")
    return "; ".join(parts)


def _usual_types(files: list[_Learned], name: str) -> str:
    kinds = collections.Counter("number" if kind in ("integer", "real") else kind
                                for file in files for other, kind, _ in file.fields if other == name)
    return kinds.most_common(1)[0][0]


def _misfit_of_types(file: _Learned, usual: dict[str, str]) -> str:
    odd = []
    for name, kind, _ in file.fields:
        kind = "number" if kind in ("integer", "real") else kind
        if kind != usual.get(name, kind):
            odd.append(f"{name!r} is {kind} instead of {usual[name]}")
    return "; ".join(odd)


def _find_misfits(files: list[_Learned]) -> dict[str, str]:
    """The files whose names or types differ from those of most."""
    if not files:
        return {}
    counts = collections.Counter(file.names for file in files)
    usual = max(counts, key=lambda names: (counts[names], -[f.names for f in files].index(names)))
    misfits = {file.path: _misfit_of_names(file.names, usual) for file in files if file.names != usual}
    like = [file for file in files if file.path not in misfits]
    types = {name: _usual_types(like, name) for name in usual}
    for file in like:
        if reason := _misfit_of_types(file, types):
            misfits[file.path] = reason
    return misfits


def _joined_fields(files: list[_Learned]) -> list[Field]:
    """All columns, in the order in which they are met, with types that hold the values of all files."""
    fields: dict[str, Field] = {}
    for file in files:
        for field in file.fields:
            known = fields.setdefault(field[0], field)
            fields[field[0]] = _wider(known, field) or (field[0], "text", False)
    return list(fields.values())


def read_many(paths: Paths | Catalog, *, misfits: Misfits = "error", progress: bool | None = None,
              **options: Unpack[ReadOptions]) -> Many:
    """Many files as one table, with columns matched by name. Each file has a dialect of its own, and is read by it.

    `paths` is a folder, a pattern, paths, or a catalogue of files on this machine. Each file is read once to learn its
    types. Those that do not fit the others are named first, in a MismatchError; with misfits="skip" they are left out,
    with "join" they are read, too: columns that a file does not have are missing there, and what has no common type is
    text.

    >>> import vltext, tempfile, os
    >>> with tempfile.TemporaryDirectory() as folder:
    ...     for name, text in (("1.csv", "day,level\\n2024-01-02,3.5\\n"),
    ...                        ("2.csv", "level;day\\n4,5;03.01.2024\\n")):
    ...         with open(os.path.join(folder, name), "w") as file:
    ...             _ = file.write(text)
    ...     many = vltext.read_many(folder)
    ...     many.num_rows, many.types
    (2, {'day': 'date', 'level': 'real'})
    """
    if misfits not in ("error", "skip", "join"):
        raise ValueError(f"misfits: expected error, skip or join, got {misfits!r}")
    arguments = arguments_of(options, READ_NAMES)
    found = [str(row["path"]) for row in paths] if isinstance(paths, Catalog) else paths_of(paths)
    learned: list[_Learned] = []
    accounts: dict[str, Account] = {}
    failed: dict[str, str] = {}
    bar = Progress(len(found), "files", progress)
    try:
        for path in found:
            try:
                file, account = _learn(path, arguments, dict(options))
                learned.append(file)
                accounts[path] = account
                bar.add(account.num_bytes)
            except Error as error:
                failed[path] = str(error)
                bar.add(0, num_failed=1)
    finally:
        bar.close()
    unfit = _find_misfits(learned)
    if misfits == "error" and (failed or unfit):
        raise MismatchError({**failed, **unfit})
    fit = [file for file in learned if misfits == "join" or file.path not in unfit]
    fields = _joined_fields(fit)
    by_name = {field[0]: field for field in fields}
    files = [File(file.path, tuple(by_name[name] for name, _, _ in file.fields), tuple(fields),
                  file.layout._bytes(), arguments) for file in fit]
    return Many(files, fields, {**failed, **unfit}, arguments,
                {file.path: accounts[file.path] for file in fit})
