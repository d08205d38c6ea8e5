"""detect() and Layout: they say what the tool says."""
from __future__ import annotations

import contextlib
import gzip
import io
import json
import pathlib
import pickle
import subprocess
import sys
import threading

import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import vltext
from conftest import ROOT, TOOL, example_files, layout_by_tool, run_tool


def test_every_example_has_the_layout_of_the_tool() -> None:
    files = example_files()
    assert len(files) >= 40
    answers = json.loads(run_tool("--json", *files))["files"]
    assert len(answers) == len(files)
    for file, answer in zip(files, answers):
        assert vltext.detect(file).to_dict() == answer, file.name


def test_options_are_the_flags_of_the_tool() -> None:
    path = "examples/semicolon.csv"
    layout = vltext.detect(path, delimiter=[",", ";"], num_header_lines=1, no_tail=True, lines=5,
                           explain=True)
    assert layout.to_dict() == layout_by_tool(path, "--delimiter=,", "--delimiter=;",
                                              "--num-header-lines=1", "--no-tail", "--lines=5",
                                              "--explain")


def test_every_flag_of_the_library_is_an_option() -> None:
    from vltext import _core, _options

    flags = {flag[2:].replace("-", "_") for flag, _ in _core.library_flags()}
    assert flags < _options.DETECT_NAMES
    assert _options.DETECT_NAMES - flags == {"judge", "lines", "no_tail", "sample", "max_bytes",
                                             "explain"}
    assert _options.READ_NAMES - flags == {"judge", "lines", "no_tail", "as_text",
                                           "exact_decimals", "widen", "no_widen", "threads"}


#: Bytes that are likely to be parts of a table, or to break one.
PIECES = st.lists(st.sampled_from([b"a", b"17", b"3,5", b",", b";", b"\t", b'"', b"\n", b"\r\n",
                                   b" ", b"\xff", b"\x00", b"\xc3\xa4", b"2024-01-02", b"#"]),
                  max_size=40).map(b"".join)


#: Of what seems to be compressed, the tool says that it is damaged.
BYTES = st.binary(max_size=300).filter(lambda content: not content.startswith((b"\x1f\x8b", b"\x28\xb5\x2f\xfd")))


@settings(deadline=None, max_examples=30, suppress_health_check=[HealthCheck.too_slow])
@given(contents=st.lists(st.one_of(PIECES, BYTES), min_size=20, max_size=20))
def test_any_bytes_have_the_layout_of_the_tool(contents: list[bytes],
                                               tmp_path_factory: pytest.TempPathFactory) -> None:
    folder = tmp_path_factory.mktemp("bytes")
    files = [folder / f"{i}.csv" for i in range(len(contents))]
    for file, content in zip(files, contents):
        file.write_bytes(content)
    answers = json.loads(run_tool("--json", *files))["files"]
    for file, content, answer in zip(files, contents, answers):
        layout = vltext.detect(file)
        assert layout.to_dict() == answer
        assert pickle.loads(pickle.dumps(layout)).to_dict() == answer
        assert vltext.detect(content).delimiters == layout.delimiters


# --- inputs ---------------------------------------------------------------------------------------

CONTENT = b"day;level [m]\n2024-01-02;3,5\n2024-01-03;3,9\n2024-01-04;4,1\n"


