// The one line over a chart laid flat that its ink fits best and that a pen can draw. A cheapest path over
// places (column, row): forward in time, or upright within a column, with a charge for every step, for paper
// without ink, and for each time that the pen leaves its line. All charges stand in PenCosts;
// docs/autotrace.md explains them.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "scan/flat_chart.h"
#include "scan/ink.h"

namespace hyetex {

/// What a pen's steps cost; heights and lengths count in eighths of a millimetre of paper.
struct PenCosts {
  float Forward = 0.05F;    ///< a column on, level
  float Slant = 0.08F;      ///< a column on and a row up (or down, where a pen may fall)
  float Climb = 0.05F;      ///< a row up within a column
  float Sink = 1.6F;        ///< a row down within a column, or slanting
  float Blank = 0.35F;      ///< a column where there is no ink
  float BlankClimb = 0.5F;  ///< a row upright where there is no ink
  float Hidden = 0.1F;      ///< a place that the form hides
  float AtRest = 0.2F;      ///< what that costs less at the foot, where a pen lies without rain
  float ClimbInk = 1.2F;    ///< what ink counts upright, for 1 level
  float Emptying = 95;      ///< a fall from the top to the foot
  float FallSeen = 350;     ///< what that costs less where the fall itself has left its line
  float TopOff = 4;         ///< for each mm that the fall begins off the usual top
  float FootOff = 2;        ///< for each mm that it ends off the foot
  float SetAnew = 200;      ///< a hand sets the pen down anywhere

  static PenCosts For(ChartMethod method);
};

/// Where the pen of a chart can be, mm above the bottom edge.
struct PenReach {
  double FootMm = 0, TopMm = 80;
  std::optional<double> UsualTopMm;  ///< at which the instrument empties; nothing where that is not known
  double LeastTopMm = 60;            ///< from here on it may
  double FootWithinMm = 5;           ///< of the foot the pen comes down
  bool Empties = true;
};

/// An upright line that a falling pen has left.
struct FallLine {
  int Column = 0;   ///< half way up
  double Lean = 0;  ///< columns to the right from the foot to the top
  double Seen = 0;  ///< 0 to 1: how much of it has ink
  /// What the best path costs more that reads this line, or those beside it, otherwise, and rises otherwise.
  double Sure = 0;
};
std::vector<FallLine> FindFallLines(const FlatChart& flat, const PenInk& ink, const PenReach& reach);
/// The line that a fall has left is no ink to climb on, and hides what lies under it.
void TakeOutFalls(PenInk& ink, const FlatChart& flat, std::span<const FallLine> falls, const PenReach& reach);

struct PathColumn {
  enum class Come { Along, Emptied, SetAnew };
  Come How = Come::Along;
  int EnterRow = 0, LeaveRow = 0;  ///< the pen goes upright from the one to the other
  float Ink = 0;                   ///< seen on the way, 0 to 1
  float Hidden = 0;
  float Margin = 0;  ///< what the best path that runs elsewhere here costs more
};

/// What the path must keep to: the places at both ends of a stretch, when only that is traced again.
struct PathEnds {
  std::optional<int> FirstRow, LastRow;
};

struct PenPath {
  int FirstColumn = 0;
  std::vector<PathColumn> Columns;
  double Cost = 0;
};

/// The path leaves its line here by an emptying, or climbs this line as a limb.
bool Empties(const PenPath& path, const FallLine& fall, const FlatChart& flat);
bool Climbs(const PenPath& path, const FallLine& fall, const FlatChart& flat, const PenReach& reach);

/// Columns from `first` to before `past`.
PenPath FindPenPath(const FlatChart& flat, const PenInk& ink, std::span<const FallLine> falls,
                    const PenReach& reach, const PenCosts& costs, int first, int past,
                    const PathEnds& ends = {});
/// The same without the margins, which take as long again.
PenPath SketchPenPath(const FlatChart& flat, const PenInk& ink, std::span<const FallLine> falls,
                      const PenReach& reach, const PenCosts& costs, int first, int past,
                      const PathEnds& ends = {});
/// By how much a path rises in all, rows.
int RiseOf(const PenPath& path);

}  // namespace hyetex
