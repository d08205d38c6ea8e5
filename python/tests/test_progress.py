"""The progress bar: nowhere but on a terminal, and only if it is wanted."""
from __future__ import annotations

import fcntl
import gzip
import os
import pathlib
import pty
import struct
import subprocess
import sys
import termios

import pytest

import vltext
from vltext._progress import Progress

READ = ("import sys, vltext\n"
        "vltext.read_many(sys.argv[1], progress=eval(sys.argv[2]))\n")


@pytest.fixture
def folder(tmp_path: pathlib.Path) -> pathlib.Path:
    for i in range(3):
        (tmp_path / f"{i}.csv").write_bytes(b"a,b\n1,x\n2,y\n3,z\n")
    return tmp_path


def shown_on_terminal(path: pathlib.Path, wanted: str, program: str = READ) -> bytes:
    """What a program prints on standard error, a terminal."""
    ours, theirs = pty.openpty()
    fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))
    done = subprocess.Popen([sys.executable, "-c", program, path, wanted], stderr=theirs)
    os.close(theirs)
    pieces = []
    while True:
        try:
            piece = os.read(ours, 4096)
        except OSError:  # the other end is closed
            break
        if not piece:
            break
        pieces.append(piece)
    os.close(ours)
    assert done.wait() == 0
    return b"".join(pieces)


def test_nothing_is_shown_where_nobody_looks(folder: pathlib.Path, capfd: pytest.CaptureFixture[str]) -> None:
    vltext.read_many(folder)
    assert capfd.readouterr() == ("", "")


def test_a_bar_can_be_refused_on_a_terminal(folder: pathlib.Path) -> None:
    assert shown_on_terminal(folder, "False") == b""


@pytest.mark.dask
def test_a_bar_counts_files_and_bytes_on_a_terminal(folder: pathlib.Path) -> None:
    shown = shown_on_terminal(folder, "None")
    assert b"3/3" in shown or b"0/3" in shown
    assert b"files" in shown


def test_without_a_bar_the_counts_are_kept() -> None:
    progress = Progress(2, "files", shown=False)
    progress.add(10)
    progress.add(0, num_failed=1)
    progress.close()
    assert (progress._bytes, progress._failed) == (10, 1)


# --- one file ---------------------------------------------------------------------------------------------

#: A bar is drawn now and then; here each time.
EAGER = ("import functools, sys, tqdm.auto, vltext\n"
         "tqdm.auto.tqdm = functools.partial(tqdm.auto.tqdm, mininterval=0, miniters=1)\n")
PROGRAMS = {
    "read": EAGER + "vltext.read(sys.argv[1], progress=eval(sys.argv[2]))\n",
    "scan": EAGER + "for batch in vltext.scan(sys.argv[1], progress=eval(sys.argv[2])): pass\n",
    "parts": EAGER + "vltext.parts(sys.argv[1], 100_000, progress=eval(sys.argv[2]))\n",
    "read_parts": EAGER + "vltext.read_parts(sys.argv[1], 100_000, progress=eval(sys.argv[2]))\n",
}


@pytest.fixture
def levels(tmp_path: pathlib.Path) -> pathlib.Path:
    file = tmp_path / "levels.csv"
    file.write_bytes(b"a,b\n" + b"1,x\n" * 700_000)
    return file


@pytest.mark.dask
@pytest.mark.parametrize("way", PROGRAMS)
def test_a_bar_counts_the_bytes_of_a_file(levels: pathlib.Path, way: str) -> None:
    shown = shown_on_terminal(levels, "True", PROGRAMS[way])
    assert b"2.80M/2.80M" in shown
    assert b"B/s" in shown


@pytest.mark.dask
@pytest.mark.parametrize("way", PROGRAMS)
@pytest.mark.parametrize("wanted", ["False", "None"])
def test_a_short_file_has_a_bar_only_on_request(levels: pathlib.Path, way: str, wanted: str) -> None:
    assert shown_on_terminal(levels, wanted, PROGRAMS[way]) == b""


@pytest.mark.dask
def test_the_end_of_a_packed_file_is_not_known(levels: pathlib.Path) -> None:
    packed = levels.with_suffix(".csv.gz")
    packed.write_bytes(gzip.compress(levels.read_bytes()))
    shown = shown_on_terminal(packed, "True", PROGRAMS["read"])
    assert b"2.80MB" in shown
    assert b"%" not in shown


def test_what_progress_raises_ends_the_reading(levels: pathlib.Path) -> None:
    from vltext import _core
    from vltext._options import read_settings

    def stop(num_bytes: int) -> None:
        raise RuntimeError(str(num_bytes > 0))

    with pytest.raises(RuntimeError, match="True"):
        _core.read(os.fsencode(levels), read_settings(()), None, stop)


@pytest.mark.parametrize("source", ["", "none.csv", "."])
def test_errors_are_those_of_the_reading(source: str, tmp_path: pathlib.Path) -> None:
    with pytest.raises(vltext.FileError):
        vltext.read(tmp_path / source, progress=True)
