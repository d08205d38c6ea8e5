"""Catalogues: a row for each of any number of files."""
from __future__ import annotations

import contextlib
import datetime
import fcntl
import glob
import json
import os
import re
import uuid
from collections.abc import Iterable, Iterator, Sequence
from typing import TYPE_CHECKING, Any, Union

from . import _core, _fleet, _rows
from ._drift import Drift, drift
from ._fleet import Batch, Entry, Work
from ._groups import Groups, groups
from ._options import DETECT_NAMES, arguments_of, detect_settings
from ._progress import Progress
from ._rows import Rows

if TYPE_CHECKING:
    from types import TracebackType

    from typing_extensions import Unpack

    from ._options import DetectOptions

Path = Union[str, "os.PathLike[str]"]
Row = dict[str, Any]

_IS_ADDRESS = re.compile(r"[A-Za-z][A-Za-z0-9+.-]*(://|::)")
_PART = re.compile(r"part-[0-9a-f-]{36}\.parquet")
_USUAL_BATCH = 1000


class Catalog:
    """The rows of a catalogue, as dictionaries; docs/catalog.md describes their members. Open one with Catalog.open().

    >>> import vltext, pathlib, tempfile
    >>> folder = pathlib.Path(tempfile.mkdtemp())
    >>> _ = (folder / "a.csv").write_text("day;level\\n2024-01-02;3,5\\n2024-01-03;3,9\\n")
    >>> catalog = vltext.catalog(folder)
    >>> [(row["status"], row["delimiters"], row["decimal"]) for row in catalog]
    [('table', [';'], ',')]
    """

    def __init__(self, lines: Sequence[str] = (), folder: str | None = None) -> None:
        self._lines = lines
        self._folder = folder

    @classmethod
    def open(cls, path: Path) -> Catalog:
        """The catalogue in a folder of Parquet parts, or in a file of JSON lines as `vltext catalog` prints them."""
        path = os.fspath(path)
        if os.path.isdir(path):
            return cls(folder=path)
        with open(path, encoding="utf-8", newline="\n") as file:
            return cls(file.readlines())

    def __len__(self) -> int:
        if self._folder is None:
            return len(self._lines)
        parquet = _rows.parquet()
        return sum(parquet.read_metadata(part).num_rows for part in _parts_in(self._folder))

    def __iter__(self) -> Iterator[Row]:
        """The rows: of a folder in the order of their paths, otherwise in that of the files."""
        if self._folder is None:
            return map(json.loads, self._lines)
        return iter(self.to_arrow().to_pylist())

    def to_arrow(self) -> Any:
        """A table of pyarrow."""
        import pyarrow  # type: ignore[import-untyped,unused-ignore]

        if self._folder is None:
            return _rows.table_of(self._lines)
        parquet = _rows.parquet()
        tables = [parquet.read_table(part, schema=_rows.schema()) for part in _parts_in(self._folder)]
        table = pyarrow.concat_tables([_rows.schema().empty_table(), *tables])
        paths = table.column("path").to_pylist()
        return table.take(sorted(range(len(paths)), key=lambda place: paths[place].split("/")))

    def to_pandas(self) -> Any:
        """A data frame."""
        return self.to_arrow().to_pandas()

    def to_jsonl(self, path: Path) -> None:
        """Writes the lines that `vltext groups` reads."""
        with open(path, "w", encoding="utf-8", newline="\n") as file:
            if self._folder is None:
                file.writelines(self._lines)
            else:
                for row in self:
                    file.write(json.dumps({"catalog": row.pop("catalog"), **row}) + "\n")

    @property
    def errors(self) -> dict[str, str]:
        """The files that could not be looked at, and why."""
        return {row["path"]: row["error"] for row in self if row["status"] == "error"}

    def groups(self) -> Groups:
        """vltext.groups() of it."""
        return groups(self)

    def drift(self) -> Drift:
        """vltext.drift() of it."""
        return drift(self)

    def __repr__(self) -> str:
        where = "" if self._folder is None else f" in {self._folder}"
        return f"<vltext.Catalog: {len(self)} files{where}>"


