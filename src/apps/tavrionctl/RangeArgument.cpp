#include "apps/tavrionctl/RangeArgument.h"

#include <fmt/format.h>

namespace tavrion::ctl {

Result<DateRange> dateRange(const std::string& text) {
    if (auto range = DateRange::ofText(text)) {
        return *std::move(range);
    }
    return NSError{fmt::format("'{}' is not a range; write {}", text, rangeHelp), {}};
}

}  // namespace tavrion::ctl
