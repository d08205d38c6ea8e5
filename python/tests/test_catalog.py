"""Catalogues on one machine: files of every kind, elsewhere, Parquet, interruption."""
from __future__ import annotations

import json
import os
import pathlib
import signal
import subprocess
import sys
import time
import zipfile

import pytest

import vltext
from vltext import _fleet
from vltext._fleet import Batch, Entry, Work

TABLE = b"time,level\n2024-01-01,1.5\n2024-01-02,2.5\n2024-01-03,3.5\n"
SEMICOLONS = TABLE.replace(b",", b";")


@pytest.fixture
def folder(tmp_path: pathlib.Path) -> pathlib.Path:
    data = tmp_path / "data"
    (data / "below").mkdir(parents=True)
    for number in range(25):
        (data / f"{number:02}.csv").write_bytes(TABLE)
    (data / "below" / "x.csv").write_bytes(SEMICOLONS)
    return data


def names(catalog: vltext.Catalog) -> list[str]:
    return [pathlib.Path(row["path"]).name for row in catalog]


# --- which files ------------------------------------------------------------------------------------------


def test_a_folder_a_pattern_and_a_list(folder: pathlib.Path) -> None:
    assert len(vltext.catalog(folder)) == 25
    assert names(vltext.catalog(folder, recursive=True))[-1] == "x.csv"
    assert len(vltext.catalog(str(folder / "0*.csv"))) == 10
    assert names(vltext.catalog([folder / "07.csv", str(folder / "03.csv")])) == ["07.csv", "03.csv"]
    assert len(vltext.catalog([folder, folder / "07.csv"])) == 25
    assert len(vltext.catalog([])) == 0


def test_a_name_with_magic_is_a_file(tmp_path: pathlib.Path) -> None:
    (tmp_path / "[a]*.csv").write_bytes(TABLE)
    assert names(vltext.catalog(tmp_path / "[a]*.csv")) == ["[a]*.csv"]


def test_hostile_names(tmp_path: pathlib.Path) -> None:
    for name in (b"a\nb", b'"', b"\xff\xfe", b"-n", b"\x1b[2J"):
        with open(os.fsencode(tmp_path) + b"/" + name, "wb") as file:
            file.write(TABLE)
    rows = list(vltext.catalog(tmp_path))
    assert [row["status"] for row in rows] == ["table"] * 5
    strange = [row for row in rows if "path_bytes" in row]
    assert [bytes.fromhex(row["path_bytes"])[-2:] for row in strange] == [b"\xff\xfe"]


def test_what_fails_is_a_row(tmp_path: pathlib.Path) -> None:
    os.mkfifo(tmp_path / "pipe")
    with open(tmp_path / "huge", "wb") as file:
        file.truncate(10**12)
    catalog = vltext.catalog([tmp_path / "pipe", "/dev/zero", tmp_path / "missing", tmp_path / "huge"])
    assert [row["status"] for row in catalog] == ["error", "error", "error", "no table"]
    assert catalog.errors[str(tmp_path / "missing")] == "No such file or directory"


def test_options_are_those_of_detect(folder: pathlib.Path) -> None:
    assert next(iter(vltext.catalog(folder / "00.csv", delimiter=";")))["delimiters"] == [";"]
    with pytest.raises(vltext.OptionError):
        vltext.catalog(folder, delimeter=";")  # type: ignore[call-arg]


# --- a process that dies ----------------------------------------------------------------------------------

CRASHING = """
import os, time
from vltext import _fleet
lines_of = _fleet._lines_of
def crash(paths, arguments, jobs):
    if any(path.endswith(b"07.csv") for path in paths): os.kill(os.getpid(), 9)
    if any(path.endswith(b"11.csv") for path in paths): time.sleep(60)
    return lines_of(paths, arguments, jobs)
_fleet._REQUESTS["lines"] = crash
_fleet.serve()
"""


