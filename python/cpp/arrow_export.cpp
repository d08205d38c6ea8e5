// Each exported structure has an owner in its private data, which shares the batch and holds what Arrow wants in another
// form: the pointers to the buffers, and the words of a category as one text between offsets.
#include "python/cpp/arrow_export.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace textio::python {
namespace {

using reading::Batch;
using reading::Column;
using reading::ColumnType;

// What a buffer without values points to: some readers refuse null.
alignas(64) constexpr std::array<std::int64_t, 8> kNoValues{};

template <typename Values>
const void* pointer_to(const Values& values) {
  return values.empty() ? static_cast<const void*>(kNoValues.data()) : values.data();
}

// ---------------------------------------------------------------------------------------------
// Schemas

struct SchemaOwner {
  std::string format;
  std::string name;
  std::string metadata;
  std::deque<ArrowSchema> children;
  std::vector<ArrowSchema*> pointers;
  ArrowSchema dictionary{};
};

template <typename Structure>
void release_if_owned(Structure& structure) {
  if (structure.release != nullptr) structure.release(&structure);
}

template <typename Structure, typename Owner>
void release(Structure* structure) {
  const std::unique_ptr<Owner> owner(static_cast<Owner*>(structure->private_data));
  for (Structure& child : owner->children) release_if_owned(child);
  release_if_owned(owner->dictionary);
  structure->release = nullptr;
}

const char* format_of(const FieldType& field) {
  switch (field.type) {
    case ColumnType::integer:
      return "l";
    case ColumnType::real:
      return "g";
    case ColumnType::boolean:
      return "b";
    case ColumnType::date:
      return "tdD";
    case ColumnType::time:
      return "ttu";
    case ColumnType::date_time:
      return field.is_utc ? "tsu:UTC" : "tsu:";
    case ColumnType::duration:
      return "tDu";
    case ColumnType::category:
      return "i";
    case ColumnType::decimal:
    case ColumnType::text:
      break;
  }
  return "U";
}

void append_number(std::size_t number, std::string& to) {
  const auto value = static_cast<std::int32_t>(number);
  std::array<char, sizeof value> bytes{};
  std::memcpy(bytes.data(), &value, sizeof value);
  to.append(bytes.data(), bytes.size());
}

// Counts and texts, one after the other, in the byte order of the machine.
std::string metadata_of(const FieldType& field) {
  if (field.metadata.empty()) return {};
  std::string text;
  append_number(field.metadata.size(), text);
  for (const auto& [key, value] : field.metadata) {
    append_number(key.size(), text);
    text += key;
    append_number(value.size(), text);
    text += value;
  }
  return text;
}

void finish(std::unique_ptr<SchemaOwner> owner, ArrowSchema* out) {
  for (ArrowSchema& child : owner->children) owner->pointers.push_back(&child);
  *out = {};
  out->format = owner->format.c_str();
  out->name = owner->name.c_str();
  out->metadata = owner->metadata.empty() ? nullptr : owner->metadata.c_str();
  out->flags = ARROW_FLAG_NULLABLE;
  out->n_children = static_cast<std::int64_t>(owner->children.size());
  out->children = owner->pointers.empty() ? nullptr : owner->pointers.data();
  out->dictionary = owner->dictionary.release != nullptr ? &owner->dictionary : nullptr;
  out->release = release<ArrowSchema, SchemaOwner>;
  out->private_data = owner.release();
}

// Releases what was exported if an exception ends the export.
struct SchemaGuard {
  SchemaOwner* owner;
  bool is_done = false;
  ~SchemaGuard() {
    if (is_done) return;
    for (ArrowSchema& child : owner->children) release_if_owned(child);
    release_if_owned(owner->dictionary);
  }
};

void export_field(const FieldType& field, ArrowSchema* out) {
  auto owner = std::make_unique<SchemaOwner>();
  SchemaGuard guard{owner.get()};
  owner->format = format_of(field);
  owner->name = field.name;
  owner->metadata = metadata_of(field);
  if (field.type == ColumnType::category) {
    FieldType words;
    export_field(words, &owner->dictionary);
  }
  guard.is_done = true;
  finish(std::move(owner), out);
}

// ---------------------------------------------------------------------------------------------
// Columns

struct ArrayOwner {
  SharedBatch batch;
  std::shared_ptr<const Column> made;  // a column that the batch does not have
  std::array<const void*, 3> buffers{};
  std::vector<std::int64_t> offsets;  // of the words of a category
  std::string bytes;
  std::deque<ArrowArray> children;
  std::vector<ArrowArray*> pointers;
  ArrowArray dictionary{};
};

struct ArrayGuard {
  ArrayOwner* owner;
  bool is_done = false;
  ~ArrayGuard() {
    if (is_done) return;
    for (ArrowArray& child : owner->children) release_if_owned(child);
    release_if_owned(owner->dictionary);
  }
};

void finish(std::unique_ptr<ArrayOwner> owner, std::size_t length, std::size_t num_missing,
            std::int64_t num_buffers, ArrowArray* out) {
  for (ArrowArray& child : owner->children) owner->pointers.push_back(&child);
  *out = {};
  out->length = static_cast<std::int64_t>(length);
  out->null_count = static_cast<std::int64_t>(num_missing);
  out->n_buffers = num_buffers;
  out->n_children = static_cast<std::int64_t>(owner->children.size());
  out->buffers = owner->buffers.data();
  out->children = owner->pointers.empty() ? nullptr : owner->pointers.data();
  out->dictionary = owner->dictionary.release != nullptr ? &owner->dictionary : nullptr;
  out->release = release<ArrowArray, ArrayOwner>;
  out->private_data = owner.release();
}

void export_words(const SharedBatch& batch, const std::vector<std::string>& words,
                  ArrowArray* out) {
  auto owner = std::make_unique<ArrayOwner>();
  owner->batch = batch;
  owner->offsets.push_back(0);
  for (const std::string& word : words) {
    owner->bytes += word;
    owner->offsets.push_back(static_cast<std::int64_t>(owner->bytes.size()));
  }
  owner->buffers = {nullptr, owner->offsets.data(), pointer_to(owner->bytes)};
  finish(std::move(owner), words.size(), 0, 3, out);
}

const void* values_of(const Column& column) {
  switch (column.type) {
    case ColumnType::real:
      return pointer_to(column.reals);
    case ColumnType::boolean:
      return pointer_to(column.booleans);
    case ColumnType::date:
      return pointer_to(column.days);
    case ColumnType::category:
      return pointer_to(column.codes);
    case ColumnType::decimal:
    case ColumnType::text:
      return pointer_to(column.offsets);
    default:
      return pointer_to(column.integers);
  }
}

void export_column(const SharedBatch& batch, const std::shared_ptr<const Column>& made,
                   const Column& column, ArrowArray* out) {
  auto owner = std::make_unique<ArrayOwner>();
  ArrayGuard guard{owner.get()};
  owner->batch = batch;
  owner->made = made;
  const bool is_text = column.type == ColumnType::text || column.type == ColumnType::decimal;
  owner->buffers = {column.validity.empty() ? nullptr : column.validity.data(), values_of(column),
                    is_text ? pointer_to(column.bytes) : nullptr};
  if (column.type == ColumnType::category) export_words(batch, column.words, &owner->dictionary);
  guard.is_done = true;
  finish(std::move(owner), column.size, column.num_missing, is_text ? 3 : 2, out);
}

// A column of `size` missing values.
std::shared_ptr<const Column> missing_column(ColumnType type, std::size_t size) {
  auto column = std::make_shared<Column>();
  column->type = type;
  column->size = size;
  column->num_missing = size;
  column->validity.assign((size + 7) / 8, 0);
  switch (type) {
    case ColumnType::real:
      column->reals.assign(size, 0.0);
      break;
    case ColumnType::boolean:
      column->booleans.assign((size + 7) / 8, 0);
      break;
    case ColumnType::date:
      column->days.assign(size, 0);
      break;
    case ColumnType::category:
      column->codes.assign(size, 0);
      break;
    case ColumnType::decimal:
    case ColumnType::text:
      column->offsets.assign(size + 1, 0);
      break;
    default:
      column->integers.assign(size, 0);
      break;
  }
  return column;
}

void export_field_of(const SharedBatch& batch, const TableSchema& schema, std::size_t field,
                     ArrowArray* out) {
  const ColumnType wanted = schema.fields[field].type;
  const std::optional<std::size_t> place = schema.column_of(field);
  if (!place || *place >= batch->columns.size()) {
    const auto made = missing_column(wanted, batch->num_rows);
    return export_column(batch, made, *made, out);
  }
  const Column& column = batch->columns[*place];
  if (column.type != wanted) {
    const std::uint64_t line = batch->lines.empty() ? 0 : batch->lines.front();
    throw reading::ReadError(
        fmt::format("column {}: Expected {} in each batch, got {} from line {} on",
                    schema.fields[field].name, to_string(wanted), to_string(column.type), line),
        line, *place + 1);
  }
  export_column(batch, nullptr, column, out);
}

// ---------------------------------------------------------------------------------------------
// Streams

struct StreamOwner {
  std::unique_ptr<BatchSource> source;
  std::string problem;
};

template <typename Step>
int guarded(ArrowArrayStream* stream, Step step) {
  auto* const owner = static_cast<StreamOwner*>(stream->private_data);
  try {
    step(*owner);
    owner->problem.clear();
    return 0;
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  } catch (const std::exception& error) {
    owner->problem = error.what();
    return EIO;
  }
}

int get_schema(ArrowArrayStream* stream, ArrowSchema* out) {
  return guarded(stream,
                 [out](StreamOwner& owner) { export_schema(*owner.source->schema(), out); });
}

int get_next(ArrowArrayStream* stream, ArrowArray* out) {
  return guarded(stream, [out](StreamOwner& owner) {
    SharedSchema schema;
    const SharedBatch batch = owner.source->next(schema);
    *out = {};  // released: the end
    if (batch) export_batch(batch, *schema, out);
  });
}

const char* get_last_error(ArrowArrayStream* stream) {
  const auto* const owner = static_cast<const StreamOwner*>(stream->private_data);
  return owner->problem.empty() ? nullptr : owner->problem.c_str();
}

void release_stream(ArrowArrayStream* stream) {
  delete static_cast<StreamOwner*>(stream->private_data);
  stream->release = nullptr;
}

class TableBatches : public BatchSource {
 public:
  explicit TableBatches(std::shared_ptr<const TableData> table) : table_(std::move(table)) {}
  SharedSchema schema() override { return table_->schema; }
  SharedBatch next(SharedSchema& schema) override {
    schema = table_->schema;
    return next_ < table_->batches.size() ? table_->batches[next_++] : nullptr;
  }

