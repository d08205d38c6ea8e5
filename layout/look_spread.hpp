// The look at several places of a text that goes on after its sample.
#pragma once

#include <string_view>

#include <vltextstream/assessment/footers.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/input_text.hpp>
#include <vltextstream/layout/layout.hpp>

namespace textio::standalone {

// How many places are looked at besides the end, and how many characters at each. At most four bytes are read for a
// character.
inline constexpr std::size_t kSpreadPlaces = 8;
inline constexpr std::size_t kSpreadUnits = 16'384;

// What the layout itself says of how records are cut, for one that was given or chosen by the cascade.
assessment::TableProfile profile_of(const Layout& layout);

// Fills in Layout::spread after look_beyond_sample, with the same arguments.
void look_spread(std::u16string_view text, const assessment::TableProfile& profile,
                 const DetectSettings& settings, Layout& layout);
void look_spread(InputText& input, const assessment::TableProfile& profile,
                 const DetectSettings& settings, Layout& layout);

}  // namespace textio::standalone
