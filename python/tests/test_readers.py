"""What other readers are told: they read the cells of the tool with it, or the layout says why they cannot."""
from __future__ import annotations

import datetime
import math
import pathlib
from collections.abc import Callable

import duckdb
import pandas as pd
import polars as pl
import pytest
from pyarrow import csv

import vltext
from conftest import example_tables, run_tool

Values = dict[str, list[object]]

#: What each reader leaves as it is in the file.
TEXTS = {"pandas": ("time",), "polars": ("boolean", "date", "date-time", "time"), "pyarrow": (), "duckdb": ()}


def plain(value: object) -> object:
    """A missing value and an empty text are the same here, as few readers tell them apart."""
    if value is None or value is pd.NA or value is pd.NaT or value == "" or (
            isinstance(value, float) and math.isnan(value)):
        return None
    if isinstance(value, pd.Timestamp):
        return value.to_pydatetime()
    return value


def by_pandas(layout: vltext.Layout, path: str) -> Values:
    columns: Values = pd.read_csv(path, **layout.to_pandas_kwargs()).to_dict("list")
    return columns


def by_polars(layout: vltext.Layout, path: str) -> Values:
    return pl.read_csv(path, **layout.to_polars_kwargs()).to_dict(as_series=False)


def by_pyarrow(layout: vltext.Layout, path: str) -> Values:
    columns: Values = csv.read_csv(path, **layout.to_arrow_options()).to_pydict()
    return columns


def by_duckdb(layout: vltext.Layout, path: str) -> Values:
    answer = duckdb.connect().execute(layout.to_duckdb_sql())
    names = [column[0] for column in answer.description or ()]
    rows = answer.fetchall()
    return {name: [row[i] for row in rows] for i, name in enumerate(names)}


READERS: dict[str, Callable[[vltext.Layout, str], Values]] = {
    "pandas": by_pandas, "polars": by_polars, "pyarrow": by_pyarrow, "duckdb": by_duckdb}


def expected(path: str, reader: str) -> Values:
    """The values of vltext.read, and texts where the reader has no type."""
    table, texts = vltext.read(path), vltext.read(path, as_text=True)
    missing = {column.unique_name: {*column.missing, ""} for column in table.layout.columns}
    values: Values = {}
    for name, kind in table.types.items():
        if kind in TEXTS[reader]:
            values[name] = [None if cell in missing[name] else cell for cell in texts[name]]
        elif kind == "date" and reader == "pandas":
            values[name] = [day and datetime.datetime(day.year, day.month, day.day)
                            for day in table[name]]
        else:
            values[name] = [plain(value) for value in table[name]]
    return values


def obstacle_by_emit(path: str, reader: str) -> bool:
    """Whether the program of the tool reads what `vltext convert` makes of the file."""
    program = run_tool(path, "--emit", reader).decode()
    return "cannot read this file by itself" in program or "vltext convert" in program


@pytest.mark.parametrize("reader", sorted(READERS))
def test_a_reader_gives_the_cells_of_the_tool_or_an_obstacle(reader: str) -> None:
    read = 0
    for file in example_tables():
        path = str(file)
        layout = vltext.detect(path)
        try:
            found = READERS[reader](layout, path)
        except vltext.UnsupportedError as error:
            assert f"{reader} cannot read this file by itself" in str(error)
            assert obstacle_by_emit(path, reader), path
            continue
        assert not obstacle_by_emit(path, reader), path
        assert {name: [plain(value) for value in values]
                for name, values in found.items()} == expected(path, reader), path
        read += 1
    assert read >= 8


PRICES = (b"Preise vom M\xe4rz\n\nTag;Preis;ja\n02.01.2024;1.234,50;wahr\n03.01.2024;k.A.;falsch\n"
          b"04.01.2024;3,25;wahr\n05.01.2024;4,50;wahr\n")


@pytest.mark.parametrize("reader", ["pandas", "duckdb"])
def test_marks_words_formats_and_encodings_are_passed_on(reader: str, tmp_path: pathlib.Path) -> None:
    file = tmp_path / "preise.csv"
    encoding = "windows-1252" if reader == "pandas" else "UTF-8"  # DuckDB knows few others
    file.write_bytes(PRICES.decode("windows-1252").encode(encoding))
    layout = vltext.detect(file)
    assert layout.encoding == encoding
    found = READERS[reader](layout, str(file))
    assert [plain(value) for value in found["Preis"]] == [1234.5, None, 3.25, 4.5]
    days = [day.date() if isinstance(day, datetime.datetime) else day for day in found["Tag"]]
    assert days[0] == datetime.date(2024, 1, 2)


def test_options_of_the_detection_are_kept(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "odd.csv"
    file.write_bytes(b"a,b\nq,x\nr,y\ns,z\n")
    assert vltext.detect(file, names_line=0).to_pandas_kwargs()["skiprows"] == 0
    assert vltext.detect(file, names_line=1).to_pandas_kwargs()["skiprows"] == 1


def test_a_layout_of_bytes_needs_a_path(tmp_path: pathlib.Path) -> None:
    content = b"a,b\n1,x\n2,y\n3,z\n"
    layout = vltext.detect(content)
    with pytest.raises(TypeError, match="give the path"):
        layout.to_pandas_kwargs()
    (tmp_path / "a.csv").write_bytes(content)
    assert layout.to_pandas_kwargs(tmp_path / "a.csv")["names"] == ["a", "b"]


def test_names_that_would_end_a_query_stay_names(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "it's.csv"
    file.write_bytes(b"a\"; DROP TABLE x; --,b'c\n1,2\n3,4\n5,6\n")
    layout = vltext.detect(file)
    found = by_duckdb(layout, str(file))
    assert list(found.values()) == [[1, 3, 5], [2, 4, 6]]
