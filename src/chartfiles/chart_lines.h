// What kind of line a line of a chart file is. The kinds are told by words anywhere in the line, without
// regard to case, in a fixed order, and the first that holds decides; so a word in a comment counts as well.
#pragma once

#include <string_view>

namespace hyetex {

enum class ChartLine {
  Start,
  End,
  Instrument,
  Alpha,
  NoAlphaSelected,
  AlphaSelected,
  GeneralComment,
  Method,
  DigitizedDepth,
  DigitizedTime,
  ManualDepth,
  EyedDepth,
  SelectedDepth,
  PointCount,
  Reliability,
  Point,  ///< at least one comma and no colon
  Other,
};

struct ChartLineKind {
  ChartLine Kind = ChartLine::Other;
  std::string_view Word;  ///< the word that told it; empty for Point and Other
};

ChartLineKind KindOfChartLine(std::string_view line);

/// Whether a line begins as a point does: a number and a comma.
bool BeginsAsPoint(std::string_view line);

/// For a line that begins as a point: what in it keeps it from being read as one (a word or ":"); empty if
/// nothing does.
std::string_view WhyNoPointLine(std::string_view line);

/// A line's value: its text from the second character after its first ":" on.
std::string_view ValueOfChartLine(std::string_view line);

}  // namespace hyetex
