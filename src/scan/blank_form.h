// What is printed on a kind of chart paper, lines, numbers and words, as the charts of a box have it in
// common: then no number is taken for ink of the pen. Kept as a file beside the program folder's lists, one
// for each chart type; it is made anew whenever more of a box has been scanned.
#pragma once

#include <memory>
#include <opencv2/core.hpp>
#include <span>
#include <string>
#include <string_view>

#include "core/result.h"
#include "scan/flat_chart.h"

namespace hyetex {

/// A chart laid flat, and the hour of the day at its page's start: print stands at hours of the day.
struct FormSheet {
  FlatChart Flat;
  double StartMm = 0;  ///< of paper, from the hour 0 to the page's start
};

class BlankForm {
 public:
  static constexpr std::size_t FewestSheets = 5;

  /// What most of the sheets have in each place. Fails with fewer than FewestSheets.
  static Result<BlankForm> Of(std::span<const FormSheet> sheets);
  /// Of a chart that nothing was written on.
  static BlankForm OfBlank(const FormSheet& sheet);

  /// The file's bytes, and back.
  Result<std::string> Bytes() const;
  static Result<BlankForm> Read(std::string_view bytes);

  /// The print where a chart lies: its light as colours, 255 where the paper is bare or not known.
  cv::Mat On(const FormSheet& sheet) const;

 private:
  cv::Mat light_;  // colours, FlatChart::PixelsPerMm to the millimetre
  double leftMm_ = 0, topMm_ = 0;
};

/// Where the form of a chart type is kept.
std::string BlankFormPath(const std::string& programFolder, const std::string& chartType);
/// The form that is kept; null where there is none. Fails, in words, on a damaged file.
Result<std::shared_ptr<const BlankForm>> KeptBlankForm(const std::string& programFolder,
                                                       const std::string& chartType);

}  // namespace hyetex
