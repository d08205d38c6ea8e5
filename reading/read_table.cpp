// All batches of a table, made alike.
#include <vltextstream/reading/table_reader.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>
#include <utility>

#include <fmt/format.h>

#include <sys/stat.h>
#include <unistd.h>

#include <vltextstream/host/file_layer.hpp>
#include <vltextstream/layout/file_error.hpp>
#include <vltextstream/reading/text_input.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/files/read_problem.hpp>

namespace textio::reading {
namespace {

// Whether all batches have columns of the same types.
bool are_alike(const std::vector<Batch>& batches) {
  const auto types_differ = [](const Batch& a, const Batch& b) {
    return !std::equal(a.columns.begin(), a.columns.end(), b.columns.begin(), b.columns.end(),
                       [](const Column& x, const Column& y) { return x.type == y.type; });
  };
  return std::adjacent_find(batches.begin(), batches.end(), types_differ) == batches.end();
}

void append_bits(std::vector<std::uint8_t>& to, std::size_t size,
                 const std::vector<std::uint8_t>& from, std::size_t count) {
  to.resize((size + count + 7) / 8);
  for (std::size_t i = 0; i < count; ++i) {
    const bool bit = ((from[i / 8] >> (i % 8)) & 1) != 0;
    if (bit)
      to[(size + i) / 8] = static_cast<std::uint8_t>(to[(size + i) / 8] | (1U << ((size + i) % 8)));
  }
}

template <typename T>
void append_all(std::vector<T>& to, const std::vector<T>& from) {
  to.insert(to.end(), from.begin(), from.end());
}

void append_codes(Column& to, const Column& from) {
  std::vector<std::int32_t> codes;
  for (const std::string& word : from.words) {
    const auto known = std::find(to.words.begin(), to.words.end(), word);
    codes.push_back(static_cast<std::int32_t>(known - to.words.begin()));
    if (known == to.words.end()) to.words.push_back(word);
  }
  for (std::size_t row = 0; row < from.size; ++row) {
    to.codes.push_back(from.is_missing(row) ? 0 : codes[static_cast<std::size_t>(from.codes[row])]);
  }
}

void append_column(Column& to, const Column& from) {
  if (!to.validity.empty() || !from.validity.empty()) {
    if (to.validity.empty()) to.validity.assign((to.size + 7) / 8, 0xFF);
    const std::vector<std::uint8_t> all((from.size + 7) / 8, 0xFF);
    if (to.size % 8 != 0) {
      to.validity.back() =
          static_cast<std::uint8_t>(to.validity.back() & ((1U << (to.size % 8)) - 1));
    }
    append_bits(to.validity, to.size, from.validity.empty() ? all : from.validity, from.size);
  }
  append_all(to.integers, from.integers);
  append_all(to.reals, from.reals);
  append_all(to.days, from.days);
  if (to.type == ColumnType::boolean) append_bits(to.booleans, to.size, from.booleans, from.size);
  if (to.type == ColumnType::category) append_codes(to, from);
  if (!from.offsets.empty()) {
    const auto base = static_cast<std::int64_t>(to.bytes.size());
    if (to.offsets.empty()) to.offsets.push_back(0);
    for (std::size_t i = 1; i < from.offsets.size(); ++i)
      to.offsets.push_back(base + from.offsets[i]);
    to.bytes += from.bytes;
  }
  to.num_missing += from.num_missing;
  to.size += from.size;
}

void join(std::vector<Batch>& batches) {
  if (batches.size() < 2) return;
  Batch& first = batches.front();
  for (std::size_t i = 1; i < batches.size(); ++i) {
    for (std::size_t c = 0; c < first.columns.size(); ++c) {
      append_column(first.columns[c], batches[i].columns[c]);
    }
    append_all(first.lines, batches[i].lines);
    first.num_rows += batches[i].num_rows;
    batches[i] = {};
  }
  batches.resize(1);
}

// A zone may have come late. The values before it are the same in UTC.
void share_zones(std::vector<Batch>& batches) {
  if (batches.empty()) return;
  for (std::size_t c = 0; c < batches.back().columns.size(); ++c) {
    for (Batch& batch : batches) batch.columns[c].is_utc = batches.back().columns[c].is_utc;
  }
}

Table all_of(TableReader reader) {
  Table table;
  while (std::optional<Batch> batch = reader.next()) table.batches.push_back(std::move(*batch));
  table.layout = reader.layout();
  table.names = reader.names();
  table.row_names_column = reader.row_names_column();
  table.account = reader.account();
  return table;
}

// `make` gives a reader with the settings. The second time, it knows all columns and types from the first.
template <typename Make>
Table read_all(Make make, const ReadSettings& settings) {
  Table table = all_of(make(settings));
  if (!are_alike(table.batches)) {
    table = {};
    ReadSettings again = settings;
    again.two_passes = true;
    table = all_of(make(again));
    if (!are_alike(table.batches)) {
      throw standalone::FileError("cannot read the table: the file changed while it was read");
    }
  }
  share_zones(table.batches);
  if (settings.detect.options.collect_output) join(table.batches);
  return table;
}

bool is_regular_file(const std::string& path) {
  struct stat about {};
  const int failed = path == "-" ? ::fstat(STDIN_FILENO, &about) : ::stat(path.c_str(), &about);
  return failed == 0 && S_ISREG(about.st_mode);
}

// What cannot be read twice is kept, as the columns are.
std::string all_bytes(const std::string& path) {
  errno = 0;
  const File file(open_file(standalone::from_utf8(path), "rb"));
  const auto refuse = [&](const char* action) {
    if (errno == ENOMEM) throw std::bad_alloc();
    throw standalone::FileError(
        fmt::format("cannot {} '{}': {}", action, path, standalone::read_problem(errno)));
  };
  if (!file) refuse("open");
  std::string bytes;
  std::size_t count = 0;
  do {
    const std::size_t size = bytes.size();
    constexpr std::size_t kStep = 1 << 20;
    bytes.resize(size + kStep);
    count = std::fread(bytes.data() + size, 1, kStep, file.get());
    bytes.resize(size + count);
  } while (count > 0);
  if (std::ferror(file.get()) != 0) refuse("read");
  return bytes;
}

}  // namespace

std::size_t Table::num_rows() const {
  std::size_t rows = 0;
  for (const Batch& batch : batches) rows += batch.num_rows;
  return rows;
}

Table read_table(const std::string& path, const ReadSettings& settings) {
  if (!is_regular_file(path)) return read_table_of_bytes(all_bytes(path), settings);
  return read_all([&](const ReadSettings& each) { return TableReader(path, each); }, settings);
}

Table read_table_of_bytes(std::string_view bytes, const ReadSettings& settings) {
  return read_all([&](const ReadSettings& each) { return TableReader::of_bytes(bytes, each); },
                  settings);
}

}  // namespace textio::reading
