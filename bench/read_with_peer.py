"""Reads a table with a reader that a user may take instead, and says what it took, as JSON.

    read_with_peer.py duckdb|polars|pyarrow|pandas FILE mixed|quoted THREADS
    read_with_peer.py zlib FILE mixed 1          only unpacks a gzip file

The reader is told the dialect and the types of all columns, and not to use more threads. The time begins after the
package was imported and ends when all values are in memory. `sum` is that of the first column.
"""
import json
import os
import resource
import sys
import time
import typing

Kinds = dict[str, str]

MIXED: Kinds = {
    "id": "integer", "day": "date", "moment": "moment", "station": "text", "code": "text", "level": "real",
    "flow": "real", "temperature": "real", "pressure": "real", "rain": "real", "count": "integer",
    "counter": "integer", "is_valid": "boolean", "quality": "text", "price": "real", "share": "real",
    "latitude": "real", "longitude": "real", "checked": "date", "remark": "text"}
QUOTED: Kinds = {"id": "integer", "title": "text", "text": "text", "author": "text", "note": "text",
                 "place": "text"}
Totals = tuple[int, int, int]


def duckdb(path: str, kinds: Kinds, threads: int) -> typing.Callable[[], Totals]:
    import duckdb as package
    types = {"integer": "BIGINT", "real": "DOUBLE", "text": "VARCHAR", "date": "DATE",
             "moment": "TIMESTAMP", "boolean": "BOOLEAN"}
    connection = package.connect(":memory:", config={"threads": threads})
    columns = ", ".join(f"'{name}': '{types[kind]}'" for name, kind in kinds.items())
    source = (f"read_csv('{path}', auto_detect=false, header=true, delim=',', quote='\"', escape='\"', "
              f"new_line='\\n', columns={{{columns}}})")

    def read() -> Totals:
        connection.execute(f"CREATE TABLE read AS SELECT * FROM {source}")
        rows, total = connection.execute("SELECT count(*), sum(id) FROM read").fetchone() or (0, 0)
        return int(rows), len(kinds), int(total)

    return read


def polars(path: str, kinds: Kinds, threads: int) -> typing.Callable[[], Totals]:
    os.environ["POLARS_MAX_THREADS"] = str(threads)
    import polars as package
    types = {"integer": package.Int64, "real": package.Float64, "text": package.String,
             "date": package.Date, "moment": package.Datetime("us"), "boolean": package.Boolean}

    def read() -> Totals:
        table = package.read_csv(path, schema={name: types[kind] for name, kind in kinds.items()})
        return table.height, table.width, int(table["id"].sum())

    return read


def pyarrow(path: str, kinds: Kinds, threads: int) -> typing.Callable[[], Totals]:
    import pyarrow as package
    import pyarrow.compute
    import pyarrow.csv
    package.set_cpu_count(threads)
    types = {"integer": package.int64(), "real": package.float64(), "text": package.string(),
             "date": package.date32(), "moment": package.timestamp("us"), "boolean": package.bool_()}

    def read() -> Totals:
        table = package.csv.read_csv(
            path, read_options=package.csv.ReadOptions(use_threads=threads > 1),
            parse_options=package.csv.ParseOptions(newlines_in_values=kinds is QUOTED),
            convert_options=package.csv.ConvertOptions(
                column_types={name: types[kind] for name, kind in kinds.items()}))
        return table.num_rows, table.num_columns, package.compute.sum(table["id"]).as_py()

    return read


def pandas(path: str, kinds: Kinds, threads: int) -> typing.Callable[[], Totals]:
    if threads > 1:
        raise SystemExit("the C engine has a single thread")
    import pandas as package
    types = {"integer": "Int64", "real": "float64", "text": "str", "boolean": "bool"}
    formats = {"date": "%Y-%m-%d", "moment": "%Y-%m-%d %H:%M:%S"}

    def read() -> Totals:
        table = package.read_csv(
            path, engine="c", dtype={name: types[kind] for name, kind in kinds.items() if kind in types},
            parse_dates=[name for name, kind in kinds.items() if kind in formats],
            date_format={name: formats[kind] for name, kind in kinds.items() if kind in formats})
        return len(table), len(table.columns), int(table["id"].sum())

    return read


def zlib(path: str, kinds: Kinds, threads: int) -> typing.Callable[[], Totals]:
    import zlib as package
    del kinds, threads

    def read() -> Totals:
        unpacked = 0
        stream = package.decompressobj(wbits=31)
        with open(path, "rb", buffering=0) as file:
            while piece := file.read(65_536):
                unpacked += len(stream.decompress(piece))
        return unpacked, 0, 0

    return read


READERS = {"duckdb": duckdb, "polars": polars, "pyarrow": pyarrow, "pandas": pandas,
           "zlib": zlib}


def cpu_seconds() -> float:
    used = resource.getrusage(resource.RUSAGE_SELF)
    return used.ru_utime + used.ru_stime


def peak_bytes() -> int:
    """The most memory of this program; getrusage counts also what the process had before it became this program."""
    with open("/proc/self/status", encoding="ascii") as status:
        return next(int(line.split()[1]) * 1024 for line in status if line.startswith("VmHWM:"))


def main() -> None:
    reader, path, table, threads = sys.argv[1:]
    read = READERS[reader](path, MIXED if table == "mixed" else QUOTED, int(threads))
    wall, cpu = time.monotonic(), cpu_seconds()
    rows, columns, total = read()
    wall, cpu = time.monotonic() - wall, cpu_seconds() - cpu
    print(json.dumps({"seconds": wall, "cpu": cpu, "peak": peak_bytes(), "rows": rows, "columns": columns,
                      "sum": total}))


if __name__ == "__main__":
    main()
