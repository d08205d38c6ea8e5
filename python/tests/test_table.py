"""read() and scan(): the cells are those of the tool, whatever takes the Arrow data."""
from __future__ import annotations

import datetime
import decimal
import gc
import os
import pathlib
import pickle
import signal
import subprocess
import sys
import threading
import time
from collections.abc import Callable
from typing import Any

import duckdb
import pandas as pd
import polars as pl
import pyarrow as pa
import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import vltext
from conftest import example_tables, run_tool, table_by_tool


def text_of(value: object) -> str:
    """A value as `vltext convert --to csv` writes it, by a route of its own."""
    if value is None:
        return ""
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, datetime.datetime):
        text = value.replace(tzinfo=None).isoformat()
        fraction = text[19:].rstrip("0")
        return text[:19] + fraction + ("Z" if value.tzinfo else "")
    if isinstance(value, datetime.time):
        return value.isoformat().rstrip("0") if value.microsecond else value.isoformat()
    if isinstance(value, datetime.timedelta):
        return f"span of {value // datetime.timedelta(microseconds=1)} us"
    if isinstance(value, float):
        return f"number {value!r}"
    return str(value)


def microseconds_of(duration: str) -> int:
    """Of "-PT1H2M3.5S"."""
    sign = -1 if duration.startswith("-") else 1
    total, digits = decimal.Decimal(0), ""
    for c in duration.lstrip("-").removeprefix("PT"):
        if c in "HMS":
            total += decimal.Decimal(digits) * {"H": 3600, "M": 60, "S": 1}[c]
            digits = ""
        else:
            digits += c
    return sign * int(total * 1_000_000)


def expected_text(cell: str, kind: str) -> str:
    if cell == "" or kind not in ("real", "duration"):
        return cell
    return f"number {float(cell)!r}" if kind == "real" else f"span of {microseconds_of(cell)} us"


def cells_of(table: vltext.Table) -> list[list[str]]:
    columns = [[text_of(value) for value in values] for values in table.to_pydict().values()]
    return [list(row) for row in zip(*columns)]


def expected_cells(rows: list[list[str]], table: vltext.Table) -> list[list[str]]:
    kinds = list(table.types.values())
    return [[expected_text(cell, kind) for cell, kind in zip(row, kinds)] for row in rows]


@pytest.mark.parametrize("file", example_tables(), ids=lambda file: file.name)
def test_an_example_has_the_cells_of_the_tool(file: pathlib.Path) -> None:
    names, *rows = table_by_tool(file)
    table = vltext.read(file)
    assert table.names == names
    assert cells_of(table) == expected_cells(rows, table)
    assert table.num_rows == table.account.num_rows == len(rows)
    assert sum(table.account.lines.values()) == table.account.num_lines
    arrow = table.to_arrow()
    arrow.validate(full=True)
    assert arrow.to_pydict() == table.to_pydict()
    assert pa.table(vltext.scan(file)).equals(arrow)
    assert table.to_polars().equals(pl.DataFrame(arrow))


PIECES = st.lists(st.sampled_from([b"a", b"17", b"3,5", b"3.5", b",", b";", b",", b'"', b"\n",
                                   b"\n", b"\r\n", b" ", b"\xff", b"\xc3\xa4", b"2024-01-02",
                                   b"true", b"false", b"x y", b"08:00:00"]),
                  min_size=1, max_size=60).map(b"".join)


@settings(deadline=None, max_examples=60, suppress_health_check=[HealthCheck.too_slow])
@given(content=PIECES)
def test_any_bytes_have_the_cells_of_the_tool(content: bytes,
                                              tmp_path_factory: pytest.TempPathFactory) -> None:
    file = tmp_path_factory.mktemp("bytes") / "table.csv"
    file.write_bytes(content)
    if no_table := vltext.detect(content).no_table:
        with pytest.raises(vltext.ReadError, match="no table was found in it: " + no_table):
            vltext.read(content)
        return
    rows = table_by_tool(file)
    table = vltext.read(content)
    assert cells_of(table) == expected_cells(rows[1:], table)
    arrow = table.to_arrow()
    arrow.validate(full=True)
    assert arrow.to_pydict() == table.to_pydict()


# --- types -------------------------------------------------------------------------------------------

ALL_TYPES = (b"id,level,ok,day,clock,moment,zoned,span,word\n"
             b"1,2.5,yes,2024-01-02,08:00:00,2024-01-02 08:00:00,2024-01-02T08:00:00Z,100:00:01,x\n"
             b"2,,no,,09:30:15,,2024-01-02T09:00:00Z,,y\n"
             b",3.5,,2024-02-29,,2024-02-29 00:00:01,,200:30:00,z\n"
             b"-4,1e3,yes,1969-12-31,23:59:59,1969-12-31 23:59:59,1969-12-31T23:59:59Z,300:00:00,z\n")


