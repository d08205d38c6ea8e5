// The layout that a verdict describes.
#pragma once

#include <vltextstream/assessment/verdict.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/layout.hpp>

namespace textio::standalone {

// Replaces mode, delimiters, widths, header lines, names, units, classes, lines and what was sampled by
// those of the verdict, which has a hypothesis, and fills in the members of the assessment.
// Layout::cascade has the answer of the cascade, if any, and is compared.
void describe_verdict(const assessment::Verdict& verdict, const DetectSettings& settings,
                      Layout& layout);

}  // namespace textio::standalone
