// Batches for other libraries: the C data interface of Arrow, without a copy of the values.
//
//   ArrowArray array;
//   export_batch(batch, schema, &array);   // shares the batch until array.release(&array)
//
// Ownership  what is exported shares the batch, and its consumer releases it, in any thread.
// Errors     ReadError if a column of the batch has another type than its field; std::bad_alloc.
#pragma once

#include <memory>

#include "python/cpp/arrow_c_data.h"
#include "python/cpp/table_data.hpp"

namespace textio::python {

void export_schema(const TableSchema& schema, ArrowSchema* out);
void export_batch(const SharedBatch& batch, const TableSchema& schema, ArrowArray* out);

// Batches that are handed out one after the other.
class BatchSource {
 public:
  BatchSource() = default;
  BatchSource(const BatchSource&) = delete;
  BatchSource& operator=(const BatchSource&) = delete;
  virtual ~BatchSource() = default;

  virtual SharedSchema schema() = 0;

  // The next, null at the end; and the schema to export it with, that of schema() but for the order of its columns.
  virtual SharedBatch next(SharedSchema& schema) = 0;
};

// What the source throws becomes an error of the stream.
void export_stream(std::unique_ptr<BatchSource> source, ArrowArrayStream* out);

// The batches of a table that was read.
std::unique_ptr<BatchSource> source_of(std::shared_ptr<const TableData> table);

}  // namespace textio::python