def test_each_type_has_its_form_in_arrow() -> None:
    table = vltext.read(ALL_TYPES)
    assert table.types == {"id": "integer", "level": "real", "ok": "boolean", "day": "date",
                           "clock": "time", "moment": "date-time", "zoned": "date-time",
                           "span": "duration", "word": "text"}
    schema = table.to_arrow().schema
    assert schema.types == [pa.int64(), pa.float64(), pa.bool_(), pa.date32(), pa.time64("us"),
                            pa.timestamp("us"), pa.timestamp("us", "UTC"), pa.duration("us"),
                            pa.large_string()]
    values = table.to_pydict()
    assert values["id"] == [1, 2, None, -4]
    assert values["level"] == [2.5, None, 3.5, 1000.0]
    assert values["ok"] == [True, False, None, True]
    assert values["day"] == [datetime.date(2024, 1, 2), None, datetime.date(2024, 2, 29),
                             datetime.date(1969, 12, 31)]
    assert values["clock"] == [datetime.time(8), datetime.time(9, 30, 15), None,
                               datetime.time(23, 59, 59)]
    assert values["moment"][3] == datetime.datetime(1969, 12, 31, 23, 59, 59)
    assert values["zoned"][1] == datetime.datetime(2024, 1, 2, 9, tzinfo=datetime.timezone.utc)
    assert values["span"][2] == datetime.timedelta(hours=200, minutes=30)
    assert values["word"] == ["x", "y", "z", "z"]


def test_exact_decimals_are_texts_that_say_so() -> None:
    table = vltext.read(b"a;b\n1,50;x\n2,25;y\n12,00;z\n", exact_decimals=True)
    assert table["a"] == [decimal.Decimal("1.50"), decimal.Decimal("2.25"), decimal.Decimal("12.00")]
    field = table.to_arrow().schema.field("a")
    assert field.type == pa.large_string()
    assert field.metadata[b"vltext.type"] == b"decimal"


def test_units_and_kinds_are_metadata_of_the_fields() -> None:
    schema = vltext.read(b"day;level [m]\n2024-01-02;3,5\n2024-01-03;3,9\n").to_arrow().schema
    assert schema.field(1).metadata == {b"vltext.kind": b"decimal", b"vltext.unit": b"m"}