def test_a_file_that_ends_the_process_is_a_row(folder: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(_fleet.Isolated, "command", CRASHING.replace("11", "none"))
    catalog = vltext.catalog(folder, batch_size=10)
    assert len(catalog) == 25
    assert catalog.errors == {str(folder / "07.csv"): _fleet.DIED}


def test_a_file_that_takes_too_long_is_a_row(folder: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(_fleet.Isolated, "command", CRASHING)
    catalog = vltext.catalog([folder / "11.csv", folder / "12.csv"], timeout=3)
    assert [row["status"] for row in catalog] == ["error", "table"]
    assert catalog.errors == {str(folder / "11.csv"): _fleet.TOOK_TOO_LONG}


def test_a_process_that_cannot_be_started_is_an_error(folder: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(_fleet.Isolated, "command", "raise SystemExit(3)")
    with pytest.raises(RuntimeError, match="cannot be started"):
        vltext.catalog(folder)


def test_an_interrupted_catalogue_ends_at_once(folder: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(_fleet.Isolated, "command", CRASHING.replace('b"11.csv"', 'b".csv"').replace("07", "none"))
    results = _fleet.look_here([Batch((Entry(str(folder / "00.csv")),))] * 4, Work())
    start = time.monotonic()
    with pytest.raises(KeyboardInterrupt):
        signal.signal(signal.SIGALRM, lambda *_: signal.raise_signal(signal.SIGINT))
        signal.setitimer(signal.ITIMER_REAL, 0.5)
        next(results)
    assert time.monotonic() - start < 10


# --- Parquet ----------------------------------------------------------------------------------------------

pyarrow = pytest.importorskip("pyarrow")


def test_parts_have_the_rows(folder: pathlib.Path, tmp_path: pathlib.Path) -> None:
    made = vltext.catalog(folder, to=tmp_path / "out", batch_size=10, recursive=True)
    assert len(made) == 26
    assert len(list((tmp_path / "out").glob("part-*.parquet"))) == 3
    rows = [{name: value for name, value in row.items() if value is not None} for row in made]
    expected = [{name: value for name, value in row.items() if value is not None}
                for row in vltext.catalog(folder, recursive=True)]
    for row in (*rows, *expected):
        for column in row["columns"]:
            column["unit"] = column.get("unit")
    assert rows == expected
    assert list(vltext.Catalog.open(tmp_path / "out")) == list(made)


def test_rows_are_a_table(folder: pathlib.Path) -> None:
    table = vltext.catalog(folder).to_arrow()
    assert table.num_rows == 25
    assert table.column("size").to_pylist() == [len(TABLE)] * 25
    assert table.column("columns")[0].as_py()[1] == {"name": "level", "kind": "decimal", "unit": None}
    assert vltext.catalog([]).to_arrow().num_rows == 0


def test_what_is_known_and_unchanged_is_not_looked_at_again(folder: pathlib.Path, tmp_path: pathlib.Path,
                                                            monkeypatch: pytest.MonkeyPatch) -> None:
    out = tmp_path / "out"
    vltext.catalog(folder, to=out, batch_size=10)
    looked: list[str] = []
    look_here = _fleet.look_here

    def spy(batches: list[Batch], work: Work) -> object:
        looked.extend(pathlib.Path(entry.path).name for batch in batches for entry in batch.entries)
        return look_here(batches, work)

    monkeypatch.setattr(_fleet, "look_here", spy)
    vltext.catalog(folder, to=out)
    assert looked == []
    (folder / "03.csv").write_bytes(SEMICOLONS + b"2024-01-04;4.5\n")
    (folder / "new.csv").write_bytes(TABLE)
    made = vltext.catalog(folder, to=out)
    assert looked == ["03.csv", "new.csv"]
    assert sorted(names(made)) == sorted([*(f"{number:02}.csv" for number in range(25)), "new.csv"])
    assert {tuple(row["delimiters"]) for row in made if row["path"].endswith("03.csv")} == {(";",)}


def test_errors_are_tried_again(tmp_path: pathlib.Path) -> None:
    out, path = tmp_path / "out", tmp_path / "late.csv"
    assert vltext.catalog([path], to=out).errors
    path.write_bytes(TABLE)
    again = vltext.catalog([path], to=out)
    assert [row["status"] for row in again] == ["table"]


def test_one_process_writes_at_a_time(folder: pathlib.Path, tmp_path: pathlib.Path) -> None:
    from vltext._catalog import _Folder

    with _Folder(str(tmp_path / "out")), pytest.raises(RuntimeError, match="another process"):
        vltext.catalog(folder, to=tmp_path / "out")


KILLED = """
import sys, os, vltext
from vltext import _catalog
write = _catalog._Folder.write
done = []
def killing(self, batch, lines):
    if len(done) == 1: open(self.path + "/.part-half", "wb").write(b"PAR1")
    if len(done) == 2: os.kill(os.getpid(), 9)
    write(self, batch, lines); done.append(batch)
_catalog._Folder.write = killing
vltext.catalog(sys.argv[1], to=sys.argv[2], batch_size=4)
"""


def test_a_killed_client_loses_no_row_and_makes_none_twice(folder: pathlib.Path, tmp_path: pathlib.Path) -> None:
    out = tmp_path / "out"
    for _ in range(2):
        assert subprocess.run([sys.executable, "-c", KILLED, folder, out], check=False).returncode == -signal.SIGKILL
    assert 0 < len(vltext.Catalog.open(out)) < 25
    made = vltext.catalog(folder, to=out, batch_size=4)
    assert names(made) == [f"{number:02}.csv" for number in range(25)]
    assert not list(out.glob(".part-*"))


# --- files elsewhere --------------------------------------------------------------------------------------

fsspec = pytest.importorskip("fsspec")


def without_place(rows: object) -> list[dict[str, object]]:
    return [{name: value for name, value in row.items() if name not in {"path", "modified", "etag"}}
            for row in rows]  # type: ignore[attr-defined]


@pytest.mark.parametrize("isolate", [False, True])
def test_files_in_memory(folder: pathlib.Path, isolate: bool) -> None:
    memory = fsspec.filesystem("memory")
    memory.pipe({f"/many/{path.name}": path.read_bytes() for path in folder.glob("*.csv")})
    made = list(vltext.catalog("memory://many", isolate=isolate))
    assert without_place(made) == without_place(vltext.catalog(folder))
    assert made[3]["path"] == "memory:///many/03.csv"
    assert len(vltext.catalog("memory://many/0*.csv")) == 10
    memory.rm("/many", recursive=True)


def test_files_in_an_archive(folder: pathlib.Path, tmp_path: pathlib.Path) -> None:
    archive = tmp_path / "a.zip"
    with zipfile.ZipFile(archive, "w") as file:
        for path in sorted(folder.glob("*.csv")):
            file.write(path, path.name)
    made = list(vltext.catalog(f"zip://::{archive}"))
    assert without_place(made) == without_place(vltext.catalog(folder))
    assert made[3]["path"] == f"zip://03.csv::{archive}"


def test_files_that_are_not_there() -> None:
    made = list(vltext.catalog("memory://nothing.csv"))
    assert made[0]["status"] == "error"
    assert "nothing.csv" in made[0]["error"]


def test_of_a_large_file_only_the_head_and_the_tail_are_read(tmp_path: pathlib.Path,
                                                             monkeypatch: pytest.MonkeyPatch) -> None:
    content = TABLE + b"2024-02-01,7.25\n" * 400_000 + b"Total,\nBye\n"
    path = tmp_path / "large.csv"
    path.write_bytes(content)
    memory = fsspec.filesystem("memory")
    memory.pipe("/large.csv", content)
    read = []
    cat_file = type(memory).cat_file

    def counting(self: object, name: str, start: int | None = None, end: int | None = None, **more: object) -> bytes:
        piece: bytes = cat_file(self, name, start=start, end=end, **more)
        read.append(len(piece))
        return piece

    monkeypatch.setattr(type(memory), "cat_file", counting)
    made = list(vltext.catalog("memory://large.csv"))
    assert without_place(made) == without_place(vltext.catalog(path))
    assert sum(read) == 524_288 + 65_536
    memory.rm("/large.csv")


def test_a_change_elsewhere_is_noticed(tmp_path: pathlib.Path) -> None:
    memory = fsspec.filesystem("memory")
    memory.pipe("/change/a.csv", TABLE)
    vltext.catalog("memory://change", to=tmp_path / "out")
    memory.pipe("/change/a.csv", SEMICOLONS + b"2024-01-04;4.5\n")
    (row,) = vltext.catalog("memory://change", to=tmp_path / "out")
    assert row["delimiters"] == [";"]
    memory.rm("/change", recursive=True)


# --- progress ---------------------------------------------------------------------------------------------


def test_progress_is_shown_on_request(folder: pathlib.Path, capfd: pytest.CaptureFixture[str]) -> None:
    pytest.importorskip("tqdm")
    vltext.catalog([folder, folder / "missing"], progress=True)
    shown = capfd.readouterr().err
    assert "0/26" in shown
    vltext.catalog(folder)
    vltext.catalog(folder, progress=False)
    assert capfd.readouterr().err == ""


def test_lines_are_json(folder: pathlib.Path, tmp_path: pathlib.Path) -> None:
    saved = tmp_path / "rows.jsonl"
    vltext.catalog(folder, to=tmp_path / "out").to_jsonl(saved)
    assert len([json.loads(line) for line in saved.read_text().splitlines()]) == 25
    assert len(vltext.Catalog.open(saved)) == 25
    assert repr(vltext.Catalog.open(saved)) == "<vltext.Catalog: 25 files>"
