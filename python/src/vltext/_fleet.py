"""Looks at files in batches: in a process of their own, or on the workers of a Dask cluster.

A process that looks at files may die: a file may crash the decoder, or an operator may kill it. Then the files of its
batch are looked at one by one, and a file that a process dies of again becomes a row with an error."""
from __future__ import annotations

import contextlib
import dataclasses
import json
import os
import pickle
import select
import struct
import subprocess
import sys
import tempfile
import threading
import time
import uuid
from collections import deque
from collections.abc import Callable, Iterable, Iterator
from concurrent.futures import ThreadPoolExecutor
from typing import Any, cast

from . import _core
from ._options import Arguments, detect_settings
from ._rows import Rows

#: The version of the rows.
VERSION = 1

#: What is read first of a file that cannot be opened where it is: as many bytes as the first 131,072 characters have at
#: most, which are all that most answers need. And what is read if the answer is based on more than half of these.
_HEADS = (524_288, 4_194_304, 67_108_864)
_ENOUGH_CHARACTERS = 65_536
_TAIL = 65_536

_REMOTE_THREADS = 8

DIED = "the process that looked at it ended"
TOOK_TOO_LONG = "to look at it took too long"


@dataclasses.dataclass(frozen=True)
class Entry:
    """A file to look at. What the file system says of it is None where nobody asked."""

    path: str
    size: int | None = None
    modified: str | None = None
    etag: str | None = None
    is_local: bool = True
    #: Why it cannot be looked at, if that is known already.
    problem: str | None = None


@dataclasses.dataclass(frozen=True)
class Work:
    """How files are looked at."""

    arguments: Arguments = ()
    jobs: int = 0
    isolate: bool = True
    timeout: float = 600.0
    storage_options: dict[str, Any] = dataclasses.field(default_factory=dict)
    #: Whether the rows are to be a Parquet file, not lines of JSON.
    as_parquet: bool = False


@dataclasses.dataclass(frozen=True)
class Batch:
    """Files that are looked at together. Its name depends on their paths alone."""

    entries: tuple[Entry, ...]

    @property
    def name(self) -> str:
        paths = "\0".join(entry.path for entry in self.entries)
        return str(uuid.uuid5(uuid.NAMESPACE_URL, paths.encode("utf-8", "surrogatepass").hex()))


def words_for(error: Exception) -> str:
    """What is said about a file elsewhere that cannot be listed or read."""
    return f"{type(error).__name__}: {error}"


def failed_line(entry: Entry, reason: str) -> str:
    """The line of a file that could not be looked at."""
    raw = os.fsencode(entry.path)
    row: dict[str, Any] = {"catalog": VERSION, "path": raw.decode("utf-8", "replace")}
    if row["path"].encode() != raw:
        row["path_bytes"] = raw.hex()
    row |= {"size": entry.size, "modified": entry.modified, "status": "error", "error": reason}
    return json.dumps(row) + "\n"


# --- the process ------------------------------------------------------------------------------------------

# A request is a pickled pair of a name and its arguments, a reply a pickled object; each has its length before it.

_LENGTH = struct.Struct("<Q")
_GREETING = b"ready"
_START = 120.0


def _lines_of(paths: list[bytes], arguments: Arguments, jobs: int) -> list[str]:
    return _core.catalog_lines(paths, detect_settings(arguments), jobs)


def _line_named(path: bytes, name: bytes, arguments: Arguments) -> tuple[str, int]:
    return _core.catalog_line_named(path, name, detect_settings(arguments))


_REQUESTS: dict[str, Callable[..., Any]] = {"lines": _lines_of, "named": _line_named}


def serve() -> None:
    """Answers requests from standard input until it ends."""
    with os.fdopen(os.dup(0), "rb") as requests, os.fdopen(os.dup(1), "wb") as replies:
        os.dup2(2, 1)
        replies.write(_GREETING)
        replies.flush()
        while len(length := requests.read(_LENGTH.size)) == _LENGTH.size:
            name, arguments = pickle.loads(requests.read(*_LENGTH.unpack(length)))
            reply = pickle.dumps(_REQUESTS[name](*arguments))
            replies.write(_LENGTH.pack(len(reply)) + reply)
            replies.flush()