 private:
  std::shared_ptr<const TableData> table_;
  std::size_t next_ = 0;
};

}  // namespace

void export_schema(const TableSchema& schema, ArrowSchema* out) {
  auto owner = std::make_unique<SchemaOwner>();
  SchemaGuard guard{owner.get()};
  owner->format = "+s";
  for (const FieldType& field : schema.fields) export_field(field, &owner->children.emplace_back());
  owner->pointers.reserve(owner->children.size());
  guard.is_done = true;
  finish(std::move(owner), out);
}

void export_batch(const SharedBatch& batch, const TableSchema& schema, ArrowArray* out) {
  auto owner = std::make_unique<ArrayOwner>();
  ArrayGuard guard{owner.get()};
  owner->batch = batch;
  for (std::size_t field = 0; field < schema.fields.size(); ++field) {
    export_field_of(batch, schema, field, &owner->children.emplace_back());
  }
  owner->pointers.reserve(owner->children.size());
  guard.is_done = true;
  finish(std::move(owner), batch->num_rows, 0, 1, out);
}

void export_stream(std::unique_ptr<BatchSource> source, ArrowArrayStream* out) {
  auto owner = std::make_unique<StreamOwner>();
  owner->source = std::move(source);
  *out = {};
  out->get_schema = get_schema;
  out->get_next = get_next;
  out->get_last_error = get_last_error;
  out->release = release_stream;
  out->private_data = owner.release();
}

std::unique_ptr<BatchSource> source_of(std::shared_ptr<const TableData> table) {
  return std::make_unique<TableBatches>(std::move(table));
}

}  // namespace textio::python
