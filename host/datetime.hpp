// Date recognition, a service of the host.
#pragma once

#include <vltextstream/host/export.hpp>

namespace textio {
class Field;
}

namespace textio::datetime {

// True when the whole of `field` reads as a calendar date, with or without a time of day. White
// space at its ends and quotes around it have been removed by the caller.
//
// Errors   what it throws counts as "not a date"; only the unwinding of a cancelled thread passes.
// Cost     called for fields that hold a digit and are neither a number nor a clock value; how
//          often is not promised.
// Threads  called on the thread that runs the detection, by several detections at once.
VLTEXTSTREAM_IMPORT bool is_datetime(const Field& field);

}  // namespace textio::datetime
