"""What can be read: paths, bytes and binary files."""
from __future__ import annotations

import io
import os
import stat
from typing import Protocol, Union

from . import _core
from ._errors import FileError


class BinaryFile(Protocol):
    """An object with the content of a file, opened for reading bytes."""

    def read(self, size: int = -1, /) -> bytes:
        """The next bytes, at most `size`, none at the end."""
        ...


Buffer = Union[bytes, bytearray, memoryview]
Source = Union[str, "os.PathLike[str]", "os.PathLike[bytes]", Buffer, BinaryFile]

#: Of a file object detect() reads no more than this.
MOST_BYTES = 67_108_864


def _content_of(file: BinaryFile, limit: int) -> bytes:
    pieces: list[bytes] = []
    size = 0
    while limit < 0 or size < limit:
        piece = file.read(-1 if limit < 0 else limit - size)
        if isinstance(piece, str):
            raise TypeError('expected a file that was opened in binary mode: open(path, "rb")')
        if not piece:
            break
        pieces.append(piece)
        size += len(piece)
    return b"".join(pieces)


def _name_of(file: object) -> str | None:
    name = getattr(file, "name", None)
    return name if isinstance(name, str) else None


def input_of(source: Source, limit: int = -1) -> tuple[_core.Input, str | None]:
    """The source as the extension takes it, and its path if it has one.

    Of a file object at most `limit` bytes are read, from its position; one that can seek is put back there if a limit
    is given."""
    if isinstance(source, str):
        return os.fsencode(source), source
    if isinstance(source, bytes):
        return (source,), None
    if isinstance(source, os.PathLike):
        return os.fsencode(source), os.fsdecode(source)
    if hasattr(source, "read") and not isinstance(source, memoryview):
        is_kept = limit >= 0 and isinstance(source, io.IOBase) and source.seekable()
        position = source.tell() if is_kept and isinstance(source, io.IOBase) else 0
        content = _content_of(source, limit)
        if is_kept and isinstance(source, io.IOBase):
            source.seek(position)
        return (content,), _name_of(source)
    try:
        memoryview(source)
    except TypeError:
        raise TypeError("expected a path, bytes or a binary file, got "
                        f"{type(source).__name__}") from None
    return (source,), None


def is_repeatable(core: _core.Input) -> bool:
    """Whether the input can be read a second time: bytes, a file, but no pipe. What is not there is, for an error."""
    if isinstance(core, tuple):
        return True
    try:
        state = os.fstat(0) if core == b"-" else os.stat(core)
    except OSError:
        return True
    return not (stat.S_ISFIFO(state.st_mode) or stat.S_ISCHR(state.st_mode) or stat.S_ISSOCK(state.st_mode))


def kept(core: _core.Input) -> _core.Input:
    """The input, or the content of one that can be read only once."""
    if isinstance(core, tuple) or is_repeatable(core):
        return core
    with open(0 if core == b"-" else core, "rb", closefd=core != b"-") as file:
        return (file.read(),)


def refuse_unrepeatable(core: _core.Input, name: str | None) -> None:
    """FileError for an input that can be read only once."""
    if not is_repeatable(core):
        raise FileError(f"cannot read {name!r} twice, as this needs; write it to a file first")
