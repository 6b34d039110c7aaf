// Scans of staged charts, found in a folder by their names. A name holds the instrument's code and the
// chart's date, as "NM-Hill Farm-01_19980305.tif", and may go on with its time; it may have the form of a
// chart file, "NM-Hill Farm-01-19980305-0700.png". "-", "_" and blanks count as the same, and case as none.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/dates.h"
#include "core/result.h"

namespace hyetex {

/// Whether a name ends as that of an image or a PDF does. What a file is, its bytes decide.
bool IsScanName(std::string_view name);

/// A chart whose scan is wanted.
struct WantedScan {
  std::string InstrumentCode;
  Date Start = 0;
};
/// For each chart the path of its scan, or in words why there is none: no name fits, or several do equally
/// well, or one fits several charts. The time in a name counts more than its absence, a longer code more than
/// one that ends it, and a name with nothing else in it more than one that goes on; beyond that nothing is
/// guessed. A name with another time is another chart's. Fails on a folder that cannot be read.
Result<std::vector<Result<std::string>>> FindScans(const std::string& folder,
                                                   std::span<const WantedScan> charts);

}  // namespace hyetex
