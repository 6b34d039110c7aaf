// A picture of every window, for the eye and for the manual.
#pragma once

#include <string>

#include "core/result.h"

namespace hyetex {

/// Writes a PNG of every window into `pictures`, on a light and on a dark palette. Works on a copy of the
/// program folder. The session is the first staged chart's; a journal in the folder gives it a trace. Needs a
/// QApplication.
Result<void> TakePictures(const std::string& programFolder, const std::string& pictures);

}  // namespace hyetex
