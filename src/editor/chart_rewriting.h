// New values in the lines of a chart file that they stand in. Lines are told by their labels alone, so that
// no text, whatever words it holds, is taken for another line; every other byte stays as it is.
#pragma once

#include <string>
#include <string_view>

#include "core/records.h"
#include "core/result.h"

namespace hyetex {

/// A chart of more lines is not rewritten.
inline constexpr int MostLines = 10001;

/// The file with start, end, manual and selected depth, reliability and general comment of `edited`. A value
/// that has no line in it and differs from `before` gets one. `fileName` is the name that the text will have.
/// Fails on a file that would be too long to be read again, and where lines of other programs, which the
/// reader tells by their words, would say something else than what is written.
Result<std::string> RewriteChart(std::string_view bytes, std::string_view fileName, const ChartRecord& before,
                                 const ChartRecord& edited);

}  // namespace hyetex
