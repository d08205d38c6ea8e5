"""parts() and read_parts(): the parts of a file make up the whole, whatever the file pretends."""
from __future__ import annotations

import functools
import gzip
import operator
import pathlib
import pickle

import pyarrow as pa
import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import vltext

#: More than any sample, so that the file goes on after it.
HEAD = b"".join(b"%d,text %d,%d.5\n" % (i, i, i) for i in range(400))
NAMES = b"id,word,level\n"


def whole_of(parts: vltext.Parts) -> pa.Table:
    return pa.concat_tables([part.read().to_arrow() for part in parts])


def check(file: pathlib.Path, blocksize: int, least: int = 2) -> vltext.Parts:
    """The parts of the file have the rows and the account of a single reading."""
    parts = vltext.parts(file, blocksize)
    assert len(parts) >= least
    single = vltext.read(file)
    assert whole_of(parts).equals(single.to_arrow().cast(whole_of(parts).schema))
    accounts = [part.read().account for part in parts]
    assert functools.reduce(operator.add, accounts) == single.account
    assert parts[0].begin == 0 and parts[-1].end == file.stat().st_size
    assert all(a.end == b.begin for a, b in zip(parts, parts[1:]))
    lines = [part.first_line for part in parts]
    assert lines == [1 + sum(a.num_lines for a in accounts[:i]) for i in range(len(parts))]
    return parts


#: What lies in wait where a part may begin: the rest of a file after its first 400 records.
DECEPTIONS = {
    "line endings within quotes": b'7,"a\n8,b,1.5\n9,c,2.5\n",3.5\n' * 300,
    "a quoted cell longer than a block": b'7,"' + b"8,x,1.5\n" * 800 + b'",2.5\n' + HEAD,
    "quotes within cells": b'7,5" nail,1.5\n8,6" nail\'s,2.5\n' * 300,
    "a quote that is never closed": b'7,"open,1.5\n' + HEAD,
    "doubled quotes at the ends of lines": b'7,"a""\n""b",1.5\n8,"""\n",2.5\n' * 300,
    "delimiters within quotes": b'7,"a,b,c\n,,",1.5\n' * 300,
    "line endings of two bytes": b"7,x,1.5\r\n" * 600,
    "blank lines and comments": b"7,x,1.5\n\n\n# 8,y,2.5\n" * 300,
    "records of another length": b"7,x\n8,y,1.5\n" * 300,
    "a cell that needs a wider type": HEAD + b"7.5,x,abc\n" + HEAD,
    "text that looks like names": b"id,word,level\n7,x,1.5\n" * 300,
    "marks of the byte order": b"\xef\xbb\xbf7,x,1.5\n" * 600,
    "no line ending at the end": HEAD + b"7,x,1.5",
    "a footer": HEAD + b"Total,,999.5\nEnd of file\n",
    "lines that look like a footer": (b"Total,,999.5\n" + HEAD) * 2,
}


@pytest.mark.parametrize("deception", DECEPTIONS)
@pytest.mark.parametrize("blocksize", [1, 300, 4000])
def test_the_parts_of_a_file_that_deceives_make_up_the_whole(deception: str, blocksize: int,
                                                             tmp_path: pathlib.Path) -> None:
    file = tmp_path / "deceptive.csv"
    file.write_bytes(NAMES + HEAD + DECEPTIONS[deception])
    check(file, blocksize, 1 if deception == "marks of the byte order" else 2)


PIECES = st.lists(st.sampled_from([b"7", b"x", b",", b",", b"\n", b"\n", b'"', b'""', b"\r\n", b" ", b"#",
                                   b"7,x,1.5\n", b'7,"x\ny",1.5\n', b"Total,,\n"]),
                  max_size=60).map(b"".join)


