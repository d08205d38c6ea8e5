// The cells of a column turned into typed values. Divide the time of a call by the cells. The builder is internal, so
// this program is linked from its objects.
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <vltextstream/reading/column_builder.hpp>
#include "bench/measure.hpp"

namespace textio::bench {
namespace {

using reading::CellText;
using reading::ColumnPlan;
using reading::ColumnType;
using Random = std::mt19937_64;

constexpr std::size_t kCells = 65'536;

// One after the other in a text, with a comma between them, as in a file.
struct Cells {
  std::u16string text;
  std::vector<CellText> cells;
};

std::shared_ptr<Cells> cells_of(const std::function<std::string(Random&)>& next) {
  Random random(20240131);
  const auto made = std::make_shared<Cells>();
  std::vector<std::size_t> ends;
  for (std::size_t i = 0; i < kCells; ++i) {
    const std::string cell = next(random);
    made->text.append(cell.begin(), cell.end());
    ends.push_back(made->text.size());
    made->text += u',';
  }
  std::size_t begin = 0;
  for (const std::size_t end : ends) {
    made->cells.push_back(
        {made->text.data() + begin, static_cast<std::uint32_t>(end - begin), false, false});
    begin = end + 1;
  }
  return made;
}

std::int64_t number(Random& random, std::int64_t least, std::int64_t most) {
  return std::uniform_int_distribution<std::int64_t>(least, most)(random);
}

template <typename... Values>
std::string printed(const char* format, Values... values) {
  std::string text(64, '\0');
  const int size = std::snprintf(text.data(), text.size(), format, values...);
  text.resize(static_cast<std::size_t>(size));
  return text;
}

void add_column(const std::string& name, const ColumnPlan& plan,
                std::function<std::string(Random&)> next) {
  add_step("cells/" + name, [plan, next = std::move(next)] {
    const auto made = cells_of(next);
    const auto builder = std::make_shared<reading::ColumnBuilder>(plan);
    return Step{[made, builder] {
                  std::vector<std::uint32_t> misfits;
                  builder->append(made->cells, misfits);
                  keep(builder->take());
                },
                bytes_of(made->text),
                {{"cells", static_cast<double>(kCells)}}};
  });
}

ColumnPlan plan_for(ColumnType type, columns::ColumnKind kind = columns::ColumnKind::text) {
  ColumnPlan plan;
  plan.type = type;
  plan.kind = kind;
  return plan;
}

ColumnPlan plan_for_dates(ColumnType type, const char* strptime,
                          columns::DateOrder order = columns::DateOrder::year_first) {
  ColumnPlan plan = plan_for(type);
  plan.strptime = strptime;
  plan.order = order;
  return plan;
}

int day(Random& random) { return static_cast<int>(number(random, 1, 28)); }
int month(Random& random) { return static_cast<int>(number(random, 1, 12)); }
int year(Random& random) { return static_cast<int>(number(random, 1970, 2030)); }
int hour(Random& random) { return static_cast<int>(number(random, 0, 23)); }
int minute(Random& random) { return static_cast<int>(number(random, 0, 59)); }

void add_numbers() {
  add_column("integers/short", plan_for(ColumnType::integer),
             [](Random& random) { return std::to_string(number(random, -999, 9999)); });
  add_column("integers/long", plan_for(ColumnType::integer),
             [](Random& random) { return std::to_string(number(random, 0, 999'999'999'999)); });
  add_column(
      "integers/missing",
      [] {
        ColumnPlan plan = plan_for(ColumnType::integer);
        plan.missing = {u"NA", u"-999"};
        return plan;
      }(),
      [](Random& random) {
        return number(random, 0, 9) == 0 ? std::string("NA")
                                         : std::to_string(number(random, 0, 99'999));
      });
  add_column("reals/two_decimals", plan_for(ColumnType::real), [](Random& random) {
    return printed("%.2f", static_cast<double>(number(random, -99'999, 999'999)) / 100);
  });
  add_column("reals/fifteen_digits", plan_for(ColumnType::real), [](Random& random) {
    return printed("%.15g", static_cast<double>(number(random, 1, 1'000'000'000'000)) / 7e6);
  });
  add_column("reals/seventeen_digits", plan_for(ColumnType::real), [](Random& random) {
    return printed("%.17g", static_cast<double>(number(random, 1, 1'000'000'000'000)) / 7e6);
  });
  add_column("reals/exponents", plan_for(ColumnType::real), [](Random& random) {
    return printed("%.6e", static_cast<double>(number(random, 1, 1'000'000'000'000)) / 7e6);
  });
  add_column(
      "reals/grouped",
      [] {
        ColumnPlan plan = plan_for(ColumnType::real);
        plan.decimal = u',';
        plan.grouping = u'.';
        return plan;
      }(),
      [](Random& random) {
        return printed("%d.%03d,%02d", static_cast<int>(number(random, 1, 999)),
                       static_cast<int>(number(random, 0, 999)),
                       static_cast<int>(number(random, 0, 99)));
      });
  add_column(
      "reals/money",
      [] {
        ColumnPlan plan = plan_for(ColumnType::real, columns::ColumnKind::money);
        plan.grouping = u',';
        return plan;
      }(),
      [](Random& random) {
        return printed("$%.2f", static_cast<double>(number(random, 1, 99'999)) / 100);
      });
  add_column("decimals", plan_for(ColumnType::decimal), [](Random& random) {
    return printed("%.2f", static_cast<double>(number(random, -99'999, 999'999)) / 100);
  });
}

void add_dates() {
  using columns::DateOrder;
  const auto iso = [](Random& random) {
    return printed("%04d-%02d-%02d", year(random), month(random), day(random));
  };
  const auto day_first = [](Random& random) {
    return printed("%02d.%02d.%04d", day(random), month(random), year(random));
  };
  const auto month_first = [](Random& random) {
    return printed("%d/%d/%04d", month(random), day(random), year(random));
  };
  const auto moment = [iso](Random& random) {
    return iso(random) + printed(" %02d:%02d:%02d", hour(random), minute(random), minute(random));
  };
  const auto named = [](Random& random) {
    constexpr const char* kNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return printed("%02d-%s-%04d", day(random), kNames[month(random) - 1], year(random));
  };
  add_column("dates/iso", plan_for_dates(ColumnType::date, "%Y-%m-%d"), iso);
  add_column("dates/day_first", plan_for_dates(ColumnType::date, "%d.%m.%Y", DateOrder::day_first),
             day_first);
  add_column("dates/month_first_short",
             plan_for_dates(ColumnType::date, "%m/%d/%Y", DateOrder::month_first), month_first);
  add_column("dates/named", plan_for_dates(ColumnType::date, "%d-%b-%Y", DateOrder::none), named);
  add_column("dates/without_pattern", plan_for_dates(ColumnType::date, "", DateOrder::day_first),
             day_first);
  add_column("moments/seconds", plan_for_dates(ColumnType::date_time, "%Y-%m-%d %H:%M:%S"), moment);
  add_column("moments/utc", plan_for_dates(ColumnType::date_time, "%Y-%m-%d %H:%M:%S.%f%z"),
             [moment](Random& random) {
               return moment(random) + printed(".%03d", static_cast<int>(number(random, 0, 999))) +
                      "Z";
             });
  add_column("times/minutes", plan_for_dates(ColumnType::time, "%H:%M", DateOrder::none),
             [](Random& random) { return printed("%02d:%02d", hour(random), minute(random)); });
  add_column("durations/clock", plan_for(ColumnType::duration), [](Random& random) {
    return printed("%d:%02d:%02d", hour(random) * 3, minute(random), minute(random));
  });
}

void add_texts() {
  const auto words = [](std::int64_t least, std::int64_t most) {
    return [least, most](Random& random) {
      std::string text;
      for (std::int64_t left = number(random, least, most); left > 0; --left) {
        text += static_cast<char>(number(random, 'a', 'z'));
      }
      return text;
    };
  };
  const auto category = [](Random& random) {
    constexpr const char* kWords[] = {"Berlin", "Hamburg", "Munich", "Cologne",
                                      "Frankfurt am Main"};
    return std::string(kWords[number(random, 0, 4)]);
  };
  ColumnPlan booleans = plan_for(ColumnType::boolean);
  booleans.words = {u"true", u"false"};
  add_column("booleans", booleans, [](Random& random) {
    return std::string(number(random, 0, 1) == 0 ? "true" : "FALSE");
  });
  add_column("texts/short", plan_for(ColumnType::text), words(0, 15));
  add_column("texts/long", plan_for(ColumnType::text), words(40, 200));
  add_column("categories", plan_for(ColumnType::category), category);
}

void add_all() {
  add_numbers();
  add_dates();
  add_texts();
}

}  // namespace
}  // namespace textio::bench

int main(int argc, char** argv) { return textio::bench::run(argc, argv, textio::bench::add_all); }
