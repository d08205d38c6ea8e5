"""read_many(): files of different dialects as one table, columns matched by name."""
from __future__ import annotations

import datetime
import pathlib
import subprocess
import sys

import pyarrow as pa
import pytest

import vltext

DAY = datetime.date

#: The same columns in many dialects; two rows each.
DIALECTS = {
    "1-comma.csv": b"day,level,note\n2024-01-01,1.5,a\n2024-01-02,2.5,b\n",
    "2-semicolon.csv": "day;level;note\n03.01.2024;3,5;ä\n14.01.2024;4,5;b\n".encode("windows-1252"),
    "3-other-order.tsv": b"note\tday\tlevel\nx\t2024-01-05\t5\ny\t2024-01-06\t6\n",
    "4-quoted.csv": b'"day","level","note"\n"2024-01-07","7.5","a, ""b"""\n"2024-01-08","8.5","c\nd"\n',
    "5-preamble.txt": b"# station 7\n\nday|level|note\n2024-01-09|9.5|a\n2024-01-10|n/a|b\n2024-01-11|1.5|c\n",
}


@pytest.fixture
def folder(tmp_path: pathlib.Path) -> pathlib.Path:
    for name, content in DIALECTS.items():
        (tmp_path / name).write_bytes(content)
    return tmp_path


EXPECTED = {
    "day": [DAY(2024, 1, day) for day in (1, 2, 3, 14, 5, 6, 7, 8, 9, 10, 11)],
    "level": [1.5, 2.5, 3.5, 4.5, 5.0, 6.0, 7.5, 8.5, 9.5, None, 1.5],
    "note": ["a", "b", "ä", "b", "x", "y", 'a, "b"', "c\nd", "a", "b", "c"],
}


def test_a_catalogue_gives_its_files(folder: pathlib.Path) -> None:
    many = vltext.read_many(vltext.catalog(folder))
    assert many.types == {"day": "date", "level": "real", "note": "text"}
    assert many.num_rows == 11


def test_what_is_no_table_in_a_catalogue_is_named(folder: pathlib.Path) -> None:
    (folder / "letter.txt").write_text("Dear Lena,\nthank you for the parcel that came on Monday.\nThe lamp is fine.\n")
    with pytest.raises(vltext.MismatchError, match="letter.txt"):
        vltext.read_many(vltext.catalog(folder))
    assert vltext.read_many(vltext.catalog(folder), misfits="skip").num_rows == 11


def test_files_of_all_dialects_make_one_table(folder: pathlib.Path) -> None:
    many = vltext.read_many(folder)
    assert many.types == {"day": "date", "level": "real", "note": "text"}
    assert many.misfits == {}
    table = pa.table(many)
    table.validate(full=True)
    assert table.to_pydict() == EXPECTED
    assert many.num_rows == len(many) == 11
    assert many.to_polars()["level"].null_count() == 1
    assert many.to_pandas()["note"].tolist() == EXPECTED["note"]
    assert [file.read().num_rows for file in many.files] == [2, 2, 2, 2, 3]
    assert sum(account.num_lines for account in many.accounts.values()) == 3 + 3 + 3 + 4 + 6


def test_a_pattern_and_a_list_of_paths(folder: pathlib.Path) -> None:
    assert vltext.read_many(str(folder / "*.csv")).num_rows == 6
    paths = [folder / "3-other-order.tsv", folder / "1-comma.csv"]
    many = vltext.read_many(paths)
    assert many.names == ["note", "day", "level"]
    assert many.to_arrow().to_pydict()["note"] == ["x", "y", "a", "b"]


MISFITS = {
    "6-lacks.csv": (b"day,note\n2024-01-01,a\n2024-01-02,b\n", "lacks 'level'"),
    "7-more.csv": (b"day,level,note,extra\n2024-01-01,1.5,a,1\n2024-01-02,2.5,b,2\n", "also has 'extra'"),
    "8-types.csv": (b"day,level,note\n2024-01-01,high,a\n2024-01-02,low,b\n", "'level' is text instead of number"),
    "9-letter.txt": (b"Dear reader, this is a letter.\nIt holds no table at all, so far as I can see.\nYours\n",
                     "no table was found in it"),
}


def test_what_does_not_fit_is_named_first(folder: pathlib.Path) -> None:
    for name, (content, _) in MISFITS.items():
        (folder / name).write_bytes(content)
    with pytest.raises(vltext.MismatchError) as raised:
        vltext.read_many(folder)
    assert {pathlib.Path(path).name for path in raised.value.misfits} == set(MISFITS)
    for name, (_, reason) in MISFITS.items():
        assert reason in raised.value.misfits[str(folder / name)]
        assert name in str(raised.value)
    skipping = vltext.read_many(folder, misfits="skip")
    assert skipping.to_arrow().to_pydict() == EXPECTED
    assert set(skipping.misfits) == set(raised.value.misfits)


