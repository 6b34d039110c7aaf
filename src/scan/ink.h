// What of a chart's ink can be the pen's: the darkness that the printed form does not explain. Where the form
// is as dark as the pen nothing can be told: such places are hidden, not blank.
#pragma once

#include <opencv2/core.hpp>

#include "scan/flat_chart.h"

namespace hyetex {

struct PenInk {
  cv::Mat Ink;          ///< floats, 0 to 1: 1 where there is as much ink as the pen usually leaves
  cv::Mat Hidden;       ///< floats, 0 to 1: how far the form hides the pen
  cv::Mat Raw;          ///< as Ink, pixel by pixel, before strokes were followed
  double Contrast = 0;  ///< of the pen against the paper, 0 to 1 of full black
  double Noise = 0;     ///< what is left where there is no pen, in parts of the pen's ink
};

PenInk FindPenInk(const FlatChart& flat);

}  // namespace hyetex
