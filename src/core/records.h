// The plain records that all of Hyetex shares, and the sizes of its tables.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace hyetex {

/// Days since 30/12/1899; the whole part is the date, the fraction the time of day. No time zone.
using Date = double;

/// A depth of -1 mm means that no depth is known.
inline constexpr float NoDepth = -1;
/// The value of `ChartRecord::SelectedAlpha` that means no alpha.
inline constexpr float NoAlpha = -1000;
/// A stored X of this value or more marks the first point of a new segment; the true X is this much less.
inline constexpr double SegmentMark = 1'000'000;

/// Highest indices of the tables (not counts).
inline constexpr int MaxPoint = 5000;
inline constexpr int MaxPaper = 10;
inline constexpr int MaxAlpha = 15;
inline constexpr int MaxTask = 2000;
inline constexpr int MaxChartType = 100;
inline constexpr int MaxCore = 5;
inline constexpr int MaxAgency = 200;
inline constexpr int MaxStation = 200;
inline constexpr int MaxUser = 200;
inline constexpr int MaxComment = 1000;

/// One traced point, in tablet report units.
struct DigitizedPoint {
  double X = 0;  ///< with `SegmentMark` added on the first point of a new segment
  double Y = 0;
  std::string Comment;    ///< entries joined by "::", see comments.h
  bool Selected = false;  ///< a comment from the comment window applies to this point

  bool StartsSegment() const { return X >= SegmentMark; }
  double TrueX() const { return StartsSegment() ? X - SegmentMark : X; }
};

/// One strip of paper laid on the tablet: its bottom line, in report units.
struct ChartPaper {
  double BottomLeftX = 0, BottomLeftY = 0;
  double BottomRightX = 0, BottomRightY = 0;
  float Angle = 0;              ///< of the bottom line, radians
  std::int16_t FirstPoint = 0;  ///< the first point traced on this paper

  bool operator==(const ChartPaper&) const = default;
};

enum class ChartMethod : std::int16_t {
  Linear = 0,         ///< a straight pen; a fall is the pen's return
  NonLinear = 1,      ///< the pen swings on an arc
  TippingBucket = 2,  ///< steps; the trace alone gives no depth
};

/// What a kind of chart paper means.
struct ChartTypeRecord {
  std::string Name;
  float ChartHeightMm = 100;     ///< height of the chart band
  float DepthScale = 0.1F;       ///< mm of water for each mm of paper
  float TimeScale = 2;           ///< hours for each mm of paper
  std::int16_t ChartMethod = 0;  ///< 0 to 2, see enum ChartMethod
  float MiddleToBottomMm = 0;    ///< arc charts: horizontal distance of the arc's middle from its bottom
};

struct AgencyRecord {
  std::string Name;
  std::int16_t Core = 0;  ///< index into the core parties
};

struct StationRecord {
  std::string Name;
  std::string InstrumentCode;  ///< "None" until it is given
  std::int16_t Core = 0;
  std::int16_t Agency = 0;
};

struct UserRecord {
  std::string Name;
  std::string Password;    ///< plain in memory, shifted in the file
  std::int16_t Level = 0;  ///< 1 administrator, 5 database operator, 10 digitizer operator
};

struct CommentRecord {
  std::string Description;
  float Code = 0;
};

/// One chart: a staged task, what a chart file says, or the editor's working copy.
struct ChartRecord {
  std::string FileName;
  std::int16_t InstrumentIndex = 0;  ///< into the stations; -1 when no station has the code
  std::string InstrumentCode;
  std::int16_t ChartMethod = 0;
  std::int16_t PaperIndex = 0;  ///< into the chart types; tasks only
  Date StartTime = 0;
  Date EndTime = 0;
  float DigitizedTime = 0;  ///< hours
  float EyedDepth = 0;      ///< mm, like all depths
  float DigitizedDepth = 0;
  float ManualDepth = 0;
  float SelectedDepth = 0;
  std::string GeneralComment;
  std::string DigitizerComment;
  std::int16_t SeriesCount = 0;  ///< highest index in use in the series
  std::int16_t AlphaCount = 0;   ///< alpha values in use, from index 1
  std::array<float, MaxAlpha + 1> AlphaValues{};
  float SelectedAlpha = 0;       ///< `NoAlpha` means none
  std::int16_t Reliability = 0;  ///< 0 unknown, 1 acceptable, 2 marginal, 3 unreliable
  std::int16_t RawCount = 0;     ///< highest index in use in the raw points
};

/// The image from which a chart was traced, as its file remembers it.
struct ScanReference {
  std::string Path;
  int Page = 0;        ///< of the file, from 0
  std::string Sha256;  ///< of the file's bytes, 64 lower-case hexadecimal digits

  bool operator==(const ScanReference&) const = default;
};

/// One point of a chart file: millimetres of tablet along and across the chart.
struct RawPoint {
  double X = 0;
  double Y = 0;
  std::string Comment;
};

/// One moment of a chart with the depth accumulated since its start, mm.
struct SeriesPoint {
  Date Time = 0;
  float Depth = 0;
  std::string Comment;
};

}  // namespace hyetex
