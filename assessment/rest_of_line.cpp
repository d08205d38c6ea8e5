// Each piece is of one of a few looks. A column of pieces is firm if nearly all have the same look, and
// one that text seldom has by chance: values, brackets, labels, capitals, codes of one length. Columns of
// words may be between firm ones ("-rw-r--r-- 1 anna root 4096"), but never before the text: its first
// words would be taken for columns.
#include <vltextstream/assessment/rest_of_line.hpp>

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/pieces.hpp>

namespace textio::assessment {
namespace {

constexpr std::size_t kMostRows = 200;
constexpr std::size_t kLeastRows = 4;
constexpr std::size_t kLeastRowsWithoutNames = 8;
constexpr std::size_t kMostCells = 24;
constexpr std::size_t kMostLinesAbove = 10;  // above a line of names
constexpr std::size_t kLeastNames = 3;
constexpr std::size_t kLeastCode = 4;   // code units
constexpr std::size_t kLeastStamp = 6;  // code units

enum class Look {
  missing,
  number,
  moment,
  address,
  bracketed,
  labelled,
  capitals,
  code,
  word,
  other
};
constexpr std::size_t kLooks = static_cast<std::size_t>(Look::other) + 1;

bool is_capital(char16_t unit) { return unit >= u'A' && unit <= u'Z'; }
bool is_letter(char16_t unit) {
  return is_capital(unit) || (unit >= u'a' && unit <= u'z') || unit >= 0xC0;
}
bool has_letter(std::u16string_view text) {
  return std::any_of(text.begin(), text.end(), is_letter);
}

bool is_bracketed(std::u16string_view piece) {
  if (piece.size() < 3) return false;
  const char16_t close = piece.back();
  switch (piece.front()) {
    case u'[':
      return close == u']';
    case u'(':
      return close == u')';
    case u'<':
      return close == u'>';
    case u'{':
      return close == u'}';
    default:
      return false;
  }
}

Look look_of_text(std::u16string_view piece) {
  if (piece == u"*" || piece == u"?") return Look::missing;
  if (is_bracketed(piece)) return Look::bracketed;
  if (piece.size() > 1 && piece.back() == u':') return Look::labelled;
  if (piece.size() > 1 && std::all_of(piece.begin(), piece.end(), is_capital))
    return Look::capitals;
  if (std::all_of(piece.begin(), piece.end(), is_letter)) return Look::word;
  return piece.size() > 1 ? Look::code : Look::other;
}

Look look_of(std::u16string_view piece) {
  constexpr std::u16string_view kSeparators = u",;|";
  if (piece.size() > 1 && kSeparators.find(piece.back()) != kSeparators.npos) return Look::other;
  const CellKind kind = kind_of(piece);
  switch (kind) {
    case CellKind::missing:
      return Look::missing;
    case CellKind::time:
    case CellKind::date:
    case CellKind::date_time:
    case CellKind::duration:
      return Look::moment;
    case CellKind::url:
    case CellKind::path:
    case CellKind::email:
    case CellKind::ip:
    case CellKind::uuid:
      return Look::address;
    default:
      return is_number(kind) ? Look::number : look_of_text(piece);
  }
}

// The first pieces of a line, a time joined with the date before it.
struct Row {
  std::span<const std::u16string_view> pieces;  // at most kMostCells
  std::size_t num_pieces = 0;
  std::u16string_view last;
  std::u16string_view line;
};

class Rows {
 public:
  Rows() = default;
  Rows(Rows&&) = default;  // a copy would have views of the other one
  std::size_t size() const { return rows_.size(); }
  const Row& operator[](std::size_t index) const { return rows_[index]; }
  auto begin() const { return rows_.begin(); }
  auto end() const { return rows_.end(); }

  void add(std::u16string_view line, const Spans& pieces) {
    rows_.push_back({{}, pieces.size(), part_of(line, pieces.back()), line});
    const std::size_t kept = std::min(pieces.size(), kMostCells);
    for (std::size_t i = 0; i < kept; ++i) pieces_.push_back(part_of(line, pieces[i]));
  }

