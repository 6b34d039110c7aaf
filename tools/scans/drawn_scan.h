// The scan of a chart, drawn from the line that its pen left, with the truth beside it: where each point of
// the line lies in the image, and what an operator does who traces it with a mouse.
#pragma once

#include <string>
#include <vector>

#include "digitizing/journal.h"
#include "digitizing/scan_placement.h"
#include "scans/scan_style.h"
#include "scans/sheet.h"
#include "tracing/pen_line.h"

namespace hyetex {

/// Places are pixels of the image from its left and top edges, turned with the scan; a pixel's middle lies at
/// a half.
struct ScanPress {
  PenPoint Point;
  cv::Point2d Place;
};

struct DrawnScan {
  cv::Mat Image;           ///< 8 bits each of blue, green and red, or of grey; 1-bit scans hold 0 and 255
  double PixelsPerMm = 0;  ///< of the scanner; paper that has shrunk has fewer
  cv::Point2d BottomLeft, BottomRight;  ///< the page's corners
  std::vector<ScanPress> Presses;       ///< all that an operator presses of the line
  PenLine Line;
  ScannedSheet Paper;  ///< how any place of the paper came into the image

  /// Where an hour of the page and a height over the bottom line, in mm, lie in the image.
  cv::Point2d PlaceOf(double hours, double heightMm) const;
};

/// Draws the scan of `line`; the same for the same seed. Fails on a style that makes no image, and on one of
/// more pixels than MostDrawnPixels.
inline constexpr double MostDrawnPixels = 3e8;
Result<DrawnScan> DrawScan(const PenLine& line, const ScanStyle& style, std::uint64_t seed);

/// A placement that lays the scan at its true size, upright, on the tablet that it stands in for. Its path
/// and checksum are left empty.
ScanPlacement PlacementOf(const DrawnScan& scan);
/// The steps of an operator who traces the scan with a mouse.
std::vector<JournalEvent> MouseSteps(const DrawnScan& scan, const ScanPlacement& placement);

/// Rows "hour,mm,x,y,kind": what the line records from its first point on, and where it lies in the image.
/// Kinds: start, point, drop (the pen at the bottom after an emptying), segment, gap (its end), level.
std::string TruthText(const DrawnScan& scan, double firstHour);

}  // namespace hyetex
