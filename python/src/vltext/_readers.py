"""What other readers must be told to read a file rightly: from the facts that `vltext FILE --emit NAME` uses."""
from __future__ import annotations

import importlib.metadata
import os
from typing import Any

from . import _core
from ._errors import UnsupportedError
from ._options import Arguments, detect_settings

_PANDAS_TYPES = {"integer": "Int64", "real": "float64", "boolean": "boolean"}


def _facts_for(reader: str, path: str, arguments: Arguments) -> dict[str, Any]:
    facts = _core.facts(os.fsencode(path), detect_settings(arguments))
    if obstacle := facts["obstacles"][reader]:
        raise UnsupportedError(f"{path}: {reader} cannot read this file by itself: {obstacle}; "
                               "vltext.read can")
    return facts


def _is_text(column: dict[str, Any]) -> bool:
    return column["type"] in ("text", "category")


def _boolean_words(columns: list[dict[str, Any]]) -> tuple[list[str], list[str]]:
    words = [column for column in columns if column["type"] == "boolean"]
    return (sorted({column["true_word"] for column in words if column["true_word"]}),
            sorted({column["false_word"] for column in words if column["false_word"]}))


def _pandas_is_inexact() -> bool:
    """Before version 3.1, pandas reads decimal numbers exactly only where it is told to."""
    try:
        version = importlib.metadata.version("pandas")
    except importlib.metadata.PackageNotFoundError:
        return False
    return tuple(map(int, version.split(".")[:2])) < (3, 1)


def pandas_kwargs(path: str, arguments: Arguments) -> dict[str, Any]:
    facts = _facts_for("pandas", path, arguments)
    columns = facts["columns"]
    true_words, false_words = _boolean_words(columns)
    if set(true_words) & set(false_words):
        raise UnsupportedError(f"{path}: pandas cannot read this file by itself: a word is true in "
                               "one column and false in another; vltext.read can")
    kwargs: dict[str, Any] = {"encoding": facts["encoding"], "sep": facts["delimiters"][0]}
    if not facts["quote"]:
        kwargs["quoting"] = 3  # csv.QUOTE_NONE
    elif facts["quote"] != '"':
        kwargs["quotechar"] = facts["quote"]
    kwargs |= {
        "header": None,
        "skiprows": facts["lines_to_skip"],
        "names": [column["name"] for column in columns],
        "index_col": False,
        "dtype": {column["name"]: _PANDAS_TYPES.get(column["type"], "string")
                  for column in columns if column["type"] not in ("date", "date-time")},
        "na_values": {column["name"]: column["missing"] for column in columns
                      if not _is_text(column)},
        "keep_default_na": False,
    }
    if _pandas_is_inexact():
        kwargs["float_precision"] = "round_trip"
    if dates := {column["name"]: column["format"] for column in columns
                 if column["type"] in ("date", "date-time")}:
        kwargs |= {"parse_dates": list(dates), "date_format": dates}
    if true_words:
        kwargs["true_values"] = true_words
    if false_words:
        kwargs["false_values"] = false_words
    if facts["decimal"] != ".":
        kwargs["decimal"] = facts["decimal"]
    if facts["grouping"]:
        kwargs["thousands"] = facts["grouping"]
    return kwargs


def polars_kwargs(path: str, arguments: Arguments) -> dict[str, Any]:
    import polars as pl

    facts = _facts_for("polars", path, arguments)
    columns = facts["columns"]
    types = {"integer": pl.Int64, "real": pl.Float64}
    words = {column["name"]: word for column in columns if not _is_text(column)
             for word in column["missing"] if word}
    kwargs: dict[str, Any] = {
        "separator": facts["delimiters"][0],
        "quote_char": facts["quote"] or None,
        "has_header": False,
        "skip_lines": facts["lines_to_skip"],
        "schema": {column["name"]: types.get(column["type"], pl.String) for column in columns},
    }
    if not facts["is_utf8"]:
        kwargs["encoding"] = facts["encoding"]
    if words:
        kwargs["null_values"] = words
    if facts["num_rows"] == 0:
        kwargs["raise_if_empty"] = False
    return kwargs


def arrow_options(path: str, arguments: Arguments) -> dict[str, Any]:
    import pyarrow as pa
    from pyarrow import csv

    facts = _facts_for("pyarrow", path, arguments)
    columns = facts["columns"]
    types = {"integer": pa.int64(), "real": pa.float64(), "boolean": pa.bool_(),
             "date": pa.date32(), "time": pa.time64("us"), "date-time": pa.timestamp("us")}
    return {
        "read_options": csv.ReadOptions(encoding=facts["encoding"],
                                        skip_rows=facts["lines_to_skip"],
                                        column_names=[column["name"] for column in columns]),
        "parse_options": csv.ParseOptions(delimiter=facts["delimiters"][0],
                                          quote_char=facts["quote"] or False,
                                          escape_char="\\" if facts["has_backslash"] else False,
                                          newlines_in_values=facts["has_breaks_in_cells"]),
        "convert_options": csv.ConvertOptions(
            column_types={column["name"]: types.get(column["type"], pa.string())
                          for column in columns},
            null_values=[""], true_values=["true"], false_values=["false"],
            strings_can_be_null=False, decimal_point=facts["decimal"]),
    }


def duckdb_sql(path: str, arguments: Arguments) -> str:
    query: str = _facts_for("duckdb", path, arguments)["duckdb_query"]
    return query
