// The few pictures that the guide for operators shows, small enough to be kept with the sources.
#pragma once

#include <string>

#include "core/result.h"

namespace hyetex {

/// Puts the guide's pictures into `guide`, with few colours and under the guide's names, from a folder that
/// TakePictures has filled.
Result<void> KeepGuidePictures(const std::string& pictures, const std::string& guide);

}  // namespace hyetex
