"""Memory that runs out: each allocation of a call fails in its turn. Then there is a MemoryError or the result,
and nothing is left over."""
from __future__ import annotations

import os
import pathlib
import subprocess
import sys

import pytest

from conftest import ROOT

#: There is one: the extension was compiled.
COMPILER = os.environ.get("CXX", "g++")

# Streams are read by their own functions, since libraries that read them may end the process for lack of memory.
PROGRAM = """
import ctypes, gc, os, pickle, sys, tempfile
import vltext
from vltext import _core, _options

library = ctypes.CDLL(sys.argv[1])
library.live_blocks.restype = ctypes.c_long
CONTENT = (b"Gauge at the mill\\n\\nday;level [m];note\\n"
           + b"".join(b"2024-01-%02d;%d,5;\\"a\\"\\n" % (i % 28 + 1, i) for i in range(30)) + b"Sum;9;\\n")
folder = tempfile.mkdtemp()
path, other = os.path.join(folder, "gauge.csv"), os.path.join(folder, "other.csv")
for name in (path, other):
    with open(name, "wb") as file:
        file.write(CONTENT)
layout = vltext.detect(CONTENT)
table = vltext.read(CONTENT)
state, picture = layout._found.state(), layout._found.picture()
many = vltext.read_many([path, other])
settings = _options.detect_settings(())

Step = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)
Words = ctypes.CFUNCTYPE(ctypes.c_char_p, ctypes.c_void_p)
Release = ctypes.CFUNCTYPE(None, ctypes.c_void_p)

class Stream(ctypes.Structure):
    _fields_ = [("get_schema", Step), ("get_next", Step), ("get_last_error", Words), ("release", Release),
                ("private_data", ctypes.c_void_p)]

class Schema(ctypes.Structure):
    _fields_ = [("words", ctypes.c_void_p * 3), ("flags", ctypes.c_int64), ("num_children", ctypes.c_int64),
                ("children", ctypes.c_void_p * 2), ("release", ctypes.c_void_p), ("private_data", ctypes.c_void_p)]

class Array(ctypes.Structure):
    _fields_ = [("length", ctypes.c_int64), ("counts", ctypes.c_int64 * 4), ("pointers", ctypes.c_void_p * 3),
                ("release", ctypes.c_void_p), ("private_data", ctypes.c_void_p)]

pointer_in = ctypes.pythonapi.PyCapsule_GetPointer
pointer_in.restype, pointer_in.argtypes = ctypes.c_void_p, [ctypes.py_object, ctypes.c_char_p]

def made_by(step, stream, kind):
    made = kind()
    code = step(ctypes.addressof(stream), ctypes.addressof(made))
    if code == 12:
        raise MemoryError
    if code != 0:
        raise OSError(code, stream.get_last_error(ctypes.addressof(stream)))
    return made

def released(made):
    Release(made.release)(ctypes.addressof(made))
    return made

def streamed(source):
    capsule = source.__arrow_c_stream__()
    stream = Stream.from_address(pointer_in(capsule, b"arrow_array_stream"))
    schema = released(made_by(stream.get_schema, stream, Schema))
    lengths = []
    while (batch := made_by(stream.get_next, stream, Array)).release:
        lengths.append(released(batch).length)
    return schema.num_children, lengths

CALLS = {
    "detect": lambda: vltext.detect(CONTENT).to_dict(),
    "detect a file": lambda: vltext.detect(path).num_columns,
    "picture": lambda: layout._repr_html_(),
    "picture of a file": lambda: vltext.detect(path)._repr_html_(),
    "pickle": lambda: pickle.loads(pickle.dumps(layout))._repr_html_(),
    "report": lambda: str(layout),
    "read": lambda: vltext.read(CONTENT).to_pydict(),
    "read a file": lambda: vltext.read(path).num_rows,
    "scan": lambda: [batch.to_pydict() for batch in vltext.scan(CONTENT)],
    "a table as a stream": lambda: streamed(table),
    "a scan as a stream": lambda: streamed(vltext.scan(CONTENT)),
    "many as a stream": lambda: streamed(many),
    "many": lambda: vltext.read_many([path, other]).types,
    "parts": lambda: [part.read().num_rows for part in vltext.parts(path, 200)],
}

def left_after(call, number, all_later, expected):
    '''Whether an allocation failed, and how many blocks are left over.'''
    gc.collect()
    before = library.live_blocks()
    result = expected
    library.fail_at(number, all_later)
    try:
        result = call()
    except (MemoryError, vltext.Error) as error:
        assert isinstance(error, MemoryError) or "memory" in str(error).lower(), repr(error)
    finally:
        failed = library.stop_failing()
    assert result == expected, (number, all_later, result)
    del result
    gc.collect()
    return failed, library.live_blocks() - before

call = CALLS[sys.argv[2]]
expected = call()
assert call() == expected
for all_later in (0, 1):
    number = 1
    while True:
        failed, left = left_after(call, number, all_later, expected)
        assert left <= 0, (number, all_later, left)
        if not failed:
            break
        number += max(1, number // int(sys.argv[3]))
    assert number > 3, number
assert call() == expected
print("every failure was met")
"""

CALLS = ["detect", "detect a file", "picture", "picture of a file", "pickle", "report", "read", "read a file", "scan",
         "a table as a stream", "a scan as a stream", "many as a stream", "many", "parts"]


@pytest.fixture(scope="module")
def library(tmp_path_factory: pytest.TempPathFactory) -> pathlib.Path:
    made = tmp_path_factory.mktemp("library") / "libfailing_new.so"
    subprocess.run([COMPILER, "-std=c++20", "-O1", "-Wall", "-Wextra", "-shared", "-fPIC",
                    ROOT / "python/tests/failing_new.cpp", "-o", made], check=True)
    return made


@pytest.mark.parametrize("call", CALLS)
def test_each_allocation_may_fail(library: pathlib.Path, call: str) -> None:
    """Each of the first 20, and then one of about 20; each one with VLTEXT_FAULTS=1000000."""
    done = subprocess.run([sys.executable, "-c", PROGRAM, library, call, os.environ.get("VLTEXT_FAULTS", "20")],
                          env=dict(os.environ, LD_PRELOAD=str(library)), capture_output=True, text=True, check=False)
    assert (done.returncode, done.stdout) == (0, "every failure was met\n"), done.stderr[-2000:]
