"""What a notebook shows of a layout: the picture of the tool, which nothing in a file can make more than text."""
from __future__ import annotations

import html.parser
import os
import pathlib
import pickle
import re
import threading

import pytest

import vltext
from conftest import example_files, run_tool

PICTURE = re.compile(r'<table class="picture">.*?</table>', re.DOTALL)
CONTENT = b"Gauge at the mill\n\nday;level [m]\n2024-01-02;3,5\n2024-01-03;3,9\n2024-01-04;4,1\n"


def picture_in(page: str) -> str | None:
    found = PICTURE.search(page)
    return found[0] if found else None


def roles_in(page: str) -> list[str]:
    """What the lines of the picture are for."""
    return re.findall(r'<tr class="(\w+)">', picture_in(page) or "")


class Markup(html.parser.HTMLParser):
    """The elements of a fragment, and its text without the style sheet."""

    def __init__(self, fragment: str) -> None:
        super().__init__()
        self.open: list[str] = []
        self.elements: set[str] = set()
        self.attributes: set[str] = set()
        self.text = ""
        self.feed(fragment)
        self.close()

    def handle_starttag(self, tag: str, attrs: list[tuple[str, str | None]]) -> None:
        self.open.append(tag)
        self.elements.add(tag)
        self.attributes |= {name for name, _ in attrs}

    def handle_endtag(self, tag: str) -> None:
        assert self.open.pop() == tag

    def handle_data(self, data: str) -> None:
        if "style" not in self.open:
            self.text += data


ELEMENTS = {"div", "style", "p", "strong", "bdi", "em", "table", "thead", "tbody", "tr", "th", "td"}
ATTRIBUTES = {"class", "role", "aria-label", "tabindex", "scope"}


@pytest.mark.parametrize("file", example_files(), ids=lambda file: file.name)
def test_every_example_has_the_picture_of_the_report(file: pathlib.Path) -> None:
    report = run_tool(file, "--html", "-").decode()
    shown = vltext.detect(file)._repr_html_()
    assert picture_in(shown) == picture_in(report)
    markup = Markup(shown)
    assert markup.open == []
    assert markup.elements <= ELEMENTS
    assert markup.attributes <= ATTRIBUTES


def test_lines_have_their_roles_and_columns() -> None:
    shown = vltext.detect(CONTENT)._repr_html_()
    assert roles_in(shown) == ["above", "blank", "names", "data", "data", "data"]
    assert '<bdi class="cell">2024-01-03</bdi><bdi class="delimiter">;</bdi><bdi class="cell odd">3,9</bdi>' in shown
    assert '<th scope="row"><bdi>level [m]</bdi></th><td class="kind">decimal</td><td><bdi>m</bdi></td>' in shown
    assert "delimited by semicolon" in shown


# --- what a layout keeps ----------------------------------------------------------------------------------


def test_a_pickled_layout_takes_the_picture_along(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "gauge.csv"
    file.write_bytes(CONTENT)
    for layout in (vltext.detect(file), vltext.read(file).layout, vltext.scan(file).layout, vltext.detect(CONTENT)):
        shown = layout._repr_html_()
        assert len(roles_in(shown)) == 6
        travelled = pickle.dumps(layout)
        if layout.source:
            file.rename(tmp_path / "elsewhere")
            assert picture_in(layout._repr_html_()) is None
        assert pickle.loads(travelled)._repr_html_() == shown
        if layout.source:
            (tmp_path / "elsewhere").rename(file)
            assert layout._repr_html_() == shown


@pytest.mark.parametrize("change", ["other content", "the same length", "another file", "no file", "a folder",
                                    "a pipe"])
def test_a_file_that_changed_is_not_shown(tmp_path: pathlib.Path, change: str) -> None:
    file = tmp_path / "gauge.csv"
    file.write_bytes(CONTENT)
    layout = vltext.detect(file)
    about = file.stat()
    if change in ("other content", "the same length"):
        file.write_bytes(b"x" * (len(CONTENT) if change == "the same length" else 5))
        os.utime(file, ns=(about.st_atime_ns, about.st_mtime_ns + (change == "the same length")))
    elif change == "another file":
        (tmp_path / "new").write_bytes(CONTENT)
        os.utime(tmp_path / "new", ns=(about.st_atime_ns, about.st_mtime_ns))
        os.replace(tmp_path / "new", file)
    else:
        file.unlink()
        if change == "a folder":
            file.mkdir()
        elif change == "a pipe":
            os.mkfifo(file)
    shown = layout._repr_html_()
    assert picture_in(shown) is None
    assert "with 2 columns" in shown
    assert picture_in(pickle.loads(pickle.dumps(layout))._repr_html_()) is None


def test_all_layouts_have_one() -> None:
    expected = picture_in(vltext.detect(CONTENT)._repr_html_())
    assert expected is not None
    assert picture_in(vltext.read(CONTENT).layout._repr_html_()) == expected
    assert picture_in(vltext.scan(CONTENT).layout._repr_html_()) == expected


def test_a_pipe_is_pictured_while_it_is_read(tmp_path: pathlib.Path) -> None:
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)
    writer = threading.Thread(target=pipe.write_bytes, args=(CONTENT,))
    writer.start()
    assert len(roles_in(vltext.detect(pipe)._repr_html_())) == 6
    writer.join()


