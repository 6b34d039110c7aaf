// Which of the lines that a grid has in steady steps are printed on a sheet, and which of them heavily: told
// by the ink that lies on each.
#pragma once

#include <initializer_list>
#include <vector>

namespace hyetex {

/// How much more ink lies on a printed line than beside it.
struct InkOnLines {
  int First = 0;
  std::vector<double> Ink;

  int Last() const { return First + static_cast<int>(Ink.size()) - 1; }
  double At(int line) const {
    return line < First || line > Last() ? 0 : Ink[static_cast<std::size_t>(line - First)];
  }
};

struct LineRun {
  int First = 0, Last = -1;
};

/// The longest row of lines that are there, each with a `share` of what a line usually has over its
/// surroundings. Up to `missing` may be missing in its middle, not at its ends: a frame around the band is no
/// line of it.
LineRun LongestRun(const InkOnLines& lines, double share = 0.35, int missing = 2);
/// From the first line that is surely there to the last: where only the heavy ones are left.
LineRun AllLines(const InkOnLines& lines);
/// The heavy lines that stand by themselves beyond the ends of a worn grid, up to `apart` lines away, and
/// `most` lines in all.
void TakeHeavyLinesAround(const InkOnLines& lines, int apart, int most, LineRun& run);

struct HeavyLines {
  int Every = 1, Class = 0;
  double StandOut = 0;  ///< over the others, times their ink
};
/// Which lines, folded by how many stand from one heavy one to the next, are the heavy ones.
HeavyLines FoldLines(const InkOnLines& lines, const LineRun& run, std::initializer_list<int> everies);

}  // namespace hyetex
