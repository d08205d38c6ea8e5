// Cells with the same parts are of one style. What differs within a style is kept as sets and
// flags: the languages and forms of names that fit all cells, which numbers have one digit
// somewhere, and how often a number is too large for a month. settle() takes the commonest style
// and says what its numbers are; the two patterns are then written part by part.
#include <vltextstream/columns/date_format.hpp>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include <vltextstream/columns/share.hpp>
#include <vltextstream/text/utf8.hpp>

namespace textio::columns {
namespace {

constexpr std::size_t kMostStyles = 8;
constexpr int kMonths = 12;
constexpr int kDays = 31;

const DatePart* part_with(const DateCell& cell, DateUnit unit) {
  const auto* const found =
      std::find_if(cell.parts.begin(), cell.parts.end(),
                   [unit](const DatePart& part) { return part.unit == unit; });
  return found == cell.parts.end() ? nullptr : found;
}

bool has_unit(const DateCell& cell, DateUnit unit) { return part_with(cell, unit) != nullptr; }

bool is_universal_zone(std::u16string_view zone) { return zone == u"UTC" || zone == u"GMT"; }

// Abbreviations that ICU reads in English. It has others in the languages of other countries only.
bool is_known_zone(std::u16string_view zone) {
  constexpr std::u16string_view kZones[] = {u"EST", u"EDT", u"CST", u"CDT",
                                            u"MST", u"MDT", u"PST", u"PDT"};
  return is_universal_zone(zone) ||
         std::find(std::begin(kZones), std::end(kZones), zone) != std::end(kZones);
}

int value_of(const DateCell& cell, DateUnit unit) {
  const DatePart* const part = part_with(cell, unit);
  return part == nullptr ? 0 : part->value;
}

bool have_same_parts(const DateCell& a, const DateCell& b) {
  return std::equal(a.parts.begin(), a.parts.end(), b.parts.begin(), b.parts.end(),
                    [](const DatePart& x, const DatePart& y) {
                      return x.unit == y.unit && x.literal == y.literal;
                    });
}

// Names that are in both sets; both are empty if neither cell has such a name.
bool have_common_names(const DateCell& a, const DateCell& b) {
  const NameSet months = a.months & b.months;
  const NameSet weekdays = a.weekdays & b.weekdays;
  const bool has_lost_all = (a.months != 0 && months == 0) || (a.weekdays != 0 && weekdays == 0);
  return !has_lost_all && have_common_language(months, weekdays);
}

// The numbers of day and month in the order in which they are written, whichever parts they are.
struct PairOfParts {
  DateUnit first;
  DateUnit second;
};

PairOfParts pair_of(const DateCell& cell, bool starts_with_year) {
  if (!has_unit(cell, DateUnit::one)) return {DateUnit::first, DateUnit::second};
  return starts_with_year ? PairOfParts{DateUnit::two, DateUnit::three}
                          : PairOfParts{DateUnit::one, DateUnit::two};
}

// The units from `first` to `three`, which the whole column has to explain.
bool is_unknown(DateUnit unit) { return unit >= DateUnit::first && unit <= DateUnit::three; }

std::size_t index_of(DateUnit unit) {
  return static_cast<std::size_t>(unit) - static_cast<std::size_t>(DateUnit::first);
}

bool has_pair(const DateCell& cell) {
  return has_unit(cell, DateUnit::first) || has_unit(cell, DateUnit::one);
}

bool begins_with_year(const DateCell& cell) {
  const DatePart* const year = part_with(cell, DateUnit::year);
  if (year == nullptr) return false;
  const auto is_other = [](const DatePart& part) {
    return part.unit == DateUnit::first || part.unit == DateUnit::month ||
           part.unit == DateUnit::month_name || part.unit == DateUnit::day;
  };
  return std::none_of(cell.parts.begin(), year, is_other);
}

// The mark between the two numbers of a cell that has a pair.
char16_t mark_of_pair(const DateCell& cell, const PairOfParts& pair) {
  return (part_with(cell, pair.first) + 1)->literal;
}

}  // namespace

std::string_view to_string(DateOrder order) noexcept {
  constexpr std::string_view kNames[] = {"none", "year-first", "day-first", "month-first",
                                         "ambiguous"};
  return kNames[static_cast<std::size_t>(order)];
}

// --- styles ------------------------------------------------------------------------------------

void DateVotes::add(const DateCell& cell) {
  ++count_;
  if (!cell.has_pattern) return;
  const auto found = std::find_if(styles_.begin(), styles_.end(),
                                  [&cell](const Style& style) { return joins(style, cell); });
  if (found != styles_.end()) return merge(*found, cell);
  if (styles_.size() == kMostStyles) return;
  Style& style = styles_.emplace_back();
  style.sample = cell;
  style.zone = cell.zone;
  merge(style, cell);
}

bool DateVotes::joins(const Style& style, const DateCell& cell) {
  return have_same_parts(style.sample, cell) && have_common_names(style.sample, cell) &&
         (style.sample.offset_forms & cell.offset_forms) != 0;
}

void DateVotes::merge(Style& style, const DateCell& cell) {
  DateCell& sample = style.sample;
  ++style.count;
  sample.months &= cell.months;
  sample.weekdays &= cell.weekdays;
  sample.offset_forms &= cell.offset_forms;
  style.zones_differ = style.zones_differ || style.zone != cell.zone;
  style.are_zones_universal = style.are_zones_universal && is_universal_zone(cell.zone);
  style.are_zones_known = style.are_zones_known && is_known_zone(cell.zone);
  style.month_point_differs |= sample.month_has_point != cell.month_has_point;
  style.weekday_point_differs |= sample.weekday_has_point != cell.weekday_has_point;
  count_numbers(style, cell);
}

void DateVotes::count_numbers(Style& style, const DateCell& cell) {
  const DateCell& sample = style.sample;
  for (std::size_t i = 0; i < cell.parts.size(); ++i) {
    if (cell.parts[i].digits == 1) style.short_parts |= std::uint32_t{1} << i;
    const DatePart& part = cell.parts[i];
    if (is_unknown(part.unit) && part.value > kMonths) ++style.no_month[index_of(part.unit)];
    if (part.unit != DateUnit::fraction) continue;
    style.most_digits_of_fraction = std::max(style.most_digits_of_fraction, part.digits);
  }
  const int one = value_of(cell, DateUnit::one);
  const int three = value_of(cell, DateUnit::three);
  if (one > kDays || one == 0) ++style.one_is_year;
  if (three > kDays || three == 0) ++style.three_is_year;
  style.one_differs |= one != value_of(sample, DateUnit::one);
  style.three_differs |= three != value_of(sample, DateUnit::three);
}

// --- the order ---------------------------------------------------------------------------------

// Of three numbers of two digits, the one that is no day is the year. Otherwise it is the last,
// unless the first never changes and the last does, as days do.
bool DateVotes::is_year_first(const OrderHints& hints) const {
  constexpr std::size_t kLeastForChange = 3;
  if (!has_unit(style_.sample, DateUnit::one)) return begins_with_year(style_.sample);
  if (hints.order == DateOrder::year_first && hints.is_given) return true;
  if (style_.one_is_year != style_.three_is_year) return style_.one_is_year > style_.three_is_year;
  if (hints.order == DateOrder::year_first) return true;
  return style_.count >= kLeastForChange && !style_.one_differs && style_.three_differs;
}

DateOrder DateVotes::order_of_pair(const OrderHints& hints) const {
  const PairOfParts pair = pair_of(style_.sample, starts_with_year_);
  const std::size_t first_is_day = style_.no_month[index_of(pair.first)];
  const std::size_t second_is_day = style_.no_month[index_of(pair.second)];
  const DateOrder counted =
      first_is_day > second_is_day ? DateOrder::day_first : DateOrder::month_first;
  if (starts_with_year_) return counted;
  const bool is_known =
      hints.order == DateOrder::day_first || hints.order == DateOrder::month_first;
  if (is_known && hints.is_given) return hints.order;
  if (first_is_day != second_is_day) return counted;
  if (mark_of_pair(style_.sample, pair) == u'.') return DateOrder::day_first;
  return is_known ? hints.order : DateOrder::ambiguous;
}

void DateVotes::settle(const OrderHints& hints) {
  const auto best =
      std::max_element(styles_.begin(), styles_.end(),
                       [](const Style& a, const Style& b) { return a.count < b.count; });
  if (best == styles_.end()) return;
  style_ = *best;
  has_pattern_ = is_share_enough(style_.count, count_);
  starts_with_year_ = is_year_first(hints);
  if (starts_with_year_) order_ = DateOrder::year_first;
  if (!has_pair(style_.sample)) return;
  const DateOrder pair = order_of_pair(hints);
  is_day_before_month_ = pair != DateOrder::month_first;
  if (!starts_with_year_) order_ = pair;
}

// What a part is, now that the order is known.
DateUnit DateVotes::known_unit(DateUnit unit) const {
  if (!is_unknown(unit)) return unit;
  const PairOfParts pair = pair_of(style_.sample, starts_with_year_);
  if (unit == pair.first) return is_day_before_month_ ? DateUnit::day : DateUnit::month;
  if (unit == pair.second) return is_day_before_month_ ? DateUnit::month : DateUnit::day;
  return DateUnit::short_year;
}

int DateVotes::known_value(const DateCell& cell, DateUnit unit) const {
  for (const DatePart& part : cell.parts) {
    if (known_unit(part.unit) == unit) return part.value;
  }
  return 0;
}

bool DateVotes::fits(const DateCell& cell) const {
  if (!has_pattern_) return true;
  if (!cell.has_pattern || !joins(style_, cell)) return false;
  const int day = known_value(cell, DateUnit::day);
  const int month = known_value(cell, DateUnit::month) + known_value(cell, DateUnit::month_name);
  const int year = known_value(cell, DateUnit::year) + known_value(cell, DateUnit::short_year);
  if (day == 0) return month <= kMonths;
  return is_on_calendar(year, month, day);
}

// --- patterns ----------------------------------------------------------------------------------

namespace {

bool is_ascii_letter(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

// Letters of a pattern of ICU are fields unless they are quoted.
class IcuPattern {
 public:
  void add_field(std::string_view field) {
    close_quote();
    text_ += field;
  }

  void add_literal(char16_t literal) {
    if (literal == u'\'') {
      text_ += "''";  // within quotes as well as outside
      return;
    }
    if (is_ascii_letter(literal) && !is_quoted_) {
      text_ += '\'';
      is_quoted_ = true;
    } else if (!is_ascii_letter(literal)) {
      close_quote();
    }
    append_utf8(text_, literal);
  }

  std::string take() {
    close_quote();
    return std::move(text_);
  }

 private:
  void close_quote() {
    if (is_quoted_) text_ += '\'';
    is_quoted_ = false;
  }

  std::string text_;
  bool is_quoted_ = false;
};

std::string_view icu_month(NameForm form) {
  constexpr std::string_view kFields[] = {"MMMM", "MMM", "LLLL", "LLL"};
  return kFields[static_cast<std::size_t>(form)];
}

bool is_abbreviated(NameForm form) {
  return form == NameForm::abbreviated || form == NameForm::abbreviated_alone;
}

std::string_view icu_offset(std::uint8_t forms) {
  if ((forms & kOffsetWithColon) != 0) return "XXX";
  return (forms & kOffsetOfHours) != 0 ? "X" : "XX";
}

// What differs between the parts of a column and those of its first cell, as far as patterns say
// it.
struct PatternTraits {
  NameChoice names;
  std::uint8_t offset_forms = kAnyOffset;
  std::uint8_t digits_of_fraction = 0;
  bool has_half_day = false;
};

std::string_view icu_field(DateUnit unit, bool is_short, const PatternTraits& traits) {
  switch (unit) {
    case DateUnit::year:
      return "yyyy";
    case DateUnit::short_year:
      return "yy";
    case DateUnit::month:
      return is_short ? "M" : "MM";
    case DateUnit::day:
      return is_short ? "d" : "dd";
    case DateUnit::month_name:
      return icu_month(traits.names.month);
    case DateUnit::weekday:
      return is_abbreviated(traits.names.weekday) ? "EEE" : "EEEE";
    case DateUnit::hour:
      return traits.has_half_day ? (is_short ? "h" : "hh") : (is_short ? "H" : "HH");
    case DateUnit::minute:
      return is_short ? "m" : "mm";
    case DateUnit::seconds:
      return "ss";
    case DateUnit::fraction:
      return std::string_view("SSSSSSSSS").substr(0, traits.digits_of_fraction);
    case DateUnit::half_day:
      return "a";
    case DateUnit::offset:
      return icu_offset(traits.offset_forms);
    default:
      return "";
  }
}

std::string_view strptime_field(DateUnit unit, const PatternTraits& traits) {
  switch (unit) {
    case DateUnit::year:
      return "%Y";
    case DateUnit::short_year:
      return "%y";
    case DateUnit::month:
      return "%m";
    case DateUnit::day:
      return "%d";
    case DateUnit::month_name:
      return is_abbreviated(traits.names.month) ? "%b" : "%B";
    case DateUnit::weekday:
      return is_abbreviated(traits.names.weekday) ? "%a" : "%A";
    case DateUnit::hour:
      return traits.has_half_day ? "%I" : "%H";
    case DateUnit::minute:
      return "%M";
    case DateUnit::seconds:
      return "%S";
    case DateUnit::fraction:
      return "%f";
    case DateUnit::half_day:
      return "%p";
    case DateUnit::offset:
      return "%z";
    default:
      return "";
  }
}

}  // namespace

// The field of a zone with a name; empty if the name itself, which is the same everywhere, is
// better.
std::string_view DateVotes::strptime_zone() const {
  return style_.are_zones_universal || style_.zones_differ ? "%Z" : "";
}

std::string_view DateVotes::icu_zone(std::string_view language) const {
  const bool is_english = language.empty() || language == "en";
  const bool reads_all = style_.are_zones_universal || (is_english && style_.are_zones_known);
  return reads_all ? "z" : "";
}

// Writes both patterns, part by part. A pattern that cannot be written is dropped at the end.
class DateVotes::PatternWriter {
 public:
  PatternWriter(const DateVotes& votes, const NameChoice& names)
      : votes_(votes),
        style_(votes.style_),
        names_(names),
        traits_{names, style_.sample.offset_forms, style_.most_digits_of_fraction,
                has_unit(style_.sample, DateUnit::half_day)} {}

