"""A progress bar for long work: tqdm where it is installed, on a terminal and in notebooks that have one."""
from __future__ import annotations

import os
import sys
from typing import Any

from . import _core


def _is_watched() -> bool:
    """Whether anybody would see a bar: on a terminal, or in a notebook."""
    if sys.stderr is not None and sys.stderr.isatty():
        return True
    return "ipykernel" in sys.modules


def _bar(shown: bool | None, **how: Any) -> Any:
    """A bar of tqdm; None if nobody would see it, or tqdm is missing."""
    if not (_is_watched() if shown is None else shown):
        return None
    try:
        from tqdm.auto import tqdm
    except ImportError:
        return None
    return tqdm(leave=False, **how)


class Progress:
    """Files, bytes, the rate and what failed so far.

    >>> progress = Progress(2, "files", shown=False)
    >>> progress.add(1000)
    >>> progress.add(0, num_failed=1)
    >>> progress.close()
    """

    def __init__(self, total: int, unit: str, shown: bool | None = None) -> None:
        self._bytes = 0
        self._failed = 0
        self._bar = _bar(shown, total=total, unit=f" {unit}")

    def add(self, num_bytes: int, num_failed: int = 0, count: int = 1) -> None:
        """Adds bytes that are done, of one more file or of several."""
        self._bytes += num_bytes
        self._failed += num_failed
        if self._bar is None:
            return
        words = {"MB": f"{self._bytes / 1e6:.1f}"}
        if self._failed:
            words["failed"] = str(self._failed)
        self._bar.set_postfix(words, refresh=False)
        self._bar.update(count)

    def close(self) -> None:
        """Takes the bar away."""
        if self._bar is not None:
            self._bar.close()


#: A file of fewer bytes is read before a bar would help; unless somebody asks for one.
_LARGE = 50_000_000

_PACKED = (b"\x1f\x8b", b"\x28\xb5\x2f\xfd")


def _size_of(source: _core.Input) -> tuple[int | None, bool]:
    """The bytes of an input, None if that is not known, and whether they are what is counted: not of packed ones."""
    if isinstance(source, tuple):
        view = memoryview(source[0]).cast("B")
        return view.nbytes, not bytes(view[:4]).startswith(_PACKED)
    try:
        if not os.path.isfile(source):
            return None, False
        with open(source, "rb") as file:
            return os.fstat(file.fileno()).st_size, not file.read(4).startswith(_PACKED)
    except OSError:  # which the reading reports
        return 0, False


class ByteProgress:
    """The bytes of one input, and the rate.

    >>> progress = ByteProgress((b"a,b",), shown=False)
    >>> progress.reach(3)
    >>> progress.close()
    """

    def __init__(self, source: _core.Input, shown: bool | None = None) -> None:
        self._bar = None
        if shown is False or (shown is None and not _is_watched()):
            return
        size, is_counted = _size_of(source)
        if shown or size is None or size >= _LARGE:
            self._bar = _bar(shown, total=size if is_counted else None, unit="B", unit_scale=True)

    @property
    def reached(self) -> _core.Reached | None:
        """What the extension calls; None if there is no bar."""
        return None if self._bar is None else self.reach

    def reach(self, num_bytes: int) -> None:
        """Takes how many bytes are read by now; fewer than before belong to a second reading."""
        if self._bar is None:
            return
        if num_bytes < self._bar.n:
            self._bar.reset()
        self._bar.update(num_bytes - self._bar.n)

    def close(self) -> None:
        """Takes the bar away."""
        if self._bar is not None:
            self._bar.close()
