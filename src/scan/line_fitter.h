// Fits the numbers of printed lines over a picture by their local phase: where along a period the lines lie,
// in every part of the picture, and all parts together.
#pragma once

#include <opencv2/core.hpp>

#include "scan/lattice.h"

namespace hyetex {

class LineFitter {
 public:
  /// `ink` is one channel of floats, 0 paper to 1 ink.
  explicit LineFitter(const cv::Mat& ink) : ink_(ink) {}

  struct Fit {
    LineField Field;
    double ResidualPx = 0;
    double Clear = 0;  ///< 0 to 1: the share of the picture in which the phases follow the fit
  };
  /// Lines about `period` pixels apart, counted along x or y. `lead` (empty, or as large as the ink) is what
  /// a place's number has more than the field says: lines that are arcs become straight by it.
  Fit FitLines(double period, bool across, const cv::Mat& lead) const;

 private:
  struct Phases;
  static Phases FindPhases(const cv::Mat& ink, double period, bool across, const cv::Mat& lead);
  static void Unwrap(Phases& phases);
  static double ErrorAt(const Phases& phases, const LineField& field, std::size_t n);
  void FollowWaves(const Phases& phases, double usual, LineField& field, Fit& fit) const;

  const cv::Mat& ink_;
};

}  // namespace hyetex
