"""The examples of the documentation are executed, and the stubs are complete."""
from __future__ import annotations

import ast
import doctest
import importlib
import inspect
import pathlib
import pkgutil
import re
import subprocess
import sys

import pytest

import vltext
from conftest import ROOT
from vltext import _core

PACKAGE = pathlib.Path(vltext.__file__).parent
MODULES = sorted(f"vltext.{module.name}" for module in pkgutil.iter_modules([str(PACKAGE)])
                 if module.name not in ("__main__", "_core"))


@pytest.mark.parametrize("name", ["vltext", *MODULES])
def test_the_examples_of_docstrings_hold(name: str) -> None:
    result = doctest.testmod(importlib.import_module(name), raise_on_error=False)
    assert result.failed == 0


def test_everything_public_has_a_docstring() -> None:
    for name in vltext.__all__:
        thing = getattr(vltext, name)
        if not (inspect.isclass(thing) or inspect.isfunction(thing)):
            continue
        assert inspect.getdoc(thing), name
        for member, value in vars(thing).items() if inspect.isclass(thing) else ():
            if not member.startswith("_") and (inspect.isfunction(value) or isinstance(value, property)):
                assert inspect.getdoc(value), f"{name}.{member}"


def names_in(body: list[ast.stmt]) -> set[str]:
    return {node.name for node in body if isinstance(node, (ast.FunctionDef, ast.ClassDef))}


def test_the_stubs_name_what_the_extension_has() -> None:
    stubs = ast.parse((PACKAGE / "_core.pyi").read_text())
    assert (PACKAGE / "py.typed").exists()
    public = {name for name in vars(_core) if not name.startswith("_")}
    assert names_in(stubs.body) == public - {"version"}
    for node in stubs.body:
        if isinstance(node, ast.ClassDef):
            members = {name for name in vars(getattr(_core, node.name)) if not name.startswith("__")}
            assert names_in(node.body) - {"__init__"} == members, node.name


def test_the_extension_exports_its_entry_alone() -> None:
    """Otherwise it might call, or be called by, another copy of the libraries in the process."""
    symbols = subprocess.run(["nm", "-D", "--defined-only", str(_core.__file__)], capture_output=True,
                             text=True, check=True).stdout.split()
    assert symbols[2::3] == ["PyInit__core"]


def blocks_of(document: pathlib.Path) -> list[tuple[str, str]]:
    """The blocks of a document: the language of each, and its text."""
    return re.findall(r"^```(\w+)\n(.*?)^```$", document.read_text(), re.DOTALL | re.MULTILINE)


def test_every_block_of_the_readme_runs(tmp_path: pathlib.Path, monkeypatch: pytest.MonkeyPatch,
                                        capsys: pytest.CaptureFixture[str]) -> None:
    """Blocks of Python run one after the other; a block "text" is what the one before it prints."""
    monkeypatch.chdir(tmp_path)
    names: dict[str, object] = {"__name__": "readme"}
    printed, executed = "", 0
    for language, text in blocks_of(ROOT / "python/README.md"):
        if language == "python":
            exec(compile(text, "README.md", "exec"), names)  # noqa: S102
            printed = capsys.readouterr().out
            executed += 1
        elif language == "text":
            assert printed.rstrip("\n") == text.rstrip("\n")
        else:
            assert language == "console"
            run_console(text)
    assert executed >= 5


MESSY_FOLDER = """\
altdorf.csv  <vltext.Layout: delimited by ',', 3 columns, UTF-8, 99 % sure>
bruck.csv    <vltext.Layout: delimited by ';', 3 columns, windows-1252, 99 % sure>
celle.txt    <vltext.Layout: delimited by '|', 3 columns, UTF-8, 99 % sure>
duren.tsv    <vltext.Layout: delimited by '\\t', 3 columns, UTF-8, 99 % sure>
essen.csv    <vltext.Layout: delimited by ',', 3 columns, UTF-8, 99 % sure>
readme.txt   <vltext.Layout: running text, no table>
readme.txt: no table was found in it: running text
essen.csv: lacks 'level [m]'; also has 'level [cm]'
<vltext.Many: 10 rows of 4 files, 2 that do not fit>
['Altdorf', 'Altdorf', 'Bruck', 'Bruck', 'Bruck', 'Celle', 'Celle', 'Celle', 'D\xfcren\\nNord', 'D\xfcren\\nNord']
[3.45, 3.61, 1.12, None, 1.09, 2.5, 2.25, 2.75, 4.0, 5.0]
altdorf.csv: 3 lines: 1 names, 2 data
bruck.csv: 6 lines: 1 preamble, 1 names, 3 data, 1 blank
celle.txt: 5 lines: 1 names, 3 data, 1 comment
duren.tsv: 5 lines: 1 names, 4 data
"""


def test_a_messy_folder_becomes_one_table(tmp_path: pathlib.Path) -> None:
    done = subprocess.run([sys.executable, ROOT / "python/examples/messy_folder.py", tmp_path],
                          capture_output=True, text=True, check=True)
    assert done.stdout == MESSY_FOLDER
    assert done.stderr == ""  # not even what the extension says about objects that leaked


def run_console(text: str) -> None:
    """Commands after "$ ", with what they print; how to install is for scripts/check-python --fresh."""
    commands = re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", text, re.MULTILINE)
    assert commands
    for command, printed in commands:
        if "venv" in command or command.startswith("scripts/"):
            continue
        assert command.startswith("python3 -m vltext ")
        done = subprocess.run([sys.executable, *command.split()[1:]], capture_output=True, text=True,
                              check=False)
        assert done.stdout == printed
