// A chart that was left on its drum for another turn has two lines: they are told apart, so that each is
// traced as if it were alone.
#pragma once

#include "core/result.h"
#include "scan/sheet_reading.h"

namespace hyetex {

/// Leaves only one of the two lines in the ink: 1 for the one that was written first. The pen goes on from
/// the page's right end to its left one, which tells them apart. Takes several times as long as a reading.
/// Fails, in words, where there are no two lines.
Result<SheetReading> ReadOneOfTwo(const SheetReading& unread, int which);

}  // namespace hyetex
