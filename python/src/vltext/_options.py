"""Options by keyword: the flags of the tool with underscores. The tool itself parses their values."""
from __future__ import annotations

import atexit
import difflib
import functools
from collections.abc import Iterable, Mapping
from typing import TypedDict, Union

from . import _core
from ._errors import OptionError

OptionValue = Union[str, int, float, bool, None, Iterable[str], Iterable[int]]


class LibraryOptions(TypedDict, total=False):
    """What is known of a file. README.md and `vltext --help` say what each of them means."""

    delimiter: str | list[str]
    quote: str
    escape: str
    names_line: int
    num_header_lines: int
    data_line: int
    num_variables: int
    comment_style: str | list[str]
    encoding: str
    line_ending: str | list[str]
    end_of_line: str | list[str]
    whitespace: str
    parser_type: str
    variable_widths: list[int]
    variable_names_line: int
    variable_units_line: int
    variable_descriptions_line: int
    row_names_field: int
    treat_as_missing: str | list[str]
    treat_as_empty: str | list[str]
    decimal: str
    grouping: str
    date_locale: str
    exp_chars: str
    consecutive_delimiters_rule: str
    leading_delimiters_rule: str
    multiple_delims_as_one: bool
    empty_line_rule: str
    extra_columns_rule: str
    partial_field_rule: str
    missing_rule: str
    import_error_rule: str
    text_type: str
    datetime_type: str
    collect_output: bool
    is_file: bool
    return_on_error: str
    empty_value: str
    judge: str
    lines: int | str
    no_tail: bool


class DetectOptions(LibraryOptions, total=False):
    """The options of detect()."""

    sample: str
    max_bytes: int
    explain: bool


class ReadOptions(LibraryOptions, total=False):
    """The options of read() and scan()."""

    as_text: bool
    exact_decimals: bool
    widen: bool
    no_widen: bool
    threads: int


SWITCHES = frozenset({"no_tail", "explain", "as_text", "exact_decimals", "widen", "no_widen"})
DETECT_NAMES = frozenset(DetectOptions.__annotations__) | frozenset(LibraryOptions.__annotations__)
READ_NAMES = frozenset(ReadOptions.__annotations__) | frozenset(LibraryOptions.__annotations__)
LISTS = frozenset(flag[2:].replace("-", "_") for flag, is_list in _core.library_flags() if is_list)

Arguments = tuple[bytes, ...]


def _text_of(name: str, value: object) -> str:
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, (str, int, float)):
        return str(value)
    raise OptionError(f"{name}: Expected a text or a number, got {type(value).__name__}.", name)


def _texts_of(name: str, value: object) -> list[str]:
    if isinstance(value, (str, int, float)) or not isinstance(value, Iterable):
        return [_text_of(name, value)]
    texts = [_text_of(name, each) for each in value]
    return texts if name in LISTS else [",".join(texts)]


def _arguments_for(name: str, value: object) -> list[bytes]:
    flag = "--" + name.replace("_", "-")
    if value is None:
        return []
    if name in SWITCHES:
        if not isinstance(value, bool):
            raise OptionError(f"{name}: Expected True or False, got {value!r}.", name)
        return [flag.encode()] if value else []
    arguments = []
    for text in _texts_of(name, value):
        if "\0" in text:
            raise OptionError(f"{name}: Expected a text without U+0000.", name)
        arguments.append(f"{flag}={text}".encode("utf-8", "surrogateescape"))
    return arguments


def arguments_of(options: Mapping[str, object], names: frozenset[str]) -> Arguments:
    """The options as the tool takes them on its command line."""
    arguments: list[bytes] = []
    for name, value in options.items():
        if name not in names:
            nearest = difflib.get_close_matches(name, sorted(names), 1, 0.5)
            hint = f"; did you mean {nearest[0]}?" if nearest else ""
            raise OptionError(f"{name}: there is no such option{hint}", name)
        arguments += _arguments_for(name, value)
    return tuple(arguments)


@functools.lru_cache(maxsize=256)
def detect_settings(arguments: Arguments) -> _core.Settings:
    return _core.detect_settings(list(arguments))


@functools.lru_cache(maxsize=256)
def read_settings(arguments: Arguments) -> _core.Settings:
    return _core.read_settings(list(arguments))


# What is left when the interpreter ends would be reported as leaked.
atexit.register(detect_settings.cache_clear)
atexit.register(read_settings.cache_clear)
