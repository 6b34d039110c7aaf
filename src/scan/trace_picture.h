// A scan with the line that was traced on it, to be looked at: sure parts green, weak ones orange, those
// behind a doubt red.
#pragma once

#include <string>

#include "scan/scan_trace.h"

namespace hyetex {

/// The bytes of an image file of the kind that the name ends in. Fails on a name of no such kind.
Result<std::string> PictureOfTrace(const ScanImage& image, const ScanTrace& trace, const std::string& name);

}  // namespace hyetex