def test_all_forms_of_an_input_give_the_same(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "levels.csv"
    file.write_bytes(CONTENT)
    expected = vltext.detect(str(file)).columns
    assert [column.kind for column in expected] == ["date", "decimal"]
    with file.open("rb") as opened:
        for source in (file, CONTENT, bytearray(CONTENT), memoryview(CONTENT), io.BytesIO(CONTENT),
                       opened, gzip.compress(CONTENT)):
            assert vltext.detect(source).columns == expected
            assert vltext.read(source)["level [m]"] == [3.5, 3.9, 4.1]


def test_a_file_object_is_read_from_its_position_and_put_back() -> None:
    file = io.BytesIO(b"junk" + CONTENT)
    file.seek(4)
    assert vltext.detect(file).columns[0].name == "day"
    assert file.tell() == 4


def test_text_is_refused_where_bytes_are_expected() -> None:
    with pytest.raises(TypeError, match="binary mode"):
        vltext.detect(io.StringIO("a,b"))  # type: ignore[arg-type]
    with pytest.raises(TypeError, match="got int"):
        vltext.detect(7)  # type: ignore[arg-type]


def test_a_path_need_not_be_utf8(tmp_path: pathlib.Path) -> None:
    path = str(tmp_path) + "/\udcff;\n.csv"
    pathlib.Path(path).write_bytes(CONTENT)
    layout = vltext.detect(path)
    assert layout.source == path
    assert layout.delimiter == ";"
    with pytest.raises(vltext.FileError) as raised:
        vltext.detect(path + "x")
    assert "No such file" in str(raised.value)


# --- errors ----------------------------------------------------------------------------------------

@pytest.mark.parametrize(("options", "option", "part"), [
    ({"delimitr": ";"}, "delimitr", "did you mean delimiter?"),
    ({"xyzzy": 1}, "xyzzy", "there is no such option"),
    ({"threads": 1}, "threads", "there is no such option"),  # of read() alone
    ({"num_header_lines": -1}, "num_header_lines", "Expected one whole number, 0 or larger"),
    ({"quote": "ab"}, "quote", "Expected one character"),
    ({"lines": "x"}, "lines", "Expected a whole number"),
    ({"encoding": "nonsense"}, "encoding", "unknown encoding"),
    ({"no_tail": "yes"}, "no_tail", "Expected True or False"),
    ({"delimiter": "a\0b"}, "delimiter", "without U+0000"),
    ({"delimiter": object()}, "delimiter", "got object"),
    ({"names_line": 99}, "variable_names_line", "Expected a line from"),
    ({"variable_widths": [4, 0]}, "variable_widths", "1 or larger"),
])
def test_an_option_error_names_the_option(options: dict[str, object], option: str,
                                          part: str) -> None:
    with pytest.raises(vltext.OptionError) as raised:
        vltext.detect(CONTENT, **options)  # type: ignore[arg-type]
    assert raised.value.option == option
    assert part in str(raised.value)
    again = pickle.loads(pickle.dumps(raised.value))
    assert (again.option, str(again)) == (option, str(raised.value))


def test_all_errors_are_below_one() -> None:
    for error in (vltext.FileError, vltext.OptionError, vltext.ReadError, vltext.UnsupportedError,
                  vltext.MismatchError):
        assert issubclass(error, vltext.Error)


# --- a layout as a value -----------------------------------------------------------------------------

def test_a_layout_does_not_change() -> None:
    layout = vltext.detect(CONTENT)
    for name in ("delimiter", "_found", "other"):
        with pytest.raises(AttributeError):
            setattr(layout, name, 1)
        with pytest.raises(AttributeError):
            delattr(layout, name)
    layout.to_dict()["columns"].clear()
    assert len(layout.columns) == 2
    with pytest.raises(TypeError):
        vltext.Layout()


def test_layouts_are_equal_if_they_say_the_same(tmp_path: pathlib.Path) -> None:
    files = [tmp_path / "a.csv", tmp_path / "b.csv", tmp_path / "c.csv"]
    for file in files[:2]:
        file.write_bytes(CONTENT)
    files[2].write_bytes(CONTENT.replace(b";", b"|"))
    a, b, c = map(vltext.detect, files)
    assert a == b and hash(a) == hash(b)
    assert a != c
    assert a != "a"
    assert {a, b, c} == {a, c}


def test_a_layout_is_pickled_with_its_source_and_options() -> None:
    layout = vltext.detect("examples/semicolon.csv", lines=7, explain=True, sample="spread")
    again = pickle.loads(pickle.dumps(layout))
    assert again == layout
    assert again.to_dict() == layout.to_dict()
    assert again.source == "examples/semicolon.csv"
    assert again.to_duckdb_sql() == layout.to_duckdb_sql()


def test_another_process_reads_by_a_layout(tmp_path: pathlib.Path) -> None:
    (tmp_path / "layout").write_bytes(pickle.dumps(vltext.detect(CONTENT)))
    (tmp_path / "table").write_bytes(CONTENT)
    program = ("import pickle, sys, vltext; folder = sys.argv[1];"
               "layout = pickle.load(open(folder + '/layout', 'rb'));"
               "print(vltext.read(folder + '/table', layout=layout)['level [m]'])")
    done = subprocess.run([sys.executable, "-c", program, tmp_path], capture_output=True,
                          check=True, text=True)
    assert done.stdout == "[3.5, 3.9, 4.1]\n"


@pytest.mark.parametrize("state", [b"", b"x", b"0.1.0\n", b"0.1.0\n" + b"\xff" * 60, b"9.9.9\nabc"])
def test_what_is_no_state_is_refused(state: bytes) -> None:
    from vltext import _core

    with pytest.raises(ValueError):
        _core.Layout.of_state(state, b"")


@pytest.mark.parametrize("picture", [b"x", b"0.1.0\n", b"0.1.0\n" + b"\xff" * 60, b"9.9.9\nabc"])
def test_what_is_no_picture_is_refused(picture: bytes) -> None:
    from vltext import _core

    state = vltext.detect(CONTENT)._found.state()
    with pytest.raises(ValueError):
        _core.Layout.of_state(state, picture)


@given(data=st.data())
@settings(deadline=None, max_examples=200)
def test_a_state_that_was_cut_or_changed_is_refused_or_read(data: st.DataObject) -> None:
    from vltext import _core

    found = vltext.detect(CONTENT)._found
    state, picture = bytearray(found.state()), bytearray(found.picture())
    changed = data.draw(st.sampled_from([state, picture]))
    place = data.draw(st.integers(6, len(changed) - 1))
    changed[place] = data.draw(st.integers(0, 255))
    with contextlib.suppress(ValueError):
        made = _core.Layout.of_state(bytes(state), bytes(picture))
        made.state()
        if changed is picture:
            made.html(b"")
    del changed[place:]
    with pytest.raises(ValueError):
        _core.Layout.of_state(bytes(state), bytes(picture))


def test_a_layout_prints_itself() -> None:
    layout = vltext.detect("examples/comma.csv")
    assert repr(layout) == "<vltext.Layout: delimited by ',', 5 columns, UTF-8, 99 % sure>"
    assert str(layout) == run_tool("examples/comma.csv").decode().rstrip("\n")
    assert repr(vltext.detect(b"")) == "<vltext.Layout: empty, no table>"


def test_columns_say_what_the_json_says() -> None:
    layout = vltext.detect(CONTENT)
    first, second = layout.columns
    assert (first.name, first.kind, first.date_format) == ("day", "date", "%Y-%m-%d")
    assert (second.name, second.kind, second.unit, second.decimal) == ("level [m]", "decimal", "m",
                                                                      ",")
    assert second.examples == ("3,5", "3,9", "4,1")
    assert [(run.role, run.first_line, run.last_line) for run in layout.lines] == [
        ("names", 1, 1), ("data", 2, 4)]
    assert all(rival.probability < (layout.confidence or 0) for rival in layout.rivals)


# --- threads and signals ------------------------------------------------------------------------------

def test_threads_may_detect_at_the_same_time() -> None:
    files = example_files()[:30]
    expected = [vltext.detect(file) for file in files]
    found: dict[int, list[vltext.Layout]] = {}

    def work(number: int) -> None:
        found[number] = [vltext.detect(file) for file in files]

    threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert all(found[i] == expected for i in range(4))


def test_the_tool_is_the_package() -> None:
    for arguments in (["examples/comma.csv"], ["--json", "examples/units.csv"], ["--version"],
                      ["convert", "--to", "jsonl", "examples/units.csv"], ["--nonsense"],
                      ["nowhere.csv"]):
        ours = subprocess.run([sys.executable, "-m", "vltext", *arguments], cwd=ROOT,
                              capture_output=True, check=False)
        theirs = subprocess.run([TOOL, *arguments], cwd=ROOT, capture_output=True, check=False)
        assert (ours.returncode, ours.stdout, ours.stderr) == (theirs.returncode, theirs.stdout,
                                                               theirs.stderr)
