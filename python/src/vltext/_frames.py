"""Frames of Dask, whose partitions are tables that are read where they are needed."""
from __future__ import annotations

from collections.abc import Sequence
from typing import TYPE_CHECKING, Any, Protocol

from . import _core
from ._table import Table, pandas_frame_of

if TYPE_CHECKING:
    import pandas


class Readable(Protocol):
    """What a partition is read from; it can be pickled."""

    def read(self) -> Table:
        """The table."""
        ...


class _Columns:
    """A schema without rows, for libraries that take Arrow data."""

    def __init__(self, fields: _core.Fields) -> None:
        self._fields = fields

    def __arrow_c_schema__(self) -> object:
        return _core.schema_of(self._fields)


def _frame(readable: Readable) -> pandas.DataFrame:
    return readable.read().to_pandas()


def frame_of(readables: Sequence[Readable], fields: _core.Fields) -> Any:
    """A dask.dataframe.DataFrame with one partition for each of them."""
    try:
        import dask.dataframe as dd
    except ImportError:
        raise ImportError("a Dask DataFrame needs dask[dataframe]; it is not installed") from None
    import pyarrow as pa

    schema = pa.schema(_Columns(fields))
    return dd.from_map(_frame, list(readables), meta=pandas_frame_of(schema.empty_table()))
