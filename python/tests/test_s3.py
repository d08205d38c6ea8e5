"""Catalogues of what is in buckets: a server like that of S3, on the loopback interface."""
from __future__ import annotations

import gzip
import pathlib
import urllib.request
from collections.abc import Iterator
from typing import Any

import pytest

import vltext
from vltext import _catalog

pytest.importorskip("s3fs")
pytest.importorskip("moto")

pytestmark = pytest.mark.dask

COMMA = b"day,level [m]\n2024-01-01,1.5\n2024-01-02,2.5\n2024-01-03,3.5\n"
SEMICOLON = b"Tag;Stand\n01.02.2024;3,5\n02.02.2024;3,9\n03.02.2024;4,1\n"
LONG = COMMA * 1 + b"".join(b"2024-02-%02d,%d.5\n" % (1 + i % 28, i) for i in range(200_000)) + b"(200003 rows)\n"

#: Names that mean something in addresses, in patterns, or to a shell.
NAMES = {"a.csv": COMMA, "b c.csv": SEMICOLON, "d+e%20f.csv": COMMA, "Pegel K\u00f6ln.csv": SEMICOLON,
         "g[1].csv": COMMA, "packed.csv.gz": gzip.compress(SEMICOLON), ".hidden": COMMA, "below/h.csv": COMMA,
         "long.csv": LONG}


@pytest.fixture(scope="module")
def endpoint() -> Iterator[str]:
    from moto.server import ThreadedMotoServer

    server = ThreadedMotoServer(ip_address="127.0.0.1", port=0, verbose=False)
    server.start()
    try:
        host, port = server.get_host_and_port()
        yield f"http://{host}:{port}"
    finally:
        server.stop()


@pytest.fixture
def options(endpoint: str) -> Iterator[dict[str, Any]]:
    yield {"key": "testing", "secret": "testing", "endpoint_url": endpoint,
           "client_kwargs": {"region_name": "eu-central-1"}}
    ask(endpoint, "reset")


def ask(endpoint: str, what: str, content: bytes = b"") -> None:
    request = urllib.request.Request(f"{endpoint}/moto-api/{what}", data=content, method="POST",
                                     headers={"Content-Type": "text/plain"})
    with urllib.request.urlopen(request) as reply:
        assert reply.status == 200


@pytest.fixture
def bucket(options: dict[str, Any]) -> Any:
    """The file system of a server with a bucket."""
    import s3fs

    files = s3fs.S3FileSystem(**options, skip_instance_cache=True)
    files.mkdir("gauges")
    for name, content in NAMES.items():
        files.pipe_file(f"gauges/data/{name}", content)
    return files


def names_of(made: vltext.Catalog) -> list[str]:
    return sorted(row["path"].removeprefix("s3://gauges/data/") for row in made)


# --- which files ------------------------------------------------------------------------------------------


@pytest.mark.parametrize(("address", "recursive", "expected"), [
    ("s3://gauges/data", False, set(NAMES) - {".hidden", "below/h.csv"}),
    ("s3://gauges/data/", True, {name for name in NAMES if name != ".hidden"}),
    ("s3://gauges", True, {name for name in NAMES if name != ".hidden"}),
    ("s3://gauges/data/*.csv", False, {name for name in NAMES if name.endswith(".csv") and "/" not in name}),
    ("s3://gauges/data/**/*.csv", False, {name for name in NAMES if name.endswith(".csv")}),
    ("s3://gauges/data/*.txt", False, set()),
    ("s3://nobody/*.csv", False, set()),
    ("s3://gauges/data/b c.csv", False, {"b c.csv"}),
])
def test_addresses_mean_files(bucket: Any, options: dict[str, Any], address: str, recursive: bool,
                              expected: set[str]) -> None:
    made = vltext.catalog(address, recursive=recursive, storage_options=options)
    assert not made.errors
    assert names_of(made) == sorted(expected)


def test_a_row_says_what_that_of_a_local_file_says(bucket: Any, options: dict[str, Any],
                                                   tmp_path: pathlib.Path) -> None:
    made = {row["path"]: row for row in vltext.catalog("s3://gauges", recursive=True, storage_options=options)}
    assert len(made) == len(NAMES) - 1
    for address, row in made.items():
        name = address.removeprefix("s3://gauges/data/")
        local = tmp_path / "file"
        local.write_bytes(NAMES[name])
        (expected,) = vltext.catalog(local)
        assert row["etag"]
        assert str(row["modified"]).startswith("20")
        different = {"path": address, "modified": row["modified"], "etag": row["etag"]}
        assert row == {**expected, **different}, name