def test_the_picture_does_not_count_where_layouts_are_compared() -> None:
    other = CONTENT.replace(b"mill", b"dam!")
    assert vltext.detect(CONTENT) == vltext.detect(other)
    assert vltext.detect(CONTENT)._repr_html_() != vltext.detect(other)._repr_html_()


@pytest.mark.parametrize("content", [
    b"x" * 3_000_000,
    b"a,b\n" + b'1,"' + b"y" * 3_000_000 + b'"\n2,z\n',
    b",".join(b"c%d" % i for i in range(30_000)) + b"\n" + b",".join(b"%d" % i for i in range(30_000)) + b"\n",
    b"\xe2\x80\xae\xf0\x9f\x98\x80" * 200_000 + b",b\n1,2\n3,4\n",
], ids=["a long line", "a long cell", "many columns", "long characters"])
def test_no_more_is_kept_than_is_shown(content: bytes) -> None:
    found = vltext.detect(content, max_bytes=4_000_000)._found
    assert 0 < len(found.picture()) < 40_000
    assert len(found.html(b"")) < 200_000


# --- texts that try to be more ----------------------------------------------------------------------------


@pytest.mark.parametrize("cell", [
    "<script>alert(1)</script>", "</style><img src=x onerror=alert(1)>", "</td></table></div>", "<!--", "&lt;i&gt;",
    "' onload='alert(1)", "<svg/onload=alert(1)>", "]]>"])
def test_markup_in_cells_and_names_is_text(cell: str) -> None:
    content = f'id,"{cell}",n\n' + "".join(f'{i},"{cell}",{i % 3}\n' for i in range(5))
    markup = Markup(vltext.detect(content.encode(), delimiter=",")._repr_html_())
    assert markup.open == []
    assert markup.elements <= ELEMENTS
    assert markup.attributes <= ATTRIBUTES
    assert markup.text.count(cell) == 7  # in six lines and a row of the columns


@pytest.mark.parametrize("character", ["\x1b", "\x07", "\x7f", "\u009b", "\u202e", "\u2066", "\u200f", "\u2028"])
def test_controls_are_replaced(character: str) -> None:
    content = f"id,name,n\n1,c{character}d,2\n" + "".join(f"{i},some words,{i}\n" for i in range(40))
    shown = vltext.detect(content.encode(), delimiter=",", encoding="utf-8")._repr_html_()
    assert character not in shown
    assert '<bdi class="cell odd">c\ufffdd</bdi>' in shown


def test_a_hostile_path_is_text(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "<script>x\u202e&.csv"
    file.write_bytes(CONTENT)
    markup = Markup(vltext.detect(file)._repr_html_())
    assert markup.elements <= ELEMENTS
    assert "<script>x\ufffd&.csv" in markup.text


def test_words_from_right_to_left_are_isolated() -> None:
    shown = vltext.detect("\u05d0\u05d1,n\n\u05d2\u05d3,1\n\u05d4\u05d5,2\n".encode())._repr_html_()
    assert '<bdi class="name">\u05d0\u05d1</bdi>' in shown


def test_there_is_a_look_for_light_and_dark_and_no_script() -> None:
    shown = vltext.detect(CONTENT)._repr_html_()
    assert "@media (prefers-color-scheme: dark)" in shown
    assert "<script" not in shown
    assert not re.search(r"url\(|@import|https?:", shown)


@pytest.mark.parametrize("content", [b"", bytes(range(256)) * 20], ids=["empty", "binary"])
def test_what_has_no_text_has_no_picture(content: bytes) -> None:
    layout = vltext.detect(content)
    assert picture_in(layout._repr_html_()) is None
    assert "No table was found" in layout._repr_html_()
    assert pickle.loads(pickle.dumps(layout)) == layout
