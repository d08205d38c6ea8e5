// The module vltext._core: layouts, tables and the tool for the Python code beside it, which has the public names and
// their documentation. Everything that takes time runs without the lock of the interpreter.
#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <nanobind/nanobind.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/pair.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/vector.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/reading/table_plan.hpp>
#include <vltextstream/reading/table_reader.hpp>
#include <vltextstream/text/utf8.hpp>
#include <vltextstream/version.hpp>

#include "python/cpp/arrow_export.hpp"
#include "python/cpp/catalog_lines.hpp"
#include "python/cpp/emit_dict.hpp"
#include "python/cpp/layout_picture.hpp"
#include "python/cpp/layout_state.hpp"
#include "python/cpp/parts.hpp"
#include "python/cpp/table_data.hpp"
#include "tool/answers.hpp"
#include "tool/command_line.hpp"
#include "tool/file_kind.hpp"
#include "tool/json_report.hpp"
#include "tool/option_flags.hpp"
#include "tool/report.hpp"
#include "tool/table_commands.hpp"
#include "tool/usage_errors.hpp"

namespace textio::python {
namespace {

namespace nb = nanobind;

using reading::Account;
using reading::Batch;
using reading::Column;
using reading::ColumnType;
using reading::LineFate;
using reading::Oddity;
using reading::ReadSettings;
using reading::TableReader;
using standalone::Layout;

// ---------------------------------------------------------------------------------------------
// Errors

nb::object unicode_of(std::string_view utf8, const char* errors = "replace") {
  PyObject* const text =
      PyUnicode_DecodeUTF8(utf8.data(), static_cast<Py_ssize_t>(utf8.size()), errors);
  if (text == nullptr) throw nb::python_error();
  return nb::steal(text);
}

// Sets the error that the function `maker` of vltext._errors makes. Paths in messages need not be UTF-8.
template <typename... Values>
void raise(const char* maker, const std::exception& error, const Values&... values) {
  try {
    const nb::object made =
        nb::module_::import_("vltext._errors")
            .attr(maker)(unicode_of(error.what(), "surrogateescape"), values...);
    PyErr_SetObject(made.type().ptr(), made.ptr());
  } catch (nb::python_error& other) {
    other.restore();
  }
}

void translate(const std::exception_ptr& thrown, void* /*payload*/) {
  try {
    std::rethrow_exception(thrown);
  } catch (const reading::ReadError& error) {
    raise("read_error", error, error.line(), error.column());
  } catch (const standalone::FileError& error) {
    raise("file_error", error);
  } catch (const tool::UsageError& error) {
    raise("option_error", error);
  } catch (const tool::BadArgument& error) {
    raise("option_error", error);
  } catch (const std::invalid_argument& error) {
    raise("option_error", error);
  } catch (const std::runtime_error& error) {
    raise("error", error);
  }
}

// ---------------------------------------------------------------------------------------------
// Settings: the command line of the tool, parsed by the tool

std::vector<const char*> pointers_to(const std::vector<std::string>& words) {
  std::vector<const char*> pointers;
  pointers.reserve(words.size());
  for (const std::string& word : words) pointers.push_back(word.c_str());
  return pointers;
}

std::vector<std::string> words_of(std::initializer_list<std::string> first,
                                  const std::vector<std::string>& arguments,
                                  std::initializer_list<std::string> last) {
  std::vector<std::string> words(first);
  words.insert(words.end(), arguments.begin(), arguments.end());
  words.insert(words.end(), last);
  return words;
}

struct Settings {
  ReadSettings read;
};
using SharedSettings = std::shared_ptr<const Settings>;

SharedSettings detect_settings(const std::vector<std::string>& arguments) {
  const auto words = words_of({"vltext"}, arguments, {"--", "FILE"});
  const auto pointers = pointers_to(words);
  auto settings = std::make_shared<Settings>();
  settings->read.detect =
      tool::parse_command_line(static_cast<int>(pointers.size()), pointers.data()).settings;
  return settings;
}

SharedSettings read_settings(const std::vector<std::string>& arguments) {
  const auto words = words_of({"vltext", "convert"}, arguments, {"--to", "csv", "--", "FILE"});
  const auto pointers = pointers_to(words);
  auto settings = std::make_shared<Settings>();
  settings->read =
      tool::parse_convert_line(static_cast<int>(pointers.size()), pointers.data()).settings;
  // As in C++: the batches stay in memory, and larger ones are fewer.
  settings->read.window = ReadSettings().window;
  return settings;
}

// The flags of the options of the library, and whether each takes several values.
std::vector<std::pair<std::string, bool>> library_flags() {
  std::vector<std::pair<std::string, bool>> flags;
  for (const tool::OptionFlag& flag : tool::option_flags()) {
    flags.emplace_back(tool::flag_of(flag.name), flag.kind == tool::ValueKind::text_list);
  }
  return flags;
}

// ---------------------------------------------------------------------------------------------
// Inputs

// The bytes of an object with a buffer, which stay where they are until this ends.
class HeldBytes {
 public:
  explicit HeldBytes(const nb::object& object) {
    if (PyObject_GetBuffer(object.ptr(), &view_, PyBUF_SIMPLE) != 0) throw nb::python_error();
  }
  HeldBytes(const HeldBytes&) = delete;
  HeldBytes& operator=(const HeldBytes&) = delete;
  ~HeldBytes() { PyBuffer_Release(&view_); }

