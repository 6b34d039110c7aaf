// Where the places of a chart's paper lie in the image of its scan.
#pragma once

#include <array>

#include <opencv2/core.hpp>

namespace hyetex {

/// What lies between a paper as it was printed and its image.
struct SheetShape {
  double TiltDegrees = 0;   ///< counter-clockwise
  double ShearDegrees = 0;  ///< by which the hour lines lean to the right
  double ShrunkAcross = 0;  ///< shares of the length; 0.01 is one percent
  double ShrunkUp = 0;
  double WarpMm = 0;      ///< how far the paper's places wander at most, smoothly
  int Quarters = 0;       ///< how often the scan was turned by a quarter, counter-clockwise
  double BorderMm = 0.0;  ///< of the scanner's bed, around the paper
};

/// Places of paper are millimetres along the bottom line from the page's bottom-left corner, and up from that
/// line. Places of the image are pixels from its left and top edges; a pixel's middle lies at a half.
class ScannedSheet {
 public:
  /// `paper`: what the sheet of paper covers, its y from the bottom line up. `seed`: of the warping.
  ScannedSheet(const SheetShape& shape, const cv::Rect2d& paper, double pixelsPerMm, std::uint64_t seed);

  cv::Size Size() const { return size_; }  ///< of the image before the quarter turns
  double PixelsPerMm() const { return scale_; }
  const cv::Rect2d& Paper() const { return paper_; }

  /// The place in the image before the quarter turns, where everything is drawn.
  cv::Point2d Place(double alongMm, double upMm) const;
  /// The same for many places.
  cv::Point2d Place(cv::Point2d mm) const { return Place(mm.x, mm.y); }
  /// What a place of the drawing becomes by the quarter turns.
  cv::Point2d Turned(cv::Point2d place) const;
  /// Turns a drawing.
  cv::Mat Turned(const cv::Mat& drawing) const;

 private:
  struct Wave {
    double Along, Up, Phase, Across;  // the last: 1 where it moves places across, 0 where up
  };

  SheetShape shape_;
  cv::Rect2d paper_;
  double scale_;
  std::array<Wave, 4> waves_{};
  cv::Matx22d turn_;
  cv::Point2d origin_;
  cv::Size size_;
};

}  // namespace hyetex