def test_a_table_without_rows_has_its_columns(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "empty.csv"
    file.write_bytes(b"a,b\n")
    table = vltext.read(file, names_line=1)
    assert (table.num_rows, table.names) == (0, ["a", "b"])
    assert table.to_arrow().num_rows == 0
    assert table.to_arrow().schema.names == ["a", "b"]
    assert len(table.to_polars()) == 0


# --- consumers ---------------------------------------------------------------------------------------

def test_others_take_a_table_as_it_is() -> None:
    table = vltext.read(ALL_TYPES)
    connection = duckdb.connect()
    connection.register("gauges", table)
    answer = connection.execute("SELECT sum(id), count(level) FROM gauges").fetchall()
    assert answer == [(-1, 3)]
    assert pl.DataFrame(table)["id"].to_list() == [1, 2, None, -4]
    assert pa.table(table).column("word").to_pylist() == ["x", "y", "z", "z"]
    frame = table.to_pandas()
    assert [str(kind) for kind in frame.dtypes[:4]] == ["Int64", "float64", "boolean",
                                                        "datetime64[ms]"]
    assert frame["id"].sum() == -1
    assert str(frame["zoned"].dtype) == "datetime64[us, UTC]"


def addresses_of(table: pa.Table) -> list[int]:
    return [buffer.address for column in table.columns for chunk in column.chunks
            for buffer in chunk.buffers() if buffer is not None and buffer.size > 0]


def test_values_are_not_copied() -> None:
    table = vltext.read(b"a,b\n" + b"".join(b"%d,text %d\n" % (i, i) for i in range(1000)))
    first, second = table.to_arrow(), table.to_arrow()
    assert addresses_of(first) == addresses_of(second)
    frame = table.to_polars().to_arrow()
    assert set(addresses_of(first)[:1]) <= set(addresses_of(frame))


def test_what_was_handed_out_outlives_the_table() -> None:
    content = b"a,b\n" + b"".join(b"%d,text %d\n" % (i, i) for i in range(100_000))
    arrow = vltext.read(content).to_arrow()
    column = pa.table(vltext.scan(content)).column("b")
    gc.collect()
    assert arrow.column("a").to_pylist() == list(range(100_000))
    assert column.to_pylist() == [f"text {i}" for i in range(100_000)]


def test_a_stream_that_nobody_took_is_released() -> None:
    table = vltext.read(ALL_TYPES)
    for _ in range(1000):
        table.__arrow_c_stream__()
        table.__arrow_c_schema__()
        table.batches[0].__arrow_c_array__()


# --- widening, rules, errors --------------------------------------------------------------------------

def late_text() -> bytes:
    """Numbers, until a cell far below the sample is none."""
    return b"a,b\n" + b"".join(b"%d,%d\n" % (i, i) for i in range(400_000)) + b"1,2.5\nx,7\n"


def test_a_late_cell_widens_all_batches() -> None:
    content = late_text()
    table = vltext.read(content)
    assert table.types == {"a": "text", "b": "real"}
    assert len(table.batches) > 1
    assert table["a"][0] == "0" and table["a"][-1] == "x"
    assert table["b"][-2:] == [2.5, 7.0]
    types = [batch.types for batch in vltext.scan(content)]
    assert types[0] == {"a": "integer", "b": "integer"}
    assert types[-1] == {"a": "text", "b": "real"}
    assert pa.table(vltext.scan(content)).equals(table.to_arrow().cast(
        pa.table(vltext.scan(content)).schema))


def test_a_late_long_record_adds_a_column_to_all_batches() -> None:
    table = vltext.read(late_text() + b"1,2,z\n")
    assert table.num_columns == 3
    assert table[table.names[2]][-2:] == [None, "z"]
    assert table.to_arrow().column(2).null_count == 400_002
    assert table.account.num_rows == 400_003


def test_an_account_keeps_what_widened_columns() -> None:
    """However often the file is read for it."""
    few = vltext.read(b"a,b\n" + b"".join(b"%d,%d\n" % (i, i) for i in range(500)) + b"1,2.5\nx,7\n")
    places = [vltext.Place("widened", 502, 2, "2.5"), vltext.Place("widened", 503, 1, "x")]
    assert list(few.account.places) == places
    many = vltext.read(late_text())
    assert list(many.account.places) == [place._replace(line=place.line + 399_500) for place in places]
    assert many.account.oddities["widened"] == 2


def test_a_misfit_is_missing_and_in_the_account() -> None:
    table = vltext.read(b"a,b\n1,2\n3,x\n5,6\n7,8\n9,10\n", no_widen=True)
    assert table["b"] == [2, None, 6, 8, 10]
    assert table.account.oddities["misfit"] == 1
    assert table.account.places == (vltext.Place("misfit", 3, 2, "x"),)


def test_a_read_error_names_the_place(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "odd.csv"
    file.write_bytes(b"a,b\n1,2\n3,x\n5,6\n7,8\n9,10\n")
    with pytest.raises(vltext.ReadError) as raised:
        vltext.read(file, import_error_rule="error")
    error = pickle.loads(pickle.dumps(raised.value))
    assert (error.file, error.line, error.column) == (str(file), 3, 2)
    assert str(error).startswith(str(file))
    scan = vltext.scan(file, import_error_rule="error")
    with pytest.raises(vltext.ReadError):
        list(scan)


def test_the_account_has_every_line() -> None:
    account = vltext.read(b"# a note\n\na,b\n1,2\n\n3,4\n5,6\n").account
    assert (account.num_lines, account.num_rows, account.num_bytes) == (7, 3, 27)
    assert {fate: count for fate, count in account.lines.items() if count} == {
        "comment": 1, "blank": 2, "names": 1, "data": 3}
    assert account.runs[-1] == vltext.Run("data", 6, 2, 8)
    assert pickle.loads(pickle.dumps(account)) == account


def test_a_layout_that_is_given_is_obeyed() -> None:
    layout = vltext.detect(b"a;b\n1;2\n3;4\n", delimiter="|")
    assert vltext.read(b"a;b\n1;2\n3;4\n", layout=layout).num_columns == 1


# --- threads, signals, memory --------------------------------------------------------------------------

def test_the_lock_is_free_while_a_table_is_read() -> None:
    content = late_text() * 4
    ticks = 0
    done = threading.Event()

    def read() -> None:
        vltext.read(content, threads=1)
        done.set()

    thread = threading.Thread(target=read)
    thread.start()
    while not done.is_set():
        ticks += 1
        time.sleep(0.001)
    thread.join()
    assert ticks > 10


def test_threads_may_read_at_the_same_time() -> None:
    content = late_text()
    expected = vltext.read(content).to_arrow()
    found: list[pa.Table] = []
    threads = [threading.Thread(target=lambda: found.append(vltext.read(content).to_arrow()))
               for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(found) == 4
    assert all(table.equals(expected) for table in found)


def test_a_reading_can_be_interrupted(tmp_path: pathlib.Path) -> None:
    """The reading of a pipe without an end, which nothing else would stop."""
    program = ("import sys, threading, time, os, signal, vltext\n"
               "threading.Timer(1.0, lambda: os.kill(os.getpid(), signal.SIGINT)).start()\n"
               "try:\n"
               "    for batch in vltext.scan('/dev/stdin', no_widen=True): pass\n"
               "except KeyboardInterrupt:\n"
               "    print('interrupted')\n")
    endless = subprocess.Popen(["yes", "17,abc,2024-01-02"], stdout=subprocess.PIPE)
    try:
        done = subprocess.run([sys.executable, "-c", program], stdin=endless.stdout,
                              capture_output=True, timeout=300, check=False)
    finally:
        endless.kill()
        endless.wait()
        assert endless.stdout is not None
        endless.stdout.close()
    assert done.stdout == b"interrupted\n", done.stderr


def read_through_pipe(program: str, content: bytes) -> bytes:
    """What the program prints, whose standard input is a pipe with the content."""
    done = subprocess.run([sys.executable, "-c", "import vltext, pyarrow\n" + program], input=content,
                          capture_output=True, timeout=300, check=False)
    assert done.returncode == 0, done.stderr.decode()
    return done.stdout


@pytest.mark.parametrize("path", ["-", "/dev/stdin"])
def test_a_pipe_is_read_once_and_kept_for_a_wider_type(path: str) -> None:
    printed = read_through_pipe(f"table = vltext.read({path!r}); print(table.types, table.num_rows)", late_text())
    assert printed == b"{'a': 'text', 'b': 'real'} 400002\n"


@pytest.mark.parametrize("call", ["pyarrow.table(vltext.scan('/dev/stdin'))", "vltext.parts('/dev/stdin')",
                                  "vltext.read_many(['/dev/stdin'])"])
def test_what_reads_twice_refuses_a_pipe(call: str) -> None:
    program = (f"try:\n    {call}\nexcept vltext.Error as error:\n"
               "    print('twice' in str(error))\n")
    assert read_through_pipe(program, ALL_TYPES) == b"True\n"


def resident_bytes() -> int:
    fields = pathlib.Path("/proc/self/statm").read_text().split()
    return int(fields[1]) * os.sysconf("SC_PAGE_SIZE")


def growth_of(action: Callable[[], Any], times: int) -> int:
    """How much more memory the process has after many calls than after some."""
    for _ in range(times // 4):
        action()
    gc.collect()
    before = resident_bytes()
    for _ in range(times):
        action()
    gc.collect()
    return resident_bytes() - before


@pytest.mark.parametrize("action", ["detect", "read", "export", "scan", "fail"])
def test_nothing_leaks(action: str) -> None:
    """A call holds some 100 KB: without a leak the growth is that of a few calls, with one of 400."""
    content = b"a,b\n" + b"".join(b"%d,text %d\n" % (i, i) for i in range(5000))
    table = vltext.read(content)

    def fail() -> None:
        with pytest.raises(vltext.ReadError):
            vltext.read(content + b"x,y\n", import_error_rule="error")

    actions: dict[str, Callable[[], Any]] = {
        "detect": lambda: pickle.loads(pickle.dumps(vltext.detect(content))).to_dict(),
        "read": lambda: vltext.read(content).to_pydict(),
        "export": lambda: (pa.table(table), pl.DataFrame(table), table.__arrow_c_stream__()),
        "scan": lambda: pa.table(vltext.scan(content)),
        "fail": fail,
    }
    assert growth_of(actions[action], 400) < 24_000_000


def test_frames_of_pandas_have_the_cells_of_the_tool() -> None:
    names, *rows = table_by_tool("examples/units.csv")
    frame = vltext.read("examples/units.csv").to_pandas()
    assert list(frame.columns) == names
    assert frame["pressure"].tolist() == [float(row[1]) for row in rows]
    assert isinstance(frame, pd.DataFrame)


def test_the_report_of_the_reading_is_that_of_the_tool() -> None:
    run_tool("convert", "--to", "csv", "examples/units.csv")
    account = vltext.read("examples/units.csv").account
    assert account.num_lines == sum(run.num_lines for run in account.runs)
    assert account.num_bytes == os.path.getsize("examples/units.csv")
    assert signal.getsignal(signal.SIGINT) is signal.default_int_handler
