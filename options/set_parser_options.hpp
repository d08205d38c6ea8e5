// Fills an options record from the name-value pairs of a host.
//
//   const hxArray* args[] = {name, value};
//   textio::options::set_parser_options(args, 2, record);
//
// Names are matched without regard to case and not abbreviated. Pairs are applied one after the
// other: a later pair overrides an earlier one, and an error leaves the effects of the pairs before
// the failing one, which itself changes nothing.
//
// Errors   those of options/option_errors.hpp, handed to the host's error channel first and thrown
//          when that returns; what the host's array services throw.
// Threads  calls on different records may run at the same time.
#pragma once

#include <vltextstream/host/array.hpp>
#include <vltextstream/host/export.hpp>
#include <vltextstream/options/parser_options.hpp>

namespace textio::options {

// `args` holds `count` arrays, names and values in turn; an even count of 0 or less does nothing.
VLTEXTSTREAM_EXPORT void set_parser_options(hxArray const** args, int count,
                                            parser::options& options);

}  // namespace textio::options