  std::string_view view() const {
    return {static_cast<const char*>(view_.buf), static_cast<std::size_t>(view_.len)};
  }

 private:
  Py_buffer view_{};
};

std::string bytes_of(const nb::bytes& bytes) { return {bytes.c_str(), bytes.size()}; }

// A path, or the content of a file.
struct Input {
  explicit Input(const nb::object& source) {
    if (nb::isinstance<nb::tuple>(source)) {
      const nb::object object = source[0];
      held = std::make_unique<HeldBytes>(object);
    } else {
      path = bytes_of(nb::cast<nb::bytes>(source));
    }
  }

  std::string path;
  std::unique_ptr<HeldBytes> held;
};

// ---------------------------------------------------------------------------------------------
// Layouts

class LayoutBox {
 public:
  explicit LayoutBox(Layout layout, PictureSource picture = {})
      : layout_(std::make_shared<const Layout>(std::move(layout))), picture_(std::move(picture)) {}
  explicit LayoutBox(std::pair<Layout, PictureSource> found)
      : LayoutBox(std::move(found.first), std::move(found.second)) {}
  explicit LayoutBox(std::shared_ptr<const Layout> layout, PictureSource picture = {})
      : layout_(std::move(layout)), picture_(std::move(picture)) {}

  const Layout& get() const { return *layout_; }
  const std::shared_ptr<const Layout>& shared() const { return layout_; }

  const PictureSource& picture() const { return picture_; }

