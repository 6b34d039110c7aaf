// What pens leave on a chart: the recorder's line, and the observer's hand.
#pragma once

#include "scans/brush.h"
#include "scans/form.h"

namespace hyetex {

/// The recorder's line. Where its ink is missing the truth stays what it is.
void DrawPen(const PenLine& line, const ScanStyle& style, std::uint64_t seed, InkLayer& ink);

/// Dates and names in the places for them, strokes across the line, and notes.
void Write(const ChartForm& form, const PenLine& line, const ScanStyle& style, std::uint64_t seed,
           InkLayer& ink);

}  // namespace hyetex
