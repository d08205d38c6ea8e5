// What an answer says about the text after its sample: how many lines there are, and what the end holds.
#pragma once

#include <string_view>

#include <vltextstream/assessment/footers.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/input_text.hpp>
#include <vltextstream/layout/layout.hpp>

namespace textio::standalone {

// The most that is read of the end of a file, and the most characters that are looked at.
inline constexpr std::size_t kTailBytes = 65'536;

// Fills in Layout::lines_estimated and Layout::tail, which is the last step of a detection. `text` is the whole
// text; that of an input is read after confirm_encoding.
void look_beyond_sample(std::u16string_view text, const assessment::TableProfile& profile,
                        const DetectSettings& settings, Layout& layout);
void look_beyond_sample(InputText& input, const assessment::TableProfile& profile,
                        const DetectSettings& settings, Layout& layout);

}  // namespace textio::standalone