 private:
  std::shared_ptr<const Layout> layout_;
  PictureSource picture_;
};

SharedDetectSettings shared_detect(const SharedSettings& settings) {
  return {settings, &settings->read.detect};
}

LayoutBox detect(const nb::object& source, const SharedSettings& settings) {
  const Input input(source);
  const nb::gil_scoped_release without_lock;
  const SharedDetectSettings how = shared_detect(settings);
  return LayoutBox(input.held ? detect_pictured_bytes(input.held->view(), how)
                              : detect_pictured(input.path, how));
}

// To be called before the input is read. Of bytes the picture is drawn later.
PictureSource picture_before(const Input& input, const SharedSettings& settings) {
  return input.held ? PictureSource() : PictureSource(input.path, shared_detect(settings));
}

LayoutBox pictured(const Input& input, const Layout& layout, const PictureSource& before,
                   const SharedSettings& settings) {
  if (!input.held) return LayoutBox(layout, before);
  return LayoutBox(layout, PictureSource(input.held->view(), layout, shared_detect(settings)));
}

// The member of `files` in the JSON of the tool.
std::string json_of(const LayoutBox& layout, const nb::bytes& file) {
  const std::string name = bytes_of(file);
  const nb::gil_scoped_release without_lock;
  const std::string& first = layout.get().first_bytes;
  return tool::json_member(name, layout.get(),
                           first.empty() ? std::string() : tool::file_kind(first));
}

// What the tool prints about the file.
std::string report_of(const LayoutBox& layout, const nb::bytes& file) {
  const std::string name = bytes_of(file);
  const nb::gil_scoped_release without_lock;
  const std::string& first = layout.get().first_bytes;
  return tool::report(name, layout.get(), {},
                      first.empty() ? std::string() : tool::file_kind(first));
}

// What a notebook shows.
std::string html_of_box(const LayoutBox& layout, const nb::bytes& file) {
  const std::string name = bytes_of(file);
  const nb::gil_scoped_release without_lock;
  return html_of(name, layout.get(), layout.picture());
}

nb::bytes state_of_box(const LayoutBox& layout) {
  const std::string state = state_of(layout.get());
  return nb::bytes(state.data(), state.size());
}

// As it is drawn now.
nb::bytes picture_of_box(const LayoutBox& layout) {
  std::string picture;
  {
    const nb::gil_scoped_release without_lock;
    picture = layout.picture().draw(layout.get());
  }
  return nb::bytes(picture.data(), picture.size());
}

LayoutBox box_of_state(const nb::bytes& state, const nb::bytes& picture) {
  try {
    const std::string shown = bytes_of(picture);
    if (!shown.empty()) static_cast<void>(picture_of_state(shown));
    return LayoutBox(layout_of({state.c_str(), state.size()}), PictureSource(shown));
  } catch (const std::invalid_argument& refused) {
    throw nb::value_error(refused.what());
  }
}

std::vector<std::string> utf8_of(const std::vector<std::u16string>& texts) {
  std::vector<std::string> all;
  all.reserve(texts.size());
  for (const std::u16string& text : texts) all.push_back(to_utf8_lossy(text));
  return all;
}

std::optional<std::string> utf8_of(std::optional<char16_t> unit) {
  if (!unit) return std::nullopt;
  return to_utf8_lossy(std::u16string(1, *unit));
}

// ---------------------------------------------------------------------------------------------
// Accounts

template <typename Enumerator>
std::string word_of(Enumerator each) {
  return std::string(to_string(each));
}

nb::dict dict_of(const Account& account) {
  nb::dict lines;
  nb::dict bytes;
  for (std::size_t i = 0; i < reading::kLineFates; ++i) {
    const std::string fate = word_of(static_cast<LineFate>(i));
    lines[fate.c_str()] = account.sums[i].lines;
    bytes[fate.c_str()] = account.sums[i].bytes;
  }
  nb::dict oddities;
  for (std::size_t i = 0; i < reading::kOddities; ++i) {
    oddities[word_of(static_cast<Oddity>(i)).c_str()] = account.oddities[i];
  }
  nb::list runs;
  for (const reading::FateRun& run : account.runs) {
    runs.append(nb::make_tuple(word_of(run.fate), run.first_line, run.num_lines, run.num_bytes));
  }
  nb::list places;
  for (const reading::OddPlace& place : account.places) {
    places.append(
        nb::make_tuple(word_of(place.oddity), place.line, place.column, unicode_of(place.text)));
  }
  nb::dict all;
  all["num_lines"] = account.num_lines;
  all["num_bytes"] = account.num_bytes;
  all["num_rows"] = account.num_rows;
  all["lines"] = lines;
  all["bytes"] = bytes;
  all["oddities"] = oddities;
  all["runs"] = runs;
  all["has_more_runs"] = account.has_more_runs;
  all["places"] = places;
  return all;
}

// ---------------------------------------------------------------------------------------------
// Capsules of Arrow

template <typename Structure>
void destroy(PyObject* capsule, const char* name) {
  auto* const structure = static_cast<Structure*>(PyCapsule_GetPointer(capsule, name));
  if (structure == nullptr) return PyErr_Clear();
  if (structure->release != nullptr) structure->release(structure);
  delete structure;
}

nb::object capsule_of(std::unique_ptr<ArrowSchema> schema) {
  PyObject* const capsule = PyCapsule_New(schema.get(), "arrow_schema", [](PyObject* object) {
    destroy<ArrowSchema>(object, "arrow_schema");
  });
  if (capsule == nullptr) throw nb::python_error();
  static_cast<void>(schema.release());
  return nb::steal(capsule);
}

nb::object capsule_of(std::unique_ptr<ArrowArray> array) {
  PyObject* const capsule = PyCapsule_New(array.get(), "arrow_array", [](PyObject* object) {
    destroy<ArrowArray>(object, "arrow_array");
  });
  if (capsule == nullptr) throw nb::python_error();
  static_cast<void>(array.release());
  return nb::steal(capsule);
}

nb::object capsule_of(std::unique_ptr<ArrowArrayStream> stream) {
  PyObject* const capsule = PyCapsule_New(stream.get(), "arrow_array_stream", [](PyObject* object) {
    destroy<ArrowArrayStream>(object, "arrow_array_stream");
  });
  if (capsule == nullptr) throw nb::python_error();
  static_cast<void>(stream.release());
  return nb::steal(capsule);
}

nb::object schema_capsule(const TableSchema& schema) {
  auto exported = std::make_unique<ArrowSchema>();
  export_schema(schema, exported.get());
  return capsule_of(std::move(exported));
}

nb::object stream_capsule(std::unique_ptr<BatchSource> source) {
  auto stream = std::make_unique<ArrowArrayStream>();
  export_stream(std::move(source), stream.get());
  return capsule_of(std::move(stream));
}

// ---------------------------------------------------------------------------------------------
// Values for Python

nb::object value_at(const Column& column, std::size_t row) {
  if (column.is_missing(row)) return nb::none();
  switch (column.type) {
    case ColumnType::real:
      return nb::cast(column.reals[row]);
    case ColumnType::boolean:
      return nb::cast(column.boolean_at(row));
    case ColumnType::date:
      return nb::cast(column.days[row]);
    case ColumnType::decimal:
    case ColumnType::text:
    case ColumnType::category: {
      return unicode_of(column.text_at(row));
    }
    default:
      return nb::cast(column.integers[row]);
  }
}

void append_values(const Column& column, nb::list& values) {
  for (std::size_t row = 0; row < column.size; ++row) values.append(value_at(column, row));
}

nb::list fields_of(const TableSchema& schema) {
  nb::list fields;
  for (const FieldType& field : schema.fields) {
    fields.append(nb::make_tuple(field.name, word_of(field.type), field.is_utc));
  }
  return fields;
}

// ---------------------------------------------------------------------------------------------
// Tables

struct BatchBox {
  SharedBatch batch;
  SharedSchema schema;
};

nb::tuple array_capsules(const BatchBox& box) {
  auto array = std::make_unique<ArrowArray>();
  export_batch(box.batch, *box.schema, array.get());
  return nb::make_tuple(schema_capsule(*box.schema), capsule_of(std::move(array)));
}

// Between two batches, so that a long reading can be interrupted.
void obey_signals() {
  if (PyErr_CheckSignals() != 0) throw nb::python_error();
}

// The same, and tells the caller how many bytes are read, if it wants to know. Called without the lock.
void pause_at(std::uint64_t num_bytes, const nb::object& progress) {
  const nb::gil_scoped_acquire with_lock;
  obey_signals();
  if (!progress.is_none()) progress(num_bytes);
}

TableReader detected(const Input& input, const ReadSettings& settings) {
  TableReader reader = input.held ? TableReader::of_bytes(input.held->view(), settings)
                                  : TableReader(input.path, settings);
  if (!reader.layout().no_table.empty()) {
    throw reading::ReadError("no table was found in it: " + reader.layout().no_table, 0, 0);
  }
  return reader;
}

TableReader open(const Input& input, const std::optional<LayoutBox>& layout,
                 const ReadSettings& settings) {
  if (!layout) return detected(input, settings);
  return input.held ? TableReader::of_bytes(input.held->view(), layout->get(), settings)
                    : TableReader(input.path, layout->get(), settings);
}

// All batches of one pass. Called without the lock.
void read_batches(TableReader& reader, TableData& table, const nb::object& progress) {
  for (;;) {
    std::optional<Batch> batch = reader.next();
    if (!batch) break;
    table.batches.push_back(std::make_shared<const Batch>(std::move(*batch)));
    pause_at(reader.account().num_bytes, progress);
  }
}

// The settings with these types for the columns that the layout has; what longer records add is text.
ReadSettings with_types(ReadSettings settings, const Layout& layout,
                        const std::vector<FieldType>& fields) {
  const reading::TablePlan plan = reading::plan_of(layout, settings);
  for (std::size_t c = 0; c < plan.columns.size(); ++c) {
    for (const FieldType& field : fields) {
      if (field.name == plan.columns[c].name) settings.types.push_back({{}, c + 1, field.type});
    }
  }
  return settings;
}

// Settings to read a table once more, with the types that the first reading ended with. Where it added columns, or rules
// leave some out, the reader has to learn them by itself.
ReadSettings settled(const ReadSettings& settings, const TableReader& first,
                     const TableData& table) {
  const std::size_t planned = reading::plan_of(first.layout(), settings).columns.size();
  if (first.names().size() != planned) {
    ReadSettings again = settings;
    again.two_passes = true;
    return again;
  }
  const auto schema = schema_of(first.layout(), first.names(), table.batches, settings);
  return with_types(settings, first.layout(), schema->fields);
}

// The first reading met the cells that widened columns; the second knows the types from the start.
void keep_widened(const Account& first, Account& second) {
  constexpr auto kWidened = static_cast<std::size_t>(Oddity::widened);
  second.oddities[kWidened] = first.oddities[kWidened];
  std::copy_if(first.places.begin(), first.places.end(), std::back_inserter(second.places),
               [](const reading::OddPlace& place) { return place.oddity == Oddity::widened; });
  std::stable_sort(second.places.begin(), second.places.end(),
                   [](const auto& a, const auto& b) { return a.line < b.line; });
}

// As read_table: where a later batch needs a wider type, the input is read once more. Called without the lock.
std::shared_ptr<const TableData> read_all(const Input& input,
                                          const std::optional<LayoutBox>& layout,
                                          const ReadSettings& settings,
                                          const nb::object& progress) {
  auto table = std::make_shared<TableData>();
  std::optional<TableReader> reader(open(input, layout, settings));
  read_batches(*reader, *table, progress);
  std::optional<Account> first;
  if (!are_alike(table->batches)) {
    first = reader->account();
    const ReadSettings again = settled(settings, *reader, *table);
    table->batches.clear();
    reader.emplace(open(input, LayoutBox(reader->layout()), again));
    read_batches(*reader, *table, progress);
  }
  if (!are_alike(table->batches)) {
    throw standalone::FileError("cannot read the table: the file changed while it was read");
  }
  table->layout = std::make_shared<const Layout>(reader->layout());
  table->schema = schema_of(*table->layout, reader->names(), table->batches, settings);
  table->account = reader->account();
  if (first) keep_widened(*first, table->account);
  return table;
}

struct TableBox {
  std::shared_ptr<const TableData> table;
  LayoutBox layout;
};

// The picture of a layout that is given is the caller's.
TableBox read(const nb::object& source, const SharedSettings& settings,
              const std::optional<LayoutBox>& layout, const nb::object& progress) {
  const Input input(source);
  const nb::gil_scoped_release without_lock;
  const PictureSource before = picture_before(input, settings);
  auto table = read_all(input, layout, settings->read, progress);
  LayoutBox own =
      layout ? LayoutBox(table->layout) : pictured(input, *table->layout, before, settings);
  return {std::move(table), std::move(own)};
}

void append_values(const BatchBox& box, std::size_t field, nb::list& values) {
  if (field >= box.schema->fields.size()) throw nb::index_error();
  const std::optional<std::size_t> place = box.schema->column_of(field);
  if (place && *place < box.batch->columns.size()) {
    return append_values(box.batch->columns[*place], values);
  }
  for (std::size_t row = 0; row < box.batch->num_rows; ++row) values.append(nb::none());
}

nb::list column_values(const TableBox& box, std::size_t field) {
  nb::list values;
  for (const SharedBatch& batch : box.table->batches)
    append_values(BatchBox{batch, box.table->schema}, field, values);
  return values;
}

// ---------------------------------------------------------------------------------------------
// Batch after batch

class Scan {
 public:
  Scan(const nb::object& source, const SharedSettings& settings,
       const std::optional<LayoutBox>& layout, bool two_passes)
      : input_(source), shared_(settings), settings_(settings->read) {
    settings_.two_passes = two_passes;
    const nb::gil_scoped_release without_lock;
    picture_ = picture_before(input_, settings);
    reader_.emplace(open(input_, layout, settings_));
  }

