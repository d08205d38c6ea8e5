// Prints what the judge sees in files, for scripts/learn-weights: a line of JSON for each file and
// number of lines.
//
//   vltext-evidence LINES... < LIST     LIST: paths with their encodings, a tab between
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <string>

#include <nlohmann/json.hpp>

#include <vltextstream/assessment/verdict.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/input_text.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>

namespace {

using namespace textio;
using namespace textio::assessment;
using nlohmann::json;

const char* const kForms[] = {"delimited", "framed", "runs", "gaps", "fields", "one", "none"};

std::string utf8(std::u16string_view text) { return standalone::to_utf8(std::u16string(text)); }

json names_of(const NamesVerdict& names) {
  return {{"line", names.line},
          {"above", names.is_above_table},
          {"amounts", names.amounts},
          {"probability", names.probability}};
}

json hypothesis_of(const Verdict& verdict, const Hypothesis& each, bool with_names) {
  const Cut& cut = verdict.cut_of(each);
  const Reading& reading = cut.reading;
  json out = {{"form", kForms[static_cast<int>(reading.form)]},
              {"delimiter", utf8(reading.delimiter)},
              {"quote", reading.quote ? std::string(1, static_cast<char>(reading.quote)) : ""},
              {"escape", reading.escape != 0},
              {"blanks", reading.least_blanks},
              {"most_cells", reading.most_cells},
              {"columns", each.table.columns},
              {"first", cut.records[each.table.data[0]].line},
              {"records", each.table.data.size()},
              {"amounts", each.amounts},
              {"probability", each.probability}};
  if (with_names) {
    const CellKinds kinds(cut.records, each.table.data, each.table.columns, kRecordsLookedInto);
    out["names"] = names_of(find_names(verdict.lines, cut, each.table, kinds));
  }
  return out;
}

json answer(const std::string& path, const std::string& codec, std::size_t lines) {
  standalone::DetectSettings settings;
  if (!codec.empty()) settings.encoding = codec;
  standalone::InputText input(path, settings);
  const Field text = input.prefix(4'194'304).text;
  const Verdict verdict =
      judge({text.data, text.length}, lines, std::numeric_limits<double>::infinity());
  json out = {{"path", path},
              {"lines", lines},
              {"hypotheses", json::array()},
              {"best", verdict.best},
              {"confidence", verdict.confidence}};
  for (const Hypothesis& each : verdict.hypotheses)
    out["hypotheses"].push_back(hypothesis_of(verdict, each, true));
  return out;
}

}  // namespace

int main(int argc, char** argv) {
  for (std::string line; std::getline(std::cin, line);) {
    const std::size_t tab = line.find('\t');
    const std::string path = line.substr(0, tab);
    const std::string codec = tab == std::string::npos ? "" : line.substr(tab + 1);
    for (int i = 1; i < argc; ++i) {
      try {
        std::cout << answer(path, codec, static_cast<std::size_t>(std::atol(argv[i])))
                         .dump(-1, ' ', true, json::error_handler_t::replace)
                  << '\n';
      } catch (const std::exception& error) {
        std::cout << json{{"path", path},
                          {"lines", std::atol(argv[i])},
                          {"error", error.what()},
                          {"hypotheses", json::array()}}
                         .dump()
                  << '\n';
      }
    }
  }
}
