#include <vltextstream/strategy/line_walk.hpp>

#include <vltextstream/strategy/line_scan.hpp>

namespace textio {

LineWalk::LineWalk(const Strategy& strategy, const Field& text)
    : stable_(strategy, text), scan_(LineScan::of(strategy, text)) {}

LineWalk::~LineWalk() = default;

FieldExtent LineWalk::line_at(std::size_t start) { return scan_->line_at(start).extent; }

}  // namespace textio