class ProcessDied(Exception):
    """The process ended, or did not answer in time, and was ended."""


class Isolated:
    """A process that answers requests. One that has died is started again by the next request."""

    command = "from vltext._fleet import serve; serve()"

    def __init__(self) -> None:
        self._process: subprocess.Popen[bytes] | None = None

    def ask(self, name: str, *arguments: Any, timeout: float) -> Any:
        request = pickle.dumps((name, arguments))
        try:
            process = self._process or self._start()
            assert process.stdin is not None
            process.stdin.write(_LENGTH.pack(len(request)) + request)
            process.stdin.flush()
            end = time.monotonic() + timeout
            (length,) = _LENGTH.unpack(self._read(process, _LENGTH.size, end))
            return pickle.loads(self._read(process, length, end))
        except OSError:
            self.close()
            raise ProcessDied(DIED) from None
        except BaseException:
            self.close()
            raise

    def _start(self) -> subprocess.Popen[bytes]:
        environment = dict(os.environ, PYTHONPATH=os.pathsep.join(each for each in sys.path if each))
        self._process = subprocess.Popen([sys.executable, "-c", self.command], stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE, bufsize=0, env=environment)
        try:
            self._read(self._process, len(_GREETING), time.monotonic() + _START)
        except ProcessDied:
            raise RuntimeError("the process that looks at files cannot be started") from None
        return self._process

    @staticmethod
    def _read(process: subprocess.Popen[bytes], size: int, end: float) -> bytes:
        assert process.stdout is not None
        descriptor = process.stdout.fileno()
        ready = select.poll()
        ready.register(descriptor, select.POLLIN)
        pieces = bytearray()
        while len(pieces) < size:
            if not ready.poll(max(0.0, end - time.monotonic()) * 1000):
                raise ProcessDied(TOOK_TOO_LONG)
            piece = os.read(descriptor, min(size - len(pieces), 1 << 20))
            if not piece:
                raise ProcessDied(DIED)
            pieces += piece
        return bytes(pieces)

    def close(self) -> None:
        if self._process is None:
            return
        self._process.kill()
        for stream in (self._process.stdin, self._process.stdout):
            if stream is not None:
                with contextlib.suppress(OSError):
                    stream.close()
        self._process.wait()
        self._process = None


# --- a batch ----------------------------------------------------------------------------------------------


