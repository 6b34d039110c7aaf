// Pictures and pages without a display: PNG, PDF and SVG, drawn on a surface whose units are points.
#pragma once

#include <functional>
#include <string>

#include "core/result.h"
#include "platform/surface.h"

namespace hyetex {

enum class PictureFormat { Png, Pdf, Svg };

struct PageSize {
  double Width = 0, Height = 0;  ///< points, 1 to `LongestPage`
};
inline constexpr double LongestPage = 14400;  // what readers of PDF show
inline constexpr PageSize A4Portrait{595, 842}, A4Landscape{842, 595};

/// The bytes of a white page with what `draw` draws on it, `margin` points from its edges. A PNG has
/// `pixelsPerInch`. Fails, with one line, where the page has no size or no memory is left for it.
Result<std::string> MakePicture(PictureFormat format, PageSize page, double margin, double pixelsPerInch,
                                const std::function<void(Surface&)>& draw);

/// The bytes of a PDF of `count` such pages, each drawn by `draw(surface, page)`, from 0.
Result<std::string> MakePages(PageSize page, double margin, int count,
                              const std::function<void(Surface&, int)>& draw);

}  // namespace hyetex
