#include <vltextstream/detection/selection_trace.hpp>

namespace textio::detection {

std::string_view to_string(CandidateFate fate) {
  switch (fate) {
    case CandidateFate::kept:
      return "kept";
    case CandidateFate::irregular:
      return "irregular";
    case CandidateFate::single_column:
      return "single-column";
    case CandidateFate::made_fixed_width:
      return "made-fixed-width";
  }
  return "";
}

std::string_view to_string(SelectionEnd end) {
  switch (end) {
    case SelectionEnd::single_survivor:
      return "single-survivor";
    case SelectionEnd::only_candidate:
      return "only-candidate";
    case SelectionEnd::no_candidate:
      return "no-candidate";
    case SelectionEnd::empty_sample:
      return "empty-sample";
    case SelectionEnd::whole_line_dates:
      return "whole-line-dates";
    case SelectionEnd::unresolved_tie:
      return "unresolved-tie";
    case SelectionEnd::given:
      return "given";
  }
  return "";
}

}  // namespace textio::detection
