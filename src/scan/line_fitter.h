// Fits the numbers of printed lines over a picture by their local phase: where along a period the lines lie
// and how they run, in every part of the picture, and all parts together.
#pragma once

#include <opencv2/core.hpp>

#include "scan/lattice.h"

namespace hyetex {

class LineFitter {
 public:
  /// `ink` is one channel of floats, 0 paper to 1 ink.
  LineFitter(const cv::Mat& ink, double pixelsPerMm) : ink_(ink), pixelsPerMm_(pixelsPerMm) {}

  struct Fit {
    LineField Field;
    double ResidualPx = 0;
    double Clear =
        0;  ///< 0 to 1: the share of the lined part of the picture in which the phases follow the fit
  };
  /// Lines about `period` pixels apart, counted along x or y. `lead` (empty, or as large as the ink) is what
  /// a place's number has more than the field says: lines that are arcs become straight by it. `where`
  /// (empty, or as large, bytes): not 0 where the lines are looked for.
  Fit FitLines(double period, bool across, const cv::Mat& lead, const cv::Mat& where) const;

  /// Lines of which `times` stand from one of the field's to the next, where those lie.
  Fit FitFiner(const LineField& field, int times, const cv::Mat& lead, const cv::Mat& where) const;

 private:
  struct Waves;  // the picture turned back by the steady count, coarsely
  struct Parts;  // what stands in each part of the picture

  static Waves TurnBack(const cv::Mat& ink, double period, bool across, const cv::Mat& lead,
                        const cv::Mat& where);
  static Parts PartsOf(const Waves& waves);
  static void LookAtParts(const Waves& waves, double period, bool across, Parts& parts);
  static void CountOn(Parts& parts);
  void LookAgain(const Waves& waves, const LineField& field, Parts& parts) const;
  static void FitBend(const Parts& parts, LineField& field);
  static double ErrorAt(const Parts& parts, const LineField& field, std::size_t n);
  Fit FollowWaves(const Parts& parts, LineField field) const;

  const cv::Mat& ink_;
  double pixelsPerMm_;
};

}  // namespace hyetex