  // Null at the end.
  std::optional<BatchBox> next() {
    obey_signals();
    SharedBatch batch;
    {
      const nb::gil_scoped_release without_lock;
      std::optional<Batch> made = reader_->next();
      if (!made) return std::nullopt;
      batch = std::make_shared<const Batch>(std::move(*made));
    }
    return BatchBox{batch, schema_of(reader_->layout(), reader_->names(), {batch}, settings_)};
  }

  LayoutBox layout() const {
    const nb::gil_scoped_release without_lock;
    return pictured(input_, reader_->layout(), picture_, shared_);
  }
  nb::dict account() const { return dict_of(reader_->account()); }
  std::uint64_t num_bytes() const { return reader_->account().num_bytes; }
  std::vector<std::string> names() const { return reader_->names(); }

 private:
  Input input_;
  SharedSettings shared_;
  ReadSettings settings_;
  PictureSource picture_;
  std::optional<TableReader> reader_;
};

// The types of all columns of an input: those of its last batch.
SharedSchema learn(const Input& input, const Layout& layout, const ReadSettings& settings,
                   Account& account) {
  TableReader reader = open(input, LayoutBox(layout), settings);
  std::vector<SharedBatch> seen;  // of each batch the types alone
  while (std::optional<Batch> batch = reader.next()) {
    Batch types;
    for (const Column& column : batch->columns) {
      Column& type = types.columns.emplace_back();
      type.type = column.type;
      type.is_utc = column.is_utc;
    }
    seen.push_back(std::make_shared<const Batch>(std::move(types)));
    const nb::gil_scoped_acquire with_lock;
    obey_signals();
  }
  account = reader.account();
  return schema_of(layout, reader.names(), seen, settings);
}

struct Learned {
  LayoutBox layout;
  SharedSchema schema;
  Account account;
};

Learned learn_types(const nb::object& source, const SharedSettings& settings,
                    const std::optional<LayoutBox>& layout) {
  const Input input(source);
  const nb::gil_scoped_release without_lock;
  Account account;
  std::optional<LayoutBox> known = layout;
  if (!known) known.emplace(open(input, std::nullopt, settings->read).layout());
  SharedSchema schema = learn(input, known->get(), settings->read, account);
  return {*known, std::move(schema), std::move(account)};
}

// ---------------------------------------------------------------------------------------------
// Several inputs as one stream, whose types are known

using FieldWords = std::tuple<std::string, std::string, bool>;

ColumnType type_named(const std::string& word) {
  for (int i = 0; i <= static_cast<int>(ColumnType::category); ++i) {
    if (word == to_string(static_cast<ColumnType>(i))) return static_cast<ColumnType>(i);
  }
  throw nb::value_error("Expected the type of a column.");
}

std::vector<FieldType> fields_of(const std::vector<FieldWords>& words) {
  std::vector<FieldType> fields;
  fields.reserve(words.size());
  for (const auto& [name, type, is_utc] : words) {
    fields.push_back({name, type_named(type), is_utc, {}});
  }
  return fields;
}

struct StreamItem {
  std::string path;
  std::optional<std::string> bytes;  // a copy: a stream lives as long as its consumer likes
  std::shared_ptr<const Layout> layout;
  ReadSettings settings;
  SharedSchema schema;