  // To be called once, when all rows were added.
  void settle() {
    std::size_t begin = 0;
    for (Row& row : rows_) {
      const std::size_t kept = std::min(row.num_pieces, kMostCells);
      row.pieces = std::span(pieces_).subspan(begin, kept);
      begin += kept;
    }
  }

 private:
  std::vector<Row> rows_;
  std::vector<std::u16string_view> pieces_;  // of all rows
};

Rows rows_of(const SampledLines& lines) {
  Rows rows;
  Spans pieces;
  for (std::size_t k = 0; k < lines.size() && rows.size() < kMostRows; ++k) {
    const std::u16string_view line = lines.view(k);
    if (is_blank(line) || is_rule(lines, k) || lines.is_comment(k)) continue;
    find_pieces(lines, k, 1, pieces);
    join_times(line, pieces);
    rows.add(line, pieces);
  }
  rows.settle();
  return rows;
}

bool is_share(std::size_t part, std::size_t whole, std::size_t percent) {
  return 100 * part >= percent * whole;
}

// The pieces of the rows from `first` on that have as many.
std::vector<std::u16string_view> column_of(const Rows& rows, std::size_t first,
                                           std::size_t column) {
  std::vector<std::u16string_view> pieces;
  for (std::size_t i = first; i < rows.size(); ++i) {
    if (column < rows[i].pieces.size()) pieces.push_back(rows[i].pieces[column]);
  }
  return pieces;
}

class Column {
 public:
  explicit Column(std::vector<std::u16string_view> pieces) : pieces_(std::move(pieces)) {
    for (const std::u16string_view piece : pieces_)
      ++counts_[static_cast<std::size_t>(look_of(piece))];
  }

  std::size_t size() const { return pieces_.size(); }
  std::size_t count(Look look) const { return counts_[static_cast<std::size_t>(look)]; }

  // Numbers, dates, times and addresses, or what stands for them.
  bool has_values() const {
    const std::size_t values = count(Look::number) + count(Look::moment) + count(Look::address);
    return is_share(values + count(Look::missing), size(), 90);
  }

  bool is_firm() const {
    return has_values() || is_share(count(Look::bracketed), size(), 90) ||
           is_share(count(Look::labelled), size(), 90) ||
           (is_share(count(Look::capitals), size(), 90) && repeats()) || has_codes(kLeastCode);
  }

  // Firm enough to be the only column before the text.
  bool is_stamp() const {
    return is_share(count(Look::moment) + count(Look::address), size(), 90) ||
           has_codes(kLeastStamp);
  }

  // At most half as many texts as pieces.
  bool repeats() const {
    std::vector<std::u16string_view> texts = pieces_;
    std::sort(texts.begin(), texts.end());
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    return texts.size() <= (size() + 1) / 2;
  }

 private:
  // Letters, digits and marks, of one length.
  bool has_codes(std::size_t least) const {
    if (!is_share(count(Look::code), size(), 50) || count(Look::other) > 0) return false;
    const std::size_t length = pieces_[0].size();
    const auto same = std::count_if(pieces_.begin(), pieces_.end(), [&](std::u16string_view piece) {
      return piece.size() == length;
    });
    return length >= least && is_share(static_cast<std::size_t>(same), size(), 95);
  }

