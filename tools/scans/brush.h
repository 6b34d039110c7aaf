// Ink on the image of a scan: how much of it lies on each pixel, 0 to 255, whatever its colour.
#pragma once

#include <span>
#include <string>

#include "scans/sheet.h"

namespace hyetex {

/// A place of paper with the width of a stroke, in mm, and how much ink it leaves there, 0 to 1.
struct StrokePoint {
  cv::Point2d Mm;
  double WidthMm = 0.3;
  double Ink = 1;
};

class InkLayer {
 public:
  explicit InkLayer(const ScannedSheet& sheet) : sheet_(&sheet), Cover(sheet.Size(), CV_8U, cv::Scalar(0)) {}

  const ScannedSheet& On() const { return *sheet_; }
  /// A stroke through places of the paper. Strokes that cross are not darker for it.
  void Stroke(std::span<const StrokePoint> points);
  /// A straight line over the paper, in pieces short enough to follow its warping.
  void Line(cv::Point2d fromMm, cv::Point2d toMm, double widthMm, double ink);
  void Disc(cv::Point2d middleMm, double radiusMm, double ink);
  /// A rectangle of the paper, by its lower left corner.
  void Block(const cv::Rect2d& mm, double ink);

  struct Lettering {
    double HeightMm = 2.5;   ///< of a capital
    double StrokeMm = 0.3;   ///< of its lines
    double TurnDegrees = 0;  ///< on the paper, counter-clockwise
    double Anchor = 0.5;     ///< what of the text lies left of the place: 0 none, 1 all
    double Ink = 1;
    bool Serifs = false;
  };
  /// Printed letters; their middle line lies on the place.
  void Text(const std::string& text, cv::Point2d mm, const Lettering& letters);

 private:
  void Piece(cv::Point2d from, cv::Point2d to, double fromWidth, double toWidth, double fromInk,
             double toInk);

  const ScannedSheet* sheet_;

 public:
  cv::Mat Cover;
};

}  // namespace hyetex