  TableReader open() const {
    return bytes ? TableReader::of_bytes(*bytes, *layout, settings)
                 : TableReader(path, *layout, settings);
  }
};

// Ends a stream whose consumer runs in the main thread when a signal asks for it. What the handler of the signal raised
// cannot go through the consumer, which has an error of its own: the main thread raises it as soon as that is done.
class SignalWatch {
 public:
  // The caller has the lock.
  SignalWatch()
      : main_thread_(nb::cast<unsigned long>(
            nb::module_::import_("threading").attr("main_thread")().attr("ident"))) {}

  void obey() const {
    if (PyThread_get_thread_ident() != main_thread_) return;
    const nb::gil_scoped_acquire with_lock;
    if (PyErr_CheckSignals() == 0) return;
    auto kept = std::make_unique<nb::python_error>();
    if (Py_AddPendingCall(raise_kept, kept.get()) == 0) static_cast<void>(kept.release());
    throw reading::ReadError("the reading was interrupted", 0, 0);
  }

 private:
  static int raise_kept(void* argument) {
    const std::unique_ptr<nb::python_error> kept(static_cast<nb::python_error*>(argument));
    kept->restore();
    return -1;
  }

  unsigned long main_thread_;
};

class StreamOfItems : public BatchSource {
 public:
  StreamOfItems(std::vector<StreamItem> items, SharedSchema schema)
      : items_(std::move(items)), schema_(std::move(schema)) {}