  void write(DateFormat& format) {
    constexpr std::uint8_t kMostDigitsOfStrptime = 6;
    has_strptime_ = traits_.digits_of_fraction <= kMostDigitsOfStrptime;
    for (std::size_t i = 0; i < style_.sample.parts.size(); ++i) {
      add_part(style_.sample.parts[i], (style_.short_parts >> i & 1U) != 0);
    }
    if (has_icu_) format.icu = icu_.take();
    if (has_strptime_) format.strptime = std::move(strptime_);
  }

 private:
  void add_part(const DatePart& part, bool is_short) {
    if (part.unit == DateUnit::literal) return add_literal(part.literal);
    if (part.unit == DateUnit::zone_name) return add_zone_name();
    const DateUnit unit = votes_.known_unit(part.unit);
    icu_.add_field(icu_field(unit, is_short, traits_));
    strptime_ += strptime_field(unit, traits_);
    if (unit == DateUnit::month_name) {
      add_point(style_.sample.month_has_point, style_.month_point_differs,
                month_has_point(names_.language, names_.month));
    } else if (unit == DateUnit::weekday) {
      add_point(style_.sample.weekday_has_point, style_.weekday_point_differs,
                weekday_has_point(names_.language, names_.weekday));
    }
  }

  void add_literal(char16_t literal) {
    icu_.add_literal(literal);
    append_utf8(strptime_, literal);
  }

