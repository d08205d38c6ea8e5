// The layout that a verdict describes.
#pragma once

#include <vltextstream/assessment/footers.hpp>
#include <vltextstream/assessment/verdict.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/layout.hpp>

namespace textio::standalone {

// Replaces mode, delimiters, widths, header lines, names, units, classes, lines and what was sampled by
// those of the verdict, which has a hypothesis, and fills in the members of the assessment.
// Layout::cascade has the answer of the cascade, if any, and is compared. If the text `ends` with the lines
// of the verdict, the last of them may be a footer. Returns what the table is like.
assessment::TableProfile describe_verdict(const assessment::Verdict& verdict,
                                          const DetectSettings& settings, bool ends,
                                          Layout& layout);

}  // namespace textio::standalone
