"""One file in parts that can be read apart from one another, also by other processes."""
from __future__ import annotations

import contextlib
import dataclasses
import os
from collections.abc import Iterator, Sequence
from typing import TYPE_CHECKING, Any, overload

from . import _core
from ._account import Account, Place
from ._errors import ReadError
from ._frames import frame_of
from ._inputs import refuse_unrepeatable
from ._layout import Layout, _layout_of_state, detect
from ._options import DETECT_NAMES, READ_NAMES, Arguments, arguments_of, read_settings
from ._progress import ByteProgress
from ._table import Table

if TYPE_CHECKING:
    from typing_extensions import Unpack

    from ._options import ReadOptions

BLOCKSIZE = 64_000_000


@dataclasses.dataclass(frozen=True)
class Part:
    """Some consecutive records of a file. It can be pickled: another process may read it."""

    path: str
    #: Its bytes are from `begin` up to `end`, and its first line is this one of the file.
    begin: int
    end: int
    first_line: int
    #: The name of each column of the whole file, its type, and whether its moments are in UTC.
    fields: tuple[tuple[str, str, bool], ...]
    _state: bytes = dataclasses.field(repr=False)
    _arguments: Arguments = dataclasses.field(repr=False)
    _is_whole: bool = dataclasses.field(repr=False)
    #: The cells that gave a column its type, which is known when the part is read.
    _widened: tuple[Place, ...] = dataclasses.field(repr=False)

    @property
    def layout(self) -> Layout:
        """The layout of this part: only the first has lines above the data."""
        return _layout_of_state(self._state, self.path, ())

    def read(self) -> Table:
        """The records of this part, with the columns and types of the whole file. Its account counts from line 1."""
        layout = self.layout
        fields = list(self.fields)
        try:
            table = _core.read_typed(self._source(), layout._found, read_settings(self._arguments),
                                     fields, fields, list(range(len(fields))))
        except ReadError as error:
            error.file = self.path
            if error.line is not None:
                error.line += self.first_line - 1
            raise
        return Table(table, layout, Account._of(table.account)._with_widened(self._widened))

    def _source(self) -> _core.Input:
        if self._is_whole:
            return os.fsencode(self.path)
        with open(self.path, "rb") as file:
            file.seek(self.begin)
            content = file.read(self.end - self.begin)
        if len(content) < self.end - self.begin:
            raise ReadError("the file has become shorter since it was parted", self.path)
        return (content,)


class Parts(Sequence[Part]):
    """The parts of a file, in its order."""

    def __init__(self, parts: Sequence[Part]) -> None:
        self._parts = tuple(parts)

    @overload
    def __getitem__(self, index: int) -> Part: ...
    @overload
    def __getitem__(self, index: slice) -> Parts: ...
    def __getitem__(self, index: int | slice) -> Part | Parts:
        if isinstance(index, slice):
            return Parts(self._parts[index])
        return self._parts[index]

    def __len__(self) -> int:
        return len(self._parts)

    def __iter__(self) -> Iterator[Part]:
        return iter(self._parts)

    def __repr__(self) -> str:
        return f"<vltext.Parts: {len(self)} parts of {self._parts[0].path}>"

    def to_dask(self) -> Any:
        """A dask.dataframe.DataFrame with one partition for each part."""
        return frame_of(self._parts, list(self._parts[0].fields))


def parts(path: str | os.PathLike[str], blocksize: int = BLOCKSIZE, *,
          layout: Layout | None = None, progress: bool | None = None, **options: Unpack[ReadOptions]) -> Parts:
    """The file in parts of about `blocksize` bytes, each of which begins where a record begins.

    The file is read once for that, in constant memory: by the code that reads tables, so that a line ending within
    quotes is no border, and for the types of all columns. What is compressed, or short, is a single part. The accounts
    of the parts add up to that of vltext.read(). `progress` is as in read().

    >>> import vltext, tempfile, os
    >>> with tempfile.TemporaryDirectory() as folder:
    ...     path = os.path.join(folder, "levels.csv")
    ...     with open(path, "w") as file:
    ...         _ = file.write("day,level\\n" + "2024-01-02,3.5\\n" * 100_000)
    ...     parts = vltext.parts(path, 500_000)
    ...     print(sum(part.read().num_rows for part in parts), len(parts) > 1)
    100000 True
    """
    if blocksize < 1:
        raise ValueError(f"blocksize: expected at least 1, got {blocksize}")
    name = os.fspath(path)
    arguments = arguments_of(options, READ_NAMES)
    refuse_unrepeatable(os.fsencode(name), name)
    if layout is None:
        known = {key: value for key, value in options.items() if key in DETECT_NAMES}
        layout = detect(name, **known)  # type: ignore[arg-type]
        if layout.no_table is not None:
            raise ReadError(f"no table was found in it: {layout.no_table}", name)
    try:
        with contextlib.closing(ByteProgress(os.fsencode(name), progress)) as bar:
            fields, found, widened = _core.parts_of(os.fsencode(name), read_settings(arguments), layout._found,
                                                    blocksize, bar.reached)
    except ReadError as error:
        error.file = name
        raise
    ends = [line for _, _, line, _ in found[1:]] + [None]
    return Parts([
        Part(name, begin, end, line, tuple(fields), own.state(), arguments, len(found) == 1,
             _places_in(Account._of(widened).places, line, next_line))
        for (begin, end, line, own), next_line in zip(found, ends)])


def _places_in(places: tuple[Place, ...], first: int, end: int | None) -> tuple[Place, ...]:
    """Those of these lines, counted from the first of them."""
    return tuple(place._replace(line=place.line - first + 1) for place in places
                 if place.line >= first and (end is None or place.line < end))


def read_parts(path: str | os.PathLike[str], blocksize: int = BLOCKSIZE, *,
               layout: Layout | None = None, progress: bool | None = None, **options: Unpack[ReadOptions]) -> Any:
    """One file as a dask.dataframe.DataFrame, whose partitions are the parts() of the file.

    To find these, the file is read once; `progress` shows how far that is."""
    return parts(path, blocksize, layout=layout, progress=progress, **options).to_dask()