  void add_zone_name() {
    const std::string_view strptime = votes_.strptime_zone();
    const std::string_view icu = votes_.icu_zone(names_.language);
    if (icu.empty() && style_.zones_differ) has_icu_ = false;
    icu_.add_field(icu);
    strptime_ += strptime;
    for (const char16_t unit : style_.zone) {
      if (icu.empty()) icu_.add_literal(unit);
      if (strptime.empty()) append_utf8(strptime_, unit);
    }
  }

  // The point of an abbreviation. Where only some cells have it, no format reads them all but one
  // of ICU whose names have points: it reads them with and without.
  void add_point(bool sample_has_point, bool differs, bool icu_reads_it) {
    if (differs) {
      has_strptime_ = false;
      has_icu_ = has_icu_ && icu_reads_it;
    } else if (sample_has_point) {
      strptime_ += '.';
      if (!icu_reads_it) icu_.add_literal(u'.');
    }
  }

  const DateVotes& votes_;
  const Style& style_;
  const NameChoice& names_;
  PatternTraits traits_;
  IcuPattern icu_;
  std::string strptime_;
  bool has_icu_ = true;
  bool has_strptime_ = true;
};

DateFormat DateVotes::format() const {
  DateFormat format;
  format.order = order_;
  if (!has_pattern_) return format;
  const DateCell& sample = style_.sample;
  format.zones_differ = style_.zones_differ;
  if (!style_.zones_differ) format.zone = to_utf8_lossy(style_.zone);
  const NameChoice names = choose_names(sample.months, sample.weekdays);
  format.language = names.language;
  PatternWriter(*this, names).write(format);
  return format;
}

}  // namespace textio::columns
