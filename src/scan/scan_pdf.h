// Pages of a PDF as pictures.
#pragma once

#include <opencv2/core.hpp>
#include <string_view>

#include "scan/scan_heads.h"

namespace hyetex {

/// The size that RenderPdfPage() will give a page. Fails, in words without the file's name, on what Poppler
/// cannot read, on a locked document and on a page that is not there.
Result<ScanHead> ReadPdfHead(const std::string& path, int page);
Result<ScanHead> ReadPdfHead(std::string_view bytes, int page);
/// The page at 300 dpi, in colour, or in grey where it has no colour. `page` is in the document, and of no
/// more than MostScanPixels.
Result<cv::Mat> RenderPdfPage(std::string_view bytes, int page);

}  // namespace hyetex
