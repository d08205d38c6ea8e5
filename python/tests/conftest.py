"""What the tests share: the built tool, the example files, tables as the tool converts them."""
from __future__ import annotations

import csv
import io
import json
import os
import pathlib
import signal
import subprocess
from collections.abc import Sequence
from typing import Any

import hypothesis
import pytest

# The same texts in each run, and no files in the sources. For others: pytest --hypothesis-profile=random
# --hypothesis-seed=N.
hypothesis.settings.register_profile("same", derandomize=True, database=None)
hypothesis.settings.register_profile("random", database=None)
hypothesis.settings.load_profile("same")

# A shell that runs the tests in the background has them ignore interrupts, which some tests are about.
signal.signal(signal.SIGINT, signal.default_int_handler)

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TOOL = pathlib.Path(os.environ.get("VLTEXT_TOOL", ROOT / "build/release/bin/vltext"))
NO_DATA = {".md", ".json"}


def run_tool(*arguments: str | pathlib.Path, content: bytes = b"",
             status: Sequence[int] = (0, 1)) -> bytes:
    """What the tool prints, which must exit with one of these."""
    done = subprocess.run([TOOL, *arguments], input=content, capture_output=True, check=False)
    assert done.returncode in status, done.stderr.decode("utf-8", "replace")
    return done.stdout


def layout_by_tool(path: pathlib.Path | str, *flags: str) -> dict[str, Any]:
    members: dict[str, Any] = json.loads(run_tool("--json", *flags, path))["files"][0]
    return members


def table_by_tool(path: pathlib.Path | str, *flags: str) -> list[list[str]]:
    """The names and the rows, each cell as the tool writes it."""
    text = run_tool("convert", "--to", "csv", *flags, path).decode("utf-8")
    return list(csv.reader(io.StringIO(text, newline="")))


def example_files() -> list[pathlib.Path]:
    return sorted(file for file in (ROOT / "examples").iterdir()
                  if file.is_file() and file.suffix not in NO_DATA)


def example_tables() -> list[pathlib.Path]:
    """Those with a table."""
    answers = json.loads(run_tool("--json", *example_files()))["files"]
    return [pathlib.Path(answer["file"]) for answer in answers if not answer.get("no_table")]


@pytest.fixture(autouse=True)
def in_root(monkeypatch: pytest.MonkeyPatch) -> None:
    """Paths of examples are relative to the root of the repository."""
    monkeypatch.chdir(ROOT)