@settings(deadline=None, max_examples=60, suppress_health_check=[HealthCheck.too_slow])
@given(piece=PIECES, times=st.integers(1, 30), blocksize=st.sampled_from([1, 256, 700, 5000]))
def test_parts_of_any_text_make_up_the_whole(piece: bytes, times: int, blocksize: int,
                                             tmp_path_factory: pytest.TempPathFactory) -> None:
    file = tmp_path_factory.mktemp("parts") / "any.csv"
    file.write_bytes(NAMES + HEAD + piece * times + HEAD)
    check(file, blocksize, 1)


@pytest.mark.parametrize("encoding", ["utf-16-le", "utf-16-be", "windows-1252", "shift_jis"])
def test_parts_of_other_encodings_make_up_the_whole(encoding: str, tmp_path: pathlib.Path) -> None:
    file = tmp_path / "encoded.csv"
    word = "日本" if encoding == "shift_jis" else "Köln"
    text = (NAMES + HEAD).decode() + f"7,{word},1.5\n" * 600
    file.write_bytes(text.encode(encoding))
    check(file, 2000)


def test_what_is_compressed_or_short_is_one_part(tmp_path: pathlib.Path) -> None:
    packed, short = tmp_path / "packed.csv", tmp_path / "short.csv"
    packed.write_bytes(gzip.compress(NAMES + HEAD * 5))
    short.write_bytes(NAMES + b"7,x,1.5\n8,y,2.5\n9,z,3.5\n")
    for file, rows in ((packed, 2000), (short, 3)):
        parts = vltext.parts(file, 100)
        assert len(parts) == 1
        assert parts[0].read().num_rows == rows


def test_a_part_that_would_be_unpacked_does_not_begin_there(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "gzip.csv"
    file.write_bytes(NAMES.decode().encode("latin-1") + HEAD + "7,x,1.5\n\x1f\x8b,y,2.5\n".encode("latin-1") * 300)
    parts = vltext.parts(file, 1, encoding="ISO-8859-1", names_line=1)
    assert sum(part.read().num_rows for part in parts) == 1000


def test_parts_are_pickled_and_read_elsewhere(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "levels.csv"
    file.write_bytes(NAMES + HEAD * 3)
    part = vltext.parts(file, 3000)[1]
    again = pickle.loads(pickle.dumps(part))
    assert again == part
    assert again.read().to_pydict() == part.read().to_pydict()


def test_an_error_names_the_line_of_the_file(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "levels.csv"
    file.write_bytes(NAMES + HEAD * 3)
    parts = vltext.parts(file, 3000, import_error_rule="error")
    content = bytearray(file.read_bytes())
    place = content.index(b"7,text 7,", parts[1].begin)
    content[place:place + 1] = b"x"
    line = content.count(b"\n", 0, place) + 1
    file.write_bytes(content)
    with pytest.raises(vltext.ReadError) as raised:
        for part in parts:
            part.read()
    assert (raised.value.file, raised.value.line) == (str(file), line)


def test_a_file_that_has_become_shorter_is_an_error(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "levels.csv"
    file.write_bytes(NAMES + HEAD * 3)
    parts = vltext.parts(file, 3000)
    file.write_bytes(NAMES + HEAD)
    with pytest.raises(vltext.ReadError, match="shorter"):
        parts[-1].read()


@pytest.mark.parametrize("blocksize", [0, -1])
def test_a_blocksize_is_at_least_1(blocksize: int) -> None:
    with pytest.raises(ValueError, match="blocksize"):
        vltext.parts("examples/comma.csv", blocksize)


@pytest.mark.dask
def test_a_frame_of_dask_has_all_rows(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "levels.csv"
    file.write_bytes(NAMES + HEAD + DECEPTIONS["line endings within quotes"] + HEAD)
    frame = vltext.read_parts(file, 2000)
    single = vltext.read(file).to_pandas()
    assert frame.npartitions >= 3
    assert list(frame.dtypes) == list(single.dtypes)
    assert frame.compute().reset_index(drop=True).equals(single)
    assert int(frame["id"].sum().compute()) == int(single["id"].sum())