  std::vector<std::u16string_view> pieces_;
  std::array<std::size_t, kLooks> counts_ = {};
};

// The rows from `first` on with this many pieces, and those with at least as many.
std::size_t num_with(const Rows& rows, std::size_t first, std::size_t pieces) {
  return static_cast<std::size_t>(
      std::count_if(rows.begin() + static_cast<std::ptrdiff_t>(first), rows.end(),
                    [&](const Row& row) { return row.num_pieces == pieces; }));
}
std::size_t num_with_at_least(const Rows& rows, std::size_t first, std::size_t pieces) {
  return static_cast<std::size_t>(
      std::count_if(rows.begin() + static_cast<std::ptrdiff_t>(first), rows.end(),
                    [&](const Row& row) { return row.num_pieces >= pieces; }));
}

// The first row is not counted, because it may hold names.
bool is_regular(const Rows& rows) {
  std::vector<std::size_t> counts;
  for (std::size_t i = 1; i < rows.size(); ++i) counts.push_back(rows[i].num_pieces);
  std::sort(counts.begin(), counts.end());
  std::size_t most = 0;
  for (auto from = counts.begin(); from != counts.end();) {
    const auto to = std::upper_bound(from, counts.end(), *from);
    most = std::max(most, static_cast<std::size_t>(to - from));
    from = to;
  }
  return is_share(most, counts.size(), 95);
}

// Whether most lines have letters after the first `cells` cells, and the last pieces are not all values: then
// the text would be in the middle.
bool ends_with_text(const Rows& rows, std::size_t first, std::size_t cells) {
  std::vector<std::u16string_view> last;
  std::size_t texts = 0;
  for (std::size_t i = first; i < rows.size(); ++i) {
    const Row& row = rows[i];
    last.push_back(row.last);
    if (row.num_pieces <= cells) continue;
    const std::u16string_view rest =
        cells < row.pieces.size()
            ? row.line.substr(static_cast<std::size_t>(row.pieces[cells].data() - row.line.data()))
            : row.last;
    texts += has_letter(rest);
  }
  return is_share(texts, last.size(), 60) && !Column(std::move(last)).has_values();
}

// Several different words.
bool may_be_names(const Row& row) {
  if (row.num_pieces < kLeastNames || row.num_pieces > row.pieces.size()) return false;
  const auto is_name = [](std::u16string_view piece) {
    return is_text(kind_of(piece)) && has_letter(piece);
  };
  std::vector<std::u16string_view> names(row.pieces.begin(), row.pieces.end());
  if (!std::all_of(names.begin(), names.end(), is_name)) return false;
  std::sort(names.begin(), names.end());
  return std::adjacent_find(names.begin(), names.end()) == names.end();
}

// Whether the lines below a line of names have as many pieces or more, and values among them.
bool are_names(const Rows& rows, std::size_t row) {
  if (!may_be_names(rows[row])) return false;
  const std::size_t below = rows.size() - row - 1;
  const std::size_t names = rows[row].num_pieces;
  if (!is_share(num_with_at_least(rows, row + 1, names), below, 95)) return false;
  if (is_share(num_with(rows, row + 1, names), below, 95)) return false;
  for (std::size_t c = 0; c + 1 < names; ++c) {
    if (Column(column_of(rows, row + 1, c)).has_values())
      return ends_with_text(rows, row + 1, names - 1);
  }
  return false;
}

std::size_t cells_by_names(const Rows& rows) {
  for (std::size_t i = 0; i <= kMostLinesAbove && i + kLeastRows <= rows.size(); ++i) {
    if (are_names(rows, i)) return rows[i].num_pieces;
  }
  return 0;
}

std::size_t cells_by_columns(const Rows& rows) {
  std::size_t cells = 0;  // up to the last firm column
  for (std::size_t c = 0; c < kMostCells; ++c) {
    if (!is_share(num_with_at_least(rows, 1, c + 2), rows.size() - 1, 90)) break;
    const Column column(column_of(rows, 1, c));
    if (column.is_firm()) {
      if (c > 0 || column.is_stamp()) cells = c + 1;
    } else if (!column.repeats() || column.count(Look::other) > 0) {
      break;
    }
  }
  return cells > 0 && ends_with_text(rows, 1, cells) ? cells + 1 : 0;
}

}  // namespace

std::size_t cells_with_rest(const SampledLines& lines) {
  const Rows rows = rows_of(lines);
  if (rows.size() < kLeastRows || is_regular(rows)) return 0;
  const std::size_t cells = cells_by_names(rows);
  if (cells > 0 || rows.size() < kLeastRowsWithoutNames) return cells;
  return cells_by_columns(rows);
}

}  // namespace textio::assessment
