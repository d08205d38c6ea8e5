"""Catalogues on a cluster: a real one, of processes on the loopback interface."""
from __future__ import annotations

import collections
import os
import pathlib
import signal
import subprocess
import sys
import threading
import time
from collections.abc import Iterator
from typing import Any

import pytest

import vltext
from vltext import _fleet
from vltext._fleet import Batch, Entry, Work
from vltext._rows import Rows

distributed = pytest.importorskip("distributed")
pytest.importorskip("pyarrow")

pytestmark = pytest.mark.dask

TABLE = b"time,level\n2024-01-01,1.5\n2024-01-02,2.5\n2024-01-03,3.5\n"
COUNT = 200


@pytest.fixture
def folder(tmp_path: pathlib.Path) -> pathlib.Path:
    data = tmp_path / "data"
    data.mkdir()
    for number in range(COUNT):
        (data / f"{number:03}.csv").write_bytes(TABLE)
    return data


@pytest.fixture
def cluster() -> Iterator[Any]:
    import dask

    # A task whose second worker dies is given up: each start of a worker takes seconds.
    with dask.config.set({"distributed.scheduler.allowed-failures": 1}), \
            distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True, host="127.0.0.1",
                                     dashboard_address=None) as made:
        yield made


@pytest.fixture
def client(cluster: Any) -> Iterator[Any]:
    with distributed.Client(cluster) as made:
        yield made


def paths_of(catalog: vltext.Catalog) -> collections.Counter[str]:
    return collections.Counter(pathlib.Path(row["path"]).name for row in catalog)


def all_once() -> collections.Counter[str]:
    return collections.Counter({f"{number:03}.csv": 1 for number in range(COUNT)})


def test_the_rows_are_those_of_one_machine(folder: pathlib.Path, tmp_path: pathlib.Path, client: Any) -> None:
    made = vltext.catalog([folder, folder / "missing"], client=client, batch_size=30)
    assert list(made) == list(vltext.catalog([folder, folder / "missing"]))
    parts = vltext.catalog(folder, client=client, batch_size=30, to=tmp_path / "out")
    assert paths_of(parts) == all_once()


def test_a_killed_worker_loses_no_row_and_makes_none_twice(folder: pathlib.Path, tmp_path: pathlib.Path,
                                                           client: Any) -> None:
    pids = list(client.run(os.getpid).values())
    killed = threading.Event()

    def kill() -> None:
        while not list((tmp_path / "out").glob("part-*")):
            time.sleep(0.001)
        os.kill(pids[0], signal.SIGKILL)
        killed.set()

    thread = threading.Thread(target=kill)
    thread.start()
    made = vltext.catalog(folder, client=client, batch_size=2, to=tmp_path / "out")
    thread.join()
    assert killed.is_set()
    assert not made.errors
    assert paths_of(made) == all_once()


def deadly(batch: Batch, work: Work) -> Rows:
    """A task whose worker dies of one file, as by a lack of memory."""
    if any(entry.path.endswith("007.csv") for entry in batch.entries):
        os.kill(os.getpid(), signal.SIGKILL)
    return _fleet.look_on_worker(batch, work)


def test_a_file_that_kills_each_worker_is_a_row(folder: pathlib.Path, client: Any) -> None:
    entries = [Entry(str(path)) for path in sorted(folder.iterdir())[:12]]
    batches = [Batch(tuple(entries[start:start + 4])) for start in range(0, 12, 4)]
    found = list(_fleet.look_on_cluster(batches, Work(jobs=1), client, deadly))
    lines = [line for _, rows in found for line in rows.lines()]
    made = vltext.Catalog(lines)
    assert made.errors == {str(folder / "007.csv"): _fleet.DIED}
    assert sorted(paths_of(made)) == [f"{number:03}.csv" for number in range(12)]


def test_what_is_wrong_with_the_task_is_raised(folder: pathlib.Path, client: Any) -> None:
    def wrong(batch: Batch, work: Work) -> Rows:
        raise ValueError("not of a file")

    with pytest.raises(ValueError, match="not of a file"):
        list(_fleet.look_on_cluster([Batch((Entry("x"),))], Work(), client, wrong))


KILLED = """
import os, sys, distributed, vltext
from vltext import _catalog
write = _catalog._Folder.write
done = []
def killing(self, batch, rows):
    if len(done) == 5: os.kill(os.getpid(), 9)
    write(self, batch, rows); done.append(batch)
_catalog._Folder.write = killing
with distributed.Client(sys.argv[1]) as client:
    vltext.catalog(sys.argv[2], to=sys.argv[3], client=client, batch_size=7)
"""


def test_a_killed_client_loses_no_row_and_makes_none_twice(folder: pathlib.Path, tmp_path: pathlib.Path, client: Any,
                                                           cluster: Any) -> None:
    out = tmp_path / "out"
    command = [sys.executable, "-c", KILLED, cluster.scheduler_address, folder, out]
    for _ in range(2):
        assert subprocess.run(command, check=False).returncode == -signal.SIGKILL
    assert len(vltext.Catalog.open(out)) == 70
    made = vltext.catalog(folder, to=out, client=client, batch_size=7)
    assert paths_of(made) == all_once()
