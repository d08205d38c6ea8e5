// Fills an options record from the name-value pairs of a host.
//
//   const hxArray* args[] = {name, value};
//   textio::options::set_parser_options(args, 2, record);
//
// Names are not case-sensitive and cannot be abbreviated. Pairs are applied in order: a later pair
// overrides an earlier one. After an error the pairs before the failing one remain applied, and the
// failing pair has changed nothing.
//
// Errors   those of options/option_errors.hpp, reported to the host's error channel first and
//          thrown if it returns; exceptions of the host's array services pass through.
// Threads  calls on different records may run at the same time.
#pragma once

#include <vltextstream/host/array.hpp>
#include <vltextstream/host/export.hpp>
#include <vltextstream/options/parser_options.hpp>

namespace textio::options {

// `args` has `count` arrays: alternating names and values. An even count of 0 or less does nothing.
VLTEXTSTREAM_EXPORT void set_parser_options(hxArray const** args, int count,
                                            parser::options& options);

}  // namespace textio::options