class Looker:
    """Looks at batches, with a process of its own if that is wanted. For one thread at a time."""

    def __init__(self, work: Work) -> None:
        self.work = work
        self._process = Isolated() if work.isolate else None
        self._is_stopped = False

    def close(self) -> None:
        if self._process is not None:
            self._process.close()

    def stop(self) -> None:
        """Ends what another thread is looking at."""
        self._is_stopped = True
        self.close()

    def look_at(self, batch: Batch) -> list[str]:
        """A line for each file, in their order."""
        lines = {place: failed_line(entry, entry.problem) for place, entry in enumerate(batch.entries)
                 if entry.problem is not None}
        local = [place for place, entry in enumerate(batch.entries) if entry.is_local]
        if local:
            lines |= zip(local, self._local_lines([batch.entries[place] for place in local]))
        remote = [place for place, entry in enumerate(batch.entries) if not entry.is_local and place not in lines]
        if remote:
            with tempfile.TemporaryDirectory(prefix="vltext-") as folder, \
                    ThreadPoolExecutor(min(_REMOTE_THREADS, len(remote))) as threads:
                files = _FetchedFiles(folder, self.work.storage_options)
                # The next files are fetched while one is looked at, no more than there are threads.
                waiting: deque[Any] = deque()
                for place in remote:
                    waiting.append((place, threads.submit(files.fetch, batch.entries[place], 0)))
                    if len(waiting) > _REMOTE_THREADS:
                        done, fetched = waiting.popleft()
                        lines[done] = self._remote_line(files, batch.entries[done], fetched.result())
                for done, fetched in waiting:
                    lines[done] = self._remote_line(files, batch.entries[done], fetched.result())
        return [lines[place] for place in range(len(batch.entries))]

    def _ask(self, name: str, *arguments: Any) -> Any:
        if self._is_stopped:
            raise InterruptedError("the work was ended")
        if self._process is None:
            return _REQUESTS[name](*arguments)
        return self._process.ask(name, *arguments, timeout=self.work.timeout)

    def _local_lines(self, entries: list[Entry]) -> list[str]:
        paths = [os.fsencode(entry.path) for entry in entries]
        try:
            lines: list[str] = self._ask("lines", paths, self.work.arguments, self.work.jobs)
            return lines
        except ProcessDied as died:
            if len(entries) == 1:
                return [failed_line(entries[0], str(died))]
        return [line for entry in entries for line in self._local_lines([entry])]

    def _remote_line(self, files: _FetchedFiles, entry: Entry, fetched: _Fetched) -> str:
        """The line of a file that was fetched; more of it is fetched if the answer needs more."""
        for step in range(len(_HEADS)):
            if fetched.problem is not None:
                return failed_line(entry, fetched.problem)
            try:
                line, characters = self._ask("named", os.fsencode(fetched.path), os.fsencode(entry.path),
                                             self.work.arguments)
            except ProcessDied as died:
                return failed_line(entry, str(died))
            finally:
                os.unlink(fetched.path)
            is_based_on_it = fetched.is_whole or 0 < characters <= _ENOUGH_CHARACTERS
            if is_based_on_it or step + 1 == len(_HEADS):
                break
            fetched = files.fetch(entry, step + 1)
        row = json.loads(line)
        if row["status"] == "error":
            return failed_line(entry, row["error"].replace(fetched.path, entry.path))
        row |= {"size": entry.size if entry.size is not None else fetched.size,
                "modified": entry.modified, "etag": entry.etag}
        return json.dumps(row) + "\n"


# --- files elsewhere --------------------------------------------------------------------------------------


@dataclasses.dataclass(frozen=True)
class _Fetched:
    path: str = ""
    size: int | None = None
    is_whole: bool = False
    problem: str | None = None


class _FetchedFiles:
    """Files of fsspec as local ones. Of a large file only the head and the tail are read; what is between is a hole, so
    that the file has its length and the tool finds both where they are."""

    def __init__(self, folder: str, storage_options: dict[str, Any]) -> None:
        self._folder = folder
        self._options = storage_options

    def fetch(self, entry: Entry, step: int) -> _Fetched:
        path = os.path.join(self._folder, uuid.uuid4().hex)
        try:
            return self._fetch(entry, _HEADS[step], path)
        except Exception as error:
            with contextlib.suppress(OSError):
                os.unlink(path)
            return _Fetched(problem=words_for(error))

    def _fetch(self, entry: Entry, head: int, path: str) -> _Fetched:
        import fsspec  # type: ignore[import-untyped,unused-ignore]

        files, name = fsspec.core.url_to_fs(entry.path, **self._options)
        with open(path, "wb") as out:
            if entry.size is None:
                with files.open(name, "rb") as stream:
                    content = stream.read(_HEADS[-1])
                out.write(content)
                return _Fetched(path, len(content), True)
            if entry.size <= head + _TAIL:
                out.write(files.cat_file(name))
                return _Fetched(path, entry.size, True)
            out.write(files.cat_file(name, start=0, end=head))
            with contextlib.suppress(OSError):  # no local file is as long: then it is its head
                out.truncate(entry.size)
                out.seek(entry.size - _TAIL)
                out.write(files.cat_file(name, start=entry.size - _TAIL, end=entry.size))
        return _Fetched(path, entry.size)


# --- on one machine ---------------------------------------------------------------------------------------

Result = tuple[Batch, Rows]


def look_here(batches: Iterable[Batch], work: Work) -> Iterator[Result]:
    """The rows of each batch. The next batch is looked at while the caller works on one."""
    looker = Looker(work)
    try:
        with ThreadPoolExecutor(1) as thread:
            pending: deque[tuple[Batch, Any]] = deque()
            try:
                for batch in batches:
                    pending.append((batch, thread.submit(looker.look_at, batch)))
                    if len(pending) > 2:
                        yield _packed(*pending.popleft(), work)
                while pending:
                    yield _packed(*pending.popleft(), work)
            finally:
                for _, lines in pending:
                    lines.cancel()
                if pending:
                    looker.stop()
    finally:
        looker.close()


