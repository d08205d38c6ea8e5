// EpochVotes: integers that are probably seconds or milliseconds since 1970-01-01 00:00 UTC.
//
// Ten digits may as well be the number of an order. So all values lie between the years 2000 and
// 2100, and besides, the name of the column speaks of time, or the values never fall and do not
// merely count on by one. The answer stays a hint.
//
// Errors   nothing throws.
// Cost     constant for each value.
#pragma once

#include <cstddef>
#include <string_view>

#include <vltextstream/columns/column_kind.hpp>

namespace textio::columns {

// Whether a word of a column's name is "time", "timestamp", "epoch", "ts", "created", "zeit" or
// another that speaks of time, in six languages: "event_time", "createdAt".
bool speaks_of_time(std::u16string_view name);

class EpochVotes {
 public:
  void add(double value);

  // epoch_seconds, epoch_milliseconds, or integer if neither.
  ColumnKind kind(std::u16string_view name) const;

 private:
  bool are_in_order() const { return count_ >= 3 && never_falls_ && has_other_step_ && rises_; }

  std::size_t count_ = 0;
  double last_ = 0;
  double least_ = 0;
  double most_ = 0;
  bool never_falls_ = true;
  bool rises_ = false;
  bool has_other_step_ = false;  // than one
};

}  // namespace textio::columns
