// The text of a chart file: a header of keyword lines, the traced points in tablet millimetres, comments and
// alpha values; 8-bit text, lines ended by carriage return and line feed.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "core/session.h"

namespace hyetex {

/// No reader takes a longer chart, with or without the line of its name that a database puts before it; 5000
/// points with a long comment each are shorter.
inline constexpr std::size_t MostChartBytes = 4U << 20;

/// Who and what a chart file's head names.
struct ChartOrigin {
  std::string Core;    ///< core party of the station
  std::string Agency;  ///< of the station
  std::string Station;
  std::string InstrumentCode;
  std::string User;  ///< who digitized it
};

struct ChartText {
  std::string Text;
  std::vector<std::string> Notes;  ///< what readers of the file will not see, one line each
};

/// "Unknown", "Acceptable", "Marginal", "Unreliable"; an unknown number reads as "Unknown".
std::string_view ReliabilityText(int reliability);

/// The file of a digitized chart. Line ends in its texts become blanks. Fails, in one line, on a text that
/// cannot stand on its line for another reason, and on a file that would be longer than MostChartBytes.
Result<ChartText> MakeChartText(const Session& session, const ChartOrigin& origin,
                                std::string_view digitizerComment);
/// The file of a chart too defective to trace, from its staged details alone; fails alike.
Result<ChartText> MakeEmptyChartText(const ChartRecord& task, int chartMethod, const ChartOrigin& origin);

/// "<instrument code>-YYYYMMDD-HHMM.dat".
std::string ChartFileName(std::string_view instrumentCode, Date start);

struct ParsedChartFileName {
  std::string InstrumentCode;
  Date Start = 0;
};
/// What a name of that form says, with or without a folder before it; nothing for any other name.
std::optional<ParsedChartFileName> ParseChartFileName(std::string_view name);

/// What the operator is asked before a chart file takes another's place.
std::string OverwriteQuestion(std::string_view name);

}  // namespace hyetex
