#include <vltextstream/columns/epoch.hpp>

#include <algorithm>
#include <iterator>

#include <vltextstream/columns/characters.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;

constexpr double kYear2000 = 946684800;
constexpr double kYear2100 = 4102444800;
constexpr double kMilliseconds = 1000;

constexpr View kTimeWords[] = {u"time",     u"timestamp", u"datetime",   u"date",        u"epoch",
                               u"unix",     u"unixtime",  u"ts",         u"created",     u"updated",
                               u"modified", u"at",        u"zeit",       u"zeitstempel", u"datum",
                               u"uhrzeit",  u"heure",     u"horodatage", u"fecha",       u"hora",
                               u"ora",      u"data",      u"tijd",       u"tijdstip"};

bool is_capital(char16_t unit) { return unit != folded(unit); }

bool is_time_word(View word) {
  return std::any_of(std::begin(kTimeWords), std::end(kTimeWords),
                     [word](View each) { return is_word(word, each); });
}

}  // namespace

bool speaks_of_time(View name) {
  std::size_t begin = 0;
  for (std::size_t i = 0; i <= name.size(); ++i) {
    const bool is_end = i == name.size() || !is_letter(name[i]);
    const bool is_hump = !is_end && i > begin && is_capital(name[i]) && !is_capital(name[i - 1]);
    if (!is_end && !is_hump) continue;
    if (is_time_word(name.substr(begin, i - begin))) return true;
    begin = is_hump ? i : i + 1;
  }
  return false;
}

void EpochVotes::add(double value) {
  if (count_ == 0) {
    least_ = most_ = value;
  } else {
    never_falls_ = never_falls_ && value >= last_;
    rises_ = rises_ || value > last_;
    has_other_step_ = has_other_step_ || value - last_ != 1;
    least_ = std::min(least_, value);
    most_ = std::max(most_, value);
  }
  last_ = value;
  ++count_;
}

ColumnKind EpochVotes::kind(View name) const {
  if (count_ == 0 || (!are_in_order() && !speaks_of_time(name))) return ColumnKind::integer;
  const auto lies_within = [this](double scale) {
    return least_ >= kYear2000 * scale && most_ < kYear2100 * scale;
  };
  if (lies_within(1)) return ColumnKind::epoch_seconds;
  return lies_within(kMilliseconds) ? ColumnKind::epoch_milliseconds : ColumnKind::integer;
}

}  // namespace textio::columns
