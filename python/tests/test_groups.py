"""Groups and drift: those of the tool, and the dates in names."""
from __future__ import annotations

import json
import pathlib

import pytest

import vltext
from conftest import run_tool
from vltext._drift import date_in

COLUMNS = ("time", "level [cm]", "flag", "note")


def table(separator: str = ",", columns: tuple[str, ...] = COLUMNS, lines: int = 30, end: str = "\n",
          encoding: str = "utf-8", decimal: str = ".") -> bytes:
    rows = [separator.join(columns)]
    for i in range(lines):
        cells = {"time": f"2024-01-{i % 28 + 1:02} 10:00", "level [cm]": f"{i * 3 % 17}{decimal}{i % 10}",
                 "flag": "ab"[i % 2], "note": ("Größe", "Straße", "gut", "Ärger")[i % 4], "depth": str(i)}
        rows.append(separator.join(cells[name] for name in columns))
    return (end.join(rows) + end).encode(encoding)


@pytest.fixture
def folder(tmp_path: pathlib.Path) -> pathlib.Path:
    """Two groups, odd files of most kinds, and files without a table."""
    contents = {
        "01.csv": table(), "02.csv": table(lines=50), "03.csv": table(encoding="utf-16"),
        "04.csv": table(columns=COLUMNS[:3]),
        "05.csv": table(";", decimal=","), "06.csv": table(end="\r\n"), "07.csv": table(columns=(*COLUMNS, "depth")),
        "08.csv": table(columns=("note", "flag", "time", "level [cm]")), "09.csv": b"# made\n# up\n" + table(),
        "10.csv": b"\xef\xbb\xbf" + table(), "11.csv": table().replace(b"[cm]", b"[mm]"),
        "12.csv": table().split(b"\n", 1)[1],
        "other1.txt": b"x|y\n1|2\n3|4\n", "other2.txt": b"x|y\n5|6\n7|8\n", "alone.csv": b"p;q;r\n1;2;3\n4;5;6\n",
        "empty": b"", "damaged.gz": b"BZh9\x31\x41\x59\x26\x53\x59",
    }
    for name, content in contents.items():
        (tmp_path / name).write_bytes(content)
    return tmp_path


def tool(*arguments: str) -> str:
    return run_tool(*arguments, status=[0]).decode()


def as_document(found: vltext.Groups) -> dict[str, object]:
    return {
        "num_files": found.num_files,
        "groups": [(group.layout_fingerprint, group.schema_fingerprint, list(group.files),
                    [(odd.path, list(odd.differences)) for odd in group.odd]) for group in found.groups],
        "doubtful": found.doubtful, "no_table": found.no_table, "errors": found.errors,
    }


def document_of(text: str) -> dict[str, object]:
    made = json.loads(text)
    return {
        "num_files": made["num_files"],
        "groups": [(group["layout_fingerprint"], group["schema_fingerprint"], group["files"],
                    [(odd["path"], odd["differences"]) for odd in group["odd"]]) for group in made["groups"]],
        "doubtful": {each["path"]: each["confidence"] for each in made["doubtful"]},
        "no_table": {each["path"]: each["no_table"] for each in made["no_table"]},
        "errors": {each["path"]: each["error"] for each in made["errors"]},
    }


def test_groups_are_those_of_the_tool(folder: pathlib.Path) -> None:
    found = vltext.groups(vltext.catalog(folder))
    assert as_document(found) == document_of(tool("groups", "--json", str(folder)))
    assert found.num_files == 17
    assert [len(group.files) for group in found.groups] == [3, 2, 1]  # comments set no file apart
    assert len(found.odd) == 9


def test_rows_are_those_of_the_tool(folder: pathlib.Path) -> None:
    rows = [json.loads(line) for line in tool("catalog", str(folder)).splitlines()]
    assert list(vltext.catalog(folder)) == rows
    assert list(vltext.catalog(folder, isolate=False)) == rows


def test_lines_are_read_by_the_tool(folder: pathlib.Path, tmp_path: pathlib.Path) -> None:
    saved = tmp_path / ".rows"
    vltext.catalog(folder).to_jsonl(saved)
    assert tool("groups", str(saved)) == tool("groups", str(folder))


def test_odd_files_are_named(folder: pathlib.Path) -> None:
    words = {pathlib.Path(odd.path).name: odd.differences for odd in vltext.catalog(folder).groups().odd}
    assert words["04.csv"] == ("a column less (note)",)
    assert words["05.csv"] == ("semicolon", "decimal comma")
    assert words["06.csv"] == ("CRLF line endings",)
    assert words["07.csv"] == ("a column more (depth)",)
    assert words["08.csv"] == ("columns in another order",)
    assert words["10.csv"] == ("a byte order mark",)
    assert "semicolon, decimal comma" in str(vltext.catalog(folder).groups())


@pytest.mark.parametrize(("path", "date", "name"), [
    ("2024-03-01.csv", "2024-03-01", "{date}.csv"),
    ("a/20240301.csv", "2024-03-01", "a/{date}.csv"),
    ("a_2024_03_01_b", "2024-03-01", "a_{date}_b"),
    ("2024/03/01/x", "2024-03-01", "{date}/x"),
    ("year=2024/month=03/day=01/x", "2024-03-01", "year={date}/x"),
    ("year=2024/month=03/x", "2024-03", "year={date}/x"),
    ("x-2024-03.csv", "2024-03", "x-{date}.csv"),
    ("x-2024.csv", "2024", "x-{date}.csv"),
    ("2023/2024-03-01.csv", "2024-03-01", "2023/{date}.csv"),
    ("2024-13-01.csv", "2024", "{date}-13-01.csv"),
    ("2024-03_01.csv", "2024-03", "{date}_01.csv"),
])
def test_a_date_is_found(path: str, date: str, name: str) -> None:
    assert date_in(path) == (date, name)


@pytest.mark.parametrize("path", ["", "a.csv", "12345678.csv", "station120240301.csv", "1899-01-01", "x2100y"])
def test_no_date_is_found(path: str) -> None:
    assert date_in(path) is None


def test_drift_names_each_change(tmp_path: pathlib.Path) -> None:
    shorter = COLUMNS[:3]
    for month, content in {"01": table(), "02": table(), "03": table(columns=shorter), "04": table(columns=shorter),
                           "05": table(";", columns=shorter)}.items():
        (tmp_path / f"gauge-2024-{month}.csv").write_bytes(content)
    (tmp_path / "readings.csv").write_bytes(table())
    found = vltext.drift(vltext.catalog(tmp_path))
    (series,) = found.series
    assert series.name == str(tmp_path / "gauge-{date}.csv")
    assert [(change.date, change.differences) for change in series.changes] == [
        ("2024-03", ("a column less (note)",)), ("2024-05", ("semicolon",))]
    assert found.undated == (str(tmp_path / "readings.csv"),)
    assert "2024-05: semicolon" in str(found)
