"""The progress bar: nowhere but on a terminal, and only if it is wanted."""
from __future__ import annotations

import fcntl
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


def shown_on_terminal(folder: pathlib.Path, wanted: str) -> bytes:
    """What a reading of the folder prints on standard error, a terminal."""
    ours, theirs = pty.openpty()
    fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))
    done = subprocess.Popen([sys.executable, "-c", READ, folder, wanted], stderr=theirs)
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
