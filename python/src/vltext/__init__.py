"""Works out how the table in a text file is laid out, and reads it.

>>> import vltext
>>> layout = vltext.detect(b"day;level [m]\\n2024-01-02;3,5\\n2024-01-03;3,9\\n")
>>> layout.delimiter, layout.columns[1].unit
(';', 'm')
>>> vltext.read(b"day;level [m]\\n2024-01-02;3,5\\n2024-01-03;3,9\\n")["level [m]"]
[3.5, 3.9]
"""
from __future__ import annotations

from . import _core
from ._account import Account, Place, Run
from ._catalog import Catalog, catalog
from ._drift import Change, Drift, Series, drift
from ._errors import Error, FileError, MismatchError, OptionError, ReadError, UnsupportedError
from ._groups import Group, Groups, OddFile, groups
from ._inputs import BinaryFile, Source
from ._layout import Column, Layout, LineRun, Rival, detect
from ._many import Many, read_many
from ._parts import Part, Parts, parts, read_parts
from ._table import Batch, Scan, Table, read, scan

__version__ = _core.version

__all__ = [
    "Account", "Batch", "BinaryFile", "Catalog", "Change", "Column", "Drift", "Error", "FileError", "Group", "Groups",
    "Layout", "LineRun", "Many", "MismatchError", "OddFile", "OptionError", "Part", "Parts", "Place", "ReadError",
    "Rival", "Run", "Scan", "Series", "Source", "Table", "UnsupportedError", "catalog", "detect", "drift", "groups",
    "parts", "read", "read_many", "read_parts", "scan",
]