  SharedSchema schema() override { return schema_; }

  SharedBatch next(SharedSchema& schema) override {
    signals_.obey();
    for (; next_ < items_.size(); ++next_, reader_.reset()) {
      if (!reader_) reader_.emplace(items_[next_].open());
      schema = items_[next_].schema;
      if (auto batch = reader_->next()) return std::make_shared<const Batch>(std::move(*batch));
    }
    return nullptr;
  }

 private:
  std::vector<StreamItem> items_;
  SharedSchema schema_;
  SignalWatch signals_;
  std::size_t next_ = 0;
  std::optional<TableReader> reader_;
};

StreamItem item_of(const nb::tuple& words, const ReadSettings& settings,
                   const std::vector<FieldType>& fields) {
  StreamItem item;
  const nb::object source = words[0];
  const Input input(source);
  item.path = input.path;
  if (input.held) item.bytes = std::string(input.held->view());
  item.layout = nb::cast<LayoutBox>(words[1]).shared();
  const auto own = fields_of(nb::cast<std::vector<FieldWords>>(words[2]));
  item.settings = with_types(settings, *item.layout, own);
  auto schema = std::make_shared<TableSchema>();
  schema->fields = fields;
  schema->order = nb::cast<std::vector<std::optional<std::size_t>>>(words[3]);
  schema->order.resize(fields.size());
  item.schema = std::move(schema);
  return item;
}

nb::object stream_of(const nb::sequence& items, const SharedSettings& settings,
                     const std::vector<FieldWords>& words) {
  auto schema = std::make_shared<TableSchema>();
  schema->fields = fields_of(words);
  std::vector<StreamItem> all;
  for (const nb::handle item : items) {
    all.push_back(item_of(nb::cast<nb::tuple>(item), settings->read, schema->fields));
  }
  return stream_capsule(std::make_unique<StreamOfItems>(std::move(all), std::move(schema)));
}

// A table of columns whose types are known, in the order of `all`.
TableBox read_typed(const nb::object& source, const LayoutBox& layout,
                    const SharedSettings& settings, const std::vector<FieldWords>& own,
                    const std::vector<FieldWords>& all,
                    const std::vector<std::optional<std::size_t>>& order) {
  const Input input(source);
  auto schema = std::make_shared<TableSchema>();
  schema->fields = fields_of(all);
  schema->order = order;
  schema->order.resize(all.size());
  const nb::object no_progress = nb::none();
  const ReadSettings typed = with_types(settings->read, layout.get(), fields_of(own));
  const nb::gil_scoped_release without_lock;
  auto table = std::make_shared<TableData>();
  TableReader reader = open(input, layout, typed);
  read_batches(reader, *table, no_progress);
  table->layout = layout.shared();
  table->schema = std::move(schema);
  table->account = reader.account();
  return {std::move(table), layout};
}

// ---------------------------------------------------------------------------------------------
// Parts of a file

nb::tuple parts_of(const nb::bytes& path, const SharedSettings& settings, const LayoutBox& layout,
                   std::uint64_t least_bytes, const nb::object& progress) {
  const std::string name = bytes_of(path);
  FileParts parts;
  {
    const nb::gil_scoped_release without_lock;
    parts = find_parts(name, layout.get(), settings->read, least_bytes,
                       [&](std::uint64_t num_bytes) { pause_at(num_bytes, progress); });
  }
  nb::list found;
  const std::size_t count = parts.begins.size();
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t end = i + 1 < count ? parts.begins[i + 1].byte : parts.num_bytes;
    const LayoutBox own =
        count == 1 ? layout
                   : LayoutBox(layout_of_part(layout.get(), parts.quote, i == 0, i + 1 == count));
    found.append(nb::make_tuple(parts.begins[i].byte, end, parts.begins[i].line, own));
  }
  return nb::make_tuple(fields_of(*parts.schema), found, dict_of(parts.widened));
}

// ---------------------------------------------------------------------------------------------
// The tool

int run(const std::vector<std::string>& arguments) {
  const auto pointers = pointers_to(arguments);
  const nb::gil_scoped_release without_lock;
  const int status =
      tool::run_tool(static_cast<int>(pointers.size()), pointers.data(), {stdout, stderr});
  std::fflush(stdout);
  std::fflush(stderr);
  return status;
}

// Arguments and paths are bytes in Python.
std::vector<std::string> all_bytes_of(const nb::list& list) {
  std::vector<std::string> all;
  for (const nb::handle each : list) all.push_back(bytes_of(nb::cast<nb::bytes>(each)));
  return all;
}

}  // namespace

