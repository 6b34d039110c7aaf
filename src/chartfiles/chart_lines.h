// What kind of line a line of a chart file is, and the labels that say so. A line that begins with a label of
// the writer's is what the label says, and one that begins "number,number," is a point, whatever words their
// texts hold. Other lines, as other versions have written them, are told by words anywhere in them, without
// regard to case, in a fixed order; the first that holds decides.
#pragma once

#include <string_view>

namespace hyetex {

enum class ChartLine {
  Core,
  Agency,
  Station,
  Instrument,
  User,
  Method,
  Start,
  End,
  DigitizedTime,
  EyedDepth,
  DigitizedDepth,
  SelectedDepth,
  ManualDepth,
  PointCount,
  Reliability,
  PointsHeading,
  GeneralComment,
  DigitizerComment,
  Alpha,
  AlphaSelected,
  Scan,  ///< our own; see chart_scan.h
  NoAlphaSelected,
  Point,
  Other,
};

/// What a line of the kind begins with, its blank included ("Station Name: "); an alpha line has its number
/// behind the label, then " : ". Empty for points and other lines.
std::string_view LabelOf(ChartLine kind);

struct ChartLineKind {
  ChartLine Kind = ChartLine::Other;
  std::string_view Word;  ///< the word that told it; empty for a line told by its beginning, Point and Other
};

ChartLineKind KindOfChartLine(std::string_view line);

/// Whether a line begins with a number and a comma; such a line never says anything of the chart's head.
bool BeginsAsPoint(std::string_view line);

/// A line's value: its text from the second character after its first ":" on.
std::string_view ValueOfChartLine(std::string_view line);

}  // namespace hyetex