# --- what goes wrong --------------------------------------------------------------------------------------


def test_an_object_that_vanishes_is_a_row(bucket: Any, options: dict[str, Any],
                                          monkeypatch: pytest.MonkeyPatch) -> None:
    listed = _catalog._remote_entries

    def list_and_delete(*arguments: Any) -> Any:
        entries = listed(*arguments)
        bucket.rm_file("gauges/data/a.csv")
        return entries

    monkeypatch.setattr(_catalog, "_remote_entries", list_and_delete)
    made = vltext.catalog("s3://gauges/data/*.csv", storage_options=options)
    assert list(made.errors) == ["s3://gauges/data/a.csv"]
    assert "FileNotFoundError" in made.errors["s3://gauges/data/a.csv"]
    assert len(made) == 6


@pytest.mark.parametrize("address", ["s3://gauges/data/none.csv", "s3://nobody/data/a.csv", "s3://nobody"])
def test_what_is_not_there_is_a_row(bucket: Any, options: dict[str, Any], address: str) -> None:
    made = vltext.catalog([address, "s3://gauges/data/a.csv"], storage_options=options)
    assert list(made.errors) == [address]
    assert "FileNotFoundError" in made.errors[address]
    assert [row["status"] for row in made] == ["error", "table"]


@pytest.mark.parametrize("address", ["s3://gauges/data", "s3://gauges/data/*.csv", "s3://gauges/data/a.csv"])
def test_wrong_credentials_are_a_row(bucket: Any, endpoint: str, options: dict[str, Any], address: str) -> None:
    ask(endpoint, "reset-auth", b"0")
    try:
        made = vltext.catalog(address, storage_options={**options, "key": "nobody", "secret": "wrong"})
    finally:
        ask(endpoint, "reset-auth", b"inf")
    assert list(made.errors) == [address]
    assert "PermissionError" in made.errors[address] or "InvalidAccessKeyId" in made.errors[address]
    assert not vltext.catalog(address, storage_options=options).errors


def test_a_server_that_is_not_there_is_a_row(options: dict[str, Any]) -> None:
    away = {**options, "endpoint_url": "http://127.0.0.1:9", "config_kwargs": {"retries": {"max_attempts": 0}}}
    made = vltext.catalog("s3://gauges/data/a.csv", storage_options=away)
    assert "connect" in made.errors["s3://gauges/data/a.csv"].lower()


# --- again, and elsewhere ---------------------------------------------------------------------------------


def test_what_has_not_changed_is_not_fetched_again(bucket: Any, options: dict[str, Any], tmp_path: pathlib.Path,
                                                   monkeypatch: pytest.MonkeyPatch) -> None:
    from vltext import _fleet

    fetched: list[str] = []
    fetch = _fleet._FetchedFiles.fetch

    def counted(self: Any, entry: Any, step: int) -> Any:
        fetched.append(entry.path.rpartition("/")[2])
        return fetch(self, entry, step)

    monkeypatch.setattr(_fleet._FetchedFiles, "fetch", counted)

    def look() -> list[str]:
        fetched.clear()
        made = vltext.catalog("s3://gauges/data/[a-d]*.csv", storage_options=options, to=tmp_path / "out")
        assert sorted(row["path"].rpartition("/")[2] for row in made) == ["a.csv", "b c.csv", "d+e%20f.csv"]
        return sorted(fetched)

    assert look() == ["a.csv", "b c.csv", "d+e%20f.csv"]
    assert look() == []
    bucket.pipe_file("gauges/data/a.csv", SEMICOLON)
    assert look() == ["a.csv"]
    (row,) = [row for row in vltext.Catalog.open(tmp_path / "out") if row["path"].endswith("/a.csv")]
    assert row["delimiters"] == [";"]


def test_workers_fetch_by_themselves(bucket: Any, options: dict[str, Any], tmp_path: pathlib.Path) -> None:
    import distributed

    with distributed.LocalCluster(n_workers=1, threads_per_worker=1, processes=True, host="127.0.0.1",
                                  dashboard_address=None) as cluster, distributed.Client(cluster) as client:
        made = vltext.catalog("s3://gauges", recursive=True, storage_options=options, client=client,
                              to=tmp_path / "out", batch_size=3)
    assert not made.errors
    assert list(made) == list(vltext.catalog("s3://gauges", recursive=True, storage_options=options,
                                             to=tmp_path / "here"))
