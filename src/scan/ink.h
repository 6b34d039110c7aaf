// What of a chart's ink can be the pen's: the darkness that the printed form does not explain. Where the form
// is as dark as the pen nothing can be told: such places are hidden, not blank.
#pragma once

#include <opencv2/core.hpp>

#include "scan/flat_chart.h"

namespace hyetex {

struct PenInk {
  cv::Mat Raw;          ///< floats, 0 to 1: 1 where there is as much ink as the pen usually leaves
  cv::Mat All;          ///< Raw with the lines of falls
  cv::Mat Hidden;       ///< floats, 0 to 1: how far the form hides the pen
  cv::Mat Ink;          ///< Raw along the stroke on which a place lies
  cv::Mat Steep;        ///< along the best steep one
  cv::Mat SteepHidden;  ///< as Hidden, where too little is seen upright around the place as well
  double Contrast = 0;  ///< of the pen against the paper, 0 to 1 of full black
  double Noise = 0;     ///< what is left where there is no pen, in parts of the pen's ink

  /// Of what changes when falls are taken out.
  PenInk Clone() const;
};

/// `print`: what is known to be printed besides the lines, as the light that it leaves of the paper's.
PenInk FindPenInk(const FlatChart& flat, const cv::Mat& print = {});
/// The light that ink leaves of the paper's around it: as colours, 255 where the paper is bare.
cv::Mat LightOfPaper(const FlatChart& flat);

/// Makes Ink, Steep and SteepHidden of Raw and Hidden, from column `first` to before `past`.
void FollowStrokes(PenInk& ink, double pixelsPerMm, int first, int past);

}  // namespace hyetex
