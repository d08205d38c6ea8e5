"""The rows of a catalogue: as lines of JSON, as a table of Arrow, as Parquet."""
from __future__ import annotations

import dataclasses
import io
import re
from collections.abc import Sequence
from typing import Any

#: Rows for which threads would cost more than they gain.
_FEW = 10_000

_SIZE = re.compile(r'"size": (\d+)')


def parquet() -> Any:
    import pyarrow.parquet  # type: ignore[import-untyped,unused-ignore]

    return pyarrow.parquet


def schema() -> Any:
    import pyarrow as pa  # type: ignore[import-untyped,unused-ignore]

    text, number = pa.string(), pa.int64()
    column = pa.struct([("name", text), ("kind", text), ("unit", text)])
    return pa.schema([
        ("catalog", number), ("path", text), ("path_bytes", text), ("size", number), ("modified", text),
        ("etag", text), ("status", text), ("error", text), ("no_table", text), ("file_kind", text),
        ("confidence", pa.float64()), ("lines", number), ("layout_fingerprint", text),
        ("schema_fingerprint", text), ("mode", text), ("delimiters", pa.list_(text)), ("widths", pa.list_(number)),
        ("quote", text), ("decimal", text), ("grouping", text), ("comment_prefix", text), ("encoding", text),
        ("byte_order_mark", pa.bool_()), ("line_ending", text), ("header_lines", number), ("names_line", number),
        ("units_line", number), ("num_variables", number), ("columns", pa.list_(column)),
    ])


def table_of(lines: Sequence[str]) -> Any:
    """A table of pyarrow."""
    from pyarrow import json as arrow_json  # type: ignore[import-untyped,unused-ignore]

    if not lines:
        return schema().empty_table()
    content = "".join(lines).encode()
    how = arrow_json.ParseOptions(explicit_schema=schema(), unexpected_field_behavior="ignore")
    longest = max(len(line) for line in lines) * 4 + 1024
    return arrow_json.read_json(io.BytesIO(content), parse_options=how,
                                read_options=arrow_json.ReadOptions(block_size=max(1 << 20, longest),
                                                                    use_threads=len(lines) > _FEW))


def parquet_of(table: Any) -> bytes:
    """The content of a Parquet file."""
    out = io.BytesIO()
    parquet().write_table(table, out, compression="zstd")
    return out.getvalue()


@dataclasses.dataclass(frozen=True)
class Rows:
    """The rows of some files, packed: they may come from another machine, and need not be looked into."""

    #: A Parquet file, or lines of JSON in UTF-8.
    content: bytes
    num_files: int
    #: Of the files together, as far as their sizes are known.
    num_bytes: int
    num_failed: int

    @classmethod
    def of(cls, lines: Sequence[str], as_parquet: bool) -> Rows:
        num_bytes = num_failed = 0
        for line in lines:
            head, _, status = line.partition('"status": ')
            size = _SIZE.search(head)
            num_bytes += int(size[1]) if size else 0
            num_failed += status.startswith('"error"')
        content = parquet_of(table_of(lines)) if as_parquet else "".join(lines).encode()
        return cls(content, len(lines), num_bytes, num_failed)

    def lines(self) -> list[str]:
        """Of those that are lines."""
        return [line.decode() for line in self.content.splitlines(keepends=True)]
