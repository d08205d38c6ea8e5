// Date recognition, a service of the host.
#pragma once

#include <vltextstream/host/export.hpp>

namespace textio {
class Field;
}

namespace textio::datetime {

// Whether all of `field` is a calendar date, with or without a time of day. The field has no white
// space or quotes at its ends, or is the part of such a field before or after a blank; that part
// may be empty or contain no digit.
//
// Errors   an exception counts as "not a date"; only the unwinding of a cancelled thread passes
//          through.
// Cost     how often it is called, and for which fields, is not specified.
// Threads  called on the thread of the detection; several detections may call it at the same time.
VLTEXTSTREAM_IMPORT bool is_datetime(const Field& field);

}  // namespace textio::datetime
