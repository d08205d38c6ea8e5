"""A progress bar for long work: tqdm where it is installed, on a terminal and in notebooks that have one."""
from __future__ import annotations

import sys


def _is_watched() -> bool:
    """Whether anybody would see a bar: on a terminal, or in a notebook."""
    if sys.stderr is not None and sys.stderr.isatty():
        return True
    return "ipykernel" in sys.modules


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
        self._bar = None
        if not (_is_watched() if shown is None else shown):
            return
        try:
            from tqdm.auto import tqdm
        except ImportError:
            return
        self._bar = tqdm(total=total, unit=f" {unit}", leave=False)

    def add(self, num_bytes: int, num_failed: int = 0, count: int = 1) -> None:
        """So many bytes are done, in one more file or in several."""
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


