// The printed grid of a scanned chart as a lattice: which hour and which height above the band's bottom edge
// each place of the image stands for, however the paper is tilted, sheared, shrunk or warped. Fitted to the
// whole sheet at once, so that a stain or a hole moves nothing.
#pragma once

#include <array>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "core/records.h"
#include "core/result.h"
#include "scan/scan_image.h"

namespace hyetex {

/// The number that a printed line has at each place of an image, counted along one direction: a steady
/// count, bent by a cubic over the sheet and by its waves. Whole numbers are lines.
class LineFitter;

class LineField {
 public:
  double At(double x, double y) const;
  /// Adds `lines` to the numbers.
  void Shift(double lines) { bend_[0] += lines; }
  /// Counts `times` lines for each.
  void Divide(double times) {
    period_ /= times;
    for (double& term : bend_) term *= times;
    waves_ = cv::Mat(waves_ * times);  // a field's copies share what it holds
  }
  double Period() const { return period_; }  ///< pixels from line to line, on the whole

 private:
  friend class LineFitter;
  static constexpr std::size_t Terms = 10;
  static std::array<double, Terms> Basis(double x, double y);

  bool across_ = true;  // lines are counted along x
  double period_ = 1;
  double middleX_ = 0, middleY_ = 0;
  std::array<double, Terms> bend_{};
  cv::Mat waves_;  // floats: what a swollen sheet has beyond the cubic, coarsely over the picture
};

/// What of a chart decides where it lies on its paper.
struct PageSpan {
  ChartTypeRecord Paper;
  double StartHour = 0;  ///< of the day, at which the page's bottom line begins
  double Hours = 24;     ///< to its end
};

/// Where the page of a chart lies in its scan. Places of paper are millimetres as the chart type counts them:
/// along the band's bottom edge from the chart's start, on an arc chart as they are after the pen's arc is
/// taken off, and up from that edge.
class Lattice {
 public:
  /// Finds the grid that this kind of paper has. Fails, in words, where there is none.
  static Result<Lattice> Find(const ScanImage& image, const PageSpan& page);

  cv::Point2d ToPaper(cv::Point2d image) const;
  cv::Point2d ToImage(cv::Point2d paper) const;
  /// The left end of the page's bottom line lies at this place of the image, as an operator says.
  void StartAt(cv::Point2d image);

  double PixelsPerMm() const { return pixelsPerMm_; }
  double AcrossMm() const { return acrossMm_; }            ///< from line to line of the hours
  double UpMm() const { return upMm_; }                    ///< from line to line of the depths
  double BandMm() const { return bandMm_; }                ///< height of the printed band
  double LineAtMm() const { return lineAt_ * acrossMm_; }  ///< along, where a line of the hours stands
  double ResidualMm() const { return residualMm_; }
  /// How far the printed hours bow to the right between the band's bottom and top, beyond the chart type's
  /// own arc: next to nothing on any paper that lies flat, and its whole arc where the chart type is another.
  double BowMm() const;
  /// What the grid alone cannot tell, as that the hour is to be confirmed; each is a doubt about the chart.
  const std::vector<std::string>& Doubts() const { return doubts_; }

 private:
  friend class LatticeFinder;
  cv::Point2d ToPicture(cv::Point2d paper) const;

  PageSpan page_;
  cv::Matx23d toPicture_, toImage_;  // between the image and the picture that stands upright
  LineField hours_, depths_;         // over that picture; line 0 is the page's start, and its bottom edge
  double acrossMm_ = 0, upMm_ = 0, bandMm_ = 0, pixelsPerMm_ = 0, residualMm_ = 0;
  double lineAt_ = 0;  // the number of a printed line; no whole one where a page starts between two lines
  std::vector<std::string> doubts_;
};

/// By how much a pen on an arc writes before its time at a height, in mm of paper; 0 on a straight chart.
double ArcLeadMm(const ChartTypeRecord& paper, double upMm);

/// A part of a scan as colours (blue, green, red).
cv::Mat RenderColours(const ScanImage& image, const ScanWindow& window, cv::Size size);

}  // namespace hyetex