def _packed(batch: Batch, lines: Any, work: Work) -> Result:
    return batch, Rows.of(lines.result(), work.as_parquet)


# --- on a cluster -----------------------------------------------------------------------------------------

_own = threading.local()


def look_on_worker(batch: Batch, work: Work) -> Rows:
    """The task of a worker. Each of its threads keeps a process.

    What a row becomes is made here, where there are many processors, and is small: scheduler and client pass it on."""
    looker: Looker | None = getattr(_own, "looker", None)
    if looker is None or looker.work.isolate != work.isolate:
        if looker is not None:
            looker.close()
        looker = _own.looker = Looker(work)
    looker.work = work
    return Rows.of(looker.look_at(batch), work.as_parquet)


Task = Callable[[Batch, Work], Rows]


def look_on_cluster(batches: Iterable[Batch], work: Work, client: Any, task: Task = look_on_worker) -> Iterator[Result]:
    """The rows of each batch, in the order in which they are done.

    The scheduler has no more than a few batches for each thread of the workers at a time, so its memory does not grow
    with the number of files. A batch whose worker died is given to another by the scheduler; if that happens too often,
    it is looked at when nothing else is, and at last one file at a time."""
    from distributed import as_completed  # type: ignore[import-untyped,unused-ignore]

    waiting = iter(batches)
    unlucky: list[Batch] = []
    running: dict[Any, Batch] = {}
    completed: Any = cast(Any, as_completed)(loop=client.loop)

    def submit() -> bool:
        batch = next(waiting, None)
        if batch is None:
            return False
        future = client.submit(task, batch, work, key=f"vltext-{batch.name}-{uuid.uuid4().hex[:8]}", pure=False)
        running[future] = batch
        completed.add(future)
        return True

    try:
        at_once = _AtOnce(client)
        while len(running) < at_once.number() and submit():
            pass
        while running:
            future = next(completed)
            batch = running.pop(future)
            try:
                rows = future.result()
            except Exception as error:
                if not _is_lost(error):
                    raise
                unlucky.append(batch)
            else:
                yield batch, rows
            del future
            while len(running) < at_once.number() and submit():
                pass
    finally:
        for future in running:
            future.cancel()
    for batch in unlucky:
        lines = _alone(batch, dataclasses.replace(work, as_parquet=False), client, task)
        yield batch, Rows.of(lines, work.as_parquet)


class _AtOnce:
    """How many batches the scheduler has at a time: some for each thread. Workers may come and go."""

    def __init__(self, client: Any) -> None:
        self._client = client
        self._number = 0
        self._due = 0.0

    def number(self) -> int:
        if time.monotonic() >= self._due:
            self._number = max(4, 3 * sum(self._client.nthreads().values()))
            self._due = time.monotonic() + 1
        return self._number


def _is_lost(error: Exception) -> bool:
    """Whether a worker was lost, which says nothing about the files that it had."""
    from concurrent.futures import CancelledError

    from distributed.comm.core import CommClosedError  # type: ignore[import-untyped,unused-ignore]
    from distributed.scheduler import KilledWorker  # type: ignore[import-untyped,unused-ignore]

    return isinstance(error, (KilledWorker, CommClosedError, CancelledError))


def _alone(batch: Batch, work: Work, client: Any, task: Task) -> list[str]:
    """A batch that nothing else is looked at beside; if its workers die, its files one at a time."""
    future = client.submit(task, batch, work, key=f"vltext-alone-{uuid.uuid4().hex}", pure=False)
    try:
        lines: list[str] = future.result().lines()
        return lines
    except Exception as error:
        if not _is_lost(error):
            raise
    if len(batch.entries) == 1:
        return [failed_line(batch.entries[0], DIED)]
    return [line for entry in batch.entries for line in _alone(Batch((entry,)), work, client, task)]
