// A picture of every window, for the eye and for the manual.
#pragma once

#include <string>

#include "app/program.h"
#include "core/result.h"

namespace hyetex {

/// Writes a PNG of every window into `folder`, on a light and on a dark palette. Works on a copy of the
/// program folder. With a task the session's windows are among them; a journal in the folder gives them a
/// trace.
Result<void> TakePictures(const StartWords& words, const std::string& folder);

}  // namespace hyetex
