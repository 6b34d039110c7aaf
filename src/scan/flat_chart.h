// A scanned chart laid flat by its lattice: time runs along the columns and depth up the rows, everywhere
// with the same number of pixels for a millimetre of paper. Arcs of a pen stand upright here.
#pragma once

#include <opencv2/core.hpp>

#include "scan/lattice.h"

namespace hyetex {

struct FlatChart {
  cv::Mat Colours;  ///< blue, green, red
  double PixelsPerMm = 8;
  double LeftMm = 0;              ///< of paper, at the first column's left edge
  double TopMm = 0;               ///< above the bottom edge, at the first row's upper edge
  double AcrossMm = 0, UpMm = 0;  ///< between printed lines; of those up the height one stands at 0
  double LineAtMm = 0;            ///< along, where one of the others stands

  double AlongMm(double column) const { return LeftMm + (column + 0.5) / PixelsPerMm; }
  double HeightMm(double row) const { return TopMm - (row + 0.5) / PixelsPerMm; }
  double Column(double alongMm) const { return (alongMm - LeftMm) * PixelsPerMm - 0.5; }
  double Row(double heightMm) const { return (TopMm - heightMm) * PixelsPerMm - 0.5; }
};

/// What of the paper is laid flat, in mm.
struct PaperPart {
  double FromMm = 0, ToMm = 0, BottomMm = 0, TopMm = 0;
};

FlatChart LayFlat(const ScanImage& image, const Lattice& lattice, const PaperPart& part);

}  // namespace hyetex
