// Date recognition, a service of the host.
#pragma once

#include <vltextstream/host/export.hpp>

namespace textio {
class Field;
}

namespace textio::datetime {

// True when the whole of `field` reads as a calendar date, with or without a time of day. It is a
// field without the white space and quotes at its ends, or the part of one before or behind a
// blank: that part may be empty, or hold no digit.
//
// Errors   what it throws counts as "not a date"; only the unwinding of a cancelled thread passes.
// Cost     how often it is called, and for which fields, is not promised.
// Threads  called on the thread that runs the detection, by several detections at once.
VLTEXTSTREAM_IMPORT bool is_datetime(const Field& field);

}  // namespace textio::datetime