def test_misfits_are_joined_on_request(folder: pathlib.Path) -> None:
    for name in ("6-lacks.csv", "7-more.csv"):
        (folder / name).write_bytes(MISFITS[name][0])
    table = vltext.read_many(folder, misfits="join").to_arrow().to_pydict()
    assert table["level"][-4:] == [None, None, 1.5, 2.5]
    assert table["extra"] == [None] * 13 + [1, 2]
    (folder / "8-types.csv").write_bytes(MISFITS["8-types.csv"][0])
    joined = vltext.read_many(folder, misfits="join")
    assert joined.types["level"] == "text"
    assert joined.to_arrow().to_pydict()["level"][:3] == ["1.5", "2.5", "3,5"]


def test_a_file_that_is_gone_is_a_misfit(folder: pathlib.Path) -> None:
    paths = [folder / "1-comma.csv", folder / "nowhere.csv"]
    with pytest.raises(vltext.MismatchError, match="nowhere.csv: .*No such file"):
        vltext.read_many(paths)


def test_integers_and_reals_are_reals(tmp_path: pathlib.Path) -> None:
    (tmp_path / "a.csv").write_bytes(b"x,y\n1,a\n2,b\n3,c\n")
    (tmp_path / "b.csv").write_bytes(b"x,y\n1.5,a\n2.5,b\n3.5,c\n")
    assert vltext.read_many(tmp_path).to_arrow().to_pydict()["x"] == [1.0, 2.0, 3.0, 1.5, 2.5, 3.5]


def test_a_late_cell_of_a_large_file_widens_the_whole(tmp_path: pathlib.Path) -> None:
    rows = b"".join(b"%d,a\n" % i for i in range(300_000))
    (tmp_path / "a.csv").write_bytes(b"x,y\n" + rows + b"0.5,b\n")
    (tmp_path / "b.csv").write_bytes(b"x,y\n1,a\n2,b\n3,c\n")
    many = vltext.read_many(tmp_path)
    assert many.types["x"] == "real"
    column = many.to_arrow().column("x")
    assert (len(column), column[300_000].as_py(), column[300_003].as_py()) == (300_004, 0.5, 3.0)


def test_an_unknown_way_with_misfits_is_refused() -> None:
    with pytest.raises(ValueError, match="misfits"):
        vltext.read_many([], misfits="ignore")  # type: ignore[arg-type]


@pytest.mark.dask
def test_a_frame_of_dask_has_the_rows_of_all_files(folder: pathlib.Path) -> None:
    frame = vltext.read_many(folder).to_dask()
    assert frame.npartitions == 5
    computed = frame.compute()
    assert computed["note"].tolist() == EXPECTED["note"]
    assert list(frame.dtypes) == list(computed.dtypes)
    assert float(frame["level"].sum().compute()) == 50.0


# --- interrupts -------------------------------------------------------------------------------------------

# A file is learned, and then is a pipe that never ends: the consumer is within the stream when the signal comes, and
# what is written after it is read only if nobody obeys.
INTERRUPTED = """
import os, signal, sys, threading, vltext
path, consumer = sys.argv[1:]
rows = b"1,2\\n" * 100_000
with open(path, "wb") as file:
    file.write(b"a,b\\n" + rows)
many = vltext.read_many(path)
os.unlink(path)
os.mkfifo(path)
written = []

def write():
    with open(path, "wb", buffering=0) as pipe:
        try:
            pipe.write(b"a,b\\n")
            for number in range(2000):
                if number == 20:
                    os.kill(os.getpid(), signal.SIGINT)
                pipe.write(rows)
                written.append(number)
        except BrokenPipeError:
            pass

def consume():
    if consumer == "pyarrow":
        import pyarrow
        return pyarrow.table(many)
    import polars
    return polars.DataFrame(many)

__import__(consumer)  # not in the middle of an import
writer = threading.Thread(target=write)
writer.start()
caught = []
try:
    try:
        consume()
    except Exception as error:  # that of the consumer; the interrupt comes after it
        caught.append(str(error))
        len(caught)
except KeyboardInterrupt:
    caught.append("KeyboardInterrupt")
writer.join()
print(len(written) < 1000, caught)
"""


@pytest.mark.parametrize("consumer", ["pyarrow", "polars"])
def test_a_consumer_of_a_stream_can_be_interrupted(tmp_path: pathlib.Path, consumer: str) -> None:
    done = subprocess.run([sys.executable, "-c", INTERRUPTED, tmp_path / "table.csv", consumer], timeout=100,
                          capture_output=True, text=True, check=False)
    assert done.stdout.startswith("True ["), done.stderr
    assert "KeyboardInterrupt" in done.stdout