def catalog(paths: Path | Iterable[Path], *, to: Path | None = None, recursive: bool = False, client: Any = None,
            batch_size: int = _USUAL_BATCH, jobs: int = 0, progress: bool | None = None, isolate: bool = True,
            timeout: float = 600.0, storage_options: dict[str, Any] | None = None,
            **options: Unpack[DetectOptions]) -> Catalog:
    """Looks at each of many files. A file that cannot be read is a row with the reason.

    `paths` are files, folders, patterns such as "data/*.csv", or addresses of fsspec; of a folder the files below its
    folders count only if `recursive` is true. Of files elsewhere only the head and the tail are read. `options` are
    those of detect().

    With `to`, a folder, the rows are written there as Parquet, in parts that are complete or absent, and the work can
    be interrupted and begun again: files that are in it and have not changed are not looked at again. It needs
    pyarrow, and one process at a time may write to it.

    `client` is a client of Dask, whose workers then look at the files in batches; they need this package, the files,
    and pyarrow with `to`. Without one, `jobs` threads do it (0: one for each processor), in a process of their own
    unless `isolate` is false: a file that crashes it is a row with an error, as one is that it takes longer than
    `timeout` seconds for.

    `progress` shows how far the work is with tqdm; None: on a terminal, and in notebooks."""
    work = Work(arguments_of(options, DETECT_NAMES), 1 if client is not None and jobs == 0 else jobs, isolate, timeout,
                storage_options or {}, to is not None)
    detect_settings(work.arguments)
    entries = _entries_of(paths, recursive, work.storage_options)
    folder = None if to is None else _Folder(os.fspath(to))
    with contextlib.ExitStack() as stack:
        if folder is not None:
            stack.enter_context(folder)
            entries = folder.without_known(entries)
        bar = stack.enter_context(contextlib.closing(Progress(len(entries), "files", progress)))
        batches = [Batch(tuple(entries[start:start + batch_size])) for start in range(0, len(entries), batch_size)]
        results = (_fleet.look_here(batches, work) if client is None
                   else _fleet.look_on_cluster(batches, work, client))
        found: dict[Batch, Rows] = {}
        for batch, rows in results:
            if folder is None:
                found[batch] = rows
            else:
                folder.write(batch, rows)
            bar.add(rows.num_bytes, rows.num_failed, rows.num_files)
    if folder is not None:
        return Catalog(folder=folder.path)
    return Catalog([line for batch in batches for line in found.pop(batch).lines()])


# --- which files ------------------------------------------------------------------------------------------


def _entries_of(paths: Path | Iterable[Path], recursive: bool, options: dict[str, Any]) -> list[Entry]:
    given = [paths] if isinstance(paths, (str, os.PathLike)) else list(paths)
    entries: list[Entry] = []
    for path in [os.fspath(each) for each in given]:
        if _IS_ADDRESS.match(path) and not os.path.lexists(path):
            entries += _remote_entries(path, recursive, options)
        else:
            names = sorted(glob.glob(path, recursive=True)) if _is_pattern(path) else [path]
            files = _core.files_below([os.fsencode(name) for name in names], recursive)
            entries += [Entry(os.fsdecode(file)) for file in files]
    return list({entry.path: entry for entry in entries}.values())


def _is_pattern(path: str) -> bool:
    return glob.has_magic(path) and not os.path.lexists(path)


def _remote_entries(address: str, recursive: bool, options: dict[str, Any]) -> list[Entry]:
    """The files of an address. What cannot be listed is a file that cannot be looked at."""
    import fsspec  # type: ignore[import-untyped,unused-ignore]

    try:
        files, name = fsspec.core.url_to_fs(address, **options)
        files.invalidate_cache()  # of an earlier listing
        if glob.has_magic(name):
            found = files.glob(name, detail=True)
        elif files.isdir(name):
            found = files.find(name, maxdepth=None if recursive else 1, detail=True)
        else:
            found = {name: files.info(name)}
    except Exception as error:
        return [Entry(address, is_local=False, problem=_fleet.words_for(error))]
    inner = address.split("::", 1)[1:]
    return [_remote_entry(files, path, info, inner) for path, info in sorted(found.items())
            if info.get("type") != "directory" and not path.rsplit("/", 1)[-1].startswith(".")]


def _remote_entry(files: Any, path: str, info: dict[str, Any], inner: list[str]) -> Entry:
    if inner:  # a file within another: "zip://a.csv::s3://bucket/b.zip"
        protocol = files.protocol if isinstance(files.protocol, str) else files.protocol[0]
        address = f"{protocol}://{path}::{inner[0]}"
    else:
        address = files.unstrip_protocol(path)
    modified = next((info[name] for name in ("mtime", "LastModified", "last_modified", "updated", "created")
                     if info.get(name) is not None), None)
    etag = next((str(info[name]) for name in ("ETag", "etag", "md5Hash") if info.get(name)), None)
    return Entry(address, info.get("size"), _time_text(modified), etag, False)


