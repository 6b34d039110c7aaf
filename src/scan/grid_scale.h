// The scale of a scan by the grid that is printed on its paper: the lines of a kind of paper stand for hours
// and depths, so how far apart they lie in the image tells how many pixels a millimetre of paper has. For
// scans whose file names no resolution, or a false one.
#pragma once

#include <optional>
#include <vector>

#include "core/records.h"
#include "scan/scan_image.h"

namespace hyetex {

struct GridScale {
  double PixelsPerMm = 0;  ///< of the image, the mean of both directions
  double AcrossPixelsPerMm = 0, UpPixelsPerMm = 0;
  double AcrossMm = 0;  ///< from line to line along the hours, millimetres of paper
  double UpMm = 0;      ///< from line to line along the depths
  bool Upright = true;  ///< the hours run along the image's width; else up its height
};

/// The scale at which the lines of the grid lie as on this kind of paper, `hours` long. Fast: a part of a
/// second whatever the image's size. Nothing where no grid stands out, or where two scales would do as well.
std::optional<GridScale> ScaleByGrid(const ScanImage& image, const ChartTypeRecord& paper, double hours);

/// How far apart printers set lines on such paper, the closest first, in mm of paper: those of the hours, or
/// of the depths.
std::vector<double> PrintedSteps(const ChartTypeRecord& paper, bool hours);

}  // namespace hyetex