NB_MODULE(_core, module) {
  nb::register_exception_translator(translate, nullptr);

  [[maybe_unused]] const nb::class_<Settings> settings(module, "Settings");
  module.def("detect_settings",
             [](const nb::list& list) { return detect_settings(all_bytes_of(list)); });
  module.def("read_settings",
             [](const nb::list& list) { return read_settings(all_bytes_of(list)); });
  module.def("library_flags", library_flags);

  nb::class_<LayoutBox>(module, "Layout")
      .def("json", json_of)
      .def("report", report_of)
      .def("html", html_of_box)
      .def("state", state_of_box)
      .def("picture", picture_of_box)
      .def_static("of_state", box_of_state)
      .def_prop_ro("mode", [](const LayoutBox& box) { return word_of(box.get().mode); })
      .def_prop_ro("delimiters", [](const LayoutBox& box) { return utf8_of(box.get().delimiters); })
      .def_prop_ro("widths", [](const LayoutBox& box) { return box.get().widths; })
      .def_prop_ro("quote", [](const LayoutBox& box) { return utf8_of(box.get().quote); })
      .def_prop_ro("encoding", [](const LayoutBox& box) { return box.get().encoding; })
      .def_prop_ro("confidence", [](const LayoutBox& box) { return box.get().confidence; })
      .def_prop_ro("num_columns", [](const LayoutBox& box) { return box.get().num_variables; })
      .def_prop_ro("header_lines", [](const LayoutBox& box) { return box.get().header_lines; })
      .def_prop_ro("no_table", [](const LayoutBox& box) { return box.get().no_table; });
  module.def("detect", detect);

  nb::class_<BatchBox>(module, "Batch")
      .def_prop_ro("num_rows", [](const BatchBox& box) { return box.batch->num_rows; })
      .def_prop_ro("fields", [](const BatchBox& box) { return fields_of(*box.schema); })
      .def_prop_ro("first_line", [](const BatchBox& box) { return box.batch->lines.front(); })
      .def("values",
           [](const BatchBox& box, std::size_t column) {
             nb::list values;
             append_values(box, column, values);
             return values;
           })
      .def("schema", [](const BatchBox& box) { return schema_capsule(*box.schema); })
      .def("array", array_capsules);

  nb::class_<TableBox>(module, "Table")
      .def_prop_ro("num_rows", [](const TableBox& box) { return box.table->num_rows(); })
      .def_prop_ro("fields", [](const TableBox& box) { return fields_of(*box.table->schema); })
      .def_prop_ro("layout", [](const TableBox& box) { return box.layout; })
      .def_prop_ro("account", [](const TableBox& box) { return dict_of(box.table->account); })
      .def("values", column_values)
      .def("schema", [](const TableBox& box) { return schema_capsule(*box.table->schema); })
      .def("stream", [](const TableBox& box) { return stream_capsule(source_of(box.table)); })
      .def("batches", [](const TableBox& box) {
        std::vector<BatchBox> batches;
        for (const SharedBatch& batch : box.table->batches)
          batches.push_back({batch, box.table->schema});
        return batches;
      });
  module.def("read", read, nb::arg("source"), nb::arg("settings"), nb::arg("layout").none(),
             nb::arg("progress").none());

  nb::class_<Scan>(module, "Scan")
      .def(nb::init<const nb::object&, const SharedSettings&, const std::optional<LayoutBox>&,
                    bool>(),
           nb::arg("source"), nb::arg("settings"), nb::arg("layout").none(), nb::arg("two_passes"))
      .def("next", &Scan::next)
      .def_prop_ro("layout", &Scan::layout)
      .def_prop_ro("account", &Scan::account)
      .def_prop_ro("num_bytes", &Scan::num_bytes)
      .def_prop_ro("names", &Scan::names);

  nb::class_<Learned>(module, "Learned")
      .def_prop_ro("layout", [](const Learned& learned) { return learned.layout; })
      .def_prop_ro("fields", [](const Learned& learned) { return fields_of(*learned.schema); })
      .def_prop_ro("account", [](const Learned& learned) { return dict_of(learned.account); });
  module.def("learn", learn_types, nb::arg("source"), nb::arg("settings"),
             nb::arg("layout").none());
  module.def("stream_of", stream_of, nb::arg("items"), nb::arg("settings"), nb::arg("fields"));
  module.def("read_typed", read_typed, nb::arg("source"), nb::arg("layout"), nb::arg("settings"),
             nb::arg("own"), nb::arg("all"), nb::arg("order"));
  module.def("parts_of", parts_of, nb::arg("path"), nb::arg("settings"), nb::arg("layout"),
             nb::arg("least_bytes"), nb::arg("progress").none());
  module.def("schema_of", [](const std::vector<FieldWords>& words) {
    TableSchema schema;
    schema.fields = fields_of(words);
    return schema_capsule(schema);
  });

  module.def("facts", [](const nb::bytes& path, const SharedSettings& settings) {
    return facts_dict(bytes_of(path), settings->read.detect);
  });

  module.def("catalog_lines",
             [](const nb::list& paths, const SharedSettings& settings, std::size_t num_jobs) {
               return catalog_lines(all_bytes_of(paths), settings->read.detect, num_jobs);
             });
  module.def("files_below", [](const nb::list& paths, bool is_recursive) {
    std::vector<nb::bytes> files;
    for (const std::string& each : files_of(all_bytes_of(paths), is_recursive))
      files.emplace_back(each.data(), each.size());
    return files;
  });
  module.def("catalog_line_named",
             [](const nb::bytes& path, const nb::bytes& name, const SharedSettings& settings) {
               return catalog_line_named(bytes_of(path), bytes_of(name), settings->read.detect);
             });

  module.def("main", [](const nb::list& arguments) { return run(all_bytes_of(arguments)); });
  module.attr("version") = libvltextstream_version;
}

}  // namespace textio::python
