"""python -m vltext: the tool, in this process."""
from __future__ import annotations

import os
import signal
import sys

from . import _core


def main() -> int:
    """What the command vltext does, with the arguments of the process; returns its exit status."""
    # As in any other program: Python would turn these signals into exceptions that nobody is there to catch.
    signal.signal(signal.SIGINT, signal.SIG_DFL)
    if hasattr(signal, "SIGPIPE"):
        signal.signal(signal.SIGPIPE, signal.SIG_DFL)
    return _core.main([b"vltext", *map(os.fsencode, sys.argv[1:])])


if __name__ == "__main__":
    sys.exit(main())
