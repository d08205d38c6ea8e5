// A layout as bytes, and back: how layouts travel between processes, and what they are compared by. And the picture that
// travels with a layout.
//
//   const std::string state = state_of(layout);
//   layout_of(state);   // the same, member by member
//
// The bytes are those of one version of the library, and of no other.
//
// Errors  std::invalid_argument for bytes that state_of() of this version did not give for a value of this kind;
//         std::bad_alloc.
#pragma once

#include <string>
#include <string_view>

#include <vltextstream/layout/layout.hpp>

#include "tool/showing/picture.hpp"

namespace textio::python {

std::string state_of(const standalone::Layout& layout);
standalone::Layout layout_of(std::string_view state);

std::string state_of(const tool::Picture& picture);
tool::Picture picture_of_state(std::string_view state);

}  // namespace textio::python
