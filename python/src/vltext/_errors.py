"""The errors of the package. All of them are below Error."""
from __future__ import annotations

import re
from typing import Any


class Error(Exception):
    """What goes wrong in this package."""


class FileError(Error, OSError):
    """A file cannot be opened, read or unpacked. The message names it and the reason."""


class OptionError(Error, ValueError):
    """An option is unknown, or has a value that is refused.

    >>> import vltext
    >>> try:
    ...     vltext.detect(b"a;b", delimitr=";")
    ... except vltext.OptionError as error:
    ...     print(error.option, "-", error)
    delimitr - delimitr: there is no such option; did you mean delimiter?
    """

    #: The keyword, None if the message is about several.
    option: str | None

    def __init__(self, message: str, option: str | None = None) -> None:
        super().__init__(message)
        self.option = option

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (str(self), self.option)


class ReadError(Error):
    """A record or a cell that a rule refuses, or a table that cannot be read so.

    >>> import vltext
    >>> try:
    ...     vltext.read(b"a,b\\n1,2\\n3,x\\n5,6\\n7,8\\n", import_error_rule="error")
    ... except vltext.ReadError as error:
    ...     print(error.line, error.column)
    3 2
    """

    #: The path, None for bytes.
    file: str | None
    #: From 1; None where no single line or column is at fault.
    line: int | None
    column: int | None

    def __init__(self, message: str, file: str | None = None, line: int | None = None,
                 column: int | None = None) -> None:
        super().__init__(message)
        self.file = file
        self.line = line
        self.column = column

    def __str__(self) -> str:
        message = super().__str__()
        return message if self.file is None else f"{self.file}: {message}"

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (self.args[0], self.file, self.line, self.column)


class UnsupportedError(Error):
    """Another reader cannot read the file rightly by itself, whatever it is told; vltext.read can."""


class MismatchError(Error):
    """Files that are to be read as one table do not fit together. The message names them."""

    #: The path of each, and why it does not fit.
    misfits: dict[str, str]

    def __init__(self, misfits: dict[str, str]) -> None:
        lines = "".join(f"\n  {file}: {reason}" for file, reason in misfits.items())
        super().__init__(f"{len(misfits)} of the files do not fit the others:{lines}")
        self.misfits = misfits

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (self.misfits,)


# --- what the extension raises ---------------------------------------------------------------------

_FLAG = re.compile(r"--([a-z][a-z-]*)(?:: |$)")
_NAME = re.compile(r"([A-Z][A-Za-z]*): ")


def _in_snake_case(name: str) -> str:
    return re.sub(r"(?<!^)(?=[A-Z])", "_", name).lower()


def option_error(message: str) -> OptionError:
    """The name of the option is what the message of the tool begins with."""
    if found := _FLAG.match(message):
        option = found[1].replace("-", "_")
        return OptionError(option + message[found.end(1):], option)
    if found := _NAME.match(message):
        option = _in_snake_case(found[1])
        return OptionError(option + message[found.end(1):], option)
    return OptionError(message, "encoding" if message.startswith("unknown encoding") else None)


def read_error(message: str, line: int, column: int) -> ReadError:
    return ReadError(message, None, line or None, column or None)


def file_error(message: str) -> FileError:
    return FileError(message)


def error(message: str) -> Error:
    return Error(message)