def _time_text(modified: Any) -> str | None:
    if isinstance(modified, (int, float)):
        modified = datetime.datetime.fromtimestamp(modified, datetime.timezone.utc)
    if isinstance(modified, datetime.datetime):
        moment = modified if modified.tzinfo is None else modified.astimezone(datetime.timezone.utc)
        return f"{moment:%Y-%m-%dT%H:%M:%S.%f}000Z"
    return None if modified is None else str(modified)


def _time_of(nanoseconds: int) -> str:
    seconds, rest = divmod(nanoseconds, 1_000_000_000)
    moment = datetime.datetime(1970, 1, 1) + datetime.timedelta(seconds=seconds)
    return f"{moment:%Y-%m-%dT%H:%M:%S}.{rest:09}Z"


# --- Parquet ----------------------------------------------------------------------------------------------


def _parts_in(folder: str) -> list[str]:
    return sorted(os.path.join(folder, name) for name in os.listdir(folder) if _PART.fullmatch(name))


class _Folder:
    """A folder with the parts of a catalogue, for the one process that writes to it."""

    def __init__(self, path: str) -> None:
        self.path = path
        self._lock: int | None = None

    def __enter__(self) -> _Folder:
        os.makedirs(self.path, exist_ok=True)
        self._lock = os.open(os.path.join(self.path, ".lock"), os.O_CREAT | os.O_RDWR, 0o666)
        try:
            fcntl.flock(self._lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except OSError:
            os.close(self._lock)
            raise RuntimeError(f"{self.path}: another process is writing this catalogue") from None
        for name in os.listdir(self.path):  # of a process that was killed
            if name.startswith(".part-"):
                os.unlink(os.path.join(self.path, name))
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 trace: TracebackType | None) -> None:
        if self._lock is not None:
            os.close(self._lock)

    def without_known(self, entries: list[Entry]) -> list[Entry]:
        """The files that have no row yet, or have changed since; rows of the latter are taken out.

        They are taken out first: a process that is killed later leaves a catalogue without them, and the next one looks
        at them."""
        wanted = {entry.path: entry for entry in entries}
        known: set[str] = set()
        for part in _parts_in(self.path):
            names = ["path", "path_bytes", "size", "modified", "etag", "status"]
            rows = _rows.parquet().read_table(part, columns=names)
            keep = []
            for row in rows.to_pylist():
                path = _path_of(row)
                is_kept = path not in known and (path not in wanted or _is_unchanged(wanted[path], row))
                keep.append(is_kept)
                if is_kept:
                    known.add(path)
            if not all(keep):
                self._keep(part, keep)
        return [entry for entry in entries if entry.path not in known]

    def _keep(self, part: str, keep: list[bool]) -> None:
        if any(keep):
            table = _rows.parquet().read_table(part, schema=_rows.schema()).filter(keep)
            self._replace(part, _rows.parquet_of(table))
        else:
            os.unlink(part)
            self._settle()

    def write(self, batch: Batch, rows: Rows) -> None:
        """Rows that are Parquet."""
        self._replace(os.path.join(self.path, f"part-{batch.name}.parquet"), rows.content)

    def _replace(self, part: str, content: bytes) -> None:
        temporary = os.path.join(self.path, f".part-{uuid.uuid4().hex}")
        with open(temporary, "wb") as file:
            file.write(content)
            file.flush()
            os.fsync(file.fileno())
        os.replace(temporary, part)
        self._settle()

    def _settle(self) -> None:
        folder = os.open(self.path, os.O_RDONLY)
        try:
            os.fsync(folder)
        finally:
            os.close(folder)


def _path_of(row: Row) -> str:
    if row["path_bytes"] is not None:
        return os.fsdecode(bytes.fromhex(row["path_bytes"]))
    path: str = row["path"]
    return path


def _is_unchanged(entry: Entry, row: Row) -> bool:
    """Errors are tried again."""
    if row["status"] == "error":
        return False
    if not entry.is_local:
        seen = (entry.size, entry.modified, entry.etag)
        return seen == (row["size"], row["modified"], row["etag"]) and seen[1:] != (None, None)
    try:
        about = os.stat(entry.path)
    except OSError:
        return False
    return (about.st_size, _time_of(about.st_mtime_ns)) == (row["size"], row["modified"])
