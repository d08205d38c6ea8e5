#include <vltextstream/assessment/sentences.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/assessment/weights.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/strategy/dialect.hpp>

namespace textio::assessment {
namespace {

double amount_of(const Hypothesis& hypothesis, Evidence evidence) {
  return hypothesis.amounts[static_cast<std::size_t>(evidence)];
}

// Never "0 %" of something that is there, never "100 %" of what is not in all.
std::string percent(double share) {
  const double exact = share * 100;
  if (exact > 0 && exact < 1) return "less than 1 %";
  return fmt::format("{} %", exact > 99 && exact < 100 ? 99 : static_cast<int>(std::lround(exact)));
}

std::string counted(std::size_t count, const char* thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

std::string name_of_separator(const Reading& reading) {
  return marker_name(standalone::to_utf8(reading.delimiter));
}

std::string shape_sentence(const TableFrame& table) {
  constexpr std::size_t kFew = 20;
  const std::size_t records = table.end - table.first - table.num_notes;
  if (records == table.num_fitting && records < kFew) {
    return fmt::format("only {}, each with {}", counted(records, "record"),
                       counted(table.columns, "field"));
  }
  return fmt::format("{} of {} have {}", table.num_fitting, counted(records, "record"),
                     counted(table.columns, "field"));
}

}  // namespace

double weight_of(Evidence evidence) { return kWeights[static_cast<std::size_t>(evidence)]; }

std::string sentence_of(Evidence evidence, const Verdict& verdict, const Hypothesis& hypothesis) {
  const double amount = amount_of(hypothesis, evidence);
  const Reading& reading = verdict.cut_of(hypothesis).reading;
  const auto records_have = [&](const char* what) {
    return fmt::format("{} of the records have {}", percent(amount), what);
  };
  switch (evidence) {
    case Evidence::ragged:
      return shape_sentence(hypothesis.table);
    case Evidence::outside:
      return fmt::format("{} of the records are before or after the table", percent(amount));
    case Evidence::worth:
      return fmt::format(
          "{} of what is in its cells is recognisable as numbers, dates, words or the like",
          percent(amount));
    case Evidence::unsplit:
      return records_have("a cell with a separator between unlike things");
    case Evidence::torn:
      return records_have("a cell with one of two brackets or quotes");
    case Evidence::cut_values:
      return records_have("a date, time or address cut in two");
    case Evidence::left_together:
      return records_have("several values in one cell");
    case Evidence::dangling:
      return records_have("a separator at the border of a cell");
    case Evidence::well_quoted:
      return records_have("a cell in quotes");
    case Evidence::lost_quotes:
      return records_have("quotes within a cell");
    case Evidence::wordy:
      return fmt::format("{} of the columns are plain words with blanks between", percent(amount));
    case Evidence::empty:
      return fmt::format("{} of the columns are empty", percent(amount));
    case Evidence::few:
      return fmt::format("there are only {}", counted(hypothesis.table.columns, "column"));
    case Evidence::one:
      return "there is a single column";
    case Evidence::runs:
      return "runs of blanks separate the columns";
    case Evidence::narrow:
      return "a single blank separates columns";
    case Evidence::rest:
      return "the last column takes the rest of its line";
    case Evidence::dense:
      return "the columns have fixed widths without blanks between";
    case Evidence::framed:
      return "bars and rules frame the cells";
    case Evidence::named:
      return fmt::format("the first record has {} names", hypothesis.table.columns);
    case Evidence::clauses:
      return records_have("a cell that continues a sentence");
    case Evidence::numbers_cut:
      return records_have("a comma that may belong to a number");
    case Evidence::gaps_inside:
      return records_have("a cell with two blanks in a row");
    case Evidence::by_names:
      return "the names show where columns begin";
    case Evidence::tab:
    case Evidence::comma:
    case Evidence::semicolon:
    case Evidence::colon:
    case Evidence::bar:
    case Evidence::blank:
    case Evidence::caret:
    case Evidence::control:
    case Evidence::several:
    case Evidence::rare:
      return fmt::format("{} {} used as a separator", name_of_separator(reading),
                         weight_of(evidence) > 0 ? "is often" : "is seldom");
    case Evidence::no_table:
      return "most files are tables";
    case Evidence::prose:
      return fmt::format("{} of the lines are running text", percent(amount));
    case Evidence::code:
      return fmt::format("{} of the lines look like source code", percent(amount));
    case Evidence::markup:
      return fmt::format("{} of the lines look like a document with tags or brackets",
                         percent(amount));
    case Evidence::nested:
      return "its brackets or tags nest from the first to the last";
    case Evidence::keyed:
      return fmt::format("{} of the lines are a key and its value", percent(amount));
    case Evidence::indented:
      return fmt::format("{} of the lines change the indentation", percent(amount));
    case Evidence::spaced:
      return fmt::format("{} of the lines follow a blank line", percent(amount));
    case Evidence::brief:
      return "the text is short";
  }
  return {};
}

std::string deciding_sentence(const Verdict& verdict, const Hypothesis& rival) {
  const Hypothesis& winner = verdict.winner();
  std::size_t deciding = 0;
  double most = -1;
  for (std::size_t k = 0; k < kNumEvidence; ++k) {
    const double difference = kWeights[k] * (winner.amounts[k] - rival.amounts[k]);
    if (difference > most) {
      most = difference;
      deciding = k;
    }
  }
  const auto evidence = static_cast<Evidence>(deciding);
  const bool is_about_rival = amount_of(rival, evidence) > 0 && kWeights[deciding] < 0;
  const bool is_text = verdict.cut_of(rival).reading.form == Form::none;
  if (evidence == Evidence::worth && is_text) {
    return fmt::format("{} of what is in the cells of the answer is recognisable",
                       percent(amount_of(winner, evidence)));
  }
  if (evidence == Evidence::worth) {
    return fmt::format("{} of what is in its cells is recognisable, of those of the answer {}",
                       percent(amount_of(rival, evidence)), percent(amount_of(winner, evidence)));
  }
  if (is_about_rival) return sentence_of(evidence, verdict, rival);
  return "of the answer, " + sentence_of(evidence, verdict, winner);
}

std::string names_reason(const NamesVerdict& names, bool has_names) {
  const auto amount = [&](NamesEvidence evidence) {
    return names.amounts[static_cast<std::size_t>(evidence)];
  };
  const std::size_t line = names.line + 1;
  if (has_names) {
    if (amount(NamesEvidence::text_over_values) > 0) return "texts above values";
    if (amount(NamesEvidence::no_data) > 0) return "words, and nothing below them";
    return fmt::format("line {} reads like names", line);
  }
  if (amount(NamesEvidence::value_among_names) > 0)
    return fmt::format("line {} holds values", line);
  if (amount(NamesEvidence::shaped_alike) > 0)
    return fmt::format("line {} has an identifier like those below it", line);
  if (amount(NamesEvidence::name_below) > 0)
    return fmt::format("line {} has a text that occurs below it", line);
  return fmt::format("line {} reads like the lines below it", line);
}

std::string kind_of_text(const EvidenceAmounts& amounts) {
  if (amounts[static_cast<std::size_t>(Evidence::nested)] > 0) return "a document";
  static constexpr std::array<std::pair<Evidence, const char*>, 4> kKinds = {
      {{Evidence::prose, "running text"},
       {Evidence::code, "source code"},
       {Evidence::markup, "a document"},
       {Evidence::keyed, "settings"}}};
  const auto* const most =
      std::max_element(kKinds.begin(), kKinds.end(), [&](const auto& a, const auto& b) {
        return amounts[static_cast<std::size_t>(a.first)] <
               amounts[static_cast<std::size_t>(b.first)];
      });
  return most->second;
}

}  // namespace textio::assessment
